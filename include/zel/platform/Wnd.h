// Windows.
#pragma once

#include <zel/platform/CmdTarget.h>
#include <zel/platform/Cursor.h>
#include <zel/platform/DC.h>
#include <zel/platform/String.h>
#include <zel/platform/WindowPeer.h>

#include <memory>
#include <string>
#include <vector>

class CDataExchange;
class CFrameWnd;
class CScrollBar;  // scroll bars belong to their windows: handlers receive null
class CWnd;

// What a window is made with; WM_CREATE may still change the extended style.
struct CREATESTRUCT {
    void* lpCreateParams = nullptr;
    CWnd* parent = nullptr;
    UINT id = 0;
    int cy = 0;
    int cx = 0;
    int y = 0;
    int x = 0;
    DWORD style = 0;
    const char* lpszName = nullptr;
    const char* lpszClass = nullptr;
    DWORD dwExStyle = 0;
};
using LPCREATESTRUCT = CREATESTRUCT*;

// A window object and, once it is created, a window of the window system. It receives the window's messages,
// from the message map of its class down to DefWindowProc. Child windows go with their parent.
//
// All coordinates are device pixels: of the client area, unless "screen" is said.
class CWnd : public CCmdTarget, private zel::WindowHost {
    DECLARE_DYNCREATE(CWnd)
  public:
    CWnd() = default;
    // A window on a peer, which is borrowed.
    explicit CWnd(zel::WindowPeer* peer) { AttachPeer(peer); }
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;
    // Destroys the window.
    ~CWnd() override;

    // Stands on a borrowed peer from now on, or on none.
    void AttachPeer(zel::WindowPeer* peer);
    zel::WindowPeer* Peer() const { return peer_; }
    HWND GetSafeHwnd() const { return peer_; }

    // Makes the window; the class name is not used. FALSE when a handler of WM_CREATE or PreCreateWindow
    // refuses. Throws CNotSupportedException* where there is no window system.
    virtual BOOL Create(const char* className, const char* text, DWORD style, const RECT& area, CWnd* parent,
                        UINT id);
    BOOL CreateEx(DWORD extendedStyle, const char* className, const char* text, DWORD style, const RECT& area,
                  CWnd* parent, UINT id, void* parameter = nullptr);
    // Destroys the window and its children: WM_DESTROY comes while they are there, PostNcDestroy when they
    // are gone. FALSE when there is no window.
    virtual BOOL DestroyWindow();

    // Sends a message through the message map and answers its result.
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    // Sends it soon, from the event loop; dropped when the window is gone by then.
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

    CWnd* GetParent() const { return parent_; }
    // Who is told what happens in a control or toolbar: the parent, unless another window (borrowed) is set.
    CWnd* GetOwner() const { return owner_ ? owner_ : parent_; }
    void SetOwner(CWnd* owner) { owner_ = owner; }
    CFrameWnd* GetParentFrame() const;
    CWnd* GetTopLevelParent();
    const std::vector<CWnd*>& Children() const { return children_; }
    // The child control of an identifier; null when there is none.
    CWnd* GetDlgItem(int id) const;
    int GetDlgCtrlID() const { return static_cast<int>(id_); }
    DWORD GetStyle() const { return style_; }
    DWORD GetExStyle() const { return extendedStyle_; }

    BOOL ShowWindow(int show);
    BOOL IsWindowVisible() const { return peer_ && peer_->IsShown() ? TRUE : FALSE; }
    BOOL EnableWindow(BOOL on = TRUE);
    BOOL IsWindowEnabled() const { return peer_ && peer_->IsEnabled() ? TRUE : FALSE; }
    // In the client area of the parent, or on the screen for a window without one.
    void MoveWindow(int x, int y, int width, int height, BOOL repaint = TRUE);
    void MoveWindow(const RECT* area, BOOL repaint = TRUE);
    void GetClientRect(RECT* area) const;
    void GetWindowRect(RECT* screen) const;
    void ClientToScreen(POINT* point) const;
    void ScreenToClient(POINT* point) const;
    void ClientToScreen(RECT* area) const;
    void ScreenToClient(RECT* area) const;

    void SetWindowText(const char* text);
    void GetWindowText(CString& text) const;
    CString GetWindowText() const;
    void SetFont(CFont* font, BOOL redraw = TRUE);

    // Marks an area (the whole window when null) to be painted again. Nothing without a peer.
    void InvalidateRect(const RECT* area, BOOL erase = TRUE);
    void Invalidate(BOOL erase = TRUE) { InvalidateRect(nullptr, erase); }
    // Paints at once what is marked.
    void UpdateWindow();
    // Moves the picture and marks what is uncovered.
    void ScrollWindow(int dx, int dy);

    // Directs all mouse messages here; answers the window that had them.
    CWnd* SetCapture();
    static CWnd* GetCapture();
    CWnd* SetFocus();
    static CWnd* GetFocus();
    // WM_TIMER with `id` every `milliseconds`; answers `id`.
    UINT_PTR SetTimer(UINT_PTR id, UINT milliseconds, void* = nullptr);
    BOOL KillTimer(UINT_PTR id);

