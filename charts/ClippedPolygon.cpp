#include "charts/ClippedPolygon.h"

namespace zel {

std::vector<CPoint> ClippedPolygon::Corners() const {
    std::vector<Point> points = points_, cut;
    // The side of a limit that a point lies on, and the limit: more than 0 is inside.
    const auto clip = [&](auto inside) {
        cut.clear();
        for (std::size_t i = 0; i < points.size(); ++i) {
            const Point& a = points[i];
            const Point& b = points[(i + 1) % points.size()];
            const double atA = inside(a), atB = inside(b);
            if (atA >= 0) cut.push_back(a);
            if ((atA >= 0) == (atB >= 0)) continue;
            const double share = atA / (atA - atB);
            cut.push_back({a.x + share * (b.x - a.x), a.y + share * (b.y - a.y)});
        }
        points.swap(cut);
    };
    clip([this](const Point& p) { return p.x - frame_.xmin; });
    clip([this](const Point& p) { return frame_.xmax - p.x; });
    clip([this](const Point& p) { return p.y - frame_.ymin; });
    clip([this](const Point& p) { return frame_.ymax - p.y; });
    std::vector<CPoint> corners;
    corners.reserve(points.size() + 1);
    for (const Point& p : points) {
        const CPoint corner = frame_.ToLogical(p.x, p.y);
        if (corners.empty() || !(corner == corners.back())) corners.push_back(corner);
    }
    if (!corners.empty()) corners.push_back(corners.front());
    return corners;
}

}  // namespace zel
