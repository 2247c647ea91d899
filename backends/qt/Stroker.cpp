#include "backends/qt/Stroker.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zel::qt {
namespace {

// Cuts a segment to a box; false when nothing is left.
bool ClipTo(PointF& a, PointF& b, double left, double top, double right, double bottom) {
    double begin = 0, end = 1;
    const double dx = b.x - a.x, dy = b.y - a.y;
    const auto cut = [&](double p, double q) {
        if (p == 0) return q >= 0;
        const double t = q / p;
        if (p < 0)
            begin = std::max(begin, t);
        else
            end = std::min(end, t);
        return begin <= end;
    };
    if (!cut(-dx, a.x - left) || !cut(dx, right - a.x) || !cut(-dy, a.y - top) || !cut(dy, bottom - a.y))
        return false;
    const PointF start = a;
    if (end < 1) b = {start.x + end * dx, start.y + end * dy};
    if (begin > 0) a = {start.x + begin * dx, start.y + begin * dy};
    return true;
}

}  // namespace

Stroker::Stroker(int width, int height)
    : width_(width),
      height_(height),
      stride_((width + 2 * kWord - 1) / kWord * kWord),
      mask_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height)),
      usedStride_((stride_ / kWord + kBits - 1) / kBits),
      used_(static_cast<std::size_t>(usedStride_) * static_cast<std::size_t>(height)),
      top_(height),
      bottom_(-1) {}

void Stroker::Add(PointF a, PointF b, double halfWidth) {
    const double reach = halfWidth + 1;
    const auto [minX, maxX] = std::minmax(a.x, b.x);
    const auto [minY, maxY] = std::minmax(a.y, b.y);
    const bool inside = minX >= 0 && minY >= 0 && maxX <= width_ && maxY <= height_;
    if (!inside && !ClipTo(a, b, -reach, -reach, width_ + reach, height_ + reach)) return;
    if (std::fabs(b.y - a.y) >= std::fabs(b.x - a.x)) {
        AddSteep(a, b, halfWidth);
    } else {
        AddFlat(a, b, halfWidth);
    }
}

namespace {

constexpr int kLanes = 4;  // pixels computed at once
using Floats = float __attribute__((vector_size(kLanes * sizeof(float))));
using Ints = int __attribute__((vector_size(kLanes * sizeof(int))));

Floats All(float value) {
    return Floats{value, value, value, value};
}
// Of the pixels of a row from one on.
Floats CentresFrom(int x) {
    const float first = static_cast<float>(x) + 0.5F;
    return Floats{first, first + 1, first + 2, first + 3};
}
// The first pixel of the lanes that a place lies in. Neighbouring segments then write the same bytes
// together, which the processor can read again at once.
int WordOf(double place) {
    return static_cast<int>(place) & -kLanes;
}
// The compiler does not find these for itself.
#ifdef __SSE2__
Floats Clamp01(const Floats& v) {
    return _mm_min_ps(_mm_max_ps(v, _mm_setzero_ps()), _mm_set1_ps(1));
}
Floats RootOf(const Floats& v) {
    return _mm_sqrt_ps(v);
}
#else
Floats Clamp01(const Floats& v) {
    const Floats positive = v > All(0) ? v : All(0);
    return positive < All(1) ? positive : All(1);
}
Floats RootOf(Floats v) {
    for (int lane = 0; lane < kLanes; ++lane) v[lane] = std::sqrt(v[lane]);
    return v;
}
#endif

Ints ToBytes(const Floats& coverage) {
    return __builtin_convertvector(Clamp01(coverage) * 255.0F + 0.5F, Ints);
}

// Away from the ends of a segment the distance is that from its axis, across at `axis`.
Ints CoverageOfAxis(const Floats& across, float axis, float cosine, float reach) {
    const Floats away = across - axis;
    return ToBytes(reach - (away > All(0) ? away : -away) * cosine);
}

// Raises four neighbouring bytes of the mask to a coverage. Past the end of a line the coverage is 0, and
// past the end of a row there is room: no byte is changed that should not be.
void Raise(std::uint8_t* mask, const Ints& coverage) {
#ifdef __SSE2__
    const __m128i words = _mm_packs_epi32(reinterpret_cast<__m128i>(coverage), _mm_setzero_si128());
    int present = 0;
    std::memcpy(&present, mask, kLanes);
    const __m128i larger = _mm_max_epu8(_mm_packus_epi16(words, words), _mm_cvtsi32_si128(present));
    const int bytes = _mm_cvtsi128_si32(larger);
    std::memcpy(mask, &bytes, kLanes);
#else
    for (int lane = 0; lane < kLanes; ++lane)
        mask[lane] = static_cast<std::uint8_t>(std::max<int>(mask[lane], coverage[lane]));
#endif
}

// A segment and the coverage of pixels by a line along it.
struct Segment {
    float x, y, dx, dy, inverseSquare;

