#include "backends/qt/Stroker.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace zel::qt {
namespace {

// Cuts a segment to a box; false when nothing is left.
bool ClipTo(PointF& a, PointF& b, double left, double top, double right, double bottom) {
    double begin = 0, end = 1;
    const double dx = b.x - a.x, dy = b.y - a.y;
    const auto cut = [&](double p, double q) {
        if (p == 0) return q >= 0;
        const double t = q / p;
        if (p < 0) begin = std::max(begin, t);
        else end = std::min(end, t);
        return begin <= end;
    };
    if (!cut(-dx, a.x - left) || !cut(dx, right - a.x) || !cut(-dy, a.y - top) || !cut(dy, bottom - a.y)) return false;
    const PointF start = a;
    if (end < 1) b = {start.x + end * dx, start.y + end * dy};
    if (begin > 0) a = {start.x + begin * dx, start.y + begin * dy};
    return true;
}

}  // namespace

Stroker::Stroker(int width, int height)
    : width_(width), height_(height), mask_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
      rows_(static_cast<std::size_t>(height), RowSpan{width, -1}), top_(height), bottom_(-1) {}

void Stroker::Touch(int row, int first, int last) {
    RowSpan& span = rows_[static_cast<std::size_t>(row)];
    span.first = std::min(span.first, first);
    span.last = std::max(span.last, last);
}

void Stroker::Add(PointF a, PointF b, double halfWidth) {
    const double reach = halfWidth + 1;
    if (!ClipTo(a, b, -reach, -reach, width_ + reach, height_ + reach)) return;
    if (std::fabs(b.y - a.y) >= std::fabs(b.x - a.x)) {
        AddAlong<true>(a, b, halfWidth);
    } else {
        AddAlong<false>(a, b, halfWidth);
    }
}

namespace {

constexpr int kLanes = 4;  // pixels computed at once

// A segment and the distance of points from it.
struct Segment {
    float x, y, dx, dy, inverseSquare;

    Segment(const PointF& a, const PointF& b)
        : x(static_cast<float>(a.x)), y(static_cast<float>(a.y)), dx(static_cast<float>(b.x - a.x)),
          dy(static_cast<float>(b.y - a.y)) {
        const float square = dx * dx + dy * dy;
        inverseSquare = square > 0 ? 1 / square : 0;
    }
    float DistanceOf(float px, float py) const {
        const float rx = px - x, ry = py - y;
        const float t = std::min(std::max((rx * dx + ry * dy) * inverseSquare, 0.0F), 1.0F);
        const float ex = rx - t * dx, ey = ry - t * dy;
        return std::sqrt(ex * ex + ey * ey);
    }
};

}  // namespace

// Walks along the longer axis (y when steep). "Major" is along it, "minor" across.
template <bool kSteep>
void Stroker::AddAlong(PointF a, PointF b, double halfWidth) {
    const auto major = [](const PointF& p) { return kSteep ? p.y : p.x; };
    const auto minor = [](const PointF& p) { return kSteep ? p.x : p.y; };
    if (major(a) > major(b)) std::swap(a, b);
    const double dMajor = major(b) - major(a);
    const double dMinor = minor(b) - minor(a);
    const double slope = dMajor > 0 ? dMinor / dMajor : 0;
    const double reach = halfWidth + 0.5;
    const double acrossReach = reach * std::sqrt(1 + slope * slope);
    const int majorEnd = (kSteep ? height_ : width_) - 1;
    const int minorEnd = (kSteep ? width_ : height_) - 1;
    const int first = std::max(0, static_cast<int>(std::floor(major(a) - reach)));
    const int last = std::min(majorEnd, static_cast<int>(std::floor(major(b) + reach)));
    const double minorLow = std::max(std::min(minor(a), minor(b)) - reach, 0.0);
    const double minorHigh = std::min(std::max(minor(a), minor(b)) + reach, static_cast<double>(minorEnd));
    if (minorHigh < minorLow) return;
    const Segment segment(a, b);
    const auto reachF = static_cast<float>(reach);
    const std::ptrdiff_t stride = kSteep ? 1 : width_;
    double axis = minor(a) + (first + 0.5 - major(a)) * slope;
    for (int i = first; i <= last; ++i, axis += slope) {
        const int low = static_cast<int>(std::max(axis - acrossReach, minorLow));
        const int high = static_cast<int>(std::min(axis + acrossReach, minorHigh));
        if (low > high) continue;
        std::uint8_t* at = mask_.data() + (kSteep ? static_cast<std::ptrdiff_t>(i) * width_ + low
                                                  : static_cast<std::ptrdiff_t>(low) * width_ + i);
        for (int k = low; k <= high; k += kLanes, at += kLanes * stride) {
            int coverage[kLanes];
            for (int lane = 0; lane < kLanes; ++lane) {
                const float across = static_cast<float>(k + lane) + 0.5F, along = static_cast<float>(i) + 0.5F;
                const float part = reachF - segment.DistanceOf(kSteep ? across : along, kSteep ? along : across);
                coverage[lane] = static_cast<int>(std::min(std::max(part, 0.0F), 1.0F) * 255.0F + 0.5F);
            }
            const int lanes = std::min(kLanes, high - k + 1);
            for (int lane = 0; lane < lanes; ++lane) {
                std::uint8_t& byte = at[lane * stride];
                byte = static_cast<std::uint8_t>(std::max<int>(byte, coverage[lane]));
            }
        }
        if (kSteep) {
            Touch(i, low, high);
        } else {
            for (int k = low; k <= high; ++k) Touch(k, i, i);
        }
    }
    const int rowLow = kSteep ? first : static_cast<int>(minorLow);
    const int rowHigh = kSteep ? last : static_cast<int>(minorHigh);
    top_ = std::min(top_, rowLow);
    bottom_ = std::max(bottom_, rowHigh);
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

namespace {

// Whether the next eight bytes are there and all 0: most of a row is, between the strands of a curve.
bool IsBare(const std::uint8_t* mask, int left) {
    std::uint64_t eight = 0;
    if (left < static_cast<int>(sizeof eight)) return false;
    std::memcpy(&eight, mask, sizeof eight);
    return eight == 0;
}

}  // namespace

void Stroker::Blend(const PixelBuffer& target, std::uint32_t color, const std::vector<CRect>& clips) {
    for (int y = std::max(top_, 0); y <= std::min(bottom_, height_ - 1); ++y) {
        RowSpan& span = rows_[static_cast<std::size_t>(y)];
        if (span.first > span.last) continue;
        const std::size_t row = static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
        for (const CRect& clip : clips) {
            if (y < clip.top || y >= clip.bottom) continue;
            const int begin = std::max<int>(span.first, clip.left);
            const int end = std::min<int>(span.last + 1, clip.right);
            for (int x = begin; x < end; ++x) {
                if (IsBare(&mask_[row + static_cast<std::size_t>(x)], end - x)) {
                    x += static_cast<int>(sizeof(std::uint64_t)) - 1;
                    continue;
                }
                const std::uint32_t alpha = mask_[row + static_cast<std::size_t>(x)];
                std::uint32_t& pixel = target.pixels[row + static_cast<std::size_t>(x)];
                if (alpha == 255) pixel = color;
                else if (alpha != 0) pixel = Mix(color, pixel, alpha);
            }
        }
        std::fill(mask_.begin() + static_cast<std::ptrdiff_t>(row) + span.first,
                  mask_.begin() + static_cast<std::ptrdiff_t>(row) + span.last + 1, std::uint8_t{0});
        span = {width_, -1};
    }
    top_ = height_;
    bottom_ = -1;
}

}  // namespace zel::qt
