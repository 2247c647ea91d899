#include "tools/DashWalker.h"

#include <zel/platform/Warning.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <string>

namespace {

// Lines longer than this are walked only where they can be seen.
constexpr int kLongLine = 1 << 17;
constexpr std::int64_t kEndless = INT64_MAX / 2;
constexpr int kMostDashes = 100'000;  // that are seen of a long line

struct Span {
    double begin = 0;
    double end = 1;
};

// The part of the line from `a` to `b` that lies within `box`, as fractions of the line; empty (begin >= end)
// when there is none.
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

int LengthBetween(const CPoint& a, const CPoint& b) {
    const CSize delta = b - a;
    return DrawPen::Length(delta.cx, delta.cy);
}

}  // namespace

DrawPen::DashWalker::DashWalker(DrawPen& pen, CDC& dc)
    : pen_(pen),
      dc_(dc),
      current_(pen.current_),
      dashPosition_(pen.dashPosition_),
      dashIndex_(pen.dashIndex_) {
    const int inch = pen.LogicalInch();
    int unit = MulDiv(inch, pen.OutputScale(), 1000);
    if (unit == 0 && inch > 0) unit = 1;
    // A negative width would step back over millions of dashes.
    const int width = std::max(pen.width_, 0);
    for (int i = 0; i < kPatternSize; ++i) {
        const int length = pen.pattern_[static_cast<std::size_t>(i)];
        if (length < 1) break;
        Element& element = elements_[static_cast<std::size_t>(elementCount_++)];
        element.atStart = MulDiv(zel::Add(length, width), unit, 254);
        element.inLoop = i % 2 ? MulDiv(zel::Add(length, zel::Saturate(2LL * width)), unit, 254)
                               : MulDiv(length, unit, 254) - 1;
        cycle_ += element.inLoop;
        advance_ += std::max(element.inLoop, 0);
    }
    if (dashIndex_ >= elementCount_) dashIndex_ = 0;
    position_ = dc.GetCurrentPosition();
}

DrawPen::DashWalker::~DashWalker() {
    FlushRun();
    pen_.current_ = current_;
    pen_.dashPosition_ = dashPosition_;
    pen_.dashIndex_ = dashIndex_;
}

void DrawPen::DashWalker::FlushRun() {
    if (runLength_ > 0) dc_.PolylineTo(run_.data(), static_cast<int>(runLength_));
    runLength_ = 0;
}

void DrawPen::DashWalker::MoveTo(const CPoint& to) {
    if (!(to == position_)) Jump(to);
    current_ = to;
}

void DrawPen::DashWalker::LineTo(const CPoint& to) {
    if (elementCount_ == 0) {
        MoveTo(to);
        return;
    }
    if (to == current_) return;
    if (!(position_ == current_)) Jump(current_);
    if (solid_) {
        Draw(to);
        current_ = to;
        return;
    }
    const int length = LengthBetween(current_, to);
    if (length <= Remaining()) {
        Go(to);
        dashPosition_ += length;
        current_ = to;
    } else if (!Advances()) {
        // A pattern that vanishes at this zoom would walk back and forth for ever.
        Draw(to);
        current_ = to;
    } else if (length > kLongLine) {
        WalkVisiblePart(to);
    } else {
        WalkDashes(to, length);
    }
}

