// What the layers of charts draw, against places and sums that were reckoned by hand.
#include "ChartDrawing.h"
#include "Support.h"
#include "charts/CellPyramid.h"
#include "charts/ChartLayout.h"
#include "charts/FreeSpace.h"

#include <zel/Error.h>
#include <zel/platform/RecordingDevice.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <sstream>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using zel::Column;
using zel::test::Count;

class Looks : public zel::test::ChartDrawing {
  protected:
    std::vector<CRect> Filled(const std::string& color) {
        zel::RecordingDevice device;
        return FilledOn(device, color);
    }
    // From 0 to 1 along both axes of the plot area.
    struct Places {
        double x1, y1, x2, y2;
    };
    CRect At(const Places& places) {
        const WorldFrame world = chart->FrameOf(*chart->Layers().front()).world;
        const auto along = [](LONG low, LONG high, double u) {
            return static_cast<int>(low + u * (high - low));
        };
        CRect rect(
            along(world.lower.x, world.upper.x, places.x1), along(world.lower.y, world.upper.y, places.y1),
            along(world.lower.x, world.upper.x, places.x2), along(world.lower.y, world.upper.y, places.y2));
        rect.NormalizeRect();
        return rect;
    }
    // But for roundings.
    void ExpectFilled(const char* color, const std::vector<Places>& expected) {
        const std::vector<CRect> filled = Filled(color);
        ASSERT_EQ(filled.size(), expected.size());
        for (std::size_t i = 0; i < filled.size(); ++i) {
            const CRect rect = At(expected[i]);
            for (const LONG RECT::*side : {&RECT::left, &RECT::top, &RECT::right, &RECT::bottom})
                EXPECT_NEAR(filled[i].*side, rect.*side, 1) << "rectangle " << i;
        }
    }
};

const std::vector<std::string> kNames{"a", "b"};
constexpr const char* kRed = "#ff0000";

TEST_F(Looks, bars_stand_on_their_categories) {
    chart->AddBars(kNames, std::vector<double>{1, -2}, {{.color = RGB(255, 0, 0)}});
    chart->Y().SetRange(-4, 4);
    // A band is half of the axis, of which a bar takes four fifths.
    ExpectFilled(kRed, {{0.05, 0.5, 0.45, 0.625}, {0.55, 0.25, 0.95, 0.5}});
}

TEST_F(Looks, bars_of_several_layers_stand_beside_each_other_and_meet) {
    const zel::BarOptions whole{{.color = RGB(255, 0, 0)}, false, zel::Stacking::NONE, "", 0, 1};
    chart->AddBars(Count(4), std::vector<double>{4, 4, 4, 4}, whole);
    chart->AddBars(Count(4), std::vector<double>{4, 4, 4, NAN}, whole);
    chart->Y().SetRange(0, 4);
    std::vector<CRect> bars = Filled(kRed);
    ASSERT_EQ(bars.size(), 7U);
    std::sort(bars.begin(), bars.end(), [](const CRect& a, const CRect& b) { return a.left < b.left; });
    for (std::size_t i = 1; i < bars.size(); ++i) EXPECT_EQ(bars[i - 1].right, bars[i].left) << i;
    EXPECT_EQ(bars.front(), At({0, 0, 0.125, 1}));
}

TEST_F(Looks, stacks_add_up_above_and_below_0) {
    const auto stacked = [](COLORREF color, zel::Stacking how) {
        return zel::BarOptions{{.color = color}, false, how};
    };
    const std::vector<double> first{1, -1}, second{2, -2}, third{-1, 3};
    for (const auto how : {zel::Stacking::VALUES, zel::Stacking::SHARES}) {
        while (!chart->Layers().empty()) chart->Del(chart->Layers().front());
        chart->AddBars(kNames, first, stacked(RGB(1, 1, 1), how));
        chart->AddBars(kNames, second, stacked(RGB(255, 0, 0), how));
        chart->AddBars(std::vector<std::string>{"b", "a"}, std::vector<double>{3, -1},
                       stacked(RGB(2, 2, 2), how));
        chart->Y().SetRange(-4, 4);
        const double whole = how == zel::Stacking::VALUES ? 1 : 4,
                     otherWhole = how == zel::Stacking::VALUES ? 1 : 6;
        const auto y = [](double v) { return 0.5 + v / 8; };
        ExpectFilled(kRed, {{0.05, y(1 / whole), 0.45, y(3 / whole)},
                            {0.55, y(-3 / otherWhole), 0.95, y(-1 / otherWhole)}});
        EXPECT_THAT(Notes(), HasSubstr("negative and stack downwards"));
    }
    EXPECT_TRUE(chart->Y().Format().percent) << "shares are written in percent";
}

