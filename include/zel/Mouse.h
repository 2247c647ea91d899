// What views and drawable objects tell each other about the mouse.
#pragma once

#include <zel/platform/Geometry.h>

class Zel2;

// The state of the mouse when a view asks; `point` is in device pixels of the window.
struct MouseStatus {
    WORD button = 0;  // 0 none, 1 left, 2 right, 3 middle
    BYTE down = 0;    // 1 when a button is down
    BYTE shift = 0;
    BYTE unused = 0;
    BYTE control = 0;
    CPoint point;
};

// System cursors by their well-known identifiers.
inline constexpr DWORD ZEL_CURSOR_ARROW = 32512;
inline constexpr DWORD ZEL_CURSOR_UPARROW = 32516;
inline constexpr DWORD ZEL_CURSOR_SIZENWSE = 32642;
inline constexpr DWORD ZEL_CURSOR_SIZENESW = 32643;
inline constexpr DWORD ZEL_CURSOR_SIZEWE = 32644;
inline constexpr DWORD ZEL_CURSOR_SIZENS = 32645;
inline constexpr DWORD ZEL_CURSOR_SIZEALL = 32646;

// What a press at the asked point would do. The default is the empty action: nothing hit.
struct MouseAction {
    enum Kind : DWORD { NOTHING = 0, CONTROL_POINT = 1, EDGE = 2, BODY = 3 };

    DWORD cursor = ZEL_CURSOR_ARROW;
    DWORD action = NOTHING;
    LONG index = -1;  // of the control point or edge; 0 for a body
    Zel2* object = nullptr;
};
