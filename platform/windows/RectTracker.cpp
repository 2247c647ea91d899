#include "platform/windows/WindowState.h"

#include <zel/platform/RectTracker.h>

namespace {

// The outline under the mouse; drawing it twice removes it. A rectangle without an area has none.
void DrawOutline(CWnd* window, CRect outline) {
    outline.NormalizeRect();
    if (outline.IsRectEmpty() || !window->Peer()) return;
    CClientDC dc(window);
    dc.SetROP2(R2_NOTXORPEN);
    CPen dotted(PS_DOT, 1, RGB(0, 0, 0));
    CPen* previous = dc.SelectObject(&dotted);
    dc.SelectStockObject(NULL_BRUSH);
    dc.Rectangle(&outline);
    dc.SelectObject(previous);
}

// One rubber band from press to release: reads the messages of the window and eats them.
class Band {
  public:
    Band(CWnd* window, const CPoint& anchor) : window_(window), rect_(anchor, anchor) {}

    bool Take(CWnd* window, const zel::MessageArguments& args) {
        switch (args.message) {
            case WM_MOUSEMOVE:
            case WM_LBUTTONUP:
                if (window != window_) return true;
                MoveTo(args.Point());
                if (args.message == WM_LBUTTONUP) End(false);
                return true;
            case WM_KEYDOWN:
                if (args.wParam != VK_ESCAPE) return true;
                End(true);
                return true;
            case WM_RBUTTONDOWN:
                End(true);
                return true;
            case WM_CAPTURECHANGED:
                End(true);
                return false;
            case WM_LBUTTONDOWN:
            case WM_LBUTTONDBLCLK:
            case WM_RBUTTONUP:
            case WM_MOUSEWHEEL:
                return true;
            default:
                return false;
        }
    }
    void Erase() { DrawOutline(window_, rect_); }
    bool Done() const { return done_ || !window_->Peer(); }
    bool Cancelled() const { return cancelled_ || !done_; }
    const CRect& Rect() const { return rect_; }

  private:
    void MoveTo(const CPoint& point) {
        DrawOutline(window_, rect_);
        rect_.right = point.x;
        rect_.bottom = point.y;
        DrawOutline(window_, rect_);
    }
    void End(bool cancelled) {
        done_ = true;
        cancelled_ = cancelled;
        zel::Windows().WakeLoop();
    }

    CWnd* window_;
    CRect rect_;
    bool done_ = false;
    bool cancelled_ = false;
};

}  // namespace

BOOL CRectTracker::TrackRubberBand(CWnd* window, CPoint anchor, BOOL allowInvert) {
    zel::WindowState& windows = zel::TheWindows();
    if (!window->Peer() || windows.filter) return FALSE;
    // What is to be painted must not be painted over the outline.
    window->UpdateWindow();
    Band band(window, anchor);
    const std::weak_ptr<CWnd*> alive = window->self_;
    const bool created = window->self_ != nullptr;
    window->SetCapture();
    windows.filter = [&](CWnd* to, const zel::MessageArguments& args) { return band.Take(to, args); };
    zel::Windows().RunLoop([&] { return (created && alive.expired()) || band.Done(); });
    windows.filter = nullptr;
    if (created && alive.expired()) return FALSE;
    band.Erase();
    if (CWnd::GetCapture() == window) ReleaseCapture();
    CRect result = band.Rect();
    if (!allowInvert) result.NormalizeRect();
    CRect area = result;
    area.NormalizeRect();
    if (band.Cancelled() || area.IsRectEmpty()) return FALSE;
    m_rect = result;
    return TRUE;
}
