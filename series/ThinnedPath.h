// The outline of a series, as many corners as can be seen.
#pragma once

#include "series/DeviceColumns.h"
#include "series/FrameClip.h"

#include <zel/SeriesPoints.h>

#include <cstddef>
#include <vector>

namespace zel {

// Gathers the corners of a path along the points of a series. With columns, points that follow each other in
// one column of the device count as the first, the lowest, the highest and the last, which look the same;
// without, each is a corner.
class ThinnedPath {
  public:
    enum class Gaps { JOIN, BREAK };

    explicit ThinnedPath(DeviceColumns* columns, Gaps gaps = Gaps::JOIN) : columns_(columns), gaps_(gaps) {}

    void Add(const SeriesStretch& stretch);
    // After the last stretch.
    void Finish();

    bool HasPoints() const { return any_; }
    const WorldPoint& First() const { return begin_; }
    const WorldPoint& Last() const { return last_; }

    // The corners, as many of both.
    std::vector<double> x;
    std::vector<double> y;
    // Where runs without a gap begin, after Finish with BREAK.
    std::vector<std::size_t> runs;

  private:
    void TakeSorted(const double* xs, const double* ys, std::size_t n);
    void Take(const WorldPoint& p);
    void Take(const WorldPoint& first, const WorldPoint& last, double low, double high);
    void EndColumn();
    void EndRun();
    void Corner(const WorldPoint& p) {
        x.push_back(p.x);
        y.push_back(p.y);
    }

    DeviceColumns* columns_;
    Gaps gaps_;
    bool any_ = false;
    bool inRun_ = false;
    WorldPoint begin_{};
    // The points of the present column.
    bool open_ = false;
    WorldPoint first_{}, last_{};
    double low_ = 0, high_ = 0;
};

}  // namespace zel
