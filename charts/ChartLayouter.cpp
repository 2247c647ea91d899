#include "charts/ChartLayouter.h"

#include <zel/DrawFont.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace zel {
namespace {

constexpr double kEdge = 6, kBlockGap = 5, kTick = 3.5, kLabelGap = 2.5, kAxisGap = 8, kColorBar = 10,
                 kColorBarGap = 10;  // points
constexpr double kLeastPlot = 24;    // points, of either side of a plot area that is worth drawing
constexpr std::size_t kMostTitleLines = 3;
constexpr int kMostPasses = 5;
constexpr std::size_t kMostNameLines = 3;
constexpr std::size_t kLongestLabel = 300;  // bytes of a label that are looked at

int Up(double units) {
    return Truncate(std::ceil(units));
}

std::string Beginning(const std::string& text) {
    return text.size() > kLongestLabel ? text.substr(0, kLongestLabel) : text;
}

}  // namespace

ChartLayouter::ChartLayouter(Zel2Chart& chart, const ChartFonts& fonts, std::vector<Scale> scales,
                             std::vector<std::string> notes)
    : chart_(chart),
      fonts_(fonts),
      scales_(std::move(scales)),
      givenNotes_(std::move(notes)),
      title_(*chart.Font(fonts.title)),
      subtitle_(*chart.Font(fonts.subtitle)),
      caption_(*chart.Font(fonts.caption)),
      text_(*chart.Font(fonts.text)),
      axisTitle_(*chart.Font(fonts.axisTitle)) {}

ChartLayout ChartLayouter::Run(const PlotMargins& least) {
    int level = ALL;
    for (; level <= NO_AXES; ++level) {
        LayOut(level, least);
        if (!IsTooSmall()) break;
    }
    static constexpr const char* kLeftOut[] = {"the caption", "part of the legend",     "the subtitle",
                                               "the legend",  "the titles of the axes", "the title",
                                               "the axes"};
    if (level > ALL) {
        std::string parts;
        for (int i = 0; i < std::min<int>(level, NO_AXES); ++i)
            parts += (parts.empty() ? "" : ", ") + std::string(kLeftOut[i]);
        layout_.notes.push_back(
            "The chart is too small for all of its parts; left out, where there were any: " + parts + ".");
    }
    return std::move(layout_);
}

void ChartLayouter::LayOut(int level, const PlotMargins& least) {
    layout_ = {};
    layout_.notes = givenNotes_;
    layout_.size = chart_.Size();
    const int edge = std::min({UnitsOfPoints(kEdge), layout_.size.cx / 20, layout_.size.cy / 20});
    inner_ = {edge, edge, layout_.size.cx - edge, layout_.size.cy - edge};
    PlaceTitles(level);
    PlaceLegend(level);
    FindColorBars(level);
    FitAxes(level, least);
    for (std::size_t i = 0; i < layout_.colorBars.size(); ++i) {
        PlacedColorBar& bar = layout_.colorBars[i];
        const int right = layout_.plot.right + bar.axis.offset;
        bar.box = {right - UnitsOfPoints(kColorBar), layout_.plot.bottom, right, layout_.plot.top};
        PlaceLabels(bar.axis, measuredBars_[i]);
        PlaceAxisTitle(bar.axis, measuredBars_[i]);
    }
    for (std::size_t i = 0; i < layout_.axes.size(); ++i) {
        if (!layout_.axes[i].drawn) continue;
        PlaceLabels(layout_.axes[i], measured_[i]);
        PlaceAxisTitle(layout_.axes[i], measured_[i]);
    }
    if (layout_.legendInside) MoveLegendInside();
}

// From an axis to its labels. Where two axes meet, the last labels of both reach around the corner: half a
// line keeps them apart.
int ChartLayouter::LabelDistance() const {
    return std::max(UnitsOfPoints(kTick + kLabelGap), text_.LineHeight() / 2 + UnitsOfPoints(1));
}

bool ChartLayouter::IsTooSmall() const {
    const int least = UnitsOfPoints(kLeastPlot);
    const CSize& size = layout_.size;
    return layout_.plot.Width() < std::max(least, size.cx / 3) ||
           layout_.plot.Height() < std::max(least, size.cy / 3);
}

