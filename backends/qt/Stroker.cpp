#include "backends/qt/Stroker.h"

#include <algorithm>
#include <cmath>
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

std::uint8_t ToByte(double coverage) {
    return static_cast<std::uint8_t>(std::clamp(coverage, 0.0, 1.0) * 255.0 + 0.5);
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

// Walks along the longer axis (y when steep). "Major" is along it, "minor" across.
template <bool kSteep>
void Stroker::AddAlong(PointF a, PointF b, double halfWidth) {
    const auto major = [](const PointF& p) { return kSteep ? p.y : p.x; };
    const auto minor = [](const PointF& p) { return kSteep ? p.x : p.y; };
    if (major(a) > major(b)) std::swap(a, b);
    const double dMajor = major(b) - major(a);
    const double dMinor = minor(b) - minor(a);
    const double length = std::sqrt(dMajor * dMajor + dMinor * dMinor);
    const double slope = dMajor > 0 ? dMinor / dMajor : 0;
    const double cosine = length > 0 ? dMajor / length : 1;
    const double reach = halfWidth + 0.5;
    const double acrossReach = reach / cosine;
    const int majorEnd = (kSteep ? height_ : width_) - 1;
    const int minorEnd = (kSteep ? width_ : height_) - 1;
    const int first = std::max(0, static_cast<int>(std::floor(major(a) - reach)));
    const int last = std::min(majorEnd, static_cast<int>(std::floor(major(b) + reach)));
    const double minorLow = std::min(minor(a), minor(b)) - reach;
    const double minorHigh = std::max(minor(a), minor(b)) + reach;
    for (int i = first; i <= last; ++i) {
        const double centre = i + 0.5;
        const double axis = minor(a) + (centre - major(a)) * slope;
        // Where the segment ends nearby, distances are those from its end points.
        const bool nearEnd = centre < major(a) + reach || centre > major(b) - reach;
        const int low = std::max(0, static_cast<int>(std::floor(std::max(axis - acrossReach, minorLow))));
        const int high = std::min(minorEnd, static_cast<int>(std::floor(std::min(axis + acrossReach, minorHigh))));
        if (low > high) continue;
        for (int k = low; k <= high; ++k) {
            const double across = k + 0.5;
            double distance = std::fabs(across - axis) * cosine;
            if (nearEnd) {
                const double along = (centre - major(a)) * dMajor + (across - minor(a)) * dMinor;
                if (along < 0) {
                    distance = std::hypot(centre - major(a), across - minor(a));
                } else if (along > length * length) {
                    distance = std::hypot(centre - major(b), across - minor(b));
                }
            }
            const double coverage = reach - distance;
            if (coverage <= 0) continue;
            const std::size_t at = kSteep ? static_cast<std::size_t>(i) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(k)
                                          : static_cast<std::size_t>(k) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(i);
            mask_[at] = std::max(mask_[at], ToByte(coverage));
            if (!kSteep) Touch(k, i, i);
        }
        if (kSteep) Touch(i, low, high);
    }
    const int rowLow = kSteep ? first : std::max(0, static_cast<int>(std::floor(minorLow)));
    const int rowHigh = kSteep ? last : std::min(height_ - 1, static_cast<int>(std::floor(minorHigh)));
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
