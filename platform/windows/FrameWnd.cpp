#include <zel/platform/FrameWnd.h>

#include <algorithm>

IMPLEMENT_DYNCREATE(CFrameWnd, CWnd)
IMPLEMENT_DYNAMIC(CWinApp, CCmdTarget)

BEGIN_MESSAGE_MAP(CFrameWnd, CWnd)
ON_WM_SIZE()
ON_WM_SETFOCUS()
ON_WM_DESTROY()
ON_WM_ERASEBKGND()
END_MESSAGE_MAP()

namespace {
CWinApp* theApp = nullptr;
}

CWinApp* AfxGetApp() {
    return theApp;
}
CWnd* AfxGetMainWnd() {
    return theApp ? theApp->m_pMainWnd : nullptr;
}

CWinApp::CWinApp() {
    if (!theApp) theApp = this;
}
CWinApp::~CWinApp() {
    if (theApp == this) theApp = nullptr;
}

int CWinApp::Run() {
    if (InitInstance() && m_pMainWnd) {
        zel::Windows().RunLoop([this] { return m_pMainWnd == nullptr; });
    }
    return ExitInstance();
}

BOOL CFrameWnd::Create(const char* title, const RECT& area, DWORD style) {
    if (!CreateEx(0, "FRAME", title, style & ~WS_VISIBLE, area, nullptr, 0)) return FALSE;
    if (style & WS_VISIBLE) ShowWindow(SW_SHOW);
    return TRUE;
}

BOOL CFrameWnd::SetView(CView* view, CDocument* document) {
    if (view_) view_->DestroyWindow();
    if (document) document->AddView(view);
    CRect area;
    GetClientRect(&area);
    if (!view->Create(nullptr, nullptr, AFX_WS_DEFAULT_VIEW, area, this, AFX_IDW_PANE_FIRST)) return FALSE;
    view_ = view;
    RecalcLayout();
    view->SendMessage(WM_INITIALUPDATE);
    return TRUE;
}

void CFrameWnd::DockControlBar(CToolBar* bar) {
    bars_.push_back(bar);
    bar->ShowWindow(SW_SHOW);
    RecalcLayout();
}

void CFrameWnd::RecalcLayout() {
    CRect rest;
    GetClientRect(&rest);
    for (CToolBar* bar : bars_) {
        // A toolbar may be gone by now, as a child that is no more.
        const bool here = std::find(Children().begin(), Children().end(), bar) != Children().end();
        if (!here || !bar->IsWindowVisible()) continue;
        const int height = bar->Peer()->Area().Height();
        bar->MoveWindow(rest.left, rest.top, rest.Width(), height);
        rest.top = std::min<LONG>(rest.top + height, rest.bottom);
    }
    if (view_) view_->MoveWindow(&rest);
}

BOOL CFrameWnd::OnCmdMsg(UINT id, int code, void* extra, AFX_CMDHANDLERINFO* info) {
    if (view_ && view_->OnCmdMsg(id, code, extra, info)) return TRUE;
    if (CWnd::OnCmdMsg(id, code, extra, info)) return TRUE;
    return theApp ? theApp->OnCmdMsg(id, code, extra, info) : FALSE;
}

void CFrameWnd::OnSize(UINT type, int cx, int cy) {
    CWnd::OnSize(type, cx, cy);
    RecalcLayout();
}

void CFrameWnd::OnSetFocus(CWnd*) {
    if (view_) view_->SetFocus();
}

// View and toolbars cover the frame: erasing it would only flicker.
BOOL CFrameWnd::OnEraseBkgnd(CDC*) {
    return TRUE;
}

// The view is gone with the children, before the frame itself.
void CFrameWnd::OnDestroy() {
    view_ = nullptr;
    bars_.clear();
    CWnd::OnDestroy();
}

void CFrameWnd::PostNcDestroy() {
    if (theApp && theApp->m_pMainWnd == this) {
        theApp->m_pMainWnd = nullptr;
        if (zel::WindowSystem* system = zel::WindowsOrNull()) system->WakeLoop();
    }
    delete this;
}
