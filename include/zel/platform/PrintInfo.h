// What a printing pass is told.
#pragma once

#include <zel/platform/Geometry.h>

struct CPrintInfo {
    UINT m_nCurPage = 1;  // counted from 1
    BOOL m_bPreview = FALSE;
    BOOL m_bContinuePrinting = TRUE;
    CRect m_rectDraw;  // the printable area in logical units

    void SetMinPage(UINT page) { minPage_ = page; }
    void SetMaxPage(UINT page) { maxPage_ = page; }
    UINT GetMinPage() const { return minPage_; }
    UINT GetMaxPage() const { return maxPage_; }

  private:
    UINT minPage_ = 1;
    UINT maxPage_ = 0xFFFF;
};
