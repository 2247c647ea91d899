// A measuring device of another resolution.
#pragma once

#include <zel/platform/ForwardingDevice.h>

#include <algorithm>
#include <memory>

namespace zel {

// The finest number of units per inch at which a drawing of this size (thousandths of an inch) has
// coordinates of 15 bits, as metafiles need.
inline int FinestResolution(const CSize& size) {
    constexpr int kLargest = 32000;
    constexpr int kFinest = 7200;
    const int side = std::max({1, size.cx, size.cy});
    return std::clamp(MulDiv(kLargest, 1000, side), 1, kFinest);
}

// The device that it owns, but for its units, which it says to be of another size.
class ResolutionDevice : public ForwardingDevice<GraphicsDevice> {
  public:
    ResolutionDevice(std::unique_ptr<GraphicsDevice> device, int unitsPerInch)
        : device_(std::move(device)), unitsPerInch_(unitsPerInch) {}

    int Caps(int index) const override {
        return index == LOGPIXELSX || index == LOGPIXELSY ? unitsPerInch_ : ForwardingDevice::Caps(index);
    }

  protected:
    GraphicsDevice& Target() const override { return *device_; }

  private:
    std::unique_ptr<GraphicsDevice> device_;
    int unitsPerInch_;
};

}  // namespace zel
