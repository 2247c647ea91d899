// Draws what people draw beside a plain line and prints the time of each repetition.
//
//     zel_shapes WORK N REPS OUT
//
// WORK: line, gaps (every hundredth point), dash, wide (5 pixels), steps, fill (below a line), five (lines),
// wander (x not sorted), ring or square (marks with an outline), symbol1 to symbol15 (the kinds of symbols);
// with the prefix "log-" on a chart with a logarithmic axis. OUT is a file whose ending says what is written,
// or "-" for an image of 1000 x 800 pixels in memory. Prints a line "ms T" for each repetition and "bytes B"
// for a file.
#include <zel/ZelExport.h>
#include <zel/platform/DC.h>
#include <zel/qt/ImageDevice.h>
#include <zel/qt/Install.h>
#include <zel/zel.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 1000, kHeight = 800, kDotsPerInch = 100;
constexpr COLORREF kWhite = RGB(255, 255, 255), kBlue = RGB(31, 119, 180), kPale = RGB(170, 200, 225);

// Uniform between 0 and 1, the same in every run.
class Noise {
  public:
    double operator()() {
        std::uint64_t z = state_ += 0x9E3779B97F4A7C15U;
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9U;
        z = (z ^ z >> 27) * 0x94D049BB133111EBU;
        return static_cast<double>((z ^ z >> 31) >> 11) * 0x1p-53;
    }

  private:
    std::uint64_t state_ = 42;
};

struct Points {
    std::vector<double> x, y;
};

std::vector<Points> SeriesOf(const std::string& work, std::size_t n) {
    Noise noise;
    std::vector<Points> series(work == "five" ? 5 : 1);
    const double step = 2 / std::sqrt(static_cast<double>(n));
    double shift = 0;
    for (Points& points : series) {
        double walk = 0, across = 0;
        for (std::size_t i = 0; i < n; ++i) {
            walk += (noise() - 0.5) * step;
            across += (noise() - 0.5) * step;
            const double x = static_cast<double>(i) / static_cast<double>(n - 1);
            const bool wanders = work == "wander", gap = work == "gaps" && i % 100 == 0;
            points.x.push_back(wanders ? across : x);
            points.y.push_back(gap       ? std::numeric_limits<double>::quiet_NaN()
                               : wanders ? walk
                                         : 4 + std::sin(x * 20) + walk + shift);
        }
        shift += 0.7;
    }
    return series;
}

int SymbolOf(const std::string& work) {
    if (work == "ring") return zel::SYMBOL_CIRCLE;
    if (work == "square") return zel::SYMBOL_SQUARE;
    return work.starts_with("symbol") ? std::atoi(work.c_str() + 6) : 0;
}

struct Range {
    double low = std::numeric_limits<double>::infinity(), high = -low;
    void Add(const std::vector<double>& values) {
        for (const double value : values)
            if (value == value) low = std::min(low, value), high = std::max(high, value);
    }
};

int RegisterMark(Zel2Main& root, int kind) {
    return root.RegisterSymbol("mark", CSize(70, 70), static_cast<zel::SymbolKind>(kind), "", 1, 0, 0, kBlue,
                               kBlue, 1, "Arial", 80, 0, 0, nullptr, nullptr, 0);
}

void AddGraph(Zel2Main& root, const std::string& work, std::vector<Points> series) {
    root.RegisterColor("Frame Color", kWhite, kWhite);
    root.RegisterColor("Background Color", kWhite, kWhite);
    auto* graph = root.Add(std::make_unique<Zel2Graph>());
    graph->SetGraphSize(CSize(kWidth * 10, kHeight * 10));
    graph->SetMargins(900, 500, 300, 750);
    Range x, y;
    for (Points& points : series) {
        x.Add(points.x);
        y.Add(points.y);
        auto set = std::make_unique<Zel2PointArray>();
        const int style = work == "dash" ? DrawPen::DASH : DrawPen::SOLID;
        if (const int kind = SymbolOf(work); kind > 0) {
            set->SetSymbol(RegisterMark(root, kind), true);
        } else {
            set->SetPen(root.RegisterPen("line", style, work == "wide" ? 12 : 2, kBlue, kBlue, nullptr));
        }
        if (work == "fill") set->SetColor(root.RegisterColor("fill", kPale, kPale));
        set->SetPoints(std::move(points.x), std::move(points.y));
        graph->AddIn(set.release());
    }
    graph->SetCoord(x.low, y.low, x.high, y.high);
}

void AddChart(Zel2Main& root, const std::string& work, std::vector<Points> series) {
    auto* chart = root.Add(std::make_unique<Zel2Chart>(zel::ChartOptions{.size = {254, 203.2}}));
    chart->Y().SetLogarithm();
    for (Points& points : series) {
        zel::Column x(std::move(points.x)), y(std::move(points.y));
        if (const int kind = SymbolOf(work); kind > 0) {
            chart->AddPoints(std::move(x), std::move(y))->SetSymbol(RegisterMark(root, kind));
        } else if (work == "fill") {
            chart->AddArea(std::move(x), std::move(y));
        } else {
            zel::LineOptions options;
            if (work == "dash") options.dash = zel::Dash::DASHED;
            if (work == "steps") options.step = zel::Step::AFTER;
            if (work == "wide") options.width = 1.2;
            chart->AddLine(std::move(x), std::move(y), options);
        }
    }
}

// At least `repetitions` times, on to 60 while under 0.3 s in all.
template <class Work>
void Repeat(int repetitions, Work work) {
    double sum = 0;
    for (int r = 0; r < repetitions || (r < 60 && sum < 300); ++r) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        const double ms =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
        sum += ms;
        std::printf("ms %.4f\n", ms);
    }
}

int Run(int argc, char** argv) {
    if (argc < 5) {
        std::fprintf(stderr, "usage: %s WORK N REPS OUT\n", argv[0]);
        return 2;
    }
    std::string work = argv[1];
    const std::string out = argv[4];
    const bool logarithm = work.starts_with("log-");
    if (logarithm) work.erase(0, 4);
    zel::qt::Install();
    Zel2Main root;
    root.SetRules(ZelRules::EXACT);
    (logarithm ? AddChart : AddGraph)(root, work, SeriesOf(work, std::strtoull(argv[2], nullptr, 10)));
    if (out != "-") {
        zel::ExportOptions options;
        options.pixelWidth = kWidth;
        Repeat(std::atoi(argv[3]), [&] { zel::Export(root, out.c_str(), options); });
        std::printf("bytes %ju\n", static_cast<std::uintmax_t>(std::filesystem::file_size(out)));
        return 0;
    }
    zel::qt::ImageDevice image(kWidth, kHeight, kDotsPerInch);
    Repeat(std::atoi(argv[3]), [&] {
        image.Clear(kWhite);
        CDC dc(image);
        root.PrepareMappingFor(&dc, nullptr, 0, 0);
        root.Draw(&dc);
    });
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
