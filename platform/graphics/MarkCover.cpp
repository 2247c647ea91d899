#include "platform/graphics/MarkCover.h"

#include <algorithm>

namespace zel {

MarkCover::MarkCover(int width, int height)
    : width_(width),
      height_(height),
      stride_((width + kBits - 1) / kBits + 3),
      words_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height)) {
    const int inside = width / kBits, rest = width % kBits;
    for (int row = 0; row < height; ++row) {
        *WordsAt(row, 0) = ~std::uint64_t{0};
        std::fill(WordsAt(row, inside + 1), WordsAt(row, stride_), ~std::uint64_t{0});
        if (rest > 0) *WordsAt(row, inside + 1) = ~std::uint64_t{0} << rest;
    }
}

bool MarkCover::Shows(const MarkMask& mark, int x, int y) {
    const std::int64_t left = std::int64_t{x} + mark.left, top = std::int64_t{y} + mark.top;
    const auto rows = static_cast<std::int64_t>(mark.ink.size());
    if (left <= -kBits || left >= width_) return false;
    const auto first = static_cast<int>(std::clamp<std::int64_t>(-top, 0, rows));
    const auto last = static_cast<int>(std::clamp<std::int64_t>(height_ - top, first, rows));
    const int word = static_cast<int>(left + kBits) / kBits, shift = static_cast<int>(left + kBits) % kBits;
    // The upper half of a shifted row, which is none when nothing is shifted.
    const auto upper = [shift](std::uint64_t row) { return row >> 1 >> (kBits - 1 - shift); };
    const auto below = [&](int row) { return WordsAt(static_cast<int>(top + row), word); };
    bool seen = false;
    for (int row = first; row < last && !seen; ++row) {
        const std::uint64_t ink = mark.ink[static_cast<std::size_t>(row)];
        seen = (ink << shift & ~below(row)[0]) != 0 || (upper(ink) & ~below(row)[1]) != 0;
    }
    for (int row = first; row < last && seen; ++row) {
        const std::uint64_t solid = mark.solid[static_cast<std::size_t>(row)];
        below(row)[0] |= solid << shift;
        below(row)[1] |= upper(solid);
    }
    return seen;
}

}  // namespace zel
