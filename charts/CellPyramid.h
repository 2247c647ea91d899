// A matrix at several resolutions.
#pragma once

#include <zel/SeriesPoints.h>

#include <cstddef>
#include <vector>

namespace zel {

// The means of ever more cells of a matrix, so that a picture costs its pixels and not the cells. Each level
// has half of the cells of the one before along the directions that have many, made when it is first needed.
// It takes less than half of the memory of a square matrix of doubles.
class CellPyramid {
  public:
    // `columns` to a row; the last row may be incomplete. The memory belongs to the host.
    CellPyramid(const SeriesValues& values, std::size_t n, std::size_t columns);

    // Of so many cells along x and y as are to be told apart on a pixel: how many a cell of the level stands
    // for. At level 0 the cells are those of the matrix.
    std::size_t LevelFor(double cellsPerPixelX, double cellsPerPixelY);
    std::size_t FactorX(std::size_t level) const { return levels_[level].factorX; }
    std::size_t FactorY(std::size_t level) const { return levels_[level].factorY; }
    // NaN for a cell that is absent or beyond the last row.
    double At(std::size_t level, std::size_t column, std::size_t row) const;

  private:
    struct Level {
        std::size_t columns = 0, rows = 0;
        std::size_t factorX = 1, factorY = 1;
        std::vector<double> means;  // none at level 0
    };
    void AddLevel();

    SeriesValues values_;
    std::size_t n_;
    std::vector<Level> levels_;
};

}  // namespace zel
