#include "core/ArchiveFields.h"
#include "core/Flagged.h"

#include <zel/Zel2GraphTable.h>
#include <zel/Zel2Rect.h>

#include <algorithm>

IMPLEMENT_SERIAL(Zel2GraphTable, Zel2Table, 0)

namespace {

constexpr CSize kGraphSize(4000, 3000);
constexpr int kLeftGraphMargin = 500;

}  // namespace

Zel2GraphTable::Zel2GraphTable(int ngy) : Zel2GraphTable(1, ngy, kGraphSize) {}

Zel2GraphTable::Zel2GraphTable(int ngx, int ngy, CSize graphSize, int) : Zel2Table(3, 3) {
    SetCells(ngx, ngy, graphSize, 0);
    AdjustSizes();
}

void Zel2GraphTable::SetCells(int ngx, int ngy, CSize graphSize, int) {
    if (Columns() != 3 || Rows() != 3) Create(3, 3);
    const auto margin = [this](unsigned i, unsigned j, int span) {
        SetCell(i, j, new Zel2Rect(Zel2Rect::RECTANGLE), span, 1);
    };
    margin(0, 0, 3), margin(1, 0, 1), margin(2, 0, 1);
    margin(0, 1, 1), margin(2, 1, 1);
    margin(0, 2, 3), margin(1, 2, 1), margin(2, 2, 1);
    nGx_ = std::max(ngx, 0);
    nGy_ = std::max(ngy, 0);
    table_ = new Zel2Table(static_cast<unsigned>(nGx_), static_cast<unsigned>(nGy_));
    SetCell(1, 1, table_, 1, 1);
    for (int x = 0; x < nGx_; ++x) {
        for (int y = 0; y < nGy_; ++y) {
            auto* graph = new Zel2Graph;
            table_->SetCell(static_cast<unsigned>(x), static_cast<unsigned>(nGy_ - y - 1), graph, 1, 1);
            graph->SetGraphSize(graphSize);
            graph->SetMargins(kLeftGraphMargin, 0, 0, 0);
            graph->SetCoord(0, 0, 1, 1);
        }
    }
}

void Zel2GraphTable::SetMargins(int left, int top, int right, int bottom) {
    left_ = left;
    top_ = top < 0 ? left : top;
    right_ = right < 0 ? left : right;
    bottom_ = bottom < 0 ? left : bottom;
    AdjustSizes();
}

void Zel2GraphTable::AdjustSizes() {
    if (adjusting_) return;
    const zel::Flagged guard(adjusting_);
    const CSize size = Size();
    const auto give = [](Zel2* cell, int width, int height) {
        if (cell) cell->SetSize(CSize(width, height));
    };
    const int height = zel::Subtract(size.cy, zel::Add(top_, bottom_));
    give(TopMargin(), size.cx, top_);
    give(BottomMargin(), size.cx, bottom_);
    give(LeftMargin(), left_, height);
    give(RightMargin(), right_, height);
    give(table_, zel::Subtract(size.cx, zel::Add(left_, right_)), height);
}

void Zel2GraphTable::SetSize(const CSize&) {
    AdjustSizes();
}

int Zel2GraphTable::OnNotify(Zel2* sender, long code) {
    return adjusting_ ? 1 : Zel2Table::OnNotify(sender, code);
}

Zel2Graph* Zel2GraphTable::GetGraph(int i, int j) {
    if (!table_ || i < 0 || j < 0 || i >= nGx_ || j >= nGy_) return nullptr;
    return dynamic_cast<Zel2Graph*>((*table_)(static_cast<unsigned>(i), static_cast<unsigned>(j)));
}

void Zel2GraphTable::SetGraph(Zel2Graph* g, int i, int j) {
    if (!table_ || i < 0 || j < 0 || i >= nGx_ || j >= nGy_ || GetGraph(i, j) == g) return;
    const auto x = static_cast<unsigned>(i), y = static_cast<unsigned>(j);
    int spanX = 1, spanY = 1;
    table_->GetCellDim(x, y, spanX, spanY);
    table_->SetCell(x, y, g, spanX, spanY);
}

void Zel2GraphTable::SetXCoord(int i, double min, double max) {
    for (int j = 0; j < nGy_; ++j) {
        Zel2Graph* graph = GetGraph(i, j);
        if (!graph) continue;
        double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
        graph->GetFloatRect(x0, y0, x1, y1);
        graph->SetCoord(min, y0, max, y1);
    }
}

void Zel2GraphTable::SetYCoord(int j, double min, double max) {
    for (int i = 0; i < nGx_; ++i) {
        Zel2Graph* graph = GetGraph(i, j);
        if (!graph) continue;
        double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
        graph->GetFloatRect(x0, y0, x1, y1);
        graph->SetCoord(x0, min, x1, max);
    }
}

std::vector<std::unique_ptr<Zel2>> Zel2GraphTable::SplitPages(const PageRoom&) {
    return {};
}

int Zel2GraphTable::BeginningHeight() {
    return Size().cy;
}

void Zel2GraphTable::Serialize(CArchive& ar) {
    Zel2Table::Serialize(ar);
    for (int* margin : {&left_, &top_, &right_, &bottom_}) zel::ExchangeRaw(ar, margin, sizeof *margin);
    zel::Exchange(ar, nGx_, nGy_);
    if (!ar.IsLoading()) return;
    table_ = zel::IsComplete(ar) ? dynamic_cast<Zel2Table*>((*this)(1, 1)) : nullptr;
    const bool fits =
        table_ && nGx_ == static_cast<int>(table_->Columns()) && nGy_ == static_cast<int>(table_->Rows());
    if (table_ && !fits) table_ = nullptr;
}
