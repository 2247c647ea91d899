// The entries of a legend in rows and columns.
#pragma once

#include "charts/ChartLayout.h"
#include "charts/TextRuler.h"

#include <zel/platform/GdiTypes.h>

#include <vector>

namespace zel {

// A legend at (0, 0), growing to the right and downwards; MoveTo brings it to its place.
class LegendLayout {
  public:
    struct Line {
        Zel2Layer* layer;
        int part;  // LegendEntry::part
        std::string name;
    };
    // `entries` in the order in which they are to stand; keys at least so high.
    LegendLayout(const TextRuler& ruler, int font, std::vector<Line> entries, int keyHeight);

    // Lays the entries out within a width and a height: in as few rows as possible. Names that are too wide
    // are shortened; entries for which there is no room are counted in a last one ("… 12 more").
    void Fit(int width, int height);
    // In a single column where there is room, else in several.
    void FitColumn(int width, int height);
    // Moves the upper left corner.
    void MoveTo(int left, int top);

    int Width() const { return box_.Width(); }
    int Height() const { return box_.Height(); }
    const Box& GetBox() const { return box_; }
    const std::vector<LegendEntry>& Entries() const { return placed_; }
    std::size_t Missing() const { return missing_; }
    std::size_t Shortened() const { return shortened_; }

  private:
    void Place(std::size_t columns, int width, int height, bool columnMajor);
    std::size_t ColumnsFor(int width) const;

    const TextRuler& ruler_;
    int font_;
    std::vector<Line> entries_;
    std::vector<int> widths_;  // of the names
    int rowHeight_, keyWidth_, keyGap_, columnGap_;
    std::vector<LegendEntry> placed_;
    std::size_t missing_ = 0, shortened_ = 0;
    Box box_;
};

}  // namespace zel
