// Long series on images: what is left out changes no pixel.
#include <zel/platform/DC.h>
#include <zel/qt/ImageDevice.h>
#include <zel/zel.h>

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

constexpr int kWidth = 120;
constexpr int kHeight = 90;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kMany = 20000;

// Draws its line point by point.
class EveryPoint : public Zel2PointArray {
  public:
    void OnDraw() override {
        DrawPen* pen = Pen(GetPen());
        DC()->BeginCurve();
        pen->SetWorldPoint(this, X(0), Y(0));
        for (unsigned int i = 0; i < NPoints(); ++i)
            pen->LineTo(this, X(static_cast<long>(i)), Y(static_cast<long>(i)));
        DC()->EndCurve();
    }
};

// A graph with one series.
template <class Series>
class Plot {
  public:
    Plot(int penWidth, zel::qt::ImageDevice::Grid grid) : image_(kWidth, kHeight, 100, 0, grid) {
        root_.SetRules(ZelRules::EXACT);
        auto* graph = new Zel2Graph;
        graph_ = graph;
        graph->SetGraphSize(CSize(kWidth * 10, kHeight * 10));
        graph->SetMargins(50, 50, 50, 50);
        root_.Add(graph);
        series = new Series;
        graph->AddIn(series);
        // One dash that is longer than all lines: the walk does not cut it.
        int pattern[DrawPen::kPatternSize] = {300000000};
        series->SetPen(root_.RegisterPen("series", DrawPen::USER_DEFINED, penWidth, RGB(30, 60, 90),
                                         RGB(30, 60, 90), pattern));
    }
    std::vector<std::uint32_t> Picture(double x0, double x1, double y0, double y1) {
        graph_->SetCoord(x0, y0, x1, y1);
        image_.Clear(RGB(255, 255, 255));
        {
            CDC dc(image_);
            root_.PrepareMappingFor(&dc, nullptr, 0, 0);
            root_.Draw(&dc);
        }
        return {image_.Pixels(), image_.Pixels() + kWidth * kHeight};
    }
    Series* series;

  private:
    Zel2Main root_;
    Zel2Graph* graph_;
    zel::qt::ImageDevice image_;
};

struct Shape {
    const char* name;
    std::function<double(std::size_t)> x, y;
};

std::vector<Shape> Shapes() {
    static std::mt19937 random(11);
    static double walk = 0;
    const auto even = [](std::size_t i) { return static_cast<double>(i) / kMany; };
    const auto any = [](std::size_t) { return std::uniform_real_distribution<double>(0, 1)(random); };
    const auto wander = [](std::size_t) {
        return walk += std::normal_distribution<double>(0, 0.004)(random);
    };
    const auto slow = [](std::size_t i) { return 0.5 + 0.4 * std::sin(static_cast<double>(i) / 2000); };
    const auto gaps = [=](std::size_t i) { return i % 997 == 5 ? kNan : slow(i); };
    const auto wild = [=](std::size_t i) {
        return i % 501 == 7 ? kInfinity : i % 703 == 9 ? -1e300 : i % 901 == 11 ? 5e-324 : any(i);
    };
    const auto back = [](std::size_t i) { return 1 - static_cast<double>(i) / kMany; };
    const auto cloud = [=](std::size_t i) { return std::floor(even(i) * 6) / 6 + 0.02 * any(i); };
    return {
        {"walk", even, wander},
        {"noise", even, any},
        {"slow", even, slow},
        {"gaps", even, gaps},
        {"wild", even, wild},
        {"back", back, any},
        {"cloud", cloud, any},
        {"circle", slow, [](std::size_t i) { return 0.5 + 0.4 * std::cos(static_cast<double>(i) / 2000); }}};
}

TEST(Series, LooksOnImagesAsIfEveryPointWereDrawn) {
    using Grid = zel::qt::ImageDevice::Grid;
    for (const auto& [width, grid] :
         {std::pair{2, Grid::SIXTEENTHS}, {12, Grid::SIXTEENTHS}, {2, Grid::PIXELS}}) {
        Plot<Zel2PointArray> fast(width, grid), plain(width, grid);
        Plot<EveryPoint> reference(width, grid);
        for (const Shape& shape : Shapes()) {
            std::vector<double> x, y;
            for (std::size_t i = 0; i < kMany; ++i) {
                x.push_back(shape.x(i));
                y.push_back(shape.y(i));
            }
            fast.series->SetPoints(x, y);
            plain.series->SetPoints(x, y);
            plain.series->GetXVec();
            reference.series->SetPoints(x, y);
            for (const auto& [x0, x1, y0, y1] : {std::array{-0.1, 1.1, -0.7, 1.3},
                                                 {0.2, 0.7, 0.1, 0.6},
                                                 {0.503, 0.5041, -0.5, 1.5},
                                                 {0.0, 1.0, 0.0, 1.0}}) {
                const auto expected = reference.Picture(x0, x1, y0, y1);
                EXPECT_EQ(fast.Picture(x0, x1, y0, y1), expected) << shape.name << x0 << " width " << width;
                EXPECT_EQ(plain.Picture(x0, x1, y0, y1), expected) << shape.name << x0 << " width " << width;
            }
        }
    }
}

