// What a person at a view waits for: redraws of large graphs at several zooms, frames of dragging a hundred
// of ten thousand objects, 1920 x 1080 pixels, offscreen, and the start of the desktop program.
#include "examples/gallery.h"

#include <zel/widgets/Widgets.h>
#include <zel/zel.h>

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// A frame's content without the frame.
struct View {
    explicit View(Zel2Main* drawing) {
        zel::widgets::Install();
        view = new CZelView;
        view->Create(nullptr, nullptr, WS_CHILD, CRect(0, 0, 1920, 1080), nullptr, 0);
        view->SendMessage(WM_INITIALUPDATE);
        view->SetDrawing(drawing);
        view->UpdateWindow();
    }
    ~View() { view->DestroyWindow(); }
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    CZelView* view;
};

Zel2Main* WalkOf(int points) {
    auto* root = new Zel2Main;
    root->SetRules(ZelRules::EXACT);
    auto* graph = new Zel2Graph;
    root->Add(graph);
    graph->SetGraphSize(CSize(18000, 10000));
    auto* walk = new Zel2PointArray;
    std::mt19937 random(7);
    std::normal_distribution<double> step;
    double y = 0;
    for (int i = 0; i < points; ++i) walk->Append(i, y += step(random));
    walk->SetPen(root->RegisterPen("walk", DrawPen::SOLID, 2, RGB(20, 60, 160), 0, nullptr));
    graph->AddIn(walk);
    graph->SetCoord(0, -400, points, 400);
    return root;
}

// The drawing of the gallery that takes most bytes.
std::unique_ptr<Zel2Main> LargestOfGallery() {
    std::unique_ptr<Zel2Main> largest;
    std::size_t most = 0;
    for (const Example& example : GalleryExamples()) {
        std::unique_ptr<Zel2Main> drawing = example.make(ZEL_DATA);
        const std::size_t size = zel::DocumentBytes(*drawing).size();
        if (size > most) largest = std::move(drawing);
        most = std::max(most, size);
    }
    return largest;
}

void RedrawAtZoom(benchmark::State& state, Zel2Main* (*make)()) {
    const View shown(make());
    ZelViewer& viewer = *shown.view->Viewer();
    for (int i = 0; i < state.range(0); ++i) viewer.OnEnlarge(CPoint(900, 500));
    for (int i = 0; i > state.range(0); --i) viewer.OnReduce(CPoint(900, 500));
    for (auto _ : state) {
        shown.view->Invalidate();
        shown.view->UpdateWindow();
    }
    state.counters["scale"] = viewer.GetScale();
}
BENCHMARK_CAPTURE(RedrawAtZoom, walk, [] { return WalkOf(10000); })
    ->Arg(-6)
    ->Arg(0)
    ->Arg(4)
    ->Arg(8)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RedrawAtZoom, gallery, [] { return LargestOfGallery().release(); })
    ->Arg(-6)
    ->Arg(0)
    ->Arg(2)
    ->Arg(4)
    ->Arg(8)
    ->Unit(benchmark::kMillisecond);

// One mouse move while a hundred objects follow, and the drop that repaints where they were and are.
void DragHundredOfTenThousand(benchmark::State& state, bool drop) {
    auto* root = new Zel2Main;
    const int color = root->RegisterColor("fill", RGB(250, 210, 120), 0);
    const int pen = root->RegisterPen("frame", DrawPen::SOLID, 1, RGB(90, 50, 10), 0, nullptr);
    for (int i = 0; i < 10000; ++i) {
        const CPoint at(i % 100 * 190, i / 100 * 105);
        root->Add(new Zel2Rect(CRect(at, CSize(120, 70)), pen, color, Zel2Rect::RECTANGLE, -1));
    }
    const View shown(root);
    Zel2Selection& selection = shown.view->Viewer()->Selection();
    selection.accumulate = 1;
    for (int i = 0; i < 100; ++i) selection.Add((*root)[4000 + 7 * i]);
    selection.Select(1);
    shown.view->UpdateWindow();
    CPoint at(900, 500);
    int turn = 0;
    selection.StartDrag(at);
    for (auto _ : state) {
        CPoint to = at + CSize(turn % 2 ? 9 : -7, turn % 3 ? 4 : -8);
        ++turn;
        selection.DragTo(to);
        if (drop) selection.EndDrag();
        shown.view->UpdateWindow();
        if (drop) selection.StartDrag(to);
    }
    selection.EndDrag();
    shown.view->UpdateWindow();
}
BENCHMARK_CAPTURE(DragHundredOfTenThousand, move, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DragHundredOfTenThousand, drop, true)->Unit(benchmark::kMillisecond);

// A process that ends once its window shows the drawing; its settings and its copy stay with the bench.
void StartOfProgram(benchmark::State& state) {
    std::string folder = (std::filesystem::temp_directory_path() / "zel-bench-XXXXXX").string();
    if (!mkdtemp(folder.data())) return state.SkipWithError("no folder for the drawing");
    const std::string file = folder + "/drawing.zel";
    zel::SaveDocument(*LargestOfGallery(), file.c_str());
    for (const char* home : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"}) setenv(home, folder.c_str(), 1);
    const char* const arguments[] = {ZEL_PROGRAM, "--first-picture", file.c_str(), nullptr};
    for (auto _ : state) {
        pid_t process = 0;
        int status = -1;
        const bool ran = posix_spawn(&process, ZEL_PROGRAM, nullptr, nullptr, const_cast<char**>(arguments),
                                     environ) == 0 &&
                         waitpid(process, &status, 0) == process;
        if (!ran || status != 0) {
            state.SkipWithError("the program did not end well");
            break;
        }
    }
    std::filesystem::remove_all(folder);
}
BENCHMARK(StartOfProgram)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
