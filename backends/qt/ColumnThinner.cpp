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

void ColumnThinner::End(std::vector<CPoint>& steps) {
    steps.clear();
    if (!open_) return;
    FinishRun();
    if (!slanted_) {
        for (const Run& run : held_) {
            steps.push_back(run.first);
            if (run.bar) {
                steps.emplace_back(run.first.x, run.low);
                steps.emplace_back(run.first.x, run.high);
                steps.emplace_back(run.first.x, run.last.y);
            }
            steps.push_back(run.last);
        }
    }
    held_.clear();
    open_ = slanted_ = any_ = false;
}

void ColumnThinner::FinishRun() {
    run_.bar =
        run_.low < std::min(run_.first.y, run_.last.y) || run_.high > std::max(run_.first.y, run_.last.y);
    if (slanted_) {
        Draw(run_);
        return;
    }
    slanted_ = !LiesAlongAxes(run_);
    held_.push_back(run_);
    if (slanted_) DrawHeld();
}

bool ColumnThinner::LiesAlongAxes(const Run& run) const {
    const auto along = [](const CPoint& a, const CPoint& b) { return a.x == b.x || a.y == b.y; };
    return (run.bar || along(run.first, run.last)) && (held_.empty() || along(held_.back().last, run.first));
}

void ColumnThinner::DrawHeld() {
    for (const Run& run : held_) Draw(run);
    held_.clear();
}

void ColumnThinner::Draw(const Run& run) {
    if (any_ && !Touch(previous_, run)) Segment(previous_.last, run.first);
    if (run.bar) {
        stroker_.AddBar(run.column, CentreOf(run.low), CentreOf(run.high), half_);
    } else if (!(run.first == run.last)) {
        Segment(run.first, run.last);
    }
    previous_ = run;
    any_ = true;
}

bool ColumnThinner::Touch(const Run& a, const Run& b) {
    return a.bar && b.bar && std::abs(a.column - b.column) == 1 && a.low <= b.high && b.low <= a.high;
}

void ColumnThinner::Segment(const CPoint& a, const CPoint& b) {
    stroker_.Add({CentreOf(a.x), CentreOf(a.y)}, {CentreOf(b.x), CentreOf(b.y)}, half_);
}

}  // namespace zel::qt
