// Objects that take messages and commands, and the maps that say which.
#pragma once

#include <zel/platform/Geometry.h>
#include <zel/platform/Object.h>
#include <zel/platform/WinMessages.h>

class CCmdTarget;
class CCmdUI;
class CWnd;

namespace zel {

// A message on its way through the maps.
struct MessageArguments {
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    LRESULT result = 0;
    CCmdUI* ui = nullptr;  // of an update

    CPoint Point() const {
        return {static_cast<std::int16_t>(LOWORD(static_cast<WPARAM>(lParam))),
                static_cast<std::int16_t>(HIWORD(static_cast<WPARAM>(lParam)))};
    }
    UINT Flags() const { return static_cast<UINT>(wParam); }
};

}  // namespace zel

// One line of a map: the handler answers whether the message ends with it.
struct AFX_MSGMAP_ENTRY {
    UINT message;
    int code;
    UINT firstId;
    UINT lastId;
    bool (*invoke)(CCmdTarget*, zel::MessageArguments&);
};

struct AFX_MSGMAP {
    const AFX_MSGMAP* (*base)();
    const AFX_MSGMAP_ENTRY* entries;  // the last one has no handler

    // The nearest entry for a message, in this map or those below it; null when there is none.
    const AFX_MSGMAP_ENTRY* Find(UINT message, int code, UINT id) const;
};

struct AFX_CMDHANDLERINFO {
    CCmdTarget* pTarget = nullptr;
};

inline constexpr int CN_COMMAND = 0;
inline constexpr int CN_UPDATE_COMMAND_UI = -1;

// Receives commands through its message map, and through OnCmdMsg whatever else it routes them to.
class CCmdTarget : public CObject {
    DECLARE_DYNAMIC(CCmdTarget)
  public:
    // Offers a command (`code` CN_COMMAND or a control's notification) or an update of what shows it (`extra`
    // is the CCmdUI then) to this object; TRUE when it took it. With `info` it is only asked who would.
    virtual BOOL OnCmdMsg(UINT id, int code, void* extra, AFX_CMDHANDLERINFO* info);

  protected:
    static const AFX_MSGMAP* GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;
};

// What an update handler says about the command that it is asked for. The base passes everything to nobody;
// toolbars and menus override what they can show.
class CCmdUI {
  public:
    explicit CCmdUI(UINT id = 0) : m_nID(id) {}
    virtual ~CCmdUI() = default;

    virtual void Enable(BOOL on = TRUE);
    virtual void SetCheck(int check = 1);
    virtual void SetRadio(BOOL on = TRUE) { SetCheck(on ? 1 : 0); }
    virtual void SetText(const char*) {}
    // Says that the handler does not know: others are asked.
    void ContinueRouting() { m_bContinueRouting = TRUE; }
    // Asks `target`; what nobody handles is disabled when `disableUnhandled`.
    BOOL DoUpdate(CCmdTarget* target, BOOL disableUnhandled);

    UINT m_nID;
    BOOL m_bEnableChanged = FALSE;
    BOOL m_bContinueRouting = FALSE;
    BOOL m_bEnabled = TRUE;
    int m_nCheck = 0;
};

#define afx_msg

#define DECLARE_MESSAGE_MAP()                     \
  protected:                                      \
    static const AFX_MSGMAP* GetThisMessageMap(); \
    const AFX_MSGMAP* GetMessageMap() const override;

#define BEGIN_MESSAGE_MAP(theClass, baseClass)          \
    const AFX_MSGMAP* theClass::GetMessageMap() const { \
        return GetThisMessageMap();                     \
    }                                                   \
    const AFX_MSGMAP* theClass::GetThisMessageMap() {   \
        using ThisClass = theClass;                     \
        using TheBaseClass = baseClass;                 \
        static const AFX_MSGMAP_ENTRY entries[] = {
#define END_MESSAGE_MAP()                                                                   \
    { 0, 0, 0, 0, nullptr }                                                                 \
    }                                                                                       \
    ;                                                                                       \
    static const AFX_MSGMAP map{[] { return TheBaseClass::GetThisMessageMap(); }, entries}; \
    return &map;                                                                            \
    }