PlacedText ChartLayouter::Placed(const TextRuler& ruler, int font, const std::string& text, CPoint at,
                                 unsigned flags, int angle) const {
    const int width = Up(ruler.WidthOf(text)), height = ruler.LineHeight();
    const int w = angle == 0 ? width : height, h = angle == 0 ? height : width;
    PlacedText placed{text, font, at, flags, angle, {}};
    // Turned by a quarter to the left: what runs to the right runs upwards, what is below comes to the right.
    const auto before = [](int extent, unsigned all, unsigned centred, unsigned end) {
        return all & end ? extent : all & centred ? extent / 2 : 0;
    };
    if (angle == 0) {
        const int left = at.x - before(w, flags, DT_CENTER, DT_RIGHT),
                  top = at.y + before(h, flags, DT_VCENTER, DT_BOTTOM);
        placed.box = {left, top - h, left + w, top};
    } else {
        const int bottom = at.y - before(h, flags, DT_CENTER, DT_RIGHT),
                  left = at.x - before(w, flags, DT_VCENTER, DT_BOTTOM);
        placed.box = {left, bottom, left + w, bottom + h};
    }
    return placed;
}

// Titles from the top down, the caption at the bottom. They are moved to the plot area's left edge later,
// where they fit.
void ChartLayouter::PlaceTitles(int level) {
    const double width = inner_.Width();
    const int gap = UnitsOfPoints(kBlockGap);
    const auto from_top = [&](const std::string& text, const TextRuler& ruler, int font, std::size_t most) {
        if (text.empty()) return;
        for (const std::string& line : ruler.Wrapped(text, width, most)) {
            layout_.texts.push_back(Placed(ruler, font, line, {inner_.left, inner_.top}, 0));
            inner_.top -= ruler.LineHeight();
            if (line.ends_with("\u2026") && !text.ends_with("\u2026"))
                layout_.notes.push_back("A title is too long for its place and was shortened: \"" +
                                        Beginning(text) + "\".");
        }
        inner_.top -= gap / 2;
    };
    if (level < NO_TITLE) from_top(chart_.Title(), title_, fonts_.title, kMostTitleLines);
    if (level < NO_SUBTITLE) from_top(chart_.Subtitle(), subtitle_, fonts_.subtitle, kMostTitleLines);
    if (!layout_.texts.empty()) inner_.top -= gap / 2;
    if (chart_.Caption().empty() || level >= NO_CAPTION) return;
    const std::vector<std::string> lines = caption_.Wrapped(chart_.Caption(), width, kMostTitleLines);
    int bottom = inner_.bottom;
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
        layout_.texts.push_back(Placed(caption_, fonts_.caption, *line, {inner_.left, bottom}, DT_BOTTOM));
        bottom += caption_.LineHeight();
    }
    inner_.bottom = bottom + gap;
}

