#include "graphs/GraphPainter.h"

#include "graphs/LabelAnchor.h"
#include "scales/Labels.h"

#include <zel/DrawColor.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/platform/DC.h>

#include <numeric>

namespace {

constexpr COLORREF kWhite = 0xFFFFFF;
constexpr int kUpwards = 900;
constexpr int kDownwards = -900;
constexpr int kDownwardsToo = 2700;

constexpr int kDigits = 7;

}  // namespace

GraphPainter::GraphPainter(Zel2Graph& graph)
    : g_(graph),
      a_(graph.logical_[0]),
      b_(graph.logical_[1]),
      c_(graph.logical_[2]),
      d_(graph.logical_[3]),
      linePen_(graph.Pen(graph.tools_[Zel2Graph::GRID_PEN])),
      framePen_(graph.Pen(graph.tools_[Zel2Graph::FRAME_PEN])),
      borderPen_(graph.Pen(graph.tools_[Zel2Graph::BORDER_PEN])),
      frameColor_(graph.Color(graph.tools_[Zel2Graph::FRAME_COLOR])),
      backgroundColor_(graph.Color(graph.tools_[Zel2Graph::BACKGROUND_COLOR])),
      font_(graph.Font(graph.tools_[Zel2Graph::AXIS_FONT])) {
    const Mapping& map = *graph.Map();
    xTick_ = map.ScaleY(map.Zoomed(graph.xTick_));
    yTick_ = map.ScaleX(map.Zoomed(graph.yTick_));
    const CSize size = graph.size_;
    outer_[0] = graph.R2L({0, 0});
    outer_[1] = graph.R2L({0, size.cy});
    outer_[2] = graph.R2L({size.cx, size.cy});
    outer_[3] = graph.R2L({size.cx, 0});
}

void GraphPainter::Draw() {
    // With exact rules the grid lies under what is plotted.
    const bool exact = g_.IsExact();
    const auto drawGrid = [this] {
        DrawVerticalLines();
        if (g_.showY_) DrawHorizontalLines();
    };
    FillBackground();
    if (exact) drawGrid();
    DrawInner();
    FillMargins();
    if (!exact) drawGrid();
    if (g_.showY_) DrawYTicks();
    if (g_.xTick_ < 0) linePen_ = framePen_;
    DrawXTicks();
    DrawFrames();
    DrawXLabels();
    DrawYLabels(Side::LEFT);
    DrawYLabels(Side::RIGHT);
}

// White is left to the window on screen, where it would only hide what lies below.
bool GraphPainter::Skips(const DrawColor* color) const {
    return !color || !color->GetDC() || (!g_.IsPrinting() && color->GetColor() == kWhite);
}

void GraphPainter::FillBackground() {
    if (Skips(backgroundColor_)) return;
    backgroundColor_->FillRect({a_.x, a_.y, zel::Add(d_.x, 1), zel::Add(d_.y, 1)});
}

void GraphPainter::DrawInner() {
    g_.inner_.Origin(g_.InnerOrigin());
    if (!g_.IsExact()) {
        g_.inner_.OnDraw();
        return;
    }
    CDC& dc = *g_.DC();
    const int level = dc.SaveDC();
    CRect plot(a_, d_);
    plot.NormalizeRect();
    dc.IntersectClipRect(plot.left, plot.top, zel::Add(plot.right, 1), zel::Add(plot.bottom, 1));
    g_.inner_.OnDraw();
    dc.RestoreDC(level);
    // The context has its earlier font again, not the one that the last text selected.
    DrawFont::selected = nullptr;
}

void GraphPainter::FillMargins() {
    if (Skips(frameColor_)) return;
    const int below = zel::Add(outer_[0].y, 1);
    const int rightOfA = zel::Add(a_.x, 1);
    frameColor_->FillRect({outer_[0].x, below, rightOfA, outer_[1].y});
    frameColor_->FillRect({a_.x, below, zel::Add(c_.x, 1), c_.y});
    frameColor_->FillRect({outer_[0].x, b_.y, zel::Add(d_.x, 1), outer_[2].y});
    frameColor_->FillRect({c_.x, below, zel::Add(outer_[2].x, 1), outer_[2].y});
}

