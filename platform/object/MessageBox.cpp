#include <zel/platform/MessageBox.h>

#include <cstdio>
#include <utility>

namespace {

zel::MessageBoxHandler& Handler() {
    static zel::MessageBoxHandler handler;
    return handler;
}

}  // namespace

int AfxMessageBox(const char* text, UINT type, UINT) {
    const char* shown = text ? text : "";
    // A copy: the handler may replace itself.
    if (const zel::MessageBoxHandler handler = Handler()) return handler(shown, type);
    std::fprintf(stderr, "%s\n", shown);
    return IDOK;
}

zel::MessageBoxHandler zel::SetMessageBoxHandler(MessageBoxHandler handler) {
    return std::exchange(Handler(), std::move(handler));
}
