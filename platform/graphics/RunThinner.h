// Long lines without what nobody can see.
#pragma once

#include <zel/platform/Geometry.h>

#include <vector>

namespace zel {

// Of consecutive points in one column, `width` units wide, keeps the first, the lowest, the highest and the
// last, in the order in which they come: in columns of one unit the line passes over exactly the same places.
// A curve of millions of points becomes at most four points for each column.
void ThinRuns(std::vector<CPoint>& points, int width = 1);

}  // namespace zel
