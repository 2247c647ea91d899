#include "graphs/GraphPainter.h"

#include "graphs/LabelAnchor.h"

#include <zel/DrawColor.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/platform/DC.h>

#include <charconv>

namespace {

constexpr COLORREF kWhite = 0xFFFFFF;
constexpr int kUpwards = 900;
constexpr int kDownwards = -900;
constexpr int kDownwardsToo = 2700;

// Up to seven significant digits, the shortest form; always with a decimal point, whatever the process's
// locale.
std::string LabelText(double value) {
    char text[40];
    const auto end =
        std::to_chars(std::begin(text), std::end(text), value, std::chars_format::general, 7).ptr;
    return {text, end};
}

std::string PercentText(double value) {
    char text[400];  // the largest double has 309 digits
    const auto end = std::to_chars(std::begin(text), std::end(text), value, std::chars_format::fixed, 1).ptr;
    return std::string(text, end) + "%";
}

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
    FillBackground();
    DrawInner();
    FillMargins();
    DrawVerticalLines();
    if (g_.showY_) DrawYSide();
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

void GraphPainter::DrawYSide() {
    for (const double v : g_.yLines_) Line({a_.x, g_.Y(v)}, {c_.x, g_.Y(v)});
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

void GraphPainter::DrawXLabels() {
    if (g_.margins_.bottom < 1 || !g_.showXLabels_) return;
    xFlags_ = XLabelFlags();
    if (!font_) return;
    int y = a_.y;
    if (g_.yTick_ < 0) y = zel::Add(y, zel::Saturate(5LL * xTick_ / 4));
    for (const double v : g_.xLabels_)
        font_->Print(LabelText(v).c_str(), {g_.X(v), y}, g_.xLabelAngle_, xFlags_);
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

bool GraphPainter::ShowsYLabels() const {
    return g_.margins_.left > 0 && g_.showY_ && !g_.hideYLabels_;
}

void GraphPainter::DrawYLabels(Side side) {
    if (!ShowsYLabels() || !font_) return;
    const bool left = side == Side::LEFT;
    const Anchor anchor = YLabelAnchor();
    int x = left ? a_.x : c_.x;
    if (g_.xTick_ < 0) x = zel::Add(x, zel::Saturate(left ? 5LL * yTick_ / 4 : -8LL * yTick_));
    const std::vector<double>& values = left ? g_.yLabels_ : g_.yRightLabels_;
    const std::size_t count = std::min(values.size(), g_.yLabels_.size());
    for (std::size_t i = 0; i < count; ++i) {
        unsigned flags = anchor.horizontal | anchor.vertical;
        // Without a margin to spill into, the end labels stay inside the graph.
        if (i == 0 && g_.margins_.bottom < 1) {
            flags = anchor.horizontal | DT_BOTTOM;
        } else if (i + 1 == g_.yLabels_.size() && g_.margins_.top < 1) {
            flags = anchor.horizontal;
        }
        const std::string text = left ? LabelText(values[i]) : PercentText(values[i]);
        font_->Print(text.c_str(), {x, g_.Y(g_.yLabels_[i])}, g_.yLabelAngle_, flags);
    }
}
