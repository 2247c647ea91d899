#include "backends/qt/FileDevices.h"

#include "backends/qt/Fonts.h"

#include <zel/platform/Exception.h>
#include <zel/platform/ForwardingDevice.h>
#include <zel/qt/ImageDevice.h>

#include <cmath>

namespace zel::qt {

SurfaceCaps CapsOf(const FileDeviceOptions& options, int technology, int unitsPerInch) {
    const auto units = [=](double inches) { return static_cast<int>(std::lround(inches * unitsPerInch)); };
    return {.technology = technology,
            .unitsPerInch = options.unitsPerInch > 0 ? options.unitsPerInch : unitsPerInch,
            .units = CSize(units(options.width), units(options.height)),
            .widthInches = options.width,
            .heightInches = options.height,
            .bitsPerPixel = 24};
}

CSize MeasuringDevice::TextExtent(const GraphicsState& state, std::string_view text) {
    return qt::TextExtent(state, text);
}
std::vector<int> MeasuringDevice::PrefixExtents(const GraphicsState& state, std::string_view text,
                                                std::span<const std::size_t> ends) {
    return qt::PrefixExtents(state, text, ends);
}
TEXTMETRIC MeasuringDevice::TextMetrics(const GraphicsState& state) {
    return qt::TextMetrics(state);
}

namespace {

// Draws on an image and saves it at the end. What lies left of and above the margins is the drawing's to use
// too, so the origin is moved by the context's user, not here.
class ImageFileDevice : public ForwardingDevice<DocumentDevice> {
  public:
    explicit ImageFileDevice(const FileDeviceOptions& options)
        : options_(options),
          image_(std::make_unique<ImageDevice>(Pixels(options.width), Pixels(options.height),
                                               options.dotsPerInch, options.unitsPerInch)) {
        image_->Clear(options.background, options.opaqueBackground || options.format != "png");
    }

    void NewPage() override {
        AfxThrowNotSupportedException(
            ("Cannot write a second page into the image \"" + options_.path + "\"; PDF files have pages.")
                .c_str());
    }
    void Finish() override { image_->Save(options_.path.c_str(), options_.format.c_str(), options_.quality); }

  protected:
    GraphicsDevice& Target() const override { return *image_; }

  private:
    int Pixels(double inches) const {
        return std::max(1, static_cast<int>(std::lround(inches * options_.dotsPerInch)));
    }

    FileDeviceOptions options_;
    std::unique_ptr<ImageDevice> image_;
};

FileFormat ImageFormat(std::string name, std::vector<std::string> endings) {
    return {
        .endings = std::move(endings),
        .name = std::move(name),
        .pixels = true,
        .unitsPerInch =
            [](const FileDeviceOptions& options) { return options.dotsPerInch * ImageDevice::kSubPixels; },
        .create =
            [](const FileDeviceOptions& options) { return std::make_unique<ImageFileDevice>(options); }};
}

}  // namespace

FileFormat PngFormat() {
    FileFormat format = ImageFormat("PNG image", {"png"});
    format.transparent = true;
    return format;
}

FileFormat JpegFormat() {
    return ImageFormat("JPEG image", {"jpg", "jpeg"});
}

}  // namespace zel::qt
