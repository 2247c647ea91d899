#include "charts/ChartLayout.h"
#include "charts/ChartLayouter.h"
#include "charts/ChartPainter.h"
#include "charts/FreeSpace.h"
#include "charts/LayoutFonts.h"
#include "charts/Palette.h"
#include "charts/TextRuler.h"
#include "core/ArchiveFields.h"

#include <zel/DrawColor.h>
#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/Error.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>
#include <zel/Zel2Column.h>
#include <zel/Zel2Row.h>
#include <zel/Zel2Table.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>

IMPLEMENT_SERIAL(Zel2Chart, Zel2Set, 0)

namespace {

constexpr COLORREF kQuiet = RGB(105, 105, 105), kFaint = RGB(185, 185, 185);
constexpr COLORREF kAxisLine = RGB(120, 120, 120), kGridLine = RGB(226, 226, 226),
                   kMinorLine = RGB(240, 240, 240);
constexpr int kCorners = 4;
constexpr CSize kLeastSize(500, 400);
constexpr LONG kLargestSide = 10'000'000;  // 254 metres

}  // namespace

Zel2Chart::Zel2Chart() : Zel2Chart(zel::ChartOptions()) {}

Zel2Chart::Zel2Chart(const zel::ChartOptions& options)
    : title_(options.title),
      subtitle_(options.subtitle),
      caption_(options.caption),
      legend_(options.legend),
      fontSize_(options.fontSize),
      fontFace_(options.fontFace) {
    Zel2Chart::SetSize(
        CSize(zel::UnitsOfMillimetres(options.size.width), zel::UnitsOfMillimetres(options.size.height)));
    AddAxis(zel::Side::BOTTOM);
    AddAxis(zel::Side::LEFT);
}

Zel2Chart::~Zel2Chart() = default;

zel::ChartAxis& Zel2Chart::Axis(int index) {
    if (index < 0 || index >= AxisCount()) {
        throw zel::Error("Cannot use axis " + std::to_string(index) + " of a chart: it has " +
                         std::to_string(AxisCount()) + ", counted from 0");
    }
    return *axes_[static_cast<std::size_t>(index)];
}

int Zel2Chart::AddAxis(zel::Side side) {
    axes_.push_back(std::make_unique<zel::ChartAxis>(*this, side));
    Changed();
    return AxisCount() - 1;
}

int Zel2Chart::Y2Index() {
    if (y2_ < 0) y2_ = AddAxis(zel::Side::RIGHT);
    return y2_;
}

zel::ChartAxis& Zel2Chart::Y2() {
    return Axis(Y2Index());
}

// A layer may come with axes that the chart does not have.
void Zel2Chart::CheckAxes(const Zel2Layer& layer) {
    const bool crossed = Axis(layer.XAxis()).IsHorizontal() == Axis(layer.YAxis()).IsHorizontal();
    if (crossed)
        throw zel::Error(
            "Cannot add a layer to a chart: one of its axes must be horizontal and the other vertical");
}

int Zel2Chart::Add(Zel2* child) {
    std::unique_ptr<Zel2> owned(child);
    auto* const layer = dynamic_cast<Zel2Layer*>(child);
    if (layer) CheckAxes(*layer);
    const int index = Zel2Set::Add(owned.release());
    // A layer keeps the colour of its place, also when one before it goes.
    if (layer && Pens() && Colors() && Symbols()) layer->SetDefaults();
    Changed();
    return index;
}

template <class Layer>
Layer* Zel2Chart::AddLayer(std::unique_ptr<Layer> layer) {
    Layer* const added = layer.get();
    Add(layer.release());
    return added;
}

Zel2LineLayer* Zel2Chart::AddLine(zel::Column x, zel::Column y, const zel::LineOptions& options) {
    return AddLayer(std::make_unique<Zel2LineLayer>(std::move(x), std::move(y), options));
}

Zel2AreaLayer* Zel2Chart::AddArea(zel::Column x, zel::Column y, const zel::AreaOptions& options) {
    return AddLayer(std::make_unique<Zel2AreaLayer>(std::move(x), std::move(y), options));
}