void ChartLayouter::PlaceLegend(int level) {
    LegendPlace place = chart_.Legend();
    if (level >= NO_LEGEND || place == LegendPlace::NONE) return;
    std::vector<LegendLayout::Line> entries;
    int keyHeight = 0;
    for (Zel2Layer* layer : chart_.Layers()) {
        if (!layer->Name().empty()) entries.push_back({layer, -1, layer->Name()});
        if (!layer->IsVisible()) continue;
        int part = 0;
        for (std::string& text : layer->KeyParts()) entries.push_back({layer, part++, std::move(text)});
        keyHeight = std::max(keyHeight, layer->KeyHeight());
    }
    if (entries.empty() || (place == LegendPlace::AUTOMATIC && entries.size() < 2)) return;

    LegendLayout legend(text_, fonts_.text, std::move(entries), keyHeight);
    const int gap = UnitsOfPoints(kBlockGap);
    const int width = inner_.Width(), height = inner_.Height();
    if (level >= SHORT_LEGEND && place != LegendPlace::INSIDE) {
        // A row or two, and how many names are missing.
        legend.Fit(width,
                   std::max(height / 6, UnitsOfPoints(1.4 * chart_.Font(fonts_.text)->PtSize10() / 10)));
        place = LegendPlace::ABOVE;
        legend.MoveTo(inner_.left, inner_.top);
        inner_.top -= legend.Height() + gap;
        TakeLegend(legend);
        return;
    }
    if (place == LegendPlace::AUTOMATIC) {
        legend.Fit(width, height);
        place = legend.Height() <= std::max(2 * text_.LineHeight(), height / 5) && legend.Missing() == 0
                    ? LegendPlace::ABOVE
                    : LegendPlace::RIGHT;
        if (place == LegendPlace::RIGHT) {
            legend.FitColumn(width * 2 / 5, height);
            if (legend.Missing() > 0 || legend.Width() > width * 2 / 5) place = LegendPlace::ABOVE;
        }
    }
    switch (place) {
        case LegendPlace::RIGHT:
            legend.FitColumn(width * 2 / 5, height);
            legend.MoveTo(inner_.right - legend.Width(), inner_.top);
            inner_.right -= legend.Width() + 2 * gap;
            break;
        case LegendPlace::BELOW:
            legend.Fit(width, height / 3);
            legend.MoveTo(inner_.left, inner_.bottom + legend.Height());
            inner_.bottom += legend.Height() + gap;
            break;
        case LegendPlace::INSIDE:
            legend.FitColumn(width / 2, height / 2);
            layout_.legendInside = true;
            break;
        default:
            legend.Fit(width, height / 3);
            legend.MoveTo(inner_.left, inner_.top);
            inner_.top -= legend.Height() + gap;
    }
    TakeLegend(legend);
}

void ChartLayouter::TakeLegend(const LegendLayout& legend) {
    layout_.legend = legend.Entries();
    layout_.legendBox = legend.GetBox();
    if (legend.Missing() > 0)
        layout_.notes.push_back("The legend has no room for " + std::to_string(legend.Missing()) +
                                " of its names.");
    if (legend.Shortened() > 0)
        layout_.notes.push_back("The legend shortens " + std::to_string(legend.Shortened()) +
                                " of its names.");
}

// The corner of the plot area in which the fewest of the data lie: a few hundred of each layer are looked at.
void ChartLayouter::MoveLegendInside() {
    const int inset = UnitsOfPoints(kBlockGap);
    const Box& plot = layout_.plot;
    const int width = layout_.legendBox.Width(), height = layout_.legendBox.Height();
    const int lefts[] = {plot.right - inset - width, plot.left + inset, plot.right - inset - width,
                         plot.left + inset};
    const int tops[] = {plot.top - inset, plot.top - inset, plot.bottom + inset + height,
                        plot.bottom + inset + height};
    std::size_t counts[4] = {};
    for (Zel2Layer* layer : chart_.Layers()) {
        if (!layer->IsVisible()) continue;
        const Scale& xScale = layout_.axes[static_cast<std::size_t>(layer->XAxis())].scale;
        const Scale& yScale = layout_.axes[static_cast<std::size_t>(layer->YAxis())].scale;
        for (const auto& [x, y] : layer->Sample(xScale, yScale, 500)) {
            const auto u = xScale.PlaceOf(x), v = yScale.PlaceOf(y);
            if (!u || !v) continue;
            const double atX = plot.left + *u * plot.Width(), atY = plot.bottom + *v * plot.Height();
            for (int i = 0; i < 4; ++i)
                if (atX >= lefts[i] && atX <= lefts[i] + width && atY <= tops[i] && atY >= tops[i] - height)
                    ++counts[i];
        }
    }
    const auto best = std::min_element(std::begin(counts), std::end(counts)) - std::begin(counts);
    MoveLegend(lefts[best] - layout_.legendBox.left, tops[best] - layout_.legendBox.top);
}

