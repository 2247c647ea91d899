#include "core/ArchiveFields.h"

#include <zel/Zel2StackGraph.h>
#include <zel/platform/Exception.h>

#include <algorithm>
#include <cmath>

IMPLEMENT_DOCUMENT_CLASS(Zel2StackGraph, Zel2Set)

namespace {

constexpr int kDefaultMargin = 800;
constexpr int kFirstOther = 3;  // children after background, coordinate systems and axes
constexpr int kAxisGap = 100;   // between the coordinate systems and the shared axis

}  // namespace

Zel2StackGraph::Zel2StackGraph()
    : background_(new Zel2Rect(Zel2Rect::RECTANGLE)), graphs_(new Zel2Set), axes_(new Zel2Set) {
    Add(background_);
    Add(graphs_);
    Add(axes_);
}

Zel2StackGraph::Zel2StackGraph(const CRect& r, int pen, int color) : Zel2StackGraph() {
    Zel2Rect box(r, pen, color, Zel2Rect::RECTANGLE, -1);
    background_->SetPen(pen);
    background_->SetColor(color);
    background_->SetSize(box.Size());
    Origin(box.Origin());
}

Zel2CoordSys* Zel2StackGraph::SubGraph(int i) {
    return dynamic_cast<Zel2CoordSys*>((*graphs_)[i]);
}

void Zel2StackGraph::AddSubGraph(Zel2CoordSys* cs, float weight) {
    count_ = graphs_->GetCount();
    if (count_ >= kMostGraphs) return;
    weights_[static_cast<std::size_t>(count_)] = weight;
    graphs_->Add(cs);
}

void Zel2StackGraph::AddHAxis(Zel2HAxis* axis) {
    axis_ = axis;
    axes_->Add(axis);
}

void Zel2StackGraph::SetMarg(int left, int top, int right, int bottom) {
    margins_ = {left, top < 0 ? left : top, right < 0 ? left : right, bottom < 0 ? left : bottom};
}

void Zel2StackGraph::SetSize(const CSize& size) {
    background_->SetSize(size);
}

void Zel2StackGraph::MoveTo(const CPoint& p) {
    Zel2Set::MoveTo(p);
    if (!IsExact()) background_->MoveTo(p);
}

void Zel2StackGraph::OpenOn(CDC* dc, int scale) {
    Zel2Set::OpenOn(dc, scale);
    Setup();
}

int Zel2StackGraph::OnNotify(Zel2* sender, long code) {
    return code == RESIZED ? 1 : Zel2Set::OnNotify(sender, code);
}

// Whole weights; the quotient of a running sum and the total is a whole number too, that is 0 for each.
std::vector<Zel2StackGraph::Share> Zel2StackGraph::ClassicShares(int height) const {
    std::vector<int> sums{0};
    for (int i = 0; i < count_; ++i) {
        sums.push_back(zel::Add(sums.back(), zel::Truncate(weights_[static_cast<std::size_t>(i)])));
    }
    const int total = sums.back();
    std::vector<Share> shares;
    if (total == 0) return shares;
    for (std::size_t i = 0; i + 1 < sums.size(); ++i) {
        const std::int64_t weight = zel::Truncate(weights_[i]);
        shares.push_back(
            {zel::Saturate(std::int64_t{sums[i]} / total * height), zel::Saturate(weight * height / total)});
    }
    return shares;
}

// Neighbours share their edge: no unit is lost between them. Weights that are no numbers or negative count
// nothing.
std::vector<Zel2StackGraph::Share> Zel2StackGraph::ExactShares(int height) const {
    const auto weight = [this](int i) {
        const double w = weights_[static_cast<std::size_t>(i)];
        return std::isfinite(w) && w > 0 ? w : 0.0;
    };
    double total = 0;
    for (int i = 0; i < count_; ++i) total += weight(i);
    std::vector<Share> shares;
    if (total <= 0) return shares;
    double sum = 0;
    LONG begin = 0;
    for (int i = 0; i < count_; ++i) {
        sum += weight(i);
        const LONG end = zel::Truncate(std::round(sum / total * height));
        shares.push_back({begin, zel::Subtract(end, begin)});
        begin = end;
    }
    return shares;
}

