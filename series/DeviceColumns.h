// The columns of a device in which the points of a graph fall.
#pragma once

#include <zel/WorldFrame.h>
#include <zel/platform/DC.h>

#include <limits>

namespace zel {

// Tells whether places are in the column of the last one that was asked for. Most are, and most of those lie
// between two that are known to be: the place on the device is computed for few.
class DeviceColumns {
  public:
    // Columns are `width` device units wide; more than 0.
    DeviceColumns(const CDC& dc, const WorldFrame& frame, int width)
        : map_(StateOf(dc.GetSafeHdc()).map), frame_(frame), width_(width) {}

    // The column of the device that x of the graph falls in.
    LONG ColumnOf(double x) const {
        const LONG at = map_.ToDevice(frame_.ToLogical(x, frame_.ymin)).x;
        return at >= 0 ? at / width_ : (at + 1) / width_ - 1;
    }
    // Makes the column of x the one that Contains is about.
    void Enter(double x) {
        column_ = ColumnOf(x);
        insideLow_ = insideHigh_ = x;
        outsideLow_ = -kInfinity;
        outsideHigh_ = kInfinity;
    }
    bool Contains(double x) {
        if (x >= insideLow_ && x <= insideHigh_) return true;
        if (x <= outsideLow_ || x >= outsideHigh_) return false;
        const bool inside = ColumnOf(x) == column_;
        if (x > insideHigh_) {
            (inside ? insideHigh_ : outsideHigh_) = x;
        } else {
            (inside ? insideLow_ : outsideLow_) = x;
        }
        return inside;
    }

  private:
    static constexpr double kInfinity = std::numeric_limits<double>::infinity();

    CoordinateMap map_;
    const WorldFrame& frame_;
    int width_;
    LONG column_ = 0;
    // A column is an interval of the graph's x: it reaches at least from insideLow_ to insideHigh_, and does
    // not reach the outside ones.
    double insideLow_ = 1, insideHigh_ = 0;
    double outsideLow_ = -kInfinity, outsideHigh_ = kInfinity;
};

}  // namespace zel
