// How charts and their parts look: options with names and good defaults. Lengths are millimetres where they
// are of the page, points (1/72 inch) where they are of lines, marks and letters.
#pragma once

#include <zel/Scale.h>
#include <zel/ToolOptions.h>
#include <zel/platform/Geometry.h>

#include <optional>
#include <string>
#include <vector>

namespace zel {

enum class Side : int { BOTTOM = 0, LEFT = 1, TOP = 2, RIGHT = 3 };
enum class Step : int {
    NONE = 0,
    AFTER = 1,   // keeps a value until the next x
    BEFORE = 2,  // takes the value of the next x at once
    MIDDLE = 3
};
enum class LegendPlace : int {
    AUTOMATIC = 0,  // above, where a few rows are enough, else at the right; none for a single name
    RIGHT = 1,
    BELOW = 2,
    ABOVE = 3,
    INSIDE = 4,  // in the corner where the fewest points are
    NONE = 5
};

// Width and height in millimetres.
struct SizeMm {
    double width = 160;
    double height = 100;
};

struct ChartOptions {
    std::string title{}, subtitle{}, caption{};
    SizeMm size{};
    LegendPlace legend = LegendPlace::AUTOMATIC;
    // The base size of the letters, in points; titles are larger.
    double fontSize = 9;
    std::string fontFace = "Arial";
};

// What layers have in common.
struct LayerOptions {
    std::string name{};            // in the legend; empty: the name of the y column, if it has one
    std::optional<Color> color{};  // the next entry of the palette without
    double opacity = 1;            // from 0, nothing is seen, to 1
    int xAxis = 0;                 // indexes into the chart's axes: see Zel2Chart::AddAxis
    int yAxis = 1;
};

struct LineOptions : LayerOptions {
    double width = 1.2;  // points
    Dash dash = Dash::SOLID;
    Step step = Step::NONE;
};

struct AreaOptions : LayerOptions {
    // The area reaches to this value, or to the nearer end of a scale that has no place for it.
    double baseline = 0;
    // Begins where the area before it, of those that stand on each other, ends.
    bool stacked = false;
};

struct PointOptions : LayerOptions {
    double size = 5;                    // points
    std::optional<SymbolKind> shape{};  // that of the palette entry without
};

}  // namespace zel