void Zel2StackGraph::Place(Zel2CoordSys& graph, const Share& share, int width) {
    const LONG y = zel::Add(margins_.bottom, share.y);
    graph.MoveTo(CPoint(margins_.left, y));
    graph.SetSize(CSize(width, share.height));
    Zel2HAxis& h = *graph.HAxis();
    h.CopyScale(*axis_, IsExact());
    h.Origin(CPoint(0, zel::Subtract(margins_.bottom, y)));
    h.SetSize(CSize(width, margins_.bottom));
    Zel2VAxis& v = *graph.VAxis();
    double low = 0, high = 0;
    v.GetCoord(low, high);
    v.SetCoord(low, high);
    v.Origin(CPoint(-margins_.left, zel::Subtract(zel::Add(share.y, margins_.bottom), y)));
    v.SetSize(CSize(margins_.left, share.height));
}

void Zel2StackGraph::Setup() {
    count_ = std::min(graphs_->GetCount(), kMostGraphs);
    if (margins_.left < 0) SetMarg(kDefaultMargin, kDefaultMargin, kDefaultMargin, kDefaultMargin);
    if (!axis_) return;
    const CSize size = IsExact() ? background_->Size() : Size();
    const int width = zel::Subtract(size.cx, zel::Add(margins_.left, margins_.right));
    const int height = zel::Subtract(size.cy, zel::Add(margins_.top, margins_.bottom));
    axis_->Origin(CPoint(margins_.left, 0));
    axis_->SetSize(CSize(width, zel::Subtract(margins_.bottom, kAxisGap)));
    if (IsExact() && axis_->HasCoord()) axis_->SetContents();
    const std::vector<Share> shares = IsExact() ? ExactShares(height) : ClassicShares(height);
    for (std::size_t i = 0; i < shares.size(); ++i) {
        Zel2CoordSys* graph = SubGraph(static_cast<int>(i));
        if (!graph) continue;
        Place(*graph, shares[i], width);
        // The labels of neighbours do not meet.
        graph->VAxis()->KeepInside(i > 0, i + 1 < shares.size());
        graph->ShareAxes(true);
    }
}

void Zel2StackGraph::OnDraw() {
    count_ = std::min(graphs_->GetCount(), kMostGraphs);
    if (!axis_) return;
    for (Zel2* child : std::initializer_list<Zel2*>{background_, graphs_, axes_}) child->OnDraw();
    for (int i = 0; i < count_; ++i) {
        if (Zel2CoordSys* graph = SubGraph(i)) graph->VAxis()->OnDraw();
    }
    for (int i = kFirstOther; i < GetCount(); ++i) {
        if (Zel2* child = ChildAt(i)) child->OnDraw();
    }
}

void Zel2StackGraph::OnPrint(CDC* dc, CPrintInfo* info) {
    if (IsExact()) {
        OnDraw();
    } else {
        Zel2Set::OnPrint(dc, info);
    }
}

// The first three children are what the stack works with: they must be what they were.
void Zel2StackGraph::FindParts(CArchive& ar, int axis) {
    background_ = dynamic_cast<Zel2Rect*>(ChildAt(0));
    graphs_ = dynamic_cast<Zel2Set*>(ChildAt(1));
    axes_ = dynamic_cast<Zel2Set*>(ChildAt(2));
    if (!background_ || !graphs_ || !axes_)
        ar.Fail(CArchiveException::badClass, "the parts of a stack are missing");
    axis_ = axis >= 0 && axis < axes_->GetCount() ? dynamic_cast<Zel2HAxis*>((*axes_)[axis]) : nullptr;
}

void Zel2StackGraph::Serialize(CArchive& ar) {
    const bool complete = zel::IsComplete(ar);
    if (complete && ar.IsLoading()) DeleteChildren();
    Zel2Set::Serialize(ar);
    if (!complete) return;
    for (float& weight : weights_) zel::Exchange(ar, weight);
    zel::Exchange(ar, count_, margins_.left, margins_.top, margins_.right, margins_.bottom);
    int axis = ar.IsStoring() ? axes_->GetCount() - 1 : -1;
    while (axis >= 0 && (*axes_)[axis] != axis_) --axis;
    zel::Exchange(ar, axis);
    if (ar.IsLoading()) FindParts(ar, axis);
}
