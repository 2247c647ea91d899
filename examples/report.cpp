// A report of four years of weather: fields, tables that run over many pages, a grid of graphs with common
// ranges, stacked coordinate systems on one axis, polygons.
#include "apps/zel/ReportParts.h"
#include "examples/gallery.h"

#include <zel/tables/Table.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <functional>

namespace {

using zel::cli::PrintedTable;
using zel::cli::ReportParts;

constexpr int kFirstYear = 2012;
constexpr int kYears = 4;
constexpr int kMonths = 12;
constexpr COLORREF kRed = RGB(205, 80, 30), kBlue = RGB(30, 100, 170), kGreen = RGB(70, 130, 60);

struct Weather {
    std::vector<double> date, precipitation, high, low, wind;
    std::vector<std::vector<std::string>> rows;

    std::size_t Days() const { return date.size(); }
    int Year(std::size_t i) const { return static_cast<int>(date[i]); }
    // 0 to 11, from the text of the date.
    int Month(std::size_t i) const { return std::stoi(rows[i][0].substr(5, 2)) - 1; }
};

Weather ReadWeather(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/seattle-weather.csv", {.keepTexts = true});
    const auto values = [&table](const char* name) { return ValuesOf(table[name]); };
    std::vector<std::vector<std::string>> rows(table.RowCount());
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t k = 0; k < table.Columns().size(); ++k) rows[i].emplace_back(table.Text(i, k));
    return {values("date"),     values("precipitation"), values("temp_max"),
            values("temp_min"), values("wind"),          std::move(rows)};
}

