#include "charts/ColumnSpans.h"
#include "charts/ScaleValues.h"
#include "charts/TextRuler.h"
#include "core/ArchiveFields.h"
#include "series/CurveScope.h"

#include <zel/ChartSpreads.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>
#include <numeric>

IMPLEMENT_SERIAL(Zel2ErrorLayer, Zel2RowLayer, 0)

namespace {

// Positions first.
std::vector<zel::Column> Ordered(const zel::ErrorOptions& options, zel::Column x, zel::Column y,
                                 std::vector<zel::Column> distances) {
    if (options.horizontal) std::swap(x, y);
    distances.insert(distances.begin(), {std::move(x), std::move(y)});
    return distances;
}

}  // namespace

Zel2ErrorLayer::Zel2ErrorLayer(zel::Column x, zel::Column y, zel::Column error,
                               const zel::ErrorOptions& options)
    : Zel2RowLayer(options, Ordered(options, std::move(x), std::move(y), {std::move(error)}),
                   options.horizontal),
      lineWidth_(options.lineWidth),
      cap_(options.cap),
      bars_(options.bars) {}

Zel2ErrorLayer::Zel2ErrorLayer(zel::Column x, zel::Column y, zel::Column below, zel::Column above,
                               const zel::ErrorOptions& options)
    : Zel2RowLayer(options,
                   Ordered(options, std::move(x), std::move(y), {std::move(below), std::move(above)}),
                   options.horizontal),
      lineWidth_(options.lineWidth),
      cap_(options.cap),
      bars_(options.bars) {}

void Zel2ErrorLayer::SetPen(int index) {
    pen_ = index;
    Changed();
}

void Zel2ErrorLayer::SetDefaults() {
    if (pen_ < 0) pen_ = RegisterOwnPen(lineWidth_, zel::Dash::SOLID);
}

// Distances are no values of an axis.
void Zel2ErrorLayer::DescribeAxes(zel::AxisRange& x, zel::AxisRange& y) {
    zel::Describe(PositionsOf(x, y), Columns()[0]);
    zel::Describe(ValuesOf(x, y), Columns()[1]);
}

Zel2ErrorLayer::Ends Zel2ErrorLayer::EndsOf(std::size_t row, double value) const {
    const double below = std::fabs(Columns()[2].At(row)), above = std::fabs(Columns().back().At(row));
    return {value - below, value + above};
}

double Zel2ErrorLayer::PlaceOf(double position, const std::optional<Room>& room) const {
    return room ? (room->Begin(position) + room->End(position)) / 2 : position;
}

void Zel2ErrorLayer::TakeRange(zel::AxisRange& x, zel::AxisRange& y) {
    zel::AxisRange& positions = PositionsOf(x, y);
    zel::AxisRange& values = ValuesOf(x, y);
    const zel::SeriesValues at = On(0, positions.GetScale()), value = On(1, values.GetScale());
    for (std::size_t i = 0; i < Rows(); ++i) {
        positions.Add(at.At(i));
        const Ends ends = EndsOf(i, value.At(i));
        values.Add(value.At(i));
        // A lower end below 0 on a logarithm reaches to the end of the axis.
        if (values.GetScale().HasPlace(ends.low)) values.Add(ends.low);
        values.Add(ends.high);
    }
}

std::vector<std::string> Zel2ErrorLayer::Notes(const zel::Scale& x, const zel::Scale& y) {
    if (bars_.empty() || RoomOfBars(bars_, PositionsOf(x, y))) return {};
    return {"Error bars stand at their positions, since there are no bars \"" + bars_ + "\" on their axes."};
}

int Zel2ErrorLayer::CapLength() {
    return zel::Magnitude(Map()->ToLogical(CSize(zel::UnitsOfPoints(cap_), 0)).cx);
}

void Zel2ErrorLayer::DrawIn(const zel::LayerFrame& frame) {
    DrawPen* const pen = Pen(pen_);
    if (!pen || !DC()) return;
    const zel::OrientedFrame oriented(frame, IsHorizontal());
    const std::optional<Room> room = bars_.empty() ? std::nullopt : RoomOfBars(bars_, oriented.Positions());
    const zel::SeriesValues at = On(0, oriented.Positions()), value = On(1, oriented.Values());
    zel::ColumnSpans spans(*DC(), oriented);
    for (std::size_t i = 0; i < Rows(); ++i) {
        const Ends ends = EndsOf(i, value.At(i));
        const double middle = oriented.Values().Forward(value.At(i));
        if (!std::isfinite(middle)) continue;
        double low = oriented.Values().Forward(ends.low), high = oriented.Values().Forward(ends.high);
        // An end that has no place on a logarithm lies beyond the end of the axis; one that is absent is
        // none.
        if (std::isnan(low)) low = std::isfinite(ends.low) ? oriented.LowValue() - 1 : middle;
        if (std::isnan(high)) high = middle;
        spans.Add(PlaceOf(oriented.Positions().Forward(at.At(i)), room), std::min(low, high),
                  std::max(low, high));
    }
    const int half = CapLength() / 2;
    // Where a line that one sees through crosses itself it is no darker.
    const zel::CurveScope figure(DC(), Opacity() < 1);
    const auto line = [&](LONG position1, LONG value1, LONG position2, LONG value2) {
        const CPoint from = oriented.Point(position1, value1), to = oriented.Point(position2, value2);
        pen->MoveTo(from.x, from.y);
        pen->LineTo(to.x, to.y);
    };
    for (const zel::ColumnSpans::Span& span : spans.Finish()) {
        line(span.at, span.low, span.at, span.high);
        if (half > 0 && span.lowEnds && span.low != span.high)
            line(zel::Subtract(span.at, half), span.low, zel::Add(span.at, half), span.low);
        if (half > 0 && span.highEnds && span.low != span.high)
            line(zel::Subtract(span.at, half), span.high, zel::Add(span.at, half), span.high);
    }
}

std::optional<CRect> Zel2ErrorLayer::BoxOf(std::size_t item, const zel::OrientedFrame& frame) {
    const double value = On(1, frame.Values()).At(item), position = On(0, frame.Positions()).At(item);
    const Ends ends = EndsOf(item, value);
    if (!frame.Positions().HasPlace(position) || !frame.Values().HasPlace(value)) return std::nullopt;
    const std::optional<Room> room = bars_.empty() ? std::nullopt : RoomOfBars(bars_, frame.Positions());
    const double place = PlaceOf(frame.Positions().Forward(position), room);
    CRect box(frame.ToLogical(place, frame.ValueWithin(std::isfinite(ends.low) ? ends.low : value)),
              frame.ToLogical(place, frame.ValueWithin(std::isfinite(ends.high) ? ends.high : value)));
    box.NormalizeRect();
    return box;
}

void Zel2ErrorLayer::DrawKey(const CRect& box) {
    DrawPen* const pen = Pen(pen_);
    if (!pen) return;
    const int x = std::midpoint(box.left, box.right), half = std::min(CapLength(), box.Width()) / 2;
    pen->MoveTo(x, box.top);
    pen->LineTo(x, box.bottom);
    for (const int y : {box.top, box.bottom}) {
        pen->MoveTo(x - half, y);
        pen->LineTo(x + half, y);
    }
}

void Zel2ErrorLayer::Serialize(CArchive& ar) {
    Zel2RowLayer::Serialize(ar);
    zel::Exchange(ar, pen_, lineWidth_, cap_);
    zel::ExchangeText(ar, bars_);
    if (ar.IsLoading() && Columns().size() != 3 && Columns().size() != 4)
        ar.Fail(CArchiveException::genericException, "error bars have a wrong number of columns");
}
