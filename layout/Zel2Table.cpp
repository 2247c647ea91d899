#include "core/ArchiveFields.h"
#include "core/Flagged.h"

#include <zel/Zel2Table.h>
#include <zel/platform/Exception.h>

#include <algorithm>
#include <climits>
#include <string>

IMPLEMENT_SERIAL(Zel2Table, Zel2Set, 0)

namespace {

constexpr int kFewColumns = 1024;  // as many empty columns are believed of an archive

[[noreturn]] void ThrowNoTable(int nx, int ny) {
    const std::string message = "Cannot read a Zel2Table of " + std::to_string(nx) + " columns and " +
                                std::to_string(ny) + " rows: there is no such table.";
    AfxThrowArchiveException(CArchiveException::badIndex, message.c_str());
}

int CellCount(unsigned nx, unsigned ny) {
    const std::uint64_t count = std::uint64_t{nx} * ny;
    if (count > INT_MAX) {
        AfxThrowInvalidArgException(("Cannot make a table of " + std::to_string(nx) + " columns and " +
                                     std::to_string(ny) + " rows: it has too many cells.")
                                        .c_str());
    }
    return static_cast<int>(count);
}

}  // namespace

void Zel2Table::ShapeSpans(unsigned nx, unsigned ny) {
    for (Spans* spans : {&colSpan_, &rowSpan_}) {
        spans->resize(nx);
        for (auto& column : *spans) column.resize(ny);
    }
}

void Zel2Table::Create(unsigned nx, unsigned ny) {
    const int count = CellCount(nx, ny);
    Clear();
    DeleteChildren();
    ShapeSpans(nx, ny);
    ResizeSlots(count);
}

void Zel2Table::ReDim(unsigned nx, unsigned ny) {
    const int count = CellCount(nx, ny);
    ShapeSpans(nx, ny);
    ResizeSlots(count);
}

void Zel2Table::Clear() {
    colSpan_.clear();
    rowSpan_.clear();
}

Zel2* Zel2Table::tab(unsigned i, unsigned j) {
    return (*this)[static_cast<int>(Columns() * j + i)];
}

Zel2* Zel2Table::operator()(unsigned i, unsigned j) {
    return i < Columns() && j < Rows() ? tab(i, j) : nullptr;
}

void Zel2Table::SetCell(unsigned i, unsigned j, Zel2* obj, int spanX, int spanY) {
    if (i >= Columns() || j >= Rows() || spanX < 0 || spanY < 0) return;
    const auto cut = [](int span, unsigned at, unsigned count) {
        return std::min(span, static_cast<int>(count - at) + 1);
    };
    Zel2* previous = CellAt(i, j);
    if (previous && previous != obj) Del(previous);
    SetChild(static_cast<int>(Columns() * j + i), obj);
    colSpan_[i][j] = cut(spanX, i, Columns());
    rowSpan_[i][j] = cut(spanY, j, Rows());
}

void Zel2Table::SetCellDim(unsigned i, unsigned j, int spanX, int spanY) {
    if (i >= Columns() || j >= Rows()) return;
    colSpan_[i][j] = spanX;
    rowSpan_[i][j] = spanY;
}

void Zel2Table::GetCellDim(unsigned i, unsigned j, int& spanX, int& spanY) const {
    if (i >= Columns() || j >= Rows()) return;
    spanX = colSpan_[i][j];
    spanY = rowSpan_[i][j];
}

// The line at which a cell that starts at line `from` ends.
unsigned Zel2Table::LineAfter(const Spans& spans, unsigned i, unsigned j, unsigned from,
                              unsigned last) const {
    const std::int64_t line = std::int64_t{from} + spans[i][j];
    return static_cast<unsigned>(std::clamp<std::int64_t>(line, 0, last));
}

void Zel2Table::GetPosition(std::vector<int>& xs, std::vector<int>& ys) {
    const unsigned nx = Columns(), ny = Rows();
    xs.resize(nx + 1);
    ys.resize(ny + 1);
    std::vector<CSize> sizes(static_cast<std::size_t>(nx) * ny);
    for (unsigned j = 0; j < ny; ++j) {
        for (unsigned i = 0; i < nx; ++i) {
            if (Zel2* cell = CellAt(i, j)) sizes[static_cast<std::size_t>(nx) * j + i] = cell->Size();
        }
    }
    for (unsigned i = 0; i < nx; ++i) {
        for (unsigned j = 0; j < ny; ++j) {
            if (!CellAt(i, j)) continue;
            int& line = xs[LineAfter(colSpan_, i, j, i, nx)];
            line = std::max<int>(line, zel::Add(xs[i], sizes[static_cast<std::size_t>(nx) * j + i].cx));
        }
        xs[i + 1] = std::max(xs[i + 1], xs[i]);
    }
    for (unsigned j = 0; j < ny; ++j) {
        for (unsigned i = 0; i < nx; ++i) {
            if (!CellAt(i, j)) continue;
            int& line = ys[LineAfter(rowSpan_, i, j, j, ny)];
            line = std::max<int>(line, zel::Add(ys[j], sizes[static_cast<std::size_t>(nx) * j + i].cy));
        }
        ys[j + 1] = std::max(ys[j + 1], ys[j]);
    }
}

CSize Zel2Table::Size() {
    std::vector<int> xs(Columns() + 1), ys(Rows() + 1);
    GetPosition(xs, ys);
    return {xs.back(), ys.back()};
}

void Zel2Table::SetSize(const CSize& size) {
    LayOut(size);
}

