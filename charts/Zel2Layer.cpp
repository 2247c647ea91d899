#include "charts/Palette.h"
#include "core/ArchiveFields.h"
#include "series/SeriesIndex.h"

#include <zel/DrawColor.h>
#include <zel/DrawPen.h>
#include <zel/DrawSymbol.h>
#include <zel/Zel2Chart.h>
#include <zel/Zel2Layer.h>

#include <algorithm>
#include <cmath>

IMPLEMENT_DYNAMIC(Zel2Layer, Zel2)

namespace zel {

void AxisRange::Add(double value) {
    if (!std::isfinite(value)) return;
    if (!scale_.HasPlace(value)) {
        ++withoutPlace_;
        return;
    }
    low_ = std::min(low_, value);
    high_ = std::max(high_, value);
}

void AxisRange::Add(const SeriesStretch& stretch, Coordinate coordinate) {
    const bool isX = coordinate == Coordinate::X;
    WalkSeries(
        stretch,
        [&](const SeriesSpan& span, std::size_t, std::size_t) {
            const double low = isX ? span.xmin : span.ymin, high = isX ? span.xmax : span.ymax;
            if (low > high) return true;  // only gaps
            if (!std::isfinite(low) || !std::isfinite(high) || !scale_.HasPlace(low) ||
                !scale_.HasPlace(high))
                return false;
            Add(low);
            Add(high);
            return true;
        },
        [&](const SeriesSpan&, std::size_t, const double* x, const double* y, std::size_t n) {
            for (std::size_t i = 0; i < n; ++i) Add(isX ? x[i] : y[i]);
        });
}

void AxisRange::AddNames(const std::vector<std::string>& names) {
    if (names_.empty()) {
        names_ = names;
        return;
    }
    std::vector<std::string> known = names_;
    std::sort(known.begin(), known.end());
    for (const std::string& name : names)
        if (!std::binary_search(known.begin(), known.end(), name)) names_.push_back(name);
}

void AxisRange::AddTimes(double origin) {
    if (!origin_) origin_ = origin;
}

double LayerFrame::YWithin(double vy) const {
    double place = y.Forward(vy);
    // Without a place: the end that it lies towards.
    if (std::isnan(place)) place = y.High() > 0 ? world.ymin : world.ymax;
    return std::clamp(place, world.ymin, world.ymax);
}

}  // namespace zel

Zel2Layer::Zel2Layer(const zel::LayerOptions& options)
    : name_(options.name),
      color_(options.color ? std::optional(options.color->Rgb()) : std::nullopt),
      opacity_(options.opacity),
      xAxis_(options.xAxis),
      yAxis_(options.yAxis) {}

void Zel2Layer::SetName(std::string name) {
    name_ = std::move(name);
    Changed();
}

void Zel2Layer::SetVisible(bool on) {
    if (visible_ == on) return;
    visible_ = on;
    Changed();
}

void Zel2Layer::SetAxes(int x, int y) {
    xAxis_ = x;
    yAxis_ = y;
    Changed();
}

Zel2Chart* Zel2Layer::Chart() const {
    return dynamic_cast<Zel2Chart*>(GetParent());
}

void Zel2Layer::Changed() {
    if (Zel2Chart* chart = Chart()) chart->Changed();
}

void Zel2Layer::DescribeAxes(zel::AxisRange&, zel::AxisRange&) {}
void Zel2Layer::TakeRange(zel::AxisRange&, zel::AxisRange&) {}

void Zel2Layer::DrawKey(const CRect& box) {
    Zel2Chart* const chart = Chart();
    if (DrawColor* color = chart ? Color(chart->PaletteColor(PaletteEntry())) : nullptr) color->FillRect(box);
}

std::optional<zel::Datum> Zel2Layer::Nearest(const CPoint&, double) {
    return std::nullopt;
}

std::vector<std::pair<double, double>> Zel2Layer::Sample(const zel::Scale&, const zel::Scale&, std::size_t) {
    return {};
}

void Zel2Layer::OnDraw() {
    Zel2Chart* const chart = Chart();
    if (!chart || !visible_ || !Ready()) return;
    SetDefaults();
    DrawIn(chart->FrameOf(*this));
}

void Zel2Layer::OnPrint(CDC*, CPrintInfo*) {
    OnDraw();
}

int Zel2Layer::IsIn(const CPoint& pt) {
    constexpr double kReach = 3;
    return visible_ && Chart() && Map() && Nearest(pt, kReach) ? 1 : 0;
}

int Zel2Layer::PaletteEntry() const {
    Zel2Chart* const chart = Chart();
    return chart ? chart->PaletteEntryOf(*this) : 0;
}

COLORREF Zel2Layer::OwnColor() const {
    return color_ ? *color_ : zel::PaletteColor(PaletteEntry());
}

namespace {

// A name that no tool has yet. The first tool of a name wins, so a second layer of that name needs another.
template <class Find>
std::string FreeName(const std::string& wanted, Find find) {
    std::string name = wanted;
    for (int i = 2; find(name.c_str()) >= 0; ++i) name = wanted + " " + std::to_string(i);
    return name;
}

}  // namespace

int Zel2Layer::RegisterOwnPen(double width, zel::Dash dash) {
    const std::string name = FreeName((name_.empty() ? "Layer" : name_) + " line",
                                      [this](const char* n) { return GetPenIndex(n); });
    return zel::RegisterPen(*this, name, {OwnColor(), width, dash, opacity_});
}

int Zel2Layer::RegisterOwnColor() {
    return RegisterOwnColor(OwnColor());
}

int Zel2Layer::RegisterOwnColor(COLORREF color) {
    const std::string name = FreeName((name_.empty() ? "Layer" : name_) + " area",
                                      [this](const char* n) { return GetColorIndex(n); });
    return zel::RegisterColor(*this, name, {color, opacity_});
}

int Zel2Layer::RegisterOwnTint(double share) {
    const std::string name = FreeName((name_.empty() ? "Layer" : name_) + " tint",
                                      [this](const char* n) { return GetColorIndex(n); });
    const COLORREF color = OwnColor();
    const auto mixed = [share](int channel) {
        return static_cast<int>(std::lround(channel * share + 255 * (1 - share)));
    };
    const COLORREF tint = RGB(mixed(GetRValue(color)), mixed(GetGValue(color)), mixed(GetBValue(color)));
    return zel::RegisterColor(*this, name, {tint, opacity_});
}

int Zel2Layer::RegisterOwnSymbol(double size, std::optional<zel::SymbolKind> shape) {
    const std::string name = FreeName((name_.empty() ? "Layer" : name_) + " mark",
                                      [this](const char* n) { return GetSymbolIndex(n); });
    zel::SymbolOptions options{.shape = shape.value_or(zel::PaletteShape(PaletteEntry())), .size = size};
    options.color = OwnColor();
    options.opacity = opacity_;
    return zel::RegisterSymbol(*this, name, options);
}

void Zel2Layer::Serialize(CArchive& ar) {
    if (!zel::IsComplete(ar))
        ar.Fail(CArchiveException::badClass, "layers of charts can only be stored in documents");
    Zel2::Serialize(ar);
    zel::ExchangeText(ar, name_);
    bool hasColor = color_.has_value();
    COLORREF color = color_.value_or(0);
    zel::ExchangeFlag(ar, hasColor);
    zel::Exchange(ar, color, opacity_, xAxis_, yAxis_);
    zel::ExchangeFlag(ar, visible_);
    if (ar.IsLoading()) color_ = hasColor ? std::optional(color) : std::nullopt;
}
