#include "core/ArchiveFields.h"
#include "graphs/GraphPainter.h"

#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/Zel2Graph.h>
#include <zel/Zel2Selection.h>
#include <zel/platform/DC.h>

IMPLEMENT_SERIAL(Zel2Graph, Zel2Set, 0)

namespace {

constexpr int kDefaultIntervals = 8;
constexpr int kDefaultMargin = 800;
constexpr int kCorners = 4;
constexpr CSize kDefaultSize(5000, 4000);

// How a printed page counts graphs of some styles: their top margin is shared.
constexpr int kLastPlainPrintStyle = 2;
constexpr int kOtherPlainPrintStyle = 8;

}  // namespace

Zel2Graph::Zel2Graph() {
    inner_.SetParent(this);
}

Zel2Graph::Zel2Graph(const Zel2Graph& other) : Zel2Set(other), inner_(other.inner_) {
    CopyFields(other);
}

Zel2Graph& Zel2Graph::operator=(const Zel2Graph& other) {
    if (this == &other) return *this;
    Zel2Set::operator=(other);
    inner_ = other.inner_;
    CopyFields(other);
    return *this;
}

void Zel2Graph::CopyFields(const Zel2Graph& other) {
    inner_.SetParent(this);
    size_ = other.size_;
    margins_ = other.margins_;
    x_ = other.x_;
    y_ = other.y_;
    setX_ = other.setX_;
    setY_ = other.setY_;
    xLabels_ = other.xLabels_;
    xLabelAngle_ = other.xLabelAngle_;
    yLabels_ = other.yLabels_;
    yLabelAngle_ = other.yLabelAngle_;
    showY_ = other.showY_;
    showXLabels_ = other.showXLabels_;
    frameStyle_ = other.frameStyle_;
    printStyle_ = other.printStyle_;
    spareLabels_ = other.spareLabels_;
    spareLabelAngle_ = other.spareLabelAngle_;
    yRightLabels_ = other.yRightLabels_;
    yRightLabelAngle_ = other.yRightLabelAngle_;
    xLines_ = other.xLines_;
    yLines_ = other.yLines_;
    hideYLabels_ = other.hideYLabels_;
    xTicks_ = other.xTicks_;
    auxX_ = other.auxX_;
    xTick_ = other.xTick_;
    yTicks_ = other.yTicks_;
    auxY_ = other.auxY_;
    yTick_ = other.yTick_;
    xType_ = other.xType_;
    yType_ = other.yType_;
    std::copy(std::begin(other.tools_), std::end(other.tools_), tools_);
    std::copy(std::begin(other.relative_), std::end(other.relative_), relative_);
    std::copy(std::begin(other.logical_), std::end(other.logical_), logical_);
    coordSet_ = other.coordSet_;
    sizeSet_ = other.sizeSet_;
    spareFlag_ = other.spareFlag_;
    marginsSet_ = other.marginsSet_;
    defaultsApplied_ = other.defaultsApplied_;
    frame_ = other.frame_;
}

void Zel2Graph::SetRanges(const Range& x, const Range& y) {
    x_ = x;
    y_ = y;
    frame_.xmin = x.min;
    frame_.xmax = x.max;
    frame_.ymin = y.min;
    frame_.ymax = y.max;
}

void Zel2Graph::SetCoord(double x0, double y0, double x1, double y1) {
    SetRanges({x0, x1}, {y0, y1});
    setX_ = x_;
    setY_ = y_;
    coordSet_ = 1;
}

void Zel2Graph::GetFloatRect(double& x0, double& y0, double& x1, double& y1) const {
    x0 = x_.min;
    y0 = y_.min;
    x1 = x_.max;
    y1 = y_.max;
}

void Zel2Graph::SetAxisType(int xType, int yType) {
    if (coordSet_) return;
    xType_ = static_cast<BYTE>(xType);
    yType_ = static_cast<BYTE>(yType);
}

void Zel2Graph::SetMargins(int left, int top, int right, int bottom) {
    margins_ = {left, top < 0 ? left : top, right < 0 ? left : right, bottom < 0 ? left : bottom};
    marginsSet_ = 1;
}

void Zel2Graph::SetGraphSize(const CSize& size) {
    size_ = size;
    sizeSet_ = 1;
}

void Zel2Graph::SetLabelAngles(int xAngle, int yAngle) {
    xLabelAngle_ = xAngle;
    yLabelAngle_ = yAngle;
}

void Zel2Graph::SetTickLengths(int x, int y) {
    xTick_ = x;
    yTick_ = y;
}

