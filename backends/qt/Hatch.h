// Hatch brushes.
#pragma once

#include <zel/platform/GraphicsDevice.h>

#include <QBrush>

namespace zel::qt {

// The brush of a record on a surface of pixels: solid, none, or the platform's 8 x 8 hatch patterns with bare
// cells in the background colour when the background mode is opaque.
QBrush BrushOf(const GraphicsState& state, const LOGBRUSH& brush);

// The lines of a hatch over a box in device units, for outputs where a pattern of pixels makes no sense.
std::vector<QLineF> HatchLines(int hatch, const QRectF& box, double spacing);

}  // namespace zel::qt