    Segment(const PointF& a, const PointF& b)
        : x(static_cast<float>(a.x)),
          y(static_cast<float>(a.y)),
          dx(static_cast<float>(b.x - a.x)),
          dy(static_cast<float>(b.y - a.y)) {
        const float square = dx * dx + dy * dy;
        inverseSquare = square > 0 ? 1 / square : 0;
    }
    // 0 to 255 for pixel centres at these places.
    Ints Coverage(const Floats& px, const Floats& py, float reach) const {
        const Floats rx = px - x, ry = py - y;
        const Floats t = Clamp01((rx * dx + ry * dy) * inverseSquare);
        const Floats ex = rx - t * dx, ey = ry - t * dy;
        return ToBytes(reach - RootOf(ex * ex + ey * ey));
    }
};

}  // namespace

namespace {

std::uint8_t ByteOf(double coverage) {
    return static_cast<std::uint8_t>(std::lrint(std::clamp(coverage, 0.0, 1.0) * 255));
}

}  // namespace

// The coverage is that of any segment: constant beside the bar, round about its ends.
void Stroker::AddBar(int column, double low, double high, double halfWidth) {
    const double reach = halfWidth + 0.5;
    const int side = static_cast<int>(std::ceil(reach)) - 1;
    const int left = std::max(column - side, 0), right = std::min(column + side, width_ - 1);
    const int first = std::max(static_cast<int>(std::floor(low - reach)), 0);
    const int last = std::min(static_cast<int>(std::floor(high + reach)), height_ - 1);
    if (left > right || first > last) return;
    const int firstBeside = std::clamp(static_cast<int>(std::ceil(low - 0.5)), first, last + 1);
    const int lastBeside = std::clamp(static_cast<int>(std::floor(high - 0.5)), firstBeside - 1, last);
    for (int x = left; x <= right; ++x) {
        const double across = std::abs(x - column);
        std::uint8_t* const top = mask_.data() + x;
        const auto raise = [&](int y, double distance) {
            std::uint8_t& byte = top[static_cast<std::ptrdiff_t>(y) * stride_];
            byte = std::max(byte, ByteOf(reach - distance));
        };
        for (int y = first; y < firstBeside; ++y) raise(y, std::hypot(across, low - (y + 0.5)));
        const auto beside = ByteOf(reach - across);
        std::uint8_t* at = top + static_cast<std::ptrdiff_t>(firstBeside) * stride_;
        for (int y = firstBeside; y <= lastBeside; ++y, at += stride_) *at = std::max(*at, beside);
        for (int y = lastBeside + 1; y <= last; ++y) raise(y, std::hypot(across, y + 0.5 - high));
    }
    for (int y = first; y <= last; ++y) Touch(y, left, right);
    top_ = std::min(top_, first);
    bottom_ = std::max(bottom_, last);
}

namespace {

// Raises eight neighbouring bytes of the mask; the bytes in memory are the pixels from the left.
void RaiseWord(std::uint8_t* at, const std::uint64_t& coverage) {
    using Bytes = std::uint8_t __attribute__((vector_size(sizeof coverage)));
    Bytes added, present;
    std::memcpy(&added, &coverage, sizeof added);
    std::memcpy(&present, at, sizeof present);
    const Bytes larger = added > present ? added : present;
    std::memcpy(at, &larger, sizeof larger);
}

}  // namespace

