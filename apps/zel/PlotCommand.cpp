#include "apps/zel/Commands.h"
#include "apps/zel/Database.h"
#include "apps/zel/Figure.h"
#include "apps/zel/Grouping.h"
#include "apps/zel/Proposal.h"
#include "apps/zel/TableChoice.h"

#include <zel/platform/Warning.h>

#include <cmath>
#include <iostream>
#include <map>

namespace zel::cli {
namespace {

struct PlotChoice {
    TableChoice table;
    DatabaseChoice database;
    std::string x;
    std::string group;
    std::vector<std::string> ys;
    std::vector<std::string> xRange;
    std::vector<std::string> yRange;
    std::vector<double> size;
    bool noLine = false;
    std::vector<std::string> errors;
    std::string colorBy, sizeBy;
    std::vector<std::string> logarithms;
    FigureOptions figure;
    OutputChoice output;
};

// An end of a range, as a number or, on an axis of times, as a date.
double EndOf(const std::string& text, bool ofTimes, const char* option) {
    if (ofTimes) {
        if (const std::optional<double> time = tables::TimeOf(text)) return *time;
        throw Error(std::string("Cannot use ") + option + ": \"" + text + "\" is no date such as 2020-01-31");
    }
    double value = 0;
    if (!CLI::detail::lexical_cast(text, value) || !std::isfinite(value))
        throw Error(std::string("Cannot use ") + option + ": \"" + text + "\" is no number");
    return value;
}

std::optional<std::pair<double, double>> RangeOf(const std::vector<std::string>& ends, bool ofTimes,
                                                 const char* option) {
    if (ends.empty()) return std::nullopt;
    const std::pair range(EndOf(ends[0], ofTimes, option), EndOf(ends[1], ofTimes, option));
    if (!(range.first < range.second))
        throw Error(std::string("Cannot use ") + option + ": its first value must be below its second");
    return range;
}

// Options that say nothing about what is drawn.
void RefuseWhatCannotApply(const PlotChoice& choice) {
    const FigureOptions& figure = choice.figure;
    const FigureKind kind = figure.kind;
    const auto refuse = [](bool given, bool applies, const char* what, const char* where) {
        if (given && !applies) throw Error(std::string("Cannot use ") + what + " here: it is for " + where);
    };
    const bool points = kind == FigureKind::LINES;
    refuse(figure.stack, kind == FigureKind::BARS, "--stack", "--kind bars");
    refuse(figure.bins != 0, kind == FigureKind::HISTOGRAM, "--bins", "--kind histogram");
    refuse(!choice.errors.empty(), points || kind == FigureKind::BARS, "--error", "lines, points and bars");
    refuse(!choice.colorBy.empty(), points || kind == FigureKind::HEAT, "--color-by", "points and heat maps");
    refuse(!choice.sizeBy.empty(), points, "--size-by", "points");
    refuse(choice.noLine || figure.fill || figure.symbols, points, "--no-line, --fill or --symbols",
           "lines and points");
    if (kind == FigureKind::HISTOGRAM ? !choice.x.empty() : choice.x.empty())
        throw Error(kind == FigureKind::HISTOGRAM
                        ? "Cannot use --x here: a histogram counts the values of --y"
                        : "Cannot plot: --x must name the column of the x values");
    if (choice.ys.empty()) throw Error("Cannot plot: --y must name a column of values");
    if (kind == FigureKind::HEAT && (choice.colorBy.empty() || choice.ys.size() != 1))
        throw Error("Cannot draw a heat map: it takes --x, one --y and the values by --color-by");
    if (!choice.errors.empty() && choice.errors.size() != choice.ys.size())
        throw Error("Cannot draw error bars: there must be one --error for each --y");
    if (!choice.database.database.empty() &&
        (!choice.group.empty() || kind == FigureKind::HEAT || kind == FigureKind::HISTOGRAM ||
         !choice.errors.empty() || !choice.colorBy.empty() || !choice.sizeBy.empty()))
        throw Error("Cannot plot this from a database: it takes more or fewer columns than x and y");
}

// What the command line leaves open is chosen by the kinds of the columns, and said.
void Propose(PlotChoice& choice, const tables::Table& table) {
    if (!choice.ys.empty() || choice.figure.kind != FigureKind::LINES) return;
    if (!choice.x.empty()) {
        choice.ys = MeasuresOf(table, table.Columns()[table.IndexOf(choice.x)].name);
        return;
    }
    const Proposal proposal = ProposalFor(table);
    std::cerr << "Drawing " << proposal.Words() << "; --x, --y and --kind choose something else.\n";
    choice.figure.kind = proposal.kind;
    choice.x = proposal.x;
    choice.ys = proposal.ys;
    if (choice.group.empty()) choice.group = proposal.group;
    choice.noLine = choice.noLine || proposal.points;
}

// The values of x come back: rows of several series, as it seems.
void SuggestGroup(const tables::Table& table, const Column& x) {
    const std::string group = GroupOf(table, x);
    if (group.empty()) return;
    Warn("The values of the column \"" + x.Name() + "\" come back; --group \"" + group +
         "\" draws one series for each of the " + std::to_string(table[group].Names().size()) +
         " values of that column.");
}

std::vector<Series> ReadSeries(PlotChoice& choice) {
    if (choice.table.IsGiven() != choice.database.database.empty())
        throw Error("Cannot plot: either a table or --db must say where the data is");
    if (!choice.table.IsGiven()) {
        RefuseWhatCannotApply(choice);
        return cli::ReadSeries(choice.database, choice.x, choice.ys);
    }
    const tables::Table table = choice.table.Read();
    Propose(choice, table);
    RefuseWhatCannotApply(choice);
    const FigureKind kind = choice.figure.kind;
    Series common;
    if (!choice.x.empty()) common.x = CoordinateOf(table, choice.x);
    if (!choice.colorBy.empty()) common.color = CoordinateOf(table, choice.colorBy);
    if (!choice.sizeBy.empty()) common.size = MeasureOf(table, choice.sizeBy);
    std::vector<Series> series;
    for (std::size_t i = 0; i < choice.ys.size(); ++i) {
        Series one = common;
        one.y = kind == FigureKind::HEAT ? CoordinateOf(table, choice.ys[i]) : MeasureOf(table, choice.ys[i]);
        one.name = one.y.Name();
        if (!choice.errors.empty()) one.error = MeasureOf(table, choice.errors[i]);
        series.push_back(std::move(one));
    }
    if (!choice.group.empty()) return Grouped(series, CoordinateOf(table, choice.group));
    if (kind == FigureKind::LINES && !choice.noLine) SuggestGroup(table, common.x);
    return series;
}

void Plot(PlotChoice& choice) {
    const std::vector<Series> series = ReadSeries(choice);
    FigureOptions& figure = choice.figure;
    const bool bubbles =
        figure.kind == FigureKind::LINES && (!choice.colorBy.empty() || !choice.sizeBy.empty());
    figure.line = !choice.noLine && !bubbles;
    figure.symbols = figure.symbols || (choice.noLine && !figure.fill);
    for (const std::string& axis : choice.logarithms) (axis == "x" ? figure.logX : figure.logY) = true;
    // A date says by itself what it is.
    const bool ofDates =
        !series.empty() && (series.front().source ? series.front().source->HasDates()
                                                  : series.front().x.GetKind() == zel::Column::Kind::TIMES);
    figure.xRange = RangeOf(choice.xRange, ofDates, "--x-range");
    figure.yRange = RangeOf(
        choice.yRange, !series.empty() && series.front().y.GetKind() == Column::Kind::TIMES, "--y-range");
    if (figure.xTitle.empty() && !ofDates && !choice.x.empty())
        figure.xTitle = choice.table.IsGiven() ? series.front().x.Name() : ColumnTitle(choice.x);
    if (figure.kind == FigureKind::HISTOGRAM) {
        if (figure.xTitle.empty() && choice.ys.size() == 1) figure.xTitle = series.front().y.Name();
    } else if (figure.yTitle.empty() && choice.ys.size() == 1) {
        figure.yTitle = series.front().y.IsEmpty() ? series.front().name : series.front().y.Name();
    }
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
    command->add_option(
        "--x", choice->x,
        "Column of the x values, by name or number; a column of dates makes a time axis, one of "
        "words the names of bars, boxes and cells");
    command
        ->add_option(
            "--y", choice->ys,
            "Column of y values; repeat it for several series (default: without --x and --y columns are "
            "chosen by their kinds)")
        ->take_all();
    static const std::map<std::string, FigureKind> kKinds{{"lines", FigureKind::LINES},
                                                          {"bars", FigureKind::BARS},
                                                          {"histogram", FigureKind::HISTOGRAM},
                                                          {"box", FigureKind::BOX},
                                                          {"heat", FigureKind::HEAT}};
    command->add_option("--kind", choice->figure.kind, "What is drawn (default: lines)")
        ->transform(CLI::CheckedTransformer(kKinds).description("lines, bars, histogram, box or heat"));
    command->add_flag("--stack", choice->figure.stack, "Bars of several columns stand on each other");
    command->add_option("--bins", choice->figure.bins, "Number of bins of a histogram (default: by a rule)")
        ->check(CLI::PositiveNumber);
    command->add_option("--error", choice->errors, "Column of distances for error bars, one for each --y")
        ->take_all();
    command->add_option("--color-by", choice->colorBy,
                        "Column of numbers or words that colours points, or cells of a heat map");
    command->add_option("--size-by", choice->sizeBy, "Column of numbers that sizes points, by their area");
    command->add_option("--log", choice->logarithms, "Logarithmic axis: x or y; repeat it for both")
        ->check(CLI::IsMember({"x", "y"}))
        ->take_all();
    command->add_option("--group", choice->group, "Column that says to which series a row belongs");
    command->add_flag("--no-line", choice->noLine, "Do not connect the points");
    command->add_flag("--fill", choice->figure.fill, "Fill the area between a series and the bottom edge");
    command->add_flag("--symbols", choice->figure.symbols, "Draw a symbol at each point");
    command->add_option("--title", choice->figure.title, "Title of the graph");
    command->add_option("--x-title", choice->figure.xTitle,
                        "Title of the x axis (default: the column's name)");
    command->add_option("--y-title", choice->figure.yTitle, "Title of the y axis");
    command
        ->add_option("--x-range", choice->xRange,
                     "Ends of the x axis, numbers or dates (default: from the data)")
        ->expected(2);
    command->add_option("--y-range", choice->yRange, "Ends of the y axis (default: from the data)")
        ->expected(2);
    command->add_option("--size", choice->size, "Width and height in millimetres (default: 160 100)")
        ->expected(2);
    choice->output.AddTo(*command, false);
    command->footer(
        "Examples:\n"
        "  zel plot global-temp.csv -o temperature.png\n"
        "  zel plot global-temp.csv --x year --y temp --fill -o temperature.pdf\n"
        "  zel plot weather.csv --x date --y temp_max --y temp_min --title Seattle -o weather.png\n"
        "  zel plot --db weather.sqlite --table daily --x date --y temp_max --where \"wind > 5\" -o out.pdf\n"
        "  zel plot quakes.csv --x longitude --y latitude --no-line --symbols -o map.svg\n"
        "  zel plot quakes.csv --x longitude --y latitude --color-by depth --size-by energy -o map.pdf\n"
        "  zel plot weather.csv --kind histogram --y temp_max --bins 30 -o temperatures.pdf\n"
        "  zel plot weather.csv --kind box --x weather --y wind -o wind.pdf\n"
        "  zel plot normals.csv --kind heat --x day --y hour --color-by temperature -o year.png");
    command->callback([choice] { Plot(*choice); });
}

}  // namespace zel::cli
