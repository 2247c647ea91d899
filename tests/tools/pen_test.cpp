#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sstream>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class Pens : public testing::Test {
  protected:
    void OpenAt(DrawPen& pen, int scale) { pen.OpenOn(&dc_, scale); }
    std::string Recorded() {
        dc_.Flush();
        std::string text = device_.Text();
        device_.Clear();
        return text;
    }
    std::string Lines() {
        const std::string text = Recorded();
        std::string lines;
        for (std::size_t at = 0; (at = text.find("polyline", at)) != std::string::npos; at += 8) {
            lines += text.substr(at + 8, text.find('\n', at) - at - 8) + ";";
        }
        return lines;
    }
    zel::RecordingDevice device_{254};  // ten units to a millimetre
    CDC dc_{device_};
};

TEST_F(Pens, TakeTheirWidthFromTheScale) {
    const auto widthOf = [&](int width, int scale) {
        DrawPen pen("p", DrawPen::SOLID, width, 0, 0, nullptr);
        OpenAt(pen, scale);
        pen.MoveTo(0, 0);
        pen.LineTo(9, 0);
        const std::string text = Recorded();
        return text.substr(0, text.find('\n'));
    };
    EXPECT_EQ(widthOf(0, 1000), "pen solid 0 #000000");
    EXPECT_EQ(widthOf(1, 1000), "pen solid 1 #000000");
    EXPECT_EQ(widthOf(10, 1000), "pen solid 10 #000000");
    EXPECT_EQ(widthOf(10, 2000), "pen solid 20 #000000");
    EXPECT_EQ(widthOf(1, 10), "pen solid 1 #000000") << "no thinner than one unit";
}

TEST_F(Pens, EstimateLengths) {
    EXPECT_EQ(DrawPen::Length(3, 4), 5);
    EXPECT_EQ(DrawPen::Length(10, 2), 10);
    EXPECT_EQ(DrawPen::Length(0, 0), 0);
    EXPECT_EQ(DrawPen::Length(-6, 10), 13);
    EXPECT_EQ(DrawPen::Length(INT32_MIN, INT32_MIN), INT32_MAX);
}

TEST_F(Pens, CarryTheirDashesRoundCorners) {
    int pattern[20] = {30, 10, 0};
    DrawPen pen("p", DrawPen::USER_DEFINED, 0, 0, 0, pattern);
    OpenAt(pen, 1000);
    pen.MoveTo(0, 0);
    pen.LineTo(50, 0);
    pen.LineTo(50, 50);
    // A first dash of 29, a gap of 10, then dashes of 29 and gaps of 10; the corner takes one more off what
    // is left.
    EXPECT_EQ(Lines(), " 0,0 29,0; 39,0 50,0 50,18; 50,28 50,50;");
    pen.LineTo(50, 50);
    EXPECT_EQ(Lines(), "") << "a line without length";
    DrawPen none("n", DrawPen::NONE, 5, 0, 0, nullptr);
    OpenAt(none, 1000);
    none.MoveTo(0, 0);
    none.LineTo(100, 0);
    EXPECT_EQ(Lines(), "");
    EXPECT_EQ(dc_.GetCurrentPosition(), CPoint(100, 0));
}

// At these scales a dash and its gap add up to nothing or less.
TEST_F(Pens, EndAtAnyScale) {
    for (int style = DrawPen::SOLID; style <= DrawPen::NONE; ++style) {
        for (const int width : {0, 2, 50}) {
            for (const int scale : {1, 3, 10, 50, 99, 150, 250, 333, 600, 999, 32000}) {
                DrawPen pen("p", style, width, 0, 0, nullptr);
                OpenAt(pen, scale);
                pen.MoveTo(0, 0);
                for (const CPoint& p : {CPoint(500, 3), CPoint(490, 400), CPoint(489, 399), CPoint(0, 0)})
                    pen.LineTo(p.x, p.y);
                EXPECT_EQ(Lines().empty(), style == DrawPen::NONE) << style << " " << width << " " << scale;
            }
        }
    }
}

