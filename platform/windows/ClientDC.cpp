#include <zel/platform/Exception.h>
#include <zel/platform/Wnd.h>

IMPLEMENT_DYNAMIC(CClientDC, CDC)
IMPLEMENT_DYNAMIC(CPaintDC, CDC)

namespace {

HDC ContextOf(CWnd* window) {
    if (!window || !window->Peer()) {
        AfxThrowResourceException("Cannot draw on a window that does not exist on the screen.");
    }
    return zel::CreateDeviceContext(window->Peer()->ClientDevice());
}

}  // namespace

CClientDC::CClientDC(CWnd* window) {
    Attach(ContextOf(window));
}

CPaintDC::CPaintDC(CWnd* window) : window_(window) {
    Attach(ContextOf(window));
    const zel::WindowPeer::PaintArea paint = window->Peer()->BeginPaint();
    CRgn clip;
    clip.CreateRectRgn(0, 0, 0, 0);
    zel::SetRegion(static_cast<HRGN>(clip), paint.area);
    SelectClipRgn(&clip);
    m_ps.rcPaint = paint.area.Box();
    m_ps.fErase = paint.erase && !window->SendMessage(WM_ERASEBKGND, reinterpret_cast<WPARAM>(this));
}

CPaintDC::~CPaintDC() {
    Flush();
    DeleteDC();
    if (window_->Peer()) window_->Peer()->EndPaint();
}
