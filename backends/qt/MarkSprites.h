// Marks that are drawn once and then copied.
#pragma once

#include "backends/qt/Stroker.h"

#include <zel/platform/Geometry.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace zel::qt {

// The picture of a mark, premultiplied, and where its upper left pixel lies from that of the mark's origin.
struct Sprite {
    int left = 0, top = 0, width = 0, height = 0;
    std::vector<std::uint32_t> pixels;
};

// Copies a mark to many places. Origins are moved to the nearest quarter of a pixel; for each of the places
// within a pixel that they can have the mark is drawn once. Of marks in one place the last is copied.
class MarkSprites {
  public:
    // A mark whose origin lies so many device units right of and below the corner of its pixel.
    using Make = std::function<Sprite(const CSize& within)>;

    // A pixel is 2^shift units wide.
    MarkSprites(const PixelBuffer& target, int shift, Make make);

    // `origins` in device units.
    void Draw(std::span<const CPoint> origins, const std::vector<CRect>& clips);

  private:
    static constexpr int kMostPlaces = 16;
    struct Placed {
        int x, y;
        std::size_t place;
    };

    Placed PlaceOf(const CPoint& origin) const;
    const Sprite& At(std::size_t place);
    void Copy(const Sprite& sprite, int x, int y, const CRect& clip);

    PixelBuffer target_;
    int shift_;
    int placeShift_;
    Make make_;
    std::array<std::optional<Sprite>, kMostPlaces> sprites_;
};

}  // namespace zel::qt
