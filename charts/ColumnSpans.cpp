#include "charts/ColumnSpans.h"

#include <algorithm>

namespace zel {

void ColumnSpans::Add(double position, double low, double high) {
    if (!(position >= frame_.FirstPosition() && position <= frame_.LastPosition() &&
          high >= frame_.LowValue() && low <= frame_.HighValue()))
        return;
    const CPoint a = frame_.ToLogical(position, std::max(low, frame_.LowValue())),
                 b = frame_.ToLogical(position, std::min(high, frame_.HighValue()));
    const Span span{frame_.AlongPositions(a), frame_.AlongValues(a), frame_.AlongValues(b),
                    low >= frame_.LowValue(), high <= frame_.HighValue()};
    if (!grid_.HasColumns()) {
        spans_.push_back(span);
        return;
    }
    if (ofColumn_.empty()) ofColumn_.assign(grid_.Count(), -1);
    const LONG column = grid_.ColumnOf(a);
    if (column < 0 || static_cast<std::size_t>(column) >= ofColumn_.size()) return;
    int& known = ofColumn_[static_cast<std::size_t>(column)];
    if (known < 0) {
        known = static_cast<int>(spans_.size());
        spans_.push_back(span);
        return;
    }
    // Logical coordinates may run the other way than values.
    const bool ascends = frame_.AlongValues(frame_.ToLogical(0, frame_.HighValue())) >=
                         frame_.AlongValues(frame_.ToLogical(0, frame_.LowValue()));
    Span& whole = spans_[static_cast<std::size_t>(known)];
    const auto below = [ascends](LONG x, LONG y) { return ascends ? x < y : x > y; };
    if (below(span.low, whole.low)) {
        whole.low = span.low;
        whole.lowEnds = span.lowEnds;
    }
    if (below(whole.high, span.high)) {
        whole.high = span.high;
        whole.highEnds = span.highEnds;
    }
}

std::vector<ColumnSpans::Span> ColumnSpans::Finish() {
    ofColumn_.clear();
    return std::move(spans_);
}

}  // namespace zel
