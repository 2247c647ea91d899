#include "tests/Support.h"

#include <zel/platform/Exception.h>
#include <zel/platform/MetricsDevice.h>
#include <zel/platform/Warning.h>
#include <zel/qt/ImageDevice.h>
#include <zel/qt/Install.h>
#include <zel/zel.h>

#include <QImage>

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <set>

namespace {

constexpr int kSub = zel::qt::ImageDevice::kSubPixels;

// A white image; coordinates of the helpers are pixels.
class Image : public testing::Test {
  protected:
    static CRect Units(int l, int t, int r, int b) { return {l * kSub, t * kSub, r * kSub, b * kSub}; }
    COLORREF At(int x, int y) { return device_.GetPixel(CPoint(x * kSub, y * kSub)); }
    // The pixels that are not white, as their bounding box; right and bottom outside.
    CRect Inked() {
        dc_.Flush();
        CRect box(1000, 1000, -1, -1);
        for (int y = 0; y < device_.Height(); ++y) {
            for (int x = 0; x < device_.Width(); ++x) {
                if (At(x, y) == RGB(255, 255, 255)) continue;
                box = CRect(std::min<int>(box.left, x), std::min<int>(box.top, y),
                            std::max<int>(box.right, x + 1), std::max<int>(box.bottom, y + 1));
            }
        }
        return box;
    }
    void Line(CPoint from, CPoint to) {
        dc_.MoveTo(from);
        dc_.LineTo(to);
        dc_.Flush();
    }
    zel::qt::ImageDevice device_{100, 80, 96};
    CDC dc_{device_};
};

TEST_F(Image, KeepsAxisParallelLinesCrisp) {
    Line(CPoint(2 * kSub, 10 * kSub + 5), CPoint(8 * kSub, 10 * kSub + 5));
    EXPECT_EQ(Inked(), CRect(2, 10, 8, 11)) << "one row, the last unit left out";
    device_.Clear(RGB(255, 255, 255));
    Line(CPoint(8 * kSub, 3), CPoint(2 * kSub, 3));
    EXPECT_EQ(Inked(), CRect(2, 0, 9, 1));
    device_.Clear(RGB(255, 255, 255));
    CPen wide(PS_SOLID, 3 * kSub, RGB(0, 0, 0));
    CPen* previous = dc_.SelectObject(&wide);
    Line(CPoint(10 * kSub, 20 * kSub), CPoint(10 * kSub, 30 * kSub));
    EXPECT_EQ(Inked(), CRect(9, 19, 12, 32));
    EXPECT_EQ(At(10, 25), RGB(0, 0, 0)) << "no grey";
    dc_.SelectObject(previous);
}

TEST_F(Image, FillsMeetWithoutGapOrOverlap) {
    CBrush red(RGB(255, 0, 0)), green(RGB(0, 255, 0));
    for (int unit = 0; unit < kSub; ++unit) {
        device_.Clear(RGB(255, 255, 255));
        const CRect left(3, 3, 20 * kSub + unit, 10 * kSub), right(40 * kSub, 10 * kSub, 20 * kSub + unit, 3);
        dc_.FillRect(&left, &red);
        dc_.FillRect(&right, &green);
        for (int x = 0; x < 40; ++x) EXPECT_EQ(At(x, 5), x < 20 ? RGB(255, 0, 0) : RGB(0, 255, 0)) << x;
        EXPECT_EQ(Inked(), CRect(0, 0, 40, 10)) << "reversed corners paint the same";
    }
}

TEST_F(Image, DrawsTwiceInvertedAsNothing) {
    CBrush blue(RGB(10, 60, 200));
    const CRect ground = Units(10, 10, 60, 60);
    dc_.FillRect(&ground, &blue);
    dc_.Flush();
    const std::vector<std::uint32_t> before(device_.Pixels(), device_.Pixels() + 100 * 80);
    dc_.SetROP2(R2_NOTXORPEN);
    for (const int style : {PS_SOLID, PS_DOT}) {
        CPen pen(style, 1, RGB(0, 0, 0));
        CPen* previous = dc_.SelectObject(&pen);
        for (int i = 0; i < 2; ++i) {
            dc_.Rectangle(5 * kSub, 5 * kSub, 50 * kSub, 40 * kSub);
            dc_.Ellipse(Units(20, 20, 70, 70));
            Line(CPoint(0, 0), CPoint(90 * kSub, 70 * kSub));
            EXPECT_EQ(std::vector(device_.Pixels(), device_.Pixels() + 100 * 80) == before, i == 1);
        }
        dc_.SelectObject(previous);
        EXPECT_EQ(std::vector(device_.Pixels(), device_.Pixels() + 100 * 80), before) << "style " << style;
    }
}

TEST_F(Image, ThinsDenseCurvesToTheirExtremes) {
    std::vector<CPoint> points;
    for (int x = 0; x < 50 * kSub; ++x)
        points.emplace_back(x, (x % 7 == 0 ? 10 : x % 7 == 3 ? 70 : 40) * kSub);
    dc_.MoveTo(points.front());
    dc_.PolylineTo(points.data(), static_cast<int>(points.size()));
    const CRect ink = Inked();
    EXPECT_NEAR(ink.top, 10, 1) << "the round end of a line";
    EXPECT_NEAR(ink.bottom, 71, 1);
    for (int x = 1; x < 49; ++x) {
        for (int y = 11; y < 70; ++y) EXPECT_LT(GetRValue(At(x, y)), 128) << x << "," << y;
    }
}

// What a host thins to the first, lowest, highest and last point of each column of pixels looks as if it had
// not, to the last pixel.
TEST_F(Image, DrawsThinnedCurvesAsWhole) {
    std::mt19937 random(3);
    std::normal_distribution<double> step(0, 9);
    for (const int perColumn : {3, 8, 40}) {
        std::vector<CPoint> whole, thin;
        double y = 40.0 * kSub;
        for (int column = 0; column < 100; ++column) {
            std::vector<CPoint> run;
            for (int i = 0; i < perColumn; ++i)
                run.emplace_back(column * kSub + i * kSub / perColumn, static_cast<int>(y += step(random)));
            const auto lower = [](const CPoint& a, const CPoint& b) { return a.y < b.y; };
            auto low = std::min_element(run.begin(), run.end(), lower);
            auto high = std::max_element(run.begin(), run.end(), lower);
            if (high < low) std::swap(low, high);
            whole.insert(whole.end(), run.begin(), run.end());
            thin.insert(thin.end(), {run.front(), *low, *high, run.back()});
        }
        for (const int width : {0, 4 * kSub}) {
            CPen pen(PS_SOLID, width, RGB(30, 60, 90));
            CPen* previous = dc_.SelectObject(&pen);
            std::vector<std::uint32_t> pictures[2];
            for (const auto* line : {&whole, &thin}) {
                device_.Clear(RGB(255, 255, 255));
                dc_.Polyline(line->data(), static_cast<int>(line->size()));
                dc_.Flush();
                pictures[line == &thin].assign(device_.Pixels(), device_.Pixels() + 100 * 80);
            }
            dc_.SelectObject(previous);
            EXPECT_EQ(pictures[0], pictures[1]) << perColumn << " points a column, width " << width;
        }
    }
}

TEST_F(Image, ClipsEverythingToARegion) {
    dc_.IntersectClipRect(20 * kSub, 20 * kSub, 30 * kSub, 30 * kSub);
    CBrush red(RGB(255, 0, 0));
    CBrush* previous = dc_.SelectObject(&red);
    const CRect all = Units(0, 0, 100, 80);
    dc_.FillRect(&all, &red);
    dc_.Ellipse(Units(0, 0, 90, 70));
    Line(CPoint(0, 0), CPoint(90 * kSub, 75 * kSub));
    dc_.TextOut(0, 22 * kSub, "wide text in here", 17);
    dc_.SelectObject(previous);
    EXPECT_EQ(Inked(), CRect(20, 20, 30, 30));
}

TEST_F(Image, DrawsRoundAndSymmetricDiscs) {
    DrawColor color("c", RGB(0, 0, 0), 0);
    color.OpenOn(&dc_, 1000);
    color.Ellipse(Units(20, 20, 26, 26));
    EXPECT_EQ(Inked(), CRect(20, 20, 26, 26));
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 6; ++x) {
            EXPECT_NEAR(GetRValue(At(20 + x, 20 + y)), GetRValue(At(25 - x, 20 + y)), 6);
            EXPECT_NEAR(GetRValue(At(20 + x, 20 + y)), GetRValue(At(20 + y, 20 + x)), 6);
        }
    }
    EXPECT_GT(GetRValue(At(20, 20)), 200) << "no square";
}

