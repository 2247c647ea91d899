// Long lines as what can be seen of them.
#pragma once

#include "backends/qt/Stroker.h"

#include <span>

namespace zel::qt {

// Hands a line on to a stroker. Consecutive points in one column of pixels are a run. A run that goes one way
// is a segment, so that dense smooth curves keep their slant; one that turns back is an upright bar from its
// lowest to its highest point. Runs are joined by segments, but for bars side by side that touch already.
// Only a run's first, last, lowest and highest points matter: leaving out the others changes no pixel.
class ColumnThinner {
  public:
    // A pixel is 2^shift units wide.
    ColumnThinner(Stroker& stroker, int shift) : stroker_(stroker), shift_(shift) {}

    // Adds to the line; a line goes on as long as it is not ended.
    void Add(std::span<const CPoint> points, double halfWidth);
    void End();

    // Whether a line that begins at `p` goes on from here: at the end of the line, or where a line that left
    // the drawing comes back, in the same column at the same height.
    bool GoesOnAt(const CPoint& p) const {
        return !open_ || (p.y == run_.last.y && p.x >> shift_ == run_.column);
    }

  private:
    struct Run {
        CPoint first, last;
        LONG low, high, column;
        bool bar;
    };

    void FinishRun();
    static bool Touch(const Run& a, const Run& b);
    double CentreOf(LONG unit) const { return (unit + 0.5) / (1 << shift_); }
    void Segment(const CPoint& a, const CPoint& b);

    Stroker& stroker_;
    int shift_;
    double half_ = 0;
    bool open_ = false;
    Run run_{};
    bool any_ = false;
    Run previous_{};
};

}  // namespace zel::qt
