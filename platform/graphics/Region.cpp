#include <zel/platform/GdiTypes.h>
#include <zel/platform/Region.h>

#include <cmath>
#include <cstdlib>
#include <numbers>
#include <utility>

namespace zel {
namespace {

struct Interval {
    LONG begin;
    LONG end;
    friend bool operator==(const Interval&, const Interval&) = default;
};
using Row = std::vector<Interval>;

// Collects rows from top to bottom and joins equal neighbours.
class BandBuilder {
  public:
    void Add(LONG top, LONG bottom, const Row& row) {
        if (row.empty() || top >= bottom) return;
        if (!rects_.empty() && rects_.back().bottom == top && row == row_) {
            for (std::size_t i = rects_.size() - row.size(); i < rects_.size(); ++i)
                rects_[i].bottom = bottom;
            return;
        }
        for (const Interval& x : row) rects_.emplace_back(x.begin, top, x.end, bottom);
        row_ = row;
    }
    std::vector<CRect> Take() { return std::move(rects_); }

  private:
    std::vector<CRect> rects_;
    Row row_;
};

bool Inside(bool a, bool b, int mode) {
    switch (mode) {
        case RGN_AND:
            return a && b;
        case RGN_OR:
            return a || b;
        case RGN_XOR:
            return a != b;
        case RGN_DIFF:
            return a && !b;
        default:
            return a;
    }
}

Row CombineRows(const Row& a, const Row& b, int mode) {
    std::vector<LONG> edges;
    for (const Row* row : {&a, &b}) {
        for (const Interval& x : *row) edges.insert(edges.end(), {x.begin, x.end});
    }
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    const auto covers = [](const Row& row, std::size_t& at, LONG x) {
        while (at < row.size() && row[at].end <= x) ++at;
        return at < row.size() && row[at].begin <= x;
    };
    Row result;
    std::size_t inA = 0, inB = 0;
    for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
        if (!Inside(covers(a, inA, edges[i]), covers(b, inB, edges[i]), mode)) continue;
        if (!result.empty() && result.back().end == edges[i]) {
            result.back().end = edges[i + 1];
        } else {
            result.push_back({edges[i], edges[i + 1]});
        }
    }
    return result;
}

// Walks a region's bands from top to bottom.
class BandReader {
  public:
    explicit BandReader(const std::vector<CRect>& rects) : rects_(rects) {}
    Row At(LONG y) {
        while (at_ < rects_.size() && rects_[at_].bottom <= y) ++at_;
        Row row;
        for (std::size_t i = at_; i < rects_.size() && rects_[i].top == rects_[at_].top && rects_[i].top <= y;
             ++i) {
            row.push_back({rects_[i].left, rects_[i].right});
        }
        return row;
    }

  private:
    const std::vector<CRect>& rects_;
    std::size_t at_ = 0;
};

struct Edge {
    double x;  // where the edge crosses the row
    int winding;
};

// Where the rings cross row `y`: at integer coordinates, the upper end of an edge belonging to it, the lower
// not.
std::vector<Edge> Crossings(std::span<const CPoint> points, std::span<const int> counts, LONG y) {
    std::vector<Edge> edges;
    std::size_t begin = 0;
    for (const int count : counts) {
        const auto n = static_cast<std::size_t>(std::max(count, 0));
        for (std::size_t i = 0; i < n; ++i) {
            const CPoint& p = points[begin + i];
            const CPoint& q = points[begin + (i + 1) % n];
            if ((p.y <= y) == (q.y <= y)) continue;
            // Divided last, so that a crossing at a whole number is exactly that: polygons on both sides of
            // an edge must agree about it.
            const double across = (static_cast<double>(y) - p.y) * (static_cast<double>(q.x) - p.x);
            edges.push_back({p.x + across / (static_cast<double>(q.y) - p.y), p.y < q.y ? 1 : -1});
        }
        begin += n;
    }
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.x < b.x; });
    return edges;
}

