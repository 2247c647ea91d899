#include <zel/platform/Exception.h>
#include <zel/platform/MetricsDevice.h>
#include <zel/platform/Platform.h>

#include <utility>

namespace zel {
namespace {

std::unique_ptr<Platform>& Installed() {
    static std::unique_ptr<Platform> platform = std::make_unique<Platform>();
    return platform;
}

FileFormat FormatFor(Platform& platform, const FileDeviceOptions& options) {
    const std::string attempt = "Cannot write \"" + options.path + "\": ";
    std::string known;
    for (FileFormat& format : platform.FileFormats()) {
        if (format.HasEnding(options.format)) return std::move(format);
        known += (known.empty() ? "" : ", ") + format.endings.front();
    }
    const std::string why =
        known.empty()
            ? "drawing ." + options.format + " files needs a back end such as zel::qt, and none is installed."
            : "the format \"" + options.format + "\" is none of " + known + ".";
    AfxThrowNotSupportedException((attempt + why).c_str());
}

}  // namespace

Platform::~Platform() = default;

Platform& Platform::Get() {
    return *Installed();
}

void Platform::Install(std::unique_ptr<Platform> platform) {
    Installed() = platform ? std::move(platform) : std::make_unique<Platform>();
}

std::unique_ptr<GraphicsDevice> Platform::CreateScreenCompatibleDevice() {
    return std::make_unique<MetricsDevice>();
}

std::unique_ptr<DocumentDevice> Platform::CreateFileDevice(const FileDeviceOptions& options) {
    return FormatFor(*this, options).create(options);
}

double Platform::UnitsPerInch(const FileDeviceOptions& options) {
    return FormatFor(*this, options).unitsPerInch(options);
}

std::vector<CPoint> Platform::SeenMarks(const GraphicsState& state, std::span<const CPoint> places,
                                        const CRect&, const MarkPainter&, double) {
    std::vector<CPoint> seen;
    for (const CPoint& place : places) seen.push_back(state.map.ToDevice(place));
    return seen;
}

}  // namespace zel
