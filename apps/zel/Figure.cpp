#include "apps/zel/Figure.h"

#include <algorithm>
#include <cmath>

namespace zel::cli {
namespace {

// The points of a database as columns.
Series WithColumns(Series series) {
    if (!series.source) return series;
    std::vector<double> x, y;
    for (std::size_t i = 0; i < series.source->NPoints(); ++i) {
        x.push_back(series.source->X(static_cast<long>(i)));
        y.push_back(series.source->Y(static_cast<long>(i)));
    }
    series.x = std::move(x);
    series.y = zel::Column(std::move(y)).SetName(series.name);
    return series;
}

bool HasPoint(const Series& series, FigureKind kind) {
    const Series columns = WithColumns(series);
    const bool needsX = kind != FigureKind::HISTOGRAM;
    for (std::size_t i = 0; i < columns.y.Size(); ++i) {
        const bool hasX = !needsX || (i < columns.x.Size() && std::isfinite(columns.x.At(i)));
        if (hasX && std::isfinite(columns.y.At(i))) return true;
    }
    return false;
}

// A copy of the points, when they are a database's: they can be read from there again.
void GiveData(Zel2XYLayer& layer, const Series& series) {
    if (series.source) layer.SetSource(std::make_unique<Zel2DaoPointSet>(*series.source));
}

void AddBars(Zel2Chart& chart, const Series& series, const LayerOptions& layer,
             const FigureOptions& options) {
    BarOptions bars{layer};
    bars.stacking = options.stack ? Stacking::VALUES : Stacking::NONE;
    chart.AddBars(series.x, series.y, bars);
    if (series.error.IsEmpty()) return;
    ErrorOptions errors;
    errors.color = RGB(60, 60, 60);
    errors.bars = series.name;
    chart.AddErrors(series.x, series.y, series.error, errors)->SetName("");
}

// Histograms are compared by the same bins.
std::vector<double> CommonEdges(const std::vector<Series>& series, const FigureOptions& options) {
    std::vector<double> values;
    for (const Series& one : series) {
        const Column y = WithColumns(one).y;
        for (std::size_t i = 0; i < y.Size(); ++i)
            if (std::isfinite(y.At(i))) values.push_back(y.Origin() + y.At(i));
    }
    return options.bins > 0 ? BinEdges(values, static_cast<std::size_t>(options.bins))
                            : BinEdges(values, BinRule::FREEDMAN_DIACONIS);
}

void AddHistogram(Zel2Chart& chart, const Series& series, const LayerOptions& layer,
                  const std::vector<double>& edges, bool alone) {
    HistogramOptions histogram{layer};
    constexpr double kSeeThrough = 0.6;
    if (!alone) histogram.opacity = kSeeThrough;
    histogram.edges = edges;
    chart.AddHistogram(series.y, histogram);
}

void AddHeatMap(Zel2Chart& chart, const Series& series) {
    chart.AddHeatMapOfRows(series.x, series.y, series.color)->SetName("");
}

// Marks with a size or a colour of their own.
void AddBubbles(Zel2Chart& chart, const Series& series, const LayerOptions& layer) {
    constexpr double kLargest = 20, kAll = 5;  // points
    BubbleOptions bubbles{layer};
    bubbles.sizes = series.size;
    bubbles.colors = series.color;
    bubbles.size = series.size.IsEmpty() ? kAll : kLargest;
    bubbles.opacity = series.size.IsEmpty() ? 1 : 0.7;
    chart.AddBubbles(series.x, series.y, bubbles);
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
    if (!series.error.IsEmpty())
        chart.AddErrors(series.x, series.y, series.error, {{.color = Color::Palette(place)}})->SetName("");
    if (options.line) {
        GiveData(*chart.AddLine(series.x, series.y, {layer}), series);
        layer.name.clear();
    }
    if (!series.color.IsEmpty() || !series.size.IsEmpty()) {
        AddBubbles(chart, series, layer);
        return;
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
    if (std::none_of(series.begin(), series.end(),
                     [&](const Series& one) { return HasPoint(one, options.kind); })) {
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
    if (options.logX) chart->X().SetLogarithm();
    if (options.logY) chart->Y().SetLogarithm();
    std::vector<double> edges;
    if (options.kind == FigureKind::HISTOGRAM) edges = CommonEdges(series, options);
    int place = 0;
    for (const Series& one : series) {
        const LayerOptions layer{.name = one.name, .color = Color::Palette(place)};
        switch (options.kind) {
            case FigureKind::BARS:
                AddBars(*chart, WithColumns(one), layer, options);
                break;
            case FigureKind::HISTOGRAM:
                AddHistogram(*chart, WithColumns(one), layer, edges, series.size() == 1);
                break;
            case FigureKind::BOX:
                chart->AddBoxes(WithColumns(one).x, WithColumns(one).y, {layer});
                break;
            case FigureKind::HEAT:
                AddHeatMap(*chart, one);
                break;
            default:
                AddSeries(*chart, one, place, options);
        }
        ++place;
    }
    // Its colours and sizes say what it is.
    auto* const bubbles = dynamic_cast<Zel2BubbleLayer*>(chart->Layers().back());
    if (bubbles && series.size() == 1) bubbles->SetName("");
    return root;
}

}  // namespace zel::cli
