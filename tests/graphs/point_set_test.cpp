#include "Support.h"

#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A graph whose world is 0 to 10 both ways on a plot area of 1000 x 1000 units, y upwards.
class Series : public testing::Test {
  protected:
    Series() : graph_(new Zel2Graph), points_(new Zel2PointArray) {
        root_.Add(graph_);
        graph_->SetGraphSize(CSize(1000, 1000));
        graph_->SetMargins(0, 0, 0, 0);
        graph_->SetCoord(0, 0, 10, 10);
        graph_->AddIn(points_);
        pen_ = root_.RegisterPen("p", DrawPen::SOLID, 0, 0, 0, nullptr);
        color_ = root_.RegisterColor("c", 0, 0);
    }
    std::string Drawn() {
        zel::RecordingDevice device(1000);
        CDC dc(device);
        root_.PrepareMappingFor(&dc, nullptr, 0, 0);
        graph_->PrepareMapping();
        root_.OpenOn(&dc, 1000);
        drawn_->OnDraw();
        root_.Close();
        dc.Flush();
        std::string lines;
        std::istringstream text(device.Text());
        for (std::string line; std::getline(text, line);) {
            if (line.starts_with("polyline ") || line.starts_with("polygon "))
                lines += line.substr(line.find(' ') + 1) + ";";
        }
        return lines;
    }
    Zel2Main root_;
    Zel2Graph* graph_;
    Zel2PointArray* points_;
    Zel2PointSet* drawn_ = points_;
    int pen_;
    int color_;
};

TEST_F(Series, DrawsALineThatIsClippedAndExtended) {
    points_->SetPoints({1, 5, 9}, {2, 8, 2});
    points_->SetPen(pen_);
    EXPECT_EQ(Drawn(), "100,800 500,200 900,800;");
    points_->SetExtension(Zel2PointSet::BOTTOM, Zel2PointSet::RIGHT);
    EXPECT_EQ(Drawn(), "100,1000 100,800 500,200 900,800 1000,800;");
    points_->SetPoints({1, 5, 9}, {5, 15, 5});
    points_->SetExtension(0, 0);
    EXPECT_EQ(Drawn(), "100,500 300,0;700,0 900,500;");
    points_->SetPoints({0, 5}, {5, 5});
    points_->SetExtension(Zel2PointSet::BOTTOM, 0);
    EXPECT_EQ(Drawn(), "0,500 500,500;") << "a first point on the edge is not extended";
}

TEST_F(Series, LeavesGapsWhereThereAreNoNumbers) {
    points_->SetPen(pen_);
    points_->SetPoints({1, 2, 3, 4, 5, 6}, {1, 2, kNaN, 2, 1, kInfinity});
    EXPECT_EQ(Drawn(), "100,900 200,800;400,800 500,900;");
    points_->SetPoints({kNaN, 2, 3}, {1, 2, 1});
    EXPECT_EQ(Drawn(), "200,800 300,900;");
    points_->SetPoints({1, 2, 3}, {5, 1e6, 5});
    EXPECT_EQ(Drawn().substr(0, 8), "100,500 ") << "far away is clipped, not skipped";
    points_->SetColor(color_);
    points_->SetPoints({1, 2, 3, kNaN}, {1, kNaN, 1, 2});
    points_->SetPen(-1);
    EXPECT_EQ(Drawn(), "100,900 300,900 100,900;");
    for (const auto& xs : {std::vector<double>{}, {5.0}, {5.0, 5.0, 5.0}, {kNaN}}) {
        points_->SetPoints(xs, xs);
        points_->SetPen(pen_);
        Drawn();
    }
}

TEST_F(Series, FillsToTheSideItsExtensionsName) {
    points_->SetColor(color_);
    points_->SetPoints({2, 8}, {5, 7});
    points_->SetExtension(Zel2PointSet::BOTTOM, Zel2PointSet::BOTTOM);
    EXPECT_EQ(Drawn(), "200,1000 200,500 800,300 800,1000 200,1000;");
    points_->SetExtension(Zel2PointSet::LEFT, Zel2PointSet::RIGHT);
    EXPECT_EQ(Drawn(), "0,500 200,500 800,300 1000,300 1000,1000 0,1000 0,500;") << "two corners below";
    points_->SetExtension(Zel2PointSet::LEFT, 0);
    EXPECT_EQ(Drawn(), "0,500 200,500 800,300 0,500;");
}

TEST_F(Series, DrawsSymbolsWithinTheRange) {
    const int square = root_.RegisterSymbol("s", CSize(20, 20), zel::SYMBOL_SQUARE, "", 0, 0, 0, 0, 0, 0,
                                            "Arial", 80, 0, 0, nullptr, nullptr, 0);
    points_->SetPoints({0, 5, 10, 11, kNaN}, {0, 5, 10, 5, 5});
    points_->SetSymbol(square, true);
    EXPECT_EQ(std::ranges::count(Drawn(), ';'), 3) << "limits included";
    points_->SetSymbol(square, false);
    EXPECT_EQ(std::ranges::count(Drawn(), ';'), 2) << "not on the first point";
    points_->SetSymbol(-1, true);
    points_->AddSymbol(square);
    EXPECT_NE(zel::test::MessageOf<CInvalidArgException>([&] { Drawn(); }), "")
        << "a point without its symbol";
}

