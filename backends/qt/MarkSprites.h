// Marks that are drawn once and then copied.
#pragma once

#include "backends/qt/Stroker.h"
#include "platform/graphics/MarkCover.h"

#include <zel/platform/CoordinateMap.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace zel::qt {

// The picture of a mark, premultiplied, and where its upper left pixel lies from that of the mark's origin;
// at most MarkMask::kMostCells pixels wide and high.
class Sprite {
  public:
    // Takes what is drawn on `width` x `height` pixels.
    Sprite(int left, int top, int width, int height, const std::uint32_t* pixels);

    const MarkMask& Mask() const { return mask_; }
    // Onto a buffer, from the pixel (x, y) of the mark's origin on, within `clip`.
    void Copy(const PixelBuffer& target, int x, int y, const CRect& clip) const;

  private:
    // Columns of a row: those that hold ink, and among them the longest stretch without a gap or
    // transparency.
    struct Row {
        int begin = 0, end = 0;
        int solidBegin = 0, solidEnd = 0;
    };

    int width_;
    std::vector<std::uint32_t> pixels_;
    std::vector<Row> rows_;
    MarkMask mask_;
};

// Copies marks to many places. Origins are moved to the nearest quarter of a pixel, to halves and wholes
// where there are so many that it cannot be told; for each of the places within a pixel that they can have
// the mark is drawn once. Of marks in one place the last is copied, and those that lie wholly below later
// ones are not.
class MarkSprites {
  public:
    // A mark whose origin lies so many device units right of and below the corner of its pixel.
    using Make = std::function<Sprite(const CSize& within)>;

    // A pixel is 2^shift units wide.
    MarkSprites(const PixelBuffer& target, int shift) : target_(target), shift_(shift) {}

    // `map` takes places to device units.
    void Draw(std::span<const CPoint> places, const CoordinateMap& map, const Make& make,
              const std::vector<CRect>& clips);

  private:
    static constexpr int kMostPlaces = 16;
    struct Placed {
        int x, y;
        std::size_t place;
    };

    Placed PlaceOf(const CPoint& origin) const {
        const int perPixel = shift_ - placeShift_, mask = (1 << perPixel) - 1;
        const int half = (1 << placeShift_) / 2;
        const int x = zel::Add(origin.x, half) >> placeShift_, y = zel::Add(origin.y, half) >> placeShift_;
        return {x >> perPixel, y >> perPixel, static_cast<std::size_t>((y & mask) << perPixel | (x & mask))};
    }
    const Sprite& At(std::size_t place, const Make& make);

    PixelBuffer target_;
    int shift_;
    int placeShift_ = 0;  // a place is 2^placeShift units wide
    std::array<std::optional<Sprite>, kMostPlaces> sprites_;
    std::vector<std::uint16_t> taken_;  // for each pixel, a bit for each place of it that has a mark
    std::vector<std::uint32_t> takenPixels_;
    std::vector<Placed> shown_;
};

}  // namespace zel::qt