Zel2AreaLayer* Zel2Chart::AddArea(zel::Column x, zel::Column low, zel::Column high,
                                  const zel::AreaOptions& options) {
    return AddLayer(std::make_unique<Zel2AreaLayer>(std::move(x), std::move(low), std::move(high), options));
}

Zel2BarLayer* Zel2Chart::AddBars(zel::Column positions, zel::Column values, const zel::BarOptions& options) {
    auto* const bars =
        AddLayer(std::make_unique<Zel2BarLayer>(std::move(positions), std::move(values), options));
    if (options.stacking == zel::Stacking::SHARES) {
        zel::ChartAxis& axis = Axis(options.horizontal ? options.xAxis : options.yAxis);
        zel::NumberFormat format = axis.Format();
        format.percent = true;
        axis.SetFormat(std::move(format));
    }
    return bars;
}

Zel2BarLayer* Zel2Chart::AddFloatingBars(zel::Column positions, zel::Column low, zel::Column high,
                                         const zel::BarOptions& options) {
    return AddLayer(
        std::make_unique<Zel2BarLayer>(std::move(positions), std::move(low), std::move(high), options));
}

Zel2HistogramLayer* Zel2Chart::AddHistogram(zel::Column values, const zel::HistogramOptions& options) {
    return AddLayer(std::make_unique<Zel2HistogramLayer>(std::move(values), options));
}

Zel2ErrorLayer* Zel2Chart::AddErrors(zel::Column x, zel::Column y, zel::Column error,
                                     const zel::ErrorOptions& options) {
    return AddLayer(std::make_unique<Zel2ErrorLayer>(std::move(x), std::move(y), std::move(error), options));
}

Zel2ErrorLayer* Zel2Chart::AddUnevenErrors(zel::Column x, zel::Column y, zel::Column below, zel::Column above,
                                           const zel::ErrorOptions& options) {
    return AddLayer(std::make_unique<Zel2ErrorLayer>(std::move(x), std::move(y), std::move(below),
                                                     std::move(above), options));
}

Zel2AreaLayer* Zel2Chart::AddBand(const zel::Column& x, const zel::Column& y, const zel::Column& below,
                                  const zel::Column& above, const zel::AreaOptions& options) {
    std::vector<double> low, high;
    for (std::size_t i = 0; i < std::min({y.Size(), below.Size(), above.Size()}); ++i) {
        low.push_back(y.At(i) + y.Origin() - below.At(i));
        high.push_back(y.At(i) + y.Origin() + above.At(i));
    }
    return AddArea(x, std::move(low), std::move(high), options);
}

Zel2BoxLayer* Zel2Chart::AddBoxes(zel::Column groups, zel::Column values, const zel::BoxOptions& options) {
    return AddLayer(std::make_unique<Zel2BoxLayer>(std::move(groups), std::move(values), options));
}

Zel2CandleLayer* Zel2Chart::AddCandles(zel::Column times, zel::Column open, zel::Column high, zel::Column low,
                                       zel::Column close, const zel::CandleOptions& options) {
    return AddLayer(std::make_unique<Zel2CandleLayer>(std::move(times), std::move(open), std::move(high),
                                                      std::move(low), std::move(close), options));
}

Zel2HeatLayer* Zel2Chart::AddHeatMap(zel::Column x, zel::Column y, zel::Column values,
                                     const zel::HeatMapOptions& options) {
    return AddLayer(std::make_unique<Zel2HeatLayer>(std::move(x), std::move(y), std::move(values), options));
}

Zel2HeatLayer* Zel2Chart::AddHeatMapOfRows(const zel::Column& x, const zel::Column& y,
                                           const zel::Column& values, const zel::HeatMapOptions& options) {
    return AddLayer(Zel2HeatLayer::OfRows(x, y, values, options));
}

Zel2BubbleLayer* Zel2Chart::AddBubbles(zel::Column x, zel::Column y, const zel::BubbleOptions& options) {
    return AddLayer(std::make_unique<Zel2BubbleLayer>(std::move(x), std::move(y), options));
}

