#include "Support.h"

#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace {

using testing::HasSubstr;
using testing::Not;
using zel::test::Letters;

// A drawing of 1000 x 1000 units on a device where a unit is a unit; y points up in the drawing.
class Plane : public testing::TestWithParam<ZelRules> {
  protected:
    explicit Plane(ZelRules rules = GetParam()) { root_.SetRules(rules); }
    std::string Drawn() {
        zel::RecordingDevice device(1000, CSize(4000, 4000));
        CDC dc(device);
        root_.Map()->SetWorld(CPoint(0, 0), CSize(1000, 1000));
        root_.Map()->SetLogical(CPoint(0, 1000), CPoint(1000, 0));
        root_.Draw(&dc);
        dc.Flush();
        return device.Text();
    }
    template <class Axis>
    Axis* AddAxis(CRect box) {
        auto* axis = new Axis;
        root_.Add(axis);
        axis->Origin(box.TopLeft());
        axis->SetSize(box.Size());
        return axis;
    }
    Zel2Main root_;
};

class Axes : public Plane {};
INSTANTIATE_TEST_SUITE_P(Rules, Axes, testing::Values(ZelRules::CLASSIC, ZelRules::EXACT));

TEST_P(Axes, StandBelowWhatTheyMeasure) {
    auto* axis = AddAxis<Zel2HAxis>(CRect(100, 100, 900, 300));
    EXPECT_EQ(Drawn(), "") << "without a range";
    axis->SetCoord(0, 10);
    axis->SetTitle("title", 50);
    const std::string text = Drawn();
    EXPECT_EQ(axis->Labels().size(), 6U);
    EXPECT_EQ(axis->Ticks(), axis->Labels());
    EXPECT_EQ(axis->Lines(), axis->Labels());
    EXPECT_EQ(axis->X(5), 500);
    EXPECT_EQ(axis->F2R(5), 400);
    EXPECT_THAT(text, HasSubstr("polyline 100,700 100,760\n")) << "down from the upper edge";
    EXPECT_THAT(text, Not(HasSubstr("polyline 100,700 100,500"))) << "no grid by itself";
    EXPECT_THAT(text, HasSubstr("text 62,790 \"0\"\n")) << "below the tick by the gap of 30";
    EXPECT_EQ(Letters(text), "0246810title");
    axis->SetAxisType(1, 0);
    EXPECT_THAT(Drawn(), HasSubstr("polyline 100,900 100,840\n")) << "up from the lower edge";
}

TEST_P(Axes, CountIntervalsByTheirHeight) {
    auto* axis = AddAxis<Zel2VAxis>(CRect(100, 0, 200, 1000));
    axis->SetCoord(0, 10);
    const std::string text = Drawn();
    EXPECT_EQ(axis->Labels().size(), 6U) << "5 intervals of 2 in a height of 1000";
    EXPECT_EQ(axis->Y(0), 1000);
    EXPECT_EQ(axis->Y(10), 0);
    EXPECT_THAT(text, HasSubstr("polyline 200,1000 140,1000\n")) << "to the left from the right edge";
    auto* low = AddAxis<Zel2VAxis>(CRect(100, 0, 200, 150));
    low->SetCoord(0, 10);
    Drawn();  // no interval fits, and nothing hangs
}

TEST_P(Axes, RegisterTheirToolsOnce) {
    auto* axis = AddAxis<Zel2HAxis>(CRect(0, 0, 1000, 100));
    axis->SetCoord(0, 10);
    Drawn();
    const int ticks = root_.GetPenIndex("Graph Ticks Pen");
    EXPECT_GE(ticks, 0);
    EXPECT_EQ(axis->GetPen(), GetParam() == ZelRules::CLASSIC ? ticks : -1)
        << "registering a pen makes it the rectangle's own";
    EXPECT_GE(root_.GetFontIndex("Graph Axis Title"), 0);
    Drawn();
    EXPECT_EQ(root_.GetPenIndex("Graph Ticks Pen"), ticks);
}

TEST_P(Axes, FollowANewRangeOnlyByExactRules) {
    auto* axis = AddAxis<Zel2HAxis>(CRect(0, 0, 1000, 100));
    axis->SetCoord(0, 10);
    Drawn();
    axis->SetCoord(0, 1000);
    Drawn();
    double min = 0, max = 0;
    axis->GetCoord(min, max);
    EXPECT_EQ(max, GetParam() == ZelRules::EXACT ? 1000 : 10);
    axis->SetLabels({0, 500, 2000});
    axis->SetCoord(0, 700);
    Drawn();
    axis->GetCoord(min, max);
    EXPECT_EQ(max, 2000) << "labels of one's own stay, and the range is fitted to them";
}

