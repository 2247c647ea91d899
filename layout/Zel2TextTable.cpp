#include "core/ArchiveFields.h"

#include <zel/Zel2TextTable.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <string_view>

IMPLEMENT_SERIAL(Zel2TextTable, Zel2Set, 0)

namespace {

constexpr int kFewLines = 1024;
constexpr std::size_t kMostText = 5000;  // bytes of a formatted text, its end included

// The sums of `sizes`, beginning with 0.
std::vector<int> LinesOf(const std::vector<LONG>& sizes) {
    std::vector<int> lines{0};
    lines.reserve(sizes.size() + 1);
    for (const LONG size : sizes) lines.push_back(zel::Add(lines.back(), size));
    return lines;
}

void ScaleLines(std::vector<int>& lines, int wanted) {
    const int natural = lines.back();
    if (wanted == natural) return;
    for (int& line : lines) line = MulDiv(line, wanted, natural);
}

}  // namespace

Zel2TextTable::Zel2TextTable(int nCols, int nRows)
    : nCols_(std::max(nCols, 0)), nRows_(std::max(nRows, 0)), texts_(static_cast<std::size_t>(nCols_)) {
    for (Column& column : texts_) column.resize(static_cast<std::size_t>(nRows_));
}

template <class Visit>
void Zel2TextTable::ForEachText(Visit visit) {
    for (int c = 0; c < nCols_; ++c) {
        for (int r = 0; r < nRows_; ++r) {
            if (Zel2Text* text = Cell(c, r).get()) visit(*text, c, r);
        }
    }
}

void Zel2TextTable::Put(int c, int r, std::unique_ptr<Zel2Text> text) {
    if (text) text->SetParent(this);
    Cell(c, r) = std::move(text);
}

Zel2Text* Zel2TextTable::Text(int c, int r) const {
    return Has(c, r) ? texts_[static_cast<std::size_t>(c)][static_cast<std::size_t>(r)].get() : nullptr;
}

void Zel2TextTable::SetStyle(int c0, int c1, int r0, int r1, const Zel2Text& proto) {
    for (int c = std::max(c0, 0); c <= std::min(c1, nCols_ - 1); ++c) {
        for (int r = std::max(r0, 0); r <= std::min(r1, nRows_ - 1); ++r)
            Put(c, r, std::make_unique<Zel2Text>(proto));
    }
}

void Zel2TextTable::SetText(int c, int r, const char* format, ...) {
    if (!Text(c, r)) return;
    char buffer[kMostText];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    if (length <= 0) return;
    std::string_view left(buffer);
    for (int column = c; !left.empty() && r < nRows_;) {
        const std::size_t tab = left.find('\t');
        SetPlainText(column, r, std::string(left.substr(0, tab)).c_str());
        left.remove_prefix(tab == std::string_view::npos ? left.size() : tab + 1);
        if (++column < nCols_) continue;
        column = c;
        ++r;
    }
}

void Zel2TextTable::SetPlainText(int c, int r, const char* text) {
    if (Zel2Text* cell = Text(c, r)) cell->SetPlainText(text);
}

LONG Zel2TextTable::RowHeight(int r) {
    LONG height = 0;
    for (int c = 0; c < nCols_; ++c) {
        if (Zel2Text* text = Text(c, r)) height = std::max(height, text->Size().cy);
    }
    return height;
}

std::vector<LONG> Zel2TextTable::RowHeights() {
    std::vector<LONG> heights;
    heights.reserve(static_cast<std::size_t>(nRows_));
    for (int r = 0; r < nRows_; ++r) heights.push_back(RowHeight(r));
    return heights;
}

void Zel2TextTable::SetSize(const CSize& size) {
    std::vector<LONG> widths(static_cast<std::size_t>(nCols_));
    ForEachText([&](Zel2Text& text, int c, int) {
        LONG& width = widths[static_cast<std::size_t>(c)];
        width = std::max(width, text.Size().cx);
    });
    std::vector<int> xs = LinesOf(widths), ys = LinesOf(RowHeights());
    size_ = CSize(size.cx >= 1 ? size.cx : xs.back(), size.cy >= 1 ? size.cy : ys.back());
    ScaleLines(xs, size_.cx);
    ScaleLines(ys, size_.cy);
    ForEachText([&](Zel2Text& text, int column, int row) {
        const auto c = static_cast<std::size_t>(column), r = static_cast<std::size_t>(row);
        text.Origin(CPoint(xs[c], zel::Subtract(size_.cy, ys[r + 1])));
        text.SetSize(CSize(zel::Subtract(xs[c + 1], xs[c]), zel::Subtract(ys[r + 1], ys[r])));
    });
}

CSize Zel2TextTable::Size() {
    SetSize(CSize(0, 0));
    return size_;
}

void Zel2TextTable::OpenOn(CDC* dc, int scale) {
    ForEachText([=](Zel2Text& text, int, int) { text.OpenOn(dc, scale); });
}

void Zel2TextTable::OnDraw() {
    SetSize(CSize(0, 0));
    ForEachText([](Zel2Text& text, int, int) { text.OnDraw(); });
}

