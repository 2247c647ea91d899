// The marks of many that can be seen in a file of vectors.
#pragma once

#include <zel/platform/GraphicsDevice.h>

#include <span>
#include <vector>

namespace zel::qt {

// Where marks (GraphicsDevice::Marks) are to be drawn, in device units and in order. They are moved to the
// nearest quarter of a pixel of a screen, which is `unitsPerPixel` wide; of marks in one place the last is
// kept, and those that lie wholly below later ones are left out.
std::vector<CPoint> SeenMarks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
                              const MarkPainter& paint, double unitsPerPixel);
// The places of all of them, as they are.
std::vector<CPoint> AllMarks(const GraphicsState& state, std::span<const CPoint> places);

}  // namespace zel::qt
