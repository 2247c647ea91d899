#include "backends/qt/MarkSprites.h"

#include <algorithm>
#include <utility>

namespace zel::qt {
namespace {

// A premultiplied colour over another one.
std::uint32_t Over(std::uint32_t top, std::uint32_t below) {
    const std::uint32_t left = 255 - (top >> 24);
    const auto faded = [=](std::uint32_t channels) {
        const std::uint32_t sum = channels * left + 0x800080;
        return (sum + (sum >> 8 & 0xFF00FF)) >> 8 & 0xFF00FF;
    };
    return top + (faded(below >> 8 & 0xFF00FF) << 8 | faded(below & 0xFF00FF));
}

}  // namespace

MarkSprites::MarkSprites(const PixelBuffer& target, int shift, Make make)
    : target_(target), shift_(shift), placeShift_(std::max(0, shift - 2)), make_(std::move(make)) {}

MarkSprites::Placed MarkSprites::PlaceOf(const CPoint& origin) const {
    const int perPixel = shift_ - placeShift_, mask = (1 << perPixel) - 1;
    const int half = (1 << placeShift_) / 2;
    const int x = zel::Add(origin.x, half) >> placeShift_, y = zel::Add(origin.y, half) >> placeShift_;
    return {x >> perPixel, y >> perPixel, static_cast<std::size_t>((y & mask) << perPixel | (x & mask))};
}

const Sprite& MarkSprites::At(std::size_t place) {
    if (!sprites_[place]) {
        const int perPixel = shift_ - placeShift_, mask = (1 << perPixel) - 1;
        const int x = static_cast<int>(place) & mask, y = static_cast<int>(place) >> perPixel;
        sprites_[place] = make_(CSize(x << placeShift_, y << placeShift_));
    }
    return *sprites_[place];
}

void MarkSprites::Draw(std::span<const CPoint> origins, const std::vector<CRect>& clips) {
    // From the last to the first, to know the last of each place; drawn from the first to the last.
    std::vector<std::uint16_t> taken(static_cast<std::size_t>(target_.width) *
                                     static_cast<std::size_t>(target_.height));
    std::vector<Placed> shown;
    for (auto origin = origins.rbegin(); origin != origins.rend(); ++origin) {
        const Placed placed = PlaceOf(*origin);
        if (placed.x >= 0 && placed.y >= 0 && placed.x < target_.width && placed.y < target_.height) {
            std::uint16_t& bits =
                taken[static_cast<std::size_t>(placed.y) * static_cast<std::size_t>(target_.width) +
                      static_cast<std::size_t>(placed.x)];
            const int bit = 1 << placed.place;
            if ((bits & bit) != 0) continue;
            bits = static_cast<std::uint16_t>(bits | bit);
        }
        shown.push_back(placed);
    }
    for (auto placed = shown.rbegin(); placed != shown.rend(); ++placed) {
        const Sprite& sprite = At(placed->place);
        const int x = zel::Add(placed->x, sprite.left), y = zel::Add(placed->y, sprite.top);
        for (const CRect& clip : clips) Copy(sprite, x, y, clip);
    }
}

void MarkSprites::Copy(const Sprite& sprite, int x, int y, const CRect& clip) {
    const int left = std::max<int>(clip.left, x), top = std::max<int>(clip.top, y);
    const int right = std::min<int>(clip.right, zel::Add(x, sprite.width));
    const int bottom = std::min<int>(clip.bottom, zel::Add(y, sprite.height));
    if (left >= right) return;
    for (int row = top; row < bottom; ++row) {
        const std::uint32_t* from =
            sprite.pixels.data() + static_cast<std::ptrdiff_t>(row - y) * sprite.width + (left - x);
        std::uint32_t* to = target_.pixels + static_cast<std::ptrdiff_t>(row) * target_.width + left;
        for (int i = 0; i < right - left; ++i) {
            const std::uint32_t pixel = from[i];
            if (pixel >= 0xFF000000u)
                to[i] = pixel;
            else if (pixel != 0)
                to[i] = Over(pixel, to[i]);
        }
    }
}

}  // namespace zel::qt
