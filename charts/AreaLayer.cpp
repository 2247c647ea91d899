#include "charts/ClippedPolygon.h"
#include "core/ArchiveFields.h"
#include "series/SeriesIndex.h"
#include "series/ThinnedPath.h"

#include <zel/ChartLayers.h>
#include <zel/DrawColor.h>
#include <zel/Zel2Chart.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>
#include <optional>

IMPLEMENT_SERIAL(Zel2AreaLayer, Zel2XYLayer, 0)

// The edges of an area that are not the points themselves.
struct Zel2AreaLayer::Edges {
    std::vector<double> low, high;
    std::unique_ptr<zel::SeriesIndex> lowIndex, highIndex;
    std::uint64_t revision = 0;  // of the chart

    static zel::SeriesIndex* Indexed(std::unique_ptr<zel::SeriesIndex>& index, const zel::SeriesValues& x,
                                     const std::vector<double>& y) {
        if (y.size() < zel::SeriesIndex::kLeastPoints) return nullptr;
        if (!index) {
            index = std::make_unique<zel::SeriesIndex>();
            index->Extend(x, zel::SeriesValues(y.data()), y.size());
        }
        return index.get();
    }
};

Zel2AreaLayer::Zel2AreaLayer() = default;
Zel2AreaLayer::~Zel2AreaLayer() = default;

Zel2AreaLayer::Zel2AreaLayer(zel::Column x, zel::Column y, const zel::AreaOptions& options)
    : Zel2XYLayer(options, std::move(x), std::move(y)),
      baseline_(options.baseline),
      stacked_(options.stacked) {}

Zel2AreaLayer::Zel2AreaLayer(zel::Column x, zel::Column low, zel::Column high,
                             const zel::AreaOptions& options)
    : Zel2XYLayer(options, std::move(x), std::move(high)), between_(true), low_(std::move(low)) {}

void Zel2AreaLayer::SetColor(int index) {
    colorIndex_ = index;
    Changed();
}

void Zel2AreaLayer::SetDefaults() {
    if (colorIndex_ < 0) colorIndex_ = RegisterOwnColor();
}

std::optional<double> Zel2AreaLayer::Included(Coordinate coordinate) const {
    return between_ || coordinate == Coordinate::X ? std::nullopt : std::optional(baseline_);
}

namespace {

// The height of a stack at x, between its corners; 0 beside it. `x` ascends.
double HeightAt(const zel::SeriesValues& x, const std::vector<double>& tops, double at, std::size_t guess) {
    const std::size_t n = tops.size();
    if (guess < n && x.At(guess) == at) return std::isfinite(tops[guess]) ? tops[guess] : 0;
    std::size_t low = 0, high = n;
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        (x.At(middle) < at ? low : high) = x.At(middle) < at ? middle + 1 : middle;
    }
    if (low == n || (low == 0 && x.At(0) != at)) return 0;
    if (x.At(low) == at || low == 0) return std::isfinite(tops[low]) ? tops[low] : 0;
    const double share = (at - x.At(low - 1)) / (x.At(low) - x.At(low - 1));
    const double height = tops[low - 1] + share * (tops[low] - tops[low - 1]);
    return std::isfinite(height) ? height : 0;
}

}  // namespace

// Gaps of one edge are gaps of both.
void Zel2AreaLayer::MakeEdges() {
    Zel2Chart* const chart = Chart();
    const std::uint64_t revision = chart ? chart->Revision() : 0;
    if (edges_ && edges_->revision == revision) return;
    edges_ = std::make_unique<Edges>();
    edges_->revision = revision;
    const std::size_t n = between_ ? std::min(Rows(), low_.Size()) : Rows();
    Zel2AreaLayer* below = nullptr;
    if (stacked_ && chart) {
        for (Zel2Layer* layer : chart->Layers()) {
            if (layer == this) break;
            auto* const area = dynamic_cast<Zel2AreaLayer*>(layer);
            if (area && area->stacked_ && area->IsVisible() && area->YAxis() == YAxis() &&
                area->XAxis() == XAxis())
                below = area;
        }
        if (below) below->MakeEdges();
    }
    edges_->low.resize(n);
    edges_->high.resize(n);
    for (std::size_t i = 0; i < n; ++i) {
        double high = Y().At(i), low = baseline_;
        if (between_) low = low_.At(i);
        if (below) low = HeightAt(below->X().Values(), below->edges_->high, X().At(i), i);
        if (stacked_) high = low + high;
        if (!std::isfinite(low) || !std::isfinite(high)) low = high = std::nan("");
        edges_->low[i] = low;
        edges_->high[i] = high;
    }
}

