#include "platform/windows/WindowState.h"

#include <zel/platform/FrameWnd.h>
#include <zel/platform/GraphicsDevice.h>
#include <zel/platform/View.h>

#include <string>

void CView::OnPrepareDC(CDC*, CPrintInfo* info) {
    constexpr UINT kUnknown = 0xFFFF;
    if (info && info->GetMaxPage() == kUnknown) info->m_bContinuePrinting = info->m_nCurPage == 1;
}

BOOL CView::OnPreparePrinting(CPrintInfo*) {
    return TRUE;
}
void CView::OnBeginPrinting(CDC*, CPrintInfo*) {}
void CView::OnPrint(CDC* dc, CPrintInfo*) {
    OnDraw(dc);
}
void CView::OnEndPrinting(CDC*, CPrintInfo*) {}

namespace {

zel::WindowPeer* OwnerOf(CView& view) {
    return view.GetTopLevelParent()->Peer();
}

// Takes the settings of a page back at its end.
class PageSettings {
  public:
    explicit PageSettings(CDC& dc) : dc_(dc) { dc_.SaveDC(); }
    ~PageSettings() {
        dc_.Flush();
        dc_.RestoreDC(-1);
    }
    PageSettings(const PageSettings&) = delete;
    PageSettings& operator=(const PageSettings&) = delete;

  private:
    CDC& dc_;
};

}  // namespace

std::string CView::PrintTitle() {
    const CDocument* document = GetDocument();
    if (document && !document->GetTitle().IsEmpty()) return document->GetTitle().GetString();
    CWnd* const frame = GetParentFrame();
    return frame ? frame->GetWindowText().GetString() : "Drawing";
}

BOOL CView::DoPreparePrinting(CPrintInfo* info) {
    if (info->m_bPreview) return TRUE;
    zel::PrintRequest request{.title = PrintTitle(),
                              .direct = info->m_bDirect != FALSE,
                              .firstPage = info->GetMinPage(),
                              .lastPage = info->GetMaxPage(),
                              .fromPage = info->GetMinPage(),
                              .toPage = info->GetMaxPage()};
    info->printer = zel::Windows().OpenPrinter(OwnerOf(*this), request);
    if (!info->printer) return FALSE;
    info->SetPages(request.fromPage, request.toPage);
    return TRUE;
}

void CView::DrawPages(zel::DocumentDevice& pages, CPrintInfo& info) {
    CDC dc(pages);
    dc.m_bPrinting = TRUE;
    OnBeginPrinting(&dc, &info);
    struct End {
        CView& view;
        CDC& dc;
        CPrintInfo& info;
        ~End() { view.OnEndPrinting(&dc, &info); }
    };
    {
        const End end{*this, dc, info};
        const UINT last = std::min(info.GetToPage(), info.GetMaxPage());
        for (UINT page = std::max(info.GetFromPage(), info.GetMinPage()); page <= last; ++page) {
            const PageSettings settings(dc);
            info.m_nCurPage = page;
            info.m_bContinuePrinting = TRUE;
            OnPrepareDC(&dc, &info);
            if (!info.m_bContinuePrinting) break;
            if (page > info.GetFromPage()) pages.NewPage();
            info.m_rectDraw = CRect(0, 0, dc.GetDeviceCaps(HORZRES), dc.GetDeviceCaps(VERTRES));
            dc.DPtoLP(&info.m_rectDraw);
            OnPrint(&dc, &info);
        }
    }
    dc.Flush();
    pages.Finish();
}

void CView::PrintTo(zel::DocumentDevice& pages) {
    CPrintInfo info;
    info.m_bPreview = TRUE;  // nobody is asked for a printer
    if (!OnPreparePrinting(&info)) return;
    info.m_bPreview = FALSE;
    DrawPages(pages, info);
}

void CView::Print(bool direct) {
    CPrintInfo info;
    info.m_bDirect = direct ? TRUE : FALSE;
    if (!OnPreparePrinting(&info)) return;
    if (!info.printer && !DoPreparePrinting(&info)) return;
    DrawPages(*info.printer, info);
}

void CView::OnFilePrint() {
    Print(false);
}
void CView::OnFilePrintDirect() {
    Print(true);
}

void CView::OnFilePrintPreview() {
    CPrintInfo info;
    info.m_bPreview = TRUE;
    if (!OnPreparePrinting(&info)) return;
    zel::Windows().Preview(OwnerOf(*this), PrintTitle(), [&](zel::DocumentDevice& pages) {
        // The window system calls this from its events, which an exception must not pass through.
        try {
            CPrintInfo pass = info;
            DrawPages(pages, pass);
        } catch (CException* e) {
            zel::ReportException(e);
        }
    });
}
