#include "charts/OrientedFrame.h"
#include "charts/ScaleValues.h"
#include "core/ArchiveFields.h"

#include <zel/ChartBars.h>
#include <zel/Error.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>

#include <algorithm>
#include <cmath>

IMPLEMENT_DYNAMIC(Zel2RowLayer, Zel2Layer)

Zel2RowLayer::Zel2RowLayer(std::size_t columns) : columns_(columns), on_(columns) {}
Zel2RowLayer::~Zel2RowLayer() = default;

Zel2RowLayer::Zel2RowLayer(const zel::LayerOptions& options, std::vector<zel::Column> columns,
                           bool horizontal)
    : Zel2Layer(options), columns_(std::move(columns)), on_(columns_.size()), horizontal_(horizontal) {
    if (options.name.empty()) SetName(columns_[columns_.size() > 1 ? 1 : 0].Name());
}

void Zel2RowLayer::SetColumns(std::vector<zel::Column> columns) {
    if (columns.size() != columns_.size()) {
        throw zel::Error("Cannot give a layer " + std::to_string(columns.size()) + " columns: it has " +
                         std::to_string(columns_.size()));
    }
    columns_ = std::move(columns);
    DataChanged();
}

void Zel2RowLayer::DataChanged() {
    for (zel::ScaleValues& values : on_) values.Forget();
    leastStep_.reset();
    room_.reset();
    Forget();
    Changed();
}

std::size_t Zel2RowLayer::Rows() const {
    std::size_t rows = columns_.empty() ? 0 : columns_.front().Size();
    for (const zel::Column& column : columns_) rows = std::min(rows, column.Size());
    return rows;
}

void Zel2RowLayer::DescribeAxes(zel::AxisRange& x, zel::AxisRange& y) {
    for (std::size_t i = 0; i < columns_.size(); ++i)
        zel::Describe(i == 0 ? PositionsOf(x, y) : ValuesOf(x, y), columns_[i]);
}

bool Zel2RowLayer::EndsWithData(Coordinate coordinate) const {
    return coordinate == (horizontal_ ? Coordinate::Y : Coordinate::X);
}

const zel::SeriesValues& Zel2RowLayer::On(std::size_t column, const zel::Scale& scale) {
    return on_[column].On(columns_[column], scale);
}

std::uint64_t Zel2RowLayer::Revision() const {
    return Chart() ? Chart()->Revision() : 0;
}

// Neighbours reckon their common edge from both sides: a rounding must not tell the two apart.
double Zel2RowLayer::Room::Edge(double position, double edge) const {
    const double total = step * width, grain = std::ldexp(step, -30);
    const double exact = position - total / 2 + total * (edge / static_cast<double>(slots));
    return grain > 0 ? std::nearbyint(exact / grain) * grain : exact;
}

std::vector<Zel2RowLayer*> Zel2RowLayer::Companions() const {
    std::vector<Zel2RowLayer*> companions;
    if (!Chart()) return companions;
    for (Zel2Layer* layer : Chart()->Layers()) {
        auto* const other = dynamic_cast<Zel2RowLayer*>(layer);
        if (other && other->IsVisible() && other->XAxis() == XAxis() && other->YAxis() == YAxis() &&
            other->horizontal_ == horizontal_)
            companions.push_back(other);
    }
    return companions;
}

double Zel2RowLayer::LeastStep(const zel::Scale& positions) {
    if (positions.GetKind() == zel::Scale::Kind::CATEGORIES) return 1;
    if (leastStep_ && stepRevision_ == Revision()) return *leastStep_;
    const zel::SeriesValues& at = On(0, positions);
    std::vector<double> places;
    places.reserve(Items());
    for (std::size_t i = 0; i < Items(); ++i) {
        const double place = positions.Forward(at.At(RowOf(i)));
        if (std::isfinite(place)) places.push_back(place);
    }
    if (!std::is_sorted(places.begin(), places.end())) std::sort(places.begin(), places.end());
    // What differs by less than this is the same but for roundings.
    const double least = places.empty() ? 0 : (places.back() - places.front()) * 1e-10;
    double step = 0;
    for (std::size_t i = 1; i < places.size(); ++i) {
        const double distance = places[i] - places[i - 1];
        if (distance > least && (step == 0 || distance < step)) step = distance;
    }
    leastStep_ = std::isfinite(step) ? step : 0;
    stepRevision_ = Revision();
    return *leastStep_;
}

Zel2RowLayer::Room Zel2RowLayer::RoomOf(const zel::Scale& positions) {
    if (!room_ || roomRevision_ != Revision()) room_ = MakeRoom(positions);
    roomRevision_ = Revision();
    return *room_;
}

std::optional<Zel2RowLayer::Room> Zel2RowLayer::RoomOfBars(const std::string& name,
                                                           const zel::Scale& positions) {
    for (Zel2RowLayer* companion : Companions())
        if (companion != this && companion->Name() == name && companion->Slot())
            return companion->RoomOf(positions);
    return std::nullopt;
}

