#include "charts/ColumnBoxes.h"
#include "charts/TextRuler.h"
#include "core/ArchiveFields.h"

#include <zel/ChartSpreads.h>
#include <zel/DrawColor.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>

IMPLEMENT_SERIAL(Zel2CandleLayer, Zel2RowLayer, 0)

namespace {

enum : std::size_t { TIME, OPEN, HIGH, LOW, CLOSE };
constexpr int kRisingEntry = 2, kFallingEntry = 1;  // of the palette

// What is drawn at a position, in world coordinates.
struct Candle {
    double begin, end;  // of the body
    double open, high, low, close;

    bool Rises() const { return close >= open; }
    // The candle of this time and the next one together.
    void Append(const Candle& next) {
        end = next.end;
        high = std::max(high, next.high);
        low = std::min(low, next.low);
        close = next.close;
    }
};

zel::CandleOptions WithColor(zel::CandleOptions options) {
    if (!options.color) options.color = zel::Color::Palette(kRisingEntry);
    return options;
}

}  // namespace

Zel2CandleLayer::Zel2CandleLayer(zel::Column times, zel::Column open, zel::Column high, zel::Column low,
                                 zel::Column close, const zel::CandleOptions& options)
    : Zel2RowLayer(WithColor(options),
                   {std::move(times), std::move(open), std::move(high), std::move(low), std::move(close)},
                   false),
      fallingColor_(options.falling.value_or(zel::Color::Palette(kFallingEntry)).Rgb()),
      width_(options.width) {
    if (options.name.empty()) SetName(Columns()[CLOSE].Name());
}

void Zel2CandleLayer::SetColors(int rising, int falling) {
    rising_ = rising;
    falling_ = falling;
    Changed();
}

void Zel2CandleLayer::SetDefaults() {
    if (rising_ < 0) rising_ = RegisterOwnColor();
    if (falling_ < 0) falling_ = RegisterOwnColor(fallingColor_);
}

std::optional<std::string> Zel2CandleLayer::Slot() const {
    return "layer " + std::to_string(PaletteEntry());
}

void Zel2CandleLayer::TakeRange(zel::AxisRange& x, zel::AxisRange& y) {
    TakePositions(x, RoomOf(x.GetScale()));
    for (const std::size_t column : {HIGH, LOW}) {
        const zel::SeriesValues values = On(column, y.GetScale());
        for (std::size_t i = 0; i < Rows(); ++i) y.Add(values.At(i));
    }
}

