// Carbon dioxide at Mauna Loa: two lines, and a right-hand scale in percent of the highest label.
#include "examples/gallery.h"

std::unique_ptr<Zel2Main> MakeCo2(const std::string& folder) {
    const std::string file = folder + "/co2-concentration.csv";
    const std::vector<double> dates = ReadColumn(file, "Date");

    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);
    root->RegisterColor("Frame Color", RGB(255, 255, 255), RGB(255, 255, 255));
    root->RegisterColor("Background Color", RGB(255, 255, 255), RGB(255, 255, 255));
    root->RegisterPen("Vertical/Horizontal Coordinate Lines", DrawPen::SOLID, 1, RGB(225, 225, 225),
                      RGB(200, 200, 200), nullptr);
    const int monthly =
        root->RegisterPen("Monthly", DrawPen::SOLID, 2, RGB(120, 170, 210), RGB(150, 150, 150), nullptr);
    const int adjusted =
        root->RegisterPen("Adjusted", DrawPen::SOLID, 5, RGB(20, 80, 140), RGB(0, 0, 0), nullptr);
    const int title = root->RegisterFont("Title", "Arial", 140, 1, 0, 0, 0, 0, 0);
    const int small = root->RegisterFont("Small", "Arial", 100, 0, 0, 0, 0, 0, 0);

    auto* graph = new Zel2Graph;
    root->Add(graph);
    graph->SetGraphSize(CSize(7000, 4200));
    graph->SetMargins(800, 600, 850, 650);
    graph->SetCoord(1955, 300, 2025, 420);
    graph->AdjustXAxis(1955, 2025, 8, 1);
    graph->AdjustYAxis(300, 420, 8, 1);
    // The labels on the right stand at the y ticks and run linearly: 300 of 420 is 71.4 %.
    graph->SetYRLabels(300 / 4.2, 100);

    const char* columns[] = {"CO2", "adjusted CO2"};
    const int pens[] = {monthly, adjusted};
    for (int i = 0; i < 2; ++i) {
        auto* series = new Zel2PointArray;
        series->SetPoints(dates, ReadColumn(file, columns[i]));
        series->SetPen(pens[i]);
        graph->AddIn(series);
    }

    const Zel2Text::Rule noRule{-1, 0.0F};
    root->Add(new Zel2Text("Carbon dioxide at Mauna Loa", CPoint(3500, 3900), title, DT_CENTER | DT_VCENTER,
                           0, -1, -1, noRule));
    root->Add(new Zel2Text("parts per million", CPoint(200, 2100), small, DT_CENTER | DT_VCENTER, 900, -1, -1,
                           noRule));
    root->Add(new Zel2Text("percent of 420 ppm", CPoint(6800, 2100), small, DT_CENTER | DT_VCENTER, 900, -1,
                           -1, noRule));
    root->Add(new Zel2Text("year", CPoint(3500, 200), small, DT_CENTER | DT_VCENTER, 0, -1, -1, noRule));
    return root;
}
