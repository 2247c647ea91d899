#include "tools/SeriesLine.h"

#include "series/CurveScope.h"

#include <cmath>

namespace {

constexpr std::size_t kDense = 32;  // points to a column from which on their columns are searched for

}  // namespace

DrawPen::SeriesLine::SeriesLine(DrawPen& pen, CDC& dc, const WorldFrame& frame)
    : pen_(pen),
      dc_(dc),
      frame_(frame),
      walker_(pen, dc),
      columnWidth_(walker_.IsSolid() ? dc.CurveColumn() : 0),
      columns_(dc, frame, std::max(1, columnWidth_)),
      bottom_(frame.Bottom()),
      top_(frame.Top()),
      slack_(frame) {
    CSize unit(1, 1);
    dc.DPtoLP(&unit);
    const int out = std::max<LONG>(1, unit.cy);
    const bool upwards = (frame.upper.y < frame.lower.y) == (top_ == frame.ymax);
    beyondTop_ = upwards ? -out : out;
}

void DrawPen::SeriesLine::Draw(std::span<const zel::SeriesStretch> stretches) {
    if (columnWidth_ == 0) {
        for (const zel::SeriesStretch& stretch : stretches) DrawDashed(stretch);
        return;
    }
    walker_.DrawSolid();
    stepped_ = AreStepped(stretches);
    const zel::CurveScope figure(&dc_, !stepped_);
    for (const zel::SeriesStretch& stretch : stretches) DrawCurve(stretch);
    walker_.FlushRun();
}

// Lines along the axes lie on whole pixels where a device can tell that they are: they are not handed on as a
// curve.
bool DrawPen::SeriesLine::AreStepped(std::span<const zel::SeriesStretch> stretches) const {
    WorldPoint before = pen_.world_;
    for (const zel::SeriesStretch& stretch : stretches) {
        if (stretch.Size() == 0) continue;
        const double x[] = {before.x, stretch.X(stretch.begin)};
        const double y[] = {before.y, stretch.Y(stretch.begin)};
        if (!zel::IsStepped({zel::SeriesValues(x), zel::SeriesValues(y), 0, 2}) || !zel::IsStepped(stretch))
            return false;
        before = {stretch.X(stretch.end - 1), stretch.Y(stretch.end - 1)};
    }
    return true;
}

void DrawPen::SeriesLine::DrawDashed(const zel::SeriesStretch& stretch) {
    const auto draw = [this](const double* x, const double* y, std::size_t n) {
        if (pen_.DrawBlock(walker_, frame_, x, y, n)) return;
        for (std::size_t i = 0; i < n; ++i) {
            pen_.DrawClipped(walker_, frame_, nullptr, x[i], y[i]);
            pen_.world_ = {x[i], y[i]};
        }
    };
    const auto at = [&](std::size_t i) { return WorldPoint{stretch.X(i), stretch.Y(i)}; };
    zel::WalkSeries(
        stretch,
        [&](const zel::SeriesSpan& span, std::size_t begin, std::size_t end) {
            if (!IsBeyond(span)) return false;
            const WorldPoint first = at(begin);
            draw(&first.x, &first.y, 1);
            pen_.world_ = at(end - 1);
            return true;
        },
        [&](const zel::SeriesSpan&, std::size_t, const double* x, const double* y, std::size_t n) {
            draw(x, y, n);
        });
}

void DrawPen::SeriesLine::DrawCurve(const zel::SeriesStretch& stretch) {
    stretch_ = &stretch;
    run_ = {};
    zel::WalkSeries(
        stretch,
        [this](const zel::SeriesSpan& span, std::size_t begin, std::size_t end) {
            return TakeWhole(span, begin, end);
        },
        [this](const zel::SeriesSpan& span, std::size_t begin, const double* x, const double* y,
               std::size_t n) { TakeEach(span, begin, x, y, n); });
    DrawRun();
}

// Takes the points from `begin` to before `end` if that does not need a look at each of them.
bool DrawPen::SeriesLine::TakeWhole(const zel::SeriesSpan& span, std::size_t begin, std::size_t end) {
    if (IsBeyond(span)) {
        DrawRun();
        LineTo(stretch_->X(begin), stretch_->Y(begin));
        pen_.world_ = {stretch_->X(end - 1), stretch_->Y(end - 1)};
        return true;
    }
    if (!IsInColumns(span)) return false;
    if (!columns_.Contains(span.xmin)) {
        DrawRun();
        columns_.Enter(span.xmin);
    }
    if (!columns_.Contains(span.xmax)) return false;
    AddToRun(begin, end, {span.ymin, span.ymax});
    return true;
}

void DrawPen::SeriesLine::TakeEach(const zel::SeriesSpan& span, std::size_t begin, const double* x,
                                   const double* y, std::size_t n) {
    if (!span.sorted || !IsInColumns(span) || n < kDense * ColumnsOf(span)) {
        DrawRun();
        LinesTo(x, y, n);
        return;
    }
    // The places in memory are asked for together: they come while the first is looked at.
    for (std::size_t i = 0; i < n; i += 8) {
        __builtin_prefetch(x + i);
        __builtin_prefetch(y + i);
    }
    for (std::size_t i = 0; i < n;) {
        if (!columns_.Contains(x[i])) {
            DrawRun();
            columns_.Enter(x[i]);
        }
        const double* const next =
            std::partition_point(x + i + 1, x + n, [this](double value) { return columns_.Contains(value); });
        const auto end = static_cast<std::size_t>(next - x);
        AddToRun(begin + i, begin + end, zel::RangeOf(y + i, end - i));
        i = end;
    }
}

