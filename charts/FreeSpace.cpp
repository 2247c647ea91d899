#include "charts/FreeSpace.h"

#include <algorithm>

namespace zel {

FreeSpace::FreeSpace(const CRect& bounds, const CSize& cell)
    : bounds_(bounds), cell_(std::max<LONG>(cell.cx, 1), std::max<LONG>(cell.cy, 1)) {
    bounds_.NormalizeRect();
}

template <class Each>
void FreeSpace::ForCells(const CRect& box, Each each) const {
    const auto cell = [](LONG at, LONG from, LONG size) {
        return std::int64_t{at} - from < 0 ? -1 : (at - from) / size;
    };
    const std::int64_t left = cell(box.left, bounds_.left, cell_.cx),
                       right = cell(box.right, bounds_.left, cell_.cx);
    const std::int64_t top = cell(box.top, bounds_.top, cell_.cy),
                       bottom = cell(box.bottom, bounds_.top, cell_.cy);
    for (std::int64_t y = top; y <= bottom; ++y)
        for (std::int64_t x = left; x <= right; ++x) each((y << 32) + x);
}

bool FreeSpace::IsFree(const CRect& box) const {
    bool free = true;
    ForCells(box, [&](std::int64_t key) {
        const auto at = taken_.find(key);
        if (!free || at == taken_.end()) return;
        for (const CRect& other : at->second) {
            CRect common;
            free = free && !common.IntersectRect(box, other);
        }
    });
    return free;
}

bool FreeSpace::Take(const CRect& box) {
    if (box.left < bounds_.left || box.right > bounds_.right || box.top < bounds_.top ||
        box.bottom > bounds_.bottom || !IsFree(box))
        return false;
    Block(box);
    return true;
}

void FreeSpace::Block(const CRect& box) {
    CRect seen;
    if (!seen.IntersectRect(box, bounds_)) return;
    ForCells(seen, [&](std::int64_t key) { taken_[key].push_back(box); });
}

}  // namespace zel
