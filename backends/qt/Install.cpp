#include "backends/qt/Application.h"
#include "backends/qt/FileDevices.h"
#include "backends/qt/QtPlatform.h"
#include "backends/qt/SeenMarks.h"

#include <zel/qt/Install.h>

namespace zel::qt {
namespace {

constexpr int kScreenDotsPerInch = 96;

// The screen as far as text is concerned; a pixel is all that it shows.
class ScreenLikeDevice : public MeasuringDevice {
  public:
    ScreenLikeDevice() { EnsureApplication(); }
    int Caps(int index) const override { return caps_.Answer(index); }
    void Polyline(const GraphicsState&, const CPoint*, std::size_t) override {}
    void Polygons(const GraphicsState&, std::span<const CPoint>, std::span<const int>) override {}
    void FillRect(const GraphicsState&, const CRect&, const LOGBRUSH&, DWORD) override {}
    void DrawText(const GraphicsState&, std::span<const TextSpan>) override {}
    void NewPage() override {}
    void Finish() override {}

  private:
    SurfaceCaps caps_{.unitsPerInch = kScreenDotsPerInch,
                      .units = CSize(1920, 1080),
                      .widthInches = 20,
                      .heightInches = 11.25};
};

}  // namespace

std::unique_ptr<GraphicsDevice> QtPlatform::CreateScreenCompatibleDevice() {
    return std::make_unique<ScreenLikeDevice>();
}

std::vector<FileFormat> QtPlatform::FileFormats() {
    return {PdfFormat(), PngFormat(), JpegFormat(), SvgFormat()};
}

std::vector<CPoint> QtPlatform::SeenMarks(const GraphicsState& state, std::span<const CPoint> places,
                                          const CRect& box, const MarkPainter& paint, double unitsPerPixel) {
    return qt::SeenMarks(state, places, box, paint, unitsPerPixel);
}

void Install() {
    if (!dynamic_cast<QtPlatform*>(&Platform::Get())) Platform::Install(std::make_unique<QtPlatform>());
}

}  // namespace zel::qt
