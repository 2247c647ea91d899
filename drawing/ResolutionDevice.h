// A measuring device of another resolution.
#pragma once

#include <zel/platform/GraphicsDevice.h>

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

// Measures like the device that it owns, but says that its units are of another size. Draws nothing.
class ResolutionDevice : public GraphicsDevice {
  public:
    ResolutionDevice(std::unique_ptr<GraphicsDevice> device, int unitsPerInch)
        : device_(std::move(device)), unitsPerInch_(unitsPerInch) {}

    int Caps(int index) const override {
        return index == LOGPIXELSX || index == LOGPIXELSY ? unitsPerInch_ : device_->Caps(index);
    }
    void Polyline(const GraphicsState&, const CPoint*, std::size_t) override {}
    void Polygons(const GraphicsState&, std::span<const CPoint>, std::span<const int>) override {}
    void FillRect(const GraphicsState&, const CRect&, const LOGBRUSH&, DWORD) override {}
    void DrawText(const GraphicsState&, std::span<const TextSpan>) override {}
    CSize TextExtent(const GraphicsState& state, std::string_view text) override {
        return device_->TextExtent(state, text);
    }
    std::vector<int> PrefixExtents(const GraphicsState& state, std::string_view text,
                                   std::span<const std::size_t> ends) override {
        return device_->PrefixExtents(state, text, ends);
    }
    TEXTMETRIC TextMetrics(const GraphicsState& state) override { return device_->TextMetrics(state); }

  private:
    std::unique_ptr<GraphicsDevice> device_;
    int unitsPerInch_;
};

}  // namespace zel