TEST_P(Axes, DrawUpwardTicksAndGridAcrossAnArea) {
    auto* axis = AddAxis<Zel2HAxis>(CRect(0, 0, 1000, 100));
    axis->SetCoord(0, 10);
    axis->SetTickLength(40);
    auto* area = new Zel2Rect;
    root_.Add(area);
    area->Origin(CPoint(0, 100));
    area->SetSize(CSize(1000, 500));
    class Painter : public Zel2 {
      public:
        void OnDraw() override { axis->OnDrawInRectangle(area); }
        Zel2HAxis* axis = nullptr;
        Zel2* area = nullptr;
    };
    auto* painter = new Painter;
    painter->axis = axis;
    painter->area = area;
    root_.Add(painter);
    const std::string text = Drawn();
    EXPECT_THAT(text, HasSubstr("polyline 0,900 0,860\n")) << "into the area";
    EXPECT_THAT(text, HasSubstr("polyline 200,400 200,900\n")) << "a grid line";
    axis->OnDrawInRectangle(nullptr);
}

TEST_P(Axes, SurviveEveryRange) {
    auto* axis = AddAxis<Zel2HAxis>(CRect(0, 0, 1000, 100));
    for (const double end : {0.0, std::nan(""), HUGE_VAL, 1e300, 5e-324, -3.0}) {
        axis->SetLabels({});
        axis->SetCoord(0, end);
        Drawn();
        axis->X(end);
    }
}

class CoordSystems : public Plane {};
INSTANTIATE_TEST_SUITE_P(Rules, CoordSystems, testing::Values(ZelRules::CLASSIC, ZelRules::EXACT));

TEST_P(CoordSystems, MapThroughTheirAxes) {
    auto* cs = new Zel2CoordSys(0, 0, 100, 100, CRect(0, 0, 1000, 500), 1, 1, -1, -1);
    root_.Add(cs);
    EXPECT_EQ(cs->Size(), CSize(1001, 501));
    EXPECT_EQ(cs->HAxis()->Size(), CSize(1000, 1));
    EXPECT_EQ(cs->VAxis()->Size(), CSize(1, 500));
    EXPECT_EQ(cs->F2R(50, 50), CPoint(500, 250));
    EXPECT_EQ(cs->F2R(100, 0), CPoint(1000, 0));
    cs->MoveTo(CPoint(10, 20));
    EXPECT_EQ(cs->Origin(), CPoint(10, 20));
    EXPECT_EQ(cs->Size(), CSize(1001, 501));
    Drawn();
    EXPECT_EQ(cs->F2L(0, 0), CPoint(10, 980));
    EXPECT_EQ(cs->F2L(100, 100), CPoint(1010, 480));
}

TEST_P(CoordSystems, DrawTheirContentAroundFrameAndGrid) {
    const int pen = root_.RegisterPen("frame", DrawPen::SOLID, 0, RGB(1, 2, 3), 0, nullptr);
    int colors[3];
    for (int i = 0; i < 3; ++i)
        colors[i] =
            root_.RegisterColor(("c" + std::to_string(i)).c_str(), static_cast<unsigned long>(i) + 1, 0);
    auto* cs = new Zel2CoordSys(0, 0, 100, 100, CRect(0, 0, 1000, 500), 1, 1, pen, -1);
    root_.Add(cs);
    for (int i = 0; i < 3; ++i)
        cs->ContentSet(i + 1)->Add(new Zel2Rect(CRect(0, 0, 9, 9), -1, colors[i], Zel2Rect::RECTANGLE, -1));
    EXPECT_EQ(cs->ContentSet(0), nullptr);
    EXPECT_EQ(cs->ContentSet(4), nullptr);
    const std::string text = Drawn();
    const auto at = [&](const char* part, std::size_t from = 0) { return text.find(part, from); };
    EXPECT_LT(at("#020000"), at("#010000")) << "the second set first";
    const bool exact = GetParam() == ZelRules::EXACT;
    EXPECT_EQ(at("polyline 200,") < at("#020000"), exact) << "the grid under all contents";
    EXPECT_EQ(at("#010000") < at("polyline 200,"), !exact) << "or above the first two";
    EXPECT_EQ(at("polyline 200,") < text.rfind("polyline 0,1000 0,499"), exact) << "and under the frame";
    EXPECT_LT(at("polyline 200,"), at("#030000")) << "and the third above the grid";
}