TEST_F(Pens, WalkOnlyWhatCanBeSeen) {
    DrawPen pen("p", DrawPen::DOT, 0, 0, 0, nullptr);
    OpenAt(pen, 1000);
    pen.MoveTo(-2'000'000'000, 10);
    pen.LineTo(2'000'000'000, 10);
    const std::string lines = Lines();
    EXPECT_LT(lines.size(), 100'000U);
    EXPECT_NE(lines.find(" 51"), std::string::npos) << "dashes in the middle of the surface";

    // Dashes of 29 and gaps of 10, as above: 299,971 units behind the first dash are 7691 cycles, a gap, and
    // 12 units of a dash. Of the 30 - 1 that a dash has where a line begins, 17 are left.
    int dashes[20] = {30, 10};
    DrawPen counted("c", DrawPen::USER_DEFINED, 0, 0, 0, dashes);
    OpenAt(counted, 1000);
    counted.MoveTo(-299'000, 0);
    counted.LineTo(1000, 0);
    counted.LineTo(1000, 40);
    const std::string end = Lines();
    EXPECT_THAT(end, testing::EndsWith(" 988,0 1000,0 1000,17; 1000,27 1000,40;"));
    EXPECT_THAT(end, testing::HasSubstr("; 910,0 939,0; 949,0 978,0;"));

    int pattern[20] = {197, 0};
    DrawPen foreign("f", DrawPen::USER_DEFINED, -1'175'891'661, 0, 0, pattern);
    OpenAt(foreign, 1000);
    foreign.MoveTo(0, 0);
    foreign.LineTo(1000, 0);
    EXPECT_LT(Lines().size(), 1000U) << "a negative width is none";
}

// Two parts of a surface that are painted one after the other must fit together, whatever lies before them.
TEST_F(Pens, WalkLongLinesAlikeInEveryPart) {
    std::mt19937 random(3);
    for (int round = 0; round < 60; ++round) {
        const auto far = [&] { return static_cast<int>(random() % 4'000'000) - 2'000'000; };
        const CPoint from(far(), far()), through(500, 300);
        const CPoint to(through.x + (through.x - from.x), through.y + (through.y - from.y) * (round % 3) / 2);
        std::string parts[2], after[2];
        for (const int part : {0, 1}) {
            DrawPen pen("p", 1 + round % 4, round % 3, 0, 0, nullptr);
            OpenAt(pen, 1000);
            dc_.SaveDC();
            part ? dc_.IntersectClipRect(300, 0, 1024, 768) : dc_.IntersectClipRect(0, 0, 700, 768);
            pen.MoveTo(from.x, from.y);
            pen.LineTo(to.x, to.y);
            parts[part] = Lines();
            pen.LineTo(to.x + 900, to.y);
            after[part] = Lines();
            dc_.RestoreDC(-1);
        }
        EXPECT_EQ(after[0], after[1]) << "the dashes go on alike";
        // The dashes that lie where both parts are.
        std::string common[2];
        for (const int part : {0, 1}) {
            std::istringstream lines(parts[part]);
            for (std::string line; std::getline(lines, line, ';');) {
                int x1 = 0, x2 = 0;
                char comma = 0;
                int y1 = 0;
                std::istringstream(line) >> x1 >> comma >> y1 >> x2;
                if (std::min(x1, x2) > 320 && std::max(x1, x2) < 680) common[part] += line + ";";
            }
        }
        EXPECT_EQ(common[0], common[1]) << "round " << round;
    }
}

// Where rounding makes a short pattern wander about the line, it goes on with dots to the end.
TEST_F(Pens, DotLinesOfASlopeOfOneHalf) {
    DrawPen pen("p", DrawPen::DASH_DOT, 1, 0, 0, nullptr);
    OpenAt(pen, 79);
    pen.MoveTo(0, 0);
    pen.LineTo(567, 278);
    const std::string lines = Lines();
    EXPECT_GT(std::count(lines.begin(), lines.end(), ';'), 500);
}

TEST(DrawPenClip, MovesBothEndsOntoTheRectangle) {
    const auto clipped = [](double x1, double y1, double x2, double y2) {
        const int left = DrawPen::Clip(x1, y1, x2, y2, 0, 0, 5, 5);
        return left ? std::vector{x1, y1, x2, y2} : std::vector<double>{};
    };
    EXPECT_EQ(clipped(0, 0, 10, 10), (std::vector<double>{0, 0, 5, 5}));
    EXPECT_EQ(clipped(1, 9, 4, 9), std::vector<double>{});
    EXPECT_EQ(clipped(-2, 2, 2, 2), (std::vector<double>{0, 2, 2, 2}));
    EXPECT_EQ(clipped(1, 1, 4, 4), (std::vector<double>{1, 1, 4, 4}));
    EXPECT_EQ(clipped(-1, 4, 1, 6), std::vector<double>{}) << "past the corner";
    EXPECT_EQ(clipped(5, 1, 5, 4), std::vector<double>{}) << "on a bound counts as outside";
    EXPECT_EQ(clipped(2, -1.7e308, 2, 1.7e308).size(), 4U) << "a difference that is no double";
}

// Lines one at a time and all at once must reach the device as the same lines.
TEST_F(Pens, DrawSeriesAsOneLineAfterAnother) {
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        Zel2Main root;
        auto* graph = new Zel2Graph;
        root.Add(graph);
        graph->SetGraphSize(CSize(3000, 2000));
        graph->SetMargins(0, 0, 0, 0);
        graph->SetCoord(0, 0, 10, round % 5 == 4 ? -10 : 10);
        auto* points = new Zel2PointArray;
        graph->AddIn(points);
        root.PrepareMappingFor(&dc_, nullptr, 0, 0);
        graph->PrepareMapping();
        const double spread = round % 3 == 0 ? 0.01 : 6;
        std::normal_distribution<double> step(0, spread);
        std::vector<double> xs, ys;
        for (int i = 0; i < 700; ++i) {
            xs.push_back(round % 2 ? i / 70.0 : 5 + step(random));
            // Whole stretches lie beyond a side, and are passed over.
            ys.push_back(round % 4 == 1 && i > 150 && i < 560 ? 60
                         : i % 97 == 96                       ? kNaN
                         : i % 89 == 88                       ? 1e300
                                                              : 5 + step(random));
        }
        DrawPen single("s", round % 6, round % 4, 0, 0, nullptr), bulk(single);
        OpenAt(single, 1000);
        OpenAt(bulk, 1000);
        single.SetWorldPoint(points, xs[0], ys[0]);
        for (std::size_t i = 0; i < xs.size(); ++i) single.LineTo(points, xs[i], ys[i]);
        single.LineTo(11, 12);
        const std::string expected = Lines();
        bulk.SetWorldPoint(points, xs[0], ys[0]);
        bulk.LineTo(*graph->Frame(), xs.data(), ys.data(), xs.size());
        bulk.LineTo(11, 12);
        EXPECT_EQ(Lines(), expected) << "round " << round;
    }
}

}  // namespace
