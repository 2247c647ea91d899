// Device contexts.
#pragma once

#include <zel/platform/Gdi.h>
#include <zel/platform/GdiObjects.h>
#include <zel/platform/String.h>

#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

// What one draws with: the settings (pen, brush, font, colours, modes, mapping, clip) and a current position,
// on a device. Drawing goes to the output context, questions to the attribute context; the two are one unless
// they were set apart (a metafile answers no questions). What is set or selected is set on both.
//
// Coordinates are logical units. A context owns its handles from the constructors and Create operations, and
// those that it was attached to, until Detach.
class CDC : public CObject {
    DECLARE_DYNAMIC(CDC)
  public:
    CDC() = default;
    // A context on a device, which is borrowed and must outlive it.
    explicit CDC(zel::GraphicsDevice& device);
    explicit CDC(std::unique_ptr<zel::GraphicsDevice> device);
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;
    ~CDC() override;

    BOOL CreateCompatibleDC(CDC* dc);
    BOOL Attach(HDC dc);
    HDC Detach();
    BOOL DeleteDC();
    // The attribute context is borrowed. Without one the output context answers the questions.
    void SetAttribDC(HDC dc) { m_hAttribDC = dc; }
    void ReleaseAttribDC() { m_hAttribDC = nullptr; }
    HDC GetSafeHdc() const { return m_hDC; }
    BOOL IsPrinting() const { return m_bPrinting; }

    int GetDeviceCaps(int index) const;
    int SaveDC();
    BOOL RestoreDC(int level);
    // Hands everything to the device.
    void Flush();

    // Each answers the object selected before; null when the given one is dead.
    CPen* SelectObject(CPen* pen);
    CBrush* SelectObject(CBrush* brush);
    CFont* SelectObject(CFont* font);
    CGdiObject* SelectStockObject(int index);

    // Beyond the platform's interface: with an opacity, 255 for opaque ink, 0 for none that can be seen.
    COLORREF SetTextColor(COLORREF color, BYTE opacity = 255);
    COLORREF GetTextColor() const { return Attributes().textColor; }
    COLORREF SetBkColor(COLORREF color);
    COLORREF GetBkColor() const { return Attributes().backgroundColor; }
    int SetBkMode(int mode);
    int GetBkMode() const { return Attributes().backgroundMode; }
    int SetROP2(int mode);
    int GetROP2() const { return Attributes().rasterMode; }
    int SetPolyFillMode(int mode);
    int GetPolyFillMode() const { return Attributes().polygonFillMode; }
    int SetArcDirection(int direction);
    UINT SetTextAlign(UINT align);
    UINT GetTextAlign() const { return Attributes().textAlign; }
    CPoint SetBrushOrg(int x, int y);

    int SetMapMode(int mode);
    int GetMapMode() const { return Attributes().map.mode; }
    CPoint SetWindowOrg(int x, int y);
    CSize SetWindowExt(int cx, int cy);
    CPoint SetViewportOrg(int x, int y);
    CSize SetViewportExt(int cx, int cy);
    CPoint GetWindowOrg() const { return Attributes().map.windowOrigin; }
    CSize GetWindowExt() const { return Attributes().map.windowExtent; }
    CPoint GetViewportOrg() const { return Attributes().map.viewportOrigin; }
    CSize GetViewportExt() const { return Attributes().map.viewportExtent; }
    void LPtoDP(POINT* points, int count = 1) const;
    void DPtoLP(POINT* points, int count = 1) const;
    void LPtoDP(RECT* rect) const;
    void DPtoLP(RECT* rect) const;
    // Sizes scale by the extents alone and keep their sign.
    void LPtoDP(SIZE* size) const;
    void DPtoLP(SIZE* size) const;

    int SelectClipRgn(CRgn* region);
    int IntersectClipRect(int left, int top, int right, int bottom);
    int IntersectClipRect(const RECT* rect);
    int ExcludeClipRect(int left, int top, int right, int bottom);
    int GetClipBox(RECT* box) const;

