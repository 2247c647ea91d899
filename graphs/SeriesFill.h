// The outlines of filled areas under data series.
#pragma once

#include "series/DeviceColumns.h"

#include <zel/SeriesPoints.h>
#include <zel/WorldFrame.h>

#include <span>
#include <vector>

namespace zel {

struct WorldPoint {
    double x;
    double y;
};

// Whether a code names one of the eight extensions.
constexpr bool IsExtension(unsigned int code) {
    return code >= 1 && code <= 8;
}

// The point beside `p` at which a line or fill with an extension code begins or ends. Codes outside 1 to 8
// give `p`.
WorldPoint ExtensionPoint(unsigned int code, const WorldFrame& frame, const WorldPoint& p);

// The closed outline of the area under a series: the finite points between the extensions, and round the
// corners of the frame from the side where the end extension lies to that of the start one.
class FillOutline {
  public:
    // With `columns`, points that follow each other in one column of the device count as the first, the
    // lowest, the highest and the last, which look the same; without, each is a corner.
    FillOutline(const WorldFrame& frame, unsigned int start, unsigned int end, DeviceColumns* columns);

    void Add(const SeriesStretch& stretch);
    // After the last stretch.
    void Close();

    // As many of both; none when there was no finite point.
    std::vector<double> x;
    std::vector<double> y;

  private:
    void Take(const WorldPoint& p);
    void Take(const WorldPoint& first, const WorldPoint& last, double low, double high);
    void Begin(const WorldPoint& p);
    void EndRun();
    void Corner(const WorldPoint& p) {
        x.push_back(p.x);
        y.push_back(p.y);
    }

    const WorldFrame& frame_;
    unsigned int start_;
    unsigned int end_;
    DeviceColumns* columns_;
    bool any_ = false;
    // The points of the present column.
    bool open_ = false;
    WorldPoint first_{}, last_{};
    double low_ = 0, high_ = 0;
};

}  // namespace zel
