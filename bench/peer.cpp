// Draws one work of a comparison with other libraries and prints the time of each repetition.
//
//     zel_peer WORK N REPS DATA OUT VARIANT
//
// WORK is line, zoom, scatter or pdf; DATA holds N pairs of doubles; OUT is a file to write, "-" for none.
// Prints a line "ms T" for each redraw of a graph of 1000 x 800 pixels; exits with 3 for a work that it does
// not know.
#include <zel/platform/DC.h>
#include <zel/platform/Platform.h>
#include <zel/qt/ImageDevice.h>
#include <zel/qt/Install.h>
#include <zel/zel.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 1000;
constexpr int kHeight = 800;
constexpr int kDotsPerInch = 100;
constexpr std::size_t kPages = 300;
constexpr COLORREF kBlue = RGB(31, 119, 180);
constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kGrid = RGB(211, 211, 211);

struct Series {
    std::vector<double> x, y;
    double lo = 1e300, hi = -1e300;
};

Series ReadSeries(const char* path, std::size_t n) {
    Series series;
    series.x.reserve(n);
    series.y.reserve(n);
    FILE* file = std::fopen(path, "rb");
    if (!file) {
        std::perror(path);
        std::exit(2);
    }
    std::vector<double> block(1 << 14);
    while (series.x.size() < n) {
        const std::size_t pairs =
            std::fread(block.data(), 16, std::min(block.size() / 2, n - series.x.size()), file);
        if (pairs == 0) break;
        for (std::size_t i = 0; i < pairs; ++i) {
            series.x.push_back(block[2 * i]);
            series.y.push_back(block[2 * i + 1]);
            series.lo = std::min(series.lo, series.y.back());
            series.hi = std::max(series.hi, series.y.back());
        }
    }
    std::fclose(file);
    const double margin = (series.hi - series.lo) * 0.03;
    series.lo -= margin;
    series.hi += margin;
    return series;
}

// Once for REPS 1; otherwise at least REPS times, on to 60 while under 0.3 s in all, and no more than 3 after
// 8 s.
template <class Work>
void Repeat(int repetitions, Work work) {
    double sum = 0;
    for (int r = 0;
         r == 0 || (repetitions > 1 && (r < 3 || (r < repetitions && sum < 8000) || (r < 60 && sum < 300)));
         ++r) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        const double ms =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
        sum += ms;
        std::printf("ms %.4f\n", ms);
        std::fflush(stdout);
    }
}

class Plot {
  public:
    Plot() {
        root_.SetRules(ZelRules::EXACT);
        root_.RegisterColor("Frame Color", kWhite, kWhite);
        root_.RegisterColor("Background Color", kWhite, kWhite);
        root_.RegisterPen("Vertical/Horizontal Coordinate Lines", DrawPen::SOLID, 0, kGrid, kGrid, nullptr);
        graph_ = new Zel2Graph;
        graph_->SetGraphSize(CSize(kWidth * 1000 / kDotsPerInch, kHeight * 1000 / kDotsPerInch));
        graph_->SetMargins(900, 500, 300, 750);
        root_.Add(graph_);
        points_ = new Zel2PointArray;
        graph_->AddIn(points_);
        pen_ = root_.RegisterPen("series", DrawPen::SOLID, 2, kBlue, kBlue, nullptr);
        points_->SetPen(pen_);
        const int font = root_.RegisterFont("text", "Arial", 90, 0, 0, 0, 0, 0, 0);
        const int titleFont = root_.RegisterFont("title", "Arial", 120, 0, 0, 0, 0, 0, 0);
        title_ = AddText("Random walk and sine", {5000, 7850}, titleFont, 0);
        AddText("time", {5000, 350}, font, 0);
        AddText("value", {150, 4000}, font, 900);
    }
    Zel2Main& Root() { return root_; }
    Zel2PointArray& Points() { return *points_; }
    void SetTitle(const std::string& text) { title_->SetPlainText(text.c_str()); }
    void SetRange(double x0, double x1, double y0, double y1) {
        graph_->SetCoord(x0, y0, x1, y1);
        KeepLabels(x0, x1, y0, y1);
    }
    void UseDiscs() {
        points_->SetPen(-1);
        points_->SetSymbol(
            root_.RegisterSymbol("disc", CSize(60, 60), zel::SYMBOL_CIRCLE, "", 0, kBlue, kBlue, kBlue, kBlue,
                                 0, "Arial", 80, 0, 0, nullptr, nullptr, 0),
            true);
    }

