// Where everything in a chart stands. World units from the chart's origin, its lower left corner, y upwards.
#pragma once

#include <zel/ChartOptions.h>
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
    int index = 0;
    Side side = Side::BOTTOM;
    Scale scale;
    Ticks ticks;
    int offset = 0;     // of its line from the plot area, outwards
    int thickness = 0;  // from its line to the outer end of its texts
    bool drawn = true;
    std::vector<PlacedText> texts;
};

struct LegendEntry {
    Zel2Layer* layer = nullptr;  // null for the note that some are left out
    Box key;
    Box whole;
    PlacedText name;
};

struct ChartLayout {
    CSize size;
    Box plot;
    std::vector<PlacedAxis> axes;   // as many as the chart has, in its order
    std::vector<PlacedText> texts;  // titles and caption
    std::vector<LegendEntry> legend;
    Box legendBox;
    bool legendInside = false;
    std::vector<std::string> notes;
};

// The indexes of the fonts of a chart.
struct ChartFonts {
    int title, subtitle, caption, text, axisTitle;
};

}  // namespace zel
