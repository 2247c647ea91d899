#include "Support.h"
#include "scales/Labels.h"

#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <set>

namespace {

// A drawing of one graph of 1000 x 1000 units with margins of 100, on a device where a unit is a unit.
class Drawing {
  public:
    explicit Drawing(ZelRules rules = ZelRules::CLASSIC) : graph(new Zel2Graph) {
        root.SetRules(rules);
        root.Add(graph);
        graph->SetGraphSize(CSize(1000, 1000));
        graph->SetMargins(100, 100, 100, 100);
        graph->SetXLabels({0, 5}), graph->SetXTicks({0, 5}), graph->SetXLines({5});
        graph->SetYLabels({0}), graph->SetYTicks({0}), graph->SetYLines({});
        root.RegisterFont("Axis Font", "Arial", 100, 0, 0, 0, 0, 0, 0);
    }
    std::string Draw() {
        zel::RecordingDevice device(1000, CSize(4000, 4000));
        CDC dc(device);
        root.PrepareMappingFor(&dc, nullptr, 0, 0);
        root.Draw(&dc);
        dc.Flush();
        return device.Text();
    }
    Zel2Main root;
    Zel2Graph* graph;
};

TEST(Zel2Graph, DrawsNothingBeforeItHasCoordinates) {
    Drawing drawing;
    drawing.graph->Add(new Zel2Rect(CRect(0, 0, 5, 5), drawing.root.RegisterPen("p", 0, 1, 0, 0, nullptr), -1,
                                    Zel2Rect::RECTANGLE, -1));
    EXPECT_EQ(drawing.Draw(), "");
}

TEST(Zel2Graph, DrawsFromBackgroundToLabels) {
    Drawing drawing;
    drawing.graph->SetCoord(0, 0, 10, 10);
    EXPECT_EQ(drawing.Draw(),
              "fill 100,900 901,101 #e0e0e0\n"                              // plot area
              "fill 0,1001 101,0 #c0c0c0\nfill 100,1001 901,900 #c0c0c0\n"  // margins
              "fill 0,100 901,0 #c0c0c0\nfill 900,1001 1001,0 #c0c0c0\n"
              "pen solid 4 #c0c0c0\npolyline 500,900 500,100\n"       // grid
              "pen solid 4 #000000\npolyline 100,900 40,900\n"        // y ticks
              "polyline 100,900 100,960\npolyline 500,900 500,960\n"  // x ticks
              "polyline 100,900 100,100 900,100 900,900 100,900\n"    // plot frame
              "font \"Arial\" -139 weight 400\ntextcolor #000000\n"
              "text 62,975 \"0\"\ntext 462,975 \"5\"\n"  // labels, centred and right-aligned
              "text -52,823 \"0\"\n");
}

TEST(Zel2Graph, LeavesWhiteToTheWindow) {
    Drawing drawing;
    drawing.root.RegisterColor("Background Color", 0xFFFFFF, 0xFFFFFF);
    drawing.root.RegisterColor("Frame Color", 0xFFFFFF, 0xFFFFFF);
    drawing.graph->SetCoord(0, 0, 10, 10);
    EXPECT_THAT(drawing.Draw(), testing::Not(testing::HasSubstr("fill")));
}

TEST(Zel2Graph, ClipsPlottedObjectsWithExactRules) {
    for (const ZelRules rules : {ZelRules::CLASSIC, ZelRules::EXACT}) {
        Drawing drawing(rules);
        drawing.graph->SetCoord(0, 0, 10, 10);
        auto* points = new Zel2PointArray;
        points->SetPoints({5, 5}, {5, 15});
        points->SetColor(drawing.root.RegisterColor("fill", 1, 1));
        drawing.graph->AddIn(points);
        EXPECT_EQ(drawing.Draw().find("clip 100,100 901,901") != std::string::npos, rules == ZelRules::EXACT);
    }
}

TEST(Zel2Graph, AnchorsLabelsByTheirAngle) {
    const auto labelAt = [](ZelRules rules, int angle) {
        Drawing drawing(rules);
        drawing.graph->SetCoord(0, 0, 10, 10);
        drawing.graph->SetXLabels({5});
        drawing.graph->LabelY(false);
        drawing.graph->SetLabelAngles(angle, 0);
        const std::string text = drawing.Draw();
        return text.substr(text.find("\ntext ") + 6, text.find(" \"5\"") - text.find("\ntext ") - 6);
    };
    EXPECT_EQ(labelAt(ZelRules::EXACT, 900), labelAt(ZelRules::CLASSIC, 900))
        << "ends at its tick, centred on it";
    // A label of 77 x 155 units: rising text ends at the tick (500), falling text begins there.
    EXPECT_EQ(labelAt(ZelRules::EXACT, 300), "434,1013");
    EXPECT_EQ(labelAt(ZelRules::EXACT, -300), "500,975");
}

TEST(Labels, SayEnoughToBeToldApart) {
    using List = std::vector<std::string>;
    const std::vector<double> years{2000.5, 2001, 2001.5}, tens{10000, 10002, 10004};
    EXPECT_EQ(zel::LabelTexts(years, 4, ZelRules::CLASSIC), (List{"2000", "2001", "2002"}));
    EXPECT_EQ(zel::LabelTexts(years, 4, ZelRules::EXACT), (List{"2000.5", "2001", "2001.5"}));
    EXPECT_EQ(zel::LabelTexts(tens, 4, ZelRules::CLASSIC), (List{"1e+04", "1e+04", "1e+04"}));
    EXPECT_EQ(zel::LabelTexts(tens, 4, ZelRules::EXACT), (List{"10000", "10002", "10004"}));
    EXPECT_EQ(zel::LabelTexts({1000.00001, 1000.00002}, 7, ZelRules::EXACT),
              (List{"1000.00001", "1000.00002"}));
    EXPECT_EQ(zel::LabelTexts({0, 0.1 + 0.2}, 7, ZelRules::EXACT), (List{"0", "0.3"})) << "no noise";
    EXPECT_EQ(zel::PercentTexts({12.5, 100}, ZelRules::EXACT), (List{"12.5%", "100.0%"}));
    EXPECT_EQ(zel::PercentTexts({99.92, 99.96, 100}, ZelRules::CLASSIC), (List{"99.9%", "100.0%", "100.0%"}));
    EXPECT_EQ(zel::PercentTexts({99.92, 99.96, 100}, ZelRules::EXACT), (List{"99.92%", "99.96%", "100.00%"}));
}

TEST(Labels, LeaveOutWhatWouldOverlap) {
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        const int first = static_cast<int>(random() % 41) - 20, count = 1 + static_cast<int>(random() % 30);
        const double step = static_cast<double>(1 + random() % 90);
        const int sign = random() % 2 ? 1 : -1;
        std::vector<double> values;
        std::vector<zel::LabelPlace> places;
        for (int i = 0; i < count; ++i) {
            values.push_back((first + i) * 0.5);
            places.push_back({sign * i * step, static_cast<double>(random() % 200)});
        }
        const std::vector<std::size_t> shown = zel::LabelsWithRoom(values, places);
        ASSERT_FALSE(shown.empty());
        double widest = 0;
        for (const zel::LabelPlace& place : places) widest = std::max(widest, place.room);
        ASSERT_TRUE(widest > step || shown.size() == values.size()) << "all that fit are there";
        for (std::size_t k = 1; k < shown.size(); ++k) {
            const zel::LabelPlace &a = places[shown[k - 1]], &b = places[shown[k]];
            ASSERT_GE(std::fabs(b.middle - a.middle), (a.room + b.room) / 2);
            ASSERT_EQ(shown[k] - shown[k - 1], shown[1] - shown[0]) << "evenly";
        }
    }
    std::vector<zel::LabelPlace> crowded;
    for (int i = 0; i < 9; ++i) crowded.push_back({10.0 * i, 15});
    EXPECT_EQ(zel::LabelsWithRoom({1, 2, 3, 4, 5, 6, 7, 8, 9}, crowded),
              (std::vector<std::size_t>{1, 3, 5, 7}))
        << "at 2, 4, 6, 8";
    EXPECT_NEAR(zel::RoomAlong(CSize(100, 20), 900), 20, 1e-9);
    EXPECT_NEAR(zel::RoomAlong(CSize(100, 20), 300), 43, 1e-9) << "slanted: by the height and a gap";
}

