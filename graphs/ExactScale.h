// Ranges and positions of scales with exact rules.
#pragma once

#include <utility>
#include <vector>

namespace zel {

// The range itself; where it is empty, one around its value, since nothing could be mapped otherwise.
std::pair<double, double> MappableRange(double a, double b);

// Automatic positions for a scale of a type (Zel2Graph::AutoCoord) that lie within a..b (either order): with
// at most `n` intervals, or more where fewer than three positions would be left.
std::vector<double> PositionsWithin(int type, double a, double b, int n);

}  // namespace zel