Zel2DensityLayer* Zel2Chart::AddDensity(zel::Column x, zel::Column y, const zel::DensityOptions& options) {
    return AddLayer(std::make_unique<Zel2DensityLayer>(std::move(x), std::move(y), options));
}

Zel2TextLayer* Zel2Chart::AddTexts(zel::Column x, zel::Column y, zel::Column texts,
                                   const zel::TextOptions& options) {
    return AddLayer(std::make_unique<Zel2TextLayer>(std::move(x), std::move(y), std::move(texts), options));
}

Zel2RuleLayer* Zel2Chart::AddRuleAtX(double value, const zel::RuleOptions& options) {
    return AddLayer(std::make_unique<Zel2RuleLayer>(zel::AxisRange::Coordinate::X, value, options));
}

Zel2RuleLayer* Zel2Chart::AddRuleAtY(double value, const zel::RuleOptions& options) {
    return AddLayer(std::make_unique<Zel2RuleLayer>(zel::AxisRange::Coordinate::Y, value, options));
}

Zel2RuleLayer* Zel2Chart::AddSlope(double intercept, double slope, const zel::RuleOptions& options) {
    return AddLayer(std::make_unique<Zel2RuleLayer>(intercept, slope, options));
}

Zel2SpanLayer* Zel2Chart::AddSpanAlongX(double from, double to, const zel::SpanOptions& options) {
    return AddLayer(std::make_unique<Zel2SpanLayer>(zel::AxisRange::Coordinate::X, from, to, options));
}

Zel2SpanLayer* Zel2Chart::AddSpanAlongY(double from, double to, const zel::SpanOptions& options) {
    return AddLayer(std::make_unique<Zel2SpanLayer>(zel::AxisRange::Coordinate::Y, from, to, options));
}

Zel2NoteLayer* Zel2Chart::AddNote(double x, double y, std::string text, const zel::NoteOptions& options) {
    return AddLayer(std::make_unique<Zel2NoteLayer>(x, y, std::move(text), options));
}

int Zel2Chart::TextFont() {
    return FontFor("Chart Text", 1, false, zel::kInk);
}

int Zel2Chart::LightTextFont() {
    return FontFor("Chart Light Text", 1, false, RGB(255, 255, 255));
}

Zel2PointLayer* Zel2Chart::AddPoints(zel::Column x, zel::Column y, const zel::PointOptions& options) {
    return AddLayer(std::make_unique<Zel2PointLayer>(std::move(x), std::move(y), options));
}

std::vector<Zel2Layer*> Zel2Chart::Layers() {
    std::vector<Zel2Layer*> layers;
    ForEachChild([&](Zel2* child) {
        if (auto* layer = dynamic_cast<Zel2Layer*>(child)) layers.push_back(layer);
    });
    return layers;
}

void Zel2Chart::Changed() {
    layout_.reset();
    ownMargins_.reset();
    ++revision_;
}

void Zel2Chart::SetTitle(std::string title) {
    title_ = std::move(title);
    Changed();
}
void Zel2Chart::SetSubtitle(std::string subtitle) {
    subtitle_ = std::move(subtitle);
    Changed();
}
void Zel2Chart::SetCaption(std::string caption) {
    caption_ = std::move(caption);
    Changed();
}
void Zel2Chart::SetLegend(zel::LegendPlace place) {
    legend_ = place;
    Changed();
}

void Zel2Chart::OnLeave(Zel2* object) {
    Changed();
    Zel2Set::OnLeave(object);
}

// Tools

int Zel2Chart::FontFor(const char* name, double factor, bool bold, COLORREF color) {
    return zel::RegisterLayoutFont(*this, name, fontFace_, fontSize_, factor, bold, color);
}

zel::ChartFonts Zel2Chart::RegisterFonts() {
    return {FontFor("Chart Title", 1.4, true, zel::kInk), FontFor("Chart Subtitle", 1.1, false, kQuiet),
            FontFor("Chart Caption", 0.85, false, kQuiet), FontFor("Chart Text", 1, false, zel::kInk),
            FontFor("Chart Axis Title", 1.05, false, zel::kInk)};
}

