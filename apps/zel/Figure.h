// A figure of one chart.
#pragma once

#include <zel/zel.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zel::cli {

struct Series {
    std::string name;
    zel::Column x, y;
    // Has the points instead of `x` and `y` when they come from a database.
    std::shared_ptr<Zel2DaoPointSet> source{};
    // What else there is to say about each point; without rows where nothing is.
    zel::Column error{}, color{}, size{};
};

// What is drawn of a series.
enum class FigureKind {
    LINES,      // and what else FigureOptions says of lines, areas and marks
    BARS,       // at x
    HISTOGRAM,  // of y
    BOX,        // of the y of each x
    HEAT        // a cell at each x and y, in the colour of its value
};

struct FigureOptions {
    std::string title;
    std::string xTitle;
    std::string yTitle;
    std::optional<std::pair<double, double>> xRange;  // automatic without
    std::optional<std::pair<double, double>> yRange;
    double width = 160;  // millimetres
    double height = 100;
    FigureKind kind = FigureKind::LINES;
    bool line = true;
    bool fill = false;
    bool symbols = false;
    bool stack = false;  // bars on each other
    int bins = 0;        // of histograms; 0: by a rule
    bool logX = false, logY = false;
};

// A drawing with exact rules. Throws Error when no series has a point to draw.
std::unique_ptr<Zel2Main> MakeFigure(const std::vector<Series>& series, const FigureOptions& options);

}  // namespace zel::cli
