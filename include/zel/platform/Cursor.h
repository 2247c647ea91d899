// Mouse cursors.
#pragma once

#include <zel/platform/Geometry.h>
#include <zel/platform/WinMessages.h>

#include <cstdint>
#include <vector>

namespace zel {

// A cursor: one of the system (no pixels), or a picture.
struct Cursor {
    UINT id = IDC_ARROW;
    CSize size;
    CPoint hotSpot;
    std::vector<std::uint32_t> pixels;  // rows of size.cx, 0xAARRGGBB premultiplied
};

// Keeps `cursor` as the program's resource of its id; the first of an id wins.
void RegisterCursor(const Cursor& cursor);

}  // namespace zel

// Cursors live as long as the process.
using HCURSOR = const zel::Cursor*;

// The system cursor or registered picture of an identifier; null when there is none.
HCURSOR LoadCursor(UINT id);
// Shows a cursor until the mouse moves on to a window that sets its own; answers the one before. Null hides
// nothing and shows the arrow.
HCURSOR SetCursor(HCURSOR cursor);
HCURSOR GetCursor();
// Screen coordinates, device pixels. FALSE where there are no windows.
BOOL GetCursorPos(POINT* point);
BOOL SetCursorPos(int x, int y);
