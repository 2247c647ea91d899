#include "core/ArchiveFields.h"
#include "tools/SeriesMarks.h"

#include <zel/ChartLayers.h>
#include <zel/DrawSymbol.h>
#include <zel/Zel2Chart.h>

#include <numeric>

IMPLEMENT_SERIAL(Zel2PointLayer, Zel2XYLayer, 0)

Zel2PointLayer::Zel2PointLayer(zel::Column x, zel::Column y, const zel::PointOptions& options)
    : Zel2XYLayer(options, std::move(x), std::move(y)), size_(options.size), shape_(options.shape) {}

void Zel2PointLayer::SetSymbol(int index) {
    symbol_ = index;
    Changed();
}

void Zel2PointLayer::SetDefaults() {
    if (symbol_ < 0) symbol_ = RegisterOwnSymbol(size_, shape_);
}

void Zel2PointLayer::DrawIn(const zel::LayerFrame& frame) {
    DrawSymbol* const symbol = Symbol(symbol_);
    if (symbol) zel::PlotMarks(*this, *symbol, frame.world, Stretches(frame));
}

void Zel2PointLayer::DrawKey(const CRect& box) {
    if (DrawSymbol* symbol = Symbol(symbol_))
        symbol->PlotOn(this, CPoint(std::midpoint(box.left, box.right), std::midpoint(box.top, box.bottom)));
}

void Zel2PointLayer::Serialize(CArchive& ar) {
    Zel2XYLayer::Serialize(ar);
    int shape = shape_ ? static_cast<int>(*shape_) : 0;
    zel::Exchange(ar, symbol_, size_, shape);
    if (ar.IsLoading())
        shape_ =
            shape >= 1 && shape <= 15 ? std::optional(static_cast<zel::SymbolKind>(shape)) : std::nullopt;
}
