// The line of a series, drawn as what can be seen of it.
#pragma once

#include "tools/DashWalker.h"
#include "tools/SeriesIndex.h"

#include <zel/WorldFrame.h>

// Draws `n` lines in graph coordinates from a pen's last world point on.
//
// Stretches of points beyond one side of the frame are passed over whatever the device: no line between them
// comes into the frame. On a device that says that lines within a column count only by their first, lowest,
// highest and last point (GraphicsDevice::CurveColumn), stretches that stay within a column are drawn as
// those; solid lines are then drawn without the walk of dashes, which would only cut them at every 3.2
// metres.
class DrawPen::SeriesLine {
  public:
    SeriesLine(DrawPen& pen, CDC& dc, const WorldFrame& frame, const double* x, const double* y,
               std::size_t n);

    // `index` may be null.
    void Draw(const zel::SeriesIndex* index);

  private:
    bool IsStepped() const;
    void DrawBlocks(std::size_t begin, std::size_t end);
    void DrawNode(const zel::SeriesIndex& index, std::size_t level, std::size_t node);
    bool DrawWhole(const zel::SeriesSpan& span, std::size_t begin, std::size_t end);
    void DrawPoints(std::size_t begin, std::size_t end);
    bool IsBeyond(const zel::SeriesSpan& span) const;
    bool IsInside(const zel::SeriesSpan& span) const;
    int ColumnOf(double x) const;

    DrawPen& pen_;
    CDC& dc_;
    const WorldFrame& frame_;
    const double* x_;
    const double* y_;
    std::size_t n_;
    int column_ = 0;  // device units; 0 when each point counts
    DashWalker walker_;
};