void DrawPen::SeriesLine::AddToRun(std::size_t begin, std::size_t end, const zel::SeriesRange& range) {
    if (run_.begin == run_.end) {
        run_ = {begin, end, range.low, range.high};
        return;
    }
    run_.end = end;
    run_.low = std::min(run_.low, range.low);
    run_.high = std::max(run_.high, range.high);
}

// The first point, the extremes, which may stand anywhere within the column, and the last point, by lines
// along the axes.
void DrawPen::SeriesLine::DrawRun() {
    if (run_.begin == run_.end) return;
    const std::size_t begin = run_.begin, last = run_.end - 1;
    const WorldPoint from{stretch_->X(begin), stretch_->Y(begin)};
    LineTo(from.x, from.y);
    const WorldPoint to{stretch_->X(last), stretch_->Y(last)};
    pen_.world_ = to;
    const bool beyond = frame_.exact ? run_.high < bottom_ - slack_.y || run_.low > top_ + slack_.y
                                     : run_.high <= bottom_ || run_.low >= top_;
    if (begin < last && !beyond) {
        const LONG column = frame_.ToLogical(from.x, from.y).x;
        walker_.MoveTo({column, HeightOf(WithinBorders(from.y))});  // not there yet behind a gap
        for (const double y : {from.y, run_.low, run_.high, to.y}) {
            walker_.LineTo({column, HeightOf(WithinBorders(y))});
            MarkCrossing(y);
        }
        if (!IsCut(to.y)) walker_.LineTo(frame_.ToLogical(to.x, to.y));
    }
    run_ = {};
}

void DrawPen::SeriesLine::LinesTo(const double* x, const double* y, std::size_t n) {
    if (pen_.DrawBlock(walker_, frame_, x, y, n)) return;
    for (std::size_t i = 0; i < n; ++i) LineTo(x[i], y[i]);
}

// A line from the last world point that is cut where it leaves the frame.
void DrawPen::SeriesLine::LineTo(double x, double y) {
    WorldPoint a = pen_.world_, b{x, y};
    pen_.world_ = b;
    if (!std::isfinite(a.x) || !std::isfinite(a.y) || !std::isfinite(x) || !std::isfinite(y)) return;
    const double from = a.y;
    // Farther out the crossing would drown in rounding, and nearer it would move.
    const double far = 1e6 * (top_ - bottom_);
    for (double* end : {&a.y, &b.y}) *end = std::max(bottom_ - far, std::min(*end, top_ + far));
    if (!DrawPen::ClipToFrame(frame_, a.x, a.y, b.x, b.y)) return;
    const bool enters = IsCut(from) && SnapToBorder(a.y, from);
    const bool leaves = IsCut(y) && SnapToBorder(b.y, y);
    walker_.MoveTo(frame_.ToLogical(a.x, a.y));
    if (enters) MarkCrossing(from);
    walker_.LineTo(frame_.ToLogical(b.x, b.y));
    if (leaves) MarkCrossing(y);
}

// Clipping leaves a height that may be off by a rounding. Lines that leave through the border and come back
// must meet there. False when the line was not cut by the border that `original` lies beyond.
bool DrawPen::SeriesLine::SnapToBorder(double& y, double original) const {
    const double border = WithinBorders(original);
    if (std::fabs(y - border) > 1e-9 * (top_ - bottom_)) return false;
    y = border;
    return true;
}

// Where a line goes on beyond the border, one unit of the beyond is drawn. That is how a device knows that
// the points of a column turn back there, however many of them it is told of.
void DrawPen::SeriesLine::MarkCrossing(double y) {
    if (!IsCut(y) || stepped_) return;
    const CPoint border = walker_.Current();
    walker_.LineTo({border.x, zel::Add(border.y, y >= top_ ? beyondTop_ : -beyondTop_)});
    walker_.LineTo(border);
}

bool DrawPen::SeriesLine::IsBeyond(const zel::SeriesSpan& span) const {
    if (frame_.exact) {
        return span.xmax < frame_.Left() - slack_.x || span.xmin > frame_.Right() + slack_.x ||
               span.ymax < bottom_ - slack_.y || span.ymin > top_ + slack_.y;
    }
    return span.xmax <= frame_.xmin || span.xmin >= frame_.xmax || span.ymax <= frame_.ymin ||
           span.ymin >= frame_.ymax;
}

std::size_t DrawPen::SeriesLine::ColumnsOf(const zel::SeriesSpan& span) const {
    const std::int64_t low = columns_.ColumnOf(span.xmin), high = columns_.ColumnOf(span.xmax);
    return static_cast<std::size_t>(std::abs(high - low)) + 1;
}
