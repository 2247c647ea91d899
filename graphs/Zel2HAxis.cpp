#include "core/ArchiveFields.h"
#include "graphs/ExactScale.h"
#include "graphs/LabelAnchor.h"
#include "scales/Labels.h"

#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/WorldFrame.h>
#include <zel/Zel2Graph.h>
#include <zel/Zel2HAxis.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <tuple>

IMPLEMENT_DOCUMENT_CLASS(Zel2HAxis, Zel2Rect)
IMPLEMENT_DOCUMENT_CLASS(Zel2VAxis, Zel2Rect)

namespace {

constexpr int kMostIntervals = 8;
constexpr int kHeightPerInterval = 200;  // world units
constexpr int kLeastIntervals = 2;       // with exact rules, however low the axis
constexpr int kClassicDigits = 4;
constexpr int kDigits = 7;
constexpr int kLabelGap = 30;  // world units
constexpr int kDefaultLeftMargin = 800;
constexpr unsigned long kGrey = 0xC0C0C0;

LONG Middle(LONG a, LONG b) {
    return static_cast<LONG>((static_cast<std::int64_t>(a) + b) / 2);
}

void Assign(std::vector<double>& list, const double* values, int n) {
    list.clear();
    if (values && n > 0) list.assign(values, values + n);
}

}  // namespace

Zel2ScaleAxis::Zel2ScaleAxis() : Zel2Rect(RECTANGLE) {}

void Zel2ScaleAxis::SetCoord(double min, double max) {
    if (labelsChosen_ && (min != min_ || max != max_) && IsExact()) SetLabels({});
    min_ = min;
    max_ = max;
    rangeSet_ = 1;
}

void Zel2ScaleAxis::GetCoord(double& min, double& max) const {
    min = min_;
    max = max_;
}

void Zel2ScaleAxis::SetType(int type) {
    type_ = type;
}

void Zel2ScaleAxis::SetAxisType(int type, int side) {
    type_ = type;
    side_ = side;
}

void Zel2ScaleAxis::SetTitle(const char* text, int offset) {
    title_ = text;
    titleOffset_ = offset;
}

void Zel2ScaleAxis::SetTicks(const double* values, int n) {
    Assign(ticks_, values, n);
    ownTicks_ = !ticks_.empty();
}

void Zel2ScaleAxis::SetLines(const double* values, int n) {
    Assign(lines_, values, n);
    ownLines_ = !lines_.empty();
}

void Zel2ScaleAxis::SetLabels(const std::vector<double>& values) {
    labels_ = values;
    labelsChosen_ = false;
}

void Zel2ScaleAxis::CopyScale(const Zel2ScaleAxis& other, bool labels) {
    SetCoord(other.min_, other.max_);
    type_ = other.type_;
    if (!labels) return;
    labels_ = other.labels_;
    labelsChosen_ = other.labelsChosen_;
}

void Zel2ScaleAxis::SetSize(const CSize& size) {
    StoreSize(size);
}

void Zel2ScaleAxis::Adjust(double a, double b, int n) {
    std::tie(min_, max_) = IsExact() ? zel::MappableRange(a, b) : std::pair(a, b);
    rangeSet_ = 1;
    std::vector<double> labels;
    if (!Zel2Graph::AutoCoord(type_, min_, max_, n, labels, Rules())) return;
    labels_ = labels;
    labelsChosen_ = true;
    FitToLabels();
}

void Zel2ScaleAxis::KeepInside(bool atStart, bool atEnd) {
    insideAtStart_ = atStart;
    insideAtEnd_ = atEnd;
}

bool Zel2ScaleAxis::Replaces(bool switchedOn, bool wasSet) {
    return switchedOn && !(wasSet && IsExact());
}

bool Zel2ScaleAxis::ChooseLabels() {
    if (!IsExact()) return Zel2Graph::AutoCoord(type_, min_, max_, IntervalCount(), labels_, Rules());
    std::tie(min_, max_) = zel::MappableRange(min_, max_);
    labels_ = zel::PositionsWithin(type_, min_, max_, std::max(IntervalCount(), kLeastIntervals));
    return !labels_.empty();
}

