// Long series on images: what is left out changes no pixel.
#include "tests/Support.h"

#include <zel/platform/Archive.h>
#include <zel/platform/DC.h>
#include <zel/platform/File.h>
#include <zel/qt/ImageDevice.h>
#include <zel/zel.h>

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <set>

namespace {

using zel::test::MessageOf;

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
        for (std::size_t i = 0; i < NPoints(); ++i)
            pen->LineTo(*EnclosingFrame(), &XValues()[i], &YValues()[i], 1);
        DC()->EndCurve();
    }
};

// Fills the area below its points down to 0, each of which is a corner.
class OnePolygon : public Zel2PointArray {
  public:
    void OnDraw() override {
        std::vector<CPoint> points;
        const WorldFrame& frame = *EnclosingFrame();
        points.push_back(frame.ToLogical(XValues().front(), 0));
        for (std::size_t i = 0; i < NPoints(); ++i)
            points.push_back(frame.ToLogical(XValues()[i], YValues()[i]));
        points.push_back(frame.ToLogical(XValues().back(), 0));
        Color(GetColor())->Polygon(points.data(), static_cast<int>(points.size()));
    }
};

// A graph with one series.
template <class Series>
class Plot {
  public:
    template <class... Arguments>
    Plot(int penWidth, zel::qt::ImageDevice::Grid grid, Arguments... arguments)
        : image_(kWidth, kHeight, 100, 0, grid) {
        root_.SetRules(ZelRules::EXACT);
        auto* graph = new Zel2Graph;
        graph_ = graph;
        graph->SetGraphSize(CSize(kWidth * 10, kHeight * 10));
        graph->SetMargins(50, 50, 50, 50);
        root_.Add(graph);
        series = new Series(arguments...);
        graph->AddIn(series);
        // One dash that is longer than all lines: the walk does not cut it.
        int pattern[DrawPen::kPatternSize] = {300000000};
        series->SetPen(root_.RegisterPen("series", DrawPen::USER_DEFINED, penWidth, RGB(30, 60, 90),
                                         RGB(30, 60, 90), pattern));
    }
    void Fill() {
        series->SetPen(-1);
        series->SetSymbol(-1, true);
        series->SetColor(root_.RegisterColor("fill", RGB(200, 30, 60), RGB(200, 30, 60)));
    }
    void Dash() {
        series->SetPen(root_.RegisterPen("dashes", DrawPen::DASH, 2, RGB(30, 60, 90), 0, nullptr));
    }
    void MarkWithDiscs() {
        series->SetPen(-1);
        series->SetColor(-1);
        const COLORREF red = RGB(200, 30, 60);
        series->SetSymbol(root_.RegisterSymbol("disc", CSize(60, 60), zel::SYMBOL_CIRCLE, "", 0, red, red,
                                               red, red, 0, "Arial", 80, 0, 0, nullptr, nullptr, 0),
                          true);
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

using Pixels = std::vector<std::uint32_t>;

// Empty when both are equal.
std::string Differences(const Pixels& a, const Pixels& b) {
    int count = 0, most = 0;
    std::size_t first = a.size();
    for (std::size_t i = 0; i < a.size(); ++i) {
        const int difference = std::abs(static_cast<int>(a[i] & 0xFF) - static_cast<int>(b[i] & 0xFF));
        if (a[i] == b[i]) continue;
        ++count;
        most = std::max(most, difference);
        first = std::min(first, i);
    }
    if (count == 0) return "";
    return std::to_string(count) + " pixels differ, by up to " + std::to_string(most) + ", the first at " +
           std::to_string(first % kWidth) + "," + std::to_string(first / kWidth);
}

double Darkness(const Pixels& pixels) {
    double sum = 0;
    for (const std::uint32_t pixel : pixels) sum += 255 - (pixel & 0xFF);
    return sum;
}

std::unique_ptr<CObject> LoadedCopy(CObject& object, CArchive::Dialect dialect) {
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        ar.SetDialect(dialect);
        ar.WriteObject(&object);
        ar.Close();
    }
    file.SeekToBegin();
    CArchive ar(&file, CArchive::load);
    ar.SetDialect(dialect);
    return ar.ReadNewObject(RUNTIME_CLASS(CObject));
}

struct Shape {
    const char* name;
    std::function<double(std::size_t)> x, y;
    double scaleX = 1, scaleY = 1;
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
    const auto holes = [=](std::size_t i) { return i % 53 == 7 || i % 1000 > 990 ? kNan : wander(i); };
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
        {"holes", even, holes},
        {"away", even, [=](std::size_t i) { return i % 1500 < 600 ? 5 : slow(i); }},
        {"wild", even, wild},
        {"back", back, any},
        {"cloud", cloud, any},
        {"constant", even, [](std::size_t i) { return 0.5 + 1e-12 * static_cast<double>(i); }},
        {"denormal", [=](std::size_t i) { return even(i) * 1e-310; }, any, 1e-310},
        {"huge", [=](std::size_t i) { return even(i) * 1e308; },
         [=](std::size_t i) { return any(i) * 1e306; }, 1e308, 1e306},
        {"circle", slow, [](std::size_t i) { return 0.5 + 0.4 * std::cos(static_cast<double>(i) / 2000); }}};
}

