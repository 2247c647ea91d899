#include "charts/ColumnBoxes.h"
#include "charts/FormatFields.h"
#include "charts/FreeSpace.h"
#include "charts/TextRuler.h"

#include <zel/ChartBars.h>
#include <zel/DrawColor.h>
#include <zel/DrawFont.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>
#include <numeric>

IMPLEMENT_SERIAL(Zel2BarLayer, Zel2RowLayer, 0)

// Where the bars begin and end, on the scales of the axes.
struct Zel2BarLayer::Bars {
    // How far a stack reaches at a position, by layers up to this one.
    struct Tops {
        double above = 0, below = 0;
    };
    std::uint64_t revision = 0;
    std::vector<double> at, low, high;  // NaN where there is no bar
    std::unordered_map<double, Tops> tops;
    std::shared_ptr<const std::unordered_map<double, double>> totals;  // of the sizes at a position
    std::size_t repeated = 0;  // bars at a position that has one already
    std::size_t negative = 0;  // among those that stack
};

Zel2BarLayer::Zel2BarLayer() : Zel2RowLayer(2) {}
Zel2BarLayer::~Zel2BarLayer() = default;

Zel2BarLayer::Zel2BarLayer(zel::Column positions, zel::Column values, const zel::BarOptions& options)
    : Zel2RowLayer(options, {std::move(positions), std::move(values)}, options.horizontal),
      stacking_(options.stacking),
      group_(options.group),
      baseline_(options.baseline),
      width_(options.width),
      labels_(options.labels),
      labelFormat_(options.labelFormat) {}

Zel2BarLayer::Zel2BarLayer(zel::Column positions, zel::Column low, zel::Column high,
                           const zel::BarOptions& options)
    : Zel2RowLayer(options, {std::move(positions), std::move(low), std::move(high)}, options.horizontal),
      floating_(true),
      group_(options.group),
      width_(options.width),
      labels_(options.labels),
      labelFormat_(options.labelFormat) {}

void Zel2BarLayer::SetColor(int index) {
    colorIndex_ = index;
    Changed();
}

void Zel2BarLayer::ShowLabels(bool on) {
    labels_ = on;
    Changed();
}

void Zel2BarLayer::SetDefaults() {
    if (colorIndex_ < 0) colorIndex_ = RegisterOwnColor();
}

void Zel2BarLayer::Forget() {
    bars_.reset();
}

// Layers that do not stack have a place of their own.
std::optional<std::string> Zel2BarLayer::Slot() const {
    if (stacking_ != zel::Stacking::NONE) return "stack " + group_;
    return group_.empty() ? "layer " + std::to_string(PaletteEntry()) : "group " + group_;
}

// The layers that stand on each other with this one, the lowest first.
std::vector<Zel2BarLayer*> Zel2BarLayer::Stack() const {
    std::vector<Zel2BarLayer*> stack;
    if (!Chart()) return stack;
    for (Zel2Layer* layer : Chart()->Layers()) {
        auto* const bars = dynamic_cast<Zel2BarLayer*>(layer);
        if (bars && bars->IsVisible() && bars->stacking_ == stacking_ && bars->group_ == group_ &&
            bars->XAxis() == XAxis() && bars->YAxis() == YAxis() && bars->IsHorizontal() == IsHorizontal())
            stack.push_back(bars);
    }
    return stack;
}