  private:
    Zel2Text* AddText(const char* text, const CPoint& at, int font, int angle) {
        auto* added = new Zel2Text(text, at, font, DT_CENTER | DT_VCENTER, angle, -1, -1, {-1, 0.0F});
        root_.Add(added);
        return added;
    }
    void KeepLabels(double x0, double x1, double y0, double y1) {
        std::vector<double> xs, ys;
        Zel2Graph::AutoCoord(1, x0, x1, 8, xs, ZelRules::EXACT);
        Zel2Graph::AutoCoord(1, y0, y1, 8, ys, ZelRules::EXACT);
        std::erase_if(xs, [=](double v) { return v < x0 || v > x1; });
        std::erase_if(ys, [=](double v) { return v < y0 || v > y1; });
        graph_->SetXLabels(xs), graph_->SetXTicks(xs), graph_->SetXLines(xs);
        graph_->SetYLabels(ys), graph_->SetYTicks(ys), graph_->SetYLines(ys);
    }

    Zel2Main root_;
    Zel2Graph* graph_;
    Zel2PointArray* points_;
    Zel2Text* title_;
    int pen_;
};

void DrawOn(Plot& plot, zel::GraphicsDevice& device) {
    CDC dc(device);
    plot.Root().PrepareMappingFor(&dc, nullptr, 0, 0);
    plot.Root().Draw(&dc);
}

void DrawReport(Plot& plot, const Series& series, const char* path) {
    zel::FileDeviceOptions options;
    options.path = path;
    options.format = "pdf";
    options.width = static_cast<double>(kWidth) / kDotsPerInch;
    options.height = static_cast<double>(kHeight) / kDotsPerInch;
    const auto device = zel::Platform::Get().CreateFileDevice(options);
    const std::size_t perPage = series.x.size() / kPages;
    for (std::size_t page = 0; page < kPages; ++page) {
        if (page > 0) device->NewPage();
        const auto begin = static_cast<std::ptrdiff_t>(page * perPage);
        const auto end = begin + static_cast<std::ptrdiff_t>(perPage);
        plot.Points().SetPoints(std::vector(series.x.begin() + begin, series.x.begin() + end),
                                std::vector(series.y.begin() + begin, series.y.begin() + end));
        plot.SetRange(series.x[page * perPage], series.x[(page + 1) * perPage - 1], series.lo, series.hi);
        plot.SetTitle("Report page " + std::to_string(page + 1));
        DrawOn(plot, *device);
    }
    device->Finish();
}

int Run(int argc, char** argv) {
    if (argc < 7) {
        std::fprintf(stderr, "usage: %s WORK N REPS DATA OUT VARIANT\n", argv[0]);
        return 2;
    }
    const std::string work = argv[1], out = argv[5];
    if (work != "line" && work != "zoom" && work != "scatter" && work != "pdf") {
        std::puts("info unsupported 1");
        return 3;
    }
    zel::qt::Install();
    Series series = ReadSeries(argv[4], std::strtoull(argv[2], nullptr, 10));
    Plot plot;
    if (work == "pdf") {
        Repeat(std::atoi(argv[3]), [&] { DrawReport(plot, series, out.c_str()); });
        return 0;
    }
    if (work == "scatter") plot.UseDiscs();
    plot.SetRange(work == "zoom" ? 0.495 : 0, work == "zoom" ? 0.505 : 1, series.lo, series.hi);
    plot.Points().SetPoints(std::move(series.x), std::move(series.y));
    if (std::string(argv[6]) == "plain")
        plot.Points().GetXVec();  // a series that it was handed out of has no index
    zel::qt::ImageDevice image(kWidth, kHeight, kDotsPerInch);
    Repeat(std::atoi(argv[3]), [&] {
        image.Clear(kWhite);
        DrawOn(plot, image);
    });
    if (out != "-") image.Save(out.c_str());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (CException* e) {
        std::fprintf(stderr, "%s\n", zel::TakeMessage(e).c_str());
        return 1;
    }
}
