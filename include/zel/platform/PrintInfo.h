// What a printing pass is told.
#pragma once

#include <zel/platform/Geometry.h>

#include <memory>

namespace zel {
class DocumentDevice;
}

struct CPrintInfo {
    UINT m_nCurPage = 1;  // counted from 1
    BOOL m_bPreview = FALSE;
    BOOL m_bDirect = FALSE;  // without asking the user
    BOOL m_bContinuePrinting = TRUE;
    CRect m_rectDraw;  // the printable area in logical units

    void SetMinPage(UINT page) { minPage_ = page; }
    void SetMaxPage(UINT page) { maxPage_ = page; }
    UINT GetMinPage() const { return minPage_; }
    UINT GetMaxPage() const { return maxPage_; }
    // What the user chose to print.
    UINT GetFromPage() const { return fromPage_ > 0 ? fromPage_ : minPage_; }
    UINT GetToPage() const { return toPage_ > 0 ? toPage_ : maxPage_; }
    void SetPages(UINT from, UINT to) {
        fromPage_ = from;
        toPage_ = to;
    }

    // The printer, once one is chosen.
    std::shared_ptr<zel::DocumentDevice> printer;

  private:
    UINT minPage_ = 1;
    UINT maxPage_ = 0xFFFF;
    UINT fromPage_ = 0;
    UINT toPage_ = 0;
};
