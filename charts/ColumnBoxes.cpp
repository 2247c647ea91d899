#include "charts/ColumnBoxes.h"

#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>

namespace zel {

double OrientedFrame::ValueWithin(double value) const {
    double place = Values().Forward(value);
    if (std::isnan(place)) place = Values().High() > 0 ? LowValue() : HighValue();
    return std::clamp(place, LowValue(), HighValue());
}

ColumnGrid::ColumnGrid(const CDC& dc, const OrientedFrame& frame)
    : frame_(frame), map_(StateOf(dc.GetSafeHdc()).map), width_(dc.CurveColumn()) {
    if (width_ <= 0) return;
    const LONG a = ColumnOf(frame.ToLogical(frame.FirstPosition(), frame.LowValue())),
               b = ColumnOf(frame.ToLogical(frame.LastPosition(), frame.LowValue()));
    constexpr std::size_t kMost = 1 << 20;  // wider than any device
    first_ = std::min(a, b);
    count_ = static_cast<std::size_t>(Magnitude(Subtract(b, a))) + 1;
    if (count_ > kMost) width_ = 0;
}

LONG ColumnGrid::ColumnOf(const CPoint& logical) const {
    const LONG at = frame_.AlongPositions(map_.ToDevice(logical));
    return (at >= 0 ? at / width_ : (at + 1) / width_ - 1) - first_;
}

CRect ColumnGrid::ToLogical(LONG firstColumn, LONG endColumn, LONG from, LONG to) const {
    CRect rect = map_.ToLogical(CRect(frame_.Point((first_ + firstColumn) * width_, from),
                                      frame_.Point((first_ + endColumn) * width_, to)));
    rect.NormalizeRect();
    return rect;
}

ColumnBoxes::ColumnBoxes(const CDC& dc, const OrientedFrame& frame) : frame_(frame), grid_(dc, frame_) {}

void ColumnBoxes::Add(double position1, double position2, double value1, double value2) {
    const auto [first, last] = std::minmax({position1, position2});
    const auto [low, high] = std::minmax({value1, value2});
    if (!(last > frame_.FirstPosition() && first < frame_.LastPosition() && high >= frame_.LowValue() &&
          low <= frame_.HighValue()))
        return;
    const CPoint a =
        frame_.ToLogical(std::max(first, frame_.FirstPosition()), std::max(low, frame_.LowValue()));
    const CPoint b =
        frame_.ToLogical(std::min(last, frame_.LastPosition()), std::min(high, frame_.HighValue()));
    if (!grid_.HasColumns()) {
        CRect box(a, b);
        box.NormalizeRect();
        boxes_.push_back(box);
        return;
    }
    const auto [begin, end] = std::minmax({grid_.ColumnOf(a), grid_.ColumnOf(b)});
    const auto [from, to] =
        std::minmax({frame_.AlongValues(grid_.ToDevice(a)), frame_.AlongValues(grid_.ToDevice(b))});
    if (end - begin > 1) {
        wide_.push_back({begin, end, {from, to}});
    } else {
        Cover(begin, {from, to});
    }
}

bool ColumnBoxes::IsCovered(LONG column) const {
    return column >= 0 && static_cast<std::size_t>(column) < columns_.size() &&
           !columns_[static_cast<std::size_t>(column)].IsEmpty();
}

void ColumnBoxes::Cover(LONG column, const Span& span) {
    if (columns_.empty()) columns_.resize(grid_.Count());
    if (column < 0 || static_cast<std::size_t>(column) >= columns_.size()) return;
    Span& known = columns_[static_cast<std::size_t>(column)];
    known.low = std::min(known.low, span.low);
    known.high = std::max(known.high, span.high);
}

std::vector<CRect> ColumnBoxes::Finish() {
    // A box too narrow for a column of its own takes one from its neighbour.
    for (Wide& box : wide_) {
        for (; box.begin < box.end && IsCovered(box.begin); ++box.begin) Cover(box.begin, box.span);
        for (; box.begin < box.end && IsCovered(box.end - 1); --box.end) Cover(box.end - 1, box.span);
        if (box.begin < box.end)
            boxes_.push_back(grid_.ToLogical(box.begin, box.end, box.span.low, box.span.high));
    }
    wide_.clear();
    for (std::size_t i = 0; i < columns_.size();) {
        const std::size_t begin = i;
        while (i < columns_.size() && columns_[i] == columns_[begin]) ++i;
        const Span& span = columns_[begin];
        if (!span.IsEmpty())
            boxes_.push_back(
                grid_.ToLogical(static_cast<LONG>(begin), static_cast<LONG>(i), span.low, span.high));
    }
    columns_.clear();
    return std::move(boxes_);
}

}  // namespace zel
