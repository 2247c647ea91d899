#include "tools/SeriesMarks.h"

#include "series/CurveScope.h"
#include "series/FrameClip.h"
#include "series/SeriesIndex.h"

#include <zel/DrawSymbol.h>
#include <zel/Zel2.h>

#include <vector>

namespace zel {

void PlotMarks(Zel2& obj, DrawSymbol& symbol, const WorldFrame& frame,
               std::span<const SeriesStretch> stretches) {
    // Places handed on at once: a device sees then which marks lie in one place or below others.
    constexpr std::size_t kBlock = 1 << 20;
    const CurveScope figure(obj.DC(), symbol.IsPlainDisc(&obj));
    std::size_t count = 0;
    for (const SeriesStretch& stretch : stretches) count += stretch.Size();
    std::vector<CPoint> places;
    places.reserve(std::min(count, kBlock + SeriesIndex::kBlock));
    const auto plot = [&] {
        if (!places.empty()) symbol.PlotOn(&obj, places);
        places.clear();
    };
    const FrameSlack slack(frame);
    const double left = frame.Left() - slack.x, right = frame.Right() + slack.x;
    const double bottom = frame.Bottom() - slack.y, top = frame.Top() + slack.y;
    const bool hasExtent = left < right && bottom < top;
    const auto isOutside = [=](const SeriesSpan& span, std::size_t, std::size_t) {
        return span.xmax < left || span.xmin > right || span.ymax < bottom || span.ymin > top;
    };
    for (const SeriesStretch& stretch : stretches) {
        WalkSeries(stretch, isOutside,
                   [&](const SeriesSpan& span, std::size_t, const double* x, const double* y, std::size_t n) {
                       if (!span.gaps && hasExtent && frame.Contains(span.xmin, span.ymin) &&
                           frame.Contains(span.xmax, span.ymax)) {
                           places.resize(places.size() + n);
                           frame.ToLogicalInside(x, y, n, places.data() + places.size() - n);
                       } else {
                           for (std::size_t i = 0; i < n; ++i)
                               if (frame.Contains(x[i], y[i])) places.push_back(frame.ToLogical(x[i], y[i]));
                       }
                       if (places.size() >= kBlock) plot();
                   });
    }
    plot();
}

}  // namespace zel