struct Points {
    std::vector<double> x, y;
};

Points PointsOf(const Shape& shape) {
    Points points;
    for (std::size_t i = 0; i < kMany; ++i) {
        points.x.push_back(shape.x(i));
        points.y.push_back(shape.y(i));
    }
    return points;
}

// From all of the points to a few.
std::array<double, 4> AnyZoom() {
    static std::mt19937 random(3);
    const auto range = [](double size) {
        const double low = std::uniform_real_distribution<double>(-0.2, 1.2 - size)(random);
        return std::pair{low, low + size};
    };
    const auto [x0, x1] = range(std::pow(10, std::uniform_real_distribution<double>(-3, 0)(random)));
    const auto [y0, y1] = range(std::pow(10, std::uniform_real_distribution<double>(-2, 0)(random)));
    return {x0, x1, y0, y1};
}

TEST(Series, LooksOnImagesAsIfEveryPointWereDrawn) {
    using Grid = zel::qt::ImageDevice::Grid;
    for (const auto& [width, grid] :
         {std::pair{2, Grid::SIXTEENTHS}, {12, Grid::SIXTEENTHS}, {2, Grid::PIXELS}}) {
        Plot<Zel2PointArray> fast(width, grid), plain(width, grid);
        Plot<EveryPoint> reference(width, grid);
        for (const Shape& shape : Shapes()) {
            const auto [x, y] = PointsOf(shape);
            fast.series->SetPoints(x, y);
            plain.series->SetPoints(x, y);
            plain.series->GetXVec();
            reference.series->SetPoints(x, y);
            for (const auto& [x0, x1, y0, y1] : {std::array{-0.1, 1.1, -0.7, 1.3},
                                                 {0.2, 0.7, 0.1, 0.6},
                                                 {0.503, 0.5041, -0.5, 1.5},
                                                 {0.0, 1.0, 0.0, 1.0},
                                                 AnyZoom(),
                                                 AnyZoom()}) {
                const auto picture = [&, x0 = x0 * shape.scaleX, x1 = x1 * shape.scaleX,
                                      y0 = y0 * shape.scaleY, y1 = y1 * shape.scaleY](auto& plot) {
                    return plot.Picture(x0, x1, y0, y1);
                };
                const auto expected = picture(reference);
                EXPECT_EQ(Differences(picture(fast), expected), "") << shape.name << x0 << " width " << width;
                EXPECT_EQ(Differences(picture(plain), expected), "")
                    << shape.name << x0 << " width " << width;
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

// Draws its line as one polyline of all points.
class OnePolyline : public Zel2PointArray {
  public:
    void OnDraw() override {
        Pen(GetPen())->MoveTo(this, X(0), Y(0));
        CSize inch(DC()->GetDeviceCaps(LOGPIXELSX), 0);
        DC()->DPtoLP(&inch);
        CPen pen(PS_SOLID, inch.cx * 20 / 1000, RGB(30, 60, 90));
        CPen* const previous = DC()->SelectObject(&pen);
        std::vector<CPoint> points;
        for (std::size_t i = 0; i < NPoints(); ++i)
            points.push_back(EnclosingFrame()->ToLogical(XValues()[i], YValues()[i]));
        DC()->Polyline(points.data(), static_cast<int>(points.size()));
        DC()->SelectObject(previous);
    }
};

// Steps lie on whole pixels however many there are.
TEST(Series, KeepsStepsCrisp) {
    const auto grid = zel::qt::ImageDevice::Grid::SIXTEENTHS;
    Plot<Zel2PointArray> plot(5, grid);
    Plot<OnePolyline> reference(5, grid);
    for (int i = 0; i < 40000; ++i) {
        const double x = 0.001 + (i + 1) / 2 / 20100.0;
        const double y = i / 2 % 900 < 300 ? 0.8 : 0.2 + i / 2 % 7 * 0.01;
        plot.series->Append(x, y);
        reference.series->Append(x, y);
    }
    EXPECT_EQ(Differences(plot.Picture(0, 1, 0, 1), reference.Picture(0, 1, 0, 1)), "");
}

// Lines with their extensions, fills and symbols look with an index as they do without.
TEST(Series, LooksTheSameWithoutAnIndex) {
    const auto grid = zel::qt::ImageDevice::Grid::SIXTEENTHS;
    enum Kind { LINE, FILL, DISCS, DASHES };
    for (const Kind kind : {LINE, FILL, DISCS, DASHES}) {
        Plot<Zel2PointArray> fast(2, grid), plain(2, grid);
        for (auto* plot : {&fast, &plain}) {
            if (kind == DASHES) plot->Dash();
            if (kind == FILL) plot->Fill();
            if (kind == DISCS) plot->MarkWithDiscs();
        }
        unsigned int code = 0;
        for (const Shape& shape : Shapes()) {
            const bool filled = std::set<std::string>{"walk", "gaps", "circle"}.contains(shape.name);
            if (kind == FILL && !filled) continue;
            const auto [x, y] = PointsOf(shape);
            fast.series->SetPoints(x, y);
            plain.series->SetPoints(x, y);
            plain.series->GetXVec();
            for (int i = 0; i < 3; ++i) {
                code = (code + 1) % 9;
                for (auto* plot : {&fast, &plain}) plot->series->SetExtension(code, (code + 2) % 9);
                const auto [x0, x1, y0, y1] = AnyZoom();
                const auto picture = [&, x0 = x0 * shape.scaleX, x1 = x1 * shape.scaleX,
                                      y0 = y0 * shape.scaleY, y1 = y1 * shape.scaleY](auto& plot) {
                    return plot.Picture(x0, x1, y0, y1);
                };
                EXPECT_EQ(Differences(picture(fast), picture(plain)), "")
                    << shape.name << " of kind " << kind << " with extension " << code;
            }
        }
    }
}

// A dashed line is drawn point by point where its dashes can be seen, and covers as much where they cannot.
TEST(Series, DashesWhatIsDenseAsOneSeesIt) {
    const auto grid = zel::qt::ImageDevice::Grid::SIXTEENTHS;
    Plot<Zel2PointArray> plot(2, grid);
    Plot<EveryPoint> reference(2, grid);
    plot.Dash();
    reference.Dash();
    std::mt19937 random(4);
    double walk = 0.5;
    for (std::size_t i = 0; i < kMany; ++i) {
        const double x = static_cast<double>(i) / kMany;
        if (x < 0.5) walk = std::clamp(walk + std::normal_distribution<double>(0, 0.05)(random), 0.1, 0.9);
        const double y = x < 0.5 ? walk : 0.5 + 0.3 * std::sin(40 * x);
        for (Zel2PointArray* series : {plot.series, static_cast<Zel2PointArray*>(reference.series)})
            series->Append(x, y);
    }
    const auto sparse = plot.Picture(0.51, 1, 0, 1), expected = reference.Picture(0.51, 1, 0, 1);
    EXPECT_EQ(Differences(sparse, expected), "");
    const double dense = Darkness(plot.Picture(0, 0.5, 0, 1));
    EXPECT_NEAR(dense, Darkness(reference.Picture(0, 0.5, 0, 1)), 0.03 * dense);
}

// A fill of many points, which is thinned, looks like one with each of them.
TEST(Series, FillsAsIfEachPointWereACorner) {
    const auto grid = zel::qt::ImageDevice::Grid::SIXTEENTHS;
    Plot<Zel2PointArray> plot(2, grid);
    Plot<OnePolygon> reference(2, grid);
    for (std::size_t i = 0; i < kMany; ++i) {
        const double x = static_cast<double>(i) / kMany;
        const double y = 0.5 + 0.3 * std::sin(x * 9) + (i % 2 == 0 ? 0.02 : -0.02);
        plot.series->Append(x, y);
        reference.series->Append(x, y);
    }
    plot.Fill();
    reference.Fill();
    plot.series->SetExtension(Zel2PointSet::BOTTOM, Zel2PointSet::BOTTOM);
    const auto a = plot.Picture(0, 1, 0, 1), b = reference.Picture(0, 1, 0, 1);
    for (std::size_t i = 0; i < a.size(); ++i)
        EXPECT_NEAR(a[i] & 0xFF, b[i] & 0xFF, 110) << i % kWidth << "," << i / kWidth;
    EXPECT_NEAR(Darkness(a), Darkness(b), 0.002 * Darkness(b));
}

// Wherever the points lie and however they came there.
TEST(Series, LooksTheSameFromEverySource) {
    const auto grid = zel::qt::ImageDevice::Grid::SIXTEENTHS;
    Plot<Zel2PointArray> plot(2, grid);
    Plot<Zel2PointView> view(2, grid);
    Plot<Zel2PointRing> ring(2, grid, std::size_t{kMany});
    struct Sample {
        float y;
        std::int16_t x;
        char other[3];
    };
    std::vector<Sample> samples;
    std::vector<double> x, y;
    std::mt19937 random(5);
    const auto show = [&](const char* what) {
        view.series->SetPoints(zel::SeriesValues(&samples[0].x, sizeof(Sample)),
                               zel::SeriesValues(&samples[0].y, sizeof(Sample)), samples.size());
        plot.series->SetPoints(x, y);
        const auto expected = plot.Picture(-100, 32000, -3, 3);
        EXPECT_EQ(Differences(view.Picture(-100, 32000, -3, 3), expected), "") << what;
        EXPECT_EQ(Differences(ring.Picture(-100, 32000, -3, 3), expected), "") << what;
    };
    for (const std::size_t more : {9000UL, 9000UL, 1999UL, 1UL, 1UL, 700UL, 12345UL, 20001UL, 3UL, 60000UL}) {
        for (std::size_t i = 0; i < more; ++i) {
            const auto time = static_cast<std::int16_t>(samples.empty() ? 0 : (samples.back().x + 1) % 31000);
            samples.push_back({std::normal_distribution<float>(0, 1)(random), time, {}});
            x.push_back(time);
            y.push_back(static_cast<double>(samples.back().y));
            ring.series->Append(x.back(), y.back());
        }
        const auto surplus = static_cast<std::ptrdiff_t>(x.size() - std::min(x.size(), kMany));
        samples.erase(samples.begin(), samples.begin() + surplus);
        x.erase(x.begin(), x.begin() + surplus);
        y.erase(y.begin(), y.begin() + surplus);
        show(("after " + std::to_string(more)).c_str());
    }
    ASSERT_EQ(ring.series->NPoints(), kMany);
    EXPECT_EQ(ring.series->X(0), x[0]);
    EXPECT_EQ(ring.series->Y(kMany - 1), y.back());
    for (Zel2PointSet* set :
         {static_cast<Zel2PointSet*>(ring.series), static_cast<Zel2PointSet*>(view.series)}) {
        for (const auto dialect : {CArchive::Dialect::CLASSIC, CArchive::Dialect::COMPLETE}) {
            std::unique_ptr<CObject> stored;
            EXPECT_EQ(MessageOf<CArchiveException>([&] { stored = LoadedCopy(*set, dialect); }), "");
            auto* points = dynamic_cast<Zel2PointArray*>(stored.get());
            ASSERT_TRUE(points);
            EXPECT_EQ(points->XValues(), x);
            EXPECT_EQ(points->YValues(), y);
        }
    }
    EXPECT_NE(MessageOf<CInvalidArgException>([] { const Zel2PointRing none(0); }), "");
}

// So many points that their index is made by several threads.
TEST(Series, DrawsMillionsOfPoints) {
    const auto grid = zel::qt::ImageDevice::Grid::SIXTEENTHS;
    Plot<Zel2PointArray> fast(2, grid), plain(2, grid);
    const std::size_t n = 4'500'001;
    std::vector<double> x(n), y(n);
    std::uint32_t random = 1;
    for (std::size_t i = 0; i < n; ++i) {
        random = random * 1664525 + 1013904223;
        x[i] = static_cast<double>(i) / static_cast<double>(n);
        y[i] = static_cast<double>(random) / 4294967296.0 * (i == n / 3 ? 9 : 1);
    }
    fast.series->SetPoints(x, y);
    plain.series->SetPoints(std::move(x), std::move(y));
    plain.series->GetXVec();
    for (const auto& [x0, x1, y0, y1] :
         {std::array{-0.1, 1.1, -0.1, 9.3}, {0.2, 0.5, 0.3, 0.4}, {0.33, 0.334, 0.0, 9.0}})
        EXPECT_EQ(Differences(fast.Picture(x0, x1, y0, y1), plain.Picture(x0, x1, y0, y1)), "") << x0;
}

// A disc from the store of ready ones is the painter's, wherever it lies; the same one again changes nothing.
TEST(Series, DrawsDiscsAsThePainterDoes) {
    using zel::qt::ImageDevice;
    for (const auto grid : {ImageDevice::Grid::SIXTEENTHS, ImageDevice::Grid::PIXELS}) {
        const int pixel = grid == ImageDevice::Grid::PIXELS ? 1 : ImageDevice::kSubPixels;
        for (int i = -3; i < 40; ++i) {
            // Quarters of a pixel, in whose place discs are.
            const auto quarters = [=](int n) {
                return n * pixel >= 0 ? n * pixel / 4 : -(-n * pixel + 3) / 4;
            };
            const CRect box(CPoint(quarters(i * 9), quarters(i * 7)), CSize(9 * pixel, 7 * pixel));
            const CPoint places[] = {CPoint(2 * pixel, 0), CPoint(2 * pixel, 0), CPoint(2 * pixel, 0)};
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
                    dc.Ellipses(places, box - places[0]);
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