Zel2RowLayer::Room Zel2RowLayer::MakeRoom(const zel::Scale& positions) const {
    Room room;
    room.step = 0;
    room.width = std::clamp(SlotWidth(), 0.0, 1.0);
    std::vector<std::string> slots;
    for (Zel2RowLayer* companion : Companions()) {
        const auto its = companion->Slot();
        if (!its) continue;
        const double step = companion->LeastStep(positions);
        if (step > 0 && (room.step == 0 || step < room.step)) room.step = step;
        if (std::find(slots.begin(), slots.end(), *its) == slots.end()) slots.push_back(*its);
    }
    if (room.step == 0) {
        constexpr double kDay = 86'400;
        room.step = positions.GetKind() == zel::Scale::Kind::TIME ? kDay : 1;
    }
    const auto slot = Slot();
    const auto own = slot ? std::find(slots.begin(), slots.end(), *slot) : slots.end();
    if (own == slots.end()) return room;
    room.slots = slots.size();
    room.slot = static_cast<std::size_t>(own - slots.begin());
    return room;
}

void Zel2RowLayer::TakePositions(zel::AxisRange& range, const Room& room) {
    const zel::Scale& scale = range.GetScale();
    const zel::SeriesValues& at = On(0, scale);
    double low = std::numeric_limits<double>::infinity(), high = -low;
    for (std::size_t i = 0; i < Items(); ++i) {
        const double position = at.At(RowOf(i)), place = scale.Forward(position);
        if (std::isfinite(place)) {
            low = std::min(low, place);
            high = std::max(high, place);
        } else {
            range.Add(position);  // counted
        }
    }
    if (low > high) return;
    range.Add(scale.Inverse(low - room.step / 2));
    range.Add(scale.Inverse(high + room.step / 2));
}

zel::Datum Zel2RowLayer::DatumOf(std::size_t item, const zel::OrientedFrame& frame) {
    zel::Datum datum;
    datum.row = item;
    const double position = On(0, frame.Positions()).At(item) + frame.Positions().Origin();
    const double value = columns_.size() > 1 ? On(1, frame.Values()).At(item) + frame.Values().Origin() : 0;
    datum.x = horizontal_ ? value : position;
    datum.y = horizontal_ ? position : value;
    return datum;
}

std::optional<zel::Datum> Zel2RowLayer::Nearest(const CPoint& device, double reach) {
    Zel2Chart* const chart = Chart();
    if (!chart || !Map()) return std::nullopt;
    const zel::LayerFrame frame = chart->FrameOf(*this);
    const zel::OrientedFrame oriented(frame, horizontal_);
    CPoint origin;
    CSize extent;
    Map()->GetDevice(origin, extent);
    const CPoint at = device - CSize(origin.x, origin.y);
    CRect plot(frame.world.lower, frame.world.upper);
    plot.NormalizeRect();
    const auto beside = [](LONG place, LONG low, LONG high) {
        return static_cast<double>(
            std::max<std::int64_t>({std::int64_t{low} - place, std::int64_t{place} - high, 0}));
    };
    std::optional<std::size_t> nearest;
    double best = reach;
    for (std::size_t item = 0; item < Items(); ++item) {
        const std::optional<CRect> box = BoxOf(item, oriented);
        if (!box || box->left > plot.right || box->right < plot.left || box->top > plot.bottom ||
            box->bottom < plot.top)
            continue;
        const double distance =
            std::hypot(beside(at.x, std::max(box->left, plot.left), std::min(box->right, plot.right)),
                       beside(at.y, std::max(box->top, plot.top), std::min(box->bottom, plot.bottom)));
        if (distance > best) continue;
        best = distance;
        nearest = item;
    }
    if (!nearest) return std::nullopt;
    zel::Datum datum = DatumOf(*nearest, oriented);
    datum.distance = best;
    return datum;
}

std::vector<std::pair<double, double>> Zel2RowLayer::Sample(const zel::Scale& x, const zel::Scale& y,
                                                            std::size_t most) {
    std::vector<std::pair<double, double>> points;
    const std::size_t step = Rows() / std::max<std::size_t>(1, most) + 1;
    for (std::size_t column = 1; column < columns_.size(); ++column) {
        const zel::SeriesValues at = On(0, PositionsOf(x, y)), values = On(column, ValuesOf(x, y));
        for (std::size_t i = 0; i < Rows(); i += step) {
            const double position = at.At(i), value = values.At(i);
            horizontal_ ? points.emplace_back(value, position) : points.emplace_back(position, value);
        }
    }
    return points;
}

void Zel2RowLayer::Serialize(CArchive& ar) {
    Zel2Layer::Serialize(ar);
    int count = static_cast<int>(columns_.size());
    zel::Exchange(ar, count);
    if (ar.IsLoading()) {
        constexpr int kMost = 16;
        if (count < 1 || count > kMost)
            ar.Fail(CArchiveException::genericException, "a layer of a chart has a wrong number of columns");
        columns_.assign(static_cast<std::size_t>(count), {});
        on_ = std::vector<zel::ScaleValues>(columns_.size());
    }
    for (zel::Column& column : columns_) column.Serialize(ar);
    zel::ExchangeFlag(ar, horizontal_);
    if (ar.IsLoading()) DataChanged();
}
