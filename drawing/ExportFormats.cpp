#include "drawing/ExportFormats.h"

#include "drawing/MetafileOutput.h"
#include "scales/NumberText.h"

#include <zel/platform/DC.h>
#include <zel/platform/Platform.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace zel {
namespace {

constexpr double kMillimetresPerInch = 25.4;
constexpr double kUnitsPerInch = 1000;  // of the drawing

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
    if (roomX <= 0 || roomY <= 0) {
        throw Error("Cannot write \"" + device.path + "\": margins of " + FixedText(options.margin, 1) +
                    " mm leave nothing of the paper.");
    }
    Placement placement;
    placement.scale = std::min({1.0, roomX / width, roomY / height});
    placement.left = (device.width - width * placement.scale) / 2;
    placement.top = (device.height - height * placement.scale) / 2;
    return placement;
}

// A file that a device of the format draws.
class DeviceFile : public ExportFile {
  public:
    DeviceFile(Zel2Main& drawing, const char* path, const ExportOptions& options, const FileFormat& format)
        : drawing_(drawing), printerTools_(options.printerTools) {
        FileDeviceOptions device;
        device.path = path;
        device.format = EndingOf(path);
        const CSize size = drawing.Size();
        placement_ = PlaceOn(device, options, size.cx / kUnitsPerInch, size.cy / kUnitsPerInch);
        device.dotsPerInch = options.pixelWidth > 0 ? options.pixelWidth / device.width : options.dotsPerInch;
        device.opaqueBackground = !options.transparent;
        device.background = options.background;
        device.quality = options.quality;
        device.keepAllPoints = options.keepAllPoints;
        device.title = options.title;
        natural_ = format.unitsPerInch(device);
        if (placement_.scale != 1) device.unitsPerInch = natural_ * placement_.scale;
        device_ = format.create(device);
    }

    void Draw() override {
        CDC dc(*device_);
        dc.m_bPrinting = printerTools_ ? TRUE : FALSE;
        if (placement_.left != 0 || placement_.top != 0) {
            dc.SetViewportOrg(Truncate(std::round(placement_.left * natural_)),
                              Truncate(std::round(placement_.top * natural_)));
        }
        drawing_.PrepareMappingFor(&dc, nullptr, 0, 0);
        drawing_.Draw(&dc);
    }
    void NewPage() override { device_->NewPage(); }
    void Finish() override { device_->Finish(); }

  private:
    Zel2Main& drawing_;
    bool printerTools_;
    Placement placement_;
    double natural_ = 0;
    std::unique_ptr<DocumentDevice> device_;
};

// The metafile that other programs read, whatever the drawing's rules. It is recorded from the calls of
// contexts, so no device stands for it.
class MetafileFile : public ExportFile {
  public:
    MetafileFile(Zel2Main& drawing, const char* path) : drawing_(drawing), path_(path) {}
    void Draw() override {}
    void NewPage() override {
        throw Error("Cannot write a second page into the metafile \"" + path_ + "\".");
    }
    void Finish() override {
        drawing_.SetRules(ZelRules::EXACT);
        WritePlaceableMetafile(drawing_, path_.c_str());
    }

  private:
    Zel2Main& drawing_;
    std::string path_;
};

FileFormat MetafileFormat() {
    return {.endings = {"wmf"}, .name = "Windows metafile", .paper = false};
}

std::vector<FileFormat>& Added() {
    static std::vector<FileFormat> formats;
    return formats;
}

}  // namespace

void AddExportFormat(FileFormat format) {
    if (format.endings.empty() || !format.create || !format.unitsPerInch)
        throw Error("Cannot add the format \"" + format.name + "\": it has no ending or no device.");
    Added().push_back(std::move(format));
}

std::vector<FileFormat> ExportFormats() {
    std::vector<FileFormat> formats = Platform::Get().FileFormats();
    formats.push_back(MetafileFormat());
    for (const FileFormat& added : Added()) {
        for (FileFormat& format : formats)
            std::erase_if(format.endings, [&](const std::string& ending) { return added.HasEnding(ending); });
        formats.push_back(added);
    }
    std::erase_if(formats, [](const FileFormat& format) { return format.endings.empty(); });
    return formats;
}

FileFormat ExportFormatOf(const std::string& path) {
    const std::string ending = EndingOf(path);
    std::string known;
    for (FileFormat& format : ExportFormats()) {
        if (format.HasEnding(ending)) return std::move(format);
        known.append(known.empty() ? "." : " .").append(format.endings.front());
    }
    std::string message =
        "Cannot write \"" + path + "\": its ending names no format; known are " + known + ".";
    if (Platform::Get().FileFormats().empty())
        message += " Others need a back end such as zel::qt, and none is installed.";
    throw Error(message);
}

std::unique_ptr<ExportFile> CreateExportFile(Zel2Main& drawing, const char* path,
                                             const ExportOptions& options) {
    const FileFormat format = ExportFormatOf(path);
    if (format.create) return std::make_unique<DeviceFile>(drawing, path, options, format);
    return std::make_unique<MetafileFile>(drawing, path);
}

}  // namespace zel
