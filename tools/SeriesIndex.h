// What stretches of a long series cover.
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

namespace zel {

// The box around consecutive points. Coordinates that are NaN are left out of it and noted as gaps.
struct SeriesSpan {
    double xmin = std::numeric_limits<double>::infinity();
    double xmax = -std::numeric_limits<double>::infinity();
    double ymin = std::numeric_limits<double>::infinity();
    double ymax = -std::numeric_limits<double>::infinity();
    bool gaps = false;

    void Include(const SeriesSpan& other) {
        xmin = std::min(xmin, other.xmin);
        xmax = std::max(xmax, other.xmax);
        ymin = std::min(ymin, other.ymin);
        ymax = std::max(ymax, other.ymax);
        gaps = gaps || other.gaps;
    }
};

SeriesSpan SpanOf(const double* x, const double* y, std::size_t n);

// A pyramid of spans over blocks of points: a redraw looks at a few thousand of them, however many points
// there are. It takes 2.3 % of the memory of the points.
//
// Only full blocks have a span; Extend adds those of points that were appended. Whoever changes points that
// were there must begin with a new index.
class SeriesIndex {
  public:
    static constexpr std::size_t kBlock = 128;  // points
    static constexpr std::size_t kFan = 8;      // spans under a span of the level above
    // Shorter series are drawn as fast without an index.
    static constexpr std::size_t kLeastPoints = 16384;

    // Takes in `n` points of which the first are those that it knows.
    void Extend(const double* x, const double* y, std::size_t n);

    std::size_t Levels() const { return levels_.size(); }
    const std::vector<SeriesSpan>& Level(std::size_t level) const { return levels_[level]; }
    static std::size_t PointsOf(std::size_t level) {
        std::size_t points = kBlock;
        for (; level > 0; --level) points *= kFan;
        return points;
    }

  private:
    std::vector<std::vector<SeriesSpan>> levels_;  // the finest first
};

}  // namespace zel
