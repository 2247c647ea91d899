// The platform of programs that draw through Qt.
#pragma once

#include <zel/platform/Platform.h>

namespace zel::qt {

// Images, PDF and SVG files, and texts measured with Qt's fonts.
class QtPlatform : public Platform {
  public:
    std::unique_ptr<GraphicsDevice> CreateScreenCompatibleDevice() override;
    std::vector<FileFormat> FileFormats() override;
    std::vector<CPoint> SeenMarks(const GraphicsState& state, std::span<const CPoint> places,
                                  const CRect& box, const MarkPainter& paint, double unitsPerPixel) override;
};

}  // namespace zel::qt