void GraphPainter::Run(DrawPen* pen, std::initializer_list<CPoint> points) {
    if (!pen || !pen->GetDC()) return;
    const CPoint* point = points.begin();
    pen->MoveTo(point->x, point->y);
    while (++point != points.end()) pen->LineTo(point->x, point->y);
}

void GraphPainter::Line(const CPoint& from, const CPoint& to) const {
    Run(linePen_, {from, to});
}

void GraphPainter::DrawVerticalLines() {
    for (const double v : g_.xLines_) Line({g_.X(v), a_.y}, {g_.X(v), b_.y});
}

void GraphPainter::DrawHorizontalLines() {
    for (const double v : g_.yLines_) Line({a_.x, g_.Y(v)}, {c_.x, g_.Y(v)});
}

void GraphPainter::DrawYTicks() {
    if (g_.yTick_ < 0) linePen_ = framePen_;
    if (g_.margins_.left > 0 || yTick_ > 0) {
        for (const double v : g_.yTicks_) Line({a_.x, g_.Y(v)}, {zel::Add(a_.x, yTick_), g_.Y(v)});
    }
    if (g_.margins_.right > 0 || yTick_ > 0) {
        // As many ticks as there are labels on the right, at the places of the left ones.
        const std::size_t count = std::min(g_.yRightLabels_.size(), g_.yTicks_.size());
        for (std::size_t i = 0; i < count; ++i) {
            const int y = g_.Y(g_.yTicks_[i]);
            Line({c_.x, y}, {zel::Subtract(c_.x, yTick_), y});
        }
    }
}

void GraphPainter::DrawXTicks() {
    // Outward ticks below need no margin where the ticks of the y side do; the tests differ on purpose.
    if (g_.margins_.bottom <= 0 && xTick_ >= 0) return;
    for (const double v : g_.xTicks_) Line({g_.X(v), a_.y}, {g_.X(v), zel::Add(a_.y, xTick_)});
}

// `corners` clockwise from the lower left.
void GraphPainter::DrawFrame(DrawPen* pen, const CPoint (&corners)[4]) const {
    const auto& [lowerLeft, upperLeft, upperRight, lowerRight] = corners;
    switch (g_.frameStyle_) {
        case 1:
            Run(pen, {lowerLeft, upperLeft, upperRight, lowerRight});
            break;
        case 2:
            Run(pen, {lowerLeft, upperLeft});
            Run(pen, {upperRight, lowerRight});
            break;
        case 3:
            Run(pen, {lowerLeft, upperLeft});
            Run(pen, {upperRight, lowerRight, lowerLeft});
            break;
        default:
            Run(pen, {lowerLeft, upperLeft, upperRight, lowerRight, lowerLeft});
            break;
    }
}

void GraphPainter::DrawFrames() {
    DrawFrame(borderPen_, outer_);
    DrawFrame(framePen_, {a_, b_, d_, c_});
}

unsigned GraphPainter::XLabelFlags() const {
    switch (g_.xLabelAngle_) {
        case 0:
            return DT_CENTER;
        case kUpwards:
            return DT_RIGHT | DT_VCENTER;
        case kDownwards:
        case kDownwardsToo:
            return DT_VCENTER;
        // The classic flags at other angles are the tick length's bits.
        default:
            return g_.IsExact() ? zel::AnchorBelow(g_.xLabelAngle_) : static_cast<unsigned>(xTick_);
    }
}

zel::LabelPlace GraphPainter::PlaceOf(const std::string& text, int middle, int angle, int turn) const {
    if (!g_.IsExact()) return {};
    return {static_cast<double>(middle), zel::RoomAlong(font_->Extent(text.c_str(), angle), angle + turn)};
}

std::vector<std::size_t> GraphPainter::Shown(const std::vector<double>& values,
                                             const std::vector<zel::LabelPlace>& places) const {
    if (g_.IsExact()) return zel::LabelsWithRoom(values, places);
    std::vector<std::size_t> all(places.size());
    std::iota(all.begin(), all.end(), 0U);
    return all;
}

