// A device that writes down what is drawn on it.
#pragma once

#include <zel/platform/MetricsDevice.h>

#include <string>

namespace zel {

// Writes one line of text for each primitive, and before it a line for each setting that the primitive uses
// and that differs from what was written last:
//
//     pen solid 3 #ff0000
//     polyline 0,0 10,0 10,10
//     font "Arial" -16 weight 700 angle 900
//     text 10,20 "abc"
//
// For tests of drawing code: exact numbers, in order. Text is measured with built-in metrics.
class RecordingDevice : public MetricsDevice {
  public:
    using MetricsDevice::MetricsDevice;

    const std::string& Text() const { return text_; }
    // Forgets what was written, settings included.
    void Clear();

    void Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) override;
    void Polygons(const GraphicsState& state, std::span<const CPoint> points,
                  std::span<const int> counts) override;
    void FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                  DWORD operation) override;
    void Rectangle(const GraphicsState& state, const CRect& rect) override;
    void RoundRect(const GraphicsState& state, const CRect& rect, const CSize& corner) override;
    void Ellipse(const GraphicsState& state, const CRect& rect) override;
    void Arc(const GraphicsState& state, const CRect& rect, const CPoint& start, const CPoint& end,
             ArcKind kind) override;
    void SetPixel(const GraphicsState& state, const CPoint& point, COLORREF color) override;
    void DrawText(const GraphicsState& state, std::span<const TextSpan> spans) override;

  private:
    void WriteSetting(std::string& last, const std::string& line);
    void WriteCommon(const GraphicsState& state);
    void WritePen(const GraphicsState& state);
    void WriteShape(const GraphicsState& state);

    std::string text_;
    std::string pen_;
    std::string brush_;
    std::string font_;
    std::string textColor_;
    // What a fresh context has goes without saying.
    static constexpr const char* kDefaultMode = "mode 13\n";
    static constexpr const char* kDefaultMap = "map none\n";
    static constexpr const char* kDefaultClip = "clip none\n";
    std::string mode_ = kDefaultMode;
    std::string map_ = kDefaultMap;
    std::string clip_ = kDefaultClip;
};

}  // namespace zel