void Zel2Chart::RegisterTools() {
    FontFor("Chart Hidden", 1, false, kFaint);
    const auto pen = [this](const char* name, int width, COLORREF color) {
        if (GetPenIndex(name) < 0) RegisterPen(name, DrawPen::SOLID, width, color, color, nullptr);
    };
    pen("Chart Axis", 2, kAxisLine);
    pen("Chart Grid", 1, kGridLine);
    pen("Chart Minor Grid", 1, kMinorLine);
    if (GetColorIndex("Chart Ground") < 0)
        RegisterColor("Chart Ground", RGB(255, 255, 255), RGB(255, 255, 255));
}

int Zel2Chart::PaletteEntryOf(const Zel2Layer& layer) {
    int entry = 0;
    for (const Zel2Layer* other : Layers()) {
        if (other == &layer) return entry;
        if (other->TakesPaletteEntry()) ++entry;
    }
    return 0;
}

int Zel2Chart::PalettePen(int entry) {
    constexpr int kWidth = 4;  // tenths of a millimetre, about 1.2 points
    const std::string name = "Palette " + std::to_string(entry % zel::kPaletteSize + 1);
    const int known = GetPenIndex(name.c_str());
    const COLORREF color = zel::PaletteColor(entry);
    return known >= 0 ? known : RegisterPen(name.c_str(), DrawPen::SOLID, kWidth, color, color, nullptr);
}

int Zel2Chart::PaletteColor(int entry) {
    return zel::RegisterPaletteColor(*this, entry);
}

// Ranges and layout

namespace {

// Marks at the ends of the data would be cut, or lie on the axes. An end at 0 stays.
zel::Scale WithRoomForMarks(const zel::Scale& scale, const zel::Scale& data) {
    constexpr double kMargin = 0.02;
    const auto end = [&](double present, double limit, double outwards) {
        const std::optional<double> from = scale.PlaceOf(present), to = scale.PlaceOf(limit);
        if (limit == 0 || !from || !to || std::fabs(*to - *from) >= kMargin) return present;
        const double moved = scale.ValueAt(*from + outwards);
        return std::isfinite(moved) ? moved : present;
    };
    return scale.WithEnds(end(scale.Low(), data.Low(), -kMargin), end(scale.High(), data.High(), kMargin));
}

// The scale of an axis from what its layers have told.
zel::Scale Resolved(const zel::ChartAxis& axis, const zel::AxisRange& range, bool tight, bool margin) {
    const double origin = range.Origin();
    if (axis.HasRange()) {
        const zel::Scale& kind = range.GetScale();
        return kind.WithEnds(axis.From() - origin, axis.To() - origin).WithUsableEnds();
    }
    zel::Scale scale = range.GetScale();
    if (scale.GetKind() == zel::Scale::Kind::CATEGORIES) {
        const double n = std::max(1.0, static_cast<double>(scale.Names().size()));
        scale = scale.WithEnds(-0.5, n - 0.5);
        // Names run from the top down, as they are read.
        const bool turned = axis.IsHorizontal() ? axis.IsReversed() : !axis.IsReversed();
        return turned ? scale.Reversed() : scale;
    }
    scale = range.IsSet() ? scale.WithEnds(range.Low(), range.High()) : scale.WithEnds(0, 0);
    if (!range.IsSet())
        scale = scale.WithEnds(scale.GetKind() == zel::Scale::Kind::LOGARITHM ? 1 : 0,
                               scale.GetKind() == zel::Scale::Kind::LOGARITHM ? 10 : 1);
    scale = scale.WithUsableEnds();
    if (!tight || margin) {
        const zel::Scale round = scale.WithRoundEnds();
        scale = margin ? WithRoomForMarks(round, scale) : round;
    }
    return axis.IsReversed() ? scale.Reversed() : scale;
}

}  // namespace

