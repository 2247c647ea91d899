#include "core/ArchiveFields.h"

#include <zel/Zel2Rect.h>
#include <zel/Zel2Row.h>

#include <algorithm>
#include <climits>

IMPLEMENT_SERIAL(Zel2Row, Zel2Set, 0)

CSize Zel2Row::NaturalSize() {
    std::int64_t width = 0;
    LONG height = INT_MIN;
    ForEachChild([&](Zel2* child) {
        const CSize size = child->Size();
        width += size.cx;
        height = std::max(height, size.cy);
    });
    return {zel::Saturate(width), height};
}

CSize Zel2Row::Size() {
    const CSize natural = NaturalSize();
    size_ = CSize(std::max(size_.cx, natural.cx), std::max(size_.cy, natural.cy));
    return size_;
}

void Zel2Row::SetSize(const CSize& size) {
    const int natural = Size().cx;
    size_ = size;
    int width = size.cx;
    if (!(flags_ & SHRINK)) width = std::max(width, natural);
    if (!(flags_ & STRETCH)) width = std::min(width, natural);
    std::int64_t sum = 0;
    int edge = MulDiv(0, width, natural);
    ForEachChild([&](Zel2* child) {
        sum += child->Size().cx;
        const int next = MulDiv(zel::Saturate(sum), width, natural);
        child->SetSize(CSize(zel::Subtract(next, edge), size.cy));
        edge = next;
    });
}

void Zel2Row::OnDraw() {
    Size();
    LONG x = 0;
    ForEachChild([&](Zel2* child) {
        child->Origin(CPoint(x, 0));
        x = zel::Add(x, child->Size().cx);
        child->OnDraw();
    });
}

void Zel2Row::OnPrint(CDC* dc, CPrintInfo* info) {
    if (IsExact()) {
        OnDraw();
    } else {
        Zel2Set::OnPrint(dc, info);
    }
}

int Zel2Row::BeginningHeight() {
    int height = 0;
    ForEachChild([&](Zel2* child) { height = std::max(height, child->BeginningHeight()); });
    return height;
}

std::vector<std::unique_ptr<Zel2>> Zel2Row::SplitPages(const PageRoom& room) {
    std::vector<std::unique_ptr<Zel2>> pieces;
    if (NaturalSize().cy <= room.first || (!room.empty && BeginningHeight() > room.first)) return pieces;
    std::vector<std::vector<std::unique_ptr<Zel2>>> columns;
    std::vector<LONG> widths;
    std::size_t count = 0;
    ForEachChild([&](Zel2* child) {
        widths.push_back(child->Size().cx);
        columns.push_back(child->SplitPages(room));
        count = std::max(count, columns.back().size());
    });
    for (std::size_t page = 0; page < count; ++page) {
        auto row = std::make_unique<Zel2Row>(flags_);
        for (std::size_t c = 0; c < columns.size(); ++c) {
            std::unique_ptr<Zel2> part;
            if (page < columns[c].size()) {
                part = std::move(columns[c][page]);
            } else {
                part = std::make_unique<Zel2Rect>();
                part->SetSize(CSize(widths[c], 0));
            }
            row->Add(part.release());
        }
        pieces.push_back(std::move(row));
    }
    if (count > 0) size_ = NaturalSize();
    return pieces;
}

void Zel2Row::Serialize(CArchive& ar) {
    Zel2Set::Serialize(ar);
    zel::Exchange(ar, size_.cx, size_.cy, flags_);
}
