#include "core/ArchiveFields.h"
#include "layout/PageFlow.h"

#include <zel/Zel2Column.h>
#include <zel/Zel2TextTable.h>

#include <algorithm>
#include <climits>

IMPLEMENT_SERIAL(Zel2Column, Zel2Set, 0)

CSize Zel2Column::NaturalSize() {
    LONG width = 0;
    std::int64_t height = 0;
    ForEachChild([&](Zel2* child) {
        const CSize size = child->Size();
        width = std::max(width, size.cx);
        height += size.cy;
    });
    return {width, zel::Saturate(height)};
}

CSize Zel2Column::Size() {
    const CSize natural = NaturalSize();
    return {std::max(size_.cx, natural.cx), std::max(size_.cy, natural.cy)};
}

void Zel2Column::SetSize(const CSize& size) {
    size_ = size.cx > 0 && size.cy > 0 ? size : NaturalSize();
}

template <class Visit>
void Zel2Column::FromTheTop(Visit visit) {
    std::int64_t y = Size().cy;
    ForEachChild([&](Zel2* child) {
        y -= child->Size().cy;
        visit(child, zel::Saturate(y));
    });
}

void Zel2Column::OnDraw() {
    FromTheTop([](Zel2* child, LONG y) {
        child->Origin(CPoint(child->Origin().x, y));
        child->OnDraw();
    });
}

void Zel2Column::OnPrint(CDC* dc, CPrintInfo* info) {
    if (IsExact()) {
        OnDraw();
    } else {
        Zel2Set::OnPrint(dc, info);
    }
}

void Zel2Column::Justify(int mode) {
    const LONG width = Size().cx;
    FromTheTop([=](Zel2* child, LONG y) {
        const CSize size = child->Size();
        const LONG spare = zel::Subtract(width, size.cx);
        if (mode == LEFT) child->Origin(CPoint(0, y));
        if (mode == RIGHT) child->Origin(CPoint(spare, y));
        if (mode == CENTER) child->Origin(CPoint(spare / 2, y));
        if (mode == FILL) child->SetSize(CSize(width, size.cy));
    });
}

Zel2Column::Objects Zel2Column::TakeChildren() {
    Objects objects;
    for (int i = 0; i < GetCount(); ++i) {
        if (Zel2* child = Del(i)) objects.emplace_back(child);
    }
    ResizeSlots(0);
    return objects;
}

void Zel2Column::Fill(Objects objects) {
    for (auto& object : objects) Add(object.release());
}

std::vector<std::unique_ptr<Zel2Column>> Zel2Column::BreakIntoPages(const PageRoom& room) {
    std::vector<std::unique_ptr<Zel2Column>> columns;
    std::vector<zel::PageContent> pages = zel::FlowOntoPages(TakeChildren(), room);
    Fill(std::move(pages.front()));
    for (std::size_t k = 1; k < pages.size(); ++k) {
        columns.push_back(std::make_unique<Zel2Column>(flags_));
        columns.back()->Fill(std::move(pages[k]));
        columns.back()->size_.cx = size_.cx;
    }
    if (!columns.empty()) size_.cy = 0;
    return columns;
}

// The first page must take something, unless it is a whole one anyway.
std::vector<std::unique_ptr<Zel2>> Zel2Column::SplitPages(const PageRoom& room) {
    std::vector<std::unique_ptr<Zel2>> pieces;
    if (!room.empty && BeginningHeight() > room.first) return pieces;
    for (auto& column : BreakIntoPages(room)) pieces.push_back(std::move(column));
    return pieces;
}

int Zel2Column::BeginningHeight() {
    std::int64_t height = 0;
    for (int i = 0; i < GetCount(); ++i) {
        Zel2* child = ChildAt(i);
        if (!child) continue;
        const bool kept = child->GetStatus(KEEP_WITH_NEXT) != 0;
        height += kept ? child->Size().cy : child->BeginningHeight();
        if (!kept) break;
    }
    return zel::Saturate(height);
}

Zel2Column* Zel2Column::SplitVert(int height) {
    if (!IsExact()) return ClassicSplit(height, false).release();
    if (Size().cy <= height) return nullptr;
    auto pages = BreakIntoPages({height, INT_MAX, true});
    if (pages.empty()) return nullptr;
    std::unique_ptr<Zel2Column> rest = std::move(pages.front());
    for (std::size_t k = 1; k < pages.size(); ++k) rest->Fill(pages[k]->TakeChildren());
    return rest.release();
}

// What fits is taken off the height; a break is made only where the height has become negative, which can be
// at the first child alone. A column is broken itself there, a text table handed over with all its rows (but
// where something of it has to stay, or pages would follow one another for ever), and any other object is not
// moved, since nothing would be left.
std::unique_ptr<Zel2Column> Zel2Column::ClassicSplit(int height, bool leavesSomething) {
    size_ = Size();
    if (size_.cy <= height || height >= 0) return nullptr;
    int first = 0;
    while (first < GetCount() && !ChildAt(first)) ++first;
    Zel2* child = ChildAt(first);
    if (!child || child->Size().cy <= height) return nullptr;
    auto rest = std::make_unique<Zel2Column>(1);
    if (child->IsKindOf(RUNTIME_CLASS(Zel2Column))) {
        auto part = static_cast<Zel2Column*>(child)->ClassicSplit(height, leavesSomething);
        if (part) rest->Add(part.release());
    } else if (child->IsKindOf(RUNTIME_CLASS(Zel2TextTable))) {
        Zel2* part = leavesSomething ? nullptr : static_cast<Zel2TextTable*>(child)->SplitVert(height);
        if (part) rest->Add(part);
    } else {
        return nullptr;
    }
    for (int i = first + 1; i < GetCount(); ++i) {
        if (Zel2* moved = Del(i)) rest->Add(moved);
    }
    return rest->GetCount() > 0 ? std::move(rest) : nullptr;
}

void Zel2Column::Serialize(CArchive& ar) {
    Zel2Set::Serialize(ar);
    zel::Exchange(ar, size_.cx, size_.cy, flags_);
}
