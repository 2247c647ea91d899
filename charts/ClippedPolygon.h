// Polygons cut by the plot area.
#pragma once

#include <zel/WorldFrame.h>

#include <vector>

namespace zel {

// A closed polygon in the world coordinates of a frame, cut by the frame's limits one after another
// (I. Sutherland and G. Hodgman, "Reentrant Polygon Clipping", 1974).
class ClippedPolygon {
  public:
    explicit ClippedPolygon(const WorldFrame& frame) : frame_(frame) {}
    void Add(double x, double y) { points_.push_back({x, y}); }
    // Logical units; the first corner is repeated at the end. Empty when nothing is left.
    std::vector<CPoint> Corners() const;

  private:
    struct Point {
        double x, y;
    };
    const WorldFrame& frame_;
    std::vector<Point> points_;
};

}  // namespace zel
