// The surface of a window.
#pragma once

#include <zel/platform/ForwardingDevice.h>
#include <zel/qt/ImageDevice.h>

#include <functional>
#include <memory>

namespace zel::widgets {

// A picture in whole pixels that stays when the window is resized or moved, so that contexts on it stay good,
// and that says what was drawn.
class WindowDevice : public ForwardingDevice<GraphicsDevice> {
  public:
    // `changed` is told the box of each thing drawn, device pixels.
    explicit WindowDevice(std::function<void(const CRect&)> changed) : changed_(std::move(changed)) {}

    // Makes the picture of a size and resolution; false when it was so already.
    bool Fit(const CSize& size, double unitsPerInch);
    qt::ImageDevice& Image() { return *image_; }
    CSize Size() const { return {image_->Width(), image_->Height()}; }

  protected:
    GraphicsDevice& Target() const override { return *image_; }
    void Drawn(const GraphicsState& state, std::span<const CPoint> points) override;

  private:
    std::function<void(const CRect&)> changed_;
    std::unique_ptr<qt::ImageDevice> image_ =
        std::make_unique<qt::ImageDevice>(1, 1, 96, 0, qt::ImageDevice::Grid::PIXELS);
    double unitsPerInch_ = 96;
};

}  // namespace zel::widgets
