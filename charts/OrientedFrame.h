// The frame of a layer along its positions.
#pragma once

#include <zel/Zel2Layer.h>

namespace zel {

// Bars and their kin stand at positions along one axis and reach to values along the other: upright ones have
// positions on x, horizontal ones on y. What they draw is said in positions and values.
//
// "World" coordinates are those of the frame: values that went through the forward functions of the scales.
class OrientedFrame {
  public:
    OrientedFrame(const LayerFrame& frame, bool horizontal) : frame_(frame), horizontal_(horizontal) {}

    bool IsHorizontal() const { return horizontal_; }
    const WorldFrame& World() const { return frame_.world; }
    const Scale& Positions() const { return horizontal_ ? frame_.y : frame_.x; }
    const Scale& Values() const { return horizontal_ ? frame_.x : frame_.y; }
    // The limits of the plot area, in world coordinates.
    double FirstPosition() const { return horizontal_ ? frame_.world.ymin : frame_.world.xmin; }
    double LastPosition() const { return horizontal_ ? frame_.world.ymax : frame_.world.xmax; }
    double LowValue() const { return horizontal_ ? frame_.world.xmin : frame_.world.ymin; }
    double HighValue() const { return horizontal_ ? frame_.world.xmax : frame_.world.ymax; }
    // A value in world coordinates, brought within the limits; one without a place on the scale is at the end
    // that it lies towards.
    double ValueWithin(double value) const;

    // World coordinates to logical units.
    CPoint ToLogical(double position, double value) const {
        return horizontal_ ? frame_.world.ToLogical(value, position)
                           : frame_.world.ToLogical(position, value);
    }
    // Of a logical or device point.
    LONG AlongPositions(const POINT& p) const { return horizontal_ ? p.y : p.x; }
    LONG AlongValues(const POINT& p) const { return horizontal_ ? p.x : p.y; }
    CPoint Point(LONG alongPositions, LONG alongValues) const {
        return horizontal_ ? CPoint(alongValues, alongPositions) : CPoint(alongPositions, alongValues);
    }

  private:
    const LayerFrame& frame_;
    bool horizontal_;
};

}  // namespace zel