std::vector<zel::Scale> Zel2Chart::Scales(std::vector<std::string>& notes) {
    const std::size_t n = axes_.size();
    std::vector<zel::AxisRange> ranges(n);
    std::vector<bool> tight(n, false), margin(n, false);
    std::vector<Zel2Layer*> layers = Layers();
    std::erase_if(layers, [](const Zel2Layer* layer) { return !layer->IsVisible(); });
    const auto x = [&](const Zel2Layer* layer) { return static_cast<std::size_t>(layer->XAxis()); };
    const auto y = [&](const Zel2Layer* layer) { return static_cast<std::size_t>(layer->YAxis()); };
    // Settings may have changed since the layer was added.
    std::erase_if(layers, [&](const Zel2Layer* layer) { return x(layer) >= n || y(layer) >= n; });
    for (Zel2Layer* layer : layers) layer->DescribeAxes(ranges[x(layer)], ranges[y(layer)]);
    for (std::size_t i = 0; i < n; ++i) {
        const auto kind = !ranges[i].Names().empty() ? zel::Scale::Kind::CATEGORIES
                          : ranges[i].HasTimes()     ? zel::Scale::Kind::TIME
                                                     : zel::Scale::Kind::LINEAR;
        zel::Scale scale = axes_[i]->MakeScale(kind, 0, 1, ranges[i].Names());
        if (scale.GetKind() == zel::Scale::Kind::LOGARITHM) scale = scale.WithEnds(1, 10);
        if (scale.GetKind() == zel::Scale::Kind::LOGARITHM && axes_[i]->HasRange())
            scale = scale.WithEnds(axes_[i]->From(), axes_[i]->To());
        if (scale.GetKind() == zel::Scale::Kind::TIME) scale = scale.WithOrigin(ranges[i].FirstOrigin());
        ranges[i].SetScale(scale);
    }
    for (Zel2Layer* layer : layers) {
        layer->TakeRange(ranges[x(layer)], ranges[y(layer)]);
        if (layer->NeedsMargin()) margin[x(layer)] = margin[y(layer)] = true;
        for (const auto coordinate : {zel::AxisRange::Coordinate::X, zel::AxisRange::Coordinate::Y}) {
            const std::size_t axis = coordinate == zel::AxisRange::Coordinate::X ? x(layer) : y(layer);
            if (layer->EndsWithData(coordinate)) tight[axis] = true;
            if (const auto value = layer->Included(coordinate);
                value && ranges[axis].GetScale().HasPlace(*value))
                ranges[axis].Add(*value);
        }
        for (std::string& note : layer->Notes(ranges[x(layer)].GetScale(), ranges[y(layer)].GetScale()))
            notes.push_back(std::move(note));
    }
    std::vector<zel::Scale> scales;
    for (std::size_t i = 0; i < n; ++i) {
        if (axes_[i]->Included()) ranges[i].Add(*axes_[i]->Included() - ranges[i].Origin());
        scales.push_back(Resolved(*axes_[i], ranges[i], tight[i], margin[i]));
        if (ranges[i].WithoutPlace() > 0) {
            notes.push_back(
                std::to_string(ranges[i].WithoutPlace()) + " values of " +
                (axes_[i]->Title().empty() ? "an axis" : "the axis \"" + axes_[i]->Title() + "\"") +
                " have no place on its scale and are left out.");
        }
    }
    if (layers.empty() ||
        std::none_of(ranges.begin(), ranges.end(), [](const zel::AxisRange& r) { return r.IsSet(); }))
        notes.push_back("The chart has no data to draw.");
    return scales;
}

// Outside of a drawing nothing can be measured: the plot area is all of it then.
zel::ChartLayout Zel2Chart::MakeLayout(const zel::PlotMargins& least) {
    std::vector<std::string> notes;
    std::vector<zel::Scale> scales = Scales(notes);
    if (Colors() && Fonts() && Pens()) {
        RegisterTools();
        return zel::ChartLayouter(*this, RegisterFonts(), std::move(scales), std::move(notes)).Run(least);
    }
    zel::ChartLayout layout;
    layout.size = size_;
    layout.plot = {0, 0, size_.cx, size_.cy};
    layout.notes = std::move(notes);
    for (const zel::Scale& scale : scales) {
        layout.axes.emplace_back();
        layout.axes.back().scale = scale;
    }
    return layout;
}

