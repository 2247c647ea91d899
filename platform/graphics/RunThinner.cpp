#include "platform/graphics/RunThinner.h"

#include <algorithm>

namespace zel {

void ThinRuns(std::vector<CPoint>& points, int width) {
    const auto columnOf = [=](LONG x) { return x >= 0 ? x / width : (x + 1) / width - 1; };
    std::size_t kept = 0;
    for (std::size_t begin = 0; begin < points.size();) {
        const LONG column = columnOf(points[begin].x);
        std::size_t low = begin, high = begin, end = begin + 1;
        for (; end < points.size() && columnOf(points[end].x) == column; ++end) {
            if (points[end].y < points[low].y) low = end;
            if (points[end].y > points[high].y) high = end;
        }
        // Each index is at least as large as the number of points kept so far: none is overwritten early.
        std::size_t previous = points.size();
        for (const std::size_t i : {begin, std::min(low, high), std::max(low, high), end - 1}) {
            if (i != previous) points[kept++] = points[i];
            previous = i;
        }
        begin = end;
    }
    points.resize(kept);
}

}  // namespace zel
