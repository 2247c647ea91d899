#include <zel/platform/Exception.h>
#include <zel/platform/Wnd.h>

#include <climits>

IMPLEMENT_DYNCREATE(CWnd, CObject)
IMPLEMENT_DYNAMIC(CClientDC, CDC)

void CWnd::InvalidateRect(const RECT* area, BOOL erase) {
    if (peer_)
        peer_->Invalidate(area ? CRect(*area) : CRect(INT_MIN, INT_MIN, INT_MAX, INT_MAX), erase != FALSE);
}

CClientDC::CClientDC(CWnd* window) {
    if (!window || !window->Peer()) {
        AfxThrowResourceException("Cannot draw on a window that does not exist on the screen.");
    }
    Attach(zel::CreateDeviceContext(window->Peer()->ClientDevice()));
}