const Zel2BarLayer::Bars& Zel2BarLayer::MakeBars(const zel::Scale& positions, const zel::Scale& values) {
    if (bars_ && bars_->revision == Revision()) return *bars_;
    auto bars = std::make_unique<Bars>();
    bars->revision = Revision();
    const std::size_t n = Rows();
    const zel::SeriesValues at = On(0, positions);
    const bool stacks = stacking_ != zel::Stacking::NONE && !floating_;
    if (stacks) {
        const std::vector<Zel2BarLayer*> stack = Stack();
        const auto own = std::find(stack.begin(), stack.end(), this);
        if (own != stack.begin() && own != stack.end()) {
            const Bars& below = (*(own - 1))->MakeBars(positions, values);
            bars->tops = below.tops;
            bars->totals = below.totals;
        } else if (stacking_ == zel::Stacking::SHARES) {
            auto totals = std::make_shared<std::unordered_map<double, double>>();
            for (Zel2BarLayer* layer : stack) {
                const zel::SeriesValues its = layer->On(0, positions), sizes = layer->On(1, values);
                for (std::size_t i = 0; i < layer->Rows(); ++i)
                    if (std::isfinite(its.At(i)) && std::isfinite(sizes.At(i)))
                        (*totals)[its.At(i)] += std::fabs(sizes.At(i));
            }
            bars->totals = std::move(totals);
        }
    }
    const zel::SeriesValues first = On(1, values), second = floating_ ? On(2, values) : first;
    bars->at.resize(n);
    bars->low.resize(n);
    bars->high.resize(n);
    std::unordered_map<double, std::size_t> seen;
    for (std::size_t i = 0; i < n; ++i) {
        const double position = bars->at[i] = at.At(i);
        double low = floating_ ? first.At(i) : baseline_, high = second.At(i);
        if (!std::isfinite(position) || !std::isfinite(low) || !std::isfinite(high)) {
            bars->low[i] = bars->high[i] = std::nan("");
            continue;
        }
        if (stacks) {
            const double total = bars->totals ? bars->totals->find(position)->second : 1;
            const double size = total > 0 ? high / total : 0;
            Bars::Tops& tops = bars->tops[position];
            double& top = size < 0 ? tops.below : tops.above;
            if (size < 0) ++bars->negative;
            low = top;
            high = top = top + size;
        } else if (++seen[position] > 1) {
            ++bars->repeated;
        }
        bars->low[i] = low;
        bars->high[i] = high;
    }
    bars_ = std::move(bars);
    return *bars_;
}

void Zel2BarLayer::TakeRange(zel::AxisRange& x, zel::AxisRange& y) {
    zel::AxisRange& positions = PositionsOf(x, y);
    zel::AxisRange& values = ValuesOf(x, y);
    TakePositions(positions, RoomOf(positions.GetScale()));
    const Bars& bars = MakeBars(positions.GetScale(), values.GetScale());
    const bool logarithm = values.GetScale().GetKind() == zel::Scale::Kind::LOGARITHM;
    double nearest = std::numeric_limits<double>::infinity(), lowest = nearest, highest = -nearest;
    for (std::size_t i = 0; i < bars.high.size(); ++i) {
        const double low = bars.low[i], high = bars.high[i];
        values.Add(high);
        // A baseline without a place is no value that is missing.
        if (floating_ || values.GetScale().HasPlace(low)) values.Add(low);
        if (!values.GetScale().HasPlace(high)) continue;
        if (std::fabs(high) < std::fabs(nearest)) nearest = high;
        lowest = std::min(lowest, high);
        highest = std::max(highest, high);
    }
    // The shortest bar can be seen too.
    if (logarithm && !floating_ && std::isfinite(nearest)) values.Add(nearest / 2);
    if (!labels_ || logarithm || stacking_ != zel::Stacking::NONE || lowest > highest) return;
    constexpr double kHeadroom = 0.08;
    const double room = kHeadroom * (std::max(highest, baseline_) - std::min(lowest, baseline_));
    if (highest > baseline_) values.Add(highest + room);
    if (lowest < baseline_) values.Add(lowest - room);
}

std::optional<double> Zel2BarLayer::Included(Coordinate coordinate) const {
    const bool ofValues = coordinate == (IsHorizontal() ? Coordinate::X : Coordinate::Y);
    if (!ofValues || floating_) return std::nullopt;
    return stacking_ == zel::Stacking::NONE ? baseline_ : 0;
}

std::vector<std::string> Zel2BarLayer::Notes(const zel::Scale& x, const zel::Scale& y) {
    std::vector<std::string> notes;
    const std::string whose = Name().empty() ? "Bars" : "The bars of \"" + Name() + "\"";
    if (ValuesOf(x, y).GetKind() == zel::Scale::Kind::LOGARITHM && !floating_)
        notes.push_back(
            whose +
            " stand on a logarithm: they begin at the end of the axis, and their lengths cannot be "
            "compared.");
    const Bars& bars = MakeBars(PositionsOf(x, y), ValuesOf(x, y));
    if (bars.repeated > 0)
        notes.push_back(whose + ": " + std::to_string(bars.repeated) +
                        " of them stand at a position that has one already, in front of it.");
    if (bars.negative > 0)
        notes.push_back(whose + ": " + std::to_string(bars.negative) +
                        " of them are negative and stack downwards.");
    return notes;
}