void GraphPainter::DrawXLabels() {
    if (g_.margins_.bottom < 1 || !g_.showXLabels_) return;
    xFlags_ = XLabelFlags();
    if (!font_) return;
    int y = a_.y;
    if (g_.yTick_ < 0) y = zel::Add(y, zel::Saturate(5LL * xTick_ / 4));
    const std::vector<double>& values = g_.xLabels_;
    const std::vector<std::string> texts = zel::LabelTexts(values, kDigits, g_.Rules());
    std::vector<zel::LabelPlace> places;
    for (std::size_t i = 0; i < values.size(); ++i)
        places.push_back(PlaceOf(texts[i], g_.X(values[i]), g_.xLabelAngle_, 0));
    for (const std::size_t i : Shown(values, places))
        font_->Print(texts[i].c_str(), {g_.X(values[i]), y}, g_.xLabelAngle_, xFlags_);
}

GraphPainter::Anchor GraphPainter::YLabelAnchor() const {
    switch (g_.yLabelAngle_) {
        case 0:
            return {DT_RIGHT, DT_VCENTER};
        case kUpwards:
            return {DT_CENTER, DT_BOTTOM};
        case kDownwards:
        case kDownwardsToo:
            return {DT_CENTER, DT_TOP};
        default:
            break;
    }
    // The classic labels at other angles keep the anchor that the x labels left.
    if (!g_.IsExact()) return {xFlags_, xFlags_};
    return {zel::AnchorBeside(g_.yLabelAngle_, true) & ~DT_VCENTER, DT_VCENTER};
}

// Labels on the right begin at their ticks.
GraphPainter::Anchor GraphPainter::RightLabelAnchor() const {
    switch (g_.yLabelAngle_) {
        case kUpwards:
            return {DT_CENTER, DT_TOP};
        case kDownwards:
        case kDownwardsToo:
            return {DT_CENTER, DT_BOTTOM};
        default:
            return {zel::AnchorBeside(g_.yLabelAngle_, false) & ~DT_VCENTER, DT_VCENTER};
    }
}

bool GraphPainter::ShowsYLabels() const {
    return g_.margins_.left > 0 && g_.showY_ && !g_.hideYLabels_;
}

// Without a margin to spill into, the end labels stay inside the graph.
unsigned GraphPainter::EndFlags(std::size_t label, const Anchor& anchor) const {
    if (label == 0 && g_.margins_.bottom < 1) return anchor.horizontal | DT_BOTTOM;
    if (label + 1 == g_.yLabels_.size() && g_.margins_.top < 1) return anchor.horizontal;
    return anchor.horizontal | anchor.vertical;
}

void GraphPainter::DrawYLabels(Side side) {
    if (!ShowsYLabels() || !font_) return;
    const bool left = side == Side::LEFT, exact = g_.IsExact();
    const Anchor anchor = left || !exact ? YLabelAnchor() : RightLabelAnchor();
    int x = left ? a_.x : c_.x;
    const std::int64_t away = left ? 5LL * yTick_ / 4 : exact ? -5LL * yTick_ / 4 : -8LL * yTick_;
    if (g_.xTick_ < 0) x = zel::Add(x, zel::Saturate(away));
    const std::vector<std::string> texts = left ? zel::LabelTexts(g_.yLabels_, kDigits, g_.Rules())
                                                : zel::PercentTexts(g_.yRightLabels_, g_.Rules());
    const std::size_t count = std::min(texts.size(), g_.yLabels_.size());
    const std::vector<double> values(g_.yLabels_.begin(),
                                     g_.yLabels_.begin() + static_cast<std::ptrdiff_t>(count));
    std::vector<zel::LabelPlace> places;
    for (std::size_t i = 0; i < count; ++i) {
        places.push_back(PlaceOf(texts[i], g_.Y(values[i]), g_.yLabelAngle_, kUpwards));
        // In logical units y points down.
        const unsigned flags = EndFlags(i, anchor);
        if (anchor.vertical == DT_VCENTER && !(flags & DT_VCENTER))
            places.back().middle += places.back().room / (flags & DT_BOTTOM ? -2 : 2);
    }
    for (const std::size_t i : Shown(values, places))
        font_->Print(texts[i].c_str(), {x, g_.Y(values[i])}, g_.yLabelAngle_, EndFlags(i, anchor));
}