Row FilledRow(const std::vector<Edge>& edges, int fillMode) {
    Row row;
    int winding = 0;
    for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
        winding += fillMode == WINDING ? edges[i].winding : 1;
        const bool inside = fillMode == WINDING ? winding != 0 : winding % 2 != 0;
        const LONG left = Truncate(std::ceil(edges[i].x));
        const LONG right = Truncate(std::ceil(edges[i + 1].x));
        if (!inside || left >= right) continue;
        if (!row.empty() && row.back().end >= left) {
            row.back().end = right;
        } else {
            row.push_back({left, right});
        }
    }
    return row;
}

constexpr LONG kMostRows = 1 << 20;  // more rows than any surface has

}  // namespace

Region::Region(const CRect& rect) {
    CRect ordered(rect);
    ordered.NormalizeRect();
    if (!ordered.IsRectEmpty()) rects_.push_back(ordered);
}

Region Region::FromBands(std::vector<CRect> rects) {
    Region region;
    region.rects_ = std::move(rects);
    return region;
}

Region Region::FromPolygons(std::span<const CPoint> points, std::span<const int> counts, int fillMode) {
    Region region;
    if (points.empty()) return region;
    const auto [low, high] = std::minmax_element(points.begin(), points.end(),
                                                 [](const CPoint& a, const CPoint& b) { return a.y < b.y; });
    const LONG bottom = std::min(high->y, Add(low->y, kMostRows));
    BandBuilder bands;
    for (LONG y = low->y; y < bottom; ++y)
        bands.Add(y, y + 1, FilledRow(Crossings(points, counts, y), fillMode));
    region.rects_ = bands.Take();
    return region;
}

Region Region::FromEllipse(const CRect& rect) {
    return FromRoundRect(rect, rect.Size());
}

Region Region::FromRoundRect(const CRect& rect, const CSize& corner) {
    CRect box(rect);
    box.NormalizeRect();
    box.right = Subtract(box.right, 1);
    box.bottom = Subtract(box.bottom, 1);
    if (box.IsRectEmpty()) return {};
    const double rx = std::min(Magnitude(corner.cx), box.Width()) / 2.0;
    const double ry = std::min(Magnitude(corner.cy), box.Height()) / 2.0;
    BandBuilder bands;
    const LONG bottom = std::min(box.bottom, Add(box.top, kMostRows));
    for (LONG y = box.top; y < bottom; ++y) {
        const double middle = y + 0.5;
        const double fromTop = box.top + ry - middle;
        const double fromBottom = middle - (box.bottom - ry);
        const double above = std::max({fromTop, fromBottom, 0.0});
        const double inset = ry > 0 ? rx - rx * std::sqrt(std::max(0.0, 1 - above * above / (ry * ry))) : 0;
        const LONG cut = Truncate(std::round(inset));
        if (box.left + cut < box.right - cut) bands.Add(y, y + 1, {{box.left + cut, box.right - cut}});
    }
    Region region;
    region.rects_ = bands.Take();
    return region;
}

CRect Region::Box() const {
    CRect box;
    for (const CRect& rect : rects_) box.UnionRect(box, rect);
    return box;
}

bool Region::Contains(const CPoint& point) const {
    return std::any_of(rects_.begin(), rects_.end(), [&](const CRect& rect) { return rect.PtInRect(point); });
}

bool Region::Touches(const CRect& rect) const {
    CRect ordered(rect);
    ordered.NormalizeRect();
    CRect common;
    return std::any_of(rects_.begin(), rects_.end(),
                       [&](const CRect& own) { return common.IntersectRect(own, ordered); });
}

void Region::Offset(int dx, int dy) {
    for (CRect& rect : rects_) rect.OffsetRect(dx, dy);
}

Region Region::Combine(const Region& a, const Region& b, int mode) {
    std::vector<LONG> edges;
    for (const Region* region : {&a, &b}) {
        for (const CRect& rect : region->rects_) edges.insert(edges.end(), {rect.top, rect.bottom});
    }
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    BandReader inA(a.rects_), inB(b.rects_);
    BandBuilder bands;
    for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
        bands.Add(edges[i], edges[i + 1], CombineRows(inA.At(edges[i]), inB.At(edges[i]), mode));
    }
    Region result;
    result.rects_ = bands.Take();
    return result;
}

}  // namespace zel
