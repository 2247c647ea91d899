#include <zel/platform/DC.h>
#include <zel/platform/Metafile.h>

#include <algorithm>
#include <utility>

IMPLEMENT_DYNAMIC(CDC, CObject)
IMPLEMENT_DYNAMIC(CMetaFileDC, CDC)

CDC::CDC(zel::GraphicsDevice& device) {
    Attach(zel::CreateDeviceContext(device));
}
CDC::CDC(std::unique_ptr<zel::GraphicsDevice> device) {
    Attach(zel::CreateDeviceContext(std::move(device)));
}
CDC::~CDC() {
    DeleteDC();
}

BOOL CDC::CreateCompatibleDC(CDC* dc) {
    return Attach(::CreateCompatibleDC(dc ? dc->m_hDC : nullptr));
}

BOOL CDC::Attach(HDC dc) {
    DeleteDC();
    m_hDC = m_hAttribDC = dc;
    return dc ? TRUE : FALSE;
}

HDC CDC::Detach() {
    m_hAttribDC = nullptr;
    return std::exchange(m_hDC, nullptr);
}

BOOL CDC::DeleteDC() {
    return ::DeleteDC(Detach());
}

int CDC::GetDeviceCaps(int index) const {
    return ::GetDeviceCaps(Asked(), index);
}
void CDC::Flush() {
    zel::FlushContext(m_hDC);
}

// Sets on the output context, and on the attribute context where it is another; answers what the output one
// had.
template <class Setter, class... Values>
auto CDC::SetOnBoth(Setter setter, Values... values) {
    auto previous = setter(m_hDC, values...);
    if (m_hAttribDC && m_hAttribDC != m_hDC) setter(m_hAttribDC, values...);
    return previous;
}

int CDC::SaveDC() {
    return SetOnBoth([](HDC dc) { return ::SaveDC(dc); });
}
BOOL CDC::RestoreDC(int level) {
    return SetOnBoth([](HDC dc, int to) { return ::RestoreDC(dc, to); }, level);
}

CPen* CDC::SelectObject(CPen* pen) {
    if (!pen) return nullptr;
    return CPen::FromHandle(
        SetOnBoth([](HDC dc, HPEN h) { return ::SelectObject(dc, h); }, static_cast<HPEN>(*pen)));
}
CBrush* CDC::SelectObject(CBrush* brush) {
    if (!brush) return nullptr;
    return CBrush::FromHandle(
        SetOnBoth([](HDC dc, HBRUSH h) { return ::SelectObject(dc, h); }, static_cast<HBRUSH>(*brush)));
}
CFont* CDC::SelectObject(CFont* font) {
    if (!font) return nullptr;
    return CFont::FromHandle(
        SetOnBoth([](HDC dc, HFONT h) { return ::SelectObject(dc, h); }, static_cast<HFONT>(*font)));
}

CGdiObject* CDC::SelectStockObject(int index) {
    const HGDIOBJ stock = GetStockObject(index);
    if (index >= WHITE_PEN && index <= NULL_PEN)
        return SelectObject(CPen::FromHandle(reinterpret_cast<HPEN>(stock)));
    if (index >= WHITE_BRUSH && index <= NULL_BRUSH)
        return SelectObject(CBrush::FromHandle(reinterpret_cast<HBRUSH>(stock)));
    return SelectObject(CFont::FromHandle(reinterpret_cast<HFONT>(stock)));
}

COLORREF CDC::SetTextColor(COLORREF color, BYTE opacity) {
    return SetOnBoth(&::SetTextColor, color, opacity);
}
COLORREF CDC::SetBkColor(COLORREF color) {
    return SetOnBoth(&::SetBkColor, color);
}
int CDC::SetBkMode(int mode) {
    return SetOnBoth(&::SetBkMode, mode);
}
int CDC::SetROP2(int mode) {
    return SetOnBoth(&::SetROP2, mode);
}
int CDC::SetPolyFillMode(int mode) {
    return SetOnBoth(&::SetPolyFillMode, mode);
}
int CDC::SetArcDirection(int direction) {
    return SetOnBoth(&::SetArcDirection, direction);
}
UINT CDC::SetTextAlign(UINT align) {
    return SetOnBoth(&::SetTextAlign, align);
}
CPoint CDC::SetBrushOrg(int x, int y) {
    return SetOnBoth(&::SetBrushOrg, CPoint(x, y));
}
int CDC::SetMapMode(int mode) {
    return SetOnBoth(&::SetMapMode, mode);
}
CPoint CDC::SetWindowOrg(int x, int y) {
    return SetOnBoth(&::SetWindowOrg, CPoint(x, y));
}
CSize CDC::SetWindowExt(int cx, int cy) {
    return SetOnBoth(&::SetWindowExt, CSize(cx, cy));
}
CPoint CDC::SetViewportOrg(int x, int y) {
    return SetOnBoth(&::SetViewportOrg, CPoint(x, y));
}
CSize CDC::SetViewportExt(int cx, int cy) {
    return SetOnBoth(&::SetViewportExt, CSize(cx, cy));
}