// A range that runs backwards goes on doing so with exact rules.
void Zel2ScaleAxis::FitToLabels() {
    const bool backwards = IsExact() && min_ > max_;
    min_ = backwards ? labels_.back() : labels_.front();
    max_ = backwards ? labels_.front() : labels_.back();
}

int Zel2ScaleAxis::SetContents() {
    if (labels_.empty()) {
        if (!ChooseLabels()) return 0;
        labelsChosen_ = true;
    }
    if (Replaces(fit_, labelsChosen_)) FitToLabels();
    if (Replaces(linesFromLabels_, ownLines_)) lines_ = labels_;
    if (Replaces(ticksFromLabels_, ownTicks_)) ticks_ = labels_;
    return 1;
}

// A rectangle takes the pen that is registered through it as its own, and so do rectangles around it, whose
// frames change then; exact rules go past them.
int Zel2ScaleAxis::AddPen(const char* name, unsigned long color) {
    Zel2* registry = this;
    while (IsExact() && registry->GetParent() && dynamic_cast<Zel2Rect*>(registry))
        registry = registry->GetParent();
    return registry->RegisterPen(name, DrawPen::SOLID, 1, color, color, nullptr);
}

int Zel2ScaleAxis::SetTools() {
    for (int kind = 0; kind < TOOL_COUNT; ++kind) {
        int& tool = tools_[static_cast<std::size_t>(kind)];
        const char* name = names_[static_cast<std::size_t>(kind)];
        tool = GetPenIndex(name);
        if (tool >= 0) continue;
        switch (kind) {
            case LINES_PEN:
                tool = AddPen(name, kGrey);
                break;
            case TICKS_PEN:
                tool = AddPen(name, 0);
                break;
            case LABEL_FONT:
                tool = RegisterFont(name, "Arial", 100, 0, 0, 0, 0, 0, 0);
                break;
            default:
                tool = RegisterFont(name, "Arial", 120, 1, 0, 0, 0, 0, 0);
                break;
        }
    }
    return 1;
}

bool Zel2ScaleAxis::Prepare() {
    if (!rangeSet_) return false;
    SetContents();
    SetTools();
    if (!Map()) return false;
    ends_ = EndsOf(LogicalBox());
    return true;
}

int Zel2ScaleAxis::Position(double v) const {
    return zel::Truncate(
        zel::PlaceAlong(v, min_, max_, ends_.start, static_cast<double>(ends_.end) - ends_.start));
}

int Zel2ScaleAxis::F2ROffset(double v) {
    return zel::Truncate(zel::PlaceAlong(v, min_, max_, 0, Extent()));
}

int Zel2ScaleAxis::Gap(int worldUnits) {
    const Mapping& map = *Map();
    return map.ScaleX(map.Zoomed(worldUnits));
}

int Zel2ScaleAxis::TickInLogicalUnits() {
    return Map()->ToDevice(CSize(tickLength_, tickLength_)).cx;
}

void Zel2ScaleAxis::DrawTicks(const Edge& edge, int length) {
    DrawPen* pen = Pen(tools_[TICKS_PEN]);
    if (!pen) return;
    for (const double v : ticks_) {
        const LONG along = Position(v);
        const CPoint from = At(along, edge.edge),
                     to = At(along, zel::Add(edge.edge, zel::Saturate(std::int64_t{length} * edge.into)));
        pen->MoveTo(from.x, from.y);
        pen->LineTo(to.x, to.y);
    }
}

