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
    std::shared_ptr<Zel2DaoPointSet> source;
};

struct FigureOptions {
    std::string title;
    std::string xTitle;
    std::string yTitle;
    std::optional<std::pair<double, double>> xRange;  // automatic without
    std::optional<std::pair<double, double>> yRange;
    double width = 160;  // millimetres
    double height = 100;
    bool line = true;
    bool fill = false;
    bool symbols = false;
};

// A drawing with exact rules. Throws Error when no series has a point to draw.
std::unique_ptr<Zel2Main> MakeFigure(const std::vector<Series>& series, const FigureOptions& options);

}  // namespace zel::cli
