#include "platform/windows/WindowState.h"

#include <zel/platform/MessageBox.h>
#include <zel/platform/WindowPeer.h>

#include <cstdio>
#include <utility>

namespace {

zel::MessageBoxHandler& Handler() {
    static zel::MessageBoxHandler handler;
    return handler;
}

zel::WindowPeer* OwnerOfBox() {
    CWnd* const focus = CWnd::GetFocus();
    CWnd* const top = focus ? focus->GetTopLevelParent() : nullptr;
    return top ? top->Peer() : nullptr;
}

}  // namespace

zel::MessageBoxHandler zel::SetMessageBoxHandler(MessageBoxHandler handler) {
    return std::exchange(Handler(), std::move(handler));
}

int zel::CautiousAnswer(UINT type) {
    switch (type & MB_TYPEMASK) {
        case MB_OKCANCEL:
        case MB_YESNOCANCEL:
        case MB_RETRYCANCEL:
            return IDCANCEL;
        case MB_YESNO:
            return IDNO;
        case MB_ABORTRETRYIGNORE:
            return IDABORT;
        default:
            return IDOK;
    }
}

int AfxMessageBox(const char* text, UINT type, UINT) {
    const std::string message = text ? text : "";
    if (Handler()) return Handler()(message, type);
    if (zel::WindowSystem* system = zel::WindowsOrNull())
        return system->ShowMessageBox(OwnerOfBox(), message, type);
    std::fprintf(stderr, "%s\n", message.c_str());
    return zel::CautiousAnswer(type);
}
