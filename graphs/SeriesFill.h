// The outlines of filled areas under data series.
#pragma once

#include "series/ThinnedPath.h"

#include <zel/WorldFrame.h>

#include <span>
#include <vector>

namespace zel {

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
    // `columns` as of a ThinnedPath.
    FillOutline(const WorldFrame& frame, unsigned int start, unsigned int end, DeviceColumns* columns)
        : frame_(frame), start_(start), end_(end), path_(columns) {}

    void Add(const SeriesStretch& stretch) { path_.Add(stretch); }
    // After the last stretch.
    void Close();

    // As many of both; none when there was no finite point.
    std::vector<double> x;
    std::vector<double> y;

  private:
    void Corner(const WorldPoint& p) {
        x.push_back(p.x);
        y.push_back(p.y);
    }

    const WorldFrame& frame_;
    unsigned int start_;
    unsigned int end_;
    ThinnedPath path_;
};

}  // namespace zel