// A triangle in the content: where it lands on the first draw.
TEST_P(CoordSystems, PlaceTheirContentAtOnceOnlyByExactRules) {
    const int color = root_.RegisterColor("c", RGB(9, 9, 9), 0);
    auto* cs = new Zel2CoordSys(0, 0, 100, 100, CRect(0, 0, 1000, 500), 1, 1, -1, -1);
    root_.Add(cs);
    auto* polygon = new Zel2PolGraph(nullptr, -1, color);
    polygon->DefinePoints({{0, 0}, {100, 0}, {0, 100}, {0, 0}});
    cs->ContentSet(1)->Add(polygon);
    const std::string first = Drawn(), second = Drawn();
    if (GetParam() == ZelRules::EXACT) {
        EXPECT_THAT(first, HasSubstr("#090909"));
        EXPECT_EQ(first, second);
    } else {
        EXPECT_THAT(first, Not(HasSubstr("#090909"))) << "all on one point";
        EXPECT_THAT(second, HasSubstr("#090909"));
    }
}

class ExactCoordSystem : public Plane {
  protected:
    ExactCoordSystem() : Plane(ZelRules::EXACT) {}
};
INSTANTIATE_TEST_SUITE_P(Exact, ExactCoordSystem, testing::Values(ZelRules::EXACT));

TEST_P(ExactCoordSystem, TakesSeriesAndFollowsItsSize) {
    auto* cs = new Zel2CoordSys;
    root_.Add(cs);
    cs->SetSize(CSize(801, 401));
    EXPECT_EQ(cs->F2R(50, 50), CPoint(400, 200));
    auto* series = new Zel2PointArray;
    series->SetPoints({0, 50, 200}, {0, 50, 200});
    series->SetPen(root_.RegisterPen("s", DrawPen::SOLID, 0, RGB(7, 7, 7), 0, nullptr));
    cs->ContentSet(1)->Add(series);
    cs->ShowAxes(true);
    const std::string text = Drawn();
    EXPECT_THAT(text, HasSubstr("polyline 0,1000 400,800 800,600\n")) << "clipped to the ranges";
    EXPECT_THAT(text, HasSubstr("clip"));
    EXPECT_EQ(Letters(text), "04080050100") << "labels of its own, as far as they fit";
}

TEST_P(ExactCoordSystem, AdjustsToItsSeries) {
    auto* cs = new Zel2CoordSys(0, 0, 0, 0, CRect(0, 0, 1000, 150), 1, 1, -1, -1);
    root_.Add(cs);
    auto* series = new Zel2PointArray;
    series->SetPoints({0, 1, 2}, {-3, 12, 0});
    series->SetPen(root_.RegisterPen("s", DrawPen::SOLID, 0, RGB(7, 7, 7), 0, nullptr));
    cs->ContentSet(1)->Add(series);
    series->AdjustXAxis(8);
    series->AdjustYAxis(8);
    double low = 0, high = 0;
    cs->VAxis()->GetCoord(low, high);
    EXPECT_EQ(std::pair(low, high), std::pair(-4.0, 12.0));
    EXPECT_THAT(Drawn(), HasSubstr("polyline 0,")) << "however low it is";
    cs->SetCoord(0, -5, 2, 17);
    cs->ShowAxes(true);
    const std::string text = Drawn();
    EXPECT_THAT(Letters(text), HasSubstr("0"));
    cs->VAxis()->GetCoord(low, high);
    EXPECT_EQ(std::pair(low, high), std::pair(-5.0, 17.0)) << "what was set stays";
    EXPECT_FALSE(cs->VAxis()->Labels().empty());
}

