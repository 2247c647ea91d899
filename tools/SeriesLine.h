// The line of a series, drawn as what can be seen of it.
#pragma once

#include "series/CurveScope.h"
#include "series/DeviceColumns.h"
#include "series/FrameClip.h"
#include "series/SeriesIndex.h"
#include "tools/DashWalker.h"

#include <zel/WorldFrame.h>

#include <optional>
#include <span>

// Draws a stretch of points from a pen's last world point on, as LineTo from point to point would be seen.
//
// Stretches of points beyond one side of the frame are passed over whatever the device: no line between them
// comes into the frame. On a device for which solid lines within a column count only by their first, lowest,
// highest and last point (GraphicsDevice::CurveColumn), points in one column are drawn as those, and lines
// without the walk of dashes, which would only cut them at every 3.2 metres. Dashed lines are drawn so in
// columns that they go up and down in so often that no gap can be told, and begin anew behind them. All other
// lines walk every point that is not beyond a side.
class DrawPen::SeriesLine {
  public:
    SeriesLine(DrawPen& pen, CDC& dc, const WorldFrame& frame);

    void Draw(std::span<const zel::SeriesStretch> stretches);

  private:
    void DrawEachPoint(const zel::SeriesStretch& stretch);
    void DrawCurve(const zel::SeriesStretch& stretch);
    bool AreStepped(std::span<const zel::SeriesStretch> stretches) const;

    bool TakeWhole(const zel::SeriesSpan& span, std::size_t begin, std::size_t end);
    void TakeEach(const zel::SeriesSpan& span, std::size_t begin, const double* x, const double* y,
                  std::size_t n);
    void AddToRun(std::size_t begin, std::size_t end, const zel::SeriesRange& range);
    void DrawRun();
    bool IsDense();
    // What is drawn next.
    void UseSolid();
    void UseDashes();
    void LineTo(double x, double y);
    void LinesTo(const double* x, const double* y, std::size_t n);
    void DashesTo(const double* x, const double* y, std::size_t n);
    void MarkCrossing(double y);

    bool IsBeyond(const zel::SeriesSpan& span) const;
    // Gaps of y apart.
    bool IsInColumns(const zel::SeriesSpan& span) const {
        return span.HasFiniteBounds() && span.xmin > frame_.Left() && span.xmax < frame_.Right();
    }
    std::size_t ColumnsOf(const zel::SeriesSpan& span) const;
    // With exact rules a line that ends on the border is not cut there.
    bool IsCut(double y) const {
        return frame_.exact ? y > top_ + slack_.y || y < bottom_ - slack_.y : y >= top_ || y <= bottom_;
    }
    double WithinBorders(double y) const { return std::max(bottom_, std::min(y, top_)); }
    bool SnapToBorder(double& y, double original) const;
    int HeightOf(double y) const { return frame_.ToLogical(frame_.xmin, y).y; }

    DrawPen& pen_;
    CDC& dc_;
    const WorldFrame& frame_;
    DashWalker walker_;
    const bool solid_;       // the pen
    const int columnWidth_;  // device units; 0 when each point counts
    zel::DeviceColumns columns_;
    const double bottom_;  // borders of the frame
    const double top_;
    const zel::FrameSlack slack_;
    int beyondTop_ = 0;  // from the upper border on, about a device unit
    bool stepped_ = false;

    const zel::SeriesStretch* stretch_ = nullptr;
    // Points in one column that are not drawn yet; none when begin and end are equal.
    struct Run {
        std::size_t begin = 0, end = 0;
        double low = 0, high = 0;
        double travel = 0;  // up and down, at least
    };
    Run run_;
    std::optional<zel::CurveScope> figure_;
};