TEST(Zel2Graph, KeepsByExactRulesWhatWasSet) {
    for (const ZelRules rules : {ZelRules::CLASSIC, ZelRules::EXACT}) {
        Drawing drawing(rules);
        drawing.graph->SetXLabels({});
        drawing.graph->SetXTicks({0.5, 6.5});
        drawing.graph->SetXLines({});
        drawing.graph->SetCoord(0.3, 0, 7.1, 10);
        drawing.Draw();
        const bool exact = rules == ZelRules::EXACT;
        double x0, y0, x1, y1;
        drawing.graph->GetFloatRect(x0, y0, x1, y1);
        EXPECT_EQ(std::pair(x0, x1), exact ? std::pair(0.3, 7.1) : std::pair(0.0, 8.0));
        EXPECT_EQ(drawing.graph->XTicks() == (std::vector<double>{0.5, 6.5}), exact);
        EXPECT_EQ(drawing.graph->XLabels().front(), exact ? 1 : 0);
        EXPECT_EQ(drawing.graph->XLabels().back(), exact ? 7 : 8);
    }
}

TEST(Zel2Graph, KeepsTheGridUnderCurvesByExactRules) {
    for (const ZelRules rules : {ZelRules::CLASSIC, ZelRules::EXACT}) {
        Drawing drawing(rules);
        drawing.graph->SetCoord(0, 0, 10, 10);
        drawing.graph->SetYTicks({0, 10});
        drawing.graph->SetYLabels({0, 10});
        drawing.graph->SetYRLabels(0, 100);
        auto* points = new Zel2PointArray;
        points->SetPoints({1, 9}, {1, 9});
        points->SetPen(drawing.root.RegisterPen("curve", DrawPen::SOLID, 0, 0, 0, nullptr));
        drawing.graph->AddIn(points);
        const std::string text = drawing.Draw();
        const bool exact = rules == ZelRules::EXACT;
        EXPECT_EQ(text.find("polyline 500,900 500,100") < text.find("polyline 180,820 820,180"), exact);
        // The tick of a label on the right reaches from 900 to 960.
        const std::size_t begin = text.rfind("\ntext ", text.rfind("\"1\""));  // of 100.0%
        EXPECT_EQ(std::stoi(text.substr(begin + 6)) >= 960, exact);
    }
}

