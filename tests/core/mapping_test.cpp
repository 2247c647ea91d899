#include <zel/Mapping.h>

#include <gtest/gtest.h>

namespace {

TEST(Mapping, ScalesZoomsAndShifts) {
    Mapping map;
    EXPECT_EQ(map.ToDevice(CPoint(150, 75)), CPoint(150, 75));
    map.SetLogicalOrg(CPoint(10, 20));
    EXPECT_EQ(map.ToDevice(CPoint(0, 0)), CPoint(10, 20));
    EXPECT_EQ(map.ToLogical(CPoint(0, 0)), CPoint(0, 0)) << "the device origin is no part of logical points";
    map.SetWorld(CPoint(0, 0), CSize(1000, 1000));
    map.SetLogical(CPoint(0, 0), CSize(500, 500));
    EXPECT_EQ(map.ToLogical(CPoint(3, 3)), CPoint(2, 2)) << "halves away from zero";
    EXPECT_EQ(map.FromLogical(CPoint(2, 2)), CPoint(4, 4));
    map.SetWorld(CPoint(0, 0), CSize(100, 100));
    map.SetLogical(CPoint(0, 100), CPoint(100, 0));
    EXPECT_EQ(map.ToLogical(CPoint(0, 10)), CPoint(0, 90)) << "an axis turned round";
    EXPECT_EQ(map.ToLogical(CRect(0, 0, 10, 20)), CRect(0, 100, 10, 80)) << "no corner is exchanged";
    map.SetWorld(CPoint(5, 5), CPoint(5, 5));
    EXPECT_EQ(map.ToLogical(CPoint(7, 5)), CPoint(-1, 99)) << "an empty range divides by nothing";
}

TEST(Mapping, ZoomsSizesInTheOtherOrder) {
    Mapping map;
    map.SetWorld(CPoint(0, 0), CSize(3, 3));
    map.SetLogical(CPoint(0, 0), CSize(2, 2));
    map.SetZoom(3, 2);
    EXPECT_EQ(map.ToLogical(CSize(1, 5)), CSize(1, 5));
    EXPECT_EQ(map.ToLogical(CPoint(1, 5)), CPoint(2, 5)) << "a point may differ by a unit";
    EXPECT_EQ(map.FromLogical(CSize(1, 5)), CSize(1, 5));
}

TEST(Mapping, KeepsTheZoomSmallAndCapped) {
    const auto zoomed = [](std::initializer_list<std::pair<int, int>> factors) {
        Mapping map;
        for (const auto& [a, b] : factors) map.SetZoom(a, b);
        return std::pair(map.ZoomNumerator(), map.ZoomDenominator());
    };
    EXPECT_EQ(zoomed({{2, 1}}), std::pair(2, 1));
    EXPECT_EQ(zoomed({{64, 1}}), std::pair(32, 1));
    EXPECT_EQ(zoomed({{3, 1}, {0, 5}}), std::pair(1, 1)) << "a zero resets";
    EXPECT_EQ(zoomed({{-3, 2}}), std::pair(3, 2));
    EXPECT_EQ(zoomed({{1, 2048}}), std::pair(0, 1024)) << "there is no floor";
    EXPECT_EQ(zoomed({{INT32_MAX, INT32_MAX}}), std::pair(1023, 1023));
    Mapping map;
    map.SetZoom(5, 1);
    map.SetAbsoluteZoom(3, 2);
    EXPECT_EQ(map.Scale(), 1500);
}

}  // namespace
