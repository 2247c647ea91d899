// Small filled ellipses, drawn once and then copied.
#pragma once

#include "backends/qt/Stroker.h"

#include <zel/platform/Geometry.h>

#include <array>
#include <cstdint>
#include <vector>

namespace zel::qt {

// Adds small ellipses of one size to a stroker's figure. Their coverage is that of the painter, kept for each
// of the places within a pixel that their corner can have: quarters of it, to the nearest of which they are
// moved. An ellipse at the place of one that the figure has already costs next to nothing.
class DiscSprites {
  public:
    // A pixel is 2^shift units wide; the buffer is `width` pixels wide and `height` high.
    DiscSprites(int width, int height, int shift);

    // Whether ellipses in rectangles of this size, in units with right and bottom outside, are small.
    bool CanDraw(const CSize& size) const;
    void SetSize(const CSize& size);
    // `corner` is the upper left one of the rectangle, in units.
    void Add(Stroker& stroker, const CPoint& corner) {
        // In places, of which there are 2^perPixel to a side of a pixel.
        const int perPixel = shift_ - placeShift_, mask = (1 << perPixel) - 1;
        const int half = (1 << placeShift_) / 2;
        const int placeX = zel::Add(corner.x, half) >> placeShift_;
        const int placeY = zel::Add(corner.y, half) >> placeShift_;
        const int x = placeX >> perPixel, y = placeY >> perPixel;
        if (x <= -kSide || y <= -kSide || x >= width_ || y >= height_) return;
        const int place = (placeY & mask) << perPixel | (placeX & mask);
        if (x >= 0 && y >= 0) {
            std::uint16_t& drawn = drawn_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                                          static_cast<std::size_t>(x)];
            const int bit = 1 << place;
            if ((drawn & bit) != 0) return;
            drawn = static_cast<std::uint16_t>(drawn | bit);
            any_ = true;
        }
        Draw(stroker, x, y, static_cast<std::size_t>(place));
    }
    // The figure is complete.
    void Clear();

  private:
    static constexpr int kSide = 16;        // pixels: two words
    static constexpr int kMostPlaces = 16;  // of a pixel: as many as a number of `drawn_` has bits
    struct Sprite {
        bool made = false;
        int rows = 0;
        bool wide = false;
        std::array<std::uint64_t, kSide> left{};
        std::array<std::uint64_t, kSide> right{};
    };

    void Draw(Stroker& stroker, int x, int y, std::size_t place);
    void Make(Sprite& sprite, int x, int y) const;

    int width_;
    int height_;
    int shift_;
    int placeShift_;  // a place is 2^placeShift units wide
    CSize size_;
    std::array<Sprite, kMostPlaces> sprites_;
    std::vector<std::uint16_t> drawn_;  // for each pixel, a bit for each place of it that has an ellipse
    bool any_ = false;
};

}  // namespace zel::qt
