// Charts on an image of 1000 x 800 pixels: the same points as in a graph, on linear and logarithmic scales,
// and what layout and legends cost.
#include <zel/platform/DC.h>
#include <zel/qt/ImageDevice.h>
#include <zel/qt/Install.h>
#include <zel/zel.h>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cmath>
#include <string>
#include <vector>

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);

enum class Kind { GRAPH, LINEAR, LOGARITHM };
enum class Look { LINE, AREA, POINTS };

struct Points {
    explicit Points(std::size_t n) : x(n), y(n) {
        std::uint64_t state = 1;
        double walk = 0;
        const double step = 0.3 / std::sqrt(static_cast<double>(n));
        for (std::size_t i = 0; i < n; ++i) {
            state = state * 6364136223846793005U + 1442695040888963407U;
            walk += step * (static_cast<double>(state >> 33) / 2147483648.0 - 0.5);
            x[i] = static_cast<double>(i) / static_cast<double>(n);
            y[i] = 0.5 + 0.3 * std::sin(17 * x[i]) + walk;
        }
    }
    std::vector<double> x, y;
};

void AddToGraph(Zel2Main& root, const Points& points, Look look) {
    root.RegisterColor("Frame Color", kWhite, kWhite);
    root.RegisterColor("Background Color", kWhite, kWhite);
    auto* graph = root.Add(std::make_unique<Zel2Graph>());
    graph->SetGraphSize(CSize(10000, 8000));
    graph->SetCoord(0, 0, 1, 1);
    auto series = std::make_unique<Zel2PointView>(zel::SeriesValues(points.x.data()),
                                                  zel::SeriesValues(points.y.data()), points.x.size());
    if (look == Look::LINE)
        series->SetPen(zel::RegisterPen(root, "p", {.color = zel::Color::Palette(0), .width = 1.2}));
    if (look == Look::AREA) {
        series->SetColor(zel::RegisterColor(root, "c", {.color = zel::Color::Palette(0)}));
        series->SetExtension(Zel2PointSet::BOTTOM, Zel2PointSet::BOTTOM);
    }
    if (look == Look::POINTS)
        series->SetSymbol(zel::RegisterSymbol(root, "s", {.size = 5, .color = zel::Color::Palette(0)}), true);
    graph->AddIn(series.release());
}

void AddToChart(Zel2Main& root, const Points& points, Look look, Kind kind) {
    auto* chart = root.Add(std::make_unique<Zel2Chart>(zel::ChartOptions{.size = {254, 203.2}}));
    if (kind == Kind::LOGARITHM) chart->Y().SetLogarithm();
    chart->Y().SetRange(kind == Kind::LOGARITHM ? 0.1 : 0, 1);
    const auto x = zel::Column::View(std::span<const double>(points.x)),
               y = zel::Column::View(std::span<const double>(points.y));
    if (look == Look::LINE) chart->AddLine(x, y);
    if (look == Look::AREA) chart->AddArea(x, y);
    if (look == Look::POINTS) chart->AddPoints(x, y);
}

