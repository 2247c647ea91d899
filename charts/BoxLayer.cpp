#include "charts/ColumnBoxes.h"
#include "charts/TextRuler.h"
#include "core/ArchiveFields.h"

#include <zel/ChartSpreads.h>
#include <zel/DrawColor.h>
#include <zel/DrawPen.h>
#include <zel/DrawSymbol.h>
#include <zel/Zel2Chart.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

IMPLEMENT_SERIAL(Zel2BoxLayer, Zel2RowLayer, 0)

struct Zel2BoxLayer::Group {
    std::size_t row = 0;  // the first
    zel::BoxSummary summary;
};

// In logical units, but for the direction: `at` along the positions, the others along the values.
struct Zel2BoxLayer::Shape {
    LONG begin, middle, end;
    LONG waistBegin, waistEnd;  // at the median
    LONG low, lower, median, upper, high;
    LONG lowerNotch, upperNotch;
};

Zel2BoxLayer::Zel2BoxLayer() : Zel2RowLayer(2) {}
Zel2BoxLayer::~Zel2BoxLayer() = default;

Zel2BoxLayer::Zel2BoxLayer(zel::Column groups, zel::Column values, const zel::BoxOptions& options)
    : Zel2RowLayer(options, {std::move(groups), std::move(values)}, options.horizontal),
      width_(options.width),
      reach_(options.reach),
      notches_(options.notches),
      outliers_(options.outliers),
      markSize_(options.markSize) {}

void Zel2BoxLayer::SetDefaults() {
    constexpr double kTint = 0.45, kThin = 0.8, kThick = 1.8;
    if (fill_ < 0) fill_ = RegisterOwnTint(kTint);
    if (pen_ < 0) pen_ = RegisterOwnPen(kThin, zel::Dash::SOLID);
    if (median_ < 0) median_ = RegisterOwnPen(kThick, zel::Dash::SOLID);
    if (symbol_ < 0 && outliers_) symbol_ = RegisterOwnSymbol(markSize_, zel::SYMBOL_CIRCLE);
}

void Zel2BoxLayer::Forget() {
    groups_.reset();
}

std::optional<std::string> Zel2BoxLayer::Slot() const {
    return "layer " + std::to_string(PaletteEntry());
}

// Values are counted from the column's own origin, wherever the axis counts from.
const std::vector<Zel2BoxLayer::Group>& Zel2BoxLayer::Groups() {
    if (groups_) return *groups_;
    groups_ = std::make_unique<std::vector<Group>>();
    const zel::SeriesValues keys = Columns()[0].Values(), values = Columns()[1].Values();
    std::unordered_map<double, std::size_t> groupOf;
    std::vector<std::vector<double>> members;
    for (std::size_t i = 0; i < Rows(); ++i) {
        const double key = keys.At(i), value = values.At(i);
        if (!std::isfinite(key) || !std::isfinite(value)) continue;
        const auto [at, isNew] = groupOf.try_emplace(key, members.size());
        if (isNew) {
            groups_->push_back({i, {}});
            members.emplace_back();
        }
        members[at->second].push_back(value);
    }
    for (std::size_t i = 0; i < members.size(); ++i)
        (*groups_)[i].summary = zel::SummaryOfBox(members[i], reach_);
    return *groups_;
}

std::vector<zel::BoxSummary> Zel2BoxLayer::Summaries() {
    std::vector<zel::BoxSummary> summaries;
    summaries.reserve(Groups().size());
    for (const Group& group : Groups()) summaries.push_back(group.summary);
    return summaries;
}

std::size_t Zel2BoxLayer::Items() {
    return Groups().size();
}

std::size_t Zel2BoxLayer::RowOf(std::size_t item) {
    return Groups()[item].row;
}

