#include <zel/platform/MessageBox.h>

#include <cstdio>
#include <new>
#include <utility>

namespace {

// Who answers boxes, and who shows those that nobody answers.
struct Handlers {
    zel::MessageBoxHandler answer;
    zel::MessageBoxHandler window;
};

Handlers& TheHandlers() {
    static Handlers handlers;
    return handlers;
}

}  // namespace

int AfxMessageBox(const char* text, UINT type, UINT) {
    const std::string shown = text ? text : "";
    // Copies: a handler may replace itself.
    for (const zel::MessageBoxHandler& handler : {TheHandlers().answer, TheHandlers().window}) {
        if (handler) return handler(shown, type);
    }
    std::fprintf(stderr, "%s\n", shown.c_str());
    return zel::CautiousAnswer(type);
}

std::string zel::WordsOf(const std::exception& e) {
    return dynamic_cast<const std::bad_alloc*>(&e) ? "There is not enough memory." : e.what();
}

zel::MessageBoxHandler zel::SetMessageBoxHandler(MessageBoxHandler handler) {
    return std::exchange(TheHandlers().answer, std::move(handler));
}

void zel::SetMessageBoxWindow(MessageBoxHandler show) {
    TheHandlers().window = std::move(show);
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
