#include "graphs/SeriesFill.h"

#include <algorithm>
#include <cmath>

namespace zel {
namespace {

// The side on which each extension ends: 0 bottom, 1 left, 2 top, 3 right. A side is also the number of its
// first corner when the corners are counted clockwise from the lower left.
constexpr int kSideOfExtension[] = {0, 2, 1, 0, 3, 1, 0, 2, 0};

WorldPoint Corner(const WorldFrame& frame, int number) {
    return {number < 2 ? frame.xmin : frame.xmax, number == 0 || number == 3 ? frame.ymin : frame.ymax};
}

class Outline {
  public:
    explicit Outline(std::size_t room) {
        fill_.x.reserve(room);
        fill_.y.reserve(room);
    }
    void Add(const WorldPoint& p) {
        fill_.x.push_back(p.x);
        fill_.y.push_back(p.y);
    }
    void Close() {
        if (fill_.x.empty() || (fill_.x.front() == fill_.x.back() && fill_.y.front() == fill_.y.back()))
            return;
        Add({fill_.x.front(), fill_.y.front()});
    }
    FillOutline Take() { return std::move(fill_); }

  private:
    FillOutline fill_;
};

}  // namespace

WorldPoint ExtensionPoint(unsigned int code, const WorldFrame& frame, const WorldPoint& p) {
    switch (code) {
        case 1:
            return {p.x, frame.ymax};
        case 2:
            return {frame.xmin, p.y};
        case 3:
            return {p.x, frame.ymin};
        case 4:
            return {frame.xmax, p.y};
        case 5:
            return {frame.xmin, frame.ymax};
        case 6:
            return {frame.xmin, frame.ymin};
        case 7:
            return {frame.xmax, frame.ymax};
        case 8:
            return {frame.xmax, frame.ymin};
        default:
            return p;
    }
}

FillOutline OutlineOfFill(const WorldFrame& frame, std::span<const double> x, std::span<const double> y,
                          unsigned int start, unsigned int end) {
    const std::size_t n = std::min(x.size(), y.size());
    Outline outline(n + 10);
    WorldPoint last{};
    bool any = false;
    for (std::size_t i = 0; i < n; ++i) {
        const WorldPoint p{x[i], y[i]};
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) continue;
        if (!any && IsExtension(start)) outline.Add(ExtensionPoint(start, frame, p));
        outline.Add(p);
        last = p;
        any = true;
    }
    if (!any) return {};
    if (IsExtension(end)) outline.Add(ExtensionPoint(end, frame, last));
    if (IsExtension(start) && IsExtension(end)) {
        const int stop = kSideOfExtension[start];
        for (int corner = kSideOfExtension[end]; corner != stop; corner = (corner + 1) % 4) {
            outline.Add(Corner(frame, corner));
        }
    }
    outline.Close();
    return outline.Take();
}

}  // namespace zel
