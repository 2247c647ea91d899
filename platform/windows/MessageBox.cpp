#include "platform/windows/WindowState.h"

#include <zel/platform/MessageBox.h>
#include <zel/platform/WindowPeer.h>

#include <cstdio>

namespace {

zel::WindowPeer* OwnerOfBox() {
    CWnd* const focus = CWnd::GetFocus();
    CWnd* const top = focus ? focus->GetTopLevelParent() : nullptr;
    return top ? top->Peer() : nullptr;
}

int ShowInWindow(const std::string& text, UINT type) {
    if (zel::WindowSystem* system = zel::WindowsOrNull())
        return system->ShowMessageBox(OwnerOfBox(), text, type);
    std::fprintf(stderr, "%s\n", text.c_str());
    return zel::CautiousAnswer(type);
}

// Boxes are raised by the layers below too, which know no windows.
const bool installed = (zel::SetMessageBoxWindow(ShowInWindow), true);

}  // namespace
