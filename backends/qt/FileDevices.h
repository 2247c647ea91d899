// Devices that end in a file.
#pragma once

#include <zel/platform/Platform.h>
#include <zel/platform/SurfaceCaps.h>

#include <memory>
#include <span>
#include <vector>

namespace zel::qt {

inline constexpr int kPdfUnitsPerInch = 1200;
inline constexpr int kSvgUnitsPerInch = 1440;  // the view box scales them to the image's inches

std::unique_ptr<DocumentDevice> CreatePdfDevice(const FileDeviceOptions& options);
std::unique_ptr<DocumentDevice> CreateSvgDevice(const FileDeviceOptions& options);
std::unique_ptr<DocumentDevice> CreateImageFileDevice(const FileDeviceOptions& options);

// The surface of a page or picture that a vector format describes in so many units per inch.
SurfaceCaps CapsOf(const FileDeviceOptions& options, int technology, int unitsPerInch);

// Text measured with Qt's fonts, for the devices of files.
class MeasuringDevice : public DocumentDevice {
  public:
    CSize TextExtent(const GraphicsState& state, std::string_view text) override;
    std::vector<int> PrefixExtents(const GraphicsState& state, std::string_view text,
                                   std::span<const std::size_t> ends) override;
    TEXTMETRIC TextMetrics(const GraphicsState& state) override;
    void BeginCurve() override { inCurve_ = true; }
    void EndCurve() override { inCurve_ = false; }

  protected:
    // The points of a line in device units: inside a curve only the first, lowest, highest and last of those
    // in one column of units.
    std::vector<CPoint> Mapped(const GraphicsState& state, std::span<const CPoint> points) const;

  private:
    bool inCurve_ = false;
};

}  // namespace zel::qt
