// Finds places for everything in a chart.
#pragma once

#include "charts/ChartLayout.h"
#include "charts/LegendLayout.h"
#include "charts/TextRuler.h"

#include <zel/Zel2Chart.h>

namespace zel {

// Lays a chart out from outside in: titles and caption, legend, axes; the plot area is what is left. What an
// axis takes depends on its labels, which depend on its length, so axes and plot area are made anew until
// they agree. Where the plot area would be too small, parts are left out one after another and noted.
class ChartLayouter {
  public:
    // `scales` for the axes of the chart, in their order; `notes` are handed on.
    ChartLayouter(Zel2Chart& chart, const ChartFonts& fonts, std::vector<Scale> scales,
                  std::vector<std::string> notes);

    // With a plot area at least so far from the edges of the chart: as far as in charts that it is aligned
    // with.
    ChartLayout Run(const PlotMargins& least = {});

  private:
    // Parts that are left out, one more at each level.
    enum Level { ALL, NO_CAPTION, SHORT_LEGEND, NO_SUBTITLE, NO_LEGEND, NO_AXIS_TITLES, NO_TITLE, NO_AXES };

    // An axis before it has its place.
    struct Measured {
        bool turned = false;                 // labels run along the other direction
        bool wrapped = false;                // labels are broken into lines
        int labels = 0;                      // how far labels reach outwards, without contexts
        int contexts = 0;                    // the height of the second line
        int beforeStart = 0, behindEnd = 0;  // how far labels reach beyond the ends of the axis
        std::vector<std::string> titleLines;
        double longest = 0;  // labels are shortened to this width
    };

    void LayOut(int level, const PlotMargins& least);
    void PlaceTitles(int level);
    void PlaceBlock(const std::vector<std::string>& lines, const TextRuler& ruler, int font);
    void PlaceLegend(int level);
    void TakeLegend(const LegendLayout& legend);
    void MoveLegend(int dx, int dy);
    void MoveLegendInside();
    void FitAxes(int level, const PlotMargins& fromEdges);
    void MeasureAxis(const ChartAxis& source, PlacedAxis& axis, Measured& measured, int level);
    void MeasureHorizontal(const ChartAxis& source, PlacedAxis& axis, Measured& measured);
    void MeasureNames(PlacedAxis& axis, Measured& measured, TickRoom room);
    void MeasureVertical(const ChartAxis& source, PlacedAxis& axis, Measured& measured);
    void FindColorBars(int level);
    PlotMargins MarginsOfAxes();
    void PlaceLabels(PlacedAxis& axis, const Measured& measured);
    void PlaceAxisTitle(PlacedAxis& axis, const Measured& measured);
    PlacedText Placed(const TextRuler& ruler, int font, const std::string& text, CPoint at, unsigned flags,
                      int angle = 0) const;
    int LabelDistance() const;
    bool IsTooSmall() const;

    Zel2Chart& chart_;
    const ChartFonts fonts_;
    std::vector<Scale> scales_;
    std::vector<std::string> givenNotes_;
    TextRuler title_, subtitle_, caption_, text_, axisTitle_;
    ChartLayout layout_;
    std::vector<Measured> measured_, measuredBars_;
    Box inner_;  // what is left for axes and plot area
    int titleLeft_ = 0;
};

}  // namespace zel
