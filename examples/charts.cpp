// The charts of docs/charts.md.
#include "examples/gallery.h"

#include <zel/tables/Table.h>

#include <cmath>

namespace {

using zel::Column;

std::vector<double> Range(int n, double from, double to) {
    std::vector<double> numbers;
    for (int i = 0; i < n; ++i) numbers.push_back(from + (to - from) * i / (n - 1));
    return numbers;
}

template <class Function>
std::vector<double> Of(const std::vector<double>& x, Function function) {
    std::vector<double> y;
    for (const double value : x) y.push_back(function(value));
    return y;
}

}  // namespace

std::unique_ptr<Zel2Main> MakeTimeChart(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/seattle-weather.csv");
    OneChart drawing({.title = "Two weeks in May", .size = {160, 80}});
    Zel2Chart& chart = *drawing.chart;
    chart.X().SetRange(1'335'830'400, 1'337'040'000);  // the first half of May 2012
    chart.Y().SetTitle("Temperature").SetUnit("°C");
    chart.AddArea(table["date"], table["temp_min"], table["temp_max"],
                  {{.name = "range of the day", .opacity = 0.3}});
    chart.AddLine(table["date"], table["temp_max"],
                  {{.name = "highest"}, 1.2, zel::Dash::SOLID, zel::Step::MIDDLE});
    return std::move(drawing.root);
}

// A night without the hour from two to three.
std::unique_ptr<Zel2Main> MakeSummerTimeChart(const std::string&) {
    OneChart drawing({.title = "The night when summer time begins", .size = {160, 70}});
    Zel2Chart& chart = *drawing.chart;
    const std::vector<double> seconds = Range(60, 1'585'432'800, 1'585'458'000);
    chart.X().SetTime("Europe/Berlin");
    chart.Y().SetTitle("Load").SetUnit("MW");
    chart.AddLine(seconds,
                  Of(seconds, [](double t) { return 40 + 8 * std::cos((t - 1'585'432'800) / 7000); }));
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeLogarithmChart(const std::string&) {
    OneChart drawing({.title = "Growth and decay", .legend = zel::LegendPlace::INSIDE});
    Zel2Chart& chart = *drawing.chart;
    const std::vector<double> x = Range(120, 0, 10);
    chart.X().SetTitle("Time").SetUnit("s");
    chart.Y().SetLogarithm().ShowMinorGrid().SetTitle("Count");
    chart.AddLine(x, Of(x, [](double v) { return std::exp(v); }), {{.name = "growth"}});
    chart.AddPoints(x, Of(x, [](double v) { return 2000 * std::exp(-v / 1.5); }), {{.name = "decay"}, 4});
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeAxesChart(const std::string&) {
    OneChart drawing({.title = "Three scales"});
    Zel2Chart& chart = *drawing.chart;
    const std::vector<double> x = Range(200, 0, 24);
    chart.X().SetTitle("Hour of the day");
    chart.Y().SetTitle("Temperature").SetUnit("°C");
    chart.Y2().SetTitle("Humidity").SetFormat({.percent = true});
    const int pressure = chart.AddAxis(zel::Side::RIGHT);
    chart.Axis(pressure).SetTitle("Pressure").SetUnit("hPa");
    chart.AddLine(x, Of(x, [](double h) { return 15 - 6 * std::cos(h / 3.82); }), {{.name = "temperature"}});
    chart.AddLine(x, Of(x, [](double h) { return 0.6 + 0.3 * std::cos(h / 3.9); }),
                  {{.name = "humidity", .yAxis = chart.Y2Index()}});
    chart.AddLine(x, Of(x, [](double h) { return 1013 + 4 * std::sin(h / 5); }),
                  {{.name = "pressure", .yAxis = pressure}, 1.2, zel::Dash::DASHED});
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeStackChart(const std::string&) {
    OneChart drawing({.title = "Electricity by source", .subtitle = "made-up figures"});
    Zel2Chart& chart = *drawing.chart;
    const std::vector<double> hour = Range(97, 0, 24);
    chart.X().SetTitle("Hour").SetTicks(
        {{0, "0", {}}, {6, "6", {}}, {12, "12", {}}, {18, "18", {}}, {24, "24", {}}});
    chart.Y().SetTitle("Power").SetUnit("GW");
    const auto add = [&](const char* name, auto function) {
        chart.AddArea(hour, Of(hour, function), {{.name = name}, 0, true});
    };
    add("water", [](double) { return 4.0; });
    add("wind", [](double h) { return 9 + 4 * std::sin(h / 4); });
    add("sun", [](double h) { return std::max(0.0, 22 * std::sin((h - 6) * 0.2618)); });
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeCategoryChart(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/seattle-weather.csv");
    OneChart drawing({.title = "Highest temperature by kind of weather", .size = {120, 80}});
    Zel2Chart& chart = *drawing.chart;
    chart.Y().SetUnit("°C");
    chart.AddPoints(table["weather"], table["temp_max"], {{}, 4});
    return std::move(drawing.root);
}

std::vector<Example> ChartPictures() {
    std::vector<Example> pictures{
        {"chart-time", MakeTimeChart},           {"chart-summer-time", MakeSummerTimeChart},
        {"chart-logarithm", MakeLogarithmChart}, {"chart-axes", MakeAxesChart},
        {"chart-stack", MakeStackChart},         {"chart-categories", MakeCategoryChart}};
    for (const Example& look : LookPictures()) pictures.push_back(look);
    return pictures;
}
