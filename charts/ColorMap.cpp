#include <zel/ColorMap.h>

#include <algorithm>
#include <cmath>
#include <span>

namespace zel {
namespace {

// Colours at equal distances; those between are mixed.
constexpr std::uint32_t kViridis[] = {0x440154, 0x481A6C, 0x472F7D, 0x414487, 0x39568C, 0x31688E,
                                      0x2A788E, 0x23888E, 0x1F988B, 0x22A884, 0x35B779, 0x54C568,
                                      0x7AD151, 0xA5DB36, 0xD2E21B, 0xFDE725};
constexpr std::uint32_t kCividis[] = {0x00204D, 0x00336F, 0x39486B, 0x575C6D, 0x707173,
                                      0x8A8779, 0xA69D75, 0xC4B56C, 0xE4CF5B, 0xFFEA46};
constexpr std::uint32_t kDiverging[] = {0x3B4CC0, 0x4E68D7, 0x6282EA, 0x779AF7, 0x8DB0FE, 0xA3C2FF,
                                        0xB8D0F9, 0xCCD9EE, 0xDDDDDD, 0xECD3C6, 0xF5C4AD, 0xF7B194,
                                        0xF49A7B, 0xEC7F63, 0xDE614C, 0xCB3E38, 0xB40426};
constexpr std::uint32_t kGreys[] = {0xFFFFFF, 0x000000};

std::span<const std::uint32_t> AnchorsOf(ColorScheme scheme) {
    switch (scheme) {
        case ColorScheme::CIVIDIS:
            return kCividis;
        case ColorScheme::DIVERGING:
            return kDiverging;
        case ColorScheme::GREYS:
            return kGreys;
        default:
            return kViridis;
    }
}

std::uint32_t Mixed(std::uint32_t a, std::uint32_t b, double share) {
    std::uint32_t mixed = 0;
    for (const int shift : {0, 8, 16}) {
        const double from = a >> shift & 0xFF, to = b >> shift & 0xFF;
        mixed |= static_cast<std::uint32_t>(std::lround(from + (to - from) * share)) << shift;
    }
    return mixed;
}

}  // namespace

ColorMap::ColorMap(ColorScheme scheme, bool reversed) {
    const std::span<const std::uint32_t> anchors = AnchorsOf(scheme);
    for (std::size_t i = 0; i < pixels_.size(); ++i) {
        const double place = static_cast<double>(i) / 255 * static_cast<double>(anchors.size() - 1);
        const std::size_t before = std::min(static_cast<std::size_t>(place), anchors.size() - 2);
        pixels_[i] =
            0xFF000000u | Mixed(anchors[before], anchors[before + 1], place - static_cast<double>(before));
    }
    if (reversed) std::reverse(pixels_.begin(), pixels_.end());
}

COLORREF ColorMap::At(double place) const {
    const std::uint32_t pixel = PixelAt(place);
    const auto channel = [pixel](int shift) { return static_cast<int>(pixel >> shift & 0xFF); };
    return RGB(channel(16), channel(8), channel(0));
}

}  // namespace zel