void Zel2ScaleAxis::DrawLabels(const Edge& edge, int tick) {
    DrawFont* font = Font(tools_[LABEL_FONT]);
    if (!font || labels_.empty()) return;
    const bool exact = IsExact();
    const int gap = Gap(kLabelGap);
    const unsigned flags = LabelFlags(gap);
    const LONG line = zel::Add(edge.edge, zel::Saturate((std::int64_t{gap} + tick) * edge.into));
    const std::vector<std::string> texts =
        zel::LabelTexts(labels_, exact ? kDigits : kClassicDigits, Rules());
    if (!exact) {
        for (std::size_t i = 0; i < labels_.size(); ++i)
            font->Print(texts[i].c_str(), At(Position(labels_[i]), line), labelAngle_, flags);
        return;
    }
    std::vector<zel::LabelPlace> places;
    for (std::size_t i = 0; i < labels_.size(); ++i) {
        places.push_back({static_cast<double>(Position(labels_[i])),
                          LabelRoom(font->Extent(texts[i].c_str(), labelAngle_))});
        PutInside(places.back());
    }
    for (const std::size_t i : zel::LabelsWithRoom(labels_, places)) {
        const LONG along = zel::Truncate(places[i].middle);
        font->Print(texts[i].c_str(), At(along, line), labelAngle_, flags);
    }
}

void Zel2ScaleAxis::PutInside(zel::LabelPlace& place) const {
    const double half = place.room / 2, sign = ends_.start <= ends_.end ? 1 : -1;
    const double start = ends_.start + sign * half, end = ends_.end - sign * half;
    if (insideAtStart_ && sign * (place.middle - start) < 0) place.middle = start;
    if (insideAtEnd_ && sign * (place.middle - end) > 0) place.middle = end;
}

void Zel2ScaleAxis::DrawTitle(const Edge& edge, const CRect& box) {
    DrawFont* font = title_.IsEmpty() ? nullptr : Font(tools_[TITLE_FONT]);
    if (!font) return;
    const LONG line = zel::Subtract(edge.farEdge, zel::Saturate(std::int64_t{Gap(titleOffset_)} * edge.into));
    font->Print(title_, At(MiddleOf(box), line), TitleAngle(), DT_CENTER | DT_VCENTER);
}

void Zel2ScaleAxis::OnDraw() {
    if (!Prepare()) return;
    const CRect box = LogicalBox();
    const Edge edge = EdgeOf(box);
    const int outward = tickLength_ < 0 ? -TickInLogicalUnits() : 0;
    if (outward != 0) DrawTicks(edge, outward);
    DrawLabels(edge, outward);
    DrawTitle(edge, box);
}

void Zel2ScaleAxis::OnDrawInRectangle(Zel2* area) {
    if (!area || !Prepare()) return;
    DrawInnerTicks();
    DrawLines(*area);
}

void Zel2ScaleAxis::DrawInnerTicks() {
    if (tickLength_ > 0) DrawTicks(EdgeOf(LogicalBox()), -TickInLogicalUnits());
}

void Zel2ScaleAxis::DrawLines(Zel2& area) {
    DrawPen* pen = lines_.empty() ? nullptr : Pen(tools_[LINES_PEN]);
    if (!pen) return;
    const CRect across = Map()->ToLogical(area.AbsRect());
    for (const double v : lines_) LineAcross(*pen, Position(v), across);
}

void Zel2ScaleAxis::Serialize(CArchive& ar) {
    Zel2Rect::Serialize(ar);
    if (!zel::IsComplete(ar)) return;
    zel::Exchange(ar, min_, max_, type_, labelAngle_, tickLength_, titleOffset_, ends_.start, ends_.end);
    for (int& tool : tools_) zel::Exchange(ar, tool);
    for (auto* list : {&labels_, &ticks_, &lines_}) zel::ExchangeList(ar, *list);
    zel::Exchange(ar, side_, rangeSet_);
    // What the host has set is stored as what is not taken from labels.
    bool lines = Replaces(linesFromLabels_, ownLines_), ticks = Replaces(ticksFromLabels_, ownTicks_);
    for (bool* flag : {&fit_, &lines, &ticks}) zel::ExchangeFlag(ar, *flag);
    if (ar.IsLoading()) {
        linesFromLabels_ = lines;
        ticksFromLabels_ = ticks;
    }
    zel::ExchangeFlag(ar, labelsChosen_);
    zel::Exchange(ar, title_);
    for (CString& name : names_) zel::Exchange(ar, name);
}