void Zel2TextTable::OnPrint(CDC* dc, CPrintInfo* info) {
    if (IsExact()) {
        OnDraw();
    } else {
        Zel2Set::OnPrint(dc, info);
    }
}

int Zel2TextTable::HeaderRows() const {
    return std::clamp(nHeaderRows_, 0, nRows_);
}

std::unique_ptr<Zel2TextTable> Zel2TextTable::TakeRows(int headers, int begin, int end) {
    auto taken = std::make_unique<Zel2TextTable>(nCols_, headers + end - begin);
    for (int c = 0; c < nCols_; ++c) {
        for (int r = 0; r < headers; ++r) {
            if (const Zel2Text* header = Text(c, r)) taken->Put(c, r, std::make_unique<Zel2Text>(*header));
        }
        for (int r = begin; r < end; ++r) taken->Put(c, headers + r - begin, std::move(Cell(c, r)));
    }
    return taken;
}

void Zel2TextTable::KeepRows(int count) {
    nRows_ = count;
    for (Column& column : texts_) column.resize(static_cast<std::size_t>(count));
}

Zel2TextTable* Zel2TextTable::SplitVert(int height) {
    if (Size().cy <= height) return nullptr;
    const std::vector<LONG> heights = RowHeights();
    int left = height, k = 0;
    while (k < nRows_ && heights[static_cast<std::size_t>(k)] <= left)
        left -= heights[static_cast<std::size_t>(k++)];
    const bool inHeader = k <= nHeaderRows_;
    const int first = inHeader ? 0 : k, headers = inHeader ? 0 : HeaderRows();
    std::unique_ptr<Zel2TextTable> rest = TakeRows(headers, first, nRows_);
    KeepRows(first);
    if (IsExact()) rest->nHeaderRows_ = inHeader ? nHeaderRows_ : headers;
    rest->SetSize(CSize(0, 0));
    return rest.release();
}

int Zel2TextTable::BeginningHeight() {
    std::int64_t sum = 0;
    for (int r = 0; r < std::min(HeaderRows() + 1, nRows_); ++r) sum += RowHeight(r);
    return zel::Saturate(sum);
}

// All breaks are found in one walk over the rows, so that a long table costs its rows, not its rows times its
// pages. A header that leaves no room on a page is not repeated.
std::vector<std::unique_ptr<Zel2>> Zel2TextTable::SplitPages(const PageRoom& room) {
    std::vector<std::unique_ptr<Zel2>> pieces;
    if (Size().cy <= room.first || nRows_ < 2) return pieces;
    const std::vector<LONG> heights = RowHeights();
    std::int64_t headerHeight = 0;
    for (int r = 0; r < HeaderRows(); ++r) headerHeight += heights[static_cast<std::size_t>(r)];
    const int headers = headerHeight < room.rest ? HeaderRows() : 0;
    if (headers == 0) headerHeight = 0;
    if (!room.empty && BeginningHeight() > room.first) return pieces;
    std::vector<int> starts{0};
    std::int64_t left = room.first;
    for (int r = 0; r < nRows_; ++r) {
        const LONG height = heights[static_cast<std::size_t>(r)];
        const bool begins = starts.size() == 1 ? r <= headers : r == starts.back();
        if (!begins && height > left) {
            starts.push_back(r);
            left = room.rest - headerHeight;
        }
        left -= height;
    }
    for (std::size_t k = 1; k < starts.size(); ++k) {
        auto piece = TakeRows(headers, starts[k], k + 1 < starts.size() ? starts[k + 1] : nRows_);
        piece->nHeaderRows_ = headers;
        pieces.push_back(std::move(piece));
    }
    if (starts.size() > 1) KeepRows(starts[1]);
    return pieces;
}

void Zel2TextTable::ExchangeTexts(CArchive& ar) {
    zel::Exchange(ar, nCols_, nRows_, nHeaderRows_);
    if (ar.IsLoading()) {
        nCols_ = std::max(nCols_, 0);
        nRows_ = std::max(nRows_, 0);
        ar.CheckCount(std::int64_t{nCols_} * nRows_, 1);
        // Columns or rows without cells have no bytes behind them: a few are believed.
        if (nRows_ == 0) nCols_ = std::min(nCols_, kFewLines);
        if (nCols_ == 0) nRows_ = std::min(nRows_, kFewLines);
        texts_.clear();
        texts_.resize(static_cast<std::size_t>(nCols_));
        for (Column& column : texts_) column.resize(static_cast<std::size_t>(nRows_));
    }
    for (int c = 0; c < nCols_; ++c) {
        for (int r = 0; r < nRows_; ++r) {
            bool present = Cell(c, r) != nullptr;
            zel::ExchangeFlag(ar, present);
            if (!present) continue;
            if (ar.IsLoading()) Put(c, r, std::make_unique<Zel2Text>());
            Cell(c, r)->Serialize(ar);
        }
    }
}

void Zel2TextTable::Serialize(CArchive& ar) {
    Zel2Set::Serialize(ar);
    if (zel::IsComplete(ar)) ExchangeTexts(ar);
}
