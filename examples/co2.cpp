// Carbon dioxide at Mauna Loa: the months and their seasonally adjusted course.
#include "examples/gallery.h"

#include <zel/tables/Table.h>

std::unique_ptr<Zel2Main> MakeCo2(const std::string& folder) {
    const auto table = zel::tables::Table::Read(folder + "/co2-concentration.csv");
    const zel::Column date = table["Date"];

    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);
    auto* chart = root->Add(std::make_unique<Zel2Chart>(zel::ChartOptions{
        .title = "Carbon dioxide at Mauna Loa", .caption = "Source: Scripps CO2 Program, CC BY 4.0"}));
    chart->Y().SetTitle("Concentration").SetUnit("ppm");
    chart->AddLine(date, table["CO2"], {{.name = "monthly", .color = "#56B4E9"}, 0.7});
    chart->AddLine(date, table["adjusted CO2"], {{.name = "seasonally adjusted", .color = "#0072B2"}, 1.6});
    return root;
}