void Zel2VAxis::Serialize(CArchive& ar) {
    Zel2ScaleAxis::Serialize(ar);
    if (zel::IsComplete(ar)) zel::Exchange(ar, margins_.left, margins_.above, margins_.below, marginsSet_);
}

// The horizontal axis. In logical units y points down: the top of a box is the edge of its origin.

CRect Zel2HAxis::LogicalBox() {
    return Map()->ToLogical(AbsRect());
}

int Zel2HAxis::IntervalCount() {
    return kMostIntervals;
}

Zel2ScaleAxis::Edge Zel2HAxis::EdgeOf(const CRect& box) const {
    return GetSide() == 0 ? Edge{box.top, -1, box.bottom} : Edge{box.bottom, 1, box.top};
}

unsigned Zel2HAxis::LabelFlags(int gap) {
    const bool above = GetSide() == 0;
    switch (LabelAngle()) {
        case 0:
            return above ? DT_CENTER | DT_BOTTOM : DT_CENTER | DT_TOP;
        case 900:
            return above ? DT_VCENTER : DT_RIGHT | DT_VCENTER;
        case -900:
        case 2700:
            return above ? DT_RIGHT | DT_VCENTER : DT_VCENTER;
        default:
            break;
    }
    // At other angles the classic flags are the gap's bits.
    if (!IsExact()) return static_cast<unsigned>(gap);
    return above ? zel::AnchorAbove(LabelAngle()) : zel::AnchorBelow(LabelAngle());
}

double Zel2HAxis::LabelRoom(const CSize& extent) const {
    return zel::RoomAlong(extent, LabelAngle());
}

void Zel2HAxis::LineAcross(DrawPen& pen, LONG along, const CRect& area) const {
    pen.MoveTo(along, area.bottom);
    pen.LineTo(along, area.top);
}

LONG Zel2HAxis::MiddleOf(const CRect& box) const {
    return Middle(box.left, box.right);
}

// The vertical axis.

void Zel2VAxis::SetMargins(int left, int above, int below) {
    margins_ = {left, above < 0 ? left : above, below < 0 ? left : below};
    marginsSet_ = 1;
}

CRect Zel2VAxis::LogicalBox() {
    if (!marginsSet_) SetMargins(kDefaultLeftMargin, 0, 0);
    CRect box = AbsRect();
    box.left = zel::Subtract(box.left, margins_.left);
    box.top = zel::Subtract(box.top, margins_.below);
    box.bottom = zel::Add(box.bottom, margins_.above);
    return Map()->ToLogical(box);
}

Zel2ScaleAxis::Ends Zel2VAxis::EndsOf(const CRect& box) const {
    return {std::max(box.top, box.bottom), std::min(box.top, box.bottom)};
}

int Zel2VAxis::IntervalCount() {
    return std::clamp<int>(Size().cy / kHeightPerInterval, 0, kMostIntervals);
}

Zel2ScaleAxis::Edge Zel2VAxis::EdgeOf(const CRect& box) const {
    return GetSide() == 0 ? Edge{box.left, 1, box.right} : Edge{box.right, -1, box.left};
}

unsigned Zel2VAxis::LabelFlags(int gap) {
    const bool right = GetSide() == 0;
    switch (LabelAngle()) {
        case 0:
            return right ? DT_VCENTER : DT_RIGHT | DT_VCENTER;
        case 900:
            return right ? DT_CENTER | DT_TOP : DT_CENTER | DT_BOTTOM;
        case -900:
        case 2700:
            return right ? DT_CENTER | DT_BOTTOM : DT_CENTER | DT_TOP;
        default:
            break;
    }
    if (!IsExact()) return static_cast<unsigned>(gap);
    return zel::AnchorBeside(LabelAngle(), !right);
}

double Zel2VAxis::LabelRoom(const CSize& extent) const {
    return zel::RoomAlong(extent, LabelAngle() + 900);
}

void Zel2VAxis::LineAcross(DrawPen& pen, LONG along, const CRect& area) const {
    pen.MoveTo(area.left, along);
    pen.LineTo(area.right, along);
}

LONG Zel2VAxis::MiddleOf(const CRect& box) const {
    return Middle(box.top, box.bottom);
}