std::string Fixed(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

double Sum(const Weather& weather, const std::vector<double>& values,
           const std::function<bool(std::size_t)>& counts) {
    double sum = 0;
    for (std::size_t i = 0; i < weather.Days(); ++i) sum += counts(i) ? values[i] : 0;
    return sum;
}

PrintedTable YearTable(const Weather& weather) {
    PrintedTable table;
    table.names = {"year",        "mean high, °C",     "mean low, °C",          "hottest, °C",
                   "coldest, °C", "precipitation, mm", "days with rain or snow"};
    table.isNumber = std::vector<bool>(table.names.size(), true);
    for (int year = kFirstYear; year < kFirstYear + kYears; ++year) {
        const auto in = [&](std::size_t i) { return weather.Year(i) == year; };
        double days = 0, wet = 0, hottest = -100, coldest = 100;
        for (std::size_t i = 0; i < weather.Days(); ++i) {
            if (!in(i)) continue;
            ++days;
            wet += weather.precipitation[i] > 0 ? 1 : 0;
            hottest = std::max(hottest, weather.high[i]);
            coldest = std::min(coldest, weather.low[i]);
        }
        table.rows.push_back({std::to_string(year), Fixed(Sum(weather, weather.high, in) / days),
                              Fixed(Sum(weather, weather.low, in) / days), Fixed(hottest), Fixed(coldest),
                              Fixed(Sum(weather, weather.precipitation, in)),
                              std::to_string(static_cast<int>(wet))});
    }
    return table;
}

PrintedTable DayTable(const Weather& weather) {
    PrintedTable table;
    table.names = {"date", "precipitation, mm", "highest, °C", "lowest, °C", "wind, m/s", "weather"};
    table.isNumber = {false, true, true, true, true, false};
    table.rows = weather.rows;
    return table;
}

// A graph for each year, all with the same ranges.
std::unique_ptr<Zel2> YearGraphs(const Weather& weather, Zel2Report& report, const ReportParts& parts) {
    auto table = std::make_unique<Zel2GraphTable>(2, 2, CSize(parts.Width() / 2, 4300));
    table->SetMargins(0, 0, 0, 0);
    const int high = report.RegisterPen("High", DrawPen::SOLID, 3, kRed, kRed, nullptr);
    const int low = report.RegisterPen("Low", DrawPen::SOLID, 3, kBlue, kBlue, nullptr);
    for (int k = 0; k < kYears; ++k) {
        Zel2Graph& graph = *table->GetGraph(k % 2, k / 2);
        graph.SetMargins(500, 450, 150, 400);
        graph.SetXLabels({0, 3, 6, 9, 12}), graph.SetXTicks(graph.XLabels()), graph.SetXLines({});
        graph.SetYLabels({-10, 0, 10, 20, 30, 40}), graph.SetYTicks(graph.YLabels());
        graph.SetYLines({});
        std::vector<double> x, highs, lows;
        for (std::size_t i = 0; i < weather.Days(); ++i) {
            if (weather.Year(i) != kFirstYear + k) continue;
            x.push_back((weather.date[i] - weather.Year(i)) * kMonths);
            highs.push_back(weather.high[i]);
            lows.push_back(weather.low[i]);
        }
        for (const auto& [values, pen] : {std::pair(&highs, high), std::pair(&lows, low)}) {
            auto* series = new Zel2PointArray;
            series->SetPoints(x, *values);
            series->SetPen(pen);
            graph.AddIn(series);
        }
        const CPoint middle(500 + (parts.Width() / 2 - 650) / 2, graph.Size().cy - 250);
        graph.Add(new Zel2Text(std::to_string(kFirstYear + k).c_str(), middle, parts.TextFont(),
                               DT_CENTER | DT_VCENTER, 0, -1, -1, {-1, 0.0F}));
    }
    for (int i = 0; i < 2; ++i) {
        table->SetXCoord(i, 0, kMonths);
        table->SetYCoord(i, -10, 40);
    }
    return table;
}

struct Layer {
    const char* title;
    const std::vector<double>& values;
    double low;
    double high;
    std::vector<double> labels;
    float weight;
    COLORREF color;
};

std::unique_ptr<Zel2> Stack(const Weather& weather, Zel2Report& report, const ReportParts& parts) {
    auto stack = std::make_unique<Zel2StackGraph>(CRect(0, 0, parts.Width() - 1, 8799), -1, -1);
    stack->SetMarg(800, 100, 150, 800);
    auto* axis = new Zel2HAxis;
    axis->SetCoord(kFirstYear, kFirstYear + kYears);
    axis->SetLabels({2012, 2013, 2014, 2015, 2016});
    axis->SetTitle("year", 150);
    stack->AddHAxis(axis);
    const Layer layers[] = {{"wind, m/s", weather.wind, 0, 10, {0, 2, 4, 6, 8}, 1, kGreen},
                            {"precipitation, mm", weather.precipitation, 0, 60, {0, 20, 40}, 1.5F, kBlue},
                            {"highest, °C", weather.high, -10, 40, {-10, 0, 10, 20, 30, 40}, 2.5F, kRed}};
    const int frame = report.RegisterPen("Stack Frame", DrawPen::SOLID, 2, RGB(90, 90, 90), 0, nullptr);
    for (const Layer& layer : layers) {
        auto* cs = new Zel2CoordSys;
        cs->SetPen(frame);
        cs->SetCoord(kFirstYear, layer.low, kFirstYear + kYears, layer.high);
        cs->VAxis()->SetLabels(layer.labels);
        cs->VAxis()->SetFit(false);
        // Grid lines within the frame, not over it.
        cs->HAxis()->SetLinesFromLabels(false);
        const double years[] = {2013, 2014, 2015};
        cs->HAxis()->SetLines(years, 3);
        cs->VAxis()->SetLinesFromLabels(false);
        cs->VAxis()->SetLines(layer.labels.data() + 1, static_cast<int>(layer.labels.size()) - 2);
        cs->VAxis()->SetTitle(layer.title, 120);
        auto* series = new Zel2PointArray;
        series->SetPoints(weather.date, layer.values);
        series->SetPen(report.RegisterPen(layer.title, DrawPen::SOLID, 2, layer.color, layer.color, nullptr));
        cs->ContentSet(3)->Add(series);
        stack->AddSubGraph(cs, layer.weight);
    }
    return stack;
}

Zel2Graph* MonthGraph(const ReportParts& parts, double low, double high, const std::vector<double>& labels) {
    auto* graph = new Zel2Graph;
    graph->SetGraphSize(CSize(parts.Width(), 3700));
    graph->SetMargins(600, 150, 150, 450);
    graph->SetCoord(0, low, kMonths, high);
    graph->SetXLabels({0, 2, 4, 6, 8, 10, 12}), graph->SetXTicks(graph->XLabels()), graph->SetXLines({});
    graph->SetYLabels(labels), graph->SetYTicks(labels), graph->SetYLines({});
    return graph;
}

// The usual range of each month as one polygon, and a bar for each month's rain.
void AddPolygons(const Weather& weather, Zel2Report& report, const ReportParts& parts) {
    std::array<double, kMonths> high{}, low{}, rain{}, days{};
    for (std::size_t i = 0; i < weather.Days(); ++i) {
        const auto m = static_cast<std::size_t>(weather.Month(i));
        high[m] += weather.high[i], low[m] += weather.low[i], rain[m] += weather.precipitation[i],
            days[m] += 1;
    }
    std::vector<Zel2PolGraph::Dim2> band;
    for (std::size_t m = 0; m < kMonths; ++m)
        band.push_back({static_cast<double>(m) + 0.5, high[m] / days[m]});
    for (std::size_t m = kMonths; m-- > 0;) band.push_back({static_cast<double>(m) + 0.5, low[m] / days[m]});
    band.push_back(band.front());
    const int outline = report.RegisterPen("Polygon", DrawPen::SOLID, 3, RGB(90, 40, 20), 0, nullptr);
    const int warm = report.RegisterColor("Band", RGB(240, 200, 175), RGB(240, 200, 175));
    const int wet = report.RegisterColor("Bar", RGB(150, 190, 225), RGB(150, 190, 225));
    Zel2Graph* temperatures = MonthGraph(parts, 0, 30, {0, 5, 10, 15, 20, 25, 30});
    auto* polygon = new Zel2PolGraph(nullptr, outline, warm);
    polygon->DefinePoints(band);
    temperatures->AddIn(polygon);
    report.AppendKept(temperatures);
    report.Append(
        parts.RuledLine("Mean of the daily lowest to the mean of the daily highest temperature, °C, by month")
            .release());
    report.Append(parts.Gap(200).release());
    Zel2Graph* rains = MonthGraph(parts, 0, 200, {0, 50, 100, 150, 200});
    for (std::size_t m = 0; m < kMonths; ++m) {
        const double x = static_cast<double>(m), y = rain[m] / kYears;
        auto* bar = new Zel2PolGraph(nullptr, outline, wet);
        bar->DefinePoints({{x + 0.1, 0}, {x + 0.1, y}, {x + 0.9, y}, {x + 0.9, 0}, {x + 0.1, 0}});
        rains->AddIn(bar);
    }
    report.AppendKept(rains);
    report.Append(parts.RuledLine("Mean precipitation, mm, by month").release());
}

}  // namespace

