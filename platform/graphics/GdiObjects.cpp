#include <zel/platform/Exception.h>
#include <zel/platform/GdiObjects.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

IMPLEMENT_DYNAMIC(CGdiObject, CObject)
IMPLEMENT_DYNAMIC(CPen, CGdiObject)
IMPLEMENT_DYNAMIC(CBrush, CGdiObject)
IMPLEMENT_DYNAMIC(CFont, CGdiObject)
IMPLEMENT_DYNAMIC(CRgn, CGdiObject)

namespace {

// The objects that own their handles, from any thread.
struct Owners {
    std::mutex mutex;
    std::unordered_map<HGDIOBJ, CGdiObject*> objects;
};

Owners& TheOwners() {
    static Owners& owners = *new Owners;  // objects with static storage leave it when they die
    return owners;
}

CGdiObject* OwnerOf(HGDIOBJ handle) {
    Owners& owners = TheOwners();
    const std::lock_guard lock(owners.mutex);
    const auto found = owners.objects.find(handle);
    return found != owners.objects.end() ? found->second : nullptr;
}

void SetOwner(HGDIOBJ handle, CGdiObject* owner) {
    Owners& owners = TheOwners();
    const std::lock_guard lock(owners.mutex);
    if (owner) {
        owners.objects[handle] = owner;
    } else {
        owners.objects.erase(handle);
    }
}

// Wrappers of handles that no object owns. Those of dead handles go when there are many.
constexpr std::size_t kManyWrappers = 256;
using Wrappers = std::unordered_map<HGDIOBJ, std::unique_ptr<CGdiObject>>;

Wrappers& TheWrappers() {
    thread_local Wrappers wrappers;
    if (wrappers.size() > kManyWrappers) {
        std::erase_if(wrappers, [](const auto& entry) { return !zel::IsAlive(entry.first); });
    }
    return wrappers;
}

}  // namespace

CGdiObject::~CGdiObject() {
    if (!temporary_) DeleteObject();
}

void CGdiObject::AttachNew(HGDIOBJ handle) {
    if (!handle) AfxThrowResourceException();
    DeleteObject();
    Attach(handle);
}

BOOL CGdiObject::Attach(HGDIOBJ handle) {
    if (!handle) return FALSE;
    Detach();  // or the handle that it had would go on naming this object
    m_hObject = handle;
    SetOwner(handle, this);
    return TRUE;
}

HGDIOBJ CGdiObject::Detach() {
    if (m_hObject && !temporary_) SetOwner(m_hObject, nullptr);
    return std::exchange(m_hObject, nullptr);
}

BOOL CGdiObject::DeleteObject() {
    if (!m_hObject) return FALSE;
    // A wrapper keeps the dead handle: whoever still holds the wrapper then holds something that fails
    // harmlessly.
    const HGDIOBJ handle = temporary_ ? m_hObject : Detach();
    return ::DeleteObject(handle);
}

template <class Object>
Object* CGdiObject::Wrapper(HGDIOBJ handle) {
    if (!handle) return nullptr;
    if (auto* owner = dynamic_cast<Object*>(OwnerOf(handle))) return owner;
    std::unique_ptr<CGdiObject>& wrapper = TheWrappers()[handle];
    if (!wrapper) {
        wrapper = std::make_unique<Object>();
        wrapper->m_hObject = handle;
        wrapper->temporary_ = true;
    }
    return static_cast<Object*>(wrapper.get());
}

CPen* CPen::FromHandle(HPEN handle) {
    return Wrapper<CPen>(reinterpret_cast<HGDIOBJ>(handle));
}
CBrush* CBrush::FromHandle(HBRUSH handle) {
    return Wrapper<CBrush>(reinterpret_cast<HGDIOBJ>(handle));
}
CFont* CFont::FromHandle(HFONT handle) {
    return Wrapper<CFont>(reinterpret_cast<HGDIOBJ>(handle));
}

namespace {
template <class Handle>
HGDIOBJ Generic(Handle handle) {
    return reinterpret_cast<HGDIOBJ>(handle);
}
}  // namespace

BOOL CPen::CreatePen(int style, int width, COLORREF color, BYTE opacity) {
    LOGPEN pen{static_cast<UINT>(style), {std::abs(width), 0}, color, static_cast<BYTE>(255 - opacity)};
    return CreatePenIndirect(&pen);
}
BOOL CPen::CreatePenIndirect(LOGPEN* pen) {
    AttachNew(Generic(::CreatePenIndirect(pen)));
    return TRUE;
}
BOOL CBrush::CreateSolidBrush(COLORREF color, BYTE opacity) {
    const LOGBRUSH brush{BS_SOLID, color, 0, static_cast<BYTE>(255 - opacity)};
    return CreateBrushIndirect(&brush);
}
BOOL CBrush::CreateHatchBrush(int hatch, COLORREF color) {
    AttachNew(Generic(::CreateHatchBrush(hatch, color)));
    return TRUE;
}
BOOL CBrush::CreateBrushIndirect(const LOGBRUSH* brush) {
    AttachNew(Generic(::CreateBrushIndirect(brush)));
    return TRUE;
}
BOOL CFont::CreateFontIndirect(const LOGFONT* font) {
    AttachNew(Generic(::CreateFontIndirect(font)));
    return TRUE;
}

BOOL CFont::CreateFont(int height, int width, int escapement, int orientation, int weight, BYTE italic,
                       BYTE underline, BYTE strikeOut, BYTE charSet, BYTE outPrecision, BYTE clipPrecision,
                       BYTE quality, BYTE pitchAndFamily, const char* face) {
    LOGFONT font{height,    width,   escapement,   orientation,   weight,  italic,         underline,
                 strikeOut, charSet, outPrecision, clipPrecision, quality, pitchAndFamily, {}};
    if (face) std::strncpy(font.lfFaceName, face, LF_FACESIZE - 1);
    return CreateFontIndirect(&font);
}

BOOL CRgn::CreateRectRgn(int left, int top, int right, int bottom) {
    AttachNew(Generic(::CreateRectRgn(left, top, right, bottom)));
    return TRUE;
}
BOOL CRgn::CreateRectRgnIndirect(const RECT* rect) {
    return CreateRectRgn(rect->left, rect->top, rect->right, rect->bottom);
}
BOOL CRgn::CreateEllipticRgn(int left, int top, int right, int bottom) {
    AttachNew(Generic(::CreateEllipticRgn(left, top, right, bottom)));
    return TRUE;
}
BOOL CRgn::CreatePolygonRgn(const POINT* points, int count, int fillMode) {
    AttachNew(Generic(::CreatePolygonRgn(points, count, fillMode)));
    return TRUE;
}

int CRgn::CombineRgn(CRgn* first, CRgn* second, int mode) {
    return ::CombineRgn(*this, first ? static_cast<HRGN>(*first) : nullptr,
                        second ? static_cast<HRGN>(*second) : nullptr, mode);
}

BOOL CRgn::PtInRegion(POINT point) const {
    zel::Region region;
    return zel::GetRegion(*this, region) && region.Contains(point);
}

BOOL CRgn::RectInRegion(const RECT* rect) const {
    zel::Region region;
    return zel::GetRegion(*this, region) && region.Touches(*rect);
}

int CRgn::GetRgnBox(RECT* box) const {
    zel::Region region;
    if (!zel::GetRegion(*this, region)) return RGN_ERROR;
    *box = region.Box();
    if (region.IsEmpty()) return NULLREGION;
    return region.Rects().size() == 1 ? SIMPLEREGION : COMPLEXREGION;
}
