// Messages that the user must see before the program goes on.
#pragma once

#include <zel/platform/WinTypes.h>

#include <functional>
#include <string>

inline constexpr UINT MB_OK = 0;
inline constexpr int IDOK = 1;

// Shows `text` with the buttons of `type` and answers the one that was pressed. A program without windows
// gets the text on standard error and the answer IDOK; nothing waits. `help` is the help context, 0 for none.
int AfxMessageBox(const char* text, UINT type = MB_OK, UINT help = 0);

namespace zel {

// Shows one message and answers a button.
using MessageBoxHandler = std::function<int(const std::string& text, UINT type)>;

// Replaces what AfxMessageBox does; null goes back to standard error. Answers the handler that was there
// before. For window layers, tests and programs without a display; call it from the thread that draws.
MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler);

}  // namespace zel
