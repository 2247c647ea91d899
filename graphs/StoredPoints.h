// Points in archives.
#pragma once

#include <zel/SeriesPoints.h>

#include <span>

class CArchive;

namespace zel {

// Writes what a Zel2PointArray with these points would. Throws CArchiveException* when the archive loads:
// series without memory of their own have no place for what would come.
void StorePoints(CArchive& ar, std::span<const SeriesStretch> stretches);

}  // namespace zel