void ChartLayouter::FitAxes(int level, const PlotMargins& fromEdges) {
    // Nothing needs more than the whole chart; beyond it sums would leave the range of integers.
    const auto bounded = [this](PlotMargins m) {
        const LONG most = std::max(layout_.size.cx, layout_.size.cy);
        for (int* side : {&m.left, &m.bottom, &m.right, &m.top}) *side = std::clamp<int>(*side, 0, most);
        return m;
    };
    const PlotMargins least =
        bounded({std::max(0, fromEdges.left - inner_.left), std::max(0, fromEdges.bottom - inner_.bottom),
                 std::max(0, fromEdges.right - (layout_.size.cx - inner_.right)),
                 std::max(0, fromEdges.top - (layout_.size.cy - inner_.top))});
    measured_.assign(scales_.size(), {});
    layout_.axes.resize(scales_.size());
    PlotMargins margins = least;
    for (int pass = 0; pass < kMostPasses; ++pass) {
        Box& plot = layout_.plot;
        plot = {inner_.left + margins.left, inner_.bottom + margins.bottom, inner_.right - margins.right,
                inner_.top - margins.top};
        plot.right = std::max(plot.right, plot.left + 1);
        plot.top = std::max(plot.top, plot.bottom + 1);
        for (std::size_t i = 0; i < scales_.size(); ++i) {
            const ChartAxis& source = chart_.Axis(static_cast<int>(i));
            PlacedAxis& axis = layout_.axes[i];
            axis.index = static_cast<int>(i);
            axis.side = source.GetSide();
            axis.scale = scales_[i];
            axis.drawn = source.IsVisible() && level < NO_AXES;
            MeasureAxis(source, axis, measured_[i], level);
        }
        for (std::size_t i = 0; i < layout_.colorBars.size(); ++i) {
            PlacedColorBar& bar = layout_.colorBars[i];
            MeasureAxis(bar.key->Axis(), bar.axis, measuredBars_[i], level);
        }
        PlotMargins needed = bounded(MarginsOfAxes());
        needed = {std::max(needed.left, least.left), std::max(needed.bottom, least.bottom),
                  std::max(needed.right, least.right), std::max(needed.top, least.top)};
        // The last passes only grow: labels that come and go with the room must not make it swing.
        if (pass >= 2) {
            needed = {std::max(needed.left, margins.left), std::max(needed.bottom, margins.bottom),
                      std::max(needed.right, margins.right), std::max(needed.top, margins.top)};
        }
        if (needed == margins) break;
        margins = needed;
    }
    // All lines of titles begin at one place: that of the plot area, or as near as the longest has room.
    int shift = layout_.plot.left - inner_.left;
    for (const PlacedText& text : layout_.texts) shift = std::min(shift, inner_.right - text.box.right);
    for (PlacedText& text : layout_.texts) {
        const int dx = std::max(shift, 0);
        text.at.x += dx;
        text.box = {text.box.left + dx, text.box.bottom, text.box.right + dx, text.box.top};
    }
    const int dx = layout_.plot.left - layout_.legendBox.left;
    const bool across =
        layout_.legendBox.bottom >= layout_.plot.top || layout_.legendBox.top <= layout_.plot.bottom;
    if (!layout_.legendInside && across && dx > 0 && layout_.legendBox.right + dx <= inner_.right)
        MoveLegend(dx, 0);
}

void ChartLayouter::MoveLegend(int dx, int dy) {
    const auto move = [=](Box& box) { box = {box.left + dx, box.bottom + dy, box.right + dx, box.top + dy}; };
    move(layout_.legendBox);
    for (LegendEntry& entry : layout_.legend) {
        for (Box* box : {&entry.key, &entry.whole, &entry.name.box}) move(*box);
        entry.name.at = {entry.name.at.x + dx, entry.name.at.y + dy};
    }
}

// Bars of colours go with the legend when there is no room.
void ChartLayouter::FindColorBars(int level) {
    measuredBars_.clear();
    if (level >= NO_LEGEND) return;
    for (Zel2Layer* layer : chart_.Layers()) {
        const ColorKey* const key = layer->IsVisible() ? layer->ColorBar() : nullptr;
        if (!key || !key->Axis().IsVisible()) continue;
        PlacedColorBar bar;
        bar.key = key;
        bar.axis.side = Side::RIGHT;
        bar.axis.scale = key->GetScale();
        layout_.colorBars.push_back(std::move(bar));
    }
    measuredBars_.resize(layout_.colorBars.size());
}

