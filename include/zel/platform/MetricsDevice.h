// A device without a surface.
#pragma once

#include <zel/platform/GraphicsDevice.h>
#include <zel/platform/SurfaceCaps.h>

namespace zel {

// Draws nothing and measures text with built-in, Arial-compatible metrics: each glyph's advance is rounded to
// whole device units. Used where no back end is installed, and as the base of devices that only write things
// down.
class MetricsDevice : public BasicDevice<GraphicsDevice> {
  public:
    explicit MetricsDevice(int unitsPerInch = 96, CSize surface = {1024, 768});

    int Caps(int index) const override { return caps_.Answer(index); }
    void Polyline(const GraphicsState&, const CPoint*, std::size_t) override {}
    void Polygons(const GraphicsState&, std::span<const CPoint>, std::span<const int>) override {}
    void FillRect(const GraphicsState&, const CRect&, const LOGBRUSH&, DWORD) override {}
    void Rectangle(const GraphicsState&, const CRect&) override {}
    void RoundRect(const GraphicsState&, const CRect&, const CSize&) override {}
    void Ellipse(const GraphicsState&, const CRect&) override {}
    void Arc(const GraphicsState&, const CRect&, const CPoint&, const CPoint&, ArcKind) override {}
    void SetPixel(const GraphicsState&, const CPoint&, COLORREF) override {}
    void DrawText(const GraphicsState&, std::span<const TextSpan>) override {}
    CSize TextExtent(const GraphicsState& state, std::string_view text) override;
    std::vector<int> PrefixExtents(const GraphicsState& state, std::string_view text,
                                   std::span<const std::size_t> ends) override;
    TEXTMETRIC TextMetrics(const GraphicsState& state) override;

  private:
    SurfaceCaps caps_;
};

}  // namespace zel
