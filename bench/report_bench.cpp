// Reports of many rows, and trees of many objects.
#include <zel/platform/DC.h>
#include <zel/qt/ImageDevice.h>
#include <zel/qt/Install.h>
#include <zel/zel.h>

#include <benchmark/benchmark.h>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

constexpr int kColumns = 5;

// The most memory that the process has held, in megabytes.
double PeakMegabytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) / 1024;
    }
    return 0;
}

Zel2Report* AddReport(Zel2Main& drawing, int rows) {
    drawing.SetRules(ZelRules::EXACT);
    auto* report = new Zel2Report;
    drawing.Add(report);
    zel::ReportPaper paper;
    paper.footer.right = "page {page} of {pages}";
    report->SetPaper(paper);
    const int font = report->RegisterFont("text", "Arial", 80, 0, 0, 0, 0, 0, 0);
    const int pen = report->RegisterPen("rule", DrawPen::SOLID, 1, 0, 0, nullptr);
    auto* table = new Zel2TextTable(kColumns, rows);
    table->SetNHeaderRows(1);
    table->SetStyle(
        0, kColumns - 1, 0, rows - 1,
        Zel2Text("", CRect(0, 0, 1299, 169), font, DT_RIGHT | DT_VCENTER, 0, -1, -1, {pen, 1.0F}));
    for (int r = 0; r < rows; ++r)
        table->SetText(0, r, "%d\t%d\t%d\t%.2f\t%s", r, r * 7, r % 13, r / 3.0, "rain");
    report->Append(table);
    return report;
}

void Paginate(benchmark::State& state) {
    int pages = 0;
    for (auto _ : state) {
        state.PauseTiming();
        Zel2Main drawing;
        Zel2Report* report = AddReport(drawing, static_cast<int>(state.range(0)));
        state.ResumeTiming();
        pages = report->MakePages();
        state.PauseTiming();
        drawing.Del(report);
        state.ResumeTiming();
    }
    state.counters["pages"] = pages;
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(Paginate)->Arg(1000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// The memory that writing adds is the difference between the peaks before and after.
void WritePdf(benchmark::State& state) {
    zel::qt::Install();
    Zel2Main drawing;
    Zel2Report* report = AddReport(drawing, static_cast<int>(state.range(0)));
    report->MakePages();
    const std::string path = std::filesystem::temp_directory_path() / "zel-bench-report.pdf";
    const double before = PeakMegabytes();
    for (auto _ : state) zel::ExportReport(drawing, *report, path.c_str());
    state.counters["MB_added"] = PeakMegabytes() - before;
    state.counters["pages"] = report->PageCount();
    state.counters["pages/s"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * report->PageCount(), benchmark::Counter::kIsRate);
    std::remove(path.c_str());
}
BENCHMARK(WritePdf)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// Rectangles in a square grid of cells of 100 world units.
class Rectangles {
  public:
    explicit Rectangles(int count) {
        zel::qt::Install();
        root_.SetRules(ZelRules::EXACT);
        const int color = root_.RegisterColor("fill", RGB(200, 220, 240), 0);
        const int pen = root_.RegisterPen("frame", DrawPen::SOLID, 0, 0, 0, nullptr);
        while (side_ * side_ < count) ++side_;
        for (int i = 0; i < count; ++i) {
            const CPoint at(i % side_ * 100, i / side_ * 100);
            root_.Add(new Zel2Rect(CRect(at, CSize(80, 80)), pen, color, Zel2Rect::RECTANGLE, -1));
        }
        CDC dc(image_);
        root_.PrepareMappingFor(&dc, nullptr, 0, 0);
        root_.Map()->SetLogical(CPoint(0, 1000 * 16), CPoint(1000 * 16, 0));
    }
    void Draw() {
        CDC dc(image_);
        root_.Draw(&dc);
    }
    void Hit() {
        MouseStatus mouse;
        mouse.point = CPoint(1, 16 * 1000 - 1);  // the first object: all others are asked before it
        benchmark::DoNotOptimize(root_.OnMouse(mouse).object);
    }

  private:
    zel::qt::ImageDevice image_{1000, 1000, 100};
    Zel2Main root_;
    int side_ = 1;
};

void DrawRectangles(benchmark::State& state) {
    Rectangles rectangles(static_cast<int>(state.range(0)));
    for (auto _ : state) rectangles.Draw();
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(DrawRectangles)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void HitRectangles(benchmark::State& state) {
    Rectangles rectangles(static_cast<int>(state.range(0)));
    for (auto _ : state) rectangles.Hit();
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(HitRectangles)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void LayOutTable(benchmark::State& state) {
    Zel2Main root;
    const auto rows = static_cast<unsigned>(state.range(0) / 10);
    auto* table = new Zel2Table(10, rows);
    root.Add(table);
    for (unsigned j = 0; j < rows; ++j) {
        for (unsigned i = 0; i < 10; ++i) {
            auto* cell = new Zel2Rect;
            cell->SetSize(CSize(100, 50));
            table->SetCell(i, j, cell, 1, 1);
        }
    }
    int width = 1000;
    for (auto _ : state) table->SetSize(CSize(width ^= 1, 0));
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(LayOutTable)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
