// Colours in order, for numbers.
#pragma once

#include <zel/ToolOptions.h>

#include <array>
#include <cstdint>

namespace zel {

// Stored in documents by number.
enum class ColorScheme : int {
    VIRIDIS = 0,  // S. van der Walt and N. Smith, 2015: dark blue over green to yellow
    CIVIDIS = 1,  // J. Nuñez, C. Anderton and R. Renslow, 2018: blue to yellow, alike for any colour vision
    DIVERGING = 2,  // K. Moreland, "Diverging Color Maps for Scientific Visualization", 2009: blue, grey, red
    GREYS = 3       // white to black
};

// A colour for each number from 0 to 1, in 256 steps.
class ColorMap {
  public:
    explicit ColorMap(ColorScheme scheme = ColorScheme::VIRIDIS, bool reversed = false);

    // Places beyond the ends have the colours of the ends; NaN has that of 0.
    COLORREF At(double place) const;
    // The same as 0xFFRRGGBB.
    std::uint32_t PixelAt(double place) const {
        constexpr double kSteps = 256;
        const double step = place * kSteps;
        return pixels_[step >= kSteps - 1 ? 255 : step > 0 ? static_cast<std::size_t>(step) : 0];
    }

  private:
    std::array<std::uint32_t, 256> pixels_;
};

}  // namespace zel
