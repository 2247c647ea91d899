#include "charts/FormatFields.h"
#include "core/ArchiveFields.h"

#include <zel/ChartAxis.h>
#include <zel/Error.h>
#include <zel/Zel2Chart.h>

#include <cmath>

namespace zel {

// Each setting makes ranges and layout anew.
template <class Value>
ChartAxis& ChartAxis::Set(Value Fields::*field, Value value) {
    fields_.*field = std::move(value);
    if (chart_) chart_->Changed();
    return *this;
}

ChartAxis& ChartAxis::SetKind(Scale::Kind kind) {
    return Set(&Fields::kind, std::optional(kind));
}

ChartAxis& ChartAxis::SetLogarithm(double base) {
    (void)Scale::Logarithm(1, 10, base);  // refuses a base that is none
    fields_.base = base;
    return SetKind(Scale::Kind::LOGARITHM);
}

ChartAxis& ChartAxis::SetSymmetricLogarithm(double threshold) {
    (void)Scale::SymmetricLogarithm(-1, 1, threshold);
    fields_.threshold = threshold;
    return SetKind(Scale::Kind::SYMMETRIC_LOGARITHM);
}

ChartAxis& ChartAxis::SetFunction(Scale::Function forward, Scale::Function inverse, std::string name) {
    (void)Scale::WithFunction(0, 1, forward, inverse, name);
    fields_.forward = std::move(forward);
    fields_.inverse = std::move(inverse);
    fields_.functionName = std::move(name);
    return SetKind(Scale::Kind::FUNCTION);
}

ChartAxis& ChartAxis::SetTime(const std::string& zone) {
    (void)Scale::Time(0, 1, zone);
    fields_.zone = zone;
    return SetKind(Scale::Kind::TIME);
}

ChartAxis& ChartAxis::SetCategories(std::vector<std::string> names) {
    fields_.names = std::move(names);
    return SetKind(Scale::Kind::CATEGORIES);
}

ChartAxis& ChartAxis::SetRange(double from, double to) {
    if (!std::isfinite(from) || !std::isfinite(to) || from == to)
        throw Error("Cannot set the range of an axis: its ends must be two different finite numbers");
    fields_.from = from;
    fields_.to = to;
    return Set(&Fields::rangeIsSet, true);
}

ChartAxis& ChartAxis::SetAutomaticRange() {
    return Set(&Fields::rangeIsSet, false);
}
ChartAxis& ChartAxis::SetReversed(bool reversed) {
    return Set(&Fields::reversed, reversed);
}
ChartAxis& ChartAxis::SetIncluded(std::optional<double> value) {
    return Set(&Fields::included, value);
}
ChartAxis& ChartAxis::SetTitle(std::string title) {
    return Set(&Fields::title, std::move(title));
}
ChartAxis& ChartAxis::SetUnit(std::string unit) {
    return Set(&Fields::unit, std::move(unit));
}
ChartAxis& ChartAxis::SetFormat(NumberFormat format) {
    return Set(&Fields::format, std::move(format));
}
ChartAxis& ChartAxis::SetTicks(std::vector<Tick> ticks) {
    return Set(&Fields::ticks, std::move(ticks));
}
ChartAxis& ChartAxis::ShowGrid(bool on) {
    return Set(&Fields::grid, on);
}
ChartAxis& ChartAxis::ShowMinorGrid(bool on) {
    return Set(&Fields::minorGrid, on);
}
ChartAxis& ChartAxis::Show(bool on) {
    return Set(&Fields::visible, on);
}

Scale ChartAxis::MakeScale(Scale::Kind kind, double from, double to,
                           const std::vector<std::string>& names) const {
    switch (fields_.kind.value_or(kind)) {
        case Scale::Kind::LOGARITHM:
            return Scale::Logarithm(from, to, fields_.base);
        case Scale::Kind::SYMMETRIC_LOGARITHM:
            return Scale::SymmetricLogarithm(from, to, fields_.threshold);
        case Scale::Kind::SQUARE_ROOT:
            return Scale::SquareRoot(from, to);
        case Scale::Kind::FUNCTION:
            try {
                return Scale::WithFunction(from, to, fields_.forward, fields_.inverse, fields_.functionName);
            } catch (const Error&) {
                return Scale::Linear(from, to);
            }
        case Scale::Kind::TIME:
            return Scale::Time(from, to, fields_.zone);
        case Scale::Kind::DURATION:
            return Scale::Duration(from, to);
        case Scale::Kind::CATEGORIES:
            return Scale::Categories(fields_.names.empty() ? names : fields_.names).WithEnds(from, to);
        default:
            return Scale::Linear(from, to);
    }
}

namespace {

void ExchangeTicks(CArchive& ar, std::vector<Tick>& ticks) {
    int count = static_cast<int>(ticks.size());
    Exchange(ar, count);
    if (ar.IsLoading()) {
        ar.CheckCount(count, sizeof(double));
        ticks.assign(static_cast<std::size_t>(count), {});
    }
    for (Tick& tick : ticks) {
        Exchange(ar, tick.value);
        ExchangeText(ar, tick.label);
        ExchangeText(ar, tick.context);
    }
}

}  // namespace

void ChartAxis::Serialize(CArchive& ar) {
    Fields& f = fields_;
    int side = static_cast<int>(f.side), kind = f.kind ? static_cast<int>(*f.kind) : -1;
    Exchange(ar, side, kind, f.base, f.threshold);
    ExchangeText(ar, f.zone);
    ExchangeText(ar, f.functionName);
    ExchangeTexts(ar, f.names);
    ExchangeFlag(ar, f.rangeIsSet);
    Exchange(ar, f.from, f.to);
    ExchangeFlag(ar, f.reversed);
    bool hasIncluded = f.included.has_value();
    double included = f.included.value_or(0);
    ExchangeFlag(ar, hasIncluded);
    Exchange(ar, included);
    ExchangeText(ar, f.title);
    ExchangeText(ar, f.unit);
    ExchangeFormat(ar, f.format);
    ExchangeTicks(ar, f.ticks);
    ExchangeFlag(ar, f.grid);
    ExchangeFlag(ar, f.minorGrid);
    ExchangeFlag(ar, f.visible);
    if (ar.IsStoring()) return;
    f.included = hasIncluded ? std::optional(included) : std::nullopt;
    if (side < 0 || side > 3 || kind < -1 || kind > static_cast<int>(Scale::Kind::CATEGORIES))
        ar.Fail(CArchiveException::genericException, "an axis has an unknown side or kind of scale");
    f.side = static_cast<Side>(side);
    f.kind = kind < 0 ? std::nullopt : std::optional(static_cast<Scale::Kind>(kind));
    try {
        (void)MakeScale(Scale::Kind::LINEAR, 0, 1, {});
    } catch (const Error& e) {
        ar.Fail(CArchiveException::genericException, e.what());
    }
}

}  // namespace zel
