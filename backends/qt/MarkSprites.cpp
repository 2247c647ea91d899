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
    // From the last to the first, to know what is seen; drawn from the first to the last.
    std::vector<std::uint16_t> taken(static_cast<std::size_t>(target_.width) *
                                     static_cast<std::size_t>(target_.height));
    MarkCover cover(target_.width, target_.height);
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
        if (cover.Shows(At(placed.place).Mask(), placed.x, placed.y)) shown.push_back(placed);
    }
    for (auto placed = shown.rbegin(); placed != shown.rend(); ++placed)
        for (const CRect& clip : clips) At(placed->place).Copy(target_, placed->x, placed->y, clip);
}

Sprite::Sprite(int left, int top, int width, int height, const std::uint32_t* pixels)
    : width_(width), pixels_(pixels, pixels + std::ptrdiff_t{width} * height) {
    mask_.left = left;
    mask_.top = top;
    for (int y = 0; y < height; ++y) {
        Row row;
        std::uint64_t ink = 0, solid = 0;
        int begin = 0;  // of the present stretch of solid pixels
        for (int x = 0; x < width; ++x) {
            const std::uint32_t pixel = pixels[std::ptrdiff_t{y} * width + x];
            if (pixel == 0) {
                begin = x + 1;
                continue;
            }
            ink |= std::uint64_t{1} << x;
            if (row.end == 0) row.begin = x;
            row.end = x + 1;
            if (pixel < 0xFF000000u) {
                begin = x + 1;
                continue;
            }
            solid |= std::uint64_t{1} << x;
            if (x + 1 - begin > row.solidEnd - row.solidBegin) {
                row.solidBegin = begin;
                row.solidEnd = x + 1;
            }
        }
        if (row.solidEnd == 0) row.solidBegin = row.solidEnd = row.end;
        rows_.push_back(row);
        mask_.ink.push_back(ink);
        mask_.solid.push_back(solid);
    }
}

void Sprite::Copy(const PixelBuffer& target, int x, int y, const CRect& clip) const {
    x = zel::Add(x, mask_.left);
    y = zel::Add(y, mask_.top);
    const int height = static_cast<int>(rows_.size());
    const int top = std::max<int>(clip.top, y), bottom = std::min<int>(clip.bottom, zel::Add(y, height));
    // Columns of the sprite within the clip.
    const int left = std::max(zel::Subtract(clip.left, x), 0);
    const int right = std::min(zel::Subtract(clip.right, x), width_);
    if (left >= right) return;
    for (int line = top; line < bottom; ++line) {
        const Row& row = rows_[static_cast<std::size_t>(line - y)];
        const std::uint32_t* const from = pixels_.data() + static_cast<std::ptrdiff_t>(line - y) * width_;
        const auto to = [&](int i) {
            return target.pixels + (static_cast<std::ptrdiff_t>(line) * target.width + x + i);
        };
        const auto mix = [&](int begin, int end) {
            for (int i = std::max(begin, left); i < std::min(end, right); ++i)
                *to(i) = Over(from[i], *to(i));
        };
        mix(row.begin, row.solidBegin);
        const int begin = std::max(row.solidBegin, left), end = std::min(row.solidEnd, right);
        if (begin < end) std::copy(from + begin, from + end, to(begin));
        mix(row.solidEnd, row.end);
    }
}

}  // namespace zel::qt
