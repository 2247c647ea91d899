// Where everything in a chart stands. World units from the chart's origin, its lower left corner, y upwards.
#pragma once

#include <zel/ChartOptions.h>
#include <zel/ColorKey.h>
#include <zel/Scale.h>
#include <zel/platform/Geometry.h>

#include <string>
#include <vector>

class Zel2Chart;
class Zel2Layer;

namespace zel {

struct Box {
    int left = 0, bottom = 0, right = 0, top = 0;
    int Width() const { return right - left; }
    int Height() const { return top - bottom; }
    bool Contains(int x, int y) const { return x >= left && x <= right && y >= bottom && y <= top; }
};

// A line of text.
struct PlacedText {
    std::string text;
    int font = -1;       // index in the drawing
    CPoint at;           // the point that `flags` refers to
    unsigned flags = 0;  // DT_CENTER, DT_RIGHT, DT_VCENTER, DT_BOTTOM
    int angle = 0;       // tenths of a degree
    Box box;             // what it covers
};

struct PlacedAxis {
    int index = -1;  // among those of the chart; -1 for one of a bar of colours
    Side side = Side::BOTTOM;
    Scale scale;
    Ticks ticks;
    int offset = 0;     // of its line from the plot area, outwards
    int thickness = 0;  // from its line to the outer end of its texts
    bool drawn = true;
    std::vector<PlacedText> texts;
};

// The colours of a layer, with an axis at their right.
struct PlacedColorBar {
    const ColorKey* key = nullptr;
    PlacedAxis axis;
    Box box;
};

struct LegendEntry {
    Zel2Layer* layer = nullptr;  // null for the note that some are left out
    int part = -1;               // of the layer's further lines; -1 for its name
    Box key;
    Box whole;
    PlacedText name;
};

// Distances of a plot area from the edges of its chart.
struct PlotMargins {
    int left = 0, bottom = 0, right = 0, top = 0;
    bool operator==(const PlotMargins&) const = default;
};

struct ChartLayout {
    CSize size;
    Box plot;
    std::vector<PlacedAxis> axes;  // as many as the chart has, in its order
    std::vector<PlacedColorBar> colorBars;
    std::vector<PlacedText> texts;  // titles and caption
    std::vector<LegendEntry> legend;
    Box legendBox;
    bool legendInside = false;
    std::vector<std::string> notes;

    PlotMargins Margins() const { return {plot.left, plot.bottom, size.cx - plot.right, size.cy - plot.top}; }
};

// The indexes of the fonts of a chart.
struct ChartFonts {
    int title, subtitle, caption, text, axisTitle;
};

}  // namespace zel
