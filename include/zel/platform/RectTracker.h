// Rubber bands.
#pragma once

#include <zel/platform/Wnd.h>

// Lets the user draw a rectangle with the mouse.
class CRectTracker {
  public:
    CRectTracker() = default;
    explicit CRectTracker(const RECT* rect, UINT = 0) : m_rect(*rect) {}

    // Follows the mouse from `anchor` (client coordinates of `window`) until the button is released, with an
    // outline on the window. TRUE when a rectangle came about, which then stands in m_rect, with reversed
    // corners where the mouse went up or left and `allowInvert`. The Escape key and the right button cancel.
    BOOL TrackRubberBand(CWnd* window, CPoint anchor, BOOL allowInvert = TRUE);

    CRect m_rect;
};
