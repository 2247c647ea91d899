// The surface of a window.
#pragma once

#include <zel/qt/ImageDevice.h>

#include <functional>
#include <memory>

namespace zel::widgets {

// A picture in whole pixels that stays when the window is resized or moved, so that contexts on it stay good,
// and that says what was drawn.
class WindowDevice : public GraphicsDevice {
  public:
    // `changed` is told the box of each thing drawn, device pixels.
    explicit WindowDevice(std::function<void(const CRect&)> changed) : changed_(std::move(changed)) {}

    // Makes the picture of a size and resolution; false when it was so already.
    bool Fit(const CSize& size, double unitsPerInch);
    qt::ImageDevice& Image() { return *image_; }
    CSize Size() const { return {image_->Width(), image_->Height()}; }

    int Caps(int index) const override { return image_->Caps(index); }
    void Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) override;
    void Polygons(const GraphicsState& state, std::span<const CPoint> points,
                  std::span<const int> counts) override;
    void FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                  DWORD operation) override;
    void Ellipse(const GraphicsState& state, const CRect& rect) override;
    void Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) override;
    void StrokeArc(const GraphicsState& state, const EllipticArc& arc) override;
    int CurveColumn(const GraphicsState& state) const override { return image_->CurveColumn(state); }
    void BeginCurve() override { image_->BeginCurve(); }
    void EndCurve() override { image_->EndCurve(); }
    void DrawText(const GraphicsState& state, std::span<const TextSpan> spans) override;
    CSize TextExtent(const GraphicsState& state, std::string_view text) override {
        return image_->TextExtent(state, text);
    }
    std::vector<int> PrefixExtents(const GraphicsState& state, std::string_view text,
                                   std::span<const std::size_t> ends) override {
        return image_->PrefixExtents(state, text, ends);
    }
    TEXTMETRIC TextMetrics(const GraphicsState& state) override { return image_->TextMetrics(state); }
    COLORREF GetPixel(const CPoint& devicePoint) override { return image_->GetPixel(devicePoint); }

  private:
    void Changed(const GraphicsState& state, std::span<const CPoint> points);

    std::function<void(const CRect&)> changed_;
    std::unique_ptr<qt::ImageDevice> image_ =
        std::make_unique<qt::ImageDevice>(1, 1, 96, 0, qt::ImageDevice::Grid::PIXELS);
    double unitsPerInch_ = 96;
};

}  // namespace zel::widgets
