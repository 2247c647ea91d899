#include <zel/platform/View.h>

#include <algorithm>

IMPLEMENT_DYNCREATE(CDocument, CCmdTarget)
IMPLEMENT_DYNAMIC(CView, CWnd)

BEGIN_MESSAGE_MAP(CView, CWnd)
ON_WM_PAINT()
ON_MESSAGE(WM_INITIALUPDATE, OnInitialUpdateMessage)
END_MESSAGE_MAP()

CDocument::~CDocument() {
    while (!views_.empty()) RemoveView(views_.back());
}

void CDocument::AddView(CView* view) {
    if (view->document_ == this) return;
    if (view->document_) view->document_->RemoveView(view);
    views_.push_back(view);
    view->document_ = this;
}

void CDocument::RemoveView(CView* view) {
    std::erase(views_, view);
    view->document_ = nullptr;
}

void CDocument::UpdateAllViews(CView* sender, LPARAM hint, CObject* object) {
    const std::vector<CView*> views = views_;
    for (CView* view : views) {
        if (view != sender) view->OnUpdate(sender, hint, object);
    }
}

CView::~CView() {
    if (document_) document_->RemoveView(this);
}

void CView::PostNcDestroy() {
    delete this;
}

void CView::OnInitialUpdate() {
    OnUpdate(nullptr, 0, nullptr);
}
LRESULT CView::OnInitialUpdateMessage(WPARAM, LPARAM) {
    OnInitialUpdate();
    return 0;
}

void CView::OnUpdate(CView*, LPARAM, CObject*) {
    Invalidate();
}

void CView::OnPaint() {
    CPaintDC dc(this);
    OnPrepareDC(&dc);
    OnDraw(&dc);
}

BOOL CView::OnCmdMsg(UINT id, int code, void* extra, AFX_CMDHANDLERINFO* info) {
    if (CWnd::OnCmdMsg(id, code, extra, info)) return TRUE;
    return document_ ? document_->OnCmdMsg(id, code, extra, info) : FALSE;
}