void Zel2AreaLayer::TakeRange(zel::AxisRange& x, zel::AxisRange& y) {
    if (!between_ && !stacked_) {
        Zel2XYLayer::TakeRange(x, y);
        return;
    }
    MakeEdges();
    for (const zel::SeriesStretch& stretch : StretchesOn(x.GetScale(), y.GetScale()))
        x.Add(stretch, zel::AxisRange::Coordinate::X);
    for (const std::vector<double>* edge : {&edges_->low, &edges_->high})
        for (const double value : *edge) y.Add(value);
}

void Zel2AreaLayer::DrawIn(const zel::LayerFrame& frame) {
    DrawColor* const color = Color(colorIndex_);
    if (!color || !DC()) return;
    const int width = DC()->CurveColumn();
    std::optional<zel::DeviceColumns> columns;
    if (width > 0) columns.emplace(*DC(), frame.world, width);
    zel::ThinnedPath top(columns ? &*columns : nullptr, zel::ThinnedPath::Gaps::BREAK);
    zel::ThinnedPath bottom = top;
    std::vector<zel::SeriesStretch> stretches = Stretches(frame);
    const bool hasEdges = between_ || stacked_;
    if (hasEdges && !stretches.empty()) {
        MakeEdges();
        zel::SeriesStretch edge = stretches.front();
        edge.end = edges_->high.size();
        edge.y = zel::SeriesValues(edges_->low.data());
        edge.index = Edges::Indexed(edges_->lowIndex, edge.x, edges_->low);
        bottom.Add(edge);
        bottom.Finish();
        edge.y = zel::SeriesValues(edges_->high.data());
        edge.index = Edges::Indexed(edges_->highIndex, edge.x, edges_->high);
        stretches = {edge};
    }
    for (const zel::SeriesStretch& stretch : stretches) top.Add(stretch);
    top.Finish();
    const double base = frame.YWithin(baseline_);
    for (std::size_t run = 0; run < top.runs.size(); ++run) {
        const auto endOf = [run](const zel::ThinnedPath& path) {
            return run + 1 < path.runs.size() ? path.runs[run + 1] : path.x.size();
        };
        zel::ClippedPolygon polygon(frame.world);
        for (std::size_t i = top.runs[run]; i < endOf(top); ++i) polygon.Add(top.x[i], top.y[i]);
        if (!hasEdges) {
            polygon.Add(top.x[endOf(top) - 1], base);
            polygon.Add(top.x[top.runs[run]], base);
        } else if (run < bottom.runs.size()) {
            for (std::size_t i = endOf(bottom); i-- > bottom.runs[run];)
                polygon.Add(bottom.x[i], bottom.y[i]);
        }
        std::vector<CPoint> corners = polygon.Corners();
        if (corners.size() >= 3) color->Polygon(corners.data(), static_cast<int>(corners.size()));
    }
}

void Zel2AreaLayer::DrawKey(const CRect& box) {
    if (DrawColor* color = Color(colorIndex_)) color->FillRect(box);
}

void Zel2AreaLayer::Serialize(CArchive& ar) {
    Zel2XYLayer::Serialize(ar);
    zel::Exchange(ar, colorIndex_, baseline_);
    zel::ExchangeFlag(ar, stacked_);
    zel::ExchangeFlag(ar, between_);
    low_.Serialize(ar);
    if (ar.IsLoading()) edges_.reset();
}
