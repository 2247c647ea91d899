#include "apps/zel/Commands.h"
#include "apps/zel/Database.h"
#include "apps/zel/Figure.h"
#include "apps/zel/TableChoice.h"

namespace zel::cli {
namespace {

struct PlotChoice {
    TableChoice table;
    DatabaseChoice database;
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

std::vector<Series> ReadSeries(const PlotChoice& choice) {
    if (choice.table.IsGiven() != choice.database.database.empty())
        throw Error("Cannot plot: either a table or --db must say where the data is");
    if (!choice.table.IsGiven()) return cli::ReadSeries(choice.database, choice.x, choice.ys);
    const tables::Table table = choice.table.Read();
    const Column x = CoordinateOf(table, choice.x);
    std::vector<Series> series;
    for (const std::string& y : choice.ys) {
        Column values = MeasureOf(table, y);
        series.push_back({values.Name(), x, std::move(values), nullptr});
    }
    return series;
}

void Plot(PlotChoice& choice) {
    const std::vector<Series> series = ReadSeries(choice);
    FigureOptions& figure = choice.figure;
    figure.line = !choice.noLine;
    figure.symbols = figure.symbols || (choice.noLine && !figure.fill);
    figure.xRange = RangeOf(choice.xRange, "--x-range");
    figure.yRange = RangeOf(choice.yRange, "--y-range");
    // A date says by itself what it is.
    const bool ofDates =
        !series.empty() && (series.front().source ? series.front().source->HasDates()
                                                  : series.front().x.GetKind() == zel::Column::Kind::TIMES);
    if (figure.xTitle.empty() && !ofDates)
        figure.xTitle = !choice.table.IsGiven() ? ColumnTitle(choice.x) : series.front().x.Name();
    if (figure.yTitle.empty() && choice.ys.size() == 1) figure.yTitle = series.front().name;
    if (!choice.size.empty()) {
        figure.width = choice.size[0];
        figure.height = choice.size[1];
    }
    const auto drawing = MakeFigure(series, figure);
    choice.output.Write(*drawing, figure.title);
}

void AddDatabaseOptions(CLI::App& command, DatabaseChoice& choice) {
    CLI::Option* const database = command.add_option(
        "--db", choice.database,
        "SQLite file, or ODBC connection string (\"DSN=...;UID=...\"), instead of a table");
    command.add_option("--table", choice.table, "Table of the database")->needs(database);
    command.add_option("--where", choice.where, "Condition in SQL that records must meet")->needs(database);
    command
        .add_option("--order-by", choice.order, "Column by which records are sorted (default: not at all)")
        ->needs(database);
}

}  // namespace

void AddPlotCommand(CLI::App& app) {
    CLI::App* command =
        app.add_subcommand("plot", "Draw columns of a table, of a file or a database, as a chart");
    auto choice = std::make_shared<PlotChoice>();
    choice->table.AddTo(*command);
    AddDatabaseOptions(*command, choice->database);
    command
        ->add_option("--x", choice->x,
                     "Column of the x values, by name or number; a column of dates makes a time axis")
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
        "  zel plot --db weather.sqlite --table daily --x date --y temp_max --where \"wind > 5\" -o out.pdf\n"
        "  zel plot quakes.csv --x longitude --y latitude --no-line --symbols -o map.svg");
    command->callback([choice] { Plot(*choice); });
}

}  // namespace zel::cli