void Draw(benchmark::State& state, Look look, Kind kind) {
    zel::qt::Install();
    const Points points(static_cast<std::size_t>(state.range(0)));
    Zel2Main root;
    root.SetRules(ZelRules::EXACT);
    if (kind == Kind::GRAPH) {
        AddToGraph(root, points, look);
    } else {
        AddToChart(root, points, look, kind);
    }
    zel::qt::ImageDevice image{1000, 800, 100};
    const auto draw = [&] {
        image.Clear(kWhite);
        CDC dc(image);
        root.PrepareMappingFor(&dc, nullptr, 0, 0);
        root.Draw(&dc);
    };
    draw();  // fonts are loaded, and indexes made
    for (auto _ : state) draw();
}
#define DRAW(look)                                                            \
    BENCHMARK_CAPTURE(Draw, look##_in_graph, Look::look, Kind::GRAPH)         \
        ->RangeMultiplier(100)                                                \
        ->Range(10'000, 100'000'000)                                          \
        ->Unit(benchmark::kMillisecond);                                      \
    BENCHMARK_CAPTURE(Draw, look##_in_chart, Look::look, Kind::LINEAR)        \
        ->RangeMultiplier(100)                                                \
        ->Range(10'000, 100'000'000)                                          \
        ->Unit(benchmark::kMillisecond);                                      \
    BENCHMARK_CAPTURE(Draw, look##_on_logarithm, Look::look, Kind::LOGARITHM) \
        ->RangeMultiplier(100)                                                \
        ->Range(10'000, 100'000'000)                                          \
        ->Unit(benchmark::kMillisecond)
DRAW(LINE);
DRAW(AREA);
DRAW(POINTS);

// A redraw of a look of so many rows, after the first.
template <class AddLook>
void DrawLook(benchmark::State& state, AddLook add) {
    zel::qt::Install();
    Zel2Main root;
    root.SetRules(ZelRules::EXACT);
    auto* chart = root.Add(std::make_unique<Zel2Chart>(zel::ChartOptions{.size = {254, 203.2}}));
    const Points points(static_cast<std::size_t>(state.range(0)));
    add(*chart, points);
    zel::qt::ImageDevice image{1000, 800, 100};
    const auto draw = [&] {
        image.Clear(kWhite);
        CDC dc(image);
        root.PrepareMappingFor(&dc, nullptr, 0, 0);
        root.Draw(&dc);
    };
    const auto begin = std::chrono::steady_clock::now();
    draw();
    state.counters["first"] =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    for (auto _ : state) draw();
}

zel::Column View(const std::vector<double>& values) {
    return zel::Column::View(std::span<const double>(values));
}

void Bars(benchmark::State& state) {
    DrawLook(state, [](Zel2Chart& chart, const Points& p) { chart.AddBars(View(p.x), View(p.y)); });
}
void Histogram(benchmark::State& state) {
    DrawLook(state, [](Zel2Chart& chart, const Points& p) { chart.AddHistogram(View(p.y)); });
}
void ErrorBars(benchmark::State& state) {
    DrawLook(state, [](Zel2Chart& chart, const Points& p) {
        chart.AddErrors(View(p.x), View(p.y), std::vector<double>(p.x.size(), 0.05));
    });
}
void Candles(benchmark::State& state) {
    DrawLook(state, [](Zel2Chart& chart, const Points& p) {
        std::vector<double> open = p.y, high, low;
        std::rotate(open.begin(), open.begin() + 1, open.end());
        for (std::size_t i = 0; i < open.size(); ++i) {
            high.push_back(std::max(open[i], p.y[i]) + 0.01);
            low.push_back(std::min(open[i], p.y[i]) - 0.01);
        }
        chart.AddCandles(View(p.x), std::move(open), std::move(high), std::move(low), View(p.y));
    });
}
// A thousand boxes of as many values each as make up the rows.
void BoxPlots(benchmark::State& state) {
    DrawLook(state, [](Zel2Chart& chart, const Points& p) {
        std::vector<double> groups;
        for (std::size_t i = 0; i < p.y.size(); ++i) groups.push_back(static_cast<double>(i % 1000));
        chart.AddBoxes(std::move(groups), View(p.y));
    });
}
void HeatMap(benchmark::State& state) {
    DrawLook(state, [](Zel2Chart& chart, const Points& p) {
        const auto side = static_cast<std::size_t>(std::sqrt(static_cast<double>(p.y.size())));
        std::vector<double> places;
        for (std::size_t i = 0; i < side; ++i) places.push_back(static_cast<double>(i));
        chart.AddHeatMap(places, places, View(p.y));
    });
}
void Bubbles(benchmark::State& state) {
    DrawLook(state, [](Zel2Chart& chart, const Points& p) {
        zel::BubbleOptions options;
        options.colors = View(p.y);
        chart.AddBubbles(View(p.x), View(p.y), options);
    });
}
void Density(benchmark::State& state) {
    DrawLook(state, [](Zel2Chart& chart, const Points& p) { chart.AddDensity(View(p.x), View(p.y)); });
}
BENCHMARK(Bubbles)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(Density)->Arg(1'000'000)->Arg(10'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(Bars)->Arg(1000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(Histogram)->Arg(100'000)->Arg(10'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(ErrorBars)->Arg(1000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(Candles)->Arg(1000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(BoxPlots)->Arg(100'000)->Arg(10'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(HeatMap)->Arg(10'000)->Arg(16'000'000)->Unit(benchmark::kMillisecond);

// Places for titles, labels and so many names.
void LayOut(benchmark::State& state) {
    zel::qt::Install();
    Zel2Main root;
    auto* chart =
        root.Add(std::make_unique<Zel2Chart>(zel::ChartOptions{.title = "A title", .caption = "A source"}));
    chart->X().SetTitle("Time").SetUnit("s");
    chart->Y().SetTitle("Speed").SetUnit("m/s");
    for (int i = 0; i < state.range(0); ++i)
        chart->AddLine(std::vector<double>{0, 1, 2}, std::vector<double>{0, 3, 2.0 + i},
                       {{.name = "series " + std::to_string(i)}});
    (void)chart->Notes();
    for (auto _ : state) {
        chart->Changed();
        benchmark::DoNotOptimize(chart->PlotArea());
    }
}
BENCHMARK(LayOut)->Arg(8)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace
