// Drawing into images.
#pragma once

#include <zel/platform/GraphicsDevice.h>

#include <cstdint>
#include <memory>

namespace zel::qt {

// An antialiased image of whole pixels that one can draw on again and again. A device unit is a sixteenth of
// a pixel, so that whole coordinates do not show as steps. Lines along the axes lie on whole pixels, and no
// line is thinner than one.
//
//     zel::qt::ImageDevice image(1000, 800, 96);
//     CDC dc(image);
//     root.PrepareMappingFor(&dc, nullptr, 0, 0);
//     root.Draw(&dc);
//     dc.Flush();
//     image.Save("graph.png");
class ImageDevice : public BasicDevice<GraphicsDevice> {
  public:
    static constexpr int kSubPixels = 16;
    // The device unit: a sixteenth of a pixel, or a whole one, as on a screen.
    enum class Grid { SIXTEENTHS, PIXELS };

    // `unitsPerInch` is what the device reports, `dotsPerInch` times the units of a pixel when it is 0:
    // another value scales drawings.
    ImageDevice(int width, int height, double dotsPerInch, double unitsPerInch = 0,
                Grid grid = Grid::SIXTEENTHS);
    ~ImageDevice() override;

    int Width() const;
    int Height() const;
    // Fills everything; a colour with `opaque` false is fully transparent.
    void Clear(COLORREF color, bool opaque = true);
    // Moves the picture; what is uncovered keeps its pixels.
    void Scroll(int dx, int dy);
    // Rows of Width() pixels, 0xAARRGGBB premultiplied, from the top.
    const std::uint32_t* Pixels() const;
    // Writes the image whole or not at all. `format` is "png" or "jpg"; null takes it from the ending of
    // `path`. Throws CFileException*, or CNotSupportedException* for another format.
    void Save(const char* path, const char* format = nullptr, int quality = 90) const;

    int Caps(int index) const override;
    void Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) override;
    int CurveColumn(const GraphicsState& state) const override;
    void BeginCurve() override;
    void EndCurve() override;
    void Polygons(const GraphicsState& state, std::span<const CPoint> points,
                  std::span<const int> counts) override;
    void FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                  DWORD operation) override;
    void DrawPicture(const GraphicsState& state, const CRect& rect, const PictureView& picture) override;
    void Ellipse(const GraphicsState& state, const CRect& rect) override;
    void Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) override;
    void Marks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
               const MarkPainter& paint) override;
    void StrokeArc(const GraphicsState& state, const EllipticArc& arc) override;
    void DrawText(const GraphicsState& state, std::span<const TextSpan> spans) override;
    CSize TextExtent(const GraphicsState& state, std::string_view text) override;
    std::vector<int> PrefixExtents(const GraphicsState& state, std::string_view text,
                                   std::span<const std::size_t> ends) override;
    TEXTMETRIC TextMetrics(const GraphicsState& state) override;
    COLORREF GetPixel(const CPoint& devicePoint) override;

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace zel::qt
