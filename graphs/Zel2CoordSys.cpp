#include "core/ArchiveFields.h"

#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/Zel2CoordSys.h>
#include <zel/ZelDocument.h>
#include <zel/platform/DC.h>

IMPLEMENT_DOCUMENT_CLASS(Zel2CoordSys, Zel2Rect)

namespace {

constexpr double kDefaultMax = 100;

}  // namespace

Zel2CoordSys::Zel2CoordSys() : Zel2Rect(RECTANGLE) {
    Adopt();
    SetCoord(0, 0, kDefaultMax, kDefaultMax);
}

Zel2CoordSys::Zel2CoordSys(double x0, double y0, double x1, double y1, const CRect& r, int xType, int yType,
                           int pen, int color)
    : Zel2Rect(r, pen, color, RECTANGLE, -1) {
    Adopt();
    SetAxisType(xType, yType);
    SetCoord(x0, y0, x1, y1);
    hAxis_.SetSize(CSize(r.Width(), 1));
    hAxis_.MoveTo(CPoint(0, 0));
    vAxis_.SetSize(CSize(1, r.Height()));
    vAxis_.MoveTo(CPoint(0, 0));
}

Zel2CoordSys::Zel2CoordSys(const Zel2CoordSys& other)
    : Zel2Rect(other), vAxis_(other.vAxis_), hAxis_(other.hAxis_), showAxes_(other.showAxes_) {
    Adopt();
    CopyContents(other);
}

Zel2CoordSys& Zel2CoordSys::operator=(const Zel2CoordSys& other) {
    if (this == &other) return *this;
    Zel2Rect::operator=(other);
    vAxis_ = other.vAxis_;
    hAxis_ = other.hAxis_;
    showAxes_ = other.showAxes_;
    Adopt();
    CopyContents(other);
    return *this;
}

Zel2CoordSys::~Zel2CoordSys() = default;

void Zel2CoordSys::CopyContents(const Zel2CoordSys& other) {
    for (std::size_t i = 0; i < std::size(contents_); ++i) {
        const std::unique_ptr<Zel2> copy = zel::DeepCopy(*other.contents_[i]);
        auto& contents = dynamic_cast<Zel2Set&>(*copy);
        *contents_[i] = contents;
        contents_[i]->SetParent(this);
        for (int k = 0; k < contents.GetCount(); ++k) {
            if (Zel2* child = contents.Del(k)) child->SetParent(contents_[i].get());
        }
    }
}

void Zel2CoordSys::Adopt() {
    hAxis_.SetParent(this);
    vAxis_.SetParent(this);
    for (auto& content : contents_) {
        content = std::make_unique<Zel2Set>();
        content->SetParent(this);
    }
}

void Zel2CoordSys::SetCoord(double x0, double y0, double x1, double y1) {
    hAxis_.SetCoord(x0, x1);
    vAxis_.SetCoord(y0, y1);
}

void Zel2CoordSys::SetAxisType(int xType, int yType) {
    hAxis_.SetType(xType);
    vAxis_.SetType(yType);
}

Zel2Set* Zel2CoordSys::ContentSet(int number) {
    return number >= 1 && number <= 3 ? contents_[number - 1].get() : nullptr;
}

CPoint Zel2CoordSys::F2L(double x, double y) {
    return {hAxis_.X(x), vAxis_.Y(y)};
}

CPoint Zel2CoordSys::F2R(double x, double y) {
    return {hAxis_.F2R(x), vAxis_.F2R(y)};
}

void Zel2CoordSys::MoveTo(const CPoint& p) {
    Origin(p);
}

void Zel2CoordSys::OnResize() {
    if (IsExact()) {
        hAxis_.SetSize(CSize(zel::Subtract(Size().cx, 1), hAxis_.Size().cy));
        vAxis_.SetSize(CSize(vAxis_.Size().cx, zel::Subtract(Size().cy, 1)));
    }
    Zel2Rect::OnResize();
}

void Zel2CoordSys::OpenOn(CDC* dc, int scale) {
    for (auto& content : contents_) content->OpenOn(dc, scale);
}

void Zel2CoordSys::Close() {
    for (auto& content : contents_) content->Close();
}

const WorldFrame* Zel2CoordSys::Frame() {
    if (!IsExact()) return nullptr;
    hAxis_.GetCoord(frame_.xmin, frame_.xmax);
    vAxis_.GetCoord(frame_.ymin, frame_.ymax);
    frame_.lower = {hAxis_.X(frame_.xmin), vAxis_.Y(frame_.ymin)};
    frame_.upper = {hAxis_.X(frame_.xmax), vAxis_.Y(frame_.ymax)};
    frame_.exact = true;
    return &frame_;
}

void Zel2CoordSys::DrawContent() {
    contents_[1]->OnDraw();
    contents_[0]->OnDraw();
}

template <class Draw>
void Zel2CoordSys::Clipped(const CRect& box, Draw draw) {
    if (!IsExact() || !DC() || !Map()) {
        draw();
        return;
    }
    CDC& dc = *DC();
    const int level = dc.SaveDC();
    CRect seen(box);
    seen.NormalizeRect();
    dc.IntersectClipRect(seen.left, seen.top, zel::Add(seen.right, 1), zel::Add(seen.bottom, 1));
    draw();
    dc.RestoreDC(level);
    // The context has its earlier font again, not the one that the last text selected.
    DrawFont::selected = nullptr;
}

void Zel2CoordSys::OnDraw() {
    // With exact rules the grid lies under contents and frame.
    const bool exact = IsExact() && DC() && Map();
    const bool prepared[] = {exact && hAxis_.Prepare(), exact && vAxis_.Prepare()};
    Zel2Rect::OnDraw();
    CRect box;
    if (Map()) box = Map()->ToLogical(AbsRect());
    if (prepared[0]) hAxis_.DrawLines(*this);
    if (prepared[1]) vAxis_.DrawLines(*this);
    Clipped(box, [this] { DrawContent(); });
    if (DrawPen* pen = Map() && GetPen() >= 0 ? Pen(GetPen()) : nullptr) pen->Rect(box);
    if (!exact) {
        hAxis_.OnDrawInRectangle(this);
        vAxis_.OnDrawInRectangle(this);
    }
    if (prepared[0]) hAxis_.DrawInnerTicks();
    if (prepared[1]) vAxis_.DrawInnerTicks();
    if (exact && showAxes_ && !axesShared_) {
        hAxis_.OnDraw();
        vAxis_.OnDraw();
    }
    Clipped(box, [this] { contents_[2]->OnDraw(); });
    ResetClip();
}

void Zel2CoordSys::Serialize(CArchive& ar) {
    Zel2Rect::Serialize(ar);
    if (!zel::IsComplete(ar)) return;
    hAxis_.Serialize(ar);
    vAxis_.Serialize(ar);
    for (auto& content : contents_) content->Serialize(ar);
    zel::ExchangeFlag(ar, showAxes_);
}