std::optional<CRect> Zel2BarLayer::BoxOf(std::size_t item, const zel::OrientedFrame& frame) {
    const Bars& bars = MakeBars(frame.Positions(), frame.Values());
    const double position = frame.Positions().Forward(bars.at[item]);
    if (!std::isfinite(position) || std::isnan(frame.Values().Forward(bars.high[item]))) return std::nullopt;
    const Room room = RoomOf(frame.Positions());
    CRect box(frame.ToLogical(room.Begin(position), frame.ValueWithin(bars.low[item])),
              frame.ToLogical(room.End(position), frame.ValueWithin(bars.high[item])));
    box.NormalizeRect();
    return box;
}

zel::Datum Zel2BarLayer::DatumOf(std::size_t item, const zel::OrientedFrame& frame) {
    zel::Datum datum = Zel2RowLayer::DatumOf(item, frame);
    if (floating_)
        (IsHorizontal() ? datum.x : datum.y) = On(2, frame.Values()).At(item) + frame.Values().Origin();
    return datum;
}

void Zel2BarLayer::DrawIn(const zel::LayerFrame& frame) {
    DrawColor* const color = Color(colorIndex_);
    if (!color || !DC()) return;
    const zel::OrientedFrame oriented(frame, IsHorizontal());
    const zel::Scale& positions = oriented.Positions();
    const zel::Scale& values = oriented.Values();
    const Bars& bars = MakeBars(positions, values);
    const Room room = RoomOf(positions);
    zel::ColumnBoxes boxes(*DC(), oriented);
    for (std::size_t i = 0; i < bars.high.size(); ++i) {
        const double position = positions.Forward(bars.at[i]), end = values.Forward(bars.high[i]);
        double begin = values.Forward(bars.low[i]);
        if (!std::isfinite(position) || std::isnan(end)) continue;
        if (std::isnan(begin)) begin = oriented.ValueWithin(bars.low[i]);
        boxes.Add(room.Begin(position), room.End(position), begin, end);
    }
    color->FillRects(boxes.Finish());
}

std::vector<std::pair<double, double>> Zel2BarLayer::Sample(const zel::Scale& x, const zel::Scale& y,
                                                            std::size_t most) {
    std::vector<std::pair<double, double>> points;
    const Bars& bars = MakeBars(PositionsOf(x, y), ValuesOf(x, y));
    constexpr std::size_t kAlong = 8;  // places along each bar
    const std::size_t step = bars.high.size() * kAlong / std::max<std::size_t>(1, most) + 1;
    for (std::size_t i = 0; i < bars.high.size(); i += step) {
        for (std::size_t k = 0; k <= kAlong; ++k) {
            const double value = bars.low[i] + (bars.high[i] - bars.low[i]) * static_cast<double>(k) / kAlong;
            IsHorizontal() ? points.emplace_back(value, bars.at[i]) : points.emplace_back(bars.at[i], value);
        }
    }
    return points;
}

void Zel2BarLayer::BlockLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) {
    const zel::OrientedFrame oriented(frame, IsHorizontal());
    for (std::size_t i = 0; i < Items(); ++i)
        if (const auto box = BoxOf(i, oriented)) space.Block(*box);
}

namespace {

// The smallest decimal place that tells all values, within reason.
double ResolutionOf(const std::vector<double>& values) {
    double largest = 0;
    for (const double value : values)
        if (std::isfinite(value)) largest = std::max(largest, std::fabs(value));
    for (const double unit : {1.0, 0.1, 0.01}) {
        const bool tells = std::all_of(values.begin(), values.end(), [unit, largest](double value) {
            const double units = value / unit;
            return !std::isfinite(value) || std::fabs(units - std::nearbyint(units)) * unit <= 1e-9 * largest;
        });
        if (tells) return unit;
    }
    return largest / 500;
}

bool IsDark(COLORREF color, double opacity) {
    const auto over = [opacity](int channel) { return opacity * channel + (1 - opacity) * 255; };
    return 0.2126 * over(GetRValue(color)) + 0.7152 * over(GetGValue(color)) +
               0.0722 * over(GetBValue(color)) <
           140;
}

}  // namespace