TEST_F(Series, WidensTheGraphsRange) {
    points_->SetPoints({2, 7, kNaN}, {-3, 12, 1});
    points_->AdjustXAxis(8);
    points_->AdjustYAxis(8);
    double x0, y0, x1, y1;
    graph_->GetFloatRect(x0, y0, x1, y1);
    EXPECT_EQ(std::pair(x0, x1), std::pair(0.0, 10.0)) << "never narrower";
    EXPECT_EQ(std::pair(y0, y1), std::pair(-4.0, 12.0));
    graph_->SetCoord(0, 0, 0, 0);
    points_->AdjustXAxis(8);
    graph_->GetFloatRect(x0, y0, x1, y1);
    EXPECT_EQ(std::pair(x0, x1), std::pair(2.0, 7.0));
    graph_->SetCoord(0, 0, 0, 0);
    points_->Clear();
    points_->AdjustXAxis(8);
    graph_->GetFloatRect(x0, y0, x1, y1);
    EXPECT_EQ(std::pair(x0, x1), std::pair(0.0, 0.0)) << "nothing to go by";
}

TEST_F(Series, ReachesTheLimitsByExactRules) {
    points_->SetPen(pen_);
    points_->SetPoints({0, 1, 2, 3, 4, 5, 6}, {0, 0, 0, 10, 10, 10, 0});
    EXPECT_EQ(Drawn(), "200,1000 300,0;500,0 600,1000;") << "both flat parts are missing";
    root_.SetRules(ZelRules::EXACT);
    const std::string whole = "0,1000 100,1000 200,1000 300,0 400,0 500,0 600,1000;";
    EXPECT_EQ(Drawn(), whole);
    const double above = std::nextafter(10.0, 11.0);
    points_->SetPoints({0, 1, 2, 3, 4, 5, 6}, {0, -5e-324, 0, above, above, 10, 0});
    EXPECT_EQ(Drawn(), whole) << "a rounding beyond";
    points_->SetPoints({-5, 0, 5, 10, 15}, {10, 15, 10, 15, 5});
    EXPECT_EQ(Drawn(), "") << "what only touches";
    points_->SetPoints({2, 4, 12}, {2, 8, 8});
    graph_->SetCoord(10, 10, 0, 0);
    const int square = root_.RegisterSymbol("s", CSize(20, 20), zel::SYMBOL_SQUARE, "", 0, 0, 0, 0, 0, 0,
                                            "Arial", 80, 0, 0, nullptr, nullptr, 0);
    EXPECT_EQ(Drawn(), "800,200 600,800 0,800;") << "both ranges run backwards";
    points_->SetPen(-1);
    points_->SetSymbol(square, true);
    EXPECT_EQ(std::ranges::count(Drawn(), ';'), 2);
    // The labels of -2.96 to -2.8 end a rounding below -2.8.
    points_->SetPoints({0, 1}, {-2.96, -2.8});
    graph_->SetCoord(0, 0, 0, 0);
    points_->AdjustXAxis(8);
    points_->AdjustYAxis(8);
    EXPECT_EQ(std::ranges::count(Drawn(), ';'), 2);
}

TEST_F(Series, WidensBackwardsAndEmptyRangesByExactRules) {
    root_.SetRules(ZelRules::EXACT);
    double x0, y0, x1, y1;
    graph_->AdjustXAxis(9.5, 0.5, 8, 1);
    graph_->AdjustYAxis(9.5, 0.5, 8, 0);
    graph_->GetFloatRect(x0, y0, x1, y1);
    EXPECT_EQ(std::pair(x0, x1), std::pair(10.0, 0.0));
    EXPECT_EQ(std::pair(y0, y1), std::pair(9.5, 0.5));
    EXPECT_EQ(graph_->YLabels(), (std::vector<double>{2, 4, 6, 8}));
    points_->SetPoints({1, 2, 3}, {5, 5, 5});
    graph_->SetCoord(0, 0, 0, 0);
    points_->AdjustYAxis(8);
    graph_->GetFloatRect(x0, y0, x1, y1);
    EXPECT_LT(y0, 5);
    EXPECT_GT(y1, 5);
    EXPECT_LT(y1 - y0, 2);
}

TEST_F(Series, NeedsNoArraysForItsLine) {
    class Computed : public Zel2PointSet {
      public:
        unsigned int NPoints() override { return 3000; }
        double X(long i) override { return static_cast<double>(i) / 300; }
        double Y(long i) override { return 5 + 4 * std::sin(static_cast<double>(i) / 100); }
    };
    auto* computed = new Computed;
    graph_->AddIn(computed);
    computed->SetPen(pen_);
    for (int i = 0; i < 3000; ++i) points_->Append(computed->X(i), computed->Y(i));
    points_->SetPen(pen_);
    const std::string stored = Drawn();
    drawn_ = computed;
    EXPECT_EQ(Drawn(), stored);
}

}  // namespace
