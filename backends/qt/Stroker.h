// Antialiased lines.
#pragma once

#include <zel/platform/Geometry.h>

#include <cstdint>
#include <vector>

namespace zel::qt {

// A buffer of pixels, 0xAARRGGBB premultiplied.
struct PixelBuffer {
    std::uint32_t* pixels;
    int width;
    int height;
};

struct PointF {
    double x;
    double y;
};

// Draws polylines with round ends and joins. All segments of a line are gathered in a coverage mask, the
// larger coverage of a pixel counting, and the colour is blended through the mask once: joints and crossings
// of a line with itself do not become darker. The coverage of a pixel is the line's half width plus a half,
// less the distance of the pixel's centre from the segment's axis, between 0 and 1.
class Stroker {
  public:
    Stroker(int width, int height);

    // Adds one segment, in pixels; whatever lies outside the buffer costs nothing.
    void Add(PointF a, PointF b, double halfWidth);
    // Blends the mask into the buffer within `clips` (pixels), and clears it.
    void Blend(const PixelBuffer& target, std::uint32_t color, const std::vector<CRect>& clips);

  private:
    template <bool kSteep>
    void AddAlong(PointF a, PointF b, double halfWidth);
    void BlendRow(const PixelBuffer& target, std::uint32_t color, int y, int begin, int end);
    void Touch(int row, int first, int last) {
        RowSpan& span = rows_[static_cast<std::size_t>(row)];
        if (first < span.first) span.first = first;
        if (last > span.last) span.last = last;
    }

    struct RowSpan {
        int first;
        int last;
    };

    static constexpr int kWord = 8;

    int width_;
    int height_;
    int stride_;  // bytes of a row of the mask: whole words, with room behind the last pixel
    std::vector<std::uint8_t> mask_;
    std::vector<RowSpan> rows_;  // the touched columns of each row; none when first > last
    int top_;
    int bottom_;  // rows top_ to bottom_ are touched
};

}  // namespace zel::qt
