// Sets of device units: what a context may draw on.
#pragma once

#include <zel/platform/Geometry.h>

#include <span>
#include <vector>

namespace zel {

// A set of points, kept as rectangles in bands: ordered by top then left, no two of them overlap, all of one
// band share top and bottom. An empty set has no rectangles.
class Region {
  public:
    Region() = default;
    // The rectangle with its corners ordered; empty when it has no width or height.
    explicit Region(const CRect& rect);
    // From rectangles that are in bands already, as the class comment says; they are not checked.
    static Region FromBands(std::vector<CRect> rects);
    // The points that a polygon of these rings fills without an outline.
    static Region FromPolygons(std::span<const CPoint> points, std::span<const int> counts, int fillMode);
    // The ellipse inscribed in `rect`, one unit smaller at the right and bottom than the drawn ellipse.
    static Region FromEllipse(const CRect& rect);
    static Region FromRoundRect(const CRect& rect, const CSize& corner);

    bool IsEmpty() const { return rects_.empty(); }
    const std::vector<CRect>& Rects() const { return rects_; }
    // The smallest rectangle around the set; null for an empty one.
    CRect Box() const;
    bool Contains(const CPoint& point) const;
    bool Touches(const CRect& rect) const;
    void Offset(int dx, int dy);

    // Combines two sets by RGN_AND, RGN_OR, RGN_XOR or RGN_DIFF; RGN_COPY answers `a`.
    static Region Combine(const Region& a, const Region& b, int mode);

    friend bool operator==(const Region&, const Region&) = default;

  private:
    std::vector<CRect> rects_;
};

}  // namespace zel
