// Four years of daily weather: two lines on a time axis, and the precipitation on an axis of its own.
#include "examples/gallery.h"

#include <zel/tables/Table.h>

std::unique_ptr<Zel2Main> MakeWeather(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/seattle-weather.csv");
    const zel::Column date = table["date"];

    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);
    auto* chart = root->Add(std::make_unique<Zel2Chart>(
        zel::ChartOptions{.title = "Weather in Seattle",
                          .subtitle = "highest and lowest temperature of each day, and precipitation",
                          .caption = "Source: NOAA National Climatic Data Center",
                          .size = {180, 110}}));
    chart->Y().SetTitle("Temperature").SetUnit("°C").SetRange(-10, 40);
    chart->Y2().SetTitle("Precipitation").SetUnit("mm").SetRange(0, 200);

    chart->AddArea(date, table["precipitation"],
                   {{.name = "precipitation", .color = "#56B4E9", .yAxis = chart->Y2Index()}});
    chart->AddArea(date, table["temp_min"], table["temp_max"],
                   {{.name = "range of the day", .color = "#D55E00", .opacity = 0.25}});
    chart->AddLine(date, table["temp_max"], {{.name = "highest", .color = "#D55E00"}, 0.8});
    chart->AddLine(date, table["temp_min"], {{.name = "lowest", .color = "#0072B2"}, 0.8});
    return root;
}