TEST_P(CoordSystems, AreCopiedWithTheirContents) {
    auto* cs = new Zel2CoordSys(1, 2, 3, 4, CRect(0, 0, 1000, 500), 1, 1, -1, -1);
    root_.Add(cs);
    cs->ContentSet(2)->Add(new Zel2Rect(CRect(1, 2, 10, 20), -1, 5, Zel2Rect::RECTANGLE, -1));
    Zel2CoordSys copy(*cs);
    Zel2CoordSys assigned;
    assigned = copy;
    for (Zel2CoordSys* made : {&copy, &assigned}) {
        double low = 0, high = 0;
        made->VAxis()->GetCoord(low, high);
        EXPECT_EQ(std::pair(low, high), std::pair(2.0, 4.0));
        EXPECT_EQ(made->HAxis()->GetParent(), made);
        ASSERT_EQ(made->ContentSet(2)->GetCount(), 1);
        Zel2* const content = (*made->ContentSet(2))[0];
        EXPECT_NE(content, (*cs->ContentSet(2))[0]);
        EXPECT_EQ(content->Origin(), CPoint(1, 2));
        EXPECT_EQ(content->GetParent()->GetParent(), made);
    }
    Zel2StackGraph stack(CRect(0, 0, 99, 99), -1, -1);
    Zel2StackGraph shared(stack);
    EXPECT_EQ(shared.Background(), stack.Background());
    shared.DetachChildren();
}

class Stacks : public Plane {
  protected:
    Stacks() {
        root_.Add(stack_);
        stack_->SetSize(CSize(5000, 4000));
        for (const float weight : {1.0F, 2.0F, 1.0F}) {
            graphs_.push_back(new Zel2CoordSys);
            stack_->AddSubGraph(graphs_.back(), weight);
        }
    }
    void AddAxis() {
        axis_ = new Zel2HAxis;
        axis_->SetCoord(0, 20);
        stack_->AddHAxis(axis_);
    }
    Zel2StackGraph* stack_ = new Zel2StackGraph;
    Zel2HAxis* axis_ = nullptr;
    std::vector<Zel2CoordSys*> graphs_;
};
INSTANTIATE_TEST_SUITE_P(Rules, Stacks, testing::Values(ZelRules::CLASSIC, ZelRules::EXACT));

TEST_P(Stacks, ShareTheHeight) {
    EXPECT_EQ(Drawn(), "") << "without an axis";
    AddAxis();
    const std::string text = Drawn();
    const bool exact = GetParam() == ZelRules::EXACT;
    const int heights[] = {600, 1200, 600}, origins[] = {800, 1400, 2600};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(graphs_[i]->Size(), CSize(3400, heights[i]));
        EXPECT_EQ(graphs_[i]->Origin(), CPoint(800, exact ? origins[i] : 800));
        double min = 0, max = 0;
        graphs_[i]->HAxis()->GetCoord(min, max);
        EXPECT_EQ(max, 20) << "the shared range";
        EXPECT_EQ(graphs_[i]->VAxis()->Size(), CSize(800, heights[i]));
    }
    EXPECT_EQ(axis_->Size(), CSize(3400, 700));
    EXPECT_THAT(Letters(text), HasSubstr("05101520"));
}

// Panels of 90 units with labels of 155 at their ends, beside panels that have room.
TEST_P(Stacks, KeepTheirLabelsApartByExactRules) {
    AddAxis();
    stack_->AddSubGraph(graphs_.emplace_back(new Zel2CoordSys), 0.15F);
    for (Zel2CoordSys* graph : graphs_) graph->ShowAxes(true);
    const std::string text = Drawn();
    const bool exact = GetParam() == ZelRules::EXACT;
    // Each label left of the panels begins a line of its own: its height and its first character.
    std::multiset<int> lines;
    std::istringstream rows(text);
    int before = -1;
    for (std::string row; std::getline(rows, row);) {
        int x = 0, y = 0;
        if (std::sscanf(row.c_str(), "text %d,%d", &x, &y) == 2 && x < 700 && y != before) lines.insert(y);
        before = row.starts_with("text ") ? y : -1;
    }
    int least = 100000;
    for (auto line = lines.begin(); line != lines.end() && std::next(line) != lines.end(); ++line)
        least = std::min(least, *std::next(line) - *line);
    if (exact) {
        EXPECT_GE(lines.size(), 8U);
        EXPECT_GE(least, 150) << "no label on another";
        EXPECT_EQ(Letters(text).find("05101520"), Letters(text).rfind("05101520")) << "the shared axis once";
    }
    if (exact) {
        double low = 0, high = 0;
        graphs_[3]->VAxis()->GetCoord(low, high);
        EXPECT_EQ(std::pair(low, high), std::pair(0.0, 100.0)) << "the data of a low panel stay";
    }
}

