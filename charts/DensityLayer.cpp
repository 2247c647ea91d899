#include "charts/PixelGrid.h"
#include "core/ArchiveFields.h"
#include "series/SeriesIndex.h"

#include <zel/ChartMaps.h>
#include <zel/Zel2Chart.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>

IMPLEMENT_SERIAL(Zel2DensityLayer, Zel2XYLayer, 0)

Zel2DensityLayer::Zel2DensityLayer(zel::Column x, zel::Column y, const zel::DensityOptions& options)
    : Zel2XYLayer(options, std::move(x), std::move(y)),
      scheme_(options.scheme),
      reversed_(options.reversed),
      map_(options.scheme, options.reversed) {}

// Counts points of whole blocks without looking at each: those that lie in one pixel.
void Zel2DensityLayer::DrawIn(const zel::LayerFrame& frame) {
    if (!DC()) return;
    const WorldFrame& world = frame.world;
    const zel::PixelGrid grid(*DC(), world, world.xmin, world.ymin, world.xmax, world.ymax);
    if (grid.IsEmpty()) return;
    const auto width = static_cast<std::size_t>(grid.Width()),
               height = static_cast<std::size_t>(grid.Height());
    std::vector<std::uint32_t> counts(width * height, 0);
    const double columns = grid.Width(), rows = grid.Height();
    const auto count = [&](double column, double row, std::size_t n) {
        // Also what is no number is outside.
        if (column >= 0 && column < columns && row >= 0 && row < rows)
            counts[static_cast<std::size_t>(row) * width + static_cast<std::size_t>(column)] +=
                static_cast<std::uint32_t>(n);
    };
    for (const zel::SeriesStretch& stretch : Stretches(frame)) {
        zel::WalkSeries(
            stretch,
            [&](const zel::SeriesSpan& span, std::size_t begin, std::size_t end) {
                if (span.xmax < world.xmin || span.xmin > world.xmax || span.ymax < world.ymin ||
                    span.ymin > world.ymax)
                    return true;
                if (!span.IsFinite()) return false;
                const double column = std::floor(grid.ColumnOf(span.xmin)),
                             row = std::floor(grid.RowOf(span.ymin));
                if (column != std::floor(grid.ColumnOf(span.xmax)) ||
                    row != std::floor(grid.RowOf(span.ymax)))
                    return false;
                count(column, row, end - begin);
                return true;
            },
            [&](const zel::SeriesSpan&, std::size_t, const double* x, const double* y, std::size_t n) {
                for (std::size_t i = 0; i < n; ++i)
                    if (world.Contains(x[i], y[i])) count(grid.ColumnOf(x[i]), grid.RowOf(y[i]), 1);
            });
    }
    const std::uint32_t most = *std::max_element(counts.begin(), counts.end());
    if (most == 0) return;
    const double perLogarithm = 1 / std::log2(1.0 + most);
    const auto alpha = static_cast<std::uint32_t>(std::lround(255 * std::clamp(Opacity(), 0.0, 1.0))) << 24;
    // The counts become the colours in their place.
    for (std::uint32_t& cell : counts)
        if (cell > 0) cell = (map_.PixelAt(std::log2(1.0 + cell) * perLogarithm) & 0xFFFFFF) | alpha;
    grid.Draw(counts);
}

void Zel2DensityLayer::DrawKey(const CRect& box) {
    constexpr int kSteps = 64;
    std::vector<std::uint32_t> colors;
    colors.reserve(kSteps);
    for (int i = 0; i < kSteps; ++i) colors.push_back(map_.PixelAt((i + 0.5) / kSteps));
    if (CDC* dc = DC()) dc->DrawPicture(box, {colors.data(), kSteps, 1});
}

void Zel2DensityLayer::Serialize(CArchive& ar) {
    Zel2XYLayer::Serialize(ar);
    int scheme = static_cast<int>(scheme_);
    zel::Exchange(ar, scheme);
    zel::ExchangeFlag(ar, reversed_);
    if (ar.IsStoring()) return;
    scheme_ = static_cast<zel::ColorScheme>(std::clamp(scheme, 0, 3));
    map_ = zel::ColorMap(scheme_, reversed_);
}