const zel::ChartLayout& Zel2Chart::Layout() {
    if (layout_) return *layout_;
    layout_ = std::make_unique<zel::ChartLayout>(MakeLayout({}));
    ownMargins_ = std::make_unique<zel::PlotMargins>(layout_->Margins());
    const zel::PlotMargins aligned = AlignedMargins();
    if (aligned != *ownMargins_) *layout_ = MakeLayout(aligned);
    return *layout_;
}

const zel::PlotMargins& Zel2Chart::OwnMargins() {
    if (!ownMargins_) ownMargins_ = std::make_unique<zel::PlotMargins>(MakeLayout({}).Margins());
    return *ownMargins_;
}

// Charts above each other begin and end at the same x, charts beside each other at the same y.
zel::PlotMargins Zel2Chart::AlignedMargins() {
    zel::PlotMargins margins = OwnMargins();
    const auto align = [&](Zel2* object, bool above, bool beside) {
        auto* const other = dynamic_cast<Zel2Chart*>(object);
        if (!other || other == this) return;
        const zel::PlotMargins& its = other->OwnMargins();
        if (above)
            margins = {std::max(margins.left, its.left), margins.bottom, std::max(margins.right, its.right),
                       margins.top};
        if (beside)
            margins = {margins.left, std::max(margins.bottom, its.bottom), margins.right,
                       std::max(margins.top, its.top)};
    };
    if (auto* table = dynamic_cast<Zel2Table*>(GetParent())) {
        const int columns = std::max(1, static_cast<int>(table->Columns()));
        const auto places = static_cast<int>(table->Columns() * table->Rows());
        int own = -1;
        for (int i = 0; i < places; ++i) own = (*table)[i] == this ? i : own;
        for (int i = 0; own >= 0 && i < places; ++i)
            align((*table)[i], i % columns == own % columns, i / columns == own / columns);
    } else if (auto* row = dynamic_cast<Zel2Row*>(GetParent())) {
        for (int i = 0; i < row->GetCount(); ++i) align((*row)[i], false, true);
    } else if (auto* column = dynamic_cast<Zel2Column*>(GetParent())) {
        for (int i = 0; i < column->GetCount(); ++i) align((*column)[i], true, false);
    }
    return margins;
}

std::vector<std::string> Zel2Chart::Notes() {
    return Layout().notes;
}

zel::Scale Zel2Chart::ScaleOf(int axis) {
    (void)Axis(axis);
    return Layout().axes[static_cast<std::size_t>(axis)].scale;
}

CRect Zel2Chart::PlotArea() {
    const zel::Box& plot = Layout().plot;
    return {plot.left, plot.top, plot.right, plot.bottom};
}

zel::LayerFrame Zel2Chart::FrameOf(const Zel2Layer& layer) {
    zel::LayerFrame frame;
    frame.x = ScaleOf(layer.XAxis());
    frame.y = ScaleOf(layer.YAxis());
    frame.xTransform = frame.x.Transform();
    frame.yTransform = frame.y.Transform();
    WorldFrame& world = frame.world;
    world.exact = true;
    world.xmin = frame.x.Forward(frame.x.Low());
    world.xmax = frame.x.Forward(frame.x.High());
    world.ymin = frame.y.Forward(frame.y.Low());
    world.ymax = frame.y.Forward(frame.y.High());
    if (!Map()) return frame;
    const zel::Box& plot = Layout().plot;
    const CPoint origin = AbsOrigin();
    const CPoint lower =
        Map()->ToLogical(CPoint(zel::Add(origin.x, plot.left), zel::Add(origin.y, plot.bottom)));
    const CPoint upper =
        Map()->ToLogical(CPoint(zel::Add(origin.x, plot.right), zel::Add(origin.y, plot.top)));
    world.lower = {frame.x.IsReversed() ? upper.x : lower.x, frame.y.IsReversed() ? upper.y : lower.y};
    world.upper = {frame.x.IsReversed() ? lower.x : upper.x, frame.y.IsReversed() ? lower.y : upper.y};
    return frame;
}

