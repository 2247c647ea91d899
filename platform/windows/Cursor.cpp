#include "platform/windows/WindowState.h"

#include <zel/platform/Cursor.h>

#include <map>

namespace {

std::map<UINT, zel::Cursor>& Cursors() {
    static std::map<UINT, zel::Cursor> cursors = [] {
        std::map<UINT, zel::Cursor> system;
        for (const UINT id : {IDC_ARROW, IDC_IBEAM, IDC_WAIT, IDC_CROSS, IDC_UPARROW, IDC_SIZENWSE,
                              IDC_SIZENESW, IDC_SIZEWE, IDC_SIZENS, IDC_SIZEALL})
            system[id].id = id;
        return system;
    }();
    return cursors;
}

}  // namespace

void zel::RegisterCursor(const Cursor& cursor) {
    Cursors().try_emplace(cursor.id, cursor);
}

HCURSOR LoadCursor(UINT id) {
    const auto found = Cursors().find(id);
    return found != Cursors().end() ? &found->second : nullptr;
}

HCURSOR SetCursor(HCURSOR cursor) {
    zel::WindowState& windows = zel::TheWindows();
    const HCURSOR previous = GetCursor();
    windows.cursor = cursor ? cursor : LoadCursor(IDC_ARROW);
    CWnd* const target = windows.capture ? windows.capture : windows.underMouse;
    if (target && target->Peer()) target->Peer()->SetCursor(*windows.cursor);
    return previous;
}

HCURSOR GetCursor() {
    const HCURSOR cursor = zel::TheWindows().cursor;
    return cursor ? cursor : LoadCursor(IDC_ARROW);
}

BOOL GetCursorPos(POINT* point) {
    zel::WindowSystem* const system = zel::WindowsOrNull();
    if (system) *point = system->CursorPosition();
    return system ? TRUE : FALSE;
}

BOOL SetCursorPos(int x, int y) {
    zel::WindowSystem* const system = zel::WindowsOrNull();
    if (system) system->SetCursorPosition(CPoint(x, y));
    return system ? TRUE : FALSE;
}
