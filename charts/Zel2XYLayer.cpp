#include "charts/ScaleValues.h"
#include "core/ArchiveFields.h"
#include "series/SeriesHit.h"
#include "series/SeriesIndex.h"

#include <zel/ChartLayers.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>

#include <algorithm>
#include <cmath>

IMPLEMENT_DYNAMIC(Zel2XYLayer, Zel2Layer)

Zel2XYLayer::Zel2XYLayer() : Zel2XYLayer({}, {}, {}) {}
Zel2XYLayer::~Zel2XYLayer() = default;

Zel2XYLayer::Zel2XYLayer(const zel::LayerOptions& options, zel::Column x, zel::Column y)
    : Zel2Layer(options),
      x_(std::move(x)),
      y_(std::move(y)),
      onX_(std::make_unique<zel::ScaleValues>()),
      onY_(std::make_unique<zel::ScaleValues>()) {
    if (options.name.empty()) SetName(y_.Name());
}

void Zel2XYLayer::SetData(zel::Column x, zel::Column y) {
    x_ = std::move(x);
    y_ = std::move(y);
    source_.reset();
    DataChanged();
}

void Zel2XYLayer::SetSource(std::unique_ptr<Zel2PointSet> source) {
    source_ = std::move(source);
    DataChanged();
}

void Zel2XYLayer::DataChanged() {
    index_.reset();
    onX_->Forget();
    onY_->Forget();
    Changed();
}

std::size_t Zel2XYLayer::Rows() const {
    return source_ ? source_->NPoints() : std::min(x_.Size(), y_.Size());
}

void Zel2XYLayer::DescribeAxes(zel::AxisRange& x, zel::AxisRange& y) {
    if (source_) {
        x.AddNumbers();
        y.AddNumbers();
        return;
    }
    zel::Describe(x, x_);
    zel::Describe(y, y_);
}

void Zel2XYLayer::TakeRange(zel::AxisRange& x, zel::AxisRange& y) {
    for (const zel::SeriesStretch& stretch : StretchesOn(x.GetScale(), y.GetScale())) {
        x.Add(stretch, zel::AxisRange::Coordinate::X);
        y.Add(stretch, zel::AxisRange::Coordinate::Y);
    }
}

std::vector<zel::SeriesStretch> Zel2XYLayer::StretchesOn(const zel::Scale& x, const zel::Scale& y) {
    if (source_) return source_->Stretches();
    const zel::SeriesValues xs = onX_->On(x_, x), ys = onY_->On(y_, y);
    if (onX_->HasChanged() || onY_->HasChanged()) index_.reset();
    const std::size_t n = Rows();
    if (n < zel::SeriesIndex::kLeastPoints) return {{xs, ys, 0, n}};
    if (!index_) index_ = std::make_unique<zel::SeriesIndex>();
    index_->Extend(xs, ys, n);
    return {{xs, ys, 0, n, index_.get()}};
}

void Zel2XYLayer::Transform(std::vector<zel::SeriesStretch>& stretches, const zel::LayerFrame& frame) {
    for (zel::SeriesStretch& stretch : stretches) {
        stretch.xTransform = frame.xTransform.get();
        stretch.yTransform = frame.yTransform.get();
    }
}

std::vector<zel::SeriesStretch> Zel2XYLayer::Stretches(const zel::LayerFrame& frame) {
    std::vector<zel::SeriesStretch> stretches = StretchesOn(frame.x, frame.y);
    Transform(stretches, frame);
    return stretches;
}

std::optional<zel::Datum> Zel2XYLayer::Nearest(const CPoint& device, double reach) {
    Zel2Chart* const chart = Chart();
    if (!chart || !Map()) return std::nullopt;
    const zel::LayerFrame frame = chart->FrameOf(*this);
    CPoint origin;
    CSize extent;
    Map()->GetDevice(origin, extent);
    const double atX = device.x - origin.x, atY = device.y - origin.y;
    const WorldFrame& world = frame.world;
    const auto toX = [&](double v) { return world.XAt(v) - atX; };
    const auto toY = [&](double v) { return world.YAt(v) - atY; };
    std::optional<zel::Datum> nearest;
    double best = reach;
    std::size_t first = 0;
    for (const zel::SeriesStretch& stretch : Stretches(frame)) {
        const auto beyond = [&](double low, double high) {
            return low > high || (std::min(low, high) > best) || (std::max(low, high) < -best);
        };
        zel::WalkSeries(
            stretch,
            [&](const zel::SeriesSpan& span, std::size_t, std::size_t) {
                if (span.xmin > span.xmax) return true;
                const double a = toX(span.xmin), b = toX(span.xmax), c = toY(span.ymin), d = toY(span.ymax);
                return beyond(std::min(a, b), std::max(a, b)) || beyond(std::min(c, d), std::max(c, d));
            },
            [&](const zel::SeriesSpan&, std::size_t begin, const double* x, const double* y, std::size_t n) {
                for (std::size_t i = 0; i < n; ++i) {
                    if (!world.Contains(x[i], y[i])) continue;
                    const double distance = std::hypot(toX(x[i]), toY(y[i]));
                    if (!(distance <= best)) continue;
                    best = distance;
                    const std::size_t row = begin + i;
                    nearest = zel::Datum{first + row - stretch.begin, stretch.x.At(row) + frame.x.Origin(),
                                         stretch.y.At(row) + frame.y.Origin(), distance};
                }
            });
        first += stretch.Size();
    }
    return nearest;
}

std::vector<std::pair<double, double>> Zel2XYLayer::Sample(const zel::Scale& x, const zel::Scale& y,
                                                           std::size_t most) {
    std::vector<std::pair<double, double>> points;
    const std::size_t step = Rows() / std::max<std::size_t>(1, most) + 1;
    for (const zel::SeriesStretch& stretch : StretchesOn(x, y))
        for (std::size_t i = stretch.begin; i < stretch.end; i += step)
            points.emplace_back(stretch.x.At(i), stretch.y.At(i));
    return points;
}

void Zel2XYLayer::Serialize(CArchive& ar) {
    Zel2Layer::Serialize(ar);
    bool hasSource = source_ != nullptr;
    zel::ExchangeFlag(ar, hasSource);
    if (ar.IsLoading()) {
        source_ = hasSource ? zel::ReadOwned<Zel2PointSet>(ar) : nullptr;
    } else if (hasSource) {
        ar.WriteObject(source_.get());
    }
    x_.Serialize(ar);
    y_.Serialize(ar);
    if (ar.IsLoading()) DataChanged();
}
