// Draws the parts of a chart that are not its data.
#pragma once

#include "charts/ChartLayout.h"

class DrawPen;

namespace zel {

// In one output pass, from a layout that was made for it.
class ChartPainter {
  public:
    ChartPainter(Zel2Chart& chart, const ChartLayout& layout);

    void DrawGround();
    void DrawGrid();
    void DrawAxes();
    void DrawColorBars();
    void DrawTitles();
    void DrawLegend();

  private:
    CPoint ToLogical(int x, int y) const;
    CRect ToLogical(const Box& box) const;
    void Line(DrawPen& pen, int x1, int y1, int x2, int y2) const;
    void DrawGridOf(const PlacedAxis& axis, const std::vector<double>& values, DrawPen* pen) const;
    void DrawAxis(const PlacedAxis& axis) const;
    void DrawTicks(const PlacedAxis& axis, bool minor, DrawPen& pen) const;
    void Write(const PlacedText& text) const;

    Zel2Chart& chart_;
    const ChartLayout& layout_;
    const CPoint origin_;
};

}  // namespace zel
