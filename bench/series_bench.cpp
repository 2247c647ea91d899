// Redraws of series in one graph on an image of 1000 x 800 pixels.
#include <zel/platform/DC.h>
#include <zel/qt/ImageDevice.h>
#include <zel/qt/Install.h>
#include <zel/zel.h>

#include <benchmark/benchmark.h>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kBlue = RGB(31, 119, 180);

// Cheap, and the same in every run.
class Noise {
  public:
    // Between 0 and 1.
    double operator()() {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<double>(state_ >> 33) / 2147483648.0;
    }

  private:
    std::uint64_t state_ = 1;
};

// A graph with a range of 0 to 1 both ways.
class Plot {
  public:
    Plot() {
        zel::qt::Install();
        root_.SetRules(ZelRules::EXACT);
        root_.RegisterColor("Frame Color", kWhite, kWhite);
        root_.RegisterColor("Background Color", kWhite, kWhite);
        graph_ = new Zel2Graph;
        root_.Add(graph_);
        graph_->SetGraphSize(CSize(10000, 8000));
        graph_->SetCoord(0, 0, 1, 1);
    }
    // The graph owns the series.
    template <class Series>
    Series& Add(Series* series, int style = DrawPen::SOLID) {
        graph_->AddIn(series);
        series->SetPen(root_.RegisterPen("series", style, 2, kBlue, kBlue, nullptr));
        return *series;
    }
    int RegisterFill() { return root_.RegisterColor("fill", kBlue, kBlue); }
    int RegisterDisc() {
        return root_.RegisterSymbol("disc", CSize(60, 60), zel::SYMBOL_CIRCLE, "", 0, kBlue, kBlue, kBlue,
                                    kBlue, 0, "Arial", 80, 0, 0, nullptr, nullptr, 0);
    }
    void Zoom(double x0, double y0, double x1, double y1) { graph_->SetCoord(x0, y0, x1, y1); }
    void Draw() {
        image_.Clear(kWhite);
        CDC dc(image_);
        root_.PrepareMappingFor(&dc, nullptr, 0, 0);
        root_.Draw(&dc);
    }
    void Repeat(benchmark::State& state) {
        Draw();  // fonts are loaded, and indexes made
        for (auto _ : state) Draw();
        state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
    }

  private:
    Zel2Main root_;
    Zel2Graph* graph_;
    zel::qt::ImageDevice image_{1000, 800, 100};
};

struct Points {
    std::vector<double> x, y;
};

// A random walk on a sine, x sorted.
Points Walk(std::size_t n) {
    Points points;
    points.x.resize(n);
    points.y.resize(n);
    Noise noise;
    double walk = 0;
    const double step = 0.3 / std::sqrt(static_cast<double>(n));
    for (std::size_t i = 0; i < n; ++i) {
        const double x = static_cast<double>(i) / static_cast<double>(n);
        walk += step * (noise() - 0.5);
        points.x[i] = x;
        points.y[i] = 0.5 + 0.3 * std::sin(17 * x) + walk;
    }
    return points;
}

