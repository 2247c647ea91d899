#include "platform/graphics/MarkCover.h"

#include <zel/platform/CoordinateMap.h>
#include <zel/platform/Gdi.h>
#include <zel/platform/Geometry.h>
#include <zel/platform/Region.h>

#include <array>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

TEST(MulDiv, RoundsHalvesAwayFromZeroAndRefusesWhatDoesNotFit) {
    EXPECT_EQ(MulDiv(7, 1, 2), 4);
    EXPECT_EQ(MulDiv(-7, 1, 2), -4);
    EXPECT_EQ(MulDiv(7, 1, -2), -4);
    EXPECT_EQ(MulDiv(1, 5, 3), 2);
    EXPECT_EQ(MulDiv(1, 1, 4), 0);
    EXPECT_EQ(MulDiv(0, 0, 0), -1);
    EXPECT_EQ(MulDiv(2147483647, 2, 1), -1);
    EXPECT_EQ(MulDiv(65536, 65536, 65536), 65536);
    EXPECT_EQ(MulDiv(INT32_MIN, 1, 1), -1);
    EXPECT_EQ(MulDiv(INT32_MIN, 1, 2), -1073741824);
}

TEST(Rect, KeepsThePlatformsRules) {
    CRect rect(10, 10, 20, 20);
    rect.InflateRect(-7, -7);
    EXPECT_EQ(rect, CRect(17, 17, 13, 13)) << "no ordering";
    EXPECT_FALSE(CRect(20, 20, 10, 10).PtInRect(CPoint(15, 15)));
    EXPECT_TRUE(CRect(0, 0, 2, 2).PtInRect(CPoint(0, 1)));
    EXPECT_FALSE(CRect(0, 0, 2, 2).PtInRect(CPoint(2, 1)));
    EXPECT_FALSE(rect.IntersectRect(CRect(0, 0, 5, 5), CRect(5, 0, 9, 5)));
    EXPECT_TRUE(rect.UnionRect(CRect(0, 0, 0, 9), CRect(1, 1, 2, 2)));
    EXPECT_EQ(rect, CRect(1, 1, 2, 2)) << "an empty rectangle is ignored";
    rect.SubtractRect(CRect(0, 0, 10, 10), CRect(0, -5, 4, 20));
    EXPECT_EQ(rect, CRect(4, 0, 10, 10));
    rect.SubtractRect(CRect(0, 0, 10, 10), CRect(2, 2, 4, 4));
    EXPECT_EQ(rect, CRect(0, 0, 10, 10));
    EXPECT_EQ(CPoint(INT32_MAX, 0) + CSize(1, 0), CPoint(INT32_MAX, 0)) << "sums saturate";
    EXPECT_EQ(zel::Truncate(1e300), INT32_MAX);
    EXPECT_EQ(zel::Truncate(0.0 / 0.0), 0);
}

TEST(CoordinateMap, MapsBothWaysWithHalvesUpwards) {
    zel::CoordinateMap map;
    map.windowOrigin = CPoint(5, 10);
    map.windowExtent = CSize(1000, 800);
    map.viewportOrigin = CPoint(0, 300);
    map.viewportExtent = CSize(400, -300);
    EXPECT_EQ(map.ToDevice(CPoint(5, 10)), CPoint(0, 300));
    EXPECT_EQ(map.ToDevice(CPoint(1005, 810)), CPoint(400, 0));
    EXPECT_EQ(map.ToDevice(CPoint(7, 12)), CPoint(1, 299));
    EXPECT_EQ(map.ToLogical(CPoint(0, 0)), CPoint(5, 810));
    EXPECT_EQ(map.ToLogical(CPoint(399, 299)), CPoint(1003, 13));
    EXPECT_EQ(map.ToDevice(CSize(-10, 8)), CSize(-4, 3)) << "the sign of an extent does not turn sizes";
    zel::CoordinateMap half;
    half.windowExtent = CSize(2, 2);
    half.viewportExtent = CSize(1, -1);
    EXPECT_EQ(half.ToDevice(CPoint(-3, 3)), CPoint(-1, -1));
    EXPECT_EQ(half.ToDevice(CPoint(-1, 1)), CPoint(0, 0));
}

// Brute force: whether each point of a grid is in the set.
std::string Picture(const zel::Region& region, int size = 12) {
    std::string rows;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) rows += region.Contains(CPoint(x, y)) ? '#' : '.';
        rows += '\n';
    }
    return rows;
}

TEST(Region, CombinesPointByPoint) {
    const zel::Region a =
        zel::Region::Combine(zel::Region(CRect(1, 1, 6, 6)), zel::Region(CRect(3, 4, 11, 9)), RGN_OR);
    const zel::Region b = zel::Region::FromEllipse(CRect(2, 0, 11, 11));
    for (const int mode : {RGN_AND, RGN_OR, RGN_XOR, RGN_DIFF}) {
        const zel::Region c = zel::Region::Combine(a, b, mode);
        for (int y = 0; y < 12; ++y) {
            for (int x = 0; x < 12; ++x) {
                const bool inA = a.Contains(CPoint(x, y)), inB = b.Contains(CPoint(x, y));
                const bool expected = mode == RGN_AND   ? inA && inB
                                      : mode == RGN_OR  ? inA || inB
                                      : mode == RGN_XOR ? inA != inB
                                                        : inA && !inB;
                EXPECT_EQ(c.Contains(CPoint(x, y)), expected) << mode << " at " << x << "," << y;
            }
        }
    }
    EXPECT_EQ(zel::Region(CRect(20, 20, 10, 10)).Box(), CRect(10, 10, 20, 20));
    EXPECT_TRUE(zel::Region(CRect(5, 5, 5, 9)).IsEmpty());
}