void ChartLayouter::MeasureAxis(const ChartAxis& source, PlacedAxis& axis, Measured& measured, int level) {
    measured = {};
    const bool horizontal = axis.side == Side::BOTTOM || axis.side == Side::TOP;
    if (horizontal) {
        MeasureHorizontal(source, axis, measured);
    } else {
        MeasureVertical(source, axis, measured);
    }
    if (!axis.drawn) return;
    if (level < NO_AXIS_TITLES && (!source.Title().empty() || !source.Unit().empty())) {
        std::string title = source.Title();
        if (!source.Unit().empty()) title += title.empty() ? source.Unit() : " (" + source.Unit() + ")";
        const double length = horizontal ? layout_.plot.Width() : layout_.plot.Height();
        measured.titleLines = axisTitle_.Wrapped(title, std::max(length, 1.0), 2);
    }
    axis.thickness = LabelDistance() + measured.labels + measured.contexts;
    // A factor of a horizontal axis stands in the line of the title, that of a vertical one above the axis.
    const bool hasLine = !measured.titleLines.empty() || (horizontal && !axis.ticks.factor.empty());
    if (hasLine)
        axis.thickness +=
            UnitsOfPoints(kLabelGap) +
            std::max<int>(1, static_cast<int>(measured.titleLines.size())) * axisTitle_.LineHeight();
}

void ChartLayouter::MeasureHorizontal(const ChartAxis& source, PlacedAxis& axis, Measured& measured) {
    const double length = layout_.plot.Width();
    TickRoom room;
    room.length = length;
    room.gap = text_.WidthOf("n");
    room.distance = UnitsOfPoints(58);
    room.endsAreGiven = source.HasRange();
    measured.longest = length;
    room.extent = [&](const std::string& label) { return text_.WidthOf(Beginning(label)); };
    axis.ticks = source.GivenTicks().empty() ? axis.scale.MakeTicks(room, source.Format())
                                             : Ticks{source.GivenTicks(), {}, {}};
    measured.labels = text_.LineHeight();
    if (axis.scale.GetKind() == Scale::Kind::CATEGORIES && source.GivenTicks().empty())
        MeasureNames(axis, measured, room);
    for (const Tick& tick : axis.ticks.major) {
        if (!tick.context.empty()) measured.contexts = text_.LineHeight();
        const auto place = axis.scale.PlaceOf(tick.value);
        if (!place) continue;
        const double half =
            measured.turned ? text_.LineHeight() / 2.0
            : measured.wrapped
                ? measured.longest / 2
                : std::max(text_.WidthOf(Beginning(tick.label)), text_.WidthOf(tick.context)) / 2;
        measured.beforeStart = std::max(measured.beforeStart, Up(half - *place * length));
        measured.behindEnd = std::max(measured.behindEnd, Up(half - (1 - *place) * length));
    }
}

// Names that do not fit beside each other are broken into lines, or else stand upright.
void ChartLayouter::MeasureNames(PlacedAxis& axis, Measured& measured, TickRoom room) {
    const double shown = std::floor(axis.scale.High()) - std::ceil(axis.scale.Low()) + 1;
    const double count = std::min(shown, static_cast<double>(axis.scale.Names().size()));
    if (static_cast<double>(axis.ticks.major.size()) >= count) return;
    const double band = room.length / std::max(shown, 1.0) - room.gap;
    room.extent = [&](const std::string&) { return std::min(band, static_cast<double>(text_.LineHeight())); };
    const NumberFormat none;
    const auto all = axis.scale.MakeTicks(room, none).major;
    std::size_t lines = 1;
    const bool breaks =
        band > 3 * text_.LineHeight() && std::all_of(all.begin(), all.end(), [&](const Tick& tick) {
            const std::vector<std::string> broken =
                text_.Wrapped(Beginning(tick.label), band, kMostNameLines);
            lines = std::max(lines, broken.size());
            return std::none_of(broken.begin(), broken.end(),
                                [](const std::string& line) { return line.ends_with("\u2026"); });
        });
    if (breaks) {
        axis.ticks.major = all;
        measured.wrapped = true;
        measured.longest = band;
        measured.labels = static_cast<int>(lines) * text_.LineHeight();
        return;
    }
    measured.turned = true;
    measured.longest = layout_.size.cy / 3.5;
    room.gap = text_.LineHeight() * 0.1;
    room.extent = [&](const std::string&) { return static_cast<double>(text_.LineHeight()); };
    axis.ticks = axis.scale.MakeTicks(room, none);
    measured.labels = 0;
    for (const Tick& tick : axis.ticks.major)
        measured.labels =
            std::max(measured.labels, Up(std::min(measured.longest, text_.WidthOf(Beginning(tick.label)))));
}

