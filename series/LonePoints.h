// Points without a neighbour, which no line shows.
#pragma once

#include "series/SeriesIndex.h"

#include <cmath>
#include <span>

namespace zel {

// Calls `take(x, y)` for every point of the stretches that stands between two gaps, or between a gap and an
// end. Only blocks with gaps are looked into.
template <class Take>
void ForLonePoints(std::span<const SeriesStretch> stretches, Take take) {
    double loneX = 0, loneY = 0;
    bool after = false, candidate = false;  // the last point: it has a place; nothing comes before it
    const auto end = [&] {
        if (candidate) take(loneX, loneY);
        candidate = after = false;
    };
    const auto whole = [&](const SeriesSpan& span, std::size_t first, std::size_t last) {
        if (!span.IsFinite() || last - first < 2) return false;
        candidate = false;
        return after = true;
    };
    const auto each = [&](const SeriesSpan&, std::size_t, const double* x, const double* y, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            if (!std::isfinite(x[i]) || !std::isfinite(y[i])) {
                end();
                continue;
            }
            candidate = !after;
            after = true;
            loneX = x[i];
            loneY = y[i];
        }
    };
    for (const SeriesStretch& stretch : stretches) WalkSeries(stretch, whole, each);
    end();
}

}  // namespace zel