    // Controls by identifier; harmless for one that does not exist.
    void SetDlgItemText(int id, const char* text);
    int GetDlgItemText(int id, CString& text) const;
    void SetDlgItemInt(int id, UINT value, BOOL isSigned = TRUE);
    // 0, and FALSE in `valid`, for a text that is no number.
    UINT GetDlgItemInt(int id, BOOL* valid = nullptr, BOOL isSigned = TRUE) const;
    void CheckDlgButton(int id, UINT check);
    UINT IsDlgButtonChecked(int id) const;
    // Stores into the controls (FALSE) or reads from them (TRUE) through DoDataExchange; FALSE when a value
    // was refused, which the user has been told.
    BOOL UpdateData(BOOL save = TRUE);
    // Puts this object in the place of the one that stands for the control `id` of `parent`.
    BOOL SubclassDlgItem(UINT id, CWnd* parent);

    // Waits for the user to answer a message.
    int MessageBox(const char* text, const char* caption = nullptr, UINT type = 0);

    // The kind of window of the class.
    virtual zel::WindowKind Kind() const { return zel::WindowKind::CANVAS; }

  protected:
    // Chances to change what the window is made with; FALSE makes none.
    virtual BOOL PreCreateWindow(CREATESTRUCT& cs);
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result);
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
    virtual void DoDataExchange(CDataExchange*) {}
    // The last that happens to a window; may delete the object.
    virtual void PostNcDestroy() {}
    // DefWindowProc for the message being handled.
    LRESULT Default();

    // Handlers of messages; each base version is Default.
    int OnCreate(LPCREATESTRUCT) { return static_cast<int>(Default()); }
    void OnDestroy() { Default(); }
    void OnClose() { Default(); }
    void OnMove(int, int) { Default(); }
    void OnSize(UINT, int, int) { Default(); }
    void OnPaint() { Default(); }
    BOOL OnEraseBkgnd(CDC*) { return static_cast<BOOL>(Default()); }
    void OnSetFocus(CWnd*) { Default(); }
    void OnKillFocus(CWnd*) { Default(); }
    void OnShowWindow(BOOL, UINT) { Default(); }
    void OnTimer(UINT_PTR) { Default(); }
    void OnHScroll(UINT, UINT, CScrollBar*) { Default(); }
    void OnVScroll(UINT, UINT, CScrollBar*) { Default(); }
    void OnKeyDown(UINT, UINT, UINT) { Default(); }
    void OnKeyUp(UINT, UINT, UINT) { Default(); }
    void OnChar(UINT, UINT, UINT) { Default(); }
    BOOL OnSetCursor(CWnd*, UINT, UINT) { return static_cast<BOOL>(Default()); }
    void OnCaptureChanged(CWnd*) { Default(); }
    void OnMouseLeave() { Default(); }
    void OnMouseMove(UINT, CPoint) { Default(); }
    void OnLButtonDown(UINT, CPoint) { Default(); }
    void OnLButtonUp(UINT, CPoint) { Default(); }
    void OnLButtonDblClk(UINT, CPoint) { Default(); }
    void OnRButtonDown(UINT, CPoint) { Default(); }
    void OnRButtonUp(UINT, CPoint) { Default(); }
    void OnRButtonDblClk(UINT, CPoint) { Default(); }
    void OnMButtonDown(UINT, CPoint) { Default(); }
    void OnMButtonUp(UINT, CPoint) { Default(); }
    BOOL OnMouseWheel(UINT, short, CPoint) { return static_cast<BOOL>(Default()); }
    static const AFX_MSGMAP* GetThisMessageMap();
    const AFX_MSGMAP* GetMessageMap() const override;

  private:
    friend class CRectTracker;
    LRESULT OnPeerMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnPeerNotify(UINT id, UINT code) override;
    void OnPeerGone() override;
    void Tear(bool peerGone);
    void Forget();
    void RemoveChild(CWnd* child);
    LRESULT OnSetFontMessage(WPARAM wParam);
    void ReportPaintFault(const std::string& fault);

    zel::WindowPeer* peer_ = nullptr;
    std::unique_ptr<zel::WindowPeer> ownedPeer_;
    CWnd* parent_ = nullptr;
    CWnd* owner_ = nullptr;
    std::vector<CWnd*> children_;
    UINT id_ = 0;
    DWORD style_ = 0;
    DWORD extendedStyle_ = 0;
    bool destroying_ = false;
    std::string paintFault_;       // told already
    std::shared_ptr<CWnd*> self_;  // for messages that are on their way when the window goes
};

// Sends the mouse back to the windows under it.
BOOL ReleaseCapture();

// A context on a window's client area, outside of painting. Throws CResourceException* for a window without a
// peer.
class CClientDC : public CDC {
    DECLARE_DYNAMIC(CClientDC)
  public:
    explicit CClientDC(CWnd* window);
};

// A context for painting a window in answer to WM_PAINT, clipped to what has to be painted; the ground is
// erased already.
class CPaintDC : public CDC {
    DECLARE_DYNAMIC(CPaintDC)
  public:
    explicit CPaintDC(CWnd* window);
    ~CPaintDC() override;

    struct {
        CRect rcPaint;
        BOOL fErase = FALSE;
    } m_ps;

  private:
    CWnd* window_;
};

// Shows the wait cursor while it lives.
class CWaitCursor {
  public:
    CWaitCursor() : previous_(::SetCursor(LoadCursor(IDC_WAIT))) {}
    ~CWaitCursor() { ::SetCursor(previous_); }
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;

  private:
    HCURSOR previous_;
};
