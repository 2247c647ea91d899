#include "tools/DashWalker.h"

#include <algorithm>
#include <cmath>

namespace {

// Lines longer than this are walked only where they can be seen.
constexpr int kLongLine = 1 << 17;

struct Span {
    double begin = 0;
    double end = 1;
};

// The part of the line from `a` to `b` that lies within `box`, as fractions of the line; empty (begin >= end) when
// there is none.
Span VisibleSpan(const CPoint& a, const CPoint& b, const CRect& box) {
    Span span;
    const double start[2] = {static_cast<double>(a.x), static_cast<double>(a.y)};
    const double delta[2] = {static_cast<double>(b.x) - a.x, static_cast<double>(b.y) - a.y};
    const double low[2] = {static_cast<double>(box.left), static_cast<double>(box.top)};
    const double high[2] = {static_cast<double>(box.right), static_cast<double>(box.bottom)};
    for (int axis = 0; axis < 2; ++axis) {
        if (delta[axis] == 0) {
            if (start[axis] < low[axis] || start[axis] > high[axis]) return {0, 0};
            continue;
        }
        double t0 = (low[axis] - start[axis]) / delta[axis];
        double t1 = (high[axis] - start[axis]) / delta[axis];
        if (t0 > t1) std::swap(t0, t1);
        span.begin = std::max(span.begin, t0);
        span.end = std::min(span.end, t1);
    }
    return span.begin < span.end ? span : Span{0, 0};
}

CPoint Along(const CPoint& a, const CPoint& b, double t) {
    return {zel::Truncate(std::round(a.x + t * (static_cast<double>(b.x) - a.x))),
            zel::Truncate(std::round(a.y + t * (static_cast<double>(b.y) - a.y)))};
}

int LengthBetween(const CPoint& a, const CPoint& b) {
    const CSize delta = b - a;
    return DrawPen::Length(delta.cx, delta.cy);
}

}  // namespace

DrawPen::DashWalker::DashWalker(DrawPen& pen, CDC& dc) : pen_(pen), dc_(dc) {
    const int inch = pen.LogicalInch();
    int unit = MulDiv(inch, pen.OutputScale(), 1000);
    if (unit == 0 && inch > 0) unit = 1;
    for (int i = 0; i < kPatternSize; ++i) {
        const int length = pen.pattern_[static_cast<std::size_t>(i)];
        if (length < 1) break;
        Element& element = elements_[static_cast<std::size_t>(elementCount_++)];
        element.atStart = MulDiv(zel::Add(length, pen.width_), unit, 254);
        element.inLoop = i % 2 ? MulDiv(zel::Add(length, zel::Saturate(2LL * pen.width_)), unit, 254)
                               : MulDiv(length, unit, 254) - 1;
        cycle_ += element.inLoop;
    }
    if (pen.dashIndex_ >= elementCount_) pen.dashIndex_ = 0;
    position_ = dc.GetCurrentPosition();
}

void DrawPen::DashWalker::FlushRun() {
    if (runLength_ > 0) dc_.PolylineTo(run_.data(), static_cast<int>(runLength_));
    runLength_ = 0;
}

void DrawPen::DashWalker::LineTo(const CPoint& to) {
    if (elementCount_ == 0) {
        MoveTo(to);
        return;
    }
    if (to == pen_.current_) return;
    if (!(position_ == pen_.current_)) Jump(pen_.current_);
    const int length = LengthBetween(pen_.current_, to);
    if (length <= Remaining()) {
        Go(to);
        pen_.dashPosition_ += length;
        pen_.current_ = to;
    } else if (!Advances()) {
        // A pattern that vanishes at this zoom would walk back and forth for ever.
        Draw(to);
        pen_.current_ = to;
    } else if (length > kLongLine) {
        WalkVisiblePart(to);
    } else {
        WalkDashes(to, length);
    }
}

void DrawPen::DashWalker::Go(const CPoint& to) {
    if (IsDash()) {
        Draw(to);
    } else {
        Jump(to);
    }
}

void DrawPen::DashWalker::NextElement() {
    pen_.dashIndex_ = pen_.dashIndex_ + 1 < elementCount_ ? pen_.dashIndex_ + 1 : 0;
}

void DrawPen::DashWalker::WalkDashes(const CPoint& to, int length) {
    CPoint at = pen_.current_;
    int remaining = Remaining();
    int lengthAtCycleStart = length + 1;
    while (length > remaining) {
        const CSize delta = to - at;
        at = {zel::Add(at.x, MulDiv(delta.cx, remaining, length)), zel::Add(at.y, MulDiv(delta.cy, remaining, length))};
        Go(at);
        pen_.current_ = at;
        pen_.dashPosition_ = 0;
        NextElement();
        remaining = elements_[static_cast<std::size_t>(pen_.dashIndex_)].inLoop;
        length = LengthBetween(at, to);
        if (length <= 0) return;
        if (pen_.dashIndex_ == 0) {
            // Rounding can undo the small advance of a cycle: the rest is drawn solid then.
            if (length >= lengthAtCycleStart) {
                Draw(to);
                pen_.current_ = to;
                return;
            }
            lengthAtCycleStart = length;
        }
    }
    Go(to);
    pen_.dashPosition_ += length;
    pen_.current_ = to;
}

void DrawPen::DashWalker::SkipAlong(std::int64_t distance) {
    std::int64_t remaining = std::max(Remaining(), 0);
    while (distance > remaining) {
        distance -= remaining;
        NextElement();
        pen_.dashPosition_ = 0;
        if (pen_.dashIndex_ == 0) distance %= cycle_;
        remaining = std::max(elements_[static_cast<std::size_t>(pen_.dashIndex_)].inLoop, 0);
    }
    pen_.dashPosition_ += static_cast<int>(distance);
}

// A line far longer than the surface has millions of dashes that nobody sees. They are counted, not drawn.
void DrawPen::DashWalker::WalkVisiblePart(const CPoint& to) {
    CRect box;
    dc_.GetClipBox(&box);
    box.NormalizeRect();
    const int margin = zel::Saturate(cycle_ + pen_.LogicalInch());
    box.InflateRect(margin, margin);
    const CPoint from = pen_.current_;
    const Span seen = VisibleSpan(from, to, box);
    if (seen.begin >= seen.end) {
        SkipAlong(LengthBetween(from, to));
        Jump(to);
        pen_.current_ = to;
        return;
    }
    const CPoint entry = seen.begin > 0 ? Along(from, to, seen.begin) : from;
    const CPoint exit = seen.end < 1 ? Along(from, to, seen.end) : to;
    if (!(entry == from)) {
        SkipAlong(LengthBetween(from, entry));
        Jump(entry);
        pen_.current_ = entry;
    }
    if (!(entry == exit)) WalkDashes(exit, LengthBetween(entry, exit));
    if (!(exit == to)) {
        SkipAlong(LengthBetween(exit, to));
        Jump(to);
        pen_.current_ = to;
    }
}
