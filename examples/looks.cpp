// The other looks of charts, as docs/charts.md shows them.
#include "examples/gallery.h"

#include <zel/tables/Table.h>

#include <cmath>
#include <map>

namespace {

using zel::Column;

const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// The name of the month of each row of the weather's table.
std::vector<std::string> MonthsOf(const zel::tables::Table& table) {
    std::vector<std::string> months;
    for (std::size_t i = 0; i < table.RowCount(); ++i)
        months.emplace_back(kMonths[static_cast<unsigned>(DayOf(table["date"], i).month()) - 1]);
    return months;
}

std::unique_ptr<Zel2Main> MakeBarChart(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/seattle-weather.csv");
    std::map<std::string, std::vector<double>> days;  // by kind of weather, of each year from 2012 on
    const zel::Column& kinds = table["weather"];
    for (std::size_t i = 0; i < table.RowCount(); ++i) {
        const std::string& kind = kinds.Names()[static_cast<std::size_t>(kinds.At(i))];
        auto& years = days.try_emplace(kind, std::vector<double>(4, 0)).first->second;
        years[static_cast<std::size_t>(static_cast<int>(DayOf(table["date"], i).year()) - 2012)] += 1;
    }
    OneChart drawing({.title = "Days of each kind of weather", .subtitle = "Seattle", .size = {160, 85}});
    drawing.chart->Y().SetTitle("Days");
    for (const char* kind : {"sun", "fog", "rain"}) {
        zel::BarOptions options{{.name = kind}};
        options.labels = true;
        drawing.chart->AddBars(std::vector<std::string>{"2012", "2013", "2014", "2015"}, days[kind], options);
    }
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeShareChart(const std::string&) {
    const std::vector<std::string> countries{"Norway", "Austria", "France", "Germany", "Poland"};
    OneChart drawing({.title = "Electricity by source", .subtitle = "made-up figures", .size = {160, 75}});
    zel::BarOptions options;
    options.horizontal = true;
    options.stacking = zel::Stacking::SHARES;
    options.labels = true;
    const auto add = [&](const char* name, std::vector<double> values) {
        options.name = name;
        drawing.chart->AddBars(countries, std::move(values), options);
    };
    add("water", {137, 41, 60, 19, 2});
    add("wind and sun", {12, 11, 56, 180, 27});
    add("nuclear", {0, 0, 361, 65, 0});
    add("other", {3, 19, 49, 280, 147});
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeHistogramChart(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/seattle-weather.csv");
    OneChart drawing(
        {.title = "Highest and lowest temperature of a day", .legend = zel::LegendPlace::INSIDE});
    drawing.chart->X().SetTitle("Temperature").SetUnit("°C");
    drawing.chart->Y().SetTitle("Days");
    for (const char* name : {"temp_max", "temp_min"}) {
        zel::HistogramOptions options{{.name = name[5] == 'm' && name[6] == 'a' ? "highest" : "lowest"}};
        options.opacity = 0.6;
        options.binWidth = 1;
        drawing.chart->AddHistogram(table[name], options);
    }
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeErrorChart(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/seattle-weather.csv");
    const Column high = table["temp_max"];
    const std::vector<std::string> months = MonthsOf(table);
    std::map<std::string, std::vector<double>> byMonth;
    for (std::size_t i = 0; i < high.Size(); ++i) byMonth[months[i]].push_back(high.At(i));
    std::vector<std::string> names;
    std::vector<double> middle, below, above;
    for (const char* month : kMonths) {
        names.emplace_back(month);
        const std::vector<double>& values = byMonth[month];
        middle.push_back(zel::Quantile(values, 0.5));
        below.push_back(middle.back() - zel::Quantile(values, 0.1));
        above.push_back(zel::Quantile(values, 0.9) - middle.back());
    }
    OneChart drawing({.title = "Highest temperature of a day",
                      .subtitle = "median, and the range of eight days in ten",
                      .size = {160, 80}});
    drawing.chart->Y().SetUnit("°C");
    drawing.chart->AddBars(names, middle, {{.name = "median", .color = zel::Color("#9ecae1")}});
    drawing.chart->AddUnevenErrors(names, middle, below, above,
                                   {{.name = "8 in 10", .color = RGB(60, 60, 60)}});
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeBoxChart(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/seattle-weather.csv");
    OneChart drawing({.title = "Wind by month", .size = {160, 85}});
    drawing.chart->Y().SetTitle("Wind").SetUnit("m/s");
    drawing.chart->X().SetCategories({std::begin(kMonths), std::end(kMonths)});
    zel::BoxOptions options;
    options.notches = true;
    drawing.chart->AddBoxes(MonthsOf(table), table["wind"], options);
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeCandleChart(const std::string&) {
    std::vector<std::int64_t> days;
    std::vector<double> open, high, low, close;
    double price = 100;
    std::uint32_t state = 7;
    const auto random = [&state] {
        state = state * 1664525U + 1013904223U;
        return static_cast<double>(state >> 8) / (1 << 24);
    };
    for (int i = 0; i < 75; ++i) {
        if (i % 7 > 4) continue;  // no trade at the weekend
        days.push_back(1'704'067'200 + i * std::int64_t{86'400});
        open.push_back(price);
        price += 4 * (random() - 0.46);
        close.push_back(price);
        high.push_back(std::max(open.back(), price) + 2 * random());
        low.push_back(std::min(open.back(), price) - 2 * random());
    }
    OneChart drawing({.title = "Prices of the day", .subtitle = "made-up figures", .size = {160, 80}});
    drawing.chart->Y().SetFormat({.prefix = "$"});
    drawing.chart->AddCandles(Column::Times(days, 1), open, high, low, close);
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeHeatChart(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/seattle-weather-hourly-normals.csv");
    const Column times = table["date"];
    std::vector<std::int64_t> days;
    std::vector<double> hours;
    for (std::size_t i = 0; i < times.Size(); ++i) {
        const auto second = static_cast<std::int64_t>(times.Origin() + times.At(i));
        days.push_back(second / 86'400 * 86'400);
        hours.push_back(static_cast<double>(second % 86'400) / 3600);
    }
    OneChart drawing({.title = "A usual year in Seattle", .size = {160, 80}});
    drawing.chart->Y().SetTitle("Hour").SetTicks({{0, "0"}, {6, "6"}, {12, "12"}, {18, "18"}});
    zel::HeatMapOptions options;
    options.colors.title = "Temperature";
    options.colors.unit = "°C";
    drawing.chart->AddHeatMapOfRows(Column::Times(days, 1), hours, table["temperature"], options);
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeDivergingChart(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/seattle-weather.csv");
    const Column high = table["temp_max"];
    const std::vector<std::string> months = MonthsOf(table);
    std::vector<std::string> years;
    std::map<std::string, std::vector<double>> ofMonth;
    for (std::size_t i = 0; i < high.Size(); ++i) {
        years.push_back(std::to_string(static_cast<int>(DayOf(table["date"], i).year())));
        ofMonth[months[i]].push_back(high.At(i));
    }
    std::vector<double> departures;
    for (std::size_t i = 0; i < high.Size(); ++i)
        departures.push_back(high.At(i) - zel::Quantile(ofMonth[months[i]], 0.5));
    OneChart drawing({.title = "Warmer and colder months than usual", .size = {160, 70}});
    zel::HeatMapOptions options;
    options.colors.scheme = zel::ColorScheme::DIVERGING;
    options.colors.spread = zel::ColorSpread::CENTRED;
    options.colors.title = "Departure from the median";
    options.colors.unit = "°C";
    drawing.chart->AddHeatMapOfRows(months, years, departures, options);
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeBubbleChart(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/earthquakes-week.csv");
    OneChart drawing({.title = "Earthquakes of a week", .size = {160, 95}});
    zel::BubbleOptions options{{.opacity = 0.7}};
    // Energy grows with the magnitude as a power.
    std::vector<double> energy;
    const Column magnitude = table["magnitude"];
    for (std::size_t i = 0; i < magnitude.Size(); ++i)
        energy.push_back(std::pow(10.0, 0.5 * magnitude.At(i)));
    options.sizes = energy;
    options.colors = table["depth_km"];
    options.size = 22;
    options.colorMap.spread = zel::ColorSpread::QUANTILES;
    options.colorMap.title = "Depth";
    options.colorMap.unit = "km";
    drawing.chart->X().SetTitle("Longitude").SetUnit("°");
    drawing.chart->Y().SetTitle("Latitude").SetUnit("°");
    drawing.chart->AddBubbles(table["longitude"], table["latitude"], options);
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeTextChart(const std::string&) {
    const std::vector<std::string> names{"Mercury", "Venus",  "Earth",  "Mars",   "Ceres",
                                         "Jupiter", "Saturn", "Uranus", "Neptune"};
    const std::vector<double> distance{0.387, 0.723, 1, 1.524, 2.77, 5.203, 9.537, 19.19, 30.07},
        period{0.241, 0.615, 1, 1.881, 4.6, 11.86, 29.45, 84.02, 164.8};
    OneChart drawing({.title = "Kepler's third law", .size = {120, 85}});
    drawing.chart->X().SetLogarithm().SetTitle("Distance from the Sun").SetUnit("AU");
    drawing.chart->Y().SetLogarithm().SetTitle("Period").SetUnit("years");
    drawing.chart->AddPoints(distance, period);
    drawing.chart->AddTexts(distance, period, names);
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakeNoteChart(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/global-temp.csv");
    const Column& year = table["year"];
    const Column& departure = table["temp"];
    std::size_t warmest = 0;
    for (std::size_t i = 0; i < departure.Size(); ++i)
        if (departure.At(i) > departure.At(warmest)) warmest = i;
    OneChart drawing({.title = "Departure from the mean temperature", .size = {160, 80}});
    Zel2Chart& chart = *drawing.chart;
    chart.Y().SetUnit("°C");
    chart.AddSpanAlongX(1951, 1980);
    zel::RuleOptions mean;
    mean.label = "mean of 1951 to 1980";
    chart.AddRuleAtY(0, mean);
    chart.AddLine(year, departure, {{.name = ""}})->SetName("");
    chart.AddNote(1965, 0.9, "reference period");
    chart.AddNote(year.At(warmest), departure.At(warmest), "warmest year", {{}, -14, -4});
    return std::move(drawing.root);
}

std::unique_ptr<Zel2Main> MakePie(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/seattle-weather.csv");
    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);
    zel::PieOptions options{.title = "Days of each kind of weather"};
    options.hole = 0.55;
    root->Add(std::make_unique<Zel2Pie>(table["weather"], std::vector<double>(table.RowCount(), 1), options));
    return root;
}

}  // namespace

std::vector<Example> LookPictures() {
    return {{"chart-bars", MakeBarChart},
            {"chart-shares", MakeShareChart},
            {"chart-histogram", MakeHistogramChart},
            {"chart-errors", MakeErrorChart},
            {"chart-boxes", MakeBoxChart},
            {"chart-candles", MakeCandleChart},
            {"chart-heat", MakeHeatChart},
            {"chart-diverging", MakeDivergingChart},
            {"chart-bubbles", MakeBubbleChart},
            {"chart-texts", MakeTextChart},
            {"chart-notes", MakeNoteChart},
            {"chart-pie", MakePie}};
}
