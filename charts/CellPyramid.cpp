#include "charts/CellPyramid.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zel {
namespace {

constexpr std::size_t kMany = 512;  // cells in a direction; fewer are drawn as they are

}  // namespace

CellPyramid::CellPyramid(const SeriesValues& values, std::size_t n, std::size_t columns)
    : values_(values), n_(columns > 0 ? n : 0) {
    levels_.push_back({columns, columns > 0 ? (n + columns - 1) / columns : 0, 1, 1, {}});
}

double CellPyramid::At(std::size_t level, std::size_t column, std::size_t row) const {
    const Level& at = levels_[level];
    const std::size_t i = row * at.columns + column;
    if (level > 0) return row < at.rows ? at.means[i] : std::numeric_limits<double>::quiet_NaN();
    return i < n_ ? values_.At(i) : std::numeric_limits<double>::quiet_NaN();
}

std::size_t CellPyramid::LevelFor(double cellsPerPixelX, double cellsPerPixelY) {
    for (std::size_t level = 0;; ++level) {
        const Level& at = levels_[level];
        const bool halvesX = at.columns > kMany, halvesY = at.rows > kMany;
        const auto fits = [](bool halves, std::size_t factor, double perPixel) {
            return !halves || static_cast<double>(2 * factor) <= perPixel;
        };
        if ((!halvesX && !halvesY) || !fits(halvesX, at.factorX, cellsPerPixelX) ||
            !fits(halvesY, at.factorY, cellsPerPixelY))
            return level;
        if (level + 1 == levels_.size()) AddLevel();
    }
}

void CellPyramid::AddLevel() {
    const std::size_t below = levels_.size() - 1;
    const Level& fine = levels_[below];
    const std::size_t stepX = fine.columns > kMany ? 2 : 1, stepY = fine.rows > kMany ? 2 : 1;
    Level coarse{(fine.columns + stepX - 1) / stepX,
                 (fine.rows + stepY - 1) / stepY,
                 fine.factorX * stepX,
                 fine.factorY * stepY,
                 {}};
    coarse.means.reserve(coarse.columns * coarse.rows);
    // The rows that a row stands for, as doubles.
    std::vector<double> room(fine.columns * 2);
    const double* rows[2] = {};
    for (std::size_t row = 0; row < coarse.rows; ++row) {
        std::size_t count = 0;
        std::size_t lengths[2] = {};
        for (std::size_t k = row * stepY; k < std::min(fine.rows, (row + 1) * stepY); ++k, ++count) {
            const std::size_t begin = k * fine.columns;
            lengths[count] = below > 0 ? fine.columns : std::min(fine.columns, n_ - begin);
            rows[count] = below > 0 ? fine.means.data() + begin
                                    : values_.Read(begin, lengths[count], room.data() + count * fine.columns);
        }
        for (std::size_t column = 0; column < coarse.columns; ++column) {
            double sum = 0;
            int finite = 0;
            for (std::size_t k = 0; k < count; ++k) {
                for (std::size_t i = column * stepX; i < std::min(lengths[k], (column + 1) * stepX); ++i) {
                    const double value = rows[k][i];
                    if (!std::isfinite(value)) continue;
                    sum += value;
                    ++finite;
                }
            }
            coarse.means.push_back(finite > 0 ? sum / finite : std::numeric_limits<double>::quiet_NaN());
        }
    }
    levels_.push_back(std::move(coarse));
}

}  // namespace zel