// An entry whose handler is `call`, an expression on `self` (the object) and `args`.
#define ZEL_MAP_ENTRY(message, code, first, last, call)                                      \
    {message, code, first, last,                                                             \
     []([[maybe_unused]] CCmdTarget* target, [[maybe_unused]] zel::MessageArguments& args) { \
         [[maybe_unused]] auto* self = static_cast<ThisClass*>(target);                      \
         call;                                                                               \
         return true;                                                                        \
     }},
#define ZEL_MAP_MESSAGE(message, call) ZEL_MAP_ENTRY(message, 0, 0, 0, call)

#define ON_MESSAGE(message, handler) \
    ZEL_MAP_MESSAGE(message, args.result = self->handler(args.wParam, args.lParam))
#define ON_COMMAND(id, handler) ZEL_MAP_ENTRY(WM_COMMAND, CN_COMMAND, id, id, self->handler())
#define ON_COMMAND_RANGE(first, last, handler) \
    ZEL_MAP_ENTRY(WM_COMMAND, CN_COMMAND, first, last, self->handler(static_cast<UINT>(args.wParam)))
#define ON_UPDATE_COMMAND_UI(id, handler) \
    ZEL_MAP_ENTRY(WM_COMMAND, CN_UPDATE_COMMAND_UI, id, id, self->handler(args.ui))
#define ON_UPDATE_COMMAND_UI_RANGE(first, last, handler) \
    ZEL_MAP_ENTRY(WM_COMMAND, CN_UPDATE_COMMAND_UI, first, last, self->handler(args.ui))
#define ON_CONTROL(code, id, handler) ZEL_MAP_ENTRY(WM_COMMAND, code, id, id, self->handler())
#define ON_BN_CLICKED(id, handler) ON_CONTROL(BN_CLICKED, id, handler)
#define ON_EN_CHANGE(id, handler) ON_CONTROL(EN_CHANGE, id, handler)
#define ON_EN_KILLFOCUS(id, handler) ON_CONTROL(EN_KILLFOCUS, id, handler)
#define ON_CBN_SELCHANGE(id, handler) ON_CONTROL(CBN_SELCHANGE, id, handler)
#define ON_LBN_SELCHANGE(id, handler) ON_CONTROL(LBN_SELCHANGE, id, handler)
#define ON_LBN_DBLCLK(id, handler) ON_CONTROL(LBN_DBLCLK, id, handler)

#define ON_WM_CREATE() \
    ZEL_MAP_MESSAGE(WM_CREATE, args.result = self->OnCreate(reinterpret_cast<CREATESTRUCT*>(args.lParam)))
#define ON_WM_DESTROY() ZEL_MAP_MESSAGE(WM_DESTROY, self->OnDestroy())
#define ON_WM_CLOSE() ZEL_MAP_MESSAGE(WM_CLOSE, self->OnClose())
#define ON_WM_MOVE() ZEL_MAP_MESSAGE(WM_MOVE, self->OnMove(args.Point().x, args.Point().y))
// Widths and heights have no sign.
#define ON_WM_SIZE()                                                                              \
    ZEL_MAP_MESSAGE(WM_SIZE, self->OnSize(args.Flags(), LOWORD(static_cast<WPARAM>(args.lParam)), \
                                          HIWORD(static_cast<WPARAM>(args.lParam))))
#define ON_WM_PAINT() ZEL_MAP_MESSAGE(WM_PAINT, self->OnPaint())
#define ON_WM_ERASEBKGND() \
    ZEL_MAP_MESSAGE(WM_ERASEBKGND, args.result = self->OnEraseBkgnd(reinterpret_cast<CDC*>(args.wParam)))
#define ON_WM_SETFOCUS() ZEL_MAP_MESSAGE(WM_SETFOCUS, self->OnSetFocus(reinterpret_cast<CWnd*>(args.wParam)))
#define ON_WM_KILLFOCUS() \
    ZEL_MAP_MESSAGE(WM_KILLFOCUS, self->OnKillFocus(reinterpret_cast<CWnd*>(args.wParam)))
