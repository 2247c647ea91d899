#include "tools/SeriesLine.h"

#include <cmath>

namespace {

constexpr std::size_t kDense = 32;  // points to a column from which on their columns are searched for
// Lengths of the pattern that a line goes up and down in a column from which on its gaps cannot be told.
constexpr double kCyclesToFill = 4;

}  // namespace

DrawPen::SeriesLine::SeriesLine(DrawPen& pen, CDC& dc, const WorldFrame& frame)
    : pen_(pen),
      dc_(dc),
      frame_(frame),
      walker_(pen, dc),
      solid_(walker_.IsSolid()),
      columnWidth_(solid_ || walker_.Cycle() > 0 ? dc.CurveColumn() : 0),
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
        for (const zel::SeriesStretch& stretch : stretches) DrawEachPoint(stretch);
        return;
    }
    if (solid_) {
        stepped_ = AreStepped(stretches);
        UseSolid();
    }
    for (const zel::SeriesStretch& stretch : stretches) DrawCurve(stretch);
    walker_.FlushRun();
    figure_.reset();
}

void DrawPen::SeriesLine::UseSolid() {
    if (walker_.DrawsSolid()) return;
    walker_.FlushRun();
    walker_.DrawSolid();
    if (!stepped_) figure_.emplace(&dc_);
}

void DrawPen::SeriesLine::UseDashes() {
    if (!walker_.DrawsSolid()) return;
    walker_.FlushRun();
    figure_.reset();
    walker_.BeginDashes();
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

void DrawPen::SeriesLine::DashesTo(const double* x, const double* y, std::size_t n) {
    UseDashes();
    if (pen_.DrawBlock(walker_, frame_, x, y, n)) return;
    for (std::size_t i = 0; i < n; ++i) {
        pen_.DrawClipped(walker_, frame_, nullptr, x[i], y[i]);
        pen_.world_ = {x[i], y[i]};
    }
}

void DrawPen::SeriesLine::DrawEachPoint(const zel::SeriesStretch& stretch) {
    const auto at = [&](std::size_t i) { return WorldPoint{stretch.X(i), stretch.Y(i)}; };
    zel::WalkSeries(
        stretch,
        [&](const zel::SeriesSpan& span, std::size_t begin, std::size_t end) {
            if (!IsBeyond(span)) return false;
            const WorldPoint first = at(begin);
            DashesTo(&first.x, &first.y, 1);
            pen_.world_ = at(end - 1);
            return true;
        },
        [&](const zel::SeriesSpan&, std::size_t, const double* x, const double* y, std::size_t n) {
            DashesTo(x, y, n);
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
        const double x = stretch_->X(begin), y = stretch_->Y(begin);
        LinesTo(&x, &y, 1);
        pen_.world_ = {stretch_->X(end - 1), stretch_->Y(end - 1)};
        return true;
    }
    if (span.gaps || !IsInColumns(span)) return false;
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
        if (span.gaps && !std::isfinite(y[i])) {
            DrawRun();
            pen_.world_ = {x[i], y[i]};
            ++i;
            continue;
        }
        if (!columns_.Contains(x[i])) {
            DrawRun();
            columns_.Enter(x[i]);
        }
        const double* const next =
            std::partition_point(x + i + 1, x + n, [this](double value) { return columns_.Contains(value); });
        auto end = static_cast<std::size_t>(next - x);
        if (span.gaps)
            end = static_cast<std::size_t>(
                std::find_if(y + i, y + end, [](double value) { return !std::isfinite(value); }) - y);
        AddToRun(begin + i, begin + end, zel::RangeOf(y + i, end - i));
        i = end;
    }
}

void DrawPen::SeriesLine::AddToRun(std::size_t begin, std::size_t end, const zel::SeriesRange& range) {
    if (run_.begin == run_.end) run_ = {begin, begin, range.low, range.high, 0};
    run_.end = end;
    run_.low = std::min(run_.low, range.low);
    run_.high = std::max(run_.high, range.high);
    run_.travel += range.high - range.low;
}

// Whether the run goes up and down so far that a dashed line fills its column.
bool DrawPen::SeriesLine::IsDense() {
    const double height = std::fabs(static_cast<double>(frame_.upper.y) - frame_.lower.y);
    const double enough = kCyclesToFill * static_cast<double>(walker_.Cycle()) / height * (top_ - bottom_);
    if (run_.travel >= enough) return true;
    std::array<double, zel::SeriesIndex::kBlock> room;
    double travel = 0, before = stretch_->Y(run_.begin);
    for (std::size_t at = run_.begin; at < run_.end && travel < enough; at += room.size()) {
        const std::size_t n = std::min(room.size(), run_.end - at);
        const double* const y = stretch_->ReadY(at, n, room.data());
        travel += std::fabs(y[0] - before);
        for (std::size_t i = 1; i < n; ++i) travel += std::fabs(y[i] - y[i - 1]);
        before = y[n - 1];
    }
    return travel >= enough;
}

// The first point, the extremes, which may stand anywhere within the column, and the last point, by lines
// along the axes.
void DrawPen::SeriesLine::DrawRun() {
    if (run_.begin == run_.end) return;
    const std::size_t begin = run_.begin, last = run_.end - 1;
    if (!solid_ && !IsDense()) {
        run_ = {};
        std::array<double, zel::SeriesIndex::kBlock> xs, ys;
        for (std::size_t at = begin; at <= last; at += xs.size()) {
            const std::size_t n = std::min(xs.size(), last + 1 - at);
            DashesTo(stretch_->ReadX(at, n, xs.data()), stretch_->ReadY(at, n, ys.data()), n);
        }
        return;
    }
    UseSolid();
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
    if (!solid_) {
        DashesTo(x, y, n);
        return;
    }
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
