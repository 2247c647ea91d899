// Whether a place of the surface is on a data series.
#pragma once

#include <zel/SeriesPoints.h>
#include <zel/WorldFrame.h>
#include <zel/platform/Geometry.h>

namespace zel {

// Looks for a line between the points, or a symbol at one, near a place. Stretches are tested in their order.
class SeriesHit {
  public:
    // `at` and the frame's corners in device units. `symbols` is half the side of a symbol, -1 for none;
    // `reach` how far beside line or symbol the place may be.
    SeriesHit(const WorldFrame& frame, const CSize& at, bool line, int symbols, int reach)
        : frame_(frame), at_(at), line_(line), symbols_(symbols), reach_(reach) {}

    bool Test(const SeriesStretch& stretch);

  private:
    struct Place {
        double x, y;
    };
    // Counted from `at_`, in device units.
    Place FromHere(double x, double y) const;
    bool TestPoint(double x, double y);

    const WorldFrame& frame_;
    CSize at_;
    bool line_;
    int symbols_;
    int reach_;
    Place last_{};
    bool joined_ = false;  // whether a line leads from the last point
};

}  // namespace zel
