#include "apps/zel/Figure.h"

#include <algorithm>
#include <cmath>

namespace zel::cli {
namespace {

bool HasPoint(const Series& series) {
    const std::size_t n =
        series.source ? series.source->NPoints() : std::min(series.x.Size(), series.y.Size());
    for (std::size_t i = 0; i < n; ++i) {
        const auto row = static_cast<long>(i);
        const double x = series.source ? series.source->X(row) : series.x.At(i);
        const double y = series.source ? series.source->Y(row) : series.y.At(i);
        if (std::isfinite(x) && std::isfinite(y)) return true;
    }
    return false;
}

// A copy of the points, when they are a database's: they can be read from there again.
void GiveData(Zel2XYLayer& layer, const Series& series) {
    if (series.source) layer.SetSource(std::make_unique<Zel2DaoPointSet>(*series.source));
}

// All that is drawn of one series has the colour of its place among them, and one name in the legend.
void AddSeries(Zel2Chart& chart, const Series& series, int place, const FigureOptions& options) {
    LayerOptions layer{.name = series.name, .color = Color::Palette(place)};
    if (options.fill) {
        constexpr double kTint = 0.25;
        LayerOptions area = layer;
        area.opacity = kTint;
        if (options.line || options.symbols) area.name.clear();
        GiveData(*chart.AddArea(series.x, series.y, {area}), series);
        if (options.line || options.symbols) chart.Layers().back()->SetName("");
    }
    if (options.line) {
        GiveData(*chart.AddLine(series.x, series.y, {layer}), series);
        layer.name.clear();
    }
    if (!options.symbols) return;
    constexpr double kMarkSize = 4;  // points
    Zel2PointLayer* const points = chart.AddPoints(series.x, series.y, {layer, kMarkSize});
    points->SetName(layer.name);
    GiveData(*points, series);
}

void SetAxis(ChartAxis& axis, const std::string& title,
             const std::optional<std::pair<double, double>>& range) {
    axis.SetTitle(title);
    if (range) axis.SetRange(range->first, range->second);
}

}  // namespace

std::unique_ptr<Zel2Main> MakeFigure(const std::vector<Series>& series, const FigureOptions& options) {
    if (std::none_of(series.begin(), series.end(), HasPoint)) {
        throw Error("Cannot plot: no row has a number in both the x and a y column");
    }
    if (!(options.width >= 30 && options.height >= 30 && options.width <= 2000 && options.height <= 2000)) {
        throw Error("Cannot plot at this size: width and height must lie between 30 and 2000 millimetres");
    }
    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);
    auto* const chart = root->Add(std::make_unique<Zel2Chart>(
        ChartOptions{.title = options.title, .size = {options.width, options.height}}));
    const bool ofDates = std::any_of(series.begin(), series.end(),
                                     [](const Series& one) { return one.source && one.source->HasDates(); });
    if (ofDates) chart->X().SetTime();
    SetAxis(chart->X(), options.xTitle, options.xRange);
    SetAxis(chart->Y(), options.yTitle, options.yRange);
    int place = 0;
    for (const Series& one : series) AddSeries(*chart, one, place++, options);
    return root;
}

}  // namespace zel::cli
