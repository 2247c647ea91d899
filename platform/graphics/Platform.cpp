#include <zel/platform/Exception.h>
#include <zel/platform/MetricsDevice.h>
#include <zel/platform/Platform.h>

namespace zel {
namespace {

std::unique_ptr<Platform>& Installed() {
    static std::unique_ptr<Platform> platform = std::make_unique<Platform>();
    return platform;
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

double Platform::UnitsPerInch(const FileDeviceOptions& options) {
    return options.dotsPerInch;
}

std::unique_ptr<DocumentDevice> Platform::CreateFileDevice(const FileDeviceOptions& options) {
    AfxThrowNotSupportedException(("Cannot write \"" + options.path + "\": drawing ." + options.format +
                                   " files needs a back end such as zel::qt, and none is installed.")
                                      .c_str());
}

std::vector<CPoint> Platform::SeenMarks(const GraphicsState& state, std::span<const CPoint> places,
                                        const CRect&, const MarkPainter&, double) {
    std::vector<CPoint> seen;
    for (const CPoint& place : places) seen.push_back(state.map.ToDevice(place));
    return seen;
}

}  // namespace zel
