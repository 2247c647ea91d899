// Daily highest and lowest temperatures of four years: two dashed pens whose dashes run on from day to day.
#include "examples/gallery.h"

std::unique_ptr<Zel2Main> MakeWeather(const std::string& folder) {
    const std::string file = folder + "/seattle-weather.csv";
    const std::vector<double> dates = ReadColumn(file, "date");

    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);
    root->RegisterColor("Frame Color", RGB(240, 240, 236), RGB(255, 255, 255));
    root->RegisterColor("Background Color", RGB(255, 255, 255), RGB(255, 255, 255));
    root->RegisterPen("Vertical/Horizontal Coordinate Lines", DrawPen::SOLID, 1, RGB(225, 225, 225),
                      RGB(200, 200, 200), nullptr);
    // A pattern of one's own: dashes and gaps in tenths of a millimetre, up to the first 0.
    int pattern[DrawPen::kPatternSize] = {20, 4, 0};
    const int high =
        root->RegisterPen("High", DrawPen::USER_DEFINED, 3, RGB(205, 80, 30), RGB(0, 0, 0), pattern);
    const int low =
        root->RegisterPen("Low", DrawPen::DASH_DOT, 3, RGB(30, 100, 170), RGB(90, 90, 90), nullptr);
    const int highFont =
        root->RegisterFont("High text", "Arial", 100, 1, 0, 0, 0, RGB(205, 80, 30), RGB(0, 0, 0));
    const int lowFont =
        root->RegisterFont("Low text", "Arial", 100, 1, 0, 0, 0, RGB(30, 100, 170), RGB(90, 90, 90));
    const int title = root->RegisterFont("Title", "Arial", 140, 1, 0, 0, 0, 0, 0);
    const int small = root->RegisterFont("Small", "Arial", 100, 0, 0, 0, 0, 0, 0);

    auto* graph = new Zel2Graph;
    root->Add(graph);
    graph->SetGraphSize(CSize(9000, 4200));
    graph->SetMargins(700, 650, 350, 650);
    graph->SetCoord(2012, -10, 2016, 40);
    graph->AdjustYAxis(-10, 40, 8, 1);
    graph->SetXLabels({2012, 2013, 2014, 2015, 2016});
    graph->SetXTicks(graph->XLabels());
    graph->SetXLines(graph->XLabels());

    const char* columns[] = {"temp_max", "temp_min"};
    const int pens[] = {high, low};
    for (int i = 0; i < 2; ++i) {
        auto* series = new Zel2PointArray;
        series->SetPoints(dates, ReadColumn(file, columns[i]));
        series->SetPen(pens[i]);
        graph->AddIn(series);
    }

    const Zel2Text::Rule noRule{-1, 0.0F};
    root->Add(new Zel2Text("Daily temperatures in Seattle", CPoint(4675, 3900), title, DT_CENTER | DT_VCENTER,
                           0, -1, -1, noRule));
    root->Add(new Zel2Text("highest", CPoint(7300, 3680), highFont, DT_VCENTER, 0, -1, -1, noRule));
    root->Add(new Zel2Text("lowest", CPoint(8050, 3680), lowFont, DT_VCENTER, 0, -1, -1, noRule));
    root->Add(new Zel2Text("°C", CPoint(200, 2100), small, DT_CENTER | DT_VCENTER, 900, -1, -1, noRule));
    root->Add(new Zel2Text("year", CPoint(4675, 200), small, DT_CENTER | DT_VCENTER, 0, -1, -1, noRule));
    return root;
}
