#include <zel/Zel2Edit.h>

IMPLEMENT_DYNAMIC(CZel2Edit, CEdit)

BEGIN_MESSAGE_MAP(CZel2Edit, CEdit)
ON_WM_CREATE()
ON_WM_DESTROY()
ON_WM_CLOSE()
ON_WM_KILLFOCUS()
ON_WM_ERASEBKGND()
END_MESSAGE_MAP()

void CZel2Edit::Store() {
    if (Peer()) GetWindowText(*text_);
}

int CZel2Edit::OnCreate(LPCREATESTRUCT cs) {
    cs->dwExStyle |= WS_EX_TRANSPARENT;
    return CEdit::OnCreate(cs) == -1 ? -1 : 0;
}

// A view that is closed takes the field along without asking the object.
void CZel2Edit::OnDestroy() {
    Store();
    CEdit::OnDestroy();
}

void CZel2Edit::OnClose() {
    Store();
    CEdit::OnClose();
}

void CZel2Edit::OnKillFocus(CWnd* next) {
    Store();
    CEdit::OnKillFocus(next);
}

BOOL CZel2Edit::OnEraseBkgnd(CDC* dc) {
    return CEdit::OnEraseBkgnd(dc);
}
