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
    // Adds an upright bar along the middle of a column, its axis from `low` down to `high`.
    void AddBar(int column, double low, double high, double halfWidth);
    // Adds coverage given as `rows` rows of eight bytes, the first at the pixel (x, y). What lies outside the
    // buffer is left out.
    void AddRows(int x, int y, const std::uint64_t* coverage, int rows);
    // Covers a box of whole pixels.
    void AddBox(const CRect& box);
    // Blends a colour, 0xAARRGGBB and not premultiplied, into the buffer through the mask within `clips`
    // (pixels), and clears the mask.
    void Blend(const PixelBuffer& target, std::uint32_t color, const std::vector<CRect>& clips);

  private:
    void AddSteep(PointF a, PointF b, double halfWidth);
    void AddFlat(PointF a, PointF b, double halfWidth);
    void BlendRow(const PixelBuffer& target, std::uint32_t color, int y, int begin, int end);
    void ClearRow(int y);
    // Notes that the columns `first` to `last` of a row hold coverage.
    void Touch(int row, int first, int last) {
        std::uint64_t* used = Used(row);
        for (int word = first / kWord; word <= last / kWord; ++word)
            used[word / kBits] |= std::uint64_t{1} << word % kBits;
    }
    std::uint64_t* Used(int row) { return used_.data() + static_cast<std::ptrdiff_t>(row) * usedStride_; }

    static constexpr int kBits = 64;
    static constexpr int kWord = 8;

    int width_;
    int height_;
    int stride_;  // bytes of a row of the mask: whole words, with room behind the last pixel
    std::vector<std::uint8_t> mask_;
    int usedStride_;
    std::vector<std::uint64_t> used_;  // a bit for each word of the mask that holds coverage, row by row
    int top_;
    int bottom_;  // rows top_ to bottom_ are touched
};

}  // namespace zel::qt
