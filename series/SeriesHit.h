// Whether a place of the surface is on a data series.
#pragma once

#include "series/FrameClip.h"

#include <zel/SeriesPoints.h>
#include <zel/WorldFrame.h>
#include <zel/platform/Geometry.h>

#include <functional>

namespace zel {

// Looks for a line between the points, or a symbol at one, near a place: for what can be seen of them within
// the frame. Stretches are tested in their order, all of them one after another.
class SeriesHit {
  public:
    // `at` and the frame's corners in device units; `reach` how far beside line or symbol the place may be.
    SeriesHit(const WorldFrame& frame, const CSize& at, int reach) : frame_(frame), at_(at), reach_(reach) {}

    // Half the width of the line, -1 for none.
    void SetLine(int half) { line_ = half; }
    // Half the side of the symbol at each point, -1 for none, by the point's number; and of the largest.
    void SetSymbols(int largest, std::function<int(std::size_t)> at) {
        symbols_ = largest;
        symbolAt_ = std::move(at);
    }

    bool Test(const SeriesStretch& stretch);
    // One line, which joins no stretch.
    bool TestLine(const WorldPoint& from, const WorldPoint& to) const { return IsOnLine(from, to); }

  private:
    struct Place {
        double x, y;
    };
    // Counted from `at_`, in device units.
    Place FromHere(double x, double y) const;
    bool IsOnLine(WorldPoint from, WorldPoint to) const;
    bool TestPoint(std::size_t number, double x, double y);

    const WorldFrame& frame_;
    CSize at_;
    int reach_;
    int line_ = -1;
    int symbols_ = -1;
    std::function<int(std::size_t)> symbolAt_;
    std::size_t before_ = 0;  // points in earlier stretches
    WorldPoint last_{};
    bool joined_ = false;  // whether a line leads from the last point
};

}  // namespace zel
