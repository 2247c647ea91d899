// Messages, styles and identifiers of windows, under their well-known names and values.
#pragma once

#include <zel/platform/MessageBox.h>
#include <zel/platform/WinTypes.h>

using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;

constexpr WORD LOWORD(std::uintptr_t value) {
    return static_cast<WORD>(value & 0xFFFF);
}
constexpr WORD HIWORD(std::uintptr_t value) {
    return static_cast<WORD>(value >> 16 & 0xFFFF);
}
constexpr LPARAM MAKELPARAM(int low, int high) {
    return static_cast<LPARAM>((static_cast<DWORD>(low) & 0xFFFF) | (static_cast<DWORD>(high) & 0xFFFF)
                                                                        << 16);
}
constexpr WPARAM MAKEWPARAM(UINT low, UINT high) {
    return (low & 0xFFFF) | (high & 0xFFFF) << 16;
}

// Messages
inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_MOVE = 0x0003;
inline constexpr UINT WM_SIZE = 0x0005;
inline constexpr UINT WM_SETFOCUS = 0x0007;
inline constexpr UINT WM_KILLFOCUS = 0x0008;
inline constexpr UINT WM_ENABLE = 0x000A;
inline constexpr UINT WM_SETTEXT = 0x000C;
inline constexpr UINT WM_PAINT = 0x000F;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_ERASEBKGND = 0x0014;
inline constexpr UINT WM_SHOWWINDOW = 0x0018;
inline constexpr UINT WM_SETCURSOR = 0x0020;
inline constexpr UINT WM_SETFONT = 0x0030;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT EM_GETSEL = 0x00B0;
inline constexpr UINT EM_SETSEL = 0x00B1;
inline constexpr UINT EM_SCROLLCARET = 0x00B7;
inline constexpr UINT WM_KEYDOWN = 0x0100;
inline constexpr UINT WM_KEYUP = 0x0101;
inline constexpr UINT WM_CHAR = 0x0102;  // the character is a whole code point
inline constexpr UINT WM_COMMAND = 0x0111;
inline constexpr UINT WM_TIMER = 0x0113;
inline constexpr UINT WM_HSCROLL = 0x0114;
inline constexpr UINT WM_VSCROLL = 0x0115;
inline constexpr UINT WM_MOUSEMOVE = 0x0200;
inline constexpr UINT WM_LBUTTONDOWN = 0x0201;
inline constexpr UINT WM_LBUTTONUP = 0x0202;
inline constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
inline constexpr UINT WM_RBUTTONDOWN = 0x0204;
inline constexpr UINT WM_RBUTTONUP = 0x0205;
inline constexpr UINT WM_RBUTTONDBLCLK = 0x0206;
inline constexpr UINT WM_MBUTTONDOWN = 0x0207;
inline constexpr UINT WM_MBUTTONUP = 0x0208;
inline constexpr UINT WM_MBUTTONDBLCLK = 0x0209;
inline constexpr UINT WM_MOUSEWHEEL = 0x020A;  // the point is in screen coordinates
inline constexpr UINT WM_CAPTURECHANGED = 0x0215;
inline constexpr UINT WM_MOUSELEAVE = 0x02A3;
inline constexpr UINT WM_IDLEUPDATECMDUI = 0x0363;
inline constexpr UINT WM_INITIALUPDATE = 0x0364;
inline constexpr UINT WM_USER = 0x0400;

// Keys held during a mouse message
inline constexpr UINT MK_LBUTTON = 0x0001;
inline constexpr UINT MK_RBUTTON = 0x0002;
inline constexpr UINT MK_SHIFT = 0x0004;
inline constexpr UINT MK_CONTROL = 0x0008;
inline constexpr UINT MK_MBUTTON = 0x0010;
inline constexpr int WHEEL_DELTA = 120;

// Virtual keys; letters and digits are their capital characters
inline constexpr UINT VK_BACK = 0x08;
inline constexpr UINT VK_TAB = 0x09;
inline constexpr UINT VK_RETURN = 0x0D;
inline constexpr UINT VK_SHIFT = 0x10;
inline constexpr UINT VK_CONTROL = 0x11;
inline constexpr UINT VK_ESCAPE = 0x1B;
inline constexpr UINT VK_SPACE = 0x20;
inline constexpr UINT VK_PRIOR = 0x21;
inline constexpr UINT VK_NEXT = 0x22;
inline constexpr UINT VK_END = 0x23;
inline constexpr UINT VK_HOME = 0x24;
inline constexpr UINT VK_LEFT = 0x25;
inline constexpr UINT VK_UP = 0x26;
inline constexpr UINT VK_RIGHT = 0x27;
inline constexpr UINT VK_DOWN = 0x28;
inline constexpr UINT VK_DELETE = 0x2E;
inline constexpr UINT VK_F1 = 0x70;