void Zel2BarLayer::DrawLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) {
    DrawColor* const color = Color(colorIndex_);
    if (!labels_ || !color) return;
    const zel::OrientedFrame oriented(frame, IsHorizontal());
    const Bars& bars = MakeBars(oriented.Positions(), oriented.Values());
    const bool within = stacking_ != zel::Stacking::NONE || floating_;
    std::vector<double> shown;
    shown.reserve(bars.high.size());
    for (std::size_t i = 0; i < bars.high.size(); ++i)
        shown.push_back(within ? bars.high[i] - bars.low[i] : bars.high[i]);
    zel::NumberFormat format = labelFormat_;
    if (stacking_ == zel::Stacking::SHARES) format.percent = true;
    const double resolution = stacking_ == zel::Stacking::SHARES ? 0.01 : ResolutionOf(shown);
    // All with the same digits.
    if (format.decimals < 0 && !format.percent && resolution <= 1 && resolution >= 0.01)
        format.decimals = static_cast<int>(std::lround(-std::log10(resolution)));
    const int font =
        within && IsDark(color->GetColor(), Opacity()) ? Chart()->LightTextFont() : Chart()->TextFont();
    const zel::TextRuler ruler(*Font(font));
    const auto logical = [this](double units) {
        return zel::Magnitude(Map()->ToLogical(CSize(zel::Truncate(units), 0)).cx);
    };
    const int height = logical(ruler.LineHeight()), gap = logical(zel::UnitsOfPoints(2));
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const auto box = BoxOf(i, oriented);
        const double end = oriented.Values().Forward(bars.high[i]);
        const double position = oriented.Positions().Forward(bars.at[i]);
        if (!box || !(end >= oriented.LowValue() && end <= oriented.HighValue()) ||
            !(position >= oriented.FirstPosition() && position <= oriented.LastPosition()))
            continue;
        const zel::Scale plain = zel::Scale::Linear(0, 1);
        const zel::Scale& scale = within ? plain : oriented.Values();
        const std::string text = scale.TextOf(shown[i], resolution, format);
        const int width = logical(ruler.WidthOf(text)) + gap;
        CPoint centre(std::midpoint(box->left, box->right), std::midpoint(box->top, box->bottom));
        if (within && (width > box->Width() || height > box->Height())) continue;
        if (!within) {
            const CPoint from = oriented.ToLogical(0, oriented.ValueWithin(bars.low[i])),
                         to = oriented.ToLogical(0, end);
            const bool backwards =
                oriented.AlongValues(to) < oriented.AlongValues(from) ||
                (oriented.AlongValues(to) == oriented.AlongValues(from) && !IsHorizontal());
            const int away = gap + (IsHorizontal() ? width : height) / 2;
            const int moved = backwards ? -away : away;
            centre = IsHorizontal() ? CPoint(zel::Add(to.x, moved), centre.y)
                                    : CPoint(centre.x, zel::Add(to.y, moved));
        }
        CRect place(centre, CSize());
        place.InflateRect(width / 2, height / 2);
        if (within || space.Take(place)) Font(font)->Print(text.c_str(), centre, 0, DT_CENTER | DT_VCENTER);
    }
}

void Zel2BarLayer::DrawKey(const CRect& box) {
    if (DrawColor* color = Color(colorIndex_)) color->FillRect(box);
}

void Zel2BarLayer::Serialize(CArchive& ar) {
    Zel2RowLayer::Serialize(ar);
    int stacking = static_cast<int>(stacking_);
    zel::Exchange(ar, colorIndex_, stacking);
    zel::ExchangeText(ar, group_);
    zel::Exchange(ar, baseline_, width_);
    zel::ExchangeFlag(ar, labels_);
    zel::ExchangeFormat(ar, labelFormat_);
    if (ar.IsStoring()) return;
    if (Columns().size() != 2 && Columns().size() != 3)
        ar.Fail(CArchiveException::genericException, "bars have a wrong number of columns");
    floating_ = Columns().size() == 3;
    stacking_ = static_cast<zel::Stacking>(std::clamp(stacking, 0, 2));
}
