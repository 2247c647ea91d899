// How charts and their parts look: options with names and good defaults. Lengths are millimetres where they
// are of the page, points (1/72 inch) where they are of lines, marks and letters.
#pragma once

#include <zel/ColorMap.h>
#include <zel/Column.h>
#include <zel/Scale.h>
#include <zel/Statistics.h>
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

enum class Stacking : int {
    NONE = 0,    // beside the bars of other layers
    VALUES = 1,  // on the bars of the layers before it
    SHARES = 2   // the same, as shares of all of the stack: to 100 %
};
enum class BinMeasure : int {
    COUNT = 0,   // how many, or the sum of their weights
    SHARE = 1,   // of all: the bins add up to 1
    DENSITY = 2  // share by width: the areas add up to 1
};

// How colours are spread over values. Stored in documents by number.
enum class ColorSpread : int {
    LINEAR = 0,
    LOGARITHM = 1,  // values that are not above 0 have no colour
    QUANTILES = 2,  // each colour for as many values
    CENTRED = 3     // linear, with the middle of the map at `centre`
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

struct BarOptions : LayerOptions {
    // Positions are along the y axis, bars reach along x.
    bool horizontal = false;
    Stacking stacking = Stacking::NONE;
    // Layers of the same group stand on each other when they stack, else in front of each other; groups stand
    // beside each other.
    std::string group{};
    // Where bars begin that neither stack nor float; the nearer end of a scale that has no place for it.
    double baseline = 0;
    // How much of the room of a position its bars take together, from 0 to 1: then neighbours touch.
    double width = 0.8;
    // Writes the value of each bar at its end, in stacks into it. A label for which there is no room is left
    // out.
    bool labels = false;
    NumberFormat labelFormat{};
};

struct HistogramOptions : LayerOptions {
    // Each value weighs as much as its row says; 1 without.
    Column weights{};
    bool horizontal = false;
    // The first of these that is given: edges (ascending; of times seconds since 1970), a width, a number of
    // bins, else the rule.
    std::vector<double> edges{};
    double binWidth = 0;
    int bins = 0;
    BinRule rule = BinRule::FREEDMAN_DIACONIS;
    BinMeasure measure = BinMeasure::COUNT;
};

struct ErrorOptions : LayerOptions {
    // The distances are along x.
    bool horizontal = false;
    double lineWidth = 0.8;  // points
    double cap = 5;          // the length of the caps, points; 0 for none
    // The name of a layer of bars on which they stand, in the same place beside others.
    std::string bars{};
};

struct BoxOptions : LayerOptions {
    bool horizontal = false;
    double width = 0.6;  // of the room of a position, from 0 to 1
    // How long whiskers may be, in interquartile ranges; what lies beyond is an outlier.
    double reach = 1.5;
    bool notches = false;  // where medians differ: see zel::BoxSummary
    bool outliers = true;
    double markSize = 3;  // of outliers, points
};

// `color` is that of candles that close no lower than they open.
struct CandleOptions : LayerOptions {
    std::optional<Color> falling{};  // the vermilion of the palette without
    double width = 0.7;              // of the distance between candles, from 0 to 1
};

struct ColorOptions {
    ColorScheme scheme = ColorScheme::VIRIDIS;
    bool reversed = false;
    ColorSpread spread = ColorSpread::LINEAR;
    // The ends, as in the data where they are not given. Values beyond have the colours of the ends.
    std::optional<double> from{}, to{};
    double centre = 0;
    // A bar of the colours with an axis, at the right of the chart.
    bool bar = true;
    std::string title{}, unit{};  // of the bar's axis
    NumberFormat format{};
};

struct HeatMapOptions : LayerOptions {
    ColorOptions colors{};
    // The columns of x and y have the edges of the cells, one more than there are cells, instead of the
    // middles.
    bool edges = false;
};

struct PointOptions : LayerOptions {
    double size = 5;                    // points
    std::optional<SymbolKind> shape{};  // that of the palette entry without
};

// Points with a size and a colour of their own.
struct BubbleOptions : LayerOptions {
    // The area of a mark is in proportion to its value; without, all have `size`.
    Column sizes{};
    // Numbers have the colours of the map, texts those of the palette in order of appearance; without, all
    // have `color`.
    Column colors{};
    double size = 5;  // the diameter of the marks, or of the largest one, points
    ColorOptions colorMap{};
};

struct DensityOptions : LayerOptions {
    ColorScheme scheme = ColorScheme::VIRIDIS;
    bool reversed = false;
};

struct TextOptions : LayerOptions {
    double distance = 4;  // from the point to its text, points
};

// Reference lines, spans and notes are dark grey without a colour of their own.
struct RuleOptions : LayerOptions {
    std::string label{};  // at the end of the line
    double width = 0.8;   // points
    Dash dash = Dash::DASHED;
    bool inRange = true;  // whether the range of the axis contains the value
};

struct SpanOptions : LayerOptions {
    double tint = 0.15;  // how much of the opacity the span has, from 0 to 1
};

struct NoteOptions : LayerOptions {
    double dx = 0, dy = 0;  // of the text from its place, millimetres to the right and upwards
    bool arrow = true;      // from a text that was moved to its place
};

}  // namespace zel
