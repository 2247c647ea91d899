#include "drawing/MetafileOutput.h"

#include <zel/ZelExport.h>
#include <zel/platform/DC.h>
#include <zel/platform/Exception.h>
#include <zel/platform/Platform.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <utility>

namespace zel {
namespace {

constexpr double kMillimetresPerInch = 25.4;
constexpr double kUnitsPerInch = 1000;  // of the drawing

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

std::string FormatOf(const std::string& path) {
    const std::size_t dot = path.rfind('.');
    std::string ending =
        dot == std::string::npos || path.find('/', dot) != std::string::npos ? "" : path.substr(dot + 1);
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return ending == "jpeg" ? "jpg" : ending;
}

// Where the drawing comes to lie on the paper, in inches.
struct Placement {
    double scale = 1;
    double left = 0;
    double top = 0;
};

Placement PlaceOn(FileDeviceOptions& device, const ExportOptions& options, double width, double height) {
    if (options.paperWidth <= 0 || options.paperHeight <= 0) {
        device.width = width;
        device.height = height;
        return {};
    }
    device.width = options.paperWidth / kMillimetresPerInch;
    device.height = options.paperHeight / kMillimetresPerInch;
    const double margin = std::max(options.margin, 0.0) / kMillimetresPerInch;
    const double roomX = device.width - 2 * margin;
    const double roomY = device.height - 2 * margin;
    if (roomX <= 0 || roomY <= 0)
        AfxThrowInvalidArgException("Cannot place a drawing on a paper that is all margin.");
    Placement placement;
    placement.scale = std::min({1.0, roomX / width, roomY / height});
    placement.left = (device.width - width * placement.scale) / 2;
    placement.top = (device.height - height * placement.scale) / 2;
    return placement;
}

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

void DrawOn(Zel2Main& drawing, DocumentDevice& device, const Placement& placement, double unitsPerPaperInch,
            bool printerTools) {
    CDC dc(device);
    dc.m_bPrinting = printerTools ? TRUE : FALSE;
    if (placement.left != 0 || placement.top != 0) {
        dc.SetViewportOrg(Truncate(std::round(placement.left * unitsPerPaperInch)),
                          Truncate(std::round(placement.top * unitsPerPaperInch)));
    }
    drawing.PrepareMappingFor(&dc, nullptr, 0, 0);
    drawing.Draw(&dc);
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

CSize SizeFor(Zel2Main& drawing, const char* path) {
    const CSize size = SizeOf(drawing);
    if (size.cx <= 0 || size.cy <= 0) {
        AfxThrowInvalidArgException(
            ("Cannot write \"" + std::string(path) + "\": the drawing has no size.").c_str());
    }
    return size;
}

// One file that a drawing, or its pages one after another, is drawn into.
class Output {
  public:
    Output(Zel2Main& drawing, const char* path, const ExportOptions& options)
        : drawing_(drawing), printerTools_(options.printerTools) {
        const CSize size = SizeFor(drawing, path);
        FileDeviceOptions device;
        device.path = path;
        device.format = FormatOf(path);
        placement_ = PlaceOn(device, options, size.cx / kUnitsPerInch, size.cy / kUnitsPerInch);
        device.dotsPerInch = options.pixelWidth > 0 ? options.pixelWidth / device.width : options.dotsPerInch;
        device.opaqueBackground = !options.transparent;
        device.background = options.background;
        device.quality = options.quality;
        device.everyPoint = options.everyPoint;
        device.title = options.title;
        natural_ = Platform::Get().UnitsPerInch(device);
        if (placement_.scale != 1) device.unitsPerInch = natural_ * placement_.scale;
        device_ = Platform::Get().CreateFileDevice(device);
    }

    void Draw() { DrawOn(drawing_, *device_, placement_, natural_, printerTools_); }
    void NewPage() { device_->NewPage(); }
    void Finish() { device_->Finish(); }

  private:
    Zel2Main& drawing_;
    bool printerTools_;
    Placement placement_;
    double natural_ = 0;
    std::unique_ptr<DocumentDevice> device_;
};

void WriteOne(Zel2Main& drawing, const char* path, const ExportOptions& options) {
    if (FormatOf(path) == "wmf") {
        SizeFor(drawing, path);
        // The metafile that other programs read, whatever the drawing's rules.
        drawing.SetRules(ZelRules::EXACT);
        WritePlaceableMetafile(drawing, path);
        return;
    }
    Output output(drawing, path, options);
    output.Draw();
    output.Finish();
}

// "report.png" with the number of a page, as many digits as the last page has.
std::string NumberedPath(const std::string& path, int page, int pages) {
    const std::size_t dot = path.rfind('.');
    std::string number = std::to_string(page + 1);
    number.insert(0, std::to_string(pages).size() - number.size(), '0');
    return path.substr(0, dot) + "-" + number + path.substr(dot);
}

bool WritePdfPages(Zel2Main& drawing, int pages, const std::function<void(int)>& select, const char* path,
                   const ExportOptions& options, const ExportProgress& progress) {
    select(0);
    Output output(drawing, path, options);
    for (int page = 0; page < pages; ++page) {
        if (page > 0) {
            select(page);
            output.NewPage();
        }
        output.Draw();
        if (progress && !progress(page + 1, pages)) return false;
    }
    output.Finish();
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
    const DetachedDrawing detached(drawing);
    WriteOne(drawing, path, options);
}

bool ExportPages(Zel2Main& drawing, int pages, const std::function<void(int)>& select, const char* path,
                 const ExportOptions& options, const ExportProgress& progress) {
    if (pages < 1) {
        AfxThrowInvalidArgException(
            ("Cannot write \"" + std::string(path) + "\": the drawing has no pages.").c_str());
    }
    const DetachedDrawing detached(drawing);
    return FormatOf(path) == "pdf" ? WritePdfPages(drawing, pages, select, path, options, progress)
                                   : WritePageFiles(drawing, pages, select, path, options, progress);
}

}  // namespace zel
