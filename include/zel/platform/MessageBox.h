// Message boxes.
#pragma once

#include <zel/platform/WinTypes.h>

#include <exception>
#include <functional>
#include <string>

// Buttons and icons
inline constexpr UINT MB_OK = 0x00;
inline constexpr UINT MB_OKCANCEL = 0x01;
inline constexpr UINT MB_ABORTRETRYIGNORE = 0x02;
inline constexpr UINT MB_YESNOCANCEL = 0x03;
inline constexpr UINT MB_YESNO = 0x04;
inline constexpr UINT MB_RETRYCANCEL = 0x05;
inline constexpr UINT MB_TYPEMASK = 0x0F;
inline constexpr UINT MB_ICONSTOP = 0x10;
inline constexpr UINT MB_ICONQUESTION = 0x20;
inline constexpr UINT MB_ICONEXCLAMATION = 0x30;
inline constexpr UINT MB_ICONINFORMATION = 0x40;
// Answers
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDABORT = 3;
inline constexpr int IDRETRY = 4;
inline constexpr int IDIGNORE = 5;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

// Shows `text` (UTF-8) and waits for an answer: IDOK, IDCANCEL, IDYES, ... Where there are no windows the
// text goes to standard error, and the answer is the one that changes least: cancel or no where the box
// offers it, else OK.
int AfxMessageBox(const char* text, UINT type = MB_OK, UINT helpId = 0);

namespace zel {

// Answers a box in place of the user.
using MessageBoxHandler = std::function<int(const std::string& text, UINT type)>;

// Lets `handler` answer all boxes from now on, for tests and for programs that nobody watches; null shows
// them again. Answers the handler that was there before. User-interface thread only.
MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler);

// Shows the boxes that no handler answers: the window layer's part.
void SetMessageBoxWindow(MessageBoxHandler show);

// What a box says of an exception of the standard library.
std::string WordsOf(const std::exception& e);

// The answer of a box that nobody sees.
int CautiousAnswer(UINT type);

}  // namespace zel
