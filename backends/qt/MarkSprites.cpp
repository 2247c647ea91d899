#include "backends/qt/MarkSprites.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zel::qt {
namespace {

// Marks of one call from which on their places are halves of a pixel, and wholes.
constexpr std::size_t kSomeMarks = 20'000, kManyMarks = 200'000;

// A premultiplied colour over another one.
std::uint32_t Over(std::uint32_t top, std::uint32_t below) {
    const std::uint32_t left = 255 - (top >> 24);
    const auto faded = [=](std::uint32_t channels) {
        const std::uint32_t sum = channels * left + 0x800080;
        return (sum + (sum >> 8 & 0xFF00FF)) >> 8 & 0xFF00FF;
    };
    return top + (faded(below >> 8 & 0xFF00FF) << 8 | faded(below & 0xFF00FF));
}

constexpr int kAtOnce = 4;  // pixels

// Over, for four neighbouring pixels: two channels of each in the halves of a lane.
void MixFour(const std::uint32_t* from, std::uint32_t* to) {
    using Lanes = std::uint32_t __attribute__((vector_size(kAtOnce * sizeof(std::uint32_t))));
    using Halves = std::uint16_t __attribute__((vector_size(kAtOnce * sizeof(std::uint32_t))));
    Lanes top, below;
    std::memcpy(&top, from, sizeof top);
    std::memcpy(&below, to, sizeof below);
    const Lanes left = 255 - (top >> 24);
    const Halves share = reinterpret_cast<Halves>(left | left << 16);
    const auto faded = [&](const Lanes& channels) {
        const Halves sum = reinterpret_cast<Halves>(channels) * share + 0x80;
        return reinterpret_cast<Lanes>((sum + (sum >> 8)) >> 8);
    };
    const Lanes mixed = top + (faded(below >> 8 & 0xFF00FF) << 8 | faded(below & 0xFF00FF));
    std::memcpy(to, &mixed, sizeof mixed);
}

// Runs are short: four pixels at once, the last four again where they are not all.
void CopyRun(const std::uint32_t* from, std::uint32_t* to, int begin, int end) {
    if (end - begin < kAtOnce) {
        for (int i = begin; i < end; ++i) to[i] = from[i];
        return;
    }
    const auto copy = [=](int i) { std::memcpy(to + i, from + i, kAtOnce * sizeof *to); };
    for (int i = begin; i < end - kAtOnce; i += kAtOnce) copy(i);
    copy(end - kAtOnce);
}

}  // namespace

const Sprite& MarkSprites::At(std::size_t place, const Make& make) {
    if (!sprites_[place]) {
        const int perPixel = shift_ - placeShift_, mask = (1 << perPixel) - 1;
        const int x = static_cast<int>(place) & mask, y = static_cast<int>(place) >> perPixel;
        sprites_[place] = make(CSize(x << placeShift_, y << placeShift_));
    }
    return *sprites_[place];
}

void MarkSprites::Draw(std::span<const CPoint> places, const CoordinateMap& map, const Make& make,
                       const std::vector<CRect>& clips) {
    const int perPixel = places.size() > kManyMarks ? 0 : places.size() > kSomeMarks ? 1 : 2;
    placeShift_ = std::max(0, shift_ - perPixel);
    sprites_.fill(std::nullopt);
    // From the last to the first, to know what is seen; drawn from the first to the last.
    taken_.resize(static_cast<std::size_t>(target_.width) * static_cast<std::size_t>(target_.height));
    MarkCover cover(target_.width, target_.height);
    shown_.clear();
    for (auto each = places.rbegin(); each != places.rend(); ++each) {
        const Placed placed = PlaceOf(map.ToDevice(*each));
        if (placed.x >= 0 && placed.y >= 0 && placed.x < target_.width && placed.y < target_.height) {
            const auto pixel = static_cast<std::uint32_t>(placed.y * target_.width + placed.x);
            const int bit = 1 << placed.place;
            if ((taken_[pixel] & bit) != 0) continue;
            taken_[pixel] = static_cast<std::uint16_t>(taken_[pixel] | bit);
            takenPixels_.push_back(pixel);
        }
        if (cover.Shows(At(placed.place, make).Mask(), placed.x, placed.y)) shown_.push_back(placed);
    }
    for (auto placed = shown_.rbegin(); placed != shown_.rend(); ++placed)
        for (const CRect& clip : clips) sprites_[placed->place]->Copy(target_, placed->x, placed->y, clip);
    for (const std::uint32_t pixel : takenPixels_) taken_[pixel] = 0;
    takenPixels_.clear();
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
            int i = std::max(begin, left);
            const int stop = std::min(end, right);
            for (; i + kAtOnce <= stop; i += kAtOnce) MixFour(from + i, to(i));
            for (; i < stop; ++i) *to(i) = Over(from[i], *to(i));
        };
        // Both ends, and between them nothing but solid pixels, or one after another.
        const int inner = row.begin + kAtOnce, outer = row.end - kAtOnce;
        const bool isSolid = inner <= outer && row.solidBegin <= inner && row.solidEnd >= outer;
        if (!isSolid || row.begin < left || row.end > right) {
            mix(row.begin, row.solidBegin);
            CopyRun(from, to(0), std::max(row.solidBegin, left), std::min(row.solidEnd, right));
            mix(row.solidEnd, row.end);
            continue;
        }
        MixFour(from + row.begin, to(row.begin));
        CopyRun(from, to(0), inner, outer);
        MixFour(from + outer, to(outer));
    }
}

}  // namespace zel::qt