void Stroker::AddRows(int x, int y, const std::uint64_t* coverage, int rows) {
    if (x <= -kWord || x >= width_) return;
    const int first = std::max(y, 0), last = std::min(y + rows, height_) - 1;
    if (first > last) return;
    const int left = std::max(x, 0), cut = left - x;
    const int shown = std::min(kWord - cut, width_ - left);
    std::uint8_t* at = mask_.data() + static_cast<std::ptrdiff_t>(first) * stride_ + left;
    std::uint64_t* used = Used(first);
    const int firstWord = left / kWord, lastWord = (left + shown - 1) / kWord;
    const std::uint64_t firstBit = std::uint64_t{1} << firstWord % kBits;
    const std::uint64_t lastBit = std::uint64_t{1} << lastWord % kBits;
    for (int row = first; row <= last; ++row, at += stride_, used += usedStride_) {
        if (shown == kWord) {
            RaiseWord(at, coverage[row - y]);
        } else {
            std::uint64_t part = 0;
            std::memcpy(&part, reinterpret_cast<const std::uint8_t*>(coverage + (row - y)) + cut,
                        static_cast<std::size_t>(shown));
            RaiseWord(at, part);
        }
        used[firstWord / kBits] |= firstBit;
        used[lastWord / kBits] |= lastBit;
    }
    top_ = std::min(top_, first);
    bottom_ = std::max(bottom_, last);
}

void Stroker::AddBox(const CRect& box) {
    CRect seen;
    if (!seen.IntersectRect(box, CRect(0, 0, width_, height_))) return;
    for (int y = seen.top; y < seen.bottom; ++y) {
        std::memset(mask_.data() + static_cast<std::ptrdiff_t>(y) * stride_ + seen.left, 0xFF,
                    static_cast<std::size_t>(seen.Width()));
        Touch(y, seen.left, seen.right - 1);
    }
    top_ = std::min<int>(top_, seen.top);
    bottom_ = std::max<int>(bottom_, seen.bottom - 1);
}

// Row by row, the pixels on both sides of the axis.
void Stroker::AddSteep(PointF a, PointF b, double halfWidth) {
    if (a.y > b.y) std::swap(a, b);
    const double dy = b.y - a.y;
    const double slope = dy > 0 ? (b.x - a.x) / dy : 0;
    const double reach = halfWidth + 0.5;
    const double acrossReach = reach * std::sqrt(1 + slope * slope);
    const int first = std::max(0, static_cast<int>(std::floor(a.y - reach)));
    const int last = std::min(height_ - 1, static_cast<int>(std::floor(b.y + reach)));
    const double left = std::max(std::min(a.x, b.x) - reach, 0.0);
    const double right = std::min(std::max(a.x, b.x) + reach, static_cast<double>(width_ - 1));
    if (right < left) return;
    const Segment segment(a, b);
    const auto reachF = static_cast<float>(reach);
    const auto cosine = static_cast<float>(reach / acrossReach);
    double axis = a.x + (first + 0.5 - a.y) * slope;
    for (int y = first; y <= last; ++y, axis += slope) {
        const int low = WordOf(std::max(axis - acrossReach, left));
        const int high = static_cast<int>(std::min(axis + acrossReach, right));
        if (low > high) continue;
        const bool inner = y + 0.5 > a.y + acrossReach && y + 0.5 < b.y - acrossReach;
        const Floats along = All(static_cast<float>(y) + 0.5F);
        std::uint8_t* at = mask_.data() + static_cast<std::ptrdiff_t>(y) * stride_ + low;
        for (int x = low; x <= high; x += kLanes, at += kLanes) {
            const Floats across = CentresFrom(x);
            Raise(at, inner ? CoverageOfAxis(across, static_cast<float>(axis), cosine, reachF)
                            : segment.Coverage(across, along, reachF));
        }
        Touch(y, low, high);
    }
    top_ = std::min(top_, first);
    bottom_ = std::max(bottom_, last);
}

// Row by row, the pixels that the strip along the axis covers in it.
void Stroker::AddFlat(PointF a, PointF b, double halfWidth) {
    if (a.x > b.x) std::swap(a, b);
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double reach = halfWidth + 0.5;
    const double left = std::max(a.x - reach, 0.0);
    const double right = std::min(b.x + reach, static_cast<double>(width_ - 1));
    const int first = std::max(0, static_cast<int>(std::floor(std::min(a.y, b.y) - reach)));
    const int last = std::min(height_ - 1, static_cast<int>(std::floor(std::max(a.y, b.y) + reach)));
    if (right < left || first > last) return;
    // Where the axis crosses a row, and how far the strip reaches from there; nothing to tell when it hardly
    // crosses any.
    const bool crosses = std::fabs(dy) > 1e-9;
    const double step = crosses ? dx / dy : 0;
    const double stripReach = crosses ? reach * std::sqrt(1 + step * step) : right - left + 1;
    double axis = crosses ? a.x + (first + 0.5 - a.y) * step : left;
    const Segment segment(a, b);
    const auto reachF = static_cast<float>(reach);
    for (int y = first; y <= last; ++y, axis += step) {
        const int low = WordOf(std::max(axis - stripReach, left));
        const int high = static_cast<int>(std::min(axis + stripReach, right));
        if (low > high) continue;
        const Floats along = All(static_cast<float>(y) + 0.5F);
        std::uint8_t* at = mask_.data() + static_cast<std::ptrdiff_t>(y) * stride_ + low;
        for (int x = low; x <= high; x += kLanes, at += kLanes)
            Raise(at, segment.Coverage(CentresFrom(x), along, reachF));
        Touch(y, low, high);
    }
    top_ = std::min(top_, first);
    bottom_ = std::max(bottom_, last);
}

