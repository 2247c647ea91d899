#include "apps/zel/Commands.h"
#include "apps/zel/Csv.h"
#include "apps/zel/Figure.h"

namespace zel::cli {
namespace {

struct PlotChoice {
    std::string input;
    std::string x;
    std::vector<std::string> ys;
    std::vector<double> xRange;
    std::vector<double> yRange;
    std::vector<double> size;
    bool noLine = false;
    FigureOptions figure;
    OutputChoice output;
};

std::optional<std::pair<double, double>> RangeOf(const std::vector<double>& values, const char* option) {
    if (values.empty()) return std::nullopt;
    if (!(values[0] < values[1]))
        throw Error(std::string("Cannot use ") + option + ": its first value must be below its second");
    return std::pair(values[0], values[1]);
}

void Plot(PlotChoice& choice) {
    const CsvTable table = CsvTable::Read(choice.input);
    const std::vector<double> x = table.Column(choice.x);
    std::vector<Series> series;
    for (const std::string& y : choice.ys) series.push_back({y, x, table.Column(y)});
    FigureOptions& figure = choice.figure;
    figure.line = !choice.noLine;
    figure.symbols = figure.symbols || (choice.noLine && !figure.fill);
    figure.xRange = RangeOf(choice.xRange, "--x-range");
    figure.yRange = RangeOf(choice.yRange, "--y-range");
    if (figure.xTitle.empty()) figure.xTitle = choice.x;
    if (figure.yTitle.empty() && choice.ys.size() == 1) figure.yTitle = choice.ys.front();
    if (!choice.size.empty()) {
        figure.width = choice.size[0];
        figure.height = choice.size[1];
    }
    const auto drawing = MakeFigure(series, figure);
    choice.output.Write(*drawing, figure.title);
}

}  // namespace

void AddPlotCommand(CLI::App& app) {
    CLI::App* command = app.add_subcommand("plot", "Draw columns of a CSV file as a graph");
    auto choice = std::make_shared<PlotChoice>();
    command->add_option("data", choice->input, "CSV file; its first row names the columns")->required();
    command
        ->add_option("--x", choice->x,
                     "Column of the x values, by name or number; dates become decimal years")
        ->required();
    command->add_option("--y", choice->ys, "Column of y values; repeat it for several series")
        ->required()
        ->take_all();
    command->add_flag("--no-line", choice->noLine, "Do not connect the points");
    command->add_flag("--fill", choice->figure.fill, "Fill the area between a series and the bottom edge");
    command->add_flag("--symbols", choice->figure.symbols, "Draw a symbol at each point");
    command->add_option("--title", choice->figure.title, "Title of the graph");
    command->add_option("--x-title", choice->figure.xTitle,
                        "Title of the x axis (default: the column's name)");
    command->add_option("--y-title", choice->figure.yTitle, "Title of the y axis");
    command->add_option("--x-range", choice->xRange, "Ends of the x axis (default: from the data)")
        ->expected(2);
    command->add_option("--y-range", choice->yRange, "Ends of the y axis (default: from the data)")
        ->expected(2);
    command->add_option("--size", choice->size, "Width and height in millimetres (default: 160 100)")
        ->expected(2);
    choice->output.AddTo(*command, false);
    command->footer(
        "Examples:\n"
        "  zel plot global-temp.csv --x year --y temp --fill -o temperature.pdf\n"
        "  zel plot weather.csv --x date --y temp_max --y temp_min --title Seattle -o weather.png\n"
        "  zel plot quakes.csv --x longitude --y latitude --no-line --symbols -o map.svg");
    command->callback([choice] { Plot(*choice); });
}

}  // namespace zel::cli
