// Storing and loading series.
#include <zel/platform/Archive.h>
#include <zel/platform/File.h>
#include <zel/zel.h>

#include <benchmark/benchmark.h>
#include <cmath>
#include <memory>

namespace {

void Fill(Zel2PointArray& points, std::size_t n) {
    std::vector<double> x(n), y(n);
    for (std::size_t i = 0; i < n; ++i) {
        x[i] = static_cast<double>(i);
        y[i] = std::sin(static_cast<double>(i) * 1e-3);
    }
    points.SetPoints(std::move(x), std::move(y));
}

void StoreSeries(benchmark::State& state) {
    Zel2PointArray points;
    Fill(points, static_cast<std::size_t>(state.range(0)));
    CMemFile file;
    for (auto _ : state) {
        file.SeekToBegin();
        CArchive ar(&file, CArchive::store);
        points.Serialize(ar);
        ar.Close();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0) * 16);
}
BENCHMARK(StoreSeries)->Arg(10'000'000)->Unit(benchmark::kMillisecond);

void LoadSeries(benchmark::State& state) {
    Zel2PointArray points;
    Fill(points, static_cast<std::size_t>(state.range(0)));
    CMemFile file;
    CArchive storing(&file, CArchive::store);
    points.Serialize(storing);
    storing.Close();
    for (auto _ : state) {
        file.SeekToBegin();
        CArchive ar(&file, CArchive::load);
        Zel2PointArray loaded;
        loaded.Serialize(ar);
        benchmark::DoNotOptimize(loaded.GetXVec()->data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0) * 16);
}
BENCHMARK(LoadSeries)->Arg(10'000'000)->Unit(benchmark::kMillisecond);

// What a plain copy of the same bytes costs on this machine, for comparison.
void CopyBytes(benchmark::State& state) {
    const std::vector<char> from(static_cast<std::size_t>(state.range(0)) * 16, 1);
    for (auto _ : state) {
        std::vector<char> to(from);
        benchmark::DoNotOptimize(to.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0) * 16);
}
BENCHMARK(CopyBytes)->Arg(10'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
