#include "backends/qt/Stroker.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

using zel::qt::PointF;

constexpr int kSize = 60;
constexpr std::uint32_t kBlack = 0xFF000000, kWhite = 0xFFFFFFFF;

double DistanceFrom(PointF a, PointF b, double x, double y) {
    const double dx = b.x - a.x, dy = b.y - a.y, square = dx * dx + dy * dy;
    const double t = square > 0 ? std::clamp(((x - a.x) * dx + (y - a.y) * dy) / square, 0.0, 1.0) : 0;
    return std::hypot(x - a.x - t * dx, y - a.y - t * dy);
}

class Canvas {
  public:
    void Draw(const std::vector<PointF>& line, double half, CRect clip = {0, 0, kSize, kSize}) {
        for (std::size_t i = 1; i < line.size(); ++i) stroker_.Add(line[i - 1], line[i], half);
        stroker_.Blend({pixels_.data(), kSize, kSize}, kBlack, {clip});
    }
    void DrawBar(int column, double low, double high, double half) {
        stroker_.AddBar(column, low, high, half);
        stroker_.Blend({pixels_.data(), kSize, kSize}, kBlack, {CRect(0, 0, kSize, kSize)});
    }
    int Ink(int x, int y) const {
        return 255 - static_cast<int>(pixels_[static_cast<std::size_t>(y * kSize + x)] & 0xFF);
    }

  private:
    std::vector<std::uint32_t> pixels_ = std::vector<std::uint32_t>(kSize * kSize, kWhite);
    zel::qt::Stroker stroker_{kSize, kSize};
};

TEST(Stroker, CoversWhatThePlainComputationCovers) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> place(-30, kSize + 30), half(0.5, 5);
    for (int round = 0; round < 80; ++round) {
        std::vector<PointF> line;
        for (int i = 0; i < 6; ++i) line.push_back({place(random), round % 4 == 0 ? 30.5 : place(random)});
        const double width = round % 2 ? 0.5 : half(random);
        Canvas canvas;
        canvas.Draw(line, width);
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) {
                double nearest = 1e9;
                for (std::size_t i = 1; i < line.size(); ++i) {
                    nearest = std::min(nearest, DistanceFrom(line[i - 1], line[i], x + 0.5, y + 0.5));
                }
                ASSERT_NEAR(canvas.Ink(x, y), std::clamp(width + 0.5 - nearest, 0.0, 1.0) * 255, 2)
                    << "round " << round << " at " << x << "," << y;
            }
        }
    }
}

TEST(Stroker, DrawsABarAsTheSegmentAlongItsAxis) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> place(-10, kSize + 10);
    for (const double half : {0.5, 0.75, 1.0, 3.2}) {
        for (int round = 0; round < 30; ++round) {
            const int column = static_cast<int>(place(random));
            double low = place(random), high = place(random);
            if (low > high) std::swap(low, high);
            Canvas bar, segment;
            bar.DrawBar(column, low, high, half);
            segment.Draw({{column + 0.5, low}, {column + 0.5, high}}, half);
            for (int y = 0; y < kSize; ++y) {
                for (int x = 0; x < kSize; ++x)
                    ASSERT_NEAR(bar.Ink(x, y), segment.Ink(x, y), 1) << half << " at " << x << "," << y;
            }
        }
    }
}

TEST(Stroker, StaysWithinItsClipAndForgetsTheLineBefore) {
    Canvas canvas;
    canvas.Draw({{0, 10}, {60, 11}}, 3, CRect(20, 0, 30, 60));
    EXPECT_EQ(canvas.Ink(19, 10), 0);
    EXPECT_EQ(canvas.Ink(20, 10), 255);
    EXPECT_EQ(canvas.Ink(30, 10), 0);
    canvas.Draw({{0, 40}, {60, 41}}, 0.5);
    EXPECT_EQ(canvas.Ink(40, 10), 0) << "what was clipped away does not come back";
    canvas.Draw({{-1e9, -1e9}, {1e9, 1e9}}, 0.5);
    EXPECT_EQ(canvas.Ink(50, 50), 255);
    canvas.Draw({{1e18, 5}, {2e18, 6}}, 0.5);
}

}  // namespace
