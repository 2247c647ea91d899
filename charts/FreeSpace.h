// Room for labels.
#pragma once

#include <zel/platform/Geometry.h>

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace zel {

// Tells whether a box still has room among those that were placed before: labels that never overlap. The time
// that a box takes does not depend on how many there are.
class FreeSpace {
  public:
    // Boxes must lie within `bounds`; about as large as `cell`, which is more than nothing.
    FreeSpace(const CRect& bounds, const CSize& cell);

    // Takes the place of a box, ordered, when it lies within the bounds and overlaps none before it.
    bool Take(const CRect& box);
    // The same without asking: what cannot be moved.
    void Block(const CRect& box);

  private:
    template <class Each>
    void ForCells(const CRect& box, Each each) const;
    bool IsFree(const CRect& box) const;

    CRect bounds_;
    CSize cell_;
    std::unordered_map<std::int64_t, std::vector<CRect>> taken_;  // by cell
};

}  // namespace zel