namespace {

// Where a device point lies between the ends of an axis.
double PlaceAt(Zel2Chart& chart, int axis, const CPoint& device) {
    const zel::Box& plot = chart.Layout().plot;
    const CSize at = chart.Map()->FromDevice(device) - chart.AbsOrigin();
    return chart.Axis(axis).IsHorizontal()
               ? (at.cx - plot.left) / static_cast<double>(std::max(1, plot.Width()))
               : (at.cy - plot.bottom) / static_cast<double>(std::max(1, plot.Height()));
}

}  // namespace

double Zel2Chart::ValueAt(int axis, const CPoint& device) {
    if (!Map()) return 0;
    const zel::Scale scale = ScaleOf(axis);
    return scale.ValueAt(PlaceAt(*this, axis, device)) + scale.Origin();
}

std::string Zel2Chart::TextAt(int axis, const CPoint& device) {
    if (!Map()) return "";
    const zel::Scale scale = ScaleOf(axis);
    const double place = PlaceAt(*this, axis, device), next = PlaceAt(*this, axis, device + CSize(1, 1));
    const double value = scale.ValueAt(place);
    const std::string text = scale.TextOf(value, std::fabs(scale.ValueAt(next) - value), Axis(axis).Format());
    return Axis(axis).Unit().empty() ? text : text + " " + Axis(axis).Unit();
}

Zel2Chart::NearestRow Zel2Chart::Nearest(const CPoint& device, double reach) {
    NearestRow nearest;
    for (Zel2Layer* layer : Layers()) {
        if (!layer->IsVisible()) continue;
        const auto datum = layer->Nearest(device, reach);
        if (!datum) continue;
        nearest = {layer, *datum};
        reach = datum->distance;
    }
    return nearest;
}

Zel2Layer* Zel2Chart::LegendEntryAt(const CPoint& device) {
    if (!Map()) return nullptr;
    const CSize at = Map()->FromDevice(device) - AbsOrigin();
    for (const zel::LegendEntry& entry : Layout().legend)
        if (entry.layer && entry.whole.Contains(at.cx, at.cy)) return entry.layer;
    return nullptr;
}

int Zel2Chart::OnClick(const CPoint& pt) {
    Zel2Layer* const layer = LegendEntryAt(pt);
    if (!layer) return 0;
    layer->SetVisible(!layer->IsVisible());
    UpdateWindow();
    OnNotify(this, EDITED);
    return 1;
}

// Size and place

CSize Zel2Chart::Size() {
    return size_;
}

CSize Zel2Chart::MinSize() {
    return kLeastSize;
}

void Zel2Chart::SetSize(const CSize& size) {
    const CSize bounded(std::clamp<LONG>(size.cx, kLeastSize.cx, kLargestSide),
                        std::clamp<LONG>(size.cy, kLeastSize.cy, kLargestSide));
    if (bounded == size_) return;
    size_ = bounded;
    Changed();
}

unsigned int Zel2Chart::nCpt() {
    return kCorners;
}

// From the lower left one on, clockwise.
CPoint Zel2Chart::Cpt(int i) {
    const CPoint origin = AbsOrigin();
    return {zel::Add(origin.x, i == 2 || i == 3 ? size_.cx : 0),
            zel::Add(origin.y, i == 1 || i == 2 ? size_.cy : 0)};
}

void Zel2Chart::Drag(int cpt, CPoint pt) {
    if (!Map() || cpt < 0 || cpt >= kCorners) return;
    const CPoint to = Map()->FromDevice(pt);
    const CPoint opposite = Cpt((cpt + 2) % kCorners);
    const CSize size(std::max<LONG>(std::abs(to.x - opposite.x), kLeastSize.cx),
                     std::max<LONG>(std::abs(to.y - opposite.y), kLeastSize.cy));
    const CPoint lower(cpt == 2 || cpt == 3 ? opposite.x : opposite.x - size.cx,
                       cpt == 1 || cpt == 2 ? opposite.y : opposite.y - size.cy);
    UpdateWindow();
    const CSize relative = lower - ParentOrigin();
    Origin(CPoint(relative.cx, relative.cy));
    SetSize(size);
    UpdateWindow();
    OnNotify(this, RESIZED);
}

int Zel2Chart::IsIn(const CPoint& pt) {
    return Map() && DeviceRect().PtInRect(pt) ? 1 : 0;
}

