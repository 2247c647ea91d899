// Polygons cut to where they can be seen.
#pragma once

#include <QPolygonF>

namespace zel::qt {

// The part of a closed ring within `box`, by Sutherland and Hodgman's algorithm (Reentrant polygon clipping,
// 1974): parts outside may leave edges along the box, which do not change what is filled inside it.
QPolygonF ClippedTo(const QPolygonF& ring, const QRectF& box);

}  // namespace zel::qt