// Nearly every line of a long series is short and ends within the current dash: those need no more than their
// length.
void DrawPen::DashWalker::LinesTo(const int* x, const int* y, std::size_t n) {
    for (std::size_t i = 0; i < n;) {
        const std::int64_t left = solid_ && position_ == current_ ? kEndless : DashLeft();
        std::int64_t used = 0;
        std::int64_t cx = current_.x, cy = current_.y;
        std::size_t length = runLength_;
        for (; i < n; ++i) {
            const std::int64_t dx = x[i] - cx, dy = y[i] - cy;
            const std::int64_t distance = LengthOf(dx, dy);
            if (used + distance > left || length + 1 >= run_.size()) break;
            used += distance;
            cx = x[i];
            cy = y[i];
            // A point on the same unit is overwritten by the next one: no branch that cannot be foreseen.
            run_[length] = CPoint(x[i], y[i]);
            length += (dx | dy) != 0 ? 1 : 0;
        }
        runLength_ = length;
        if (used > 0) {
            current_ = position_ = CPoint(static_cast<int>(cx), static_cast<int>(cy));
            if (!solid_) dashPosition_ += static_cast<int>(used);
        }
        if (i < n) LineTo(CPoint(x[i], y[i])), ++i;
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
    dashIndex_ = dashIndex_ + 1 < elementCount_ ? dashIndex_ + 1 : 0;
}

void DrawPen::DashWalker::WalkDashes(const CPoint& to, int length) {
    CPoint at = current_;
    int remaining = Remaining();
    // Rounding can undo the small advance of a cycle for ever: then the pen comes to a place where a cycle
    // has begun before. One such place is kept, and changed at the cycles 1, 2, 4, 8 and so on.
    CPoint kept;
    std::uint64_t cycles = 0;
    while (length > remaining) {
        const CSize delta = to - at;
        at = {zel::Add(at.x, MulDiv(delta.cx, remaining, length)),
              zel::Add(at.y, MulDiv(delta.cy, remaining, length))};
        Go(at);
        current_ = at;
        dashPosition_ = 0;
        NextElement();
        remaining = elements_[static_cast<std::size_t>(dashIndex_)].inLoop;
        length = LengthBetween(at, to);
        if (length <= 0) return;
        if (dashIndex_ == 0) {
            if (cycles > 0 && at == kept) {
                Draw(to);
                current_ = to;
                return;
            }
            if (std::has_single_bit(++cycles)) kept = at;
        }
    }
    Go(to);
    dashPosition_ += length;
    current_ = to;
}

// A line far longer than the surface has millions of dashes that nobody sees. Where they end is reckoned from
// the beginning of the line, so that what is drawn does not depend on what is seen: repaints of parts join.
void DrawPen::DashWalker::WalkVisiblePart(const CPoint& to) {
    const CPoint from = current_;
    const double dx = static_cast<double>(to.x) - from.x, dy = static_cast<double>(to.y) - from.y;
    const std::int64_t length = LengthOf(std::int64_t{to.x} - from.x, std::int64_t{to.y} - from.y);
    const auto at = [&](std::int64_t place) {
        const double t = static_cast<double>(place) / static_cast<double>(length);
        return CPoint(zel::Truncate(std::round(from.x + t * dx)), zel::Truncate(std::round(from.y + t * dy)));
    };
    const auto draw = [&](std::int64_t begin, std::int64_t end) {
        const CPoint start = at(begin);
        if (!(position_ == start)) Jump(start);
        Draw(at(end));
    };
    const Span seen = VisibleSpan(from, to, SurfaceWithMargin());
    const auto first = static_cast<std::int64_t>(seen.begin * static_cast<double>(length));
    const auto last = seen.begin < seen.end
                          ? static_cast<std::int64_t>(seen.end * static_cast<double>(length))
                          : std::int64_t{-1};
    const bool tooMany = (last - first) / cycle_ * elementCount_ > kMostDashes;
    if (tooMany) {
        zel::Warn("A line of more than " + std::to_string(kMostDashes) + " dashes is drawn solid.");
        draw(first, last);
    }

    std::int64_t begin = 0, end = Remaining();
    bool whole = false;  // the element was entered by the walk
    const auto skipTo = [&](std::int64_t place) {
        // Where a dash has less than no length the pattern steps back: within a cycle no place lies farther
        // ahead than its longest way.
        const std::int64_t cycles = (place - end - advance_) / cycle_;
        if (cycles <= 0) return;
        end += cycles * cycle_;
        begin = end - elements_[static_cast<std::size_t>(dashIndex_)].inLoop;
        whole = true;
    };
    skipTo(first);
    while (end < length) {
        if (begin > last || tooMany) {
            skipTo(length);
            if (end >= length) break;
        } else if (IsDash() && std::max(begin, end) >= first) {
            draw(begin, end);
        }
        begin = end;
        NextElement();
        end += elements_[static_cast<std::size_t>(dashIndex_)].inLoop;
        whole = true;
    }
    if (IsDash() && begin <= last && !tooMany) draw(begin, length);
    if (!(position_ == to)) Jump(to);
    dashPosition_ = static_cast<int>(whole ? length - begin : dashPosition_ + length);
    current_ = to;
}

CRect DrawPen::DashWalker::SurfaceWithMargin() const {
    CRect box;
    dc_.GetClipBox(&box);
    box.NormalizeRect();
    const int margin = zel::Saturate(cycle_ + pen_.LogicalInch());
    box.InflateRect(margin, margin);
    return box;
}