Zel2* Zel2Chart::GetSelectableAt(const CPoint& pt) {
    Zel2* const hit = Zel2Set::GetSelectableAt(pt);
    return hit ? hit : Zel2::GetSelectableAt(pt);
}

void Zel2Chart::SelectAt(const CRect& r, Zel2Selection* sel) {
    Zel2::SelectAt(r, sel);
}

MouseAction Zel2Chart::OnMouse(const MouseStatus& ms) {
    return Zel2::OnMouse(ms);
}

void Zel2Chart::OnDraw() {
    if (!Ready()) return;
    // Pens, fonts or the data behind a series may have changed since the last pass.
    layout_.reset();
    zel::ChartPainter painter(*this, Layout());
    painter.DrawGround();
    painter.DrawGrid();
    Zel2Set::OnDraw();
    DrawLabels();
    painter.DrawAxes();
    painter.DrawColorBars();
    painter.DrawTitles();
    painter.DrawLegend();
    if (!Selected()) return;
    for (int i = 0; i < kCorners; ++i) DrawCPT(i);
}

void Zel2Chart::DrawLabels() {
    std::vector<Zel2Layer*> layers = Layers();
    std::erase_if(layers, [](const Zel2Layer* layer) { return !layer->IsVisible(); });
    if (std::none_of(layers.begin(), layers.end(), [](const Zel2Layer* layer) { return layer->HasLabels(); }))
        return;
    const zel::TextRuler ruler(*Font(TextFont()));
    const CSize line = Map()->ToLogical(CSize(ruler.LineHeight() * 3, ruler.LineHeight()));
    const WorldFrame world = FrameOf(*layers.front()).world;
    const CSize cell(zel::Magnitude(line.cx), zel::Magnitude(line.cy));
    CRect bounds(world.lower, world.upper);
    bounds.NormalizeRect();
    // There is a little room around the plot area before the labels of the axes begin.
    bounds.InflateRect(cell.cy * 2 / 5, cell.cy * 2 / 5);
    zel::FreeSpace space(bounds, cell);
    for (Zel2Layer* layer : layers) layer->BlockLabels(FrameOf(*layer), space);
    for (Zel2Layer* layer : layers) layer->DrawLabels(FrameOf(*layer), space);
}

void Zel2Chart::OnPrint(CDC*, CPrintInfo*) {
    OnDraw();
}

void Zel2Chart::Serialize(CArchive& ar) {
    if (!zel::IsComplete(ar))
        ar.Fail(CArchiveException::badClass, "a Zel2Chart can only be stored in documents");
    if (ar.IsLoading()) axes_.clear();
    zel::ExchangeText(ar, title_);
    zel::ExchangeText(ar, subtitle_);
    zel::ExchangeText(ar, caption_);
    int legend = static_cast<int>(legend_);
    zel::Exchange(ar, size_.cx, size_.cy, legend, fontSize_);
    zel::ExchangeText(ar, fontFace_);
    int axes = AxisCount();
    zel::Exchange(ar, axes, y2_);
    if (ar.IsLoading()) {
        ar.CheckCount(axes, 1);
        if (axes < 2 || y2_ >= axes || legend < 0 || legend > static_cast<int>(zel::LegendPlace::NONE) ||
            !(fontSize_ > 0 && fontSize_ < 1000))
            ar.Fail(CArchiveException::genericException,
                    "a chart lacks axes or has settings that do not exist");
        legend_ = static_cast<zel::LegendPlace>(legend);
        size_ = CSize(std::clamp<LONG>(size_.cx, kLeastSize.cx, kLargestSide),
                      std::clamp<LONG>(size_.cy, kLeastSize.cy, kLargestSide));
        for (int i = 0; i < axes; ++i)
            axes_.push_back(std::make_unique<zel::ChartAxis>(*this, zel::Side::BOTTOM));
    }
    for (const auto& axis : axes_) axis->Serialize(ar);
    // Layers look for their axes, so they come last.
    try {
        Zel2Set::Serialize(ar);
    } catch (const zel::Error& e) {
        ar.Fail(CArchiveException::genericException, e.what());
    }
    if (ar.IsLoading()) Changed();
}
