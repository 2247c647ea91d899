// The field in which texts are edited in place.
#pragma once

#include <zel/platform/Controls.h>

// An edit control over a text rectangle, with the drawing showing through. What was typed goes into the text
// when the field loses the focus, is closed, or goes with its window.
class CZel2Edit : public CEdit {
    DECLARE_DYNAMIC(CZel2Edit)
  public:
    // `text` is borrowed and outlives the field.
    explicit CZel2Edit(CString* text) : text_(text) {}
    // Takes what was typed into the text; nothing when the window is gone.
    void Store();

  protected:
    DECLARE_MESSAGE_MAP()
    int OnCreate(LPCREATESTRUCT cs);
    void OnDestroy();
    void OnClose();
    void OnKillFocus(CWnd* next);
    BOOL OnEraseBkgnd(CDC* dc);

  private:
    CString* text_;
};
