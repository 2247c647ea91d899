#include "backends/qt/ColumnThinner.h"

#include <algorithm>
#include <cstdlib>

namespace zel::qt {

void ColumnThinner::Add(std::span<const CPoint> points, double halfWidth) {
    half_ = halfWidth;
    std::size_t i = 0;
    if (!open_ && !points.empty()) {
        const CPoint& p = points[i++];
        run_ = {p, p, p.y, p.y, p.x >> shift_, false};
        open_ = true;
    }
    const int shift = shift_;
    while (i < points.size()) {
        const LONG column = run_.column;
        LONG low = run_.low, high = run_.high;
        const std::size_t begin = i;
        for (; i < points.size() && points[i].x >> shift == column; ++i) {
            low = std::min(low, points[i].y);
            high = std::max(high, points[i].y);
        }
        if (i > begin) run_.last = points[i - 1];
        run_.low = low;
        run_.high = high;
        if (i == points.size()) break;
        FinishRun();
        const CPoint& p = points[i++];
        run_ = {p, p, p.y, p.y, p.x >> shift, false};
    }
}

void ColumnThinner::End() {
    if (open_) FinishRun();
    open_ = any_ = false;
}

void ColumnThinner::FinishRun() {
    run_.bar =
        run_.low < std::min(run_.first.y, run_.last.y) || run_.high > std::max(run_.first.y, run_.last.y);
    if (any_ && !Touch(previous_, run_)) Segment(previous_.last, run_.first);
    if (run_.bar) {
        stroker_.AddBar(run_.column, CentreOf(run_.low), CentreOf(run_.high), half_);
    } else if (!(run_.first == run_.last)) {
        Segment(run_.first, run_.last);
    }
    previous_ = run_;
    any_ = true;
}

bool ColumnThinner::Touch(const Run& a, const Run& b) {
    return a.bar && b.bar && std::abs(a.column - b.column) == 1 && a.low <= b.high && b.low <= a.high;
}

void ColumnThinner::Segment(const CPoint& a, const CPoint& b) {
    stroker_.Add({CentreOf(a.x), CentreOf(a.y)}, {CentreOf(b.x), CentreOf(b.y)}, half_);
}

}  // namespace zel::qt
