// Documents against plain files of the same bytes.
#include <zel/platform/Exception.h>
#include <zel/zel.h>

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

std::string PathOf(const char* name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

void FillWithPoints(Zel2Main& drawing, std::int64_t count) {
    auto* series = new Zel2PointArray;
    for (std::int64_t i = 0; i < count; ++i)
        series->Append(static_cast<double>(i), static_cast<double>(i % 977));
    drawing.Add(series);
}

void FillWithObjects(Zel2Main& drawing, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i) {
        const int at = static_cast<int>(i);
        drawing.Add(new Zel2Rect(CRect(at, at, at + 9, at + 9), 0, 0, Zel2Rect::RECTANGLE, -1));
    }
}

// What any program must do to write these bytes safely.
void WritePlain(const std::string& path, const std::vector<char>& bytes) {
    const int file = open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t put = write(file, bytes.data() + done, bytes.size() - done);
        if (put <= 0) std::abort();
        done += static_cast<std::size_t>(put);
    }
    fsync(file);
    close(file);
}

void ReadPlain(const std::string& path, std::vector<char>& bytes) {
    const int file = open(path.c_str(), O_RDONLY);
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t got = read(file, bytes.data() + done, bytes.size() - done);
        if (got <= 0) std::abort();
        done += static_cast<std::size_t>(got);
    }
    close(file);
}

template <class Fill>
void SaveAndLoad(benchmark::State& state, Fill fill, bool load) {
    const std::string path = PathOf("zel-bench.zel");
    {
        Zel2Main drawing;
        fill(drawing, state.range(0));
        zel::SaveDocument(drawing, path.c_str());
        if (!load) {
            for (auto _ : state) zel::SaveDocument(drawing, path.c_str());
        }
    }
    if (load) {
        for (auto _ : state) {
            auto drawing = zel::LoadDocument(path.c_str());
            state.PauseTiming();
            drawing.reset();
            state.ResumeTiming();
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(std::filesystem::file_size(path)));
    std::remove(path.c_str());
}
void SavePoints(benchmark::State& state) {
    SaveAndLoad(state, FillWithPoints, false);
}
void LoadPoints(benchmark::State& state) {
    SaveAndLoad(state, FillWithPoints, true);
}
void SaveObjects(benchmark::State& state) {
    SaveAndLoad(state, FillWithObjects, false);
}
void LoadObjects(benchmark::State& state) {
    SaveAndLoad(state, FillWithObjects, true);
}
BENCHMARK(SavePoints)->Arg(10'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadPoints)->Arg(10'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(SaveObjects)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadObjects)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void PlainFile(benchmark::State& state, bool load) {
    const std::string path = PathOf("zel-bench.plain");
    std::vector<char> bytes(static_cast<std::size_t>(state.range(0)) * 16, 'x');
    WritePlain(path, bytes);
    for (auto _ : state) {
        if (load) {
            // Into memory that is new, as a program that opens a file has it.
            std::vector<char> fresh(bytes.size());
            ReadPlain(path, fresh);
            benchmark::DoNotOptimize(fresh.data());
        } else {
            WritePlain(path, bytes);
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(bytes.size()));
    std::remove(path.c_str());
}
BENCHMARK_CAPTURE(PlainFile, write, false)->Arg(10'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PlainFile, read, true)->Arg(10'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