void CDC::LPtoDP(POINT* points, int count) const {
    for (int i = 0; i < count; ++i) points[i] = Attributes().map.ToDevice(CPoint(points[i]));
}
void CDC::DPtoLP(POINT* points, int count) const {
    for (int i = 0; i < count; ++i) points[i] = Attributes().map.ToLogical(CPoint(points[i]));
}
void CDC::LPtoDP(RECT* rect) const {
    *rect = Attributes().map.ToDevice(CRect(*rect));
}
void CDC::DPtoLP(RECT* rect) const {
    *rect = Attributes().map.ToLogical(CRect(*rect));
}
void CDC::LPtoDP(SIZE* size) const {
    *size = Attributes().map.ToDevice(CSize(*size));
}
void CDC::DPtoLP(SIZE* size) const {
    *size = Attributes().map.ToLogical(CSize(*size));
}

int CDC::SelectClipRgn(CRgn* region) {
    return ::SelectClipRgn(m_hDC, region ? static_cast<HRGN>(*region) : nullptr);
}
int CDC::IntersectClipRect(int left, int top, int right, int bottom) {
    return ::IntersectClipRect(m_hDC, left, top, right, bottom);
}
int CDC::IntersectClipRect(const RECT* rect) {
    return IntersectClipRect(rect->left, rect->top, rect->right, rect->bottom);
}
int CDC::ExcludeClipRect(int left, int top, int right, int bottom) {
    return ::ExcludeClipRect(m_hDC, left, top, right, bottom);
}
int CDC::GetClipBox(RECT* box) const {
    return ::GetClipBox(m_hDC, box);
}

CPoint CDC::GetCurrentPosition() const {
    return ::GetCurrentPosition(m_hDC);
}
CPoint CDC::MoveTo(int x, int y) {
    return SetOnBoth(&::MoveTo, CPoint(x, y));
}

BOOL CDC::LineTo(int x, int y) {
    ::LineTo(m_hDC, CPoint(x, y));
    return TRUE;
}

BOOL CDC::PolylineTo(const POINT* points, int count) {
    ::PolylineTo(m_hDC, points, count);
    return TRUE;
}

namespace {

// The framework's point is the platform's with operations; an array of one can be read as one of the other.
const CPoint* AsPoints(const POINT* points) {
    static_assert(sizeof(CPoint) == sizeof(POINT));
    return static_cast<const CPoint*>(points);
}

}  // namespace

BOOL CDC::Polyline(const POINT* points, int count) {
    if (count < 2) return FALSE;
    Device().Polyline(State(), AsPoints(points), static_cast<std::size_t>(count));
    return TRUE;
}

BOOL CDC::Polygon(const POINT* points, int count) {
    return PolyPolygon(points, &count, 1);
}

BOOL CDC::PolyPolygon(const POINT* points, const int* counts, int polygons) {
    if (polygons < 1 || std::any_of(counts, counts + polygons, [](int count) { return count < 2; }))
        return FALSE;
    std::size_t total = 0;
    for (int i = 0; i < polygons; ++i) total += static_cast<std::size_t>(counts[i]);
    Device().Polygons(State(), {AsPoints(points), total}, {counts, static_cast<std::size_t>(polygons)});
    return TRUE;
}

BOOL CDC::Rectangle(int left, int top, int right, int bottom) {
    Device().Rectangle(State(), CRect(left, top, right, bottom));
    return TRUE;
}

