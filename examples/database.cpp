// The average year in Seattle, computed by a database: daily values go into a SQLite table through a
// recordset, and each series is one query over it.
#include "examples/gallery.h"

#include <zel/sqlite/Install.h>

#include <filesystem>

namespace {

// Fields of a recordset are written like variables.
void FillTable(CDaoDatabase& database, const std::string& csv) {
    database.Execute("CREATE TABLE daily (year DOUBLE, high DOUBLE, low DOUBLE)");
    const std::vector<double> years = ReadColumn(csv, "date");
    const std::vector<double> highs = ReadColumn(csv, "temp_max");
    const std::vector<double> lows = ReadColumn(csv, "temp_min");
    CDaoRecordset daily(&database);
    daily.Open(dbOpenTable, "daily");
    DBField year(&daily, "year", false), high(&daily, "high", false), low(&daily, "low", false);
    database.BeginTrans();
    for (std::size_t i = 0; i < years.size(); ++i) {
        daily.AddNew();
        year = years[i];
        high = highs[i];
        low = lows[i];
        daily.Update();
    }
    database.CommitTrans();
}

// Half months of all years, the middle of each on x: the database groups, sorts and averages.
constexpr const char* kYear =
    "(SELECT (CAST((year - CAST(year AS INTEGER)) * 24 AS INTEGER) + 0.5) / 2 AS month, avg(high) AS high, "
    "avg(low) AS low, max(high) AS highest, min(low) AS lowest FROM daily GROUP BY 1 ORDER BY 1)";

}  // namespace

std::unique_ptr<Zel2Main> MakeDatabase(const std::string& folder) {
    zel::sqlite::Install();
    const std::string file = (std::filesystem::temp_directory_path() / "zel-gallery.sqlite").string();
    std::filesystem::remove(file);
    CDaoDatabase database;
    database.Create(file.c_str());
    FillTable(database, folder + "/seattle-weather.csv");

    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);
    root->RegisterColor("Frame Color", RGB(255, 255, 255), RGB(255, 255, 255));
    root->RegisterColor("Background Color", RGB(255, 255, 255), RGB(255, 255, 255));
    root->RegisterPen("Vertical/Horizontal Coordinate Lines", DrawPen::SOLID, 1, RGB(225, 225, 225),
                      RGB(200, 200, 200), nullptr);
    const int title = root->RegisterFont("Title", "Arial", 140, 1, 0, 0, 0, 0, 0);
    const int small = root->RegisterFont("Small", "Arial", 100, 0, 0, 0, 0, 0, 0);

    auto* graph = new Zel2Graph;
    root->Add(graph);
    graph->SetGraphSize(CSize(7000, 4200));
    graph->SetMargins(700, 650, 350, 650);
    graph->SetCoord(0, -10, 12, 40);
    graph->AdjustXAxis(0, 12, 12, 1);
    graph->AdjustYAxis(-10, 40, 8, 1);

    struct Curve {
        const char* column;
        const char* text;
        COLORREF color;
        int width;
        int style;
    };
    const Curve curves[] = {{"highest", "Highest", RGB(213, 94, 0), 2, DrawPen::DOT},
                            {"high", "Mean high", RGB(213, 94, 0), 6, DrawPen::SOLID},
                            {"low", "Mean low", RGB(0, 114, 178), 6, DrawPen::SOLID},
                            {"lowest", "Lowest", RGB(0, 114, 178), 2, DrawPen::DOT}};
    const Zel2Text::Rule noRule{-1, 0.0F};
    int x = 1200;
    for (const Curve& curve : curves) {
        auto* series = new Zel2DaoPointSet;
        graph->AddIn(series);
        series->Create(&database, kYear, "month", curve.column);
        series->SetPen(
            root->RegisterPen(curve.text, curve.style, curve.width, curve.color, RGB(0, 0, 0), nullptr));
        const int font = root->RegisterFont((std::string(curve.text) + " text").c_str(), "Arial", 100, 1, 0,
                                            0, 0, curve.color, RGB(0, 0, 0));
        root->Add(new Zel2Text(curve.text, CPoint(x, 3680), font, DT_VCENTER, 0, -1, -1, noRule));
        x += 1450;
    }
    root->Add(new Zel2Text("The average year in Seattle, 2012 to 2015", CPoint(3675, 3950), title,
                           DT_CENTER | DT_VCENTER, 0, -1, -1, noRule));
    root->Add(new Zel2Text("°C", CPoint(200, 2100), small, DT_CENTER | DT_VCENTER, 900, -1, -1, noRule));
    root->Add(new Zel2Text("months since New Year", CPoint(3675, 200), small, DT_CENTER | DT_VCENTER, 0, -1,
                           -1, noRule));
    database.Close();
    std::filesystem::remove(file);
    return root;
}
