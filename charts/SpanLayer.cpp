#include "charts/OrientedFrame.h"
#include "core/ArchiveFields.h"

#include <zel/ChartNotes.h>
#include <zel/DrawColor.h>
#include <zel/Zel2Chart.h>

#include <algorithm>
#include <cmath>

IMPLEMENT_SERIAL(Zel2SpanLayer, Zel2Layer, 0)

namespace {

// A quiet ground that belongs to no series.
zel::SpanOptions WithColor(zel::SpanOptions options) {
    if (!options.color) options.color = zel::Color(RGB(120, 120, 120));
    options.opacity *= options.tint;
    return options;
}

}  // namespace

Zel2SpanLayer::Zel2SpanLayer(Coordinate coordinate, double from, double to, const zel::SpanOptions& options)
    : Zel2Layer(WithColor(options)), alongX_(coordinate == Coordinate::X), from_(from), to_(to) {}

void Zel2SpanLayer::SetColor(int index) {
    colorIndex_ = index;
    Changed();
}

void Zel2SpanLayer::SetDefaults() {
    if (colorIndex_ < 0) colorIndex_ = RegisterOwnColor();
}

void Zel2SpanLayer::DrawIn(const zel::LayerFrame& frame) {
    DrawColor* const color = Color(colorIndex_);
    if (!color || std::isnan(from_) || std::isnan(to_)) return;
    // Values of the span lie along x like those of horizontal bars.
    const zel::OrientedFrame oriented(frame, alongX_);
    const double origin = oriented.Values().Origin();
    CRect box(oriented.ToLogical(oriented.FirstPosition(), oriented.ValueWithin(from_ - origin)),
              oriented.ToLogical(oriented.LastPosition(), oriented.ValueWithin(to_ - origin)));
    box.NormalizeRect();
    color->FillRect(box);
}

void Zel2SpanLayer::DrawKey(const CRect& box) {
    if (DrawColor* color = Color(colorIndex_)) color->FillRect(box);
}

void Zel2SpanLayer::Serialize(CArchive& ar) {
    Zel2Layer::Serialize(ar);
    zel::ExchangeFlag(ar, alongX_);
    zel::Exchange(ar, from_, to_, colorIndex_);
}
