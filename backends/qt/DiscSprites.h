// Small filled ellipses, drawn once and then copied.
#pragma once

#include "backends/qt/Stroker.h"

#include <zel/platform/Geometry.h>

#include <array>
#include <cstdint>
#include <vector>

namespace zel::qt {

// Adds small ellipses to a stroker's figure. Their coverage is that of the painter, kept for each place
// within a pixel that their corner can have. An ellipse at the place of one that the figure has already costs
// next to nothing.
class DiscSprites {
  public:
    // A pixel is 2^shift units wide; the buffer is `width` pixels wide and `height` high.
    DiscSprites(int width, int height, int shift);

    // False, with nothing added, for an ellipse that is not small. Box in units, right and bottom outside.
    bool Add(Stroker& stroker, const CRect& box);
    // The figure is complete.
    void Clear();

  private:
    static constexpr int kSide = 16;  // pixels: two words
    struct Sprite {
        bool made = false;
        int rows = 0;
        bool wide = false;
        std::array<std::uint64_t, kSide> left{};
        std::array<std::uint64_t, kSide> right{};
    };

    void Make(Sprite& sprite, int x, int y) const;

    int width_;
    int height_;
    int shift_;
    CSize size_;
    std::vector<Sprite> sprites_;       // by the corner's place within its pixel
    std::vector<std::uint16_t> drawn_;  // for each pixel, the place of its last corner and 1
    bool any_ = false;
};

}  // namespace zel::qt