void ChartLayouter::MeasureVertical(const ChartAxis& source, PlacedAxis& axis, Measured& measured) {
    const double length = layout_.plot.Height();
    TickRoom room;
    room.length = length;
    room.gap = text_.LineHeight() * 0.15;
    room.distance = UnitsOfPoints(34);
    room.endsAreGiven = source.HasRange();
    measured.longest = layout_.size.cx / 3.5;
    const double line = text_.LineHeight();
    room.extent = [line](const std::string&) { return line; };
    axis.ticks = source.GivenTicks().empty() ? axis.scale.MakeTicks(room, source.Format())
                                             : Ticks{source.GivenTicks(), {}, {}};
    for (const Tick& tick : axis.ticks.major) {
        const double width = std::max(text_.WidthOf(Beginning(tick.label)), text_.WidthOf(tick.context));
        measured.labels = std::max(measured.labels, Up(std::min(width, measured.longest)));
        const auto place = axis.scale.PlaceOf(tick.value);
        if (!place) continue;
        // A context stands below its label.
        const double below = tick.context.empty() ? line / 2 : line * 1.5;
        measured.beforeStart = std::max(measured.beforeStart, Up(below - *place * length));
        measured.behindEnd = std::max(measured.behindEnd, Up(line / 2 - (1 - *place) * length));
    }
    if (!axis.ticks.factor.empty())
        measured.behindEnd = std::max(measured.behindEnd, text_.LineHeight() * 3 / 2);
}

PlotMargins ChartLayouter::MarginsOfAxes() {
    PlotMargins margins;
    const auto gap = UnitsOfPoints(kAxisGap);
    int* const side[] = {&margins.bottom, &margins.left, &margins.top, &margins.right};
    for (std::size_t i = 0; i < layout_.axes.size(); ++i) {
        PlacedAxis& axis = layout_.axes[i];
        if (!axis.drawn) continue;
        int& taken = *side[static_cast<int>(axis.side)];
        axis.offset = taken > 0 ? taken + gap : 0;
        taken = axis.offset + axis.thickness;
    }
    for (std::size_t i = 0; i < layout_.axes.size(); ++i) {
        const PlacedAxis& axis = layout_.axes[i];
        if (!axis.drawn) continue;
        const Measured& m = measured_[i];
        const bool horizontal = axis.side == Side::BOTTOM || axis.side == Side::TOP;
        int& low = horizontal ? margins.left : margins.bottom;
        int& high = horizontal ? margins.right : margins.top;
        low = std::max(low, m.beforeStart);
        high = std::max(high, m.behindEnd);
    }
    for (std::size_t i = 0; i < layout_.colorBars.size(); ++i) {
        PlacedAxis& axis = layout_.colorBars[i].axis;
        axis.offset = margins.right + UnitsOfPoints(kColorBarGap + kColorBar);
        margins.right = axis.offset + axis.thickness;
        margins.bottom = std::max(margins.bottom, measuredBars_[i].beforeStart);
        margins.top = std::max(margins.top, measuredBars_[i].behindEnd);
    }
    return margins;
}