#define ON_WM_SHOWWINDOW() ZEL_MAP_MESSAGE(WM_SHOWWINDOW, self->OnShowWindow(args.wParam != 0, 0))
#define ON_WM_TIMER() ZEL_MAP_MESSAGE(WM_TIMER, self->OnTimer(args.wParam))
#define ON_WM_HSCROLL() \
    ZEL_MAP_MESSAGE(WM_HSCROLL, self->OnHScroll(LOWORD(args.wParam), static_cast<UINT>(args.lParam), nullptr))
#define ON_WM_VSCROLL() \
    ZEL_MAP_MESSAGE(WM_VSCROLL, self->OnVScroll(LOWORD(args.wParam), static_cast<UINT>(args.lParam), nullptr))
#define ON_WM_KEYDOWN() \
    ZEL_MAP_MESSAGE(WM_KEYDOWN, self->OnKeyDown(args.Flags(), 1, static_cast<UINT>(args.lParam)))
#define ON_WM_KEYUP() \
    ZEL_MAP_MESSAGE(WM_KEYUP, self->OnKeyUp(args.Flags(), 1, static_cast<UINT>(args.lParam)))
#define ON_WM_CHAR() ZEL_MAP_MESSAGE(WM_CHAR, self->OnChar(args.Flags(), 1, static_cast<UINT>(args.lParam)))
#define ON_WM_SETCURSOR()                                                                                   \
    ZEL_MAP_MESSAGE(WM_SETCURSOR, args.result = self->OnSetCursor(reinterpret_cast<CWnd*>(args.wParam),     \
                                                                  LOWORD(static_cast<WPARAM>(args.lParam)), \
                                                                  HIWORD(static_cast<WPARAM>(args.lParam))))
#define ON_WM_CAPTURECHANGED() \
    ZEL_MAP_MESSAGE(WM_CAPTURECHANGED, self->OnCaptureChanged(reinterpret_cast<CWnd*>(args.lParam)))
#define ON_WM_MOUSELEAVE() ZEL_MAP_MESSAGE(WM_MOUSELEAVE, self->OnMouseLeave())
#define ON_WM_MOUSEMOVE() ZEL_MAP_MESSAGE(WM_MOUSEMOVE, self->OnMouseMove(args.Flags(), args.Point()))
#define ON_WM_LBUTTONDOWN() ZEL_MAP_MESSAGE(WM_LBUTTONDOWN, self->OnLButtonDown(args.Flags(), args.Point()))
#define ON_WM_LBUTTONUP() ZEL_MAP_MESSAGE(WM_LBUTTONUP, self->OnLButtonUp(args.Flags(), args.Point()))
#define ON_WM_LBUTTONDBLCLK() \
    ZEL_MAP_MESSAGE(WM_LBUTTONDBLCLK, self->OnLButtonDblClk(args.Flags(), args.Point()))
#define ON_WM_RBUTTONDOWN() ZEL_MAP_MESSAGE(WM_RBUTTONDOWN, self->OnRButtonDown(args.Flags(), args.Point()))
#define ON_WM_RBUTTONUP() ZEL_MAP_MESSAGE(WM_RBUTTONUP, self->OnRButtonUp(args.Flags(), args.Point()))
#define ON_WM_RBUTTONDBLCLK() \
    ZEL_MAP_MESSAGE(WM_RBUTTONDBLCLK, self->OnRButtonDblClk(args.Flags(), args.Point()))
#define ON_WM_MBUTTONDOWN() ZEL_MAP_MESSAGE(WM_MBUTTONDOWN, self->OnMButtonDown(args.Flags(), args.Point()))
#define ON_WM_MBUTTONUP() ZEL_MAP_MESSAGE(WM_MBUTTONUP, self->OnMButtonUp(args.Flags(), args.Point()))
#define ON_WM_MOUSEWHEEL()                            \
    ZEL_MAP_MESSAGE(WM_MOUSEWHEEL,                    \
                    args.result = self->OnMouseWheel( \
                        LOWORD(args.wParam), static_cast<std::int16_t>(HIWORD(args.wParam)), args.Point()))