TEST(Zel2Graph, ConvertsBothWays) {
    Zel2Graph graph;
    graph.SetGraphSize(CSize(5000, 4000));
    graph.SetMargins(800, -1, -5, 800);
    graph.SetCoord(0, 0, 10, 100);
    EXPECT_EQ(graph.F2R(5, 50), CPoint(2500, 2000));
    EXPECT_EQ(graph.F2R(10, 100), CPoint(4200, 3200)) << "negative margins take the left one's value";
    double x = 2500, y = 2000;
    graph.R2F(x, y);
    EXPECT_EQ(std::pair(x, y), std::pair(5.0, 50.0));
    float fx = 2500, fy = 2000;
    graph.R2F(&fx, &fy);
    EXPECT_EQ(std::pair(fx, fy), std::pair(5.0F, 50.0F));
    graph.SetCoord(0, 0, 3, 1);
    graph.PrepareMapping();
    EXPECT_EQ(graph.X(1), 1933) << "truncated";
    graph.SetCoord(1, 1, 1, 1);
    EXPECT_EQ(graph.F2R(2, 2), CPoint(INT32_MAX, INT32_MAX)) << "an empty range";
}

TEST(Zel2Graph, FreezesItsAxisTypes) {
    Drawing drawing;
    drawing.graph->SetAxisType(2, 1);
    drawing.graph->SetCoord(0, 0, 10, 10);
    drawing.graph->SetAxisType(1, 1);
    drawing.graph->AdjustXAxis(0, 10, 8, 1);
    EXPECT_TRUE(drawing.graph->XLabels().empty());
}

TEST(Zel2Graph, ClosesItsFramesByStyle) {
    const auto runs = [](int style) {
        Drawing drawing;
        drawing.graph->SetFrameStyle(style);
        drawing.graph->SetCoord(0, 0, 10, 10);
        drawing.graph->SetXTicks({}), drawing.graph->SetYTicks({}), drawing.graph->SetXLines({});
        const std::string text = drawing.Draw();
        return text.substr(text.find("polyline"), text.find("font") - text.find("polyline"));
    };
    EXPECT_EQ(runs(1), "polyline 100,900 100,100 900,100 900,900\n");
    EXPECT_EQ(runs(2), "polyline 100,900 100,100\npolyline 900,100 900,900\n");
    EXPECT_EQ(runs(3), "polyline 100,900 100,100\npolyline 900,100 900,900 100,900\n");
}

}  // namespace