// Window styles
inline constexpr DWORD WS_POPUP = 0x80000000;
inline constexpr DWORD WS_CHILD = 0x40000000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;
inline constexpr DWORD WS_DISABLED = 0x08000000;
inline constexpr DWORD WS_CAPTION = 0x00C00000;
inline constexpr DWORD WS_BORDER = 0x00800000;
inline constexpr DWORD WS_VSCROLL = 0x00200000;
inline constexpr DWORD WS_HSCROLL = 0x00100000;
inline constexpr DWORD WS_SYSMENU = 0x00080000;
inline constexpr DWORD WS_GROUP = 0x00020000;
inline constexpr DWORD WS_TABSTOP = 0x00010000;
inline constexpr DWORD WS_OVERLAPPEDWINDOW = 0x00CF0000;
inline constexpr DWORD WS_EX_TRANSPARENT = 0x00000020;
inline constexpr DWORD WS_EX_CLIENTEDGE = 0x00000200;
inline constexpr DWORD AFX_WS_DEFAULT_VIEW = WS_CHILD | WS_VISIBLE | WS_BORDER;
inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOW = 5;

// Styles of controls
inline constexpr DWORD ES_LEFT = 0x0000;
inline constexpr DWORD ES_CENTER = 0x0001;
inline constexpr DWORD ES_RIGHT = 0x0002;
inline constexpr DWORD ES_MULTILINE = 0x0004;
inline constexpr DWORD ES_AUTOVSCROLL = 0x0040;
inline constexpr DWORD ES_AUTOHSCROLL = 0x0080;
inline constexpr DWORD ES_READONLY = 0x0800;
inline constexpr DWORD ES_WANTRETURN = 0x1000;
inline constexpr DWORD ES_NUMBER = 0x2000;
inline constexpr DWORD BS_PUSHBUTTON = 0x00;
inline constexpr DWORD BS_DEFPUSHBUTTON = 0x01;
inline constexpr DWORD BS_AUTOCHECKBOX = 0x03;
inline constexpr DWORD BS_GROUPBOX = 0x07;
inline constexpr DWORD BS_AUTORADIOBUTTON = 0x09;
inline constexpr DWORD BS_TYPEMASK = 0x0F;
inline constexpr DWORD SS_LEFT = 0x00;
inline constexpr DWORD SS_CENTER = 0x01;
inline constexpr DWORD SS_RIGHT = 0x02;
inline constexpr DWORD CBS_DROPDOWN = 0x0002;
inline constexpr DWORD CBS_DROPDOWNLIST = 0x0003;
inline constexpr DWORD LBS_NOTIFY = 0x0001;
inline constexpr UINT TBBS_BUTTON = 0x00;
inline constexpr UINT TBBS_SEPARATOR = 0x01;
inline constexpr UINT TBBS_CHECKBOX = 0x02;

// Notifications of controls
inline constexpr UINT BN_CLICKED = 0;
inline constexpr UINT BN_DOUBLECLICKED = 5;
inline constexpr UINT EN_SETFOCUS = 0x0100;
inline constexpr UINT EN_KILLFOCUS = 0x0200;
inline constexpr UINT EN_CHANGE = 0x0300;
inline constexpr UINT CBN_SELCHANGE = 1;
inline constexpr UINT CBN_EDITCHANGE = 5;
inline constexpr UINT LBN_SELCHANGE = 1;
inline constexpr UINT LBN_DBLCLK = 2;
inline constexpr int CB_ERR = -1;
inline constexpr int LB_ERR = -1;

// Scrolling
inline constexpr int SB_HORZ = 0;
inline constexpr int SB_VERT = 1;
inline constexpr UINT SB_LINEUP = 0;
inline constexpr UINT SB_LINELEFT = 0;
inline constexpr UINT SB_LINEDOWN = 1;
inline constexpr UINT SB_LINERIGHT = 1;
inline constexpr UINT SB_PAGEUP = 2;
inline constexpr UINT SB_PAGEDOWN = 3;
inline constexpr UINT SB_THUMBPOSITION = 4;
inline constexpr UINT SB_THUMBTRACK = 5;
inline constexpr UINT SB_TOP = 6;
inline constexpr UINT SB_BOTTOM = 7;
inline constexpr UINT SB_ENDSCROLL = 8;

// Commands
inline constexpr UINT ID_SEPARATOR = 0;
inline constexpr UINT ID_FILE_PRINT = 0xE107;
inline constexpr UINT ID_FILE_PRINT_DIRECT = 0xE108;
inline constexpr UINT ID_FILE_PRINT_PREVIEW = 0xE109;
inline constexpr UINT AFX_IDW_TOOLBAR = 0xE800;
inline constexpr UINT AFX_IDW_PANE_FIRST = 0xE900;

// Areas of a window in WM_SETCURSOR
inline constexpr UINT HTCLIENT = 1;

// Kinds of resizing in WM_SIZE
inline constexpr UINT SIZE_RESTORED = 0;
inline constexpr UINT SIZE_MINIMIZED = 1;
inline constexpr UINT SIZE_MAXIMIZED = 2;

// System cursors
inline constexpr UINT IDC_ARROW = 32512;
inline constexpr UINT IDC_IBEAM = 32513;
inline constexpr UINT IDC_WAIT = 32514;
inline constexpr UINT IDC_CROSS = 32515;
inline constexpr UINT IDC_UPARROW = 32516;
inline constexpr UINT IDC_SIZENWSE = 32642;
inline constexpr UINT IDC_SIZENESW = 32643;
inline constexpr UINT IDC_SIZEWE = 32644;
inline constexpr UINT IDC_SIZENS = 32645;
inline constexpr UINT IDC_SIZEALL = 32646;

// Flags of the font dialog
inline constexpr DWORD CF_SCREENFONTS = 0x0001;
inline constexpr DWORD CF_EFFECTS = 0x0100;
