#include "core/ArchiveFields.h"

#include <zel/Zel2Selection.h>
#include <zel/Zel2Set.h>
#include <zel/platform/DC.h>
#include <zel/platform/Exception.h>
#include <zel/platform/PrintInfo.h>

#include <climits>

IMPLEMENT_SERIAL(Zel2Set, Zel2, 0)

Zel2Set::Zel2Set(Zel2*, CPoint, unsigned long, CSize, CObArray* children) {
    if (children) children_.Copy(*children);
}

Zel2Set::Zel2Set(const Zel2Set& other) : Zel2(other) {
    ShareChildren(other);
}

Zel2Set& Zel2Set::operator=(const Zel2Set& other) {
    if (this == &other) return *this;
    Zel2::operator=(other);
    ShareChildren(other);
    return *this;
}

Zel2Set::~Zel2Set() {
    DeleteChildren();
}

void Zel2Set::DeleteChildren() {
    ForEachChild([](Zel2* child) { delete child; });
    children_.RemoveAll();
}

int Zel2Set::GetCount() {
    return static_cast<int>(children_.GetSize());
}

int Zel2Set::Add(Zel2* child) {
    const int index = static_cast<int>(children_.Add(child));
    if (child) child->SetParent(this);
    return index;
}

Zel2* Zel2Set::Del(int i) {
    if (i < 0 || i >= static_cast<int>(children_.GetSize())) return nullptr;
    Zel2* child = SlotAt(i);
    if (child) OnLeave(child);
    children_.SetAt(i, nullptr);
    return child;
}

void Zel2Set::Del(Zel2* child) {
    if (!child) return;
    for (int i = 0; i < static_cast<int>(children_.GetSize()); ++i) {
        if (SlotAt(i) == child) {
            delete Del(i);
            return;
        }
    }
}

void Zel2Set::SetChild(int i, Zel2* child) {
    children_.SetAt(i, child);
    if (child) child->SetParent(this);
}

void Zel2Set::DetachChildren() {
    ForEachChild([this](Zel2* child) {
        OnLeave(child);
        child->SetParent(nullptr);
    });
    children_.RemoveAll();
}

Zel2* Zel2Set::operator[](int i) {
    return SlotAt(i);
}

void Zel2Set::OpenOn(CDC* dc, int scale) {
    ForEachChild([=](Zel2* child) { child->OpenOn(dc, scale); });
}

void Zel2Set::Close() {
    ForEachChild([](Zel2* child) { child->Close(); });
}

void Zel2Set::OnDraw() {
    ForEachChild([](Zel2* child) { child->OnDraw(); });
}

void Zel2Set::SetStatus(unsigned long mask, int on) {
    Zel2::SetStatus(mask, on);
    if (!GetStatus(PROPAGATE)) return;
    ForEachChild([=](Zel2* child) { child->SetStatus(mask, on); });
}

int Zel2Set::IsClass(int code) {
    return code & CLASS_CONTAINER;
}

CSize Zel2Set::Size() {
    CSize extent;
    ForEachChild([&](Zel2* child) {
        const CPoint end = child->Origin() + child->Size();
        extent.cx = std::max(extent.cx, end.x);
        extent.cy = std::max(extent.cy, end.y);
    });
    return extent;
}

unsigned int Zel2Set::nCpt() {
    unsigned int count = 0;
    ForEachChild([&](Zel2* child) { count += child->nCpt(); });
    return count;
}

CPoint Zel2Set::Cpt(int i) {
    for (int k = 0; k < GetCount(); ++k) {
        Zel2* child = SlotAt(k);
        if (!child) continue;
        const int own = static_cast<int>(child->nCpt());
        if (i < own) return child->Cpt(i);
        i -= own;
    }
    return {INT_MIN, INT_MIN};
}

bool Zel2Set::PrintsByPages() {
    return false;
}

void Zel2Set::OnPrint(CDC* dc, CPrintInfo* info) {
    const bool byPages = PrintsByPages();
    ForEachChild([=](Zel2* child) { byPages ? child->OnPrintGraph(dc, info) : child->OnPrint(dc, info); });
}

int Zel2Set::ChildrenPerPage(CDC* dc) {
    Zel2* first = GetCount() > 0 ? SlotAt(0) : nullptr;
    if (!first) AfxThrowInvalidArgException();
    const int height = first->PrintedHeight();
    // The printable height in thousandths of an inch, negative because y points up, and one inch kept free.
    const int page = zel::Truncate(dc->GetDeviceCaps(VERTSIZE) / -25.4 * 1000.0);
    const int perPage = height != 0 ? (-1000 - page) / height : 0;
    return perPage != 0 ? perPage : 1;
}

void Zel2Set::OnPrintGraph(CDC* dc, CPrintInfo* info) {
    const std::int64_t perPage = ChildrenPerPage(dc);
    const std::int64_t page = info->m_nCurPage;
    const std::int64_t begin = std::max<std::int64_t>((page - 1) * perPage, 0);
    const std::int64_t end = std::min<std::int64_t>(page * perPage, GetCount());
    for (std::int64_t i = begin; i < end; ++i) {
        if (Zel2* child = SlotAt(static_cast<int>(i))) child->OnPrint(dc, info);
    }
}

Zel2* Zel2Set::GetSelectableAt(const CPoint& pt) {
    Zel2* topmost = nullptr;
    ForEachChild([&](Zel2* child) {
        if (Zel2* hit = child->GetSelectableAt(pt)) topmost = hit;
    });
    return topmost;
}

void Zel2Set::SelectAt(const CPoint& pt, Zel2Selection* sel) {
    sel->Add(GetSelectableAt(pt));
}

void Zel2Set::SelectAt(const CRect& r, Zel2Selection* sel) {
    ForEachChild([&](Zel2* child) { child->SelectAt(r, sel); });
}

MouseAction Zel2Set::OnMouse(const MouseStatus& ms) {
    MouseAction answer;
    for (int i = GetCount() - 1; i >= 0; --i) {
        Zel2* child = SlotAt(i);
        if (!child) continue;
        answer = child->OnMouse(ms);
        if (answer.object) break;
    }
    return answer;
}

int Zel2Set::OnClick(const CPoint& pt) {
    for (int i = GetCount() - 1; i >= 0; --i) {
        Zel2* const child = SlotAt(i);
        if (child && child->OnClick(pt)) return 1;
    }
    return 0;
}

void Zel2Set::Serialize(CArchive& ar) {
    Zel2::Serialize(ar);
    if (ar.IsStoring()) {
        ar << static_cast<LONG>(GetCount());
        for (int i = 0; i < GetCount(); ++i) {
            Zel2* child = SlotAt(i);
            ar << static_cast<BYTE>(child ? 1 : 0);
            if (child) ar.WriteObject(child);
        }
        return;
    }
    LONG count = 0;
    ar >> count;
    ar.CheckCount(std::max<LONG>(count, 0), 1);
    for (LONG i = 0; i < count; ++i) {
        BYTE present = 0;
        ar >> present;
        Add(present ? zel::ReadOwned<Zel2>(ar).release() : nullptr);
    }
}
