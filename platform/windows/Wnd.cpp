#include "platform/windows/WindowState.h"

#include <zel/platform/Controls.h>
#include <zel/platform/Exception.h>
#include <zel/platform/FrameWnd.h>
#include <zel/platform/Platform.h>

#include <algorithm>
#include <climits>

IMPLEMENT_DYNCREATE(CWnd, CCmdTarget)

namespace zel {

WindowState& TheWindows() {
    static WindowState state;
    return state;
}

WindowSystem* WindowsOrNull() {
    return Platform::Get().Windows();
}

WindowSystem& Windows() {
    WindowSystem* const system = WindowsOrNull();
    if (!system) {
        AfxThrowNotSupportedException(
            "Cannot make a window: that needs a back end such as zel::widgets, and none is installed.");
    }
    return *system;
}

// Without pixels to move, everything is painted again.
void WindowPeer::ScrollPixels(int, int) {
    Invalidate(CRect(INT_MIN, INT_MIN, INT_MAX, INT_MAX), true);
}

}  // namespace zel

CWnd::~CWnd() {
    Tear(false);
}

void CWnd::AttachPeer(zel::WindowPeer* peer) {
    if (peer_ && peer_->Host() == this) peer_->Bind(nullptr);
    ownedPeer_.reset();
    peer_ = peer;
    if (peer) peer->Bind(this);
}

BOOL CWnd::PreCreateWindow(CREATESTRUCT&) {
    return TRUE;
}

BOOL CWnd::Create(const char* className, const char* text, DWORD style, const RECT& area, CWnd* parent,
                  UINT id) {
    return CreateEx(0, className, text, style, area, parent, id);
}

BOOL CWnd::CreateEx(DWORD extendedStyle, const char* className, const char* text, DWORD style,
                    const RECT& area, CWnd* parent, UINT id, void* parameter) {
    if (peer_) AfxThrowInvalidArgException("Cannot create a window for an object that has one.");
    CREATESTRUCT cs{
        parameter, parent, id,        area.bottom - area.top, area.right - area.left, area.top, area.left,
        style,     text,   className, extendedStyle};
    if (!PreCreateWindow(cs)) {
        PostNcDestroy();
        return FALSE;
    }
    zel::WindowSpec spec{.kind = Kind(),
                         .text = cs.lpszName ? cs.lpszName : "",
                         .style = cs.style,
                         .extendedStyle = cs.dwExStyle,
                         .area = CRect(CPoint(cs.x, cs.y), CSize(cs.cx, cs.cy)),
                         .id = cs.id,
                         .parent = parent ? parent->peer_ : nullptr};
    ownedPeer_ = zel::Windows().CreateWindow(spec);
    peer_ = ownedPeer_.get();
    peer_->Bind(this);
    parent_ = parent;
    if (parent) parent->children_.push_back(this);
    id_ = cs.id;
    style_ = cs.style;
    extendedStyle_ = cs.dwExStyle;
    self_ = std::make_shared<CWnd*>(this);
    const std::weak_ptr<CWnd*> alive = self_;
    if (SendMessage(WM_CREATE, 0, reinterpret_cast<LPARAM>(&cs)) == -1) {
        if (!alive.expired()) DestroyWindow();
        return FALSE;
    }
    if (cs.dwExStyle != spec.extendedStyle) peer_->SetExtendedStyle(extendedStyle_ = cs.dwExStyle);
    if (style_ & WS_DISABLED) peer_->Enable(false);
    if (style_ & WS_VISIBLE) ShowWindow(SW_SHOW);
    return TRUE;
}

BOOL CWnd::DestroyWindow() {
    if (!peer_ || destroying_) return FALSE;
    Tear(false);
    return TRUE;
}

void CWnd::RemoveChild(CWnd* child) {
    std::erase(children_, child);
}

// Nobody is to come back to a window that is gone.
void CWnd::Forget() {
    zel::WindowState& windows = zel::TheWindows();
    if (windows.capture == this) windows.capture = nullptr;
    if (windows.focus == this) windows.focus = nullptr;
    if (windows.underMouse == this) windows.underMouse = nullptr;
}

void CWnd::Tear(bool peerGone) {
    if (!peer_ || destroying_) return;
    destroying_ = true;
    SendMessage(WM_DESTROY);
    while (!children_.empty()) {
        CWnd* const child = children_.back();
        child->Tear(peerGone);
        std::erase(children_, child);
    }
    Forget();
    if (peer_->Host() == this) peer_->Bind(nullptr);
    const std::unique_ptr<zel::WindowPeer> peer = std::move(ownedPeer_);
    peer_ = nullptr;
    if (parent_) parent_->RemoveChild(this);
    parent_ = nullptr;
    self_.reset();
    SendMessage(WM_NCDESTROY);
    destroying_ = false;
    if (zel::WindowSystem* system = zel::WindowsOrNull()) system->WakeLoop();
    PostNcDestroy();
}

void CWnd::OnPeerGone() {
    Tear(true);
}

