// The pixels on which a layer makes a picture.
#pragma once

#include <zel/Zel2Layer.h>

#include <cstdint>
#include <vector>

class CDC;

namespace zel {

// The pixels of a rectangle of the plot area that can be seen: those of the device, or on paper of 300 to the
// inch. A picture for it is made row by row, the topmost first, and drawn in one piece.
class PixelGrid {
  public:
    // From one corner to the other, in world coordinates of the frame; cut by its limits and by the clip.
    PixelGrid(CDC& dc, const WorldFrame& frame, double x1, double y1, double x2, double y2);

    bool IsEmpty() const { return width_ < 1 || height_ < 1; }
    int Width() const { return width_; }
    int Height() const { return height_; }
    // A place along an axis in pixels from the first column, or from the topmost row; may lie outside.
    double ColumnOf(double x) const { return (x - fromX_) * perX_; }
    double RowOf(double y) const { return (y - fromY_) * perY_; }
    // The world coordinate of the middle of a column or row.
    double XOf(int column) const { return fromX_ + (column + 0.5) / perX_; }
    double YOf(int row) const { return fromY_ + (row + 0.5) / perY_; }
    // Draws Width() times Height() colours (PictureView).
    void Draw(const std::vector<std::uint32_t>& colors) const;

  private:
    CDC& dc_;
    CRect place_;  // logical
    int width_ = 0, height_ = 0;
    double fromX_ = 0, fromY_ = 0, perX_ = 1, perY_ = 1;
};

}  // namespace zel
