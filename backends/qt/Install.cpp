#include "backends/qt/Application.h"
#include "backends/qt/FileDevices.h"

#include <zel/platform/Exception.h>
#include <zel/platform/Platform.h>
#include <zel/qt/ImageDevice.h>
#include <zel/qt/Install.h>

namespace zel::qt {
namespace {

constexpr int kScreenDotsPerInch = 96;

// The screen as far as text is concerned; a pixel is all that it shows.
class ScreenLikeDevice : public MeasuringDevice {
  public:
    ScreenLikeDevice() { EnsureApplication(); }
    int Caps(int index) const override {
        switch (index) {
            case TECHNOLOGY:
                return DT_RASDISPLAY;
            case LOGPIXELSX:
            case LOGPIXELSY:
                return kScreenDotsPerInch;
            case HORZRES:
                return 1920;
            case VERTRES:
                return 1080;
            case HORZSIZE:
                return 508;
            case VERTSIZE:
                return 285;
            case BITSPIXEL:
                return 32;
            case PLANES:
                return 1;
            case NUMCOLORS:
                return -1;
            case ASPECTX:
            case ASPECTY:
                return 36;
            case ASPECTXY:
                return 51;
            default:
                return 0;
        }
    }
    void Polyline(const GraphicsState&, const CPoint*, std::size_t) override {}
    void Polygons(const GraphicsState&, std::span<const CPoint>, std::span<const int>) override {}
    void FillRect(const GraphicsState&, const CRect&, const LOGBRUSH&, DWORD) override {}
    void DrawText(const GraphicsState&, std::span<const TextSpan>) override {}
    void NewPage() override {}
    void Finish() override {}
};

class QtPlatform : public Platform {
  public:
    std::unique_ptr<GraphicsDevice> CreateScreenCompatibleDevice() override {
        return std::make_unique<ScreenLikeDevice>();
    }

    double UnitsPerInch(const FileDeviceOptions& options) override {
        if (options.format == "pdf") return kPdfUnitsPerInch;
        if (options.format == "svg") return kSvgUnitsPerInch;
        return options.dotsPerInch * ImageDevice::kSubPixels;
    }

    std::unique_ptr<DocumentDevice> CreateFileDevice(const FileDeviceOptions& options) override {
        if (options.format == "pdf") return CreatePdfDevice(options);
        if (options.format == "svg") return CreateSvgDevice(options);
        if (options.format == "png" || options.format == "jpg" || options.format == "jpeg") {
            return CreateImageFileDevice(options);
        }
        AfxThrowNotSupportedException(("Cannot write \"" + options.path + "\": the format \"" +
                                       options.format + "\" is none of png, jpg, pdf, svg.")
                                          .c_str());
    }
};

}  // namespace

void Install() {
    if (!dynamic_cast<QtPlatform*>(&Platform::Get())) Platform::Install(std::make_unique<QtPlatform>());
}

}  // namespace zel::qt