TEST_F(Image, SurvivesHugeAndDegenerateShapes) {
    CBrush red(RGB(255, 0, 0));
    CBrush* previous = dc_.SelectObject(&red);
    const CPoint huge[] = {
        {INT32_MIN, INT32_MIN}, {INT32_MAX, INT32_MIN}, {INT32_MAX, INT32_MAX}, {INT32_MIN, INT32_MAX}};
    dc_.Polygon(huge, 4);
    EXPECT_EQ(At(50, 40), RGB(255, 0, 0));
    dc_.Polyline(huge, 4);
    dc_.Ellipse(CRect(5, 5, 5, 5));
    dc_.Ellipse(CRect(INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX));
    dc_.Rectangle(3, 3, 4, 4);
    const CRect empty(9, 9, 9, 9);
    dc_.FillRect(&empty, &red);
    dc_.SelectObject(previous);
}

TEST_F(Image, MeasuresTextAsOtherDevicesDo) {
    zel::qt::Install();
    CFont font;
    font.CreateFont(-2048, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
    dc_.SelectObject(&font);
    zel::MetricsDevice builtIn(96);
    CDC other(builtIn);
    other.SelectObject(&font);
    for (const char* text : {"Hello World", "0.6000000", "°C µm é", "WAVE To"}) {
        const int length = static_cast<int>(strlen(text));
        EXPECT_NEAR(dc_.GetTextExtent(text, length).cx, other.GetTextExtent(text, length).cx, length) << text;
    }
    TEXTMETRIC metrics{};
    dc_.GetTextMetrics(&metrics);
    EXPECT_EQ(metrics.tmHeight - metrics.tmInternalLeading, 2048) << "the em";
    const std::size_t ends[] = {1, 5, 11};
    EXPECT_EQ(dc_.GetPrefixExtents("Hello World", ends)[2], dc_.GetTextExtent("Hello World", 11).cx);
}

TEST_F(Image, WritesTextWhereItIsTold) {
    CFont font;
    font.CreateFont(-20 * kSub, 0, 900, 900, 700, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
    dc_.SelectObject(&font);
    dc_.SetBkMode(TRANSPARENT);
    dc_.TextOut(30 * kSub, 70 * kSub, "HH", 2);
    const CRect ink = Inked();
    EXPECT_GE(ink.left, 30) << "the top of rotated letters faces left";
    EXPECT_LE(ink.bottom, 70);
    EXPECT_NEAR(ink.Height(), 28, 4);
    std::string warned;
    const auto handler = zel::SetWarningHandler([&](const std::string& message) { warned = message; });
    CFont missing;
    missing.CreateFont(-20, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, "No Such Family");
    dc_.SelectObject(&missing);
    dc_.TextOut(0, 0, "x", 1);
    zel::SetWarningHandler(handler);
    EXPECT_THAT(warned, testing::HasSubstr("\"No Such Family\" is not installed"));
}

// Half of black on white is 127, and half of black on that 63.
TEST_F(Image, MixesTransparentInk) {
    CPen pen(PS_SOLID, 4 * kSub, RGB(0, 0, 0), 128);
    CPen* previous = dc_.SelectObject(&pen);
    Line(CPoint(0, 10 * kSub), CPoint(90 * kSub, 10 * kSub));
    Line(CPoint(20 * kSub, 0), CPoint(20 * kSub, 30 * kSub));
    EXPECT_EQ(At(40, 10), RGB(127, 127, 127));
    EXPECT_EQ(At(20, 10), RGB(63, 63, 63)) << "two lines";
    const auto cross = [&](int y) {
        const POINT crossing[] = {{10 * kSub, y * kSub},
                                  {60 * kSub, y * kSub},
                                  {60 * kSub, (y + 9) * kSub},
                                  {40 * kSub, (y + 9) * kSub},
                                  {40 * kSub, (y - 9) * kSub}};
        dc_.Polyline(crossing, 5);
    };
    cross(40);
    EXPECT_EQ(At(40, 40), RGB(127, 127, 127)) << "one line that crosses itself";
    EXPECT_EQ(At(60, 40), RGB(127, 127, 127)) << "at its corner";
    dc_.BeginCurve();
    cross(60);
    cross(62);
    dc_.EndCurve();
    EXPECT_EQ(At(40, 61), RGB(127, 127, 127)) << "one figure of two lines";
    dc_.SelectObject(previous);

    CBrush quarter;
    quarter.CreateSolidBrush(RGB(255, 0, 0), 64);
    CBrush* before = dc_.SelectObject(&quarter);
    dc_.SelectStockObject(NULL_PEN);
    const CRect box = Units(70, 20, 80, 30), far = Units(70, 40, 80, 50);
    dc_.FillRect(&box, &quarter);
    EXPECT_EQ(At(75, 25), RGB(255, 191, 191)) << "255 * 191 / 255";
    const CPoint corners[] = {far.TopLeft(), {far.right, far.top}, far.BottomRight(), {far.left, far.bottom}};
    dc_.Polygon(corners, 4);
    EXPECT_EQ(At(75, 45), RGB(255, 191, 191));
    for (const int size : {8, 24}) {
        device_.Clear(RGB(255, 255, 255));
        const CPoint places[] = {{40 * kSub, 40 * kSub}, {42 * kSub, 40 * kSub}};
        const CRect disc = Units(-size / 2, -size / 2, size / 2, size / 2);
        dc_.BeginCurve();
        for (const CPoint& place : places) dc_.Ellipses({&place, 1}, disc);
        dc_.EndCurve();
        EXPECT_EQ(At(41, 40), RGB(255, 191, 191)) << "marks of a series, side " << size;
    }
    dc_.SelectObject(before);
}

// The letters of Hebrew are drawn from the right, marks over their letter, and Arabic letters join.
TEST_F(Image, ShapesAndOrdersText) {
    CFont font;
    font.CreateFont(-24 * kSub, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
    CFont* previous = dc_.SelectObject(&font);
    dc_.SetBkMode(TRANSPARENT);
    const auto drawn = [&](auto draw) {
        device_.Clear(RGB(255, 255, 255));
        draw();
        dc_.Flush();
        return std::vector<std::uint32_t>(device_.Pixels(),
                                          device_.Pixels() + device_.Width() * device_.Height());
    };
    const auto write = [&](int x, const CString& text) { dc_.TextOut(x, 5 * kSub, text); };
    const CString alef = "\u05D0", gimel = "\u05D2";
    const int width = dc_.GetTextExtent(gimel).cx;
    const auto both = drawn([&] { write(0, alef + gimel); });
    EXPECT_NE(both, drawn([&] { write(0, gimel + alef); }));
    EXPECT_EQ(both, drawn([&] {
                  const CString marked =
                      CString("\u202D") + gimel + alef;  // from the left, whatever they are
                  write(0, marked);
              }));
    EXPECT_NEAR(dc_.GetTextExtent(alef + gimel).cx, dc_.GetTextExtent(alef).cx + width, 1);
    EXPECT_EQ(drawn([&] { write(0, "e\u0301"); }), drawn([&] { write(0, "\u00E9"); }));
    const CString beh = "\u0628";
    EXPECT_NE(dc_.GetTextExtent(beh + beh).cx, 2 * dc_.GetTextExtent(beh).cx) << "joined letters are others";
    // As a line of characters, each with its place: the whole is drawn as one text.
    EXPECT_EQ(drawn([&] {
                  const zel::TextSpan spans[] = {{"\u05D0", {0, 5 * kSub}}, {"\u05D2", {width, 5 * kSub}}};
                  dc_.TextRun(spans);
              }),
              both);
    const std::string mixed = "ab \u05D0\u05D2 \u0628\u0628 cd";
    std::vector<std::size_t> ends;
    for (std::size_t i = 1; i <= mixed.size(); ++i) ends.push_back(i);
    const std::vector<int> widths = dc_.GetPrefixExtents(mixed, ends);
    EXPECT_TRUE(std::is_sorted(widths.begin(), widths.end()));
    EXPECT_EQ(widths.back(), dc_.GetTextExtent(mixed.c_str()).cx);
    EXPECT_EQ(widths[2], dc_.GetTextExtent("ab ").cx) << "plain text is as wide as ever";
    // No font has it: a box, and one warning.
    std::vector<std::string> warnings;
    const auto before = zel::SetWarningHandler([&](const std::string& text) { warnings.push_back(text); });
    EXPECT_EQ(drawn([&] { write(0, "\U00012000\U00012001"); }), drawn([&] { write(0, "\u25A1\u25A1"); }));
    zel::SetWarningHandler(before);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_THAT(warnings[0], testing::HasSubstr("U+12000"));
    dc_.SelectObject(previous);
}

// Pens of the platform and raster modes, pixel by pixel: with the first one, without the last.
TEST_F(Image, DrawsStyledAndInvertingLinesToThePixel) {
    zel::qt::ImageDevice screen(60, 40, 96, 0, zel::qt::ImageDevice::Grid::PIXELS);
    screen.Clear(RGB(255, 255, 255));
    CDC dc(screen);
    CPen dots(PS_DOT, 1, RGB(0, 0, 0));
    CPen* previous = dc.SelectObject(&dots);
    dc.SetBkColor(RGB(255, 255, 0));
    const auto row = [&](int y) {
        std::string text;
        for (int x = 8; x < 22; ++x) {
            const COLORREF color = screen.GetPixel(CPoint(x, y));
            text += color == RGB(255, 255, 255) ? '.' : color == RGB(0, 0, 0) ? '#' : 'o';
        }
        return text;
    };
    const auto line = [&](int x1, int y1, int x2, int y2) {
        dc.MoveTo(x1, y1), dc.LineTo(x2, y2), dc.Flush();
    };
    line(10, 5, 20, 5);
    EXPECT_EQ(row(5), "..###ooo###o..") << "gaps in the background colour";
    dc.SetBkMode(TRANSPARENT);
    line(20, 7, 10, 7);
    EXPECT_EQ(row(7), "....###...###.") << "from the right";
    EXPECT_EQ(screen.GetPixel(CPoint(20, 7)), RGB(0, 0, 0)) << "from the right";
    EXPECT_EQ(screen.GetPixel(CPoint(10, 7)), RGB(255, 255, 255));
    dc.SelectObject(previous);
    dc.SetROP2(R2_NOT);
    line(10, 9, 20, 9);
    EXPECT_EQ(row(9), "..##########..");
    line(10, 9, 20, 9);
    EXPECT_EQ(row(9), "..............");
    line(10, 12, 13, 15);
    EXPECT_EQ(row(12), "..#...........");
    EXPECT_EQ(row(15), "..............");
    dc.SetROP2(R2_COPYPEN);

    // An outlined polygon and its fill meet: no white between, and none of the fill outside.
    CBrush red(RGB(255, 0, 0));
    CBrush* before = dc.SelectObject(&red);
    const CPoint square[] = {{30, 10}, {40, 10}, {40, 20}, {30, 20}};
    dc.Polygon(square, 4);
    EXPECT_EQ(screen.GetPixel(CPoint(39, 15)), RGB(255, 0, 0));
    EXPECT_EQ(screen.GetPixel(CPoint(40, 15)), RGB(0, 0, 0));
    EXPECT_EQ(screen.GetPixel(CPoint(29, 15)), RGB(255, 255, 255));
    const CPoint kite[] = {{45, 20}, {50, 15}, {55, 20}, {50, 25}};
    dc.Polygon(kite, 4);
    const auto redness = [&](int x) { return GetGValue(screen.GetPixel(CPoint(x, 20))); };
    for (int i = 0; i < 5; ++i) EXPECT_NEAR(redness(46 + i), redness(54 - i), 1) << "the same on both sides";
    dc.SelectObject(before);
}

// A wide line along an axis has the ends of a slanted one.
TEST_F(Image, RoundsTheEndsOfWideLines) {
    CPen wide(PS_SOLID, 9 * kSub, RGB(0, 0, 0));
    CPen* previous = dc_.SelectObject(&wide);
    Line(CPoint(20 * kSub, 30 * kSub), CPoint(60 * kSub, 30 * kSub));
    EXPECT_EQ(Inked(), CRect(16, 26, 65, 35));
    EXPECT_EQ(At(16, 30), RGB(0, 0, 0));
    EXPECT_EQ(At(16, 26), RGB(255, 255, 255)) << "no corner";
    EXPECT_EQ(At(40, 26), RGB(0, 0, 0)) << "crisp sides";
    EXPECT_EQ(At(40, 25), RGB(255, 255, 255));
    dc_.SelectObject(previous);
}

// Sixteen points to a pixel that go one way look as the straight line that they are.
TEST_F(Image, KeepsTheSlantOfDenseLines) {
    const auto drawn = [&](int step) {
        device_.Clear(RGB(255, 255, 255));
        std::vector<POINT> line;
        for (int x = 0; x <= 20 * kSub; x += step) line.push_back({30 * kSub + x, 5 * kSub + 3 * x});
        dc_.BeginCurve();
        dc_.Polyline(line.data(), static_cast<int>(line.size()));
        dc_.EndCurve();
        return std::vector<std::uint32_t>(device_.Pixels(),
                                          device_.Pixels() + device_.Width() * device_.Height());
    };
    const auto dense = drawn(1), straight = drawn(20 * kSub);
    int most = 0;
    for (std::size_t i = 0; i < dense.size(); ++i)
        most = std::max(most,
                        std::abs(static_cast<int>(dense[i] & 0xFF) - static_cast<int>(straight[i] & 0xFF)));
    EXPECT_LT(most, 40) << "of 255";
}

TEST_F(Image, RefusesWhatNoMemoryHolds) {
    try {
        const zel::qt::ImageDevice image(20'000, 20'000, 96);
        ADD_FAILURE();
    } catch (CInvalidArgException* e) {
        EXPECT_THAT(zel::TakeMessage(e), testing::HasSubstr("choose a lower resolution"));
    }
}

// Plots a symbol at places in logical units, together or one after another.
class Plotted : public Zel2 {
  public:
    Plotted(DrawSymbol& symbol, const std::vector<CPoint>& places, bool together)
        : symbol_(symbol), places_(places), together_(together) {}
    CSize Size() override { return {1042, 833}; }
    void OnDraw() override {
        if (together_) symbol_.PlotOn(this, places_);
        for (std::size_t i = 0; !together_ && i < places_.size(); ++i) symbol_.PlotOn(this, places_[i]);
    }

  private:
    DrawSymbol& symbol_;
    const std::vector<CPoint>& places_;
    bool together_;
};

// Copied marks look as marks that are drawn one by one, whatever their shape, border, ink and clip. The
// places are quarters of a pixel, none of them twice.
TEST_F(Image, CopiesMarksAsTheyAreDrawn) {
    using Grid = zel::qt::ImageDevice::Grid;
    zel::qt::Install();
    std::mt19937 random(5);
    for (int type = zel::SYMBOL_CIRCLE; type <= zel::SYMBOL_CROSS + 1; ++type) {
        for (const Grid grid : {Grid::SIXTEENTHS, Grid::PIXELS}) {
            const bool custom = type > zel::SYMBOL_CROSS;
            int xs[] = {0, 50, 130}, ys[] = {0, 120, -20};
            DrawSymbol symbol("s", CSize(50 + 10 * type, 60),
                              custom ? zel::SYMBOL_CUSTOM : static_cast<zel::SymbolKind>(type), "", type % 6,
                              RGB(0, 0, 90), 0, RGB(200, 20 * type % 256, 0), 0, type % 4 != 2, "", 0, 0, 0,
                              xs, ys, 3);
            symbol.Opacity(type % 3 == 0 ? 0.5 : 1);
            std::vector<CPoint> places;
            const int quarter = grid == Grid::SIXTEENTHS ? 4 : 1,
                      across = grid == Grid::SIXTEENTHS ? 400 : 100;
            std::set<std::pair<int, int>> taken;
            // Few and apart, or many over one another, whose edges add up.
            const bool few = type % 2 == 0;
            while (places.size() < (few ? 60 : 600)) {
                const auto any = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
                const std::pair<int, int> at(any(across) * quarter, any(across * 4 / 5) * quarter);
                if (taken.insert(at).second) places.push_back({at.first, at.second});
            }
            const auto drawn = [&](bool together) {
                zel::qt::ImageDevice image(100, 80, 96, 0, grid);
                image.Clear(RGB(240, 250, 255));
                CDC dc(image);
                dc.IntersectClipRect(0, 0, across * quarter * 3 / 4, 100'000);
                Zel2Main root;
                root.SetRules(ZelRules::EXACT);
                DrawSymbol copy(symbol);
                root.Add(new Plotted(copy, places, together));
                root.PrepareMappingFor(&dc, nullptr, 0, 0);
                root.Draw(&dc);
                dc.Flush();
                return std::vector<std::uint32_t>(image.Pixels(), image.Pixels() + 8000);
            };
            const auto fast = drawn(true), plain = drawn(false);
            int most = 0;
            for (std::size_t i = 0; i < plain.size(); ++i) {
                for (int shift = 0; shift < 24; shift += 8)
                    most = std::max(most, std::abs(static_cast<int>(fast[i] >> shift & 0xFF) -
                                                   static_cast<int>(plain[i] >> shift & 0xFF)));
            }
            EXPECT_LE(most, few ? 16 : 40)
                << "as exact as the painter's edges: type " << type << " grid " << static_cast<int>(grid);
            EXPECT_NE(plain[8000 / 2 + 30], 0U);
        }
    }
}

// PNG files hold the pixels themselves, in as many bits as the colours need.
TEST_F(Image, WritesPngWithEveryNumberOfColors) {
    const zel::test::TemporaryFolder folder;
    std::mt19937 random(3);
    for (const int colors : {1, 2, 3, 16, 17, 256, 257, 5000}) {
        for (const bool opaque : {true, false}) {
            zel::qt::ImageDevice image(83, 61, 96, 0, zel::qt::ImageDevice::Grid::PIXELS);
            image.Clear(RGB(255, 255, 255), opaque);
            CDC dc(image);
            for (int i = 1; i < colors; ++i) {
                const auto shade = static_cast<int>(random() % 0x1000000);
                const CRect box(CPoint(i % 83, i / 83), CSize(1, 1));
                dc.FillSolidRect(&box, static_cast<COLORREF>(shade));
            }
            dc.Flush();
            const std::string path = folder / "colors.png";
            image.Save(path.c_str());
            const QImage read =
                QImage(QString::fromStdString(path)).convertToFormat(QImage::Format_ARGB32_Premultiplied);
            ASSERT_EQ(read.size(), QSize(83, 61)) << colors;
            for (int y = 0; y < 61; ++y)
                ASSERT_TRUE(std::equal(image.Pixels() + y * 83, image.Pixels() + (y + 1) * 83,
                                       reinterpret_cast<const std::uint32_t*>(read.constScanLine(y))))
                    << colors << " row " << y;
            const int bits = colors <= 2 ? 1 : colors <= 4 ? 2 : colors <= 16 ? 4 : 8;
            EXPECT_EQ(zel::test::Content(path)[24], bits) << colors;
            EXPECT_EQ(QImage(QString::fromStdString(path)).dotsPerMeterX(), 3780);
        }
    }
}

}  // namespace
