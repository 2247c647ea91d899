// What the windows of the program have in common.
#pragma once

#include <zel/platform/Exception.h>
#include <zel/platform/Wnd.h>

#include <functional>

namespace zel {

struct WindowState {
    CWnd* capture = nullptr;
    CWnd* focus = nullptr;
    CWnd* underMouse = nullptr;
    HCURSOR cursor = nullptr;
    // Sees each message of the window system first, and keeps those for which it answers true.
    std::function<bool(CWnd*, const MessageArguments&)> filter;
    // The message that is being handled.
    const MessageArguments* current = nullptr;
};

// Windows belong to the user-interface thread, and so does this.
WindowState& TheWindows();

// Tells the user what went wrong, and releases the exception. One that was answered for already is silent.
void ReportException(CException* e);

}  // namespace zel
