// The graphics interface on handles. CDC and the object classes stand on it; code that only holds handles
// uses it.
//
// Functions that take an object handle answer 0, FALSE or null for one that is dead or of another kind, and
// do nothing then.
#pragma once

#include <zel/platform/GdiTypes.h>
#include <zel/platform/GraphicsDevice.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

HPEN CreatePen(int style, int width, COLORREF color);
HPEN CreatePenIndirect(const LOGPEN* pen);
HBRUSH CreateSolidBrush(COLORREF color);
HBRUSH CreateHatchBrush(int hatch, COLORREF color);
HBRUSH CreateBrushIndirect(const LOGBRUSH* brush);
HFONT CreateFontIndirect(const LOGFONT* font);
HRGN CreateRectRgn(int left, int top, int right, int bottom);
HRGN CreateEllipticRgn(int left, int top, int right, int bottom);
HRGN CreatePolygonRgn(const POINT* points, int count, int fillMode);
// Puts the combination of two regions into `result`, which must exist; answers the kind of the result.
// `second` is not used by RGN_COPY.
int CombineRgn(HRGN result, HRGN first, HRGN second, int mode);
// An object that always exists and cannot be deleted.
HGDIOBJ GetStockObject(int index);
// TRUE also for stock objects, which stay. A context that has the object selected goes on drawing with it.
BOOL DeleteObject(HGDIOBJ object);
template <class Handle>
BOOL DeleteObject(Handle handle) {
    return DeleteObject(reinterpret_cast<HGDIOBJ>(handle));
}

namespace zel {
// What stands behind a handle; false when it is dead.
bool GetPen(HPEN handle, LOGPEN& pen);
bool GetBrush(HBRUSH handle, LOGBRUSH& brush);
bool GetFont(HFONT handle, LOGFONT& font);
bool GetRegion(HRGN handle, Region& region);
bool SetRegion(HRGN handle, Region region);
bool IsAlive(HGDIOBJ handle);

// A context on a device, borrowed or owned. Ended by DeleteDC.
HDC CreateDeviceContext(GraphicsDevice& device);
HDC CreateDeviceContext(std::unique_ptr<GraphicsDevice> device);
GraphicsDevice& DeviceOf(HDC dc);
const GraphicsState& StateOf(HDC dc);
// GraphicsDevice::CurveColumn with the settings of now, without handing on gathered lines.
int CurveColumnOf(HDC dc);
// Draws what `plot` draws on the context with its origin at each of `places` (GraphicsDevice::Marks). `plot`
// leaves the settings as it found them.
void DrawMarks(HDC dc, std::span<const CPoint> places, const CRect& box, const std::function<void()>& plot);
// GraphicsDevice::FillRects with a brush, and DrawPicture.
void FillRects(HDC dc, std::span<const CRect> rects, HBRUSH brush);
void DrawPicture(HDC dc, const CRect& rect, const PictureView& picture);
// Hands gathered lines to the device, and lets it show what it has.
void FlushContext(HDC dc);
}  // namespace zel

// A context on a device that is like the screen and shows nothing; the argument is not used.
HDC CreateCompatibleDC(HDC dc);
BOOL DeleteDC(HDC dc);
// Levels count from 1; RestoreDC takes a level or -1 for the last, and answers FALSE for one that does not
// exist.
int SaveDC(HDC dc);
BOOL RestoreDC(HDC dc, int level);
int GetDeviceCaps(HDC dc, int index);

// Each answers the object selected before, null on failure.
HPEN SelectObject(HDC dc, HPEN pen);
HBRUSH SelectObject(HDC dc, HBRUSH brush);
HFONT SelectObject(HDC dc, HFONT font);

// Setters answer the previous value.
int SetMapMode(HDC dc, int mode);
CPoint SetWindowOrg(HDC dc, CPoint origin);
CSize SetWindowExt(HDC dc, CSize extent);
CPoint SetViewportOrg(HDC dc, CPoint origin);
CSize SetViewportExt(HDC dc, CSize extent);
// Opacity: 255 for opaque ink, 0 for none that can be seen.
COLORREF SetTextColor(HDC dc, COLORREF color, BYTE opacity = 255);
COLORREF SetBkColor(HDC dc, COLORREF color);
int SetBkMode(HDC dc, int mode);
int SetROP2(HDC dc, int mode);
int SetPolyFillMode(HDC dc, int mode);
int SetArcDirection(HDC dc, int direction);
UINT SetTextAlign(HDC dc, UINT align);
CPoint SetBrushOrg(HDC dc, CPoint origin);

CPoint MoveTo(HDC dc, CPoint to);
void LineTo(HDC dc, CPoint to);
void PolylineTo(HDC dc, const POINT* points, int count);
CPoint GetCurrentPosition(HDC dc);

// A null brush handle fills with the brush that is selected.
int FillRect(HDC dc, const RECT* rect, HBRUSH brush);
// A border one logical unit wide, inside; 0 and nothing for an empty or unordered rectangle.
int FrameRect(HDC dc, const RECT* rect, HBRUSH brush);
BOOL InvertRect(HDC dc, const RECT* rect);
BOOL PatBlt(HDC dc, int x, int y, int width, int height, DWORD operation);

// The region (device units) is copied; null removes the clip.
int SelectClipRgn(HDC dc, HRGN region);
int IntersectClipRect(HDC dc, int left, int top, int right, int bottom);
int ExcludeClipRect(HDC dc, int left, int top, int right, int bottom);
// In logical units; the whole surface when there is no clip.
int GetClipBox(HDC dc, RECT* box);

CSize GetTextExtent(HDC dc, std::string_view text);
std::vector<int> GetPrefixExtents(HDC dc, std::string_view text, std::span<const std::size_t> ends);
TEXTMETRIC GetTextMetrics(HDC dc);
