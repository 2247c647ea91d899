#include "platform/windows/WindowState.h"

#include <zel/platform/Exception.h>
#include <zel/platform/MessageBox.h>

#include <exception>
#include <string>
#include <utility>

const AFX_MSGMAP* CWnd::GetThisMessageMap() {
    return CCmdTarget::GetThisMessageMap();
}
const AFX_MSGMAP* CWnd::GetMessageMap() const {
    return GetThisMessageMap();
}

namespace {

// Notes which message is being handled, for Default.
class CurrentMessage {
  public:
    explicit CurrentMessage(const zel::MessageArguments& args)
        : previous_(std::exchange(zel::TheWindows().current, &args)) {}
    ~CurrentMessage() { zel::TheWindows().current = previous_; }
    CurrentMessage(const CurrentMessage&) = delete;
    CurrentMessage& operator=(const CurrentMessage&) = delete;

  private:
    const zel::MessageArguments* previous_;
};

}  // namespace

void zel::ReportException(CException* e) {
    const bool answered = e->IsKindOf(RUNTIME_CLASS(CUserException));
    const std::string message = TakeMessage(e);
    if (!answered) AfxMessageBox(message.empty() ? "The operation failed." : message.c_str(), MB_ICONSTOP);
}

// A box cannot be shown in the middle of painting, and the next painting will most likely fail the same way:
// the fault is told soon, and once.
void CWnd::ReportPaintFault(const std::string& fault) {
    if (fault == paintFault_) return;
    paintFault_ = fault;
    zel::Windows().Post([fault] { AfxMessageBox(fault.c_str(), MB_ICONSTOP); });
}

// A window system cannot be unwound through: what a handler throws ends here.
LRESULT CWnd::OnPeerMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    zel::WindowState& windows = zel::TheWindows();
    if (windows.filter && windows.filter(this, {message, wParam, lParam})) return 0;
    try {
        if (message == WM_SETFOCUS) windows.focus = this;
        if (message == WM_KILLFOCUS && windows.focus == this) windows.focus = nullptr;
        if (message == WM_MOUSEMOVE) {
            windows.underMouse = this;
            const std::weak_ptr<CWnd*> alive = self_;
            const bool created = self_ != nullptr;
            if (!windows.capture)
                SendMessage(WM_SETCURSOR, reinterpret_cast<WPARAM>(this), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
            if (created && alive.expired()) return 0;
        }
        if (message == WM_MOUSELEAVE && windows.underMouse == this) windows.underMouse = nullptr;
        return SendMessage(message, wParam, lParam);
    } catch (CException* e) {
        message == WM_PAINT ? ReportPaintFault(zel::TakeMessage(e)) : zel::ReportException(e);
    } catch (const std::exception& e) {
        const std::string why = zel::WordsOf(e);
        message == WM_PAINT ? ReportPaintFault(why)
                            : static_cast<void>(AfxMessageBox(why.c_str(), MB_ICONSTOP));
    }
    return 0;
}

void CWnd::OnPeerNotify(UINT id, UINT code) {
    CWnd* const receiver = GetOwner() ? GetOwner() : this;
    // A button of a toolbar is a command like one of a menu: it comes from no control.
    const bool command = Kind() == zel::WindowKind::TOOLBAR;
    receiver->OnPeerMessage(WM_COMMAND, MAKEWPARAM(command ? id : id_, code),
                            command ? 0 : reinterpret_cast<LPARAM>(this));
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return WindowProc(message, wParam, lParam);
}

BOOL CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (!self_) return FALSE;
    zel::Windows().Post([window = std::weak_ptr<CWnd*>(self_), message, wParam, lParam] {
        if (const auto alive = window.lock()) (*alive)->OnPeerMessage(message, wParam, lParam);
    });
    return TRUE;
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    return OnWndMsg(message, wParam, lParam, &result) ? result : DefWindowProc(message, wParam, lParam);
}

BOOL CWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    zel::MessageArguments args{message, wParam, lParam};
    const CurrentMessage current(args);
    if (message == WM_COMMAND) return OnCommand(wParam, lParam);
    const AFX_MSGMAP_ENTRY* entry = GetMessageMap()->Find(message, 0, 0);
    if (!entry || !entry->invoke(this, args)) return FALSE;
    *result = args.result;
    return TRUE;
}

BOOL CWnd::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT id = LOWORD(wParam);
    if (lParam != 0) return OnCmdMsg(id, HIWORD(wParam), nullptr, nullptr);
    // A command that is disabled now may have been sent before it was.
    CCmdUI state(id);
    OnCmdMsg(id, CN_UPDATE_COMMAND_UI, &state, nullptr);
    return state.m_bEnabled ? OnCmdMsg(id, CN_COMMAND, nullptr, nullptr) : TRUE;
}

LRESULT CWnd::Default() {
    const zel::MessageArguments* args = zel::TheWindows().current;
    return args ? DefWindowProc(args->message, args->wParam, args->lParam) : 0;
}

LRESULT CWnd::OnSetFontMessage(WPARAM wParam) {
    LOGFONT font{};
    if (zel::GetFont(reinterpret_cast<HFONT>(wParam), font)) peer_->SetFont(font);
    return 0;
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (!peer_) return 0;
    switch (message) {
        case WM_PAINT: {
            const CPaintDC erased(this);
            return 0;
        }
        case WM_ERASEBKGND: {
            auto* dc = reinterpret_cast<CDC*>(wParam);
            CRect all;
            GetClientRect(&all);
            dc->FillSolidRect(
                &all, Kind() == zel::WindowKind::DIALOG ? zel::Windows().DialogColor() : RGB(255, 255, 255));
            return 1;
        }
        case WM_SETCURSOR:
            ::SetCursor(LoadCursor(IDC_ARROW));
            return 0;
        case WM_CLOSE:
            DestroyWindow();
            return 0;
        case WM_SETTEXT:
            peer_->SetText(reinterpret_cast<const char*>(lParam));
            return 1;
        case WM_SETFONT:
            return OnSetFontMessage(wParam);
        case EM_GETSEL:
            return MAKELPARAM(peer_->SelectedText().first, peer_->SelectedText().second);
        case EM_SETSEL:
            peer_->SelectText(static_cast<int>(wParam), static_cast<int>(lParam));
            return 0;
        case EM_SCROLLCARET:
            peer_->ShowCaret();
            return 0;
        default: {
            LRESULT result = 0;
            peer_->Default(message, wParam, lParam, result);
            return result;
        }
    }
}
