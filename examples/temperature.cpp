// Yearly temperature anomaly: an area down to the bottom edge, a line, and symbols.
#include "examples/gallery.h"

std::unique_ptr<Zel2Main> MakeTemperature(const std::string& folder) {
    const std::vector<double> years = ReadColumn(folder + "/global-temp.csv", "year");
    const std::vector<double> anomalies = ReadColumn(folder + "/global-temp.csv", "temp");

    // The root of a drawing owns everything in it. Exact rules are for new drawings.
    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);

    // Tools are named and used by index. A graph uses tools of these two names for its background if they are
    // there.
    root->RegisterColor("Frame Color", RGB(255, 255, 255), RGB(255, 255, 255));
    root->RegisterColor("Background Color", RGB(247, 249, 251), RGB(255, 255, 255));
    const COLORREF red = RGB(192, 57, 43);
    const int area = root->RegisterColor("Area", RGB(247, 213, 205), RGB(230, 230, 230));
    const int line = root->RegisterPen("Line", DrawPen::SOLID, 4, red, RGB(0, 0, 0), nullptr);
    const int disc =
        root->RegisterSymbol("Disc", CSize(45, 45), zel::SYMBOL_CIRCLE, "", 1, red, 0, RGB(255, 255, 255),
                             RGB(255, 255, 255), 1, "Arial", 80, 0, 0, nullptr, nullptr, 0);
    const int title = root->RegisterFont("Title", "Arial", 140, 1, 0, 0, 0, 0, 0);
    const int small = root->RegisterFont("Small", "Arial", 100, 0, 0, 0, 0, 0, 0);

    // All lengths are thousandths of an inch, y points up.
    auto* graph = new Zel2Graph;
    root->Add(graph);
    graph->SetGraphSize(CSize(7000, 4200));
    graph->SetMargins(750, 650, 350, 650);
    graph->SetCoord(1880, -0.6, 2025, 1.4);
    graph->AdjustYAxis(-0.6, 1.4, 8, 1);
    graph->SetXLabels({1880, 1900, 1920, 1940, 1960, 1980, 2000, 2020});
    graph->SetXTicks(graph->XLabels());

    // The area is a series of its own, so that only it runs down to the bottom edge.
    auto* filled = new Zel2PointArray;
    filled->SetPoints(years, anomalies);
    filled->SetColor(area);
    filled->SetExtension(Zel2PointSet::BOTTOM, Zel2PointSet::BOTTOM);
    graph->AddIn(filled);

    auto* points = new Zel2PointArray;
    points->SetPoints(years, anomalies);
    points->SetPen(line);
    points->SetSymbol(disc, true);
    graph->AddIn(points);

    const Zel2Text::Rule noRule{-1, 0.0F};
    root->Add(new Zel2Text("Global land and ocean temperature", CPoint(3700, 3900), title,
                           DT_CENTER | DT_VCENTER, 0, -1, -1, noRule));
    root->Add(
        new Zel2Text("anomaly in °C", CPoint(200, 2100), small, DT_CENTER | DT_VCENTER, 900, -1, -1, noRule));
    root->Add(new Zel2Text("year", CPoint(3700, 200), small, DT_CENTER | DT_VCENTER, 0, -1, -1, noRule));
    return root;
}
