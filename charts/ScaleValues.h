// Columns as axes count them.
#pragma once

#include <zel/Column.h>
#include <zel/Scale.h>

#include <string>
#include <vector>

namespace zel {

// The values of one column on the scale of an axis: times from the origin of the scale, texts as places among
// its names, numbers as they are. Texts are looked up again when the names have changed.
class ScaleValues {
  public:
    // Valid until the next call, and as long as the column's memory.
    const SeriesValues& On(const Column& column, const Scale& scale);
    // Whether the last call of On looked texts up: other numbers than before.
    bool HasChanged() const { return changed_; }
    // The column has other rows now.
    void Forget();

  private:
    void LookUp(const Column& column, const std::vector<std::string>& names);

    bool known_ = false, changed_ = false;
    std::vector<std::string> names_;
    std::vector<double> codes_;
    SeriesValues values_;
};

// Tells an axis what kind of data a column has.
class AxisRange;
void Describe(AxisRange& axis, const Column& column);

}  // namespace zel