TEST_F(Looks, bars_lie_float_and_stand_on_times) {
    const std::vector<std::int64_t> days{1'600'000'000, 1'600'086'400, 1'600'259'200};
    chart->AddFloatingBars(Column::Times(days, 1), std::vector<double>{1, 2, 3},
                           std::vector<double>{2, 4, 3.5}, {{.color = RGB(255, 0, 0)}, true});
    chart->X().SetRange(0, 4);
    // Four days from half a day before the first one; the axis runs upwards.
    EXPECT_EQ(chart->ScaleOf(1).GetKind(), zel::Scale::Kind::TIME);
    ExpectFilled(kRed, {{0.25, 0.025, 0.5, 0.225}, {0.5, 0.275, 1, 0.475}, {0.75, 0.775, 0.875, 0.975}});
    EXPECT_THROW(chart->AddBars(kNames, Count(2), {{.yAxis = 7}}), zel::Error);
}

TEST_F(Looks, bars_on_a_logarithm_and_at_one_place_are_noted) {
    chart->AddBars(std::vector<std::string>{"a", "", "a"}, std::vector<double>{10, 5, 100}, {{.name = "n"}});
    chart->Y().SetLogarithm();
    EXPECT_THAT(Notes(), HasSubstr("stand on a logarithm"));
    EXPECT_THAT(Notes(), HasSubstr("\"n\": 1 of them stand at a position that has one already"));
    EXPECT_LE(chart->ScaleOf(1).From(), 5) << "the shortest bar can be seen";
}

TEST_F(Looks, finds_the_bar_under_the_pointer) {
    chart->AddBars(kNames, std::vector<double>{1, 4});
    Draw();
    const CRect bar = At({0.55, 0, 0.95, 1});
    const auto nearest = chart->Nearest(CPoint((bar.left + bar.right) / 2, (bar.top + bar.bottom) / 2), 3);
    ASSERT_NE(nearest.layer, nullptr);
    EXPECT_EQ(nearest.datum.row, 1U);
    EXPECT_EQ(nearest.datum.y, 4);
    EXPECT_EQ(nearest.datum.distance, 0);
}

// The brute force knows all boxes, the space only those near by.
TEST(FreeSpace, gives_each_place_once) {
    std::mt19937 random(3);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const CRect bounds(-50, 20, 950, 520);
    zel::FreeSpace space(bounds, CSize(60, 20));
    std::vector<CRect> taken{CRect(0, 0, 200, 300)};
    space.Block(taken.front());
    for (int i = 0; i < 5000; ++i) {
        const CRect box(CPoint(below(1200) - 150, below(700) - 50), CSize(1 + below(150), 1 + below(60)));
        CRect common;
        const bool inside = common.IntersectRect(box, bounds) && common == box;
        const bool free = std::none_of(taken.begin(), taken.end(),
                                       [&](const CRect& other) { return common.IntersectRect(box, other); });
        EXPECT_EQ(space.Take(box), inside && free);
        if (inside && free) taken.push_back(box);
    }
    EXPECT_GT(taken.size(), 50U);
}

TEST_F(Looks, bars_carry_their_values_where_there_is_room) {
    zel::BarOptions options;
    options.labels = true;
    chart->AddBars(kNames, std::vector<double>{12.5, -30}, options);
    EXPECT_THAT(zel::test::Letters(Draw()), HasSubstr("12.5"));
    EXPECT_THAT(zel::test::Letters(Draw()), HasSubstr("\u221230.0")) << "as many digits as the others";
    chart->AddBars(kNames, std::vector<double>{40, 40}, {{}, false, zel::Stacking::NONE, "", 0, 1});
    options.labelFormat.suffix = " kg";
    options.stacking = zel::Stacking::VALUES;
    for (int i = 0; i < 2; ++i) chart->AddBars(kNames, std::vector<double>{11, 0.01}, options);
    EXPECT_THAT(zel::test::Letters(Draw()), HasSubstr("11.00 kg"));
    EXPECT_THAT(zel::test::Letters(Draw()), testing::Not(HasSubstr("0.01 kg"))) << "no room in its bar";
}

// A device with columns of 16 units, as images have.
class Columns : public zel::RecordingDevice {
  public:
    int CurveColumn(const zel::GraphicsState&) const override { return 16; }
};

// Of 100,000 bars each column shows what the brute force finds, at no more fills than columns.
TEST_F(Looks, narrow_bars_are_drawn_as_what_columns_cover) {
    std::mt19937 random(5);
    std::vector<double> values;
    for (int i = 0; i < 100'000; ++i) values.push_back(static_cast<int>(random() % 1000) - 300);
    chart->AddBars(Count(100'000), values, {{.color = RGB(255, 0, 0)}, false, zel::Stacking::NONE, "", 0, 1});
    chart->Y().SetRange(-300, 700);
    Columns device;
    const std::vector<CRect> fills = FilledOn(device, kRed);
    EXPECT_LE(fills.size(), 1000U);
    std::map<int, std::pair<int, int>> drawn;  // top and bottom of each column
    for (const CRect& fill : fills)
        for (int column = fill.left / 16; column < fill.right / 16; ++column)
            drawn[column] = {fill.top, fill.bottom};
    const WorldFrame world = chart->FrameOf(*chart->Layers().front()).world;
    std::map<int, std::pair<int, int>> expected;
    for (int i = 0; i < 100'000; ++i) {
        const CPoint middle = world.ToLogical(i, 0),
                     end = world.ToLogical(i, values[static_cast<std::size_t>(i)]);
        auto& [top, bottom] = expected.try_emplace(middle.x / 16, middle.y, middle.y).first->second;
        top = std::min(top, end.y);
        bottom = std::max(bottom, end.y);
    }
    int differing = 0;  // a bar on the border of two columns may count for either
    for (const auto& [column, span] : expected) differing += drawn[column] == span ? 0 : 1;
    EXPECT_LE(differing, static_cast<int>(expected.size()) / 10);
}

TEST_F(Looks, histograms_count_share_and_weigh) {
    const std::vector<double> values{0, 1, 1, 2, 3, 3, 3, 4, NAN}, weights{1, 2, 1, 1, 1, 1, 1, 0.5, 9};
    zel::HistogramOptions options;
    options.edges = {0, 2, 3, 4};
    EXPECT_THAT(chart->AddHistogram(values, options)->Heights(), ElementsAre(3, 1, 4));
    options.weights = weights;
    EXPECT_THAT(chart->AddHistogram(values, options)->Heights(), ElementsAre(4, 1, 3.5));
    options.weights = {};
    options.measure = zel::BinMeasure::SHARE;
    EXPECT_THAT(chart->AddHistogram(values, options)->Heights(), ElementsAre(0.375, 0.125, 0.5));
    options.measure = zel::BinMeasure::DENSITY;
    EXPECT_THAT(chart->AddHistogram(values, options)->Heights(), ElementsAre(0.1875, 0.125, 0.5));
    options.edges = {1, 2};
    chart->AddHistogram(values, options);
    EXPECT_THAT(Notes(), HasSubstr("leaves out 5 values beyond its bins"));
    options.edges = {2, 2};
    EXPECT_THROW(chart->AddHistogram(values, options), zel::Error);
    EXPECT_THROW(chart->AddHistogram(std::vector<std::string>{"a"}), zel::Error);
}

TEST_F(Looks, error_bars_reach_from_below_to_above) {
    chart->AddUnevenErrors(std::vector<double>{1, 2}, std::vector<double>{4, 5}, std::vector<double>{1, NAN},
                           std::vector<double>{2, 1}, {{.color = RGB(255, 0, 0)}, false, 0.8, 0});
    chart->X().SetRange(0, 4);
    chart->Y().SetRange(0, 8);
    const std::string drawn = Draw();
    const auto line = [&](const Places& places) {
        const CRect at = At(places);
        return "polyline " + std::to_string(at.left) + "," + std::to_string(at.bottom) + " " +
               std::to_string(at.right) + "," + std::to_string(at.top);
    };
    EXPECT_THAT(drawn, HasSubstr(line({0.25, 3.0 / 8, 0.25, 6.0 / 8})));
    EXPECT_THAT(drawn, HasSubstr(line({0.5, 5.0 / 8, 0.5, 6.0 / 8}))) << "nothing below";
    chart->Y().SetAutomaticRange();
    EXPECT_LE(chart->ScaleOf(1).From(), 3);
    EXPECT_GE(chart->ScaleOf(1).To(), 6);
}

// Error bars on the second of two bars beside each other: at three quarters of their room.
TEST_F(Looks, error_bars_stand_on_their_bars) {
    for (const char* name : {"first", "second"})
        chart->AddBars(kNames, std::vector<double>{1, 1}, {{.name = name}});
    auto* errors = chart->AddErrors(kNames, std::vector<double>{1, 1}, std::vector<double>{0.5, 0.5},
                                    {{.color = RGB(255, 0, 0)}, false, 0.8, 0, "second"});
    chart->Y().SetRange(0, 2);
    const std::string drawn = Draw();
    const CRect at = At({0.25 + 0.1, 0.25, 0.25 + 0.1, 0.75});
    EXPECT_THAT(drawn, HasSubstr("polyline " + std::to_string(at.left) + "," + std::to_string(at.bottom)));
    EXPECT_EQ(Notes(), "");
    chart->Layers()[1]->SetName("other");
    EXPECT_THAT(Notes(), HasSubstr("no bars \"second\""));
    EXPECT_TRUE(errors->IsVisible());
}

// Type 7: of 1 to 9 the quartiles are 3, 5 and 7, so 20 and more lies beyond 7 + 1.5 * 4.
TEST_F(Looks, boxes_stand_between_quartiles) {
    std::vector<std::string> groups(11, "a");
    std::vector<double> values{1, 2, 3, 4, 5, 6, 7, 8, 9, NAN, 12.9};
    groups.push_back("b");
    values.push_back(4);
    zel::BoxOptions options{{.color = RGB(255, 0, 0)}, false, 0.5};
    auto* boxes = chart->AddBoxes(groups, values, options);
    ASSERT_EQ(boxes->Summaries().size(), 2U);
    EXPECT_EQ(boxes->Summaries()[0].count, 10U);
    chart->Y().SetRange(0, 16);
    boxes->SetColumns({groups, std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 9, NAN, 30, 4}});
    // Of 1 to 9 and 30: 3.25 and 7.75.
    ExpectFilled("#ff8c8c", {{0.125, 3.25 / 16, 0.375, 7.75 / 16}, {0.625, 0.25, 0.875, 0.25}});
    EXPECT_EQ(boxes->Summaries()[0].outliers, std::vector<double>{30});
    EXPECT_EQ(boxes->Rows(), 12U);
}

// 1000 candles on 20 columns: each column has the extremes of its candles and the colour of their change.
TEST_F(Looks, candles_of_a_column_are_one) {
    const auto candles = [&](int n, std::vector<double> open, std::vector<double> high,
                             std::vector<double> low, std::vector<double> close) {
        chart->AddCandles(Count(n), std::move(open), std::move(high), std::move(low), std::move(close),
                          {{.color = RGB(0, 255, 0)}, RGB(255, 0, 0)});
    };
    candles(2, {1, 3}, {4, 3.5}, {0, 1}, {2, 2});
    chart->Y().SetRange(0, 4);
    // A body of seven tenths of the room of a time, and the wick above and below it.
    EXPECT_EQ(Filled("#00ff00").size(), 3U);
    const CRect body = Filled(kRed).at(0), expected = At({0.575, 0.5, 0.925, 0.75});
    EXPECT_NEAR(body.left, expected.left, 1);
    EXPECT_NEAR(body.bottom, expected.bottom, 1);
    chart->Del(chart->Layers().front());
    std::vector<double> open(100'000, 1), high(100'000, 2), low(100'000, 1), close(100'000, 2);
    for (std::size_t i = 50'000; i < 100'000; ++i) open[i] = 3, close[i] = 2, high[i] = 3.5;
    candles(100'000, open, high, low, close);
    Columns device;
    const std::vector<CRect> falling = FilledOn(device, kRed);
    ASSERT_EQ(falling.size(), 1U) << "columns that are alike are one fill";
    EXPECT_NEAR(falling[0].top, At({0, 3.5 / 4, 1, 3.5 / 4}).top, 1);
    EXPECT_NEAR(falling[0].bottom, At({0, 0.25, 1, 0.25}).top, 1);
}

// The published ends and the middle of viridis; neutral grey in the middle of a diverging map.
TEST(ColorMap, has_the_published_colours) {
    const zel::ColorMap viridis;
    EXPECT_EQ(viridis.PixelAt(-1), 0xFF440154U);
    EXPECT_EQ(viridis.At(1), RGB(0xFD, 0xE7, 0x25));
    EXPECT_NEAR(GetRValue(viridis.At(0.5)), 33, 2);
    EXPECT_NEAR(GetGValue(viridis.At(0.5)), 145, 2);
    EXPECT_NEAR(GetBValue(viridis.At(0.5)), 140, 2);
    const zel::ColorMap diverging(zel::ColorScheme::DIVERGING, true);
    EXPECT_EQ(diverging.At(0), RGB(180, 4, 38));
    EXPECT_NEAR(GetRValue(diverging.At(0.5)), GetBValue(diverging.At(0.5)), 3);
}

TEST_F(Looks, colours_are_spread_as_asked) {
    const std::vector<double> values{-1, 0, 1, 10, 100, 1000};
    const auto key = [&](zel::ColorSpread spread) -> zel::ColorKey& {
        zel::HeatMapOptions options;
        options.colors.spread = spread;
        auto* heat = chart->AddHeatMap(Count(6), Count(1), values, options);
        (void)heat->ColorBar();
        return heat->Key();
    };
    const auto pixel = [](double u) { return zel::ColorMap().PixelAt(u); };
    EXPECT_EQ(key(zel::ColorSpread::LOGARITHM).PixelOf(10), pixel(1.0 / 3));
    EXPECT_EQ(key(zel::ColorSpread::LOGARITHM).PixelOf(0), 0U);
    EXPECT_EQ(key(zel::ColorSpread::CENTRED).PixelOf(0), pixel(0.5));
    EXPECT_EQ(key(zel::ColorSpread::CENTRED).GetScale().From(), -1000);
    EXPECT_EQ(key(zel::ColorSpread::QUANTILES).PixelOf(5.5), pixel(0.5)) << "the median";
    EXPECT_EQ(key(zel::ColorSpread::LINEAR).PixelOf(NAN), 0U);
    EXPECT_THAT(Notes(), HasSubstr("2 values are not above 0"));
    chart->AddHeatMap(Count(3), Count(2), std::vector<double>{1, 1, 1, 1}, {{.name = "m"}});
    EXPECT_THAT(Notes(), HasSubstr("\"m\" lacks the values of 2 of its 6 cells"));
    EXPECT_THAT(Notes(), HasSubstr("same value everywhere"));
    EXPECT_THROW(chart->AddHeatMap(std::vector<double>{1, 1}, Count(1), Count(2)), zel::Error);
}

// Rows in any order: the mean of those that share a cell.
TEST_F(Looks, heat_maps_of_rows_gather_them) {
    auto* heat =
        chart->AddHeatMapOfRows(std::vector<std::string>{"b", "a", "b", "", "a"},
                                std::vector<double>{2, 1, 2, 1, 2}, std::vector<double>{3, 4, 5, 9, NAN});
    EXPECT_EQ(heat->X().Names(), (std::vector<std::string>{"b", "a"}));
    EXPECT_TRUE(std::isnan(heat->Values().At(0)));
    EXPECT_EQ(heat->Values().At(1), 4);
    EXPECT_EQ(heat->Values().At(2), 4);
    Draw();
    const CRect cell = At({0, 0.5, 0.5, 1});
    const auto nearest =
        chart->Nearest(CPoint((cell.left + cell.right) / 2, (cell.top + cell.bottom) / 2), 1);
    EXPECT_EQ(nearest.layer, heat);
    EXPECT_EQ(nearest.datum.row, 2U);
    EXPECT_FALSE(chart->Layout().colorBars.empty());
}

// The mean of all that a cell of a level stands for, the last row incomplete.
TEST(CellPyramid, has_means) {
    constexpr std::size_t kColumns = 1500, kRows = 700, kCells = kColumns * kRows - 40;
    std::vector<double> values(kCells);
    for (std::size_t i = 0; i < kCells; ++i) values[i] = i % 7 == 0 ? NAN : static_cast<double>(i * i % 1001);
    zel::CellPyramid pyramid(zel::SeriesValues(values.data()), kCells, kColumns);
    EXPECT_EQ(pyramid.LevelFor(1.9, 9), 0U) << "no cell of the picture may be lost";
    const std::size_t level = pyramid.LevelFor(2, 2);
    ASSERT_EQ(pyramid.FactorX(level), 2U);
    ASSERT_EQ(pyramid.FactorY(level), 2U);
    for (const auto& [column, row] :
         {std::pair<std::size_t, std::size_t>{0, 0}, {3, 5}, {749, 348}, {740, 349}}) {
        double sum = 0;
        int n = 0;
        for (std::size_t k = row * 2; k < row * 2 + 2; ++k)
            for (std::size_t i = column * 2; i < column * 2 + 2; ++i) {
                const std::size_t at = k * kColumns + i;
                if (at >= kCells || std::isnan(values[at])) continue;
                sum += values[at];
                ++n;
            }
        EXPECT_EQ(pyramid.At(level, column, row), sum / n);
    }
    EXPECT_EQ(pyramid.FactorX(pyramid.LevelFor(100, 100)), 4U) << "until few are left";
}

// Areas in proportion to values; high values in front; the legend says sizes and categories.
TEST_F(Looks, bubbles_have_sizes_and_colours_of_their_own) {
    zel::BubbleOptions options;
    options.sizes = std::vector<double>{1, 4, 0};
    options.colors = std::vector<double>{2, 1, 3};
    options.size = 20;
    chart->AddBubbles(Count(3), Count(3), options);
    std::vector<std::pair<int, std::string>> discs;
    std::istringstream lines(Draw());
    std::string brush;
    for (std::string line; std::getline(lines, line);) {
        int l = 0, t = 0, r = 0, b = 0;
        if (line.starts_with("brush solid ")) brush = line.substr(12);
        if (std::sscanf(line.c_str(), "ellipse %d,%d %d,%d", &l, &t, &r, &b) == 4 && brush != "#969696")
            discs.emplace_back(r - l, brush);
    }
    ASSERT_EQ(discs.size(), 2U) << "a size of 0 is no point";
    EXPECT_EQ(discs[0].second, "#440154") << "the large one, with the lowest value, first";
    EXPECT_EQ(discs[1].second, "#21908c");
    EXPECT_NEAR(discs[0].first, 2 * discs[1].first, 2);
    EXPECT_THAT(Notes(), HasSubstr("1 points have sizes that are not above 0"));
    EXPECT_EQ(chart->Layout().colorBars.size(), 1U);
    EXPECT_EQ(chart->Layout().legend.size(), 3U) << "three round sizes";
    options.colors = std::vector<std::string>{"one", "two", "one"};
    chart->AddBubbles(Count(3), Count(3), options);
    EXPECT_EQ(chart->Layout().legend.size(), 8U);
    EXPECT_EQ(chart->Layout().legend[3].name.text, "one");
}

TEST_F(Looks, texts_at_points_give_way) {
    chart->AddTexts(std::vector<double>{1, 1, 3}, std::vector<double>{1, 1, 2},
                    std::vector<std::string>{"here", "there", "beyond"});
    chart->X().SetRange(0, 2);
    chart->Y().SetRange(0, 2);
    EXPECT_THAT(zel::test::Letters(Draw()), HasSubstr("herethere")) << "at different sides of the same point";
    EXPECT_THAT(zel::test::Letters(Draw()), testing::Not(HasSubstr("beyond")));
    EXPECT_THROW(chart->AddTexts(Count(2), Count(2), Count(2)), zel::Error);
}

TEST_F(Looks, rules_spans_and_notes_stand_at_their_values) {
    chart->AddSpanAlongX(2, HUGE_VAL, {{.color = RGB(255, 0, 0)}});
    chart->AddRuleAtY(6, {{.color = RGB(0, 0, 255)}, "limit", 1, zel::Dash::SOLID});
    chart->AddSlope(-4, 4, {{.color = RGB(0, 0, 255)}, "", 1, zel::Dash::SOLID});
    chart->AddNote(1, 3, "here", {{}, 8, 4});
    EXPECT_EQ(chart->ScaleOf(1).To(), 9) << "6 and a half of it, as one value has it";
    chart->X().SetRange(0, 4);
    chart->Y().SetRange(0, 8);
    const std::string drawn = Draw();
    ExpectFilled(kRed, {{0.5, 0, 1, 1}});
    const auto line = [&](double x1, double y1, double x2, double y2) {
        const CRect from = At({x1, y1, x1, y1}), to = At({x2, y2, x2, y2});
        return "polyline " + std::to_string(from.left) + "," + std::to_string(from.top) + " " +
               std::to_string(to.left) + "," + std::to_string(to.top) + "\n";
    };
    EXPECT_THAT(drawn, HasSubstr(line(0, 0.75, 1, 0.75)));
    EXPECT_THAT(drawn, HasSubstr(line(0.25, 0, 0.75, 1))) << "cut by the plot area: 4 x - 4";
    EXPECT_THAT(zel::test::Letters(drawn), HasSubstr("limit"));
    EXPECT_THAT(zel::test::Letters(drawn), HasSubstr("here"));
    chart->X().SetRange(2, 4);
    EXPECT_THAT(zel::test::Letters(Draw()), testing::Not(HasSubstr("here"))) << "beyond the plot area";
}

// By hand: 0.6, 0.3, 0.04, 0.03 and 0.03 of 100.
TEST(Pie, has_a_part_for_each_name) {
    const std::vector<std::string> names{"a", "b", "c", "d", "e", "a", "f", ""};
    zel::PieOptions options{.title = "Parts"};
    options.least = 0.035;
    Zel2Main root;
    auto* pie =
        root.Add(std::make_unique<Zel2Pie>(names, std::vector<double>{20, 30, 4, 3, 3, 40, -5, 9}, options));
    const std::vector<Zel2Pie::Part> parts = pie->Parts();
    ASSERT_EQ(parts.size(), 4U);
    EXPECT_EQ(parts[0].name, "a");
    EXPECT_DOUBLE_EQ(parts[0].share, 0.6);
    EXPECT_EQ(parts[3].name, "other");
    EXPECT_DOUBLE_EQ(parts[3].share, 0.06);
    zel::RecordingDevice device;
    CDC dc(device);
    root.PrepareMappingFor(&dc, nullptr, 0, 0);
    root.Draw(&dc);
    const std::string letters = zel::test::Letters(device.Text());
    EXPECT_THAT(letters, HasSubstr("a  60"));
    EXPECT_THAT(letters, HasSubstr("other  6"));
    EXPECT_THAT(pie->Notes(), ElementsAre(HasSubstr("leaves out 1 values")));
    // A name for each of a hundred parts has no room.
    std::vector<std::string> many;
    for (int i = 0; i < 100; ++i) many.push_back("part " + std::to_string(i));
    options.least = 0;
    auto* crowded = root.Add(std::make_unique<Zel2Pie>(many, std::vector<double>(100, 1e308), options));
    EXPECT_NEAR(crowded->Parts()[7].share, 0.01, 1e-12);
    root.Draw(&dc);
    EXPECT_THAT(crowded->Notes(), ElementsAre(HasSubstr("no room for")));
}

}  // namespace
