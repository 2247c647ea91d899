#include "ChartDrawing.h"
#include "RandomDrawing.h"
#include "Support.h"
#include "charts/ChartLayout.h"

#include <zel/Error.h>
#include <zel/platform/File.h>
#include <zel/platform/RecordingDevice.h>

namespace {

using zel::Box;
using zel::Column;
using zel::Scale;

using zel::test::Count;
using Chart = zel::test::ChartDrawing;

TEST_F(Chart, ranges_follow_the_data_until_they_are_set) {
    chart->AddLine(Count(8), std::vector<double>{1, 17.3, -2.96, std::nan(""), 3, 3, 3, 3});
    EXPECT_EQ(chart->ScaleOf(0).From(), 0);
    EXPECT_EQ(chart->ScaleOf(0).To(), 7) << "the x of a line ends where the data does";
    EXPECT_EQ(chart->ScaleOf(1).From(), -4);
    EXPECT_EQ(chart->ScaleOf(1).To(), 18);
    chart->Y().SetRange(0.123456789012345, 7.3);
    EXPECT_EQ(chart->ScaleOf(1).From(), 0.123456789012345) << "as set, to the last digit";
    chart->Y().SetRange(5, -5);
    EXPECT_TRUE(chart->ScaleOf(1).IsReversed());
    chart->Y().SetAutomaticRange().SetIncluded(100);
    EXPECT_EQ(chart->ScaleOf(1).To(), 100);
    chart->AddLine(Count(20), Count(20))->SetVisible(false);
    EXPECT_EQ(chart->ScaleOf(0).To(), 7) << "hidden layers do not count";
    EXPECT_THROW(chart->Y().SetRange(1, 1), zel::Error);
    EXPECT_THROW(chart->Y().SetRange(std::nan(""), 1), zel::Error);
}

TEST_F(Chart, kinds_of_axes_follow_the_columns) {
    chart->AddLine(Column::Times({1'600'000'000'000, 1'600'086'400'000}, 1000), Count(2));
    EXPECT_EQ(chart->ScaleOf(0).GetKind(), Scale::Kind::TIME);
    EXPECT_EQ(chart->ScaleOf(0).To() - chart->ScaleOf(0).From(), 86'400);
    const int second = chart->AddAxis(zel::Side::TOP);
    chart->AddPoints(std::vector<std::string>{"b", "a"}, Count(2), {{.xAxis = second}});
    chart->AddPoints(std::vector<std::string>{"c", "a"}, Count(2), {{.xAxis = second}});
    EXPECT_EQ(chart->ScaleOf(second).Names(), (std::vector<std::string>{"b", "a", "c"}));
    EXPECT_THROW(chart->AddLine(Count(2), Count(2), {{.yAxis = 9}}), zel::Error);
    EXPECT_THROW(chart->AddLine(Count(2), Count(2), {{.xAxis = 1}}), zel::Error) << "both axes upright";
}

// What a line draws on a recording device, against places reckoned by hand.
TEST_F(Chart, lines_go_through_the_places_of_their_values) {
    chart->AddLine(std::vector<double>{1, 10, 100}, std::vector<double>{1, 100, 10}, {{.name = ""}});
    chart->X().SetLogarithm().SetRange(1, 100);
    chart->Y().SetLogarithm().SetRange(1, 100);
    const std::string drawn = Draw();
    const zel::LayerFrame frame = chart->FrameOf(*chart->Layers().front());
    const CPoint& lower = frame.world.lower;
    const CPoint& upper = frame.world.upper;
    const auto at = [&](double u, double v) {
        return std::to_string(static_cast<int>(lower.x + u * (upper.x - lower.x))) + "," +
               std::to_string(static_cast<int>(lower.y + v * (upper.y - lower.y)));
    };
    EXPECT_NE(drawn.find(at(0, 0) + " " + at(0.5, 1) + " " + at(1, 0.5)), std::string::npos) << drawn;
}

TEST_F(Chart, shows_points_without_a_neighbour) {
    const double none = std::nan("");
    const auto drawn = [&] {
        const std::string text = Draw();
        std::size_t count = 0;
        for (std::size_t at = text.find("polyline"); at != std::string::npos;
             at = text.find("polyline", at + 1))
            ++count;
        return count;
    };
    chart->SetLegend(zel::LegendPlace::NONE);
    chart->X().SetRange(-1, 10);
    chart->Y().SetRange(0, 10);
    const auto lines = [&](const std::vector<double>& y) {
        const std::size_t without = drawn();
        chart->AddLine(Count(static_cast<int>(y.size())), y);
        return drawn() - without;
    };
    EXPECT_EQ(lines({1, 2, 3}), 1U);
    EXPECT_EQ(lines({none, 5, none}), 2U) << "both strokes of a cross";
    EXPECT_EQ(lines({5, none, 1, 2, none, 3}), 5U);
}

TEST_F(Chart, says_what_it_cannot_draw) {
    EXPECT_NE(Notes().find("no data"), std::string::npos);
    chart->AddLine(Count(4), std::vector<double>{0, -1, 10, 100});
    chart->Y().SetTitle("speed").SetLogarithm();
    EXPECT_NE(Notes().find("2 values of the axis \"speed\" have no place"), std::string::npos) << Notes();
    EXPECT_EQ(chart->ScaleOf(1).From(), 10);
}

TEST_F(Chart, hides_a_layer_when_its_name_is_clicked) {
    Zel2Layer* const first = chart->AddLine(Count(5), Count(5), {{.name = "first"}});
    Zel2Layer* const second = chart->AddLine(Count(5), Count(5), {{.name = "second"}});
    Draw();
    const zel::LegendEntry& entry = chart->Layout().legend.at(1);
    EXPECT_EQ(entry.layer, second);
    const CPoint on =
        root.Map()->ToDevice(chart->AbsOrigin() + CSize((entry.whole.left + entry.whole.right) / 2,
                                                        (entry.whole.bottom + entry.whole.top) / 2));
    EXPECT_EQ(chart->OnClick(on), 1);
    EXPECT_FALSE(second->IsVisible());
    EXPECT_TRUE(first->IsVisible());
    EXPECT_EQ(chart->OnClick(on), 1);
    EXPECT_TRUE(second->IsVisible());
    EXPECT_EQ(chart->OnClick(CPoint(-500, -500)), 0);
    chart->Del(second);
    Draw();
    EXPECT_TRUE(chart->Layout().legend.empty()) << "one name needs no legend";
}

TEST_F(Chart, finds_the_nearest_row_and_the_values_at_a_place) {
    const Column x = Column::Times({1'600'000'000, 1'600'000'100, 1'600'000'200}, 1);
    Zel2Layer* const layer = chart->AddLine(x, std::vector<double>{0, 50, 100});
    Draw();
    const zel::LayerFrame frame = chart->FrameOf(*layer);
    const CPoint middle((frame.world.lower.x + frame.world.upper.x) / 2,
                        (frame.world.lower.y + frame.world.upper.y) / 2);
    const auto nearest = chart->Nearest(middle + CSize(1, 1));
    ASSERT_EQ(nearest.layer, layer);
    EXPECT_EQ(nearest.datum.row, 1U);
    EXPECT_EQ(nearest.datum.x, 1'600'000'100);
    EXPECT_EQ(nearest.datum.y, 50);
    EXPECT_NEAR(chart->ValueAt(0, middle), 1'600'000'100, 1);
    EXPECT_EQ(chart->TextAt(0, middle).substr(0, 17), "13 Sep 2020 12:28");
    EXPECT_EQ(chart->Nearest(CPoint(0, 0), 3).layer, nullptr);
}

TEST_F(Chart, stacks_add_up) {
    const std::vector<double> ones(5, 1), twos(5, 2);
    chart->AddArea(Count(5), ones, {{.name = "a"}, 0, true});
    chart->AddArea(Count(5), twos, {{.name = "b"}, 0, true});
    EXPECT_EQ(chart->ScaleOf(1).From(), 0);
    EXPECT_EQ(chart->ScaleOf(1).To(), 3);
    chart->Layers().front()->SetVisible(false);
    EXPECT_EQ(chart->ScaleOf(1).To(), 2) << "what is hidden carries nothing";
}

TEST_F(Chart, plot_areas_of_neighbours_are_aligned) {
    auto* table = root.Add(std::make_unique<Zel2Table>(2, 2));
    Zel2Chart* charts[2][2];
    for (unsigned i = 0; i < 2; ++i)
        for (unsigned j = 0; j < 2; ++j) {
            charts[i][j] =
                new Zel2Chart(zel::ChartOptions{.title = j == 1 && i == 1 ? "only one has a title" : ""});
            charts[i][j]->AddLine(Count(3), std::vector<double>{0, i == 0 && j == 0 ? 123'456.5 : 1, 2});
            table->SetCell(i, j, charts[i][j], 1, 1);
        }
    charts[1][0]->X().SetTitle("x");
    EXPECT_EQ(charts[0][0]->PlotArea().left, charts[0][1]->PlotArea().left);
    EXPECT_EQ(charts[1][0]->PlotArea().top, charts[0][0]->PlotArea().top);
    EXPECT_EQ(charts[1][1]->PlotArea().bottom, charts[0][1]->PlotArea().bottom);
    EXPECT_NE(charts[0][0]->PlotArea().left, charts[1][0]->PlotArea().left) << "other columns keep their own";
}

TEST_F(Chart, classic_archives_refuse_it_by_name) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    const std::string message = zel::test::MessageOf<CArchiveException>([&] { root.Serialize(ar); });
    EXPECT_NE(message.find("Zel2Chart"), std::string::npos) << message;
    ar.Abort();
}

// Whatever stands in a chart: within its size, and no text over another.
class AnyChart : public testing::TestWithParam<int> {};

bool Overlap(const Box& a, const Box& b) {
    return a.left < b.right && b.left < a.right && a.bottom < b.top && b.bottom < a.top;
}

TEST_P(AnyChart, fits_into_its_size) {
    std::mt19937 random(static_cast<unsigned>(GetParam()));
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const auto words = [&](int most) {
        std::string text;
        for (int i = below(most); i > 0; --i)
            text += (text.empty() ? "" : " ") + std::string(static_cast<std::size_t>(1 + below(12)), 'm');
        return text;
    };
    for (int round = 0; round < 15; ++round) {
        Zel2Main root;
        zel::ChartOptions options{.title = words(20), .subtitle = words(9), .caption = words(30)};
        options.size = {15.0 + below(200), 15.0 + below(150)};
        options.legend = static_cast<zel::LegendPlace>(below(6));
        options.fontSize = 5 + below(10);
        auto* chart = root.Add(std::make_unique<Zel2Chart>(options));
        const double size = std::pow(10.0, below(20) - 8);
        if (below(3) == 0) chart->Y().SetLogarithm();
        if (below(3) == 0) chart->X().SetTime("Europe/Berlin");
        if (below(4) == 0) chart->X().SetReversed(true);
        if (below(3) == 0) chart->Y2().SetTitle(words(5));
        chart->X().SetTitle(words(8));
        chart->Y().SetTitle(words(8));
        for (int i = below(25); i >= 0; --i) {
            std::vector<double> y;
            for (int k = 0; k < 20; ++k) y.push_back((below(1000) + 1) * size);
            if (below(5) == 0) {
                std::vector<std::string> names;
                for (int k = 0; k < 20; ++k) names.push_back(words(4) + std::to_string(k));
                chart->AddPoints(names, y, {{.name = words(5)}});
            } else {
                chart->AddLine(Count(20), y, {{.name = words(5)}});
            }
        }
        SCOPED_TRACE(round);
        const zel::ChartLayout& layout = chart->Layout();
        std::vector<const zel::PlacedText*> texts;
        for (const zel::PlacedText& text : layout.texts) texts.push_back(&text);
        for (const zel::PlacedAxis& axis : layout.axes)
            for (const zel::PlacedText& text : axis.texts) texts.push_back(&text);
        for (const zel::LegendEntry& entry : layout.legend) texts.push_back(&entry.name);
        const CSize extent = chart->Size();
        EXPECT_GT(layout.plot.Width(), extent.cx / 4);
        EXPECT_GT(layout.plot.Height(), extent.cy / 4);
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const Box& box = texts[i]->box;
            EXPECT_TRUE(box.left >= -2 && box.bottom >= -2 && box.right <= extent.cx + 2 &&
                        box.top <= extent.cy + 2)
                << texts[i]->text << " " << box.left << " " << box.bottom << " " << box.right << " "
                << box.top << " in " << extent.cx << " x " << extent.cy;
            for (std::size_t k = 0; k < i; ++k) {
                const bool over =
                    layout.legendInside &&
                    std::any_of(layout.legend.begin(), layout.legend.end(), [&](const zel::LegendEntry& e) {
                        return &e.name == texts[i] || &e.name == texts[k];
                    });
                EXPECT_TRUE(over || !Overlap(box, texts[k]->box))
                    << texts[i]->text << " over " << texts[k]->text;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, AnyChart, testing::Range(0, 8));

// Of the same two columns in every role.
void AddEveryLook(Zel2Chart& chart, const std::vector<double>& xs, const std::vector<double>& ys) {
    for (const bool horizontal : {false, true}) {
        for (const auto stacking : {zel::Stacking::NONE, zel::Stacking::VALUES, zel::Stacking::SHARES})
            chart.AddBars(xs, ys, {{}, horizontal, stacking, "", 0, 0.8, true});
        zel::HistogramOptions histogram{{}, ys};
        histogram.horizontal = horizontal;
        chart.AddHistogram(xs, histogram);
        chart.AddErrors(xs, ys, xs, {{}, horizontal});
        chart.AddBoxes(xs, ys, {{}, horizontal, 0.6, 1.5, horizontal});
    }
    chart.AddFloatingBars(xs, ys, xs);
    chart.AddUnevenErrors(xs, ys, xs, ys);
    chart.AddCandles(xs, ys, xs, ys, xs);
    for (const auto spread : {zel::ColorSpread::LINEAR, zel::ColorSpread::LOGARITHM,
                              zel::ColorSpread::QUANTILES, zel::ColorSpread::CENTRED}) {
        zel::HeatMapOptions heat;
        heat.colors.spread = spread;
        chart.AddHeatMapOfRows(xs, ys, xs, heat);
        zel::BubbleOptions bubbles{{}, xs, ys};
        bubbles.colorMap.spread = spread;
        chart.AddBubbles(xs, ys, bubbles);
    }
    chart.AddDensity(xs, ys);
    chart.AddTexts(xs, ys, std::vector<std::string>{"one", "", "three"});
    const double x = xs.empty() ? 0 : xs.front(), y = ys.empty() ? 0 : ys.front();
    chart.AddRuleAtX(x, {{}, "label"});
    chart.AddRuleAtY(y, {{}, "label"});
    chart.AddSlope(x, y, {{}, "label"});
    chart.AddSpanAlongX(x, y);
    chart.AddSpanAlongY(y, x);
    chart.AddNote(x, y, "note\nof two lines", {{}, 5, -5});
}

TEST_F(Chart, bad_input_is_a_picture_and_a_note) {
    const double nan = std::nan("");
    const std::vector<std::vector<double>> data{
        {}, {1}, {2, 2}, {nan, nan}, {1e-300, 3e-300}, {1e300, -1e300}, {HUGE_VAL, -HUGE_VAL, 1}, {0, -1}};
    for (const auto& xs : data)
        for (const auto& ys : data)
            for (const int kind : {0, 1, 2, 3}) {
                Zel2Main drawing;
                auto* all = drawing.Add(std::make_unique<Zel2Chart>());
                all->AddLine(xs, ys);
                all->AddArea(xs, ys);
                all->AddPoints(xs, ys);
                AddEveryLook(*all, xs, ys);
                if (kind == 1) all->Y().SetLogarithm();
                if (kind == 2) all->X().SetTime("Asia/Tokyo");
                if (kind == 3) all->X().SetSymmetricLogarithm().SetReversed(true);
                zel::RecordingDevice device;
                CDC dc(device);
                drawing.PrepareMappingFor(&dc, nullptr, 0, 0);
                drawing.Draw(&dc);
                EXPECT_FALSE(device.Text().empty());
            }
    std::vector<std::string> names;
    for (int i = 0; i < 10'000; ++i)
        names.push_back(std::string(i % 100 == 0 ? 10'000 : 20, 'n') + std::to_string(i));
    chart->AddPoints(names, Count(10'000));
    chart->SetTitle(std::string(10'000, 't'));
    Draw();
    EXPECT_NE(Notes().find("title is too long"), std::string::npos) << Notes();
}

}  // namespace
