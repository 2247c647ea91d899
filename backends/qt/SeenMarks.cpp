#include "backends/qt/SeenMarks.h"

#include "platform/graphics/MarkCover.h"

#include <zel/qt/ImageDevice.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <optional>

namespace zel::qt {
namespace {

constexpr std::int64_t kMostCells = std::int64_t{1} << 27;  // of a page: an A0 poster has 2^26

int Cells(LONG units, int cell) {
    return static_cast<int>(std::floor(static_cast<double>(units) / cell));
}

// Ink reaches into the cells around it: files draw hairlines wider than this picture does.
std::vector<std::uint64_t> Grown(const std::vector<std::uint64_t>& rows) {
    std::vector<std::uint64_t> grown(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t near = row > 0 ? row - 1 : 0; near <= row + 1 && near < rows.size(); ++near)
            grown[row] |= rows[near] | rows[near] << 1 | rows[near] >> 1;
    }
    return grown;
}

// What a mark covers when its origin lies on the corner of a cell; none when it is too large to tell.
std::optional<MarkMask> MaskOf(const GraphicsState& state, const CRect& box, const MarkPainter& paint,
                               int cell) {
    const CPoint origin = state.map.ToDevice(CPoint(0, 0));
    CRect units = state.map.ToDevice(box) - origin;
    units.NormalizeRect();
    const int left = Cells(units.left, cell) - 2, top = Cells(units.top, cell) - 2;
    const int width = Cells(units.right, cell) + 3 - left, height = Cells(units.bottom, cell) + 3 - top;
    if (width > MarkMask::kMostCells || height > MarkMask::kMostCells) return std::nullopt;
    // A pixel for each device unit.
    ImageDevice picture(width * cell, height * cell, 96, 0, ImageDevice::Grid::PIXELS);
    picture.Clear(0, false);
    paint(picture, CPoint(0, 0) - origin - CSize(left * cell, top * cell), MarkClip::NONE);
    MarkMask mask{.left = left, .top = top, .ink = {}, .solid = {}};
    for (int row = 0; row < height; ++row) {
        std::uint64_t ink = 0, solid = 0;
        for (int column = 0; column < width; ++column) {
            bool any = false, all = true;
            for (int y = row * cell; y < (row + 1) * cell; ++y) {
                for (int x = column * cell; x < (column + 1) * cell; ++x) {
                    const std::uint32_t pixel = picture.Pixels()[std::ptrdiff_t{y} * width * cell + x];
                    any = any || pixel != 0;
                    all = all && pixel >= 0xFF000000u;
                }
            }
            ink |= std::uint64_t{any} << column;
            solid |= std::uint64_t{all} << column;
        }
        mask.ink.push_back(ink);
        mask.solid.push_back(solid);
    }
    mask.ink = Grown(mask.ink);
    return mask;
}

}  // namespace

std::vector<CPoint> SeenMarks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
                              const MarkPainter& paint, double unitsPerPixel) {
    const int cell = std::max(1, static_cast<int>(std::lround(unitsPerPixel / 4)));
    std::vector<CPoint> cells;
    cells.reserve(places.size());
    CRect extent(INT_MAX, INT_MAX, INT_MIN, INT_MIN);
    for (const CPoint& place : places) {
        const CPoint at = state.map.ToDevice(place);
        cells.emplace_back(Cells(Add(at.x, cell / 2), cell), Cells(Add(at.y, cell / 2), cell));
        const CPoint& last = cells.back();
        extent = CRect(std::min(extent.left, last.x), std::min(extent.top, last.y),
                       std::max(extent.right, last.x), std::max(extent.bottom, last.y));
    }
    const std::int64_t width = std::int64_t{extent.right} - extent.left + 1,
                       height = std::int64_t{extent.bottom} - extent.top + 1;
    std::vector<CPoint> seen;
    if (places.empty() || width > kMostCells / std::max<std::int64_t>(height, 1)) {
        for (const CPoint& place : places) seen.push_back(state.map.ToDevice(place));
        return seen;
    }
    MarkCover taken(static_cast<int>(width), static_cast<int>(height));
    const MarkMask place{.left = 0, .top = 0, .ink = {1}, .solid = {1}};
    // Marks reach beyond their places.
    constexpr int kReach = MarkMask::kMostCells;
    std::optional<MarkCover> cover;
    const std::optional<MarkMask> mask = MaskOf(state, box, paint, cell);
    if (mask) cover.emplace(static_cast<int>(width) + 2 * kReach, static_cast<int>(height) + 2 * kReach);
    for (auto at = cells.rbegin(); at != cells.rend(); ++at) {
        const int x = at->x - extent.left, y = at->y - extent.top;
        if (!taken.Shows(place, x, y)) continue;
        if (cover && !cover->Shows(*mask, x + kReach, y + kReach)) continue;
        seen.emplace_back(at->x * cell, at->y * cell);
    }
    std::reverse(seen.begin(), seen.end());
    return seen;
}

std::vector<CPoint> AllMarks(const GraphicsState& state, std::span<const CPoint> places) {
    std::vector<CPoint> all;
    all.reserve(places.size());
    for (const CPoint& place : places) all.push_back(state.map.ToDevice(place));
    return all;
}

}  // namespace zel::qt
