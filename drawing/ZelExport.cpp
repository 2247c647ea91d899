#include "drawing/ExportFormats.h"
#include "platform/object/ByValue.h"

#include <zel/ZelExport.h>
#include <zel/platform/DC.h>
#include <zel/platform/Platform.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zel {
namespace {

// Takes a drawing out of its window and gives it a mapping of its own, for one pass.
class DetachedDrawing {
  public:
    explicit DetachedDrawing(Zel2Main& drawing)
        : drawing_(drawing), mapping_(*drawing.Map()), window_(drawing.Window()), rules_(drawing.Rules()) {
        drawing.SetWindow(nullptr);
        drawing.Map()->SetZoom(0, 0);
        drawing.Map()->SetLogicalOrg(CPoint(0, 0));
    }
    ~DetachedDrawing() {
        *drawing_.Map() = mapping_;
        drawing_.SetWindow(window_);
        drawing_.SetRules(rules_);
    }
    DetachedDrawing(const DetachedDrawing&) = delete;
    DetachedDrawing& operator=(const DetachedDrawing&) = delete;

  private:
    Zel2Main& drawing_;
    Mapping mapping_;
    CWnd* window_;
    ZelRules rules_;
};

// The size of a drawing. Graphs without one choose theirs when they are first drawn: they are, where nobody
// sees it.
CSize SizeOf(Zel2Main& drawing) {
    const CSize size = drawing.Size();
    if (size.cx > 0 && size.cy > 0) return size;
    CDC dc(Platform::Get().CreateScreenCompatibleDevice());
    drawing.PrepareMappingFor(&dc, nullptr, 0, 0);
    drawing.Draw(&dc);
    return drawing.Size();
}

}  // namespace

bool SetPaper(ExportOptions& options, const std::string& name, bool landscape) {
    struct Paper {
        const char* name;
        double width;
        double height;
    };
    static constexpr std::array kPapers = {Paper{"a2", 420, 594},         Paper{"a3", 297, 420},
                                           Paper{"a4", 210, 297},         Paper{"a5", 148, 210},
                                           Paper{"letter", 215.9, 279.4}, Paper{"legal", 215.9, 355.6}};
    std::string wanted = name;
    std::transform(wanted.begin(), wanted.end(), wanted.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    for (const Paper& paper : kPapers) {
        if (wanted != paper.name) continue;
        options.paperWidth = paper.width;
        options.paperHeight = paper.height;
        if (landscape) std::swap(options.paperWidth, options.paperHeight);
        return true;
    }
    return false;
}

namespace {

std::unique_ptr<ExportFile> Open(Zel2Main& drawing, const char* path, const ExportOptions& options) {
    const CSize size = SizeOf(drawing);
    if (size.cx <= 0 || size.cy <= 0)
        throw Error("Cannot write \"" + std::string(path) + "\": the drawing has no size.");
    return CreateExportFile(drawing, path, options);
}

void WriteOne(Zel2Main& drawing, const char* path, const ExportOptions& options) {
    const std::unique_ptr<ExportFile> file = Open(drawing, path, options);
    file->Draw();
    file->Finish();
}

// "report.png" with the number of a page, as many digits as the last page has.
std::string NumberedPath(const std::string& path, int page, int pages) {
    const std::size_t dot = path.rfind('.');
    std::string number = std::to_string(page + 1);
    number.insert(0, std::to_string(pages).size() - number.size(), '0');
    return path.substr(0, dot) + "-" + number + path.substr(dot);
}

bool WritePages(Zel2Main& drawing, int pages, const std::function<void(int)>& select, const char* path,
                const ExportOptions& options, const ExportProgress& progress) {
    select(0);
    const std::unique_ptr<ExportFile> file = Open(drawing, path, options);
    for (int page = 0; page < pages; ++page) {
        if (page > 0) {
            select(page);
            file->NewPage();
        }
        file->Draw();
        if (progress && !progress(page + 1, pages)) return false;
    }
    file->Finish();
    return true;
}

bool WritePageFiles(Zel2Main& drawing, int pages, const std::function<void(int)>& select, const char* path,
                    const ExportOptions& options, const ExportProgress& progress) {
    std::vector<std::string> written;
    for (int page = 0; page < pages; ++page) {
        select(page);
        written.push_back(NumberedPath(path, page, pages));
        WriteOne(drawing, written.back().c_str(), options);
        if (!progress || progress(page + 1, pages)) continue;
        for (const std::string& file : written) std::remove(file.c_str());
        return false;
    }
    return true;
}

}  // namespace

void Export(Zel2Main& drawing, const char* path, const ExportOptions& options) {
    ByValue([&] {
        const DetachedDrawing detached(drawing);
        WriteOne(drawing, path, options);
    });
}

bool ExportPages(Zel2Main& drawing, int pages, const std::function<void(int)>& select, const char* path,
                 const ExportOptions& options, const ExportProgress& progress) {
    if (pages < 1) throw Error("Cannot write \"" + std::string(path) + "\": the drawing has no pages.");
    return ByValue([&] {
        const DetachedDrawing detached(drawing);
        return ExportFormatOf(path).pages ? WritePages(drawing, pages, select, path, options, progress)
                                          : WritePageFiles(drawing, pages, select, path, options, progress);
    });
}

}  // namespace zel