TEST_P(Stacks, CountFractionsOnlyByExactRules) {
    stack_->AddSubGraph(new Zel2CoordSys, 0.9F);
    AddAxis();
    stack_->SetMarg(200, -1, -1, 300);
    Drawn();
    EXPECT_EQ(graphs_[0]->Origin().x, 200);
    Zel2Set& graphs = *static_cast<Zel2Set*>((*stack_)[1]);
    EXPECT_EQ(graphs[3]->Size().cy, GetParam() == ZelRules::EXACT ? 643 : 0);
}

TEST_P(Stacks, KeepToThemselves) {
    EXPECT_EQ(stack_->OnNotify(graphs_[0], Zel2::RESIZED), 1);
    EXPECT_EQ(stack_->OnNotify(graphs_[0], 7), 0);
    for (int i = 3; i < Zel2StackGraph::kMostGraphs; ++i) stack_->AddSubGraph(new Zel2CoordSys, 1);
    Zel2CoordSys left;
    stack_->AddSubGraph(&left, 1);
    EXPECT_EQ(left.GetParent(), nullptr) << "one too many stays the caller's";
}

TEST(StackOfNothing, LaysNothingOut) {
    for (const ZelRules rules : {ZelRules::CLASSIC, ZelRules::EXACT}) {
        Zel2Main root;
        root.SetRules(rules);
        auto* stack = new Zel2StackGraph(CRect(0, 0, 999, 999), -1, -1);
        root.Add(stack);
        EXPECT_EQ(stack->Background()->Size(), CSize(1000, 1000));
        stack->AddHAxis(new Zel2HAxis);
        stack->Setup();
        auto* graph = new Zel2CoordSys;
        stack->AddSubGraph(graph, 0.0F);
        stack->Setup();
        EXPECT_EQ(graph->Size(), CSize(0, 0));
    }
}

class Polygons : public Plane {};
INSTANTIATE_TEST_SUITE_P(Rules, Polygons, testing::Values(ZelRules::CLASSIC, ZelRules::EXACT));

TEST_P(Polygons, FillAndStayOpen) {
    auto* graph = new Zel2Graph;
    root_.Add(graph);
    graph->SetGraphSize(CSize(1000, 1000));
    graph->SetMargins(0, 0, 0, 0);
    graph->SetCoord(0, 0, 10, 10);
    const int pen = root_.RegisterPen("p", DrawPen::SOLID, 0, RGB(5, 5, 5), 0, nullptr);
    const int color = root_.RegisterColor("c", RGB(6, 6, 6), 0);
    auto* polygon = new Zel2PolGraph(nullptr, pen, color);
    graph->AddIn(polygon);
    polygon->DefinePoints({{0, 0}, {1, 0}, {std::nan(""), 3}, {0, 1}});
    const std::string text = Drawn();
    EXPECT_THAT(text, HasSubstr("polyline 0,1000 100,1000 0,900\n")) << "two segments";
    EXPECT_EQ(text.find("#060606") != std::string::npos, GetParam() == ZelRules::EXACT)
        << "rings that do not end where they began";
    polygon->DefinePoints({{0.1, 1e40}});
    EXPECT_EQ(polygon->NPoints(), 1U);
    EXPECT_EQ(polygon->LogPoint(0).x, 10);
    EXPECT_EQ(polygon->LogPoint(7), CPoint());
    const Zel2PolGraph alone;
    EXPECT_EQ(Zel2PolGraph(alone).LogPoint(0), CPoint());
}

TEST_P(Polygons, SimpleAxisMapsBothWays) {
    auto* axis = new Zel2Axis(0, 10, 1, root_.RegisterFont("f", "Arial", 72, 0, 0, 0, 0, 0, 0));
    root_.Add(axis);
    axis->Origin(CPoint(100, 500));
    axis->SetSize(CSize(800, 0));
    EXPECT_EQ(axis->ToAbs(5), 500);
    EXPECT_DOUBLE_EQ(axis->FromAbs(500), 5);
    const std::string text = Drawn();
    EXPECT_THAT(text, HasSubstr("polyline 100,500 900,500\n"));
    EXPECT_THAT(text, HasSubstr("polyline 420,500 420,560\n"));
    EXPECT_EQ(Letters(text), "0246810");
    axis->SetSize(CSize(0, 400));
    EXPECT_EQ(axis->ToAbs(10), 900);
}

}  // namespace