Zel2Report& MakeWeatherReport(Zel2Main& drawing, const std::string& folder) {
    const Weather weather = ReadWeather(folder);
    drawing.SetRules(ZelRules::EXACT);
    auto* report = new Zel2Report;
    drawing.Add(report);
    zel::ReportPaper paper;
    paper.header.right = "Weather in Seattle, 2012 to 2015";
    paper.footer.middle = "page {page} of {pages}";
    paper.footer.rule = report->RegisterPen("Footer Rule", DrawPen::SOLID, 1, RGB(150, 150, 150), 0, nullptr);
    report->SetPaper(paper);
    // Tools that graphs and axes would register in colours for the screen.
    report->RegisterColor("Frame Color", RGB(255, 255, 255), RGB(255, 255, 255));
    report->RegisterColor("Background Color", RGB(255, 255, 255), RGB(255, 255, 255));
    report->RegisterPen("Vertical/Horizontal Coordinate Lines", DrawPen::SOLID, 1, RGB(220, 220, 220),
                        RGB(220, 220, 220), nullptr);
    report->RegisterPen("Graph Horizontal Lines", DrawPen::SOLID, 1, RGB(220, 220, 220), RGB(220, 220, 220),
                        nullptr);
    report->RegisterFont("Axis Font", "Arial", 90, 0, 0, 0, 0, 0, 0);
    report->RegisterFont("Graph Axis Label", "Arial", 90, 0, 0, 0, 0, 0, 0);
    report->RegisterFont("Graph Axis Title", "Arial", 90, 0, 0, 0, 0, 0, 0);

    const ReportParts parts(*report);
    const auto append = [&](std::unique_ptr<Zel2> object) { report->Append(object.release()); };
    append(parts.Title("Weather in Seattle"));
    append(parts.Gap(100));
    append(parts.Fields({{"place", "Seattle, Washington"},
                         {"from", weather.rows.front()[0]},
                         {"to", weather.rows.back()[0]},
                         {"days", std::to_string(weather.Days())}}));
    append(parts.Gap(150));
    append(parts.Heading("The years"));
    for (auto& table : parts.Tables(YearTable(weather))) append(std::move(table));
    append(parts.Gap(200));
    append(parts.Heading("The days"));
    for (auto& table : parts.Tables(DayTable(weather))) append(std::move(table));
    report->BreakPage();
    append(parts.Heading("Highest and lowest temperature of each day, °C, by month"));
    append(YearGraphs(weather, *report, parts));
    report->BreakPage();
    append(parts.Heading("Three measurements on one axis"));
    append(Stack(weather, *report, parts));
    report->BreakPage();
    append(parts.Heading("The months"));
    AddPolygons(weather, *report, parts);
    report->MakePages();
    return *report;
}
