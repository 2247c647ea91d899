// Draws the examples in every format, reads each document back, draws it again and compares the pictures.
//
//     zel_gallery DATA_FOLDER OUTPUT_FOLDER
#include "examples/gallery.h"

#include <zel/platform/MessageBox.h>
#include <zel/qt/Install.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

std::string Content(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Writes one file and a row of the table about it.
template <class Write>
void Timed(const fs::path& path, Write write) {
    const auto begin = Clock::now();
    write(path.c_str());
    const double ms = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    std::printf("%-24s %10ju bytes %9.1f ms\n", path.filename().c_str(),
                static_cast<std::uintmax_t>(fs::file_size(path)), ms);
}

// Whether the example comes back from its document and draws the same picture.
bool DrawExample(const Example& example, const std::string& data, const fs::path& out) {
    const std::unique_ptr<Zel2Main> drawing = example.make(data);
    const fs::path base = out / example.name;
    zel::ExportOptions options;
    options.title = example.name;
    for (const char* ending : {".png", ".pdf", ".svg", ".wmf"}) {
        Timed(base.string() + ending, [&](const char* path) { zel::Export(*drawing, path, options); });
    }
    const std::string document = base.string() + ".zel";
    Timed(document, [&](const char* path) { zel::SaveDocument(*drawing, path); });
    const std::string again = base.string() + ".again.png";
    zel::Export(*zel::LoadDocument(document.c_str()), again.c_str(), options);
    const bool equal = Content(base.string() + ".png") == Content(again);
    fs::remove(again);
    if (!equal) std::printf("%s: the picture of the document differs\n", example.name.c_str());
    return equal;
}

// All pages in one file, and each as a small picture.
void DrawReport(const std::string& data, const fs::path& out) {
    Zel2Main drawing;
    Zel2Report& report = MakeWeatherReport(drawing, data);
    zel::ExportOptions options;
    options.title = "Weather in Seattle";
    Timed(out / "report.pdf", [&](const char* path) { zel::ExportReport(drawing, report, path, options); });
    Timed(out / "report.zel", [&](const char* path) { zel::SaveDocument(drawing, path); });
    fs::create_directories(out / "report");
    options.dotsPerInch = 50;
    zel::ExportReport(drawing, report, (out / "report/page.png").c_str(), options);
    std::printf("%d pages as pictures in %s\n", report.PageCount(), (out / "report").c_str());
}

// The pictures of the documentation, as PNG files.
void DrawPictures(const std::string& data, const fs::path& out) {
    fs::create_directories(out);
    zel::ExportOptions options;
    options.dotsPerInch = 80;
    std::vector<Example> pictures = DocumentationPictures();
    for (const Example& chart : ChartPictures()) pictures.push_back(chart);
    for (const Example& picture : pictures) {
        const std::unique_ptr<Zel2Main> drawing = picture.make(data);
        const std::string path = out / (picture.name + ".png");
        // With classic rules the second draw is the one that shows what was meant.
        zel::Export(*drawing, path.c_str(), options);
        zel::Export(*drawing, path.c_str(), options);
    }
}

int DrawGallery(const std::string& data, const fs::path& out) {
    fs::create_directories(out);
    const std::vector<Example> examples = GalleryExamples();
    int equal = 0;
    for (const Example& example : examples) equal += DrawExample(example, data, out) ? 1 : 0;
    DrawReport(data, out);
    DrawPictures(data, out / "pictures");
    const int count = static_cast<int>(examples.size());
    std::printf("%d of %d drawings came back from their documents with the same picture.\n", equal, count);
    return equal == count ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s DATA_FOLDER OUTPUT_FOLDER\n", argv[0]);
        return 2;
    }
    try {
        zel::qt::Install();
        return DrawGallery(argv[1], argv[2]);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", zel::WordsOf(e).c_str());
    }
    return 1;
}
