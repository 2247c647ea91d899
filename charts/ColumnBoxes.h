// Boxes along an axis, as many as can be seen.
#pragma once

#include "charts/OrientedFrame.h"

#include <zel/platform/CoordinateMap.h>

#include <limits>
#include <vector>

class CDC;

namespace zel {

// The columns of the device along the positions of a frame; rows, where the layer is horizontal.
class ColumnGrid {
  public:
    ColumnGrid(const CDC& dc, const OrientedFrame& frame);

    // Without columns every box counts: the device writes things down.
    bool HasColumns() const { return width_ > 0; }
    std::size_t Count() const { return count_; }
    // The column that a logical point lies in; may be outside of 0 to Count() - 1.
    LONG ColumnOf(const CPoint& logical) const;
    CPoint ToDevice(const CPoint& logical) const { return map_.ToDevice(logical); }
    // From the beginning of one column to that of another, between two device places along the values.
    CRect ToLogical(LONG firstColumn, LONG endColumn, LONG from, LONG to) const;

  private:
    const OrientedFrame& frame_;
    CoordinateMap map_;
    int width_;
    LONG first_ = 0;
    std::size_t count_ = 0;
};

// Gathers boxes with sides along the axes: bars, boxes of box plots, bodies of candles. Each edge is rounded
// by itself, so neighbours with an edge in common meet. Boxes no wider than a column of the device are
// gathered column by column and drawn as what each column covers, from the lowest to the highest: many cost
// no more than the picture has columns.
class ColumnBoxes {
  public:
    ColumnBoxes(const CDC& dc, const OrientedFrame& frame);

    // From a position to a position and from a value to a value, in world coordinates and any order. What
    // lies outside the plot area is cut off.
    void Add(double position1, double position2, double value1, double value2);
    // The boxes, in logical units.
    std::vector<CRect> Finish();

  private:
    struct Span {
        LONG low = std::numeric_limits<LONG>::max(), high = std::numeric_limits<LONG>::min();
        bool operator==(const Span&) const = default;
        bool IsEmpty() const { return low > high; }
    };
    struct Wide {
        LONG begin, end;  // columns
        Span span;
    };
    bool IsCovered(LONG column) const;
    void Cover(LONG column, const Span& span);

    OrientedFrame frame_;
    ColumnGrid grid_;
    std::vector<CRect> boxes_;
    std::vector<Wide> wide_;
    std::vector<Span> columns_;  // device units along the values
};

}  // namespace zel
