// Redraws of one graph on an image of 1000 x 800 pixels.
#include <zel/platform/DC.h>
#include <zel/qt/ImageDevice.h>
#include <zel/qt/Install.h>
#include <zel/zel.h>

#include <benchmark/benchmark.h>
#include <cmath>
#include <random>

namespace {

// A sine with a pen of a style and `n` points.
void DrawSine(benchmark::State& state, int style) {
    zel::qt::Install();
    Zel2Main root;
    root.SetRules(ZelRules::EXACT);
    auto* graph = new Zel2Graph;
    root.Add(graph);
    graph->SetGraphSize(CSize(10000, 8000));
    graph->SetCoord(0, -1.1, 1, 1.1);
    auto* points = new Zel2PointArray;
    graph->AddIn(points);
    points->SetPen(root.RegisterPen("series", style, 2, 0, 0, nullptr));
    const auto n = static_cast<std::size_t>(state.range(0));
    for (std::size_t i = 0; i < n; ++i) {
        const double x = static_cast<double>(i) / static_cast<double>(n);
        points->Append(x, std::sin(40 * x));
    }
    zel::qt::ImageDevice image(1000, 800, 100);
    for (auto _ : state) {
        image.Clear(RGB(255, 255, 255));
        CDC dc(image);
        root.PrepareMappingFor(&dc, nullptr, 0, 0);
        root.Draw(&dc);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK_CAPTURE(DrawSine, solid, DrawPen::SOLID)
    ->Arg(100)
    ->Arg(10'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DrawSine, dashed, DrawPen::DASH)
    ->Arg(10'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);

// A random walk on white, which is where most of a comparison with other libraries goes.
void DrawWalk(benchmark::State& state) {
    zel::qt::Install();
    Zel2Main root;
    root.SetRules(ZelRules::EXACT);
    root.RegisterColor("Frame Color", RGB(255, 255, 255), RGB(255, 255, 255));
    root.RegisterColor("Background Color", RGB(255, 255, 255), RGB(255, 255, 255));
    auto* graph = new Zel2Graph;
    root.Add(graph);
    graph->SetGraphSize(CSize(10000, 8000));
    graph->SetCoord(0, -2, 1, 2);
    auto* points = new Zel2PointArray;
    graph->AddIn(points);
    points->SetPen(root.RegisterPen("series", DrawPen::SOLID, 2, 0, 0, nullptr));
    const auto n = static_cast<std::size_t>(state.range(0));
    std::mt19937 random(1);
    std::normal_distribution<double> step(0, 1 / std::sqrt(static_cast<double>(n)));
    double y = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const double x = static_cast<double>(i) / static_cast<double>(n);
        points->Append(x, std::sin(17 * x) + 0.3 * (y += step(random)));
    }
    zel::qt::ImageDevice image(1000, 800, 100);
    for (auto _ : state) {
        image.Clear(RGB(255, 255, 255));
        CDC dc(image);
        root.PrepareMappingFor(&dc, nullptr, 0, 0);
        root.Draw(&dc);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(DrawWalk)->Arg(2)->Arg(10'000)->Arg(10'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