bool Zel2Graph::SetDefault(bool fitX, bool fitY) {
    // With exact rules ticks and grid lines that were set stay beside labels that are chosen.
    const auto keepingOwn = [this](auto choose, std::vector<double>& ticks, std::vector<double>& lines) {
        const std::vector<double> ownTicks = ticks, ownLines = lines;
        choose();
        if (!IsExact()) return;
        if (!ownTicks.empty()) ticks = ownTicks;
        if (!ownLines.empty()) lines = ownLines;
    };
    if (xLabels_.empty())
        keepingOwn([&] { AdjustXAxis(x_.min, x_.max, kDefaultIntervals, fitX); }, xTicks_, xLines_);
    if (yLabels_.empty())
        keepingOwn([&] { AdjustYAxis(y_.min, y_.max, kDefaultIntervals, fitY); }, yTicks_, yLines_);
    defaultsApplied_ = 1;
    tools_[BORDER_PEN] = RegisterPen("Border Frame Line", DrawPen::NONE, 1, 0, 0, nullptr);
    tools_[FRAME_PEN] = RegisterPen("Background Frame Line", DrawPen::SOLID, 1, 0, 0, nullptr);
    tools_[GRID_PEN] =
        RegisterPen("Vertical/Horizontal Coordinate Lines", DrawPen::SOLID, 1, 0xC0C0C0, 0xC0C0C0, nullptr);
    tools_[FRAME_COLOR] = RegisterColor("Frame Color", 0xC0C0C0, 0xFFFFFF);
    tools_[BACKGROUND_COLOR] = RegisterColor("Background Color", 0xE0E0E0, 0xFFFFFF);
    tools_[AXIS_FONT] = RegisterFont("Axis Font", "Arial", 100, 0, 0, 0, 0, 0, 0);
    return true;
}

int Zel2Graph::AddIn(Zel2* obj) {
    return inner_.Add(obj);
}
void Zel2Graph::DelIn(Zel2* obj) {
    inner_.Del(obj);
}

CPoint Zel2Graph::F2L(double x, double y) {
    return frame_.ToLogical(x, y);
}

CPoint Zel2Graph::F2R(double x, double y) {
    const CPoint at = AbsOrigin();
    const double width = static_cast<double>(size_.cx) - margins_.left - margins_.right;
    const double height = static_cast<double>(size_.cy) - margins_.top - margins_.bottom;
    const double left = at.x + static_cast<double>(margins_.left);
    const double bottom = at.y + static_cast<double>(margins_.bottom);
    return {zel::Truncate(zel::PlaceAlong(x, x_.min, x_.max, left, width)),
            zel::Truncate(zel::PlaceAlong(y, y_.min, y_.max, bottom, height))};
}

void Zel2Graph::R2F(double& x, double& y) const {
    const double width = static_cast<double>(size_.cx) - margins_.right - margins_.left;
    const double height = static_cast<double>(size_.cy) - margins_.top - margins_.bottom;
    x = (x - (static_cast<double>(Origin().x) + margins_.left)) * (x_.max - x_.min) / width + x_.min;
    y = (y - (static_cast<double>(Origin().y) + margins_.bottom)) * (y_.max - y_.min) / height + y_.min;
}

void Zel2Graph::R2F(float* x, float* y) const {
    // The position is taken off in single precision, the rest computed in double.
    double dx =
        static_cast<double>(*x - static_cast<float>(Origin().x + margins_.left)) + Origin().x + margins_.left;
    double dy = static_cast<double>(*y - static_cast<float>(Origin().y + margins_.bottom)) + Origin().y +
                margins_.bottom;
    R2F(dx, dy);
    *x = static_cast<float>(dx);
    *y = static_cast<float>(dy);
}

int Zel2Graph::PrepareMapping() {
    const int right = zel::Subtract(size_.cx, margins_.right);
    const int top = zel::Subtract(size_.cy, margins_.top);
    relative_[0] = {margins_.left, margins_.bottom};
    relative_[1] = {margins_.left, top};
    relative_[2] = {right, margins_.bottom};
    relative_[3] = {right, top};
    for (int i = 0; i < 4; ++i) logical_[i] = R2L(relative_[i]);
    frame_.lower = logical_[0];
    frame_.upper = logical_[3];
    frame_.exact = IsExact();
    return 1;
}

int Zel2Graph::IsClass(int code) {
    return code == CLASS_GRAPH ? 1 : 0;
}

int Zel2Graph::PrintedHeight() {
    const bool sharesTopMargin = printStyle_ > kLastPlainPrintStyle && printStyle_ != kOtherPlainPrintStyle;
    return sharesTopMargin ? zel::Subtract(size_.cy, margins_.top) : size_.cy;
}

void Zel2Graph::OpenOn(CDC* dc, int scale) {
    inner_.OpenOn(dc, scale);
    Zel2Set::OpenOn(dc, scale);
}

void Zel2Graph::Close() {
    inner_.Close();
    Zel2Set::Close();
}

void Zel2Graph::OnDraw() {
    if (!coordSet_) return;
    // With exact rules the range that was set stays.
    const bool fit = !IsExact();
    if (!defaultsApplied_) SetDefault(fit, fit);
    if (!sizeSet_) {
        SetSize(kDefaultSize);
        sizeSet_ = 1;
    }
    if (!marginsSet_) SetMargins(kDefaultMargin, kDefaultMargin, kDefaultMargin, kDefaultMargin);
    PrepareMapping();
    if (DC() && Map()) GraphPainter(*this).Draw();
    Zel2Set::OnDraw();
    if (IsExact() && Selected()) DrawCPT();
}

unsigned int Zel2Graph::nCpt() {
    return IsExact() ? kCorners : Zel2Set::nCpt();
}

CPoint Zel2Graph::Cpt(int i) {
    if (!IsExact()) return Zel2Set::Cpt(i);
    const CRect box = AbsRect();
    return {i == 0 || i == 1 ? box.left : box.right, i == 0 || i == 2 ? box.top : box.bottom};
}

void Zel2Graph::Drag(int corner, CPoint pt) {
    if (!IsExact() || !Map() || corner < 0 || corner >= kCorners) return;
    const CSize to = Map()->FromDevice(pt) - ParentOrigin();
    CRect box(Origin(), Size() - CSize(1, 1));
    (corner < 2 ? box.left : box.right) = to.cx;
    (corner % 2 == 0 ? box.top : box.bottom) = to.cy;
    box.NormalizeRect();
    MoveTo(box);
}

void Zel2Graph::OnPrint(CDC*, CPrintInfo*) {
    OnDraw();
}

MouseAction Zel2Graph::OnMouse(const MouseStatus& ms) {
    inner_.Select(1);
    MouseAction action = inner_.OnMouse(ms);
    if (!action.object) action = Zel2Set::OnMouse(ms);
    return action.object || !IsExact() ? action : Zel2::OnMouse(ms);
}

Zel2* Zel2Graph::GetSelectableAt(const CPoint& pt) {
    Zel2* hit = Zel2Set::GetSelectableAt(pt);
    if (hit || !IsExact()) return hit;
    Zel2Selection plotted;
    inner_.SelectAt(pt, &plotted);
    return plotted.GetSize() > 0 ? plotted[0] : Zel2::GetSelectableAt(pt);
}

void Zel2Graph::ExchangeCorners(CArchive& ar, Corners& corners) {
    for (CPoint& corner : corners) zel::Exchange(ar, corner.x);
    for (CPoint& corner : corners) zel::Exchange(ar, corner.y);
}

void Zel2Graph::Serialize(CArchive& ar) {
    const bool complete = zel::IsComplete(ar);
    Zel2Set::Serialize(ar);
    zel::Exchange(ar, size_.cx, size_.cy, margins_.left, margins_.top, margins_.right, margins_.bottom);
    for (Range* range : {&x_, &y_, &setX_, &setY_}) zel::Exchange(ar, range->min, range->max);
    zel::Exchange(ar, xLabelAngle_, yLabelAngle_);
    zel::ExchangeList(ar, xLabels_);
    zel::ExchangeList(ar, yLabels_);
    zel::Exchange(ar, spareLabelAngle_, yRightLabelAngle_);
    for (auto* list : {&spareLabels_, &yRightLabels_, &xLines_, &yLines_}) zel::ExchangeList(ar, *list);
    zel::Exchange(ar, xTick_);
    zel::ExchangeList(ar, xTicks_);
    zel::ExchangeList(ar, auxX_);
    zel::Exchange(ar, yTick_);
    zel::ExchangeList(ar, yTicks_);
    // Classic archives hold the auxiliary x list a second time where the y list should stand.
    zel::ExchangeList(ar, complete ? auxY_ : auxX_);
    zel::Exchange(ar, xType_, yType_);
    for (int& tool : tools_) zel::Exchange(ar, tool);
    ExchangeCorners(ar, relative_);
    ExchangeCorners(ar, logical_);
    zel::Exchange(ar, coordSet_, sizeSet_, spareFlag_, marginsSet_, defaultsApplied_);
    inner_.Serialize(ar);
    if (complete) {
        for (bool* flag : {&showY_, &showXLabels_, &hideYLabels_}) zel::ExchangeFlag(ar, *flag);
        zel::Exchange(ar, frameStyle_, printStyle_);
    }
    if (ar.IsLoading()) {
        SetRanges(x_, y_);
        frame_.lower = logical_[0];
        frame_.upper = logical_[3];
    }
}
