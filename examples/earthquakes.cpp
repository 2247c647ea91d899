// A week of earthquakes: a symbol for each, larger and warmer with its magnitude.
#include "examples/gallery.h"

#include <algorithm>
#include <numeric>

namespace {

// One symbol for each whole magnitude, below 1 to 6 and more.
constexpr int kClasses = 7;

int ClassOf(double magnitude) {
    return std::clamp(static_cast<int>(magnitude), 0, kClasses - 1);
}

}  // namespace

std::unique_ptr<Zel2Main> MakeEarthquakes(const std::string& folder) {
    const std::string file = folder + "/earthquakes-week.csv";
    const std::vector<double> longitude = ReadColumn(file, "longitude");
    const std::vector<double> latitude = ReadColumn(file, "latitude");
    const std::vector<double> magnitude = ReadColumn(file, "magnitude");

    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);
    root->RegisterColor("Frame Color", RGB(255, 255, 255), RGB(255, 255, 255));
    root->RegisterColor("Background Color", RGB(238, 243, 247), RGB(255, 255, 255));
    root->RegisterPen("Vertical/Horizontal Coordinate Lines", DrawPen::SOLID, 0, RGB(255, 255, 255),
                      RGB(210, 210, 210), nullptr);
    const int title = root->RegisterFont("Title", "Arial", 140, 1, 0, 0, 0, 0, 0);
    const int small = root->RegisterFont("Small", "Arial", 90, 0, 0, 0, 0, 0, 0);

    int symbols[kClasses];
    for (int i = 0; i < kClasses; ++i) {
        const int size = 28 + 14 * i + 5 * i * i;
        const COLORREF color = RGB(255, 225 - 30 * i, 120 - 17 * i);
        const std::string name = "Magnitude " + std::to_string(i);
        symbols[i] =
            root->RegisterSymbol(name.c_str(), CSize(size, size), zel::SYMBOL_CIRCLE, "", 1, RGB(90, 40, 20),
                                 0, color, RGB(200, 200, 200), 1, "Arial", 80, 0, 0, nullptr, nullptr, 0);
    }

    auto* graph = new Zel2Graph;
    root->Add(graph);
    graph->SetGraphSize(CSize(8000, 4900));
    graph->SetMargins(700, 900, 350, 650);
    graph->SetCoord(-180, -90, 180, 90);
    const std::vector<double> meridians = {-180, -120, -60, 0, 60, 120, 180},
                              parallels = {-90, -60, -30, 0, 30, 60, 90};
    graph->SetXLabels(meridians), graph->SetXTicks(meridians), graph->SetXLines(meridians);
    graph->SetYLabels(parallels), graph->SetYTicks(parallels), graph->SetYLines(parallels);

    // Small ones last, so that none is hidden; each point brings its own symbol.
    std::vector<std::size_t> order(magnitude.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return magnitude[a] > magnitude[b]; });
    auto* quakes = new Zel2PointArray;
    for (const std::size_t i : order) {
        quakes->Append(longitude[i], latitude[i]);
        quakes->AddSymbol(symbols[ClassOf(magnitude[i])]);
    }
    graph->AddIn(quakes);

    const Zel2Text::Rule noRule{-1, 0.0F};
    root->Add(new Zel2Text("Earthquakes, 31 January to 7 February 2018", CPoint(4175, 4650), title,
                           DT_CENTER | DT_VCENTER, 0, -1, -1, noRule));
    root->Add(new Zel2Text("longitude in degrees", CPoint(4175, 200), small, DT_CENTER | DT_VCENTER, 0, -1,
                           -1, noRule));
    root->Add(new Zel2Text("latitude in degrees", CPoint(180, 2325), small, DT_CENTER | DT_VCENTER, 900, -1,
                           -1, noRule));
    // The key: rectangles that show nothing but a symbol, and what it stands for.
    for (int i = 0; i < kClasses; ++i) {
        const int x = 1200 + 900 * i;
        root->Add(new Zel2Rect(CRect(x - 100, 4150, x + 100, 4350), -1, -1, Zel2Rect::RECTANGLE, symbols[i]));
        const std::string text = i == 0              ? "below 1"
                                 : i + 1 == kClasses ? "6 and more"
                                                     : std::to_string(i) + " to " + std::to_string(i + 1);
        root->Add(new Zel2Text(text.c_str(), CPoint(x + 190, 4250), small, DT_VCENTER, 0, -1, -1, noRule));
    }
    return root;
}
