// The device behind a metafile recorder.
#pragma once

#include "platform/graphics/CodePages.h"

#include <zel/platform/GraphicsDevice.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zel {

// Writes the records of a Windows metafile (Microsoft MS-WMF). A record of a setting is written only when a
// primitive needs it and it differs from what was written last; objects are created when they are first
// needed and kept for use again.
class MetafileDevice : public BasicDevice<GraphicsDevice> {
  public:
    explicit MetafileDevice(std::string fileName) : fileName_(std::move(fileName)) {}

    const std::string& FileName() const { return fileName_; }
    // As the function of the same name says.
    void LeaveOutUnseen(int unitsPerInch) { unitsPerPixel_ = unitsPerInch / kPixelsPerInch; }
    // The complete metafile; nothing may be drawn afterwards.
    std::vector<std::uint8_t> Finish();

    int Caps(int index) const override { return index == TECHNOLOGY ? DT_METAFILE : 0; }
    int CurveColumn(const GraphicsState& state) const override { return LeavesOut(state) ? 1 : 0; }
    void Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) override;
    void Marks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
               const MarkPainter& paint) override;
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
    CSize TextExtent(const GraphicsState&, std::string_view) override { return {}; }
    TEXTMETRIC TextMetrics(const GraphicsState&) override { return {}; }

  private:
    static constexpr double kPixelsPerInch = 96;  // of a screen
    using Words = std::vector<WORD>;
    enum ObjectKind { PEN, BRUSH, FONT, KINDS };
    struct Slot {
        ObjectKind kind;
        Words definition;
    };
    // What the player's context has after the records so far; the defaults of a fresh context at first.
    struct Written {
        CoordinateMap map;
        CPoint viewportOrigin;
        CSize viewportExtent;  // where `placed`
        bool placed = false;   // the player's viewport extent is no more its own
        int selected[KINDS] = {-1, -1, -1};
        int rasterMode = R2_COPYPEN;
        int polygonFillMode = ALTERNATE;
        int backgroundMode = OPAQUE;
        COLORREF backgroundColor = RGB(255, 255, 255);
        COLORREF textColor = 0;
        UINT textAlign = 0;
    };

    bool LeavesOut(const GraphicsState& state) const {
        return unitsPerPixel_ > 0 && state.map.windowExtent == state.map.viewportExtent;
    }
    // Where a point of a mark is drawn.
    CPoint Moved(const CPoint& p) const { return p + move_; }
    CRect Moved(const CRect& rect) const { return rect + CPoint(move_.cx, move_.cy); }
    void AppendPoints(Words& words, std::span<const CPoint> points) const;

    void Record(WORD function, const Words& parameters);
    void WriteMap(const CoordinateMap& map);
    void WriteViewport(const CoordinateMap& map);
    void WriteClip(const GraphicsState& state);
    void WriteClipRect(WORD function, const CoordinateMap& map, const CRect& deviceRect);
    void WriteCommon(const GraphicsState& state);
    void WriteMode(WORD function, int& written, int wanted);
    void WriteColor(WORD function, COLORREF& written, COLORREF wanted);
    void WriteStroke(const GraphicsState& state);
    void WriteShape(const GraphicsState& state);
    void WriteBackground(const GraphicsState& state);
    void UseBrush(const GraphicsState& state, const LOGBRUSH& brush);
    void Select(ObjectKind kind, const Words& definition);
    void SelectPen(const LOGPEN& pen);
    void SelectBrush(const LOGBRUSH& brush);
    // The font in the character set of a text.
    void SelectFont(LOGFONT font, const EncodedText& text);
    int SlotFor(ObjectKind kind, const Words& definition);
    int FreeSlot();
    void WriteText(const GraphicsState& state, std::string_view text, std::span<const TextSpan> spans);
    static CPoint PlaceOf(const GraphicsState& state, std::string_view text, std::size_t byte,
                          std::span<const TextSpan> spans);
    bool WriteRun(const GraphicsState& state, std::span<const TextSpan> spans);
    static int WidthOf(const GraphicsState& state, std::string_view text);
    void UseTextAlign(UINT align);
    void DrawThinned(const GraphicsState& state, std::span<const CPoint> points, std::span<const int> counts);
    void WritePolyline(const CPoint* points, std::size_t count);

    std::string fileName_;
    double unitsPerPixel_ = 0;  // of a screen; 0 when nothing is left out
    CSize move_;                // of the mark that is drawn, from the origin
    Words body_;
    DWORD largestRecord_ = 3;
    std::vector<Slot> slots_;
    std::size_t nextVictim_ = 0;
    Written written_;
    std::shared_ptr<const Region> clip_;
    Written beforeClip_;
};

}  // namespace zel
