#include "tools/SeriesLine.h"

#include <array>
#include <cmath>

namespace {

constexpr std::size_t kSmallBlock = 32;  // points
constexpr std::size_t kLargeBlock = 8 * kSmallBlock;

}  // namespace

DrawPen::SeriesLine::SeriesLine(DrawPen& pen, CDC& dc, const WorldFrame& frame, const double* x,
                                const double* y, std::size_t n)
    : pen_(pen), dc_(dc), frame_(frame), x_(x), y_(y), n_(n), walker_(pen, dc) {}

void DrawPen::SeriesLine::Draw(const zel::SeriesIndex* index) {
    const int column = walker_.IsSolid() ? dc_.CurveColumn() : 0;
    if (column > 0 && !IsStepped()) {
        column_ = column;
        walker_.DrawSolid();
        dc_.BeginCurve();
    }
    std::size_t done = 0;
    for (std::size_t level = index ? index->Levels() : 0; level-- > 0;) {
        const std::size_t points = zel::SeriesIndex::PointsOf(level);
        for (std::size_t node = done / points; node < index->Level(level).size(); ++node) {
            DrawNode(*index, level, node);
            done = (node + 1) * points;
        }
    }
    DrawBlocks(done, n_);
    if (column_ == 0) return;
    walker_.FlushRun();
    dc_.EndCurve();
}

// Lines along the axes lie on whole pixels where the device can tell that they are; a stretch of steps drawn
// as its extremes would look slanted to it.
bool DrawPen::SeriesLine::IsStepped() const {
    for (std::size_t i = 1; i < n_; ++i) {
        const bool slanted = x_[i] != x_[i - 1] && y_[i] != y_[i - 1];
        if (slanted && std::isfinite(x_[i] + y_[i]) && std::isfinite(x_[i - 1] + y_[i - 1])) return false;
    }
    return true;
}

void DrawPen::SeriesLine::DrawBlocks(std::size_t begin, std::size_t end) {
    while (begin < end) {
        const std::size_t stop = std::min(end, begin + kLargeBlock);
        std::array<zel::SeriesSpan, kLargeBlock / kSmallBlock> spans;
        zel::SeriesSpan all;
        for (std::size_t at = begin, i = 0; at < stop; at += kSmallBlock, ++i) {
            spans[i] = zel::SpanOf(x_ + at, y_ + at, std::min(kSmallBlock, stop - at));
            all.Include(spans[i]);
        }
        if (!DrawWhole(all, begin, stop)) {
            // What cannot be drawn in parts is drawn in one go.
            std::size_t open = begin;
            for (std::size_t at = begin, i = 0; at < stop; at += kSmallBlock, ++i) {
                const std::size_t next = std::min(stop, at + kSmallBlock);
                if (!IsBeyond(spans[i]) && !(column_ > 0 && IsInside(spans[i]) &&
                                             ColumnOf(spans[i].xmin) == ColumnOf(spans[i].xmax)))
                    continue;
                DrawPoints(open, at);
                DrawWhole(spans[i], at, next);
                open = next;
            }
            DrawPoints(open, stop);
        }
        begin = stop;
    }
}

void DrawPen::SeriesLine::DrawNode(const zel::SeriesIndex& index, std::size_t level, std::size_t node) {
    const std::size_t points = zel::SeriesIndex::PointsOf(level);
    const std::size_t begin = node * points;
    if (DrawWhole(index.Level(level)[node], begin, begin + points)) return;
    if (level == 0) {
        DrawBlocks(begin, begin + points);
        return;
    }
    for (std::size_t i = 0; i < zel::SeriesIndex::kFan; ++i)
        DrawNode(index, level - 1, node * zel::SeriesIndex::kFan + i);
}

// Draws the points from `begin` to before `end` if that does not take each of them.
bool DrawPen::SeriesLine::DrawWhole(const zel::SeriesSpan& span, std::size_t begin, std::size_t end) {
    if (IsBeyond(span)) {
        DrawPoints(begin, begin + 1);
        pen_.world_ = {x_[end - 1], y_[end - 1]};
        return true;
    }
    if (column_ == 0 || !IsInside(span) || ColumnOf(span.xmin) != ColumnOf(span.xmax)) return false;
    DrawPoints(begin, begin + 1);
    walker_.MoveTo(frame_.ToLogical(x_[begin], y_[begin]));  // not there yet behind a gap
    // The extremes may stand anywhere within the column.
    const CPoint low = frame_.ToLogical(x_[begin], span.ymin);
    walker_.LineTo(low);
    walker_.LineTo({low.x, frame_.ToLogical(x_[begin], span.ymax).y});
    walker_.LineTo(frame_.ToLogical(x_[end - 1], y_[end - 1]));
    pen_.world_ = {x_[end - 1], y_[end - 1]};
    return true;
}

void DrawPen::SeriesLine::DrawPoints(std::size_t begin, std::size_t end) {
    for (; begin < end; begin += std::min(kBlockPoints, end - begin))
        pen_.DrawBlock(walker_, frame_, x_ + begin, y_ + begin, std::min(kBlockPoints, end - begin));
}

bool DrawPen::SeriesLine::IsBeyond(const zel::SeriesSpan& span) const {
    return span.xmax <= frame_.xmin || span.xmin >= frame_.xmax || span.ymax <= frame_.ymin ||
           span.ymin >= frame_.ymax;
}

bool DrawPen::SeriesLine::IsInside(const zel::SeriesSpan& span) const {
    return !span.gaps && span.xmin > frame_.xmin && span.xmax < frame_.xmax && span.ymin > frame_.ymin &&
           span.ymax < frame_.ymax;
}

int DrawPen::SeriesLine::ColumnOf(double x) const {
    CPoint at(frame_.ToLogical(x, frame_.ymin).x, 0);
    dc_.LPtoDP(&at, 1);
    return at.x >= 0 ? at.x / column_ : (at.x + 1) / column_ - 1;
}