std::size_t Count(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

void DrawWalk(benchmark::State& state, bool indexed) {
    Plot plot;
    auto& series = plot.Add(new Zel2PointArray);
    Points points = Walk(Count(state));
    series.SetPoints(std::move(points.x), std::move(points.y));
    if (!indexed) series.GetXVec();  // handed out for writing, a series does without
    plot.Repeat(state);
}
BENCHMARK_CAPTURE(DrawWalk, indexed, true)
    ->RangeMultiplier(10)
    ->Range(100, 10'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DrawWalk, plain, false)->Arg(1'000'000)->Arg(10'000'000)->Unit(benchmark::kMillisecond);

// The width that is seen is 1 / range(1) of x, and the height 1 / range(2) of y.
void DrawZoomed(benchmark::State& state) {
    Plot plot;
    Points points = Walk(Count(state));
    auto& series = plot.Add(new Zel2PointView(zel::SeriesValues(points.x.data()),
                                              zel::SeriesValues(points.y.data()), points.x.size()));
    const double width = 1.0 / static_cast<double>(state.range(1));
    const double height = 1.0 / static_cast<double>(state.range(2));
    const double middle = points.y[points.y.size() / 2];
    plot.Zoom(0.5 - width / 2, middle - height / 2, 0.5 + width / 2, middle + height / 2);
    plot.Repeat(state);
    benchmark::DoNotOptimize(series);
}
BENCHMARK(DrawZoomed)
    ->ArgsProduct({{100'000, 1'000'000, 10'000'000, 100'000'000}, {100}, {1}})
    ->ArgsProduct({{100'000'000}, {1, 10, 1000, 100'000, 10'000'000}, {1}})
    ->ArgsProduct({{100'000'000}, {1, 10}, {10, 1000}})
    ->Unit(benchmark::kMillisecond);

void MakeIndex(benchmark::State& state) {
    Plot plot;
    Points points = Walk(Count(state));
    auto& series = plot.Add(new Zel2PointView(zel::SeriesValues(points.x.data()),
                                              zel::SeriesValues(points.y.data()), points.x.size()));
    plot.Zoom(2, 0, 3, 1);
    plot.Draw();
    for (auto _ : state) {
        series.PointsChanged();
        plot.Draw();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(MakeIndex)->Arg(10'000'000)->Arg(100'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();

// Shapes that lines can have.
enum Shape { SORTED, NOISE, UNSORTED, GAPS, STEPS };

void DrawShape(benchmark::State& state, Shape shape, int style) {
    Plot plot;
    auto& series = plot.Add(new Zel2PointArray, style);
    Points points = Walk(Count(state));
    Noise noise;
    for (std::size_t i = 0; i < points.x.size(); ++i) {
        if (shape == NOISE || shape == UNSORTED) points.y[i] = noise();
        if (shape == UNSORTED) points.x[i] = noise();
        if (shape == GAPS && i % 1000 == 0) points.y[i] = std::numeric_limits<double>::quiet_NaN();
        if (shape == STEPS) {
            points.x[i] = points.x[i - i % 2];
            points.y[i] = (i + 1) / 2 % 50 < 20 ? 0.2 : 0.8;
        }
    }
    series.SetPoints(std::move(points.x), std::move(points.y));
    plot.Repeat(state);
}
BENCHMARK_CAPTURE(DrawShape, noise, NOISE, DrawPen::SOLID)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DrawShape, unsorted, UNSORTED, DrawPen::SOLID)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DrawShape, gaps, GAPS, DrawPen::SOLID)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DrawShape, steps, STEPS, DrawPen::SOLID)
    ->Arg(1'000'000)
    ->Arg(10'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DrawShape, dashed, SORTED, DrawPen::DASH)
    ->Arg(10'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);

void DrawLines(benchmark::State& state) {
    Plot plot;
    for (int line = 0; line < 10; ++line) {
        Points points = Walk(Count(state) / 10);
        for (double& y : points.y) y += 0.03 * (line - 5);
        plot.Add(new Zel2PointArray).SetPoints(std::move(points.x), std::move(points.y));
    }
    plot.Repeat(state);
}
BENCHMARK(DrawLines)->Name("DrawTenLines")->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void DrawFill(benchmark::State& state) {
    Plot plot;
    auto& series = plot.Add(new Zel2PointArray);
    Points points = Walk(Count(state));
    series.SetPoints(std::move(points.x), std::move(points.y));
    series.SetPen(-1);
    series.SetColor(plot.RegisterFill());
    series.SetExtension(Zel2PointSet::BOTTOM, Zel2PointSet::BOTTOM);
    plot.Repeat(state);
}
BENCHMARK(DrawFill)->Arg(10'000)->Arg(10'000'000)->Unit(benchmark::kMillisecond);

void DrawDiscs(benchmark::State& state, bool noise) {
    Plot plot;
    auto& series = plot.Add(new Zel2PointArray);
    Points points = Walk(Count(state));
    Noise any;
    for (double& y : points.y) y = noise ? any() : y;
    series.SetPoints(std::move(points.x), std::move(points.y));
    series.SetPen(-1);
    series.SetSymbol(plot.RegisterDisc(), true);
    plot.Repeat(state);
}
BENCHMARK_CAPTURE(DrawDiscs, walk, false)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DrawDiscs, noise, true)->Arg(100'000)->Unit(benchmark::kMillisecond);

// A frame of 60 a second while 100,000 points a second come for each of 8 series, which keep a million.
void DrawStream(benchmark::State& state) {
    Plot plot;
    std::vector<Zel2PointRing*> rings;
    for (int i = 0; i < 8; ++i) rings.push_back(&plot.Add(new Zel2PointRing(1'000'000)));
    Noise noise;
    double time = 0;
    const auto append = [&](int n) {
        for (int i = 0; i < n; ++i) {
            time += 1e-5;
            for (std::size_t line = 0; line < rings.size(); ++line)
                rings[line]->Append(time, 0.1 * static_cast<double>(line) + 0.2 * noise());
        }
    };
    append(1'200'000);
    plot.Draw();
    for (auto _ : state) {
        append(100'000 / 60);
        plot.Zoom(time - 10, 0, time, 1);
        plot.Draw();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * 8 * 100'000 / 60);
}
BENCHMARK(DrawStream)->Unit(benchmark::kMillisecond);

}  // namespace