BOOL CDC::RoundRect(const RECT* rect, POINT corner) {
    Device().RoundRect(State(), *rect, CSize(corner.x, corner.y));
    return TRUE;
}

BOOL CDC::Ellipse(const RECT* rect) {
    Device().Ellipse(State(), *rect);
    return TRUE;
}

BOOL CDC::DrawArc(const RECT* rect, const POINT& start, const POINT& end, zel::ArcKind kind) {
    Device().Arc(State(), *rect, start, end, kind);
    return TRUE;
}

void CDC::FillRect(const RECT* rect, CBrush* brush) {
    ::FillRect(m_hDC, rect, brush ? static_cast<HBRUSH>(*brush) : nullptr);
}
void CDC::FillSolidRect(const RECT* rect, COLORREF color) {
    SetBkColor(color);
    Device().FillRect(State(), *rect, {BS_SOLID, color, 0}, PATCOPY);
}
void CDC::FrameRect(const RECT* rect, CBrush* brush) {
    ::FrameRect(m_hDC, rect, brush ? static_cast<HBRUSH>(*brush) : nullptr);
}
void CDC::InvertRect(const RECT* rect) {
    ::InvertRect(m_hDC, rect);
}
BOOL CDC::PatBlt(int x, int y, int width, int height, DWORD operation) {
    return ::PatBlt(m_hDC, x, y, width, height, operation);
}

COLORREF CDC::SetPixel(int x, int y, COLORREF color) {
    Device().SetPixel(State(), CPoint(x, y), color);
    return color;
}

COLORREF CDC::GetPixel(int x, int y) const {
    return zel::DeviceOf(m_hDC).GetPixel(State().map.ToDevice(CPoint(x, y)));
}

BOOL CDC::FillRgn(CRgn* region, CBrush* brush) {
    zel::Region shape;
    LOGBRUSH record{};
    if (!region || !brush || !zel::GetRegion(*region, shape) || !zel::GetBrush(*brush, record)) return FALSE;
    Device().FillRegion(State(), shape, record);
    return TRUE;
}

BOOL CDC::TextOut(int x, int y, const char* text, int length) {
    CPoint at(x, y);
    const bool follows = (Attributes().textAlign & TA_UPDATECP) != 0;
    if (follows) at = GetCurrentPosition();
    const zel::TextSpan span{std::string_view(text, static_cast<std::size_t>(std::max(length, 0))), at};
    if (!span.text.empty()) TextRun({&span, 1});
    if (follows) MoveTo(zel::Add(at.x, GetTextExtent(text, length).cx), at.y);
    return TRUE;
}

void CDC::TextRun(std::span<const zel::TextSpan> spans) {
    if (!spans.empty()) Device().DrawText(State(), spans);
}

BOOL CDC::ExtTextOut(int x, int y, UINT options, const RECT* rect, const char* text, int length) {
    if (rect && (options & ETO_OPAQUE)) {
        Device().FillRect(State(), *rect, {BS_SOLID, Attributes().backgroundColor, 0}, PATCOPY);
    }
    if (!rect || !(options & ETO_CLIPPED)) return TextOut(x, y, text, length);
    SaveDC();
    IntersectClipRect(rect);
    const BOOL done = TextOut(x, y, text, length);
    RestoreDC(-1);  // the attribute context counts its own levels
    return done;
}

CSize CDC::GetTextExtent(const char* text, int length) const {
    return ::GetTextExtent(Asked(), {text, static_cast<std::size_t>(std::max(length, 0))});
}
CSize CDC::GetOutputTextExtent(const char* text, int length) const {
    return ::GetTextExtent(m_hDC, {text, static_cast<std::size_t>(std::max(length, 0))});
}
std::vector<int> CDC::GetPrefixExtents(std::string_view text, std::span<const std::size_t> ends) const {
    return ::GetPrefixExtents(Asked(), text, ends);
}

BOOL CDC::GetTextMetrics(TEXTMETRIC* metrics) const {
    *metrics = ::GetTextMetrics(Asked());
    return TRUE;
}

BOOL CMetaFileDC::Create(const char* fileName) {
    return Attach(CreateMetaFile(fileName));
}
HMETAFILE CMetaFileDC::Close() {
    return CloseMetaFile(Detach());
}