void Zel2BoxLayer::TakeRange(zel::AxisRange& x, zel::AxisRange& y) {
    zel::AxisRange& positions = PositionsOf(x, y);
    zel::AxisRange& values = ValuesOf(x, y);
    TakePositions(positions, RoomOf(positions.GetScale()));
    const double shift = Columns()[1].Origin() - values.GetScale().Origin();
    for (const Group& group : Groups()) {
        values.Add(group.summary.lowWhisker + shift);
        values.Add(group.summary.highWhisker + shift);
        if (!outliers_ || group.summary.outliers.empty()) continue;
        values.Add(group.summary.outliers.front() + shift);
        values.Add(group.summary.outliers.back() + shift);
    }
}

std::optional<Zel2BoxLayer::Shape> Zel2BoxLayer::ShapeOf(const Group& group,
                                                         const zel::OrientedFrame& frame) {
    const double position = frame.Positions().Forward(On(0, frame.Positions()).At(group.row));
    if (!(position >= frame.FirstPosition() && position <= frame.LastPosition())) return std::nullopt;
    const Room room = RoomOf(frame.Positions());
    const zel::BoxSummary& summary = group.summary;
    const double shift = Columns()[1].Origin() - frame.Values().Origin();
    const auto along = [&](double place) {
        return frame.AlongPositions(frame.ToLogical(place, frame.LowValue()));
    };
    const auto value = [&](double v) {
        return frame.AlongValues(frame.ToLogical(position, frame.ValueWithin(v + shift)));
    };
    const double begin = std::max(room.Begin(position), frame.FirstPosition()),
                 end = std::min(room.End(position), frame.LastPosition());
    const double waist = notches_ ? (end - begin) / 4 : 0;
    Shape shape{};
    shape.begin = along(begin);
    shape.end = along(end);
    shape.middle = along((begin + end) / 2);
    shape.waistBegin = along(begin + waist);
    shape.waistEnd = along(end - waist);
    shape.low = value(summary.lowWhisker);
    shape.lower = value(summary.lowerQuartile);
    shape.median = value(summary.median);
    shape.upper = value(summary.upperQuartile);
    shape.high = value(summary.highWhisker);
    shape.lowerNotch = value(summary.median - summary.notch);
    shape.upperNotch = value(summary.median + summary.notch);
    return shape;
}

std::optional<CRect> Zel2BoxLayer::BoxOf(std::size_t item, const zel::OrientedFrame& frame) {
    const std::optional<Shape> shape = ShapeOf(Groups()[item], frame);
    if (!shape) return std::nullopt;
    CRect box(frame.Point(shape->begin, shape->low), frame.Point(shape->end, shape->high));
    box.NormalizeRect();
    return box;
}

// The median of a group.
zel::Datum Zel2BoxLayer::DatumOf(std::size_t item, const zel::OrientedFrame& frame) {
    const Group& group = Groups()[item];
    zel::Datum datum = Zel2RowLayer::DatumOf(group.row, frame);
    (IsHorizontal() ? datum.x : datum.y) = group.summary.median + Columns()[1].Origin();
    return datum;
}

void Zel2BoxLayer::DrawIn(const zel::LayerFrame& frame) {
    DrawColor* const fill = Color(fill_);
    if (!fill || !DC()) return;
    const zel::OrientedFrame oriented(frame, IsHorizontal());
    std::vector<Shape> shapes;
    for (const Group& group : Groups())
        if (const auto shape = ShapeOf(group, oriented)) shapes.push_back(*shape);
    if (notches_) {
        for (const Shape& s : shapes) {
            std::vector<CPoint> corners;
            for (const auto& [at, value] : {std::pair(s.begin, s.lower),
                                            {s.begin, s.lowerNotch},
                                            {s.waistBegin, s.median},
                                            {s.begin, s.upperNotch},
                                            {s.begin, s.upper},
                                            {s.end, s.upper},
                                            {s.end, s.upperNotch},
                                            {s.waistEnd, s.median},
                                            {s.end, s.lowerNotch},
                                            {s.end, s.lower},
                                            {s.begin, s.lower}})
                corners.push_back(oriented.Point(at, value));
            fill->Polygon(corners.data(), static_cast<int>(corners.size()));
            if (DrawPen* pen = Pen(pen_)) {
                pen->MoveTo(corners[0].x, corners[0].y);
                for (const CPoint& corner : corners) pen->LineTo(corner.x, corner.y);
            }
        }
    } else {
        std::vector<CRect> boxes;
        boxes.reserve(shapes.size());
        for (const Shape& s : shapes) {
            CRect box(oriented.Point(s.begin, s.lower), oriented.Point(s.end, s.upper));
            box.NormalizeRect();
            boxes.push_back(box);
        }
        fill->FillRects(boxes);
    }
    DrawLines(shapes, oriented);
    if (outliers_) DrawOutliers(oriented);
}