    CPoint GetCurrentPosition() const;
    CPoint MoveTo(int x, int y);
    CPoint MoveTo(POINT to) { return MoveTo(to.x, to.y); }
    BOOL LineTo(int x, int y);
    BOOL LineTo(POINT to) { return LineTo(to.x, to.y); }
    BOOL Polyline(const POINT* points, int count);
    BOOL PolylineTo(const POINT* points, int count);
    // Lines between BeginCurve and EndCurve with the settings of now are one figure on devices that can do
    // that. CurveColumn is the width, in device units, of the columns within which such a device looks at no
    // more than the first, lowest, highest and last of consecutive points; 0 when it looks at each.
    int CurveColumn() const { return zel::CurveColumnOf(m_hDC); }
    void BeginCurve() { Device().BeginCurve(); }
    void EndCurve() { Device().EndCurve(); }
    // The ellipse in `box` moved by each of `places`. Between BeginCurve and EndCurve they are one figure.
    void Ellipses(std::span<const CPoint> places, const CRect& box) {
        Device().Ellipses(State(), places, box);
    }
    // What `plot` draws on this context, within `box` around the origin, with its origin at each of `places`.
    void Marks(std::span<const CPoint> places, const CRect& box, const std::function<void()>& plot) {
        zel::DrawMarks(m_hDC, places, box, plot);
    }
    BOOL Polygon(const POINT* points, int count);
    // FALSE, with nothing drawn, when a piece has fewer than 2 points.
    BOOL PolyPolygon(const POINT* points, const int* counts, int polygons);
    BOOL Rectangle(int left, int top, int right, int bottom);
    BOOL Rectangle(const RECT* rect) { return Rectangle(rect->left, rect->top, rect->right, rect->bottom); }
    BOOL RoundRect(const RECT* rect, POINT corner);
    BOOL RoundRect(const CRect& rect, POINT corner) {
        return RoundRect(static_cast<const RECT*>(&rect), corner);
    }
    BOOL Ellipse(const RECT* rect);
    BOOL Ellipse(const CRect& rect) { return Ellipse(static_cast<const RECT*>(&rect)); }
    BOOL Ellipse(int left, int top, int right, int bottom) {
        return Ellipse(CRect(left, top, right, bottom));
    }
    BOOL Arc(const RECT* rect, POINT start, POINT end) {
        return DrawArc(rect, start, end, zel::ArcKind::ARC);
    }
    BOOL Pie(const RECT* rect, POINT start, POINT end) {
        return DrawArc(rect, start, end, zel::ArcKind::PIE);
    }
    BOOL Chord(const RECT* rect, POINT start, POINT end) {
        return DrawArc(rect, start, end, zel::ArcKind::CHORD);
    }

    void FillRect(const RECT* rect, CBrush* brush);
    // Rectangles that do not overlap, as one figure; the selected brush without another.
    void FillRects(std::span<const CRect> rects, CBrush* brush) {
        zel::FillRects(m_hDC, rects, brush ? static_cast<HBRUSH>(*brush) : nullptr);
    }
    // See zel::GraphicsDevice::DrawPicture.
    void DrawPicture(const CRect& rect, const zel::PictureView& picture) {
        zel::DrawPicture(m_hDC, rect, picture);
    }
    void FillSolidRect(const RECT* rect, COLORREF color);
    void FrameRect(const RECT* rect, CBrush* brush);
    void InvertRect(const RECT* rect);
    BOOL PatBlt(int x, int y, int width, int height, DWORD operation);
    COLORREF SetPixel(int x, int y, COLORREF color);
    COLORREF GetPixel(int x, int y) const;
    // The region is in logical coordinates here.
    BOOL FillRgn(CRgn* region, CBrush* brush);

    BOOL TextOut(int x, int y, const char* text, int length);
    BOOL TextOut(int x, int y, const CString& text) { return TextOut(x, y, text, text.GetLength()); }
    BOOL ExtTextOut(int x, int y, UINT options, const RECT* rect, const char* text, int length);
    // Formats into a rectangle; answers the height of the text. Flags DT_*.
    int DrawText(const char* text, int length, RECT* rect, UINT format);
    int DrawText(const CString& text, RECT* rect, UINT format) {
        return DrawText(text, text.GetLength(), rect, format);
    }
    CSize GetTextExtent(const char* text, int length) const;
    CSize GetTextExtent(const CString& text) const { return GetTextExtent(text, text.GetLength()); }
    CSize GetOutputTextExtent(const char* text, int length) const;
    BOOL GetTextMetrics(TEXTMETRIC* metrics) const;

    // Beyond the platform's interface: one line of text, each span at its own point, in one piece for the
    // device.
    void TextRun(std::span<const zel::TextSpan> spans);
    // The widths of the prefixes of `text` that end at these byte offsets.
    std::vector<int> GetPrefixExtents(std::string_view text, std::span<const std::size_t> ends) const;

    HDC m_hDC = nullptr;
    HDC m_hAttribDC = nullptr;
    BOOL m_bPrinting = FALSE;

  private:
    HDC Asked() const { return m_hAttribDC ? m_hAttribDC : m_hDC; }
    const zel::GraphicsState& Attributes() const { return zel::StateOf(Asked()); }
    const zel::GraphicsState& State() const { return zel::StateOf(m_hDC); }
    zel::GraphicsDevice& Device() { return zel::DeviceOf(m_hDC); }
    BOOL DrawArc(const RECT* rect, const POINT& start, const POINT& end, zel::ArcKind kind);
    template <class Setter, class... Values>
    auto SetOnBoth(Setter setter, Values... values);
};

// A context that records a Windows metafile.
class CMetaFileDC : public CDC {
    DECLARE_DYNAMIC(CMetaFileDC)
  public:
    // On disk, or in memory when `fileName` is null.
    BOOL Create(const char* fileName = nullptr);
    // Ends the recording; throws CFileException* when the file cannot be written.
    HMETAFILE Close();
};
