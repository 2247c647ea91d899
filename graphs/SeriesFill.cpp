#include "graphs/SeriesFill.h"

namespace zel {
namespace {

// The side on which each extension ends: 0 bottom, 1 left, 2 top, 3 right. A side is also the number of its
// first corner when the corners are counted clockwise from the lower left.
constexpr int kSideOfExtension[] = {0, 2, 1, 0, 3, 1, 0, 2, 0};

WorldPoint CornerOf(const WorldFrame& frame, int number) {
    return {number < 2 ? frame.xmin : frame.xmax, number == 0 || number == 3 ? frame.ymin : frame.ymax};
}

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

void FillOutline::Close() {
    path_.Finish();
    if (!path_.HasPoints()) return;
    if (IsExtension(start_)) Corner(ExtensionPoint(start_, frame_, path_.First()));
    x.insert(x.end(), path_.x.begin(), path_.x.end());
    y.insert(y.end(), path_.y.begin(), path_.y.end());
    if (IsExtension(end_)) Corner(ExtensionPoint(end_, frame_, path_.Last()));
    if (IsExtension(start_) && IsExtension(end_)) {
        const int stop = kSideOfExtension[start_];
        for (int corner = kSideOfExtension[end_]; corner != stop; corner = (corner + 1) % 4)
            Corner(CornerOf(frame_, corner));
    }
    if (x.front() != x.back() || y.front() != y.back()) Corner({x.front(), y.front()});
}

}  // namespace zel