namespace {

// One byte of each channel: (a * alpha + b * (255 - alpha)) / 255, rounded.
std::uint32_t Mix(std::uint32_t a, std::uint32_t b, std::uint32_t alpha) {
    const auto channels = [=](std::uint32_t x, std::uint32_t y) {
        const std::uint32_t sum = x * alpha + y * (255 - alpha) + 0x800080;
        return (sum + (sum >> 8 & 0xFF00FF)) >> 8 & 0xFF00FF;
    };
    return channels(a >> 8 & 0xFF00FF, b >> 8 & 0xFF00FF) << 8 | channels(a & 0xFF00FF, b & 0xFF00FF);
}

}  // namespace

// Only what holds coverage is looked at, eight pixels at once: between the strands of a curve there is none.
void Stroker::BlendRow(const PixelBuffer& target, std::uint32_t color, int y, int begin, int end) {
    if (begin >= end) return;
    const std::uint32_t opacity = color >> 24;
    color |= 0xFF000000u;
    const std::uint8_t* mask = mask_.data() + static_cast<std::ptrdiff_t>(y) * stride_;
    std::uint32_t* pixels = target.pixels + static_cast<std::ptrdiff_t>(y) * width_;
    const std::uint64_t* used = Used(y);
    const int firstWord = begin / kWord, lastWord = (end - 1) / kWord;
    for (int block = firstWord / kBits; block <= lastWord / kBits; ++block) {
        for (std::uint64_t bits = used[block]; bits != 0; bits &= bits - 1) {
            const int x0 = (block * kBits + std::countr_zero(bits)) * kWord;
            std::uint64_t eight = 0;
            std::memcpy(&eight, mask + x0, kWord);
            if constexpr (std::endian::native == std::endian::big) eight = __builtin_bswap64(eight);
            if (x0 < begin) eight &= x0 + kWord > begin ? ~std::uint64_t{0} << 8 * (begin - x0) : 0;
            if (x0 + kWord > end) eight &= x0 < end ? ~std::uint64_t{0} >> 8 * (x0 + kWord - end) : 0;
            if (eight == ~std::uint64_t{0} && opacity == 255) {
                std::fill_n(pixels + x0, kWord, color);
                continue;
            }
            while (eight != 0) {
                const int byte = std::countr_zero(eight) / 8;
                const auto coverage = static_cast<std::uint32_t>(eight >> 8 * byte & 0xFF);
                const std::uint32_t alpha = opacity == 255 ? coverage : (coverage * opacity + 127) / 255;
                std::uint32_t& pixel = pixels[x0 + byte];
                pixel = alpha == 255 ? color : Mix(color, pixel, alpha);
                eight &= ~(std::uint64_t{0xFF} << 8 * byte);
            }
        }
    }
}

void Stroker::ClearRow(int y) {
    std::uint8_t* mask = mask_.data() + static_cast<std::ptrdiff_t>(y) * stride_;
    std::uint64_t* used = Used(y);
    for (int block = 0; block < usedStride_; ++block) {
        for (; used[block] != 0; used[block] &= used[block] - 1)
            std::memset(mask + (block * kBits + std::countr_zero(used[block])) * kWord, 0, kWord);
    }
}

void Stroker::Blend(const PixelBuffer& target, std::uint32_t color, const std::vector<CRect>& clips) {
    for (int y = std::max(top_, 0); y <= std::min(bottom_, height_ - 1); ++y) {
        for (const CRect& clip : clips) {
            if (y >= clip.top && y < clip.bottom) BlendRow(target, color, y, clip.left, clip.right);
        }
        ClearRow(y);
    }
    top_ = height_;
    bottom_ = -1;
}

}  // namespace zel::qt
