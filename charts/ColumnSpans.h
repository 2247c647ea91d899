// Spans along an axis, as many as can be seen.
#pragma once

#include "charts/ColumnBoxes.h"

#include <vector>

namespace zel {

// Gathers lines along the values of a frame: stems of error bars, whiskers. Those whose positions lie in one
// column of the device are one, from the lowest to the highest.
class ColumnSpans {
  public:
    struct Span {
        LONG at = 0;                             // logical units along the positions
        LONG low = 0, high = 0;                  // and along the values
        bool lowEnds = false, highEnds = false;  // whether the ends are within the plot area
    };
    ColumnSpans(const CDC& dc, const OrientedFrame& frame) : frame_(frame), grid_(dc, frame_) {}

    // World coordinates, `low` not above `high`. What lies outside the plot area is cut off.
    void Add(double position, double low, double high);
    std::vector<Span> Finish();

  private:
    OrientedFrame frame_;
    ColumnGrid grid_;
    std::vector<Span> spans_;
    std::vector<int> ofColumn_;  // which of the spans lies in a column; -1 for none
};

}  // namespace zel