// Whatever changes the points is seen at the next draw.
TEST(Series, IsDrawnAsItIsNow) {
    const auto grid = zel::qt::ImageDevice::Grid::SIXTEENTHS;
    Plot<Zel2PointArray> plot(2, grid), fresh(2, grid);
    std::vector<double> x, y;
    for (std::size_t i = 0; i < kMany; ++i) {
        x.push_back(static_cast<double>(i) / kMany);
        y.push_back(0.5 + 0.3 * std::sin(static_cast<double>(i) / 500));
    }
    const auto expect = [&](const char* change) {
        fresh.series->SetPoints(x, y);
        EXPECT_EQ(plot.Picture(0, 1.5, 0, 1), fresh.Picture(0, 1.5, 0, 1)) << change;
    };
    plot.series->SetPoints(x, y);
    expect("set");
    for (int i = 0; i < 3000; ++i) {
        x.push_back(1 + i / 10000.0);
        y.push_back(i % 100 / 100.0);
        plot.series->Append(x.back(), y.back());
    }
    expect("appended");
    std::vector<double>* kept = plot.series->GetYVec();
    for (const double value : {0.9, 0.1}) {
        for (std::size_t i = 5000; i < 9000; ++i)
            (*kept)[i] = y[i] = value + static_cast<double>(i % 7) / 100;
        expect("written through a pointer");
    }
    plot.series->PointsChanged();
    expect("told");
    const Zel2PointArray copy(*plot.series);
    y[3] = 0.99;
    plot.series->SetPoints(x, y);
    expect("set again");
    *plot.series = copy;
    y = copy.YValues();
    expect("assigned");
}

// Steps lie on whole pixels however many there are.
TEST(Series, KeepsStepsCrisp) {
    Plot<Zel2PointArray> plot(2, zel::qt::ImageDevice::Grid::SIXTEENTHS);
    for (int i = 0; i < 20000; ++i) {
        const double x = (i + 1) / 2 / 10000.0;
        plot.series->Append(x, i / 2 % 9 == 0 ? 0.8 : 0.2);
    }
    for (const std::uint32_t pixel : plot.Picture(0, 1, 0, 1)) {
        if (pixel != 0xFFFFFFFFu && (pixel & 0xFF) > 90 && (pixel & 0xFF) < 255 &&
            (pixel >> 16 & 0xFF) != (pixel & 0xFF))
            FAIL() << "a blurred pixel: " << std::hex << pixel;
    }
}

// A disc from the store of ready ones is the painter's, wherever it lies; the same one again changes nothing.
TEST(Series, DrawsDiscsAsThePainterDoes) {
    using zel::qt::ImageDevice;
    for (const auto grid : {ImageDevice::Grid::SIXTEENTHS, ImageDevice::Grid::PIXELS}) {
        const int pixel = grid == ImageDevice::Grid::PIXELS ? 1 : ImageDevice::kSubPixels;
        for (int i = -3; i < 40; ++i) {
            const CRect box(CPoint(i * 37 * pixel / 16, i * 31 * pixel / 16), CSize(9 * pixel, 7 * pixel));
            const CRect boxes[] = {box, box, box};
            ImageDevice one(kWidth, kHeight, 100, 0, grid), many(kWidth, kHeight, 100, 0, grid);
            CBrush brush(RGB(200, 30, 60));
            for (ImageDevice* image : {&one, &many}) {
                CDC dc(*image);
                dc.SelectStockObject(NULL_PEN);
                CBrush* previous = dc.SelectObject(&brush);
                dc.IntersectClipRect(5 * pixel, 5 * pixel, 80 * pixel, 80 * pixel);
                if (image == &one) {
                    dc.Ellipse(&box);
                } else {
                    dc.Ellipses(boxes);
                }
                dc.SelectObject(previous);
            }
            for (int at = 0; at < kWidth * kHeight; ++at) {
                for (int shift = 0; shift < 24; shift += 8) {
                    ASSERT_NEAR(one.Pixels()[at] >> shift & 0xFF, many.Pixels()[at] >> shift & 0xFF, 2)
                        << "disc " << i << " at " << at % kWidth << "," << at / kWidth;
                }
            }
        }
    }
}

}  // namespace
