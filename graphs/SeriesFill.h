// The outline of the area under a data series.
#pragma once

#include <zel/WorldFrame.h>

#include <span>
#include <vector>

namespace zel {

struct WorldPoint {
    double x;
    double y;
};

// The point that an extension code names for the end point `p` of a series: on an edge of the frame, at a
// corner, or `p` itself.
WorldPoint ExtensionPoint(unsigned int code, const WorldFrame& frame, const WorldPoint& p);

// Whether the code is one that moves the end.
inline bool IsExtension(unsigned int code) {
    return code >= 1 && code <= 8;
}

// A ring in world coordinates: the start extension, the finite points, the end extension, the frame's corners
// between the sides of the two, and the first point again.
struct FillOutline {
    std::vector<double> x;
    std::vector<double> y;
};
FillOutline OutlineOfFill(const WorldFrame& frame, std::span<const double> x, std::span<const double> y,
                          unsigned int start, unsigned int end);

}  // namespace zel
