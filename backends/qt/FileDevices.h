// Devices that end in a file.
#pragma once

#include <zel/platform/Platform.h>
#include <zel/platform/SurfaceCaps.h>

#include <memory>

namespace zel::qt {

inline constexpr int kPdfUnitsPerInch = 1200;
inline constexpr int kSvgUnitsPerInch = 1440;  // the view box scales them to the image's inches

FileFormat PdfFormat();
FileFormat PngFormat();
FileFormat JpegFormat();
FileFormat SvgFormat();

// The surface of a page or picture that a vector format describes in so many units per inch.
SurfaceCaps CapsOf(const FileDeviceOptions& options, int technology, int unitsPerInch);

// Text measured with Qt's fonts, for the devices of files.
class MeasuringDevice : public BasicDevice<DocumentDevice> {
  public:
    CSize TextExtent(const GraphicsState& state, std::string_view text) override;
    std::vector<int> PrefixExtents(const GraphicsState& state, std::string_view text,
                                   std::span<const std::size_t> ends) override;
    TEXTMETRIC TextMetrics(const GraphicsState& state) override;
};

}  // namespace zel::qt
