// Long lines without what nobody can see.
#pragma once

#include <zel/platform/Geometry.h>

#include <vector>

namespace zel::qt {

// Of consecutive points with the same x, keeps the first, the lowest, the highest and the last, in the order
// in which they come: the line passes over exactly the same places. A curve of millions of points becomes at
// most four points for each unit of width.
void ThinRuns(std::vector<CPoint>& points);

}  // namespace zel::qt