// Candles that share a column of the device are one: from the first to the last price of the column.
void Zel2CandleLayer::DrawIn(const zel::LayerFrame& frame) {
    DrawColor* const rising = Color(rising_);
    DrawColor* const falling = Color(falling_);
    if (!rising || !falling || !DC()) return;
    const zel::OrientedFrame oriented(frame, false);
    const zel::ColumnGrid grid(*DC(), oriented);
    const Room room = RoomOf(frame.x);
    const zel::SeriesValues time = On(TIME, frame.x), open = On(OPEN, frame.y), high = On(HIGH, frame.y),
                            low = On(LOW, frame.y), close = On(CLOSE, frame.y);
    zel::ColumnBoxes risingBoxes(*DC(), oriented), fallingBoxes(*DC(), oriented);
    // Half the width of a wick and half the height of a body without any, in world coordinates.
    const int thin = std::max(1, zel::Magnitude(Map()->ToLogical(CSize(zel::UnitsOfPoints(0.8), 0)).cx));
    const WorldFrame& world = frame.world;
    const double wide = std::max(1.0, std::fabs(static_cast<double>(world.upper.x) - world.lower.x)),
                 tall = std::max(1.0, std::fabs(static_cast<double>(world.upper.y) - world.lower.y));
    const double wick = thin * (world.xmax - world.xmin) / wide / 2,
                 flat = thin * (world.ymax - world.ymin) / tall / 2;
    const auto draw = [&](const Candle& candle, bool isColumn) {
        zel::ColumnBoxes& boxes = candle.Rises() ? risingBoxes : fallingBoxes;
        if (isColumn) {
            const double middle = (candle.begin + candle.end) / 2;
            boxes.Add(middle, middle, candle.low, candle.high);
            return;
        }
        auto [bottom, top] = std::minmax({candle.open, candle.close});
        const double middle = (candle.begin + candle.end) / 2;
        if (top - bottom < 2 * flat) {
            bottom = (candle.open + candle.close) / 2 - flat;
            top = bottom + 2 * flat;
        }
        boxes.Add(candle.begin, candle.end, bottom, top);
        if (candle.high > top) boxes.Add(middle - wick, middle + wick, top, candle.high);
        if (candle.low < bottom) boxes.Add(middle - wick, middle + wick, candle.low, bottom);
    };
    Candle pending{};  // of the present column
    bool isPending = false;
    LONG column = 0;
    const auto flush = [&] {
        if (isPending) draw(pending, true);
        isPending = false;
    };
    for (std::size_t i = 0; i < Rows(); ++i) {
        const double at = frame.x.Forward(time.At(i));
        const Candle candle{room.Begin(at),
                            room.End(at),
                            frame.y.Forward(open.At(i)),
                            frame.y.Forward(high.At(i)),
                            frame.y.Forward(low.At(i)),
                            frame.y.Forward(close.At(i))};
        if (!std::isfinite(at + candle.open + candle.high + candle.low + candle.close)) continue;
        const LONG first =
            grid.HasColumns() ? grid.ColumnOf(oriented.ToLogical(candle.begin, world.ymin)) : 0;
        const LONG last = grid.HasColumns() ? grid.ColumnOf(oriented.ToLogical(candle.end, world.ymin)) : 2;
        if (last - first > 1 || first - last > 1) {
            flush();
            draw(candle, false);
        } else if (isPending && column == first) {
            pending.Append(candle);
            pending.begin = pending.end = candle.begin;
        } else {
            flush();
            pending = candle;
            pending.end = pending.begin;
            isPending = true;
            column = first;
        }
    }
    flush();
    rising->FillRects(risingBoxes.Finish());
    falling->FillRects(fallingBoxes.Finish());
}

std::optional<CRect> Zel2CandleLayer::BoxOf(std::size_t item, const zel::OrientedFrame& frame) {
    const double at = frame.Positions().Forward(On(TIME, frame.Positions()).At(item));
    const double high = On(HIGH, frame.Values()).At(item), low = On(LOW, frame.Values()).At(item);
    if (!std::isfinite(at) || !frame.Values().HasPlace(high) || !frame.Values().HasPlace(low))
        return std::nullopt;
    const Room room = RoomOf(frame.Positions());
    CRect box(frame.ToLogical(room.Begin(at), frame.ValueWithin(low)),
              frame.ToLogical(room.End(at), frame.ValueWithin(high)));
    box.NormalizeRect();
    return box;
}

zel::Datum Zel2CandleLayer::DatumOf(std::size_t item, const zel::OrientedFrame& frame) {
    zel::Datum datum = Zel2RowLayer::DatumOf(item, frame);
    datum.y = On(CLOSE, frame.Values()).At(item) + frame.Values().Origin();
    return datum;
}

// One that rises beside one that falls.
void Zel2CandleLayer::DrawKey(const CRect& box) {
    DrawColor* const rising = Color(rising_);
    DrawColor* const falling = Color(falling_);
    if (!rising || !falling) return;
    const int third = box.Width() / 3;
    rising->FillRect(CRect(box.left, box.top, box.left + third, box.bottom));
    falling->FillRect(CRect(box.right - third, box.top, box.right, box.bottom));
}

void Zel2CandleLayer::Serialize(CArchive& ar) {
    Zel2RowLayer::Serialize(ar);
    zel::Exchange(ar, rising_, falling_, fallingColor_, width_);
    if (ar.IsLoading() && (Columns().size() != 5 || IsHorizontal()))
        ar.Fail(CArchiveException::genericException, "candles have a wrong number of columns");
}