void Zel2Table::LayOut(const CSize& size) {
    if (layingOut_) return;
    const zel::Flagged guard(layingOut_);
    std::vector<int> xs(Columns() + 1), ys(Rows() + 1);
    GetPosition(xs, ys);
    const auto scale = [](std::vector<int>& lines, int wanted) {
        const int natural = lines.back();
        if (wanted <= 0) return;
        for (int& line : lines) line = MulDiv(line, wanted, natural);
    };
    scale(xs, size.cx);
    scale(ys, size.cy);
    const bool exact = IsExact();
    for (unsigned j = 0; j < Rows(); ++j) {
        for (unsigned i = 0; i < Columns(); ++i) {
            Zel2* cell = CellAt(i, j);
            if (!cell) continue;
            const unsigned right = LineAfter(colSpan_, i, j, i, Columns());
            const unsigned below = LineAfter(rowSpan_, i, j, j, Rows());
            cell->SetSize(CSize(zel::Subtract(xs[right], xs[i]), zel::Subtract(ys[below], ys[j])));
            const unsigned bottom = exact ? std::max(below, j + 1) : j + 1;
            cell->Origin(CPoint(xs[i], zel::Subtract(ys.back(), ys[bottom])));
        }
    }
}

void Zel2Table::OnDraw() {
    LayOut(CSize(0, 0));
    Zel2Set::OnDraw();
}

void Zel2Table::OnPrint(CDC* dc, CPrintInfo* info) {
    LayOut(CSize(0, 0));
    Zel2Set::OnPrint(dc, info);
}

void Zel2Table::OnPrintGraph(CDC* dc, CPrintInfo* info) {
    LayOut(CSize(0, 0));
    Zel2Set::OnPrintGraph(dc, info);
}

// What the table's own layout makes its cells report is no news.
int Zel2Table::OnNotify(Zel2* sender, long code) {
    if (code == EDITED) Zel2Set::OnNotify(sender, code);
    if (code != RESIZED || layingOut_) return 1;
    LayOut(CSize(0, 0));
    UpdateWindow();
    if (GetParent()) GetParent()->OnNotify(this, RESIZED);
    UpdateWindow();
    return 1;
}

// The rows before which the table may be broken, the first and the end of the last included.
std::vector<unsigned> Zel2Table::BreakableRows() const {
    std::vector<unsigned> rows;
    unsigned coveredTo = 0;
    for (unsigned j = 0; j < Rows(); ++j) {
        if (j >= coveredTo) rows.push_back(j);
        for (unsigned i = 0; i < Columns(); ++i) {
            if (CellAt(i, j)) coveredTo = std::max(coveredTo, LineAfter(rowSpan_, i, j, j, Rows()));
        }
    }
    rows.push_back(Rows());
    return rows;
}

// Rows as a table of their own; their cells here are empty then.
std::unique_ptr<Zel2Table> Zel2Table::TakeRows(unsigned begin, unsigned end) {
    auto taken = std::make_unique<Zel2Table>(Columns(), end - begin);
    for (unsigned j = begin; j < end; ++j) {
        for (unsigned i = 0; i < Columns(); ++i) {
            Zel2* cell = Del(static_cast<int>(Columns() * j + i));
            taken->SetCell(i, j - begin, cell, std::max(colSpan_[i][j], 0), std::max(rowSpan_[i][j], 0));
        }
    }
    return taken;
}

int Zel2Table::BeginningHeight() {
    std::vector<int> xs(Columns() + 1), ys(Rows() + 1);
    GetPosition(xs, ys);
    const std::vector<unsigned> rows = BreakableRows();
    return rows.size() > 1 ? ys[rows[1]] : 0;
}

std::vector<std::unique_ptr<Zel2>> Zel2Table::SplitPages(const PageRoom& room) {
    std::vector<std::unique_ptr<Zel2>> pieces;
    std::vector<int> xs(Columns() + 1), ys(Rows() + 1);
    GetPosition(xs, ys);
    const std::vector<unsigned> rows = BreakableRows();
    if (ys.back() <= room.first || rows.size() < 3) return pieces;
    if (ys[rows[1]] > room.first && !room.empty) return pieces;
    // The columns stay as wide as they are in the whole table.
    LayOut(CSize(0, 0));
    std::vector<unsigned> starts{0};
    int left = room.first;
    for (std::size_t k = 0; k + 1 < rows.size(); ++k) {
        const bool begins = rows[k] == starts.back();
        if (!begins && ys[rows[k + 1]] - ys[starts.back()] > left) {
            starts.push_back(rows[k]);
            left = room.rest;
        }
    }
    for (std::size_t k = 1; k < starts.size(); ++k)
        pieces.push_back(TakeRows(starts[k], k + 1 < starts.size() ? starts[k + 1] : Rows()));
    if (starts.size() > 1) ReDim(Columns(), starts[1]);
    return pieces;
}

void Zel2Table::Serialize(CArchive& ar) {
    int nx = static_cast<int>(Columns()), ny = static_cast<int>(Rows());
    zel::Exchange(ar, nx, ny);
    if (ar.IsLoading()) {
        DeleteChildren();
        Clear();
        if (nx < 0 || ny < 0) ThrowNoTable(nx, ny);
        if (ny == 0) nx = std::min(nx, kFewColumns);
        ar.CheckCount(std::int64_t{nx} * ny, 2 * sizeof(int));
        ShapeSpans(static_cast<unsigned>(nx), static_cast<unsigned>(ny));
    }
    const std::size_t bytes = static_cast<std::size_t>(ny) * sizeof(int);
    for (std::size_t i = 0; ny > 0 && i < colSpan_.size(); ++i) {
        zel::ExchangeRaw(ar, colSpan_[i].data(), bytes);
        zel::ExchangeRaw(ar, rowSpan_[i].data(), bytes);
    }
    Zel2Set::Serialize(ar);
    if (ar.IsLoading() && GetCount() < nx * ny) ResizeSlots(nx * ny);
}