CFrameWnd* CWnd::GetParentFrame() const {
    for (CWnd* window = parent_; window; window = window->parent_) {
        if (auto* frame = dynamic_cast<CFrameWnd*>(window)) return frame;
    }
    return nullptr;
}

CWnd* CWnd::GetTopLevelParent() {
    CWnd* window = this;
    while (window->parent_ && (window->style_ & WS_CHILD)) window = window->parent_;
    return window;
}

CWnd* CWnd::GetDlgItem(int id) const {
    for (CWnd* child : children_) {
        if (child->id_ == static_cast<UINT>(id)) return child;
    }
    return nullptr;
}

BOOL CWnd::ShowWindow(int show) {
    if (!peer_) return FALSE;
    const BOOL shown = IsWindowVisible();
    peer_->Show(show != SW_HIDE);
    return shown;
}

BOOL CWnd::EnableWindow(BOOL on) {
    if (!peer_) return FALSE;
    const BOOL wasDisabled = IsWindowEnabled() ? FALSE : TRUE;
    peer_->Enable(on != FALSE);
    return wasDisabled;
}

void CWnd::MoveWindow(int x, int y, int width, int height, BOOL) {
    if (peer_) peer_->Move(CRect(CPoint(x, y), CSize(std::max(width, 0), std::max(height, 0))));
}
void CWnd::MoveWindow(const RECT* area, BOOL repaint) {
    MoveWindow(area->left, area->top, CRect(*area).Width(), CRect(*area).Height(), repaint);
}

void CWnd::GetClientRect(RECT* area) const {
    *area = CRect(CPoint(), peer_ ? peer_->ClientSize() : CSize());
}

void CWnd::GetWindowRect(RECT* screen) const {
    *screen = CRect();
    if (!peer_) return;
    CRect area = peer_->Area();
    if (parent_ && (style_ & WS_CHILD)) parent_->ClientToScreen(&area);
    *screen = area;
}

void CWnd::ClientToScreen(POINT* point) const {
    if (peer_) *point = peer_->ClientToScreen(*point);
}
void CWnd::ScreenToClient(POINT* point) const {
    if (peer_) {
        const CSize offset = *point - peer_->ClientToScreen(CPoint());
        *point = CPoint(offset.cx, offset.cy);
    }
}
void CWnd::ClientToScreen(RECT* area) const {
    if (peer_) *area = CRect(*area) + peer_->ClientToScreen(CPoint());
}
void CWnd::ScreenToClient(RECT* area) const {
    if (peer_) *area = CRect(*area) - static_cast<const POINT&>(peer_->ClientToScreen(CPoint()));
}

void CWnd::SetWindowText(const char* text) {
    SendMessage(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text ? text : ""));
}
CString CWnd::GetWindowText() const {
    return peer_ ? CString(peer_->GetText()) : CString();
}
void CWnd::GetWindowText(CString& text) const {
    text = GetWindowText();
}

void CWnd::SetFont(CFont* font, BOOL redraw) {
    const HFONT handle = font ? static_cast<HFONT>(*font) : nullptr;
    SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(handle), redraw);
}

void CWnd::InvalidateRect(const RECT* area, BOOL erase) {
    if (peer_)
        peer_->Invalidate(area ? CRect(*area) : CRect(INT_MIN, INT_MIN, INT_MAX, INT_MAX), erase != FALSE);
}

void CWnd::UpdateWindow() {
    if (peer_) peer_->Update();
}

void CWnd::ScrollWindow(int dx, int dy) {
    if (peer_ && (dx != 0 || dy != 0)) peer_->ScrollPixels(dx, dy);
}

CWnd* CWnd::GetCapture() {
    return zel::TheWindows().capture;
}

CWnd* CWnd::SetCapture() {
    CWnd* const previous = GetCapture();
    if (!peer_ || previous == this) return previous;
    zel::TheWindows().capture = this;
    if (previous) {
        previous->peer_->SetCapture(false);
        previous->SendMessage(WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(this));
    }
    peer_->SetCapture(true);
    return previous;
}

BOOL ReleaseCapture() {
    CWnd* const window = zel::TheWindows().capture;
    if (!window) return FALSE;
    zel::TheWindows().capture = nullptr;
    window->Peer()->SetCapture(false);
    window->SendMessage(WM_CAPTURECHANGED);
    return TRUE;
}

CWnd* CWnd::GetFocus() {
    return zel::TheWindows().focus;
}

CWnd* CWnd::SetFocus() {
    CWnd* const previous = GetFocus();
    if (peer_) peer_->TakeFocus();
    return previous;
}

UINT_PTR CWnd::SetTimer(UINT_PTR id, UINT milliseconds, void*) {
    if (!peer_) return 0;
    peer_->SetTimer(id, std::max(milliseconds, 1U));
    return id;
}

BOOL CWnd::KillTimer(UINT_PTR id) {
    if (!peer_) return FALSE;
    peer_->SetTimer(id, 0);
    return TRUE;
}