void Zel2BoxLayer::DrawLines(const std::vector<Shape>& shapes, const zel::OrientedFrame& frame) {
    DrawPen* const pen = Pen(pen_);
    DrawPen* const median = Pen(median_);
    if (!pen || !median) return;
    const auto line = [&](DrawPen& with, LONG position1, LONG value1, LONG position2, LONG value2) {
        const CPoint from = frame.Point(position1, value1), to = frame.Point(position2, value2);
        with.MoveTo(from.x, from.y);
        with.LineTo(to.x, to.y);
    };
    for (const Shape& s : shapes) {
        const LONG cap = zel::Subtract(s.end, s.begin) / 4;
        const LONG capBegin = zel::Subtract(s.middle, cap), capEnd = zel::Add(s.middle, cap);
        line(*pen, s.middle, s.lower, s.middle, s.low);
        line(*pen, s.middle, s.upper, s.middle, s.high);
        line(*pen, capBegin, s.low, capEnd, s.low);
        line(*pen, capBegin, s.high, capEnd, s.high);
        if (!notches_) {
            line(*pen, s.begin, s.lower, s.end, s.lower);
            line(*pen, s.end, s.lower, s.end, s.upper);
            line(*pen, s.end, s.upper, s.begin, s.upper);
            line(*pen, s.begin, s.upper, s.begin, s.lower);
        }
        line(*median, s.waistBegin, s.median, s.waistEnd, s.median);
    }
}

// What lies in one place is drawn once.
void Zel2BoxLayer::DrawOutliers(const zel::OrientedFrame& frame) {
    DrawSymbol* const symbol = Symbol(symbol_);
    if (!symbol) return;
    const double shift = Columns()[1].Origin() - frame.Values().Origin();
    std::vector<CPoint> places;
    for (const Group& group : Groups()) {
        const std::optional<Shape> shape = ShapeOf(group, frame);
        if (!shape) continue;
        for (const double outlier : group.summary.outliers) {
            const double value = frame.Values().Forward(outlier + shift);
            if (!(value >= frame.LowValue() && value <= frame.HighValue())) continue;
            const CPoint at =
                frame.Point(shape->middle, frame.AlongValues(frame.ToLogical(frame.FirstPosition(), value)));
            if (places.empty() || !(places.back() == at)) places.push_back(at);
        }
    }
    if (!places.empty()) symbol->PlotOn(this, places);
}

void Zel2BoxLayer::DrawKey(const CRect& box) {
    DrawColor* const fill = Color(fill_);
    DrawPen* const pen = Pen(pen_);
    if (!fill || !pen) return;
    fill->FillRect(box);
    pen->Rect(box);
    const int middle = (box.left + box.right) / 2;
    pen->MoveTo(middle, box.top);
    pen->LineTo(middle, box.bottom);
}

void Zel2BoxLayer::Serialize(CArchive& ar) {
    Zel2RowLayer::Serialize(ar);
    zel::Exchange(ar, fill_, pen_, median_, symbol_, width_, reach_);
    zel::ExchangeFlag(ar, notches_);
    zel::ExchangeFlag(ar, outliers_);
    zel::Exchange(ar, markSize_);
    if (ar.IsLoading() && Columns().size() != 2)
        ar.Fail(CArchiveException::genericException, "a box plot has a wrong number of columns");
}
