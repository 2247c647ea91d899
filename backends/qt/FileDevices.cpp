#include "backends/qt/FileDevices.h"

#include "backends/qt/Fonts.h"

#include <zel/platform/Exception.h>
#include <zel/qt/ImageDevice.h>

#include <algorithm>
#include <cmath>

namespace zel::qt {

namespace {

// Shortens a stretch of points in one column to those that count, in their order.
void AppendStretch(std::vector<CPoint>& line, std::span<const CPoint> stretch) {
    const auto lower = [](const CPoint& a, const CPoint& b) { return a.y < b.y; };
    auto [low, high] = std::minmax_element(stretch.begin(), stretch.end(), lower);
    if (high < low) std::swap(low, high);
    for (const CPoint& p : {stretch.front(), *low, *high, stretch.back()})
        if (line.empty() || !(line.back() == p)) line.push_back(p);
}

}  // namespace

std::vector<CPoint> MeasuringDevice::Mapped(const GraphicsState& state,
                                            std::span<const CPoint> points) const {
    std::vector<CPoint> mapped;
    mapped.reserve(points.size());
    for (const CPoint& p : points) mapped.push_back(state.map.ToDevice(p));
    if (!inCurve_ || mapped.size() < 4) return mapped;
    std::vector<CPoint> line;
    for (std::size_t begin = 0, end = 0; begin < mapped.size(); begin = end) {
        for (end = begin; end < mapped.size() && mapped[end].x == mapped[begin].x;) ++end;
        AppendStretch(line, std::span(mapped).subspan(begin, end - begin));
    }
    return line.size() > 1 ? line : mapped;
}

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
class ImageFileDevice : public MeasuringDevice {
  public:
    explicit ImageFileDevice(const FileDeviceOptions& options)
        : options_(options),
          image_(Pixels(options.width), Pixels(options.height), options.dotsPerInch, options.unitsPerInch) {
        image_.Clear(options.background, options.opaqueBackground || options.format != "png");
    }

    void NewPage() override {
        AfxThrowNotSupportedException(
            ("Cannot write a second page into the image \"" + options_.path + "\"; PDF files have pages.")
                .c_str());
    }
    void Finish() override { image_.Save(options_.path.c_str(), options_.format.c_str(), options_.quality); }

    int Caps(int index) const override { return image_.Caps(index); }
    void Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) override {
        image_.Polyline(state, points, count);
    }
    void Polygons(const GraphicsState& state, std::span<const CPoint> points,
                  std::span<const int> counts) override {
        image_.Polygons(state, points, counts);
    }
    void FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                  DWORD operation) override {
        image_.FillRect(state, rect, brush, operation);
    }
    void Ellipse(const GraphicsState& state, const CRect& rect) override { image_.Ellipse(state, rect); }
    void DrawText(const GraphicsState& state, std::span<const TextSpan> spans) override {
        image_.DrawText(state, spans);
    }
    COLORREF GetPixel(const CPoint& devicePoint) override { return image_.GetPixel(devicePoint); }

  private:
    int Pixels(double inches) const {
        return std::max(1, static_cast<int>(std::lround(inches * options_.dotsPerInch)));
    }

    FileDeviceOptions options_;
    ImageDevice image_;
};

}  // namespace

std::unique_ptr<DocumentDevice> CreateImageFileDevice(const FileDeviceOptions& options) {
    return std::make_unique<ImageFileDevice>(options);
}

}  // namespace zel::qt