void ChartLayouter::PlaceLabels(PlacedAxis& axis, const Measured& measured) {
    const Box& plot = layout_.plot;
    const int away = LabelDistance();
    for (Tick& tick : axis.ticks.major) {
        const auto place = axis.scale.PlaceOf(tick.value);
        if (!place || *place < -1e-9 || *place > 1 + 1e-9) continue;
        const std::string label = text_.Shortened(tick.label, measured.longest + 1);
        const int x = plot.left + static_cast<int>(std::lround(*place * plot.Width()));
        const int y = plot.bottom + static_cast<int>(std::lround(*place * plot.Height()));
        CPoint at, contextAt;
        unsigned flags = 0, contextFlags = 0;
        const int line = text_.LineHeight();
        switch (axis.side) {
            case Side::BOTTOM:
                at = {x, plot.bottom - axis.offset - away};
                flags = measured.turned ? DT_RIGHT | DT_VCENTER : DT_CENTER;
                contextAt = {x, at.y - measured.labels};
                contextFlags = DT_CENTER;
                break;
            case Side::TOP:
                at = {x, plot.top + axis.offset + away};
                flags = measured.turned ? DT_VCENTER : DT_CENTER | DT_BOTTOM;
                contextAt = {x, at.y + measured.labels};
                contextFlags = DT_CENTER | DT_BOTTOM;
                break;
            case Side::LEFT:
                at = {plot.left - axis.offset - away, y};
                flags = DT_RIGHT | DT_VCENTER;
                contextAt = {at.x, at.y - line};
                contextFlags = flags;
                break;
            default:
                at = {plot.right + axis.offset + away, y};
                flags = DT_VCENTER;
                contextAt = {at.x, at.y - line};
                contextFlags = flags;
        }
        if (measured.wrapped) {
            for (const std::string& part :
                 text_.Wrapped(Beginning(tick.label), measured.longest, kMostNameLines)) {
                axis.texts.push_back(Placed(text_, fonts_.text, part, at, flags));
                at.y -= axis.side == Side::BOTTOM ? line : -line;
            }
            continue;
        }
        axis.texts.push_back(Placed(text_, fonts_.text, label, at, flags, measured.turned ? 900 : 0));
        if (!tick.context.empty())
            axis.texts.push_back(Placed(text_, fonts_.text, tick.context, contextAt, contextFlags));
    }
}

// In the middle of the axis, outside its labels; a factor at its end.
void ChartLayouter::PlaceAxisTitle(PlacedAxis& axis, const Measured& measured) {
    const Box& plot = layout_.plot;
    const int outer =
        axis.offset + LabelDistance() + measured.labels + measured.contexts + UnitsOfPoints(kLabelGap);
    const int line = axisTitle_.LineHeight();
    const bool horizontal = axis.side == Side::BOTTOM || axis.side == Side::TOP;
    const auto count = static_cast<int>(measured.titleLines.size());
    for (int i = 0; i < count; ++i) {
        CPoint at(std::midpoint(plot.left, plot.right), std::midpoint(plot.bottom, plot.top));
        unsigned flags = DT_CENTER;
        switch (axis.side) {
            case Side::BOTTOM:
                at.y = plot.bottom - outer - i * line;
                break;
            case Side::TOP:
                at.y = plot.top + outer + (count - 1 - i) * line;
                flags |= DT_BOTTOM;
                break;
            case Side::LEFT:
                at.x = plot.left - outer - (count - 1 - i) * line;
                flags |= DT_BOTTOM;
                break;
            default:
                at.x = plot.right + outer + i * line;
        }
        axis.texts.push_back(Placed(axisTitle_, fonts_.axisTitle,
                                    measured.titleLines[static_cast<std::size_t>(i)], at, flags,
                                    horizontal ? 0 : 900));
    }
    if (axis.ticks.factor.empty()) return;
    const int high = plot.top + text_.LineHeight() * 3 / 5, width = Up(text_.WidthOf(axis.ticks.factor));
    CPoint at;
    unsigned flags = DT_BOTTOM;
    switch (axis.side) {
        case Side::BOTTOM:
            at = {plot.right, plot.bottom - outer};
            flags = DT_RIGHT;
            break;
        case Side::TOP:
            at = {plot.right, plot.top + outer};
            flags = DT_RIGHT | DT_BOTTOM;
            break;
        case Side::LEFT:
            at = {std::max(plot.left - axis.offset, inner_.left + width), high};
            flags = DT_RIGHT | DT_BOTTOM;
            break;
        default:
            at = {std::min(plot.right + axis.offset, inner_.right - width), high};
    }
    axis.texts.push_back(Placed(text_, fonts_.text, axis.ticks.factor, at, flags));
}

}  // namespace zel
