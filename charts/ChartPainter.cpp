#include "charts/ChartPainter.h"

#include "charts/TextRuler.h"

#include <zel/DrawColor.h>
#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>

namespace zel {
namespace {

constexpr double kTick = 3.5, kMinorTick = 2;  // points

bool IsHorizontal(const PlacedAxis& axis) {
    return axis.side == Side::BOTTOM || axis.side == Side::TOP;
}

}  // namespace

ChartPainter::ChartPainter(Zel2Chart& chart, const ChartLayout& layout)
    : chart_(chart), layout_(layout), origin_(chart.AbsOrigin()) {}

CPoint ChartPainter::ToLogical(int x, int y) const {
    return chart_.Map()->ToLogical(CPoint(Add(origin_.x, x), Add(origin_.y, y)));
}

CRect ChartPainter::ToLogical(const Box& box) const {
    CRect rect(ToLogical(box.left, box.top), ToLogical(box.right, box.bottom));
    rect.NormalizeRect();
    return rect;
}

void ChartPainter::Line(DrawPen& pen, int x1, int y1, int x2, int y2) const {
    const CPoint from = ToLogical(x1, y1), to = ToLogical(x2, y2);
    pen.MoveTo(from.x, from.y);
    pen.LineTo(to.x, to.y);
}

void ChartPainter::Write(const PlacedText& text) const {
    if (DrawFont* font = chart_.Font(text.font))
        font->Print(text.text.c_str(), ToLogical(text.at.x, text.at.y), text.angle, text.flags);
}

void ChartPainter::DrawGround() {
    const int index = chart_.GetColorIndex("Chart Ground");
    if (DrawColor* color = chart_.Color(index))
        color->FillRect(ToLogical(Box{0, 0, layout_.size.cx, layout_.size.cy}));
}

void ChartPainter::DrawGridOf(const PlacedAxis& axis, const std::vector<double>& values, DrawPen* pen) const {
    if (!pen) return;
    const Box& plot = layout_.plot;
    for (const double value : values) {
        const auto place = axis.scale.PlaceOf(value);
        if (!place || *place < 0 || *place > 1) continue;
        const int x = plot.left + static_cast<int>(std::lround(*place * plot.Width()));
        const int y = plot.bottom + static_cast<int>(std::lround(*place * plot.Height()));
        if (IsHorizontal(axis)) {
            Line(*pen, x, plot.bottom, x, plot.top);
        } else {
            Line(*pen, plot.left, y, plot.right, y);
        }
    }
}

// Only the first axis of each direction: two grids would not be told apart.
void ChartPainter::DrawGrid() {
    bool hasGrid[2] = {};
    for (const PlacedAxis& axis : layout_.axes) {
        bool& taken = hasGrid[IsHorizontal(axis) ? 0 : 1];
        const ChartAxis& source = chart_.Axis(axis.index);
        if (taken || !source.HasGrid()) continue;
        taken = true;
        if (source.HasMinorGrid())
            DrawGridOf(axis, axis.ticks.minor, chart_.Pen(chart_.GetPenIndex("Chart Minor Grid")));
        std::vector<double> values;
        for (const Tick& tick : axis.ticks.major) values.push_back(tick.value);
        // Lines between categories would say nothing.
        if (axis.scale.GetKind() != Scale::Kind::CATEGORIES)
            DrawGridOf(axis, values, chart_.Pen(chart_.GetPenIndex("Chart Grid")));
    }
}

void ChartPainter::DrawTicks(const PlacedAxis& axis, bool allMinor, DrawPen& pen) const {
    const Box& plot = layout_.plot;
    const auto tick = [&](double value, double length) {
        const auto place = axis.scale.PlaceOf(value);
        if (!place || *place < -1e-9 || *place > 1 + 1e-9) return;
        const int x = plot.left + static_cast<int>(std::lround(*place * plot.Width()));
        const int y = plot.bottom + static_cast<int>(std::lround(*place * plot.Height()));
        const int out = UnitsOfPoints(length);
        switch (axis.side) {
            case Side::BOTTOM:
                return Line(pen, x, plot.bottom - axis.offset, x, plot.bottom - axis.offset - out);
            case Side::TOP:
                return Line(pen, x, plot.top + axis.offset, x, plot.top + axis.offset + out);
            case Side::LEFT:
                return Line(pen, plot.left - axis.offset, y, plot.left - axis.offset - out, y);
            default:
                return Line(pen, plot.right + axis.offset, y, plot.right + axis.offset + out, y);
        }
    };
    if (axis.scale.GetKind() != Scale::Kind::CATEGORIES)
        for (const Tick& major : axis.ticks.major) tick(major.value, kTick);
    // Minor ticks tell most where the scale is curved; elsewhere the grid of labels is enough.
    const bool curved =
        axis.scale.GetKind() == Scale::Kind::LOGARITHM || axis.scale.GetKind() == Scale::Kind::TIME;
    if (curved || allMinor)
        for (const double minor : axis.ticks.minor) tick(minor, kMinorTick);
}

void ChartPainter::DrawAxis(const PlacedAxis& axis) const {
    const Box& plot = layout_.plot;
    if (DrawPen* const pen = chart_.Pen(chart_.GetPenIndex("Chart Axis"))) {
        if (axis.side == Side::BOTTOM)
            Line(*pen, plot.left, plot.bottom - axis.offset, plot.right, plot.bottom - axis.offset);
        if (axis.side == Side::TOP)
            Line(*pen, plot.left, plot.top + axis.offset, plot.right, plot.top + axis.offset);
        if (axis.side == Side::LEFT)
            Line(*pen, plot.left - axis.offset, plot.bottom, plot.left - axis.offset, plot.top);
        if (axis.side == Side::RIGHT)
            Line(*pen, plot.right + axis.offset, plot.bottom, plot.right + axis.offset, plot.top);
        const bool minor = axis.index >= 0 && chart_.Axis(axis.index).HasMinorGrid();
        DrawTicks(axis, minor, *pen);
    }
    for (const PlacedText& text : axis.texts) Write(text);
}

void ChartPainter::DrawAxes() {
    for (const PlacedAxis& axis : layout_.axes)
        if (axis.drawn) DrawAxis(axis);
}

void ChartPainter::DrawColorBars() {
    for (const PlacedColorBar& bar : layout_.colorBars) {
        constexpr int kSteps = 256;
        std::vector<std::uint32_t> colors;
        colors.reserve(kSteps);
        for (int i = 0; i < kSteps; ++i)
            colors.push_back(bar.key->Map().PixelAt((kSteps - 0.5 - i) / kSteps));
        if (CDC* dc = chart_.DC()) dc->DrawPicture(ToLogical(bar.box), {colors.data(), 1, kSteps});
        DrawAxis(bar.axis);
    }
}

void ChartPainter::DrawTitles() {
    for (const PlacedText& text : layout_.texts) Write(text);
}

void ChartPainter::DrawLegend() {
    if (layout_.legendInside && !layout_.legend.empty()) {
        const int inset = UnitsOfPoints(3);
        const Box& box = layout_.legendBox;
        if (DrawColor* ground = chart_.Color(chart_.GetColorIndex("Chart Ground")))
            ground->FillRect(
                ToLogical(Box{box.left - inset, box.bottom - inset, box.right + inset, box.top + inset}));
    }
    for (const LegendEntry& entry : layout_.legend) {
        if (entry.layer && entry.layer->IsVisible()) {
            entry.layer->SetDefaults();
            const CRect key = ToLogical(entry.key);
            entry.part < 0 ? entry.layer->DrawKey(key)
                           : entry.layer->DrawKeyPart(static_cast<std::size_t>(entry.part), key);
        }
        PlacedText name = entry.name;
        if (entry.layer && !entry.layer->IsVisible()) name.font = chart_.GetFontIndex("Chart Hidden");
        Write(name);
    }
}

}  // namespace zel
