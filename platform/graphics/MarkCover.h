// Which of many marks can be seen.
#pragma once

#include <cstdint>
#include <vector>

namespace zel {

// What a mark covers of a grid of cells; at most kMostCells of them each way. Bit 0 of a row is its leftmost
// cell.
struct MarkMask {
    static constexpr int kMostCells = 64;

    int left = 0, top = 0;             // of the first cell, from that of the mark's origin
    std::vector<std::uint64_t> ink;    // for each row, the cells that the mark changes
    std::vector<std::uint64_t> solid;  // as many: the cells that show nothing of what lies below
};

// Marks that are asked about from the last that is drawn to the first: whether they would be seen below those
// that were asked about before.
class MarkCover {
  public:
    // Cells beyond these are not seen.
    MarkCover(int width, int height);

    // A mark with its origin in a cell. Covers what it covers if it is seen.
    bool Shows(const MarkMask& mark, int x, int y);

  private:
    static constexpr int kBits = 64;
    // A word of cells stands left of the grid and two stand right of it, all of them covered.
    std::uint64_t* WordsAt(int row, int word) {
        return words_.data() + static_cast<std::ptrdiff_t>(row) * stride_ + word;
    }

    int width_;
    int height_;
    int stride_;  // words of a row
    std::vector<std::uint64_t> words_;
};

}  // namespace zel
