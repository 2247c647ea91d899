// Pens, brushes, fonts and regions as objects.
#pragma once

#include <zel/platform/Gdi.h>
#include <zel/platform/Object.h>

// Owns the object behind a handle and deletes it with itself, unless it is detached. Handles of dead objects
// are harmless: what is done with them fails.
class CGdiObject : public CObject {
    DECLARE_DYNAMIC(CGdiObject)
  public:
    CGdiObject() = default;
    CGdiObject(const CGdiObject&) = delete;
    CGdiObject& operator=(const CGdiObject&) = delete;
    ~CGdiObject() override;

    HGDIOBJ GetSafeHandle() const { return m_hObject; }
    // Takes over `handle`; what was attached before is let go, not deleted.
    BOOL Attach(HGDIOBJ handle);
    HGDIOBJ Detach();
    // Deletes the platform object, if there is one; FALSE when there was none alive.
    BOOL DeleteObject();

    HGDIOBJ m_hObject = nullptr;

  protected:
    // The object that owns `handle`, or a wrapper that does not and lives at least as long as the platform
    // object; null for a null handle.
    template <class Object>
    static Object* Wrapper(HGDIOBJ handle);
    void AttachNew(HGDIOBJ handle);

  private:
    bool temporary_ = false;
};

class CPen : public CGdiObject {
    DECLARE_DYNAMIC(CPen)
  public:
    CPen() = default;
    CPen(int style, int width, COLORREF color, BYTE opacity = 255) {
        CreatePen(style, width, color, opacity);
    }
    // The opacity goes beyond the platform's interface: 255 for opaque ink, 0 for none that can be seen.
    BOOL CreatePen(int style, int width, COLORREF color, BYTE opacity = 255);
    BOOL CreatePenIndirect(LOGPEN* pen);
    BOOL Attach(HPEN handle) { return CGdiObject::Attach(reinterpret_cast<HGDIOBJ>(handle)); }
    HPEN Detach() { return reinterpret_cast<HPEN>(CGdiObject::Detach()); }
    operator HPEN() const { return reinterpret_cast<HPEN>(m_hObject); }
    static CPen* FromHandle(HPEN handle);
};

class CBrush : public CGdiObject {
    DECLARE_DYNAMIC(CBrush)
  public:
    CBrush() = default;
    explicit CBrush(COLORREF color) { CreateSolidBrush(color); }
    CBrush(int hatch, COLORREF color) { CreateHatchBrush(hatch, color); }
    // The opacity as that of a pen.
    BOOL CreateSolidBrush(COLORREF color, BYTE opacity = 255);
    BOOL CreateHatchBrush(int hatch, COLORREF color);
    BOOL CreateBrushIndirect(const LOGBRUSH* brush);
    BOOL Attach(HBRUSH handle) { return CGdiObject::Attach(reinterpret_cast<HGDIOBJ>(handle)); }
    HBRUSH Detach() { return reinterpret_cast<HBRUSH>(CGdiObject::Detach()); }
    operator HBRUSH() const { return reinterpret_cast<HBRUSH>(m_hObject); }
    static CBrush* FromHandle(HBRUSH handle);
};

class CFont : public CGdiObject {
    DECLARE_DYNAMIC(CFont)
  public:
    CFont() = default;
    BOOL CreateFont(int height, int width, int escapement, int orientation, int weight, BYTE italic,
                    BYTE underline, BYTE strikeOut, BYTE charSet, BYTE outPrecision, BYTE clipPrecision,
                    BYTE quality, BYTE pitchAndFamily, const char* face);
    BOOL CreateFontIndirect(const LOGFONT* font);
    BOOL Attach(HFONT handle) { return CGdiObject::Attach(reinterpret_cast<HGDIOBJ>(handle)); }
    HFONT Detach() { return reinterpret_cast<HFONT>(CGdiObject::Detach()); }
    operator HFONT() const { return reinterpret_cast<HFONT>(m_hObject); }
    static CFont* FromHandle(HFONT handle);
};

class CRgn : public CGdiObject {
    DECLARE_DYNAMIC(CRgn)
  public:
    CRgn() = default;
    BOOL CreateRectRgn(int left, int top, int right, int bottom);
    BOOL CreateRectRgnIndirect(const RECT* rect);
    BOOL CreateEllipticRgn(int left, int top, int right, int bottom);
    BOOL CreatePolygonRgn(const POINT* points, int count, int fillMode);
    int CombineRgn(CRgn* first, CRgn* second, int mode);
    BOOL PtInRegion(POINT point) const;
    BOOL RectInRegion(const RECT* rect) const;
    int GetRgnBox(RECT* box) const;
    BOOL Attach(HRGN handle) { return CGdiObject::Attach(reinterpret_cast<HGDIOBJ>(handle)); }
    operator HRGN() const { return reinterpret_cast<HRGN>(m_hObject); }
};
