#include "charts/LegendLayout.h"

#include <algorithm>
#include <cmath>

namespace zel {

LegendLayout::LegendLayout(const TextRuler& ruler, int font, std::vector<Line> entries, int keyHeight)
    : ruler_(ruler),
      font_(font),
      entries_(std::move(entries)),
      rowHeight_(std::max(ruler.LineHeight() * 13 / 10, keyHeight * 11 / 10)),
      keyWidth_(std::max(ruler.LineHeight() * 16 / 10, keyHeight)),
      keyGap_(ruler.LineHeight() * 4 / 10),
      columnGap_(ruler.LineHeight() * 12 / 10) {
    constexpr std::size_t kLongest = 400;  // bytes of a name that are looked at
    for (const auto& [layer, part, name] : entries_)
        widths_.push_back(static_cast<int>(
            std::ceil(ruler_.WidthOf(name.size() > kLongest ? name.substr(0, kLongest) : name))));
}

// Columns are as wide as their widest names: the most columns that fit.
std::size_t LegendLayout::ColumnsFor(int width) const {
    const std::size_t n = entries_.size();
    const int key = keyWidth_ + keyGap_;
    for (std::size_t columns = std::min<std::size_t>(n, static_cast<std::size_t>(std::max(1, width / key)));
         columns > 1; --columns) {
        int total = -columnGap_;
        for (std::size_t c = 0; c < columns; ++c) {
            int widest = 0;
            for (std::size_t i = c; i < n; i += columns) widest = std::max(widest, widths_[i]);
            total += key + widest + columnGap_;
            if (total > width) break;
        }
        if (total <= width) return columns;
    }
    return 1;
}

void LegendLayout::Fit(int width, int height) {
    Place(ColumnsFor(width), width, height, false);
}

void LegendLayout::FitColumn(int width, int height) {
    const std::size_t rows = static_cast<std::size_t>(std::max(1, height / rowHeight_));
    const std::size_t columns = std::min((entries_.size() + rows - 1) / rows, ColumnsFor(width));
    Place(std::max<std::size_t>(1, columns), width, height, true);
}

void LegendLayout::Place(std::size_t columns, int width, int height, bool columnMajor) {
    placed_.clear();
    missing_ = shortened_ = 0;
    const std::size_t n = entries_.size();
    const std::size_t mostRows = static_cast<std::size_t>(std::max(0, height / rowHeight_));
    std::size_t shown = std::min(n, mostRows * columns);
    if (shown < n && shown > 0) --shown;  // room to say so
    missing_ = n - shown;
    const std::size_t places = shown + (missing_ > 0 && mostRows > 0 ? 1 : 0);
    const std::size_t rows = columns > 0 ? (places + columns - 1) / columns : 0;
    const auto columnOf = [&](std::size_t i) { return columnMajor && rows > 0 ? i / rows : i % columns; };
    const auto rowOf = [&](std::size_t i) { return columnMajor && rows > 0 ? i % rows : i / columns; };
    const std::string more = "\u2026 " + std::to_string(missing_) + " more";
    std::vector<int> nameWidth(columns, 0);
    for (std::size_t i = 0; i < places; ++i) {
        const int own = i < shown ? widths_[i] : static_cast<int>(std::ceil(ruler_.WidthOf(more)));
        nameWidth[columnOf(i)] = std::max(nameWidth[columnOf(i)], own);
    }
    const int key = keyWidth_ + keyGap_;
    if (columns == 1 && !nameWidth.empty()) nameWidth[0] = std::min(nameWidth[0], std::max(0, width - key));
    box_ = {};
    for (std::size_t i = 0; i < places; ++i) {
        int left = 0;
        for (std::size_t c = 0; c < columnOf(i); ++c) left += key + nameWidth[c] + columnGap_;
        const int top = -static_cast<int>(rowOf(i)) * rowHeight_;
        LegendEntry entry;
        const int inset =
            i < shown && entries_[i].part >= 0
                ? 0
                : std::max(rowHeight_ / 4, (rowHeight_ - ruler_.LineHeight()) / 2 + ruler_.LineHeight() / 6);
        entry.key = {left, top - rowHeight_ + inset, left + keyWidth_, top - inset};
        const std::string& name = i < shown ? entries_[i].name : more;
        entry.layer = i < shown ? entries_[i].layer : nullptr;
        entry.part = i < shown ? entries_[i].part : -1;
        const int room = nameWidth[columnOf(i)] + 1;
        entry.name.text = ruler_.Shortened(name, room);
        if (entry.name.text != name) ++shortened_;
        entry.name.font = font_;
        entry.name.flags = DT_VCENTER;
        entry.name.at = {left + key, top - rowHeight_ / 2};
        const int end = left + key + static_cast<int>(std::ceil(ruler_.WidthOf(entry.name.text)));
        entry.name.box = {left + key, top - rowHeight_, end, top};
        entry.whole = {left, top - rowHeight_, end, top};
        box_.right = std::max(box_.right, end);
        box_.bottom = std::min(box_.bottom, top - rowHeight_);
        placed_.push_back(std::move(entry));
    }
}

void LegendLayout::MoveTo(int left, int top) {
    const int dx = left - box_.left, dy = top - box_.top;
    const auto move = [=](Box& box) { box = {box.left + dx, box.bottom + dy, box.right + dx, box.top + dy}; };
    move(box_);
    for (LegendEntry& entry : placed_) {
        move(entry.key);
        move(entry.whole);
        move(entry.name.box);
        entry.name.at = {entry.name.at.x + dx, entry.name.at.y + dy};
    }
}

}  // namespace zel