TEST(Region, FillsPolygonsByThePlatformsPixels) {
    const std::array points{CPoint(0, 0), CPoint(10, 0), CPoint(0, 10)};
    const int count = 3;
    const zel::Region triangle = zel::Region::FromPolygons(points, {&count, 1}, ALTERNATE);
    EXPECT_EQ(triangle.Box(), CRect(0, 0, 10, 10));
    EXPECT_TRUE(triangle.Contains(CPoint(9, 0)));
    EXPECT_FALSE(triangle.Contains(CPoint(9, 1)));
    // A square within a square, turning the same way: a hole or not by the fill mode.
    const std::array rings{CPoint(0, 0), CPoint(9, 0), CPoint(9, 9), CPoint(0, 9),
                           CPoint(3, 3), CPoint(6, 3), CPoint(6, 6), CPoint(3, 6)};
    const std::array counts{4, 4};
    EXPECT_FALSE(zel::Region::FromPolygons(rings, counts, ALTERNATE).Contains(CPoint(4, 4)));
    EXPECT_TRUE(zel::Region::FromPolygons(rings, counts, WINDING).Contains(CPoint(4, 4)));
    EXPECT_NE(Picture(triangle), Picture(zel::Region()));
}

// Polygons that share an edge meet without a gap or an overlap, whichever way each of them walks it.
TEST(Region, MeetsAlongSlantedEdges) {
    for (const int size : {10, 49, 100, 128}) {
        const std::array above{CPoint(0, 0), CPoint(size, 0), CPoint(size, size)};
        const std::array below{CPoint(size, size), CPoint(0, size), CPoint(0, 0)};
        const int count = 3;
        const zel::Region a = zel::Region::FromPolygons(above, {&count, 1}, ALTERNATE);
        const zel::Region b = zel::Region::FromPolygons(below, {&count, 1}, ALTERNATE);
        EXPECT_TRUE(zel::Region::Combine(a, b, RGN_AND).IsEmpty()) << size;
        EXPECT_EQ(zel::Region::Combine(a, b, RGN_OR), zel::Region(CRect(0, 0, size, size))) << size;
        for (int i = 0; i < size; ++i) {
            EXPECT_TRUE(a.Contains(CPoint(i, i))) << "a left boundary is filled, at " << i << " of " << size;
        }
    }
}

TEST(CombineRgn, RefusesDeadRegions) {
    const HRGN a = CreateRectRgn(0, 0, 10, 10), b = CreateRectRgn(5, 5, 15, 15);
    EXPECT_EQ(CombineRgn(nullptr, a, b, RGN_OR), RGN_ERROR);
    EXPECT_EQ(CombineRgn(a, a, nullptr, RGN_OR), RGN_ERROR);
    EXPECT_EQ(CombineRgn(a, a, b, RGN_OR), COMPLEXREGION) << "the result may be a source";
    EXPECT_EQ(CombineRgn(a, b, nullptr, RGN_COPY), SIMPLEREGION);
    EXPECT_EQ(CombineRgn(b, a, a, RGN_DIFF), NULLREGION);
    EXPECT_TRUE(DeleteObject(a));
    EXPECT_TRUE(DeleteObject(b));
}

// Against a grid that is looked at cell by cell.
TEST(MarkCover, ShowsWhatLaterMarksLeave) {
    std::mt19937 random(8);
    const auto any = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (int round = 0; round < 20; ++round) {
        const int width = 1 + any(150), height = 1 + any(40), rows = 1 + any(9);
        zel::MarkCover cover(width, height);
        std::vector<bool> covered(static_cast<std::size_t>(width * height));
        int shown = 0;
        for (int i = 0; i < 400; ++i) {
            zel::MarkMask mark{.left = any(20) - 60, .top = any(9) - 4, .ink = {}, .solid = {}};
            for (int row = 0; row < rows; ++row) {
                mark.ink.push_back(i % 3 == 0 ? ~std::uint64_t{0} : std::uint64_t{random()} << any(60));
                mark.solid.push_back(mark.ink.back() & ~(std::uint64_t{random()} << any(32)));
            }
            const int x = any(width + 140) - 20, y = any(height + 20) - 10;
            bool seen = false;
            std::vector<std::size_t> solid;
            for (int row = 0; row < rows; ++row) {
                for (int bit = 0; bit < 64; ++bit) {
                    const int column = x + mark.left + bit, line = y + mark.top + row;
                    if (column < 0 || line < 0 || column >= width || line >= height) continue;
                    const auto cell = static_cast<std::size_t>(line * width + column);
                    const auto r = static_cast<std::size_t>(row);
                    seen = seen || ((mark.ink[r] >> bit & 1) != 0 && !covered[cell]);
                    if ((mark.solid[r] >> bit & 1) != 0) solid.push_back(cell);
                }
            }
            ASSERT_EQ(cover.Shows(mark, x, y), seen) << "mark " << i << " at " << x << "," << y;
            for (const std::size_t cell : solid) covered[cell] = covered[cell] || seen;
            shown += seen ? 1 : 0;
        }
        EXPECT_GT(shown, 0);
    }
}

}  // namespace
