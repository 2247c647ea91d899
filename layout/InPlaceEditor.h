// Editing a text where it stands.
#pragma once

#include <zel/Zel2Edit.h>
#include <zel/platform/Geometry.h>

#include <memory>

class DrawFont;
class Zel2;

namespace zel {

// An edit field over an object of a window, and the text that it edits. Goes before both.
class InPlaceEditor {
  public:
    InPlaceEditor(Zel2& owner, CString& text) : owner_(owner), text_(text), textBefore_(text) {}

    // Opens the field over `area` of the owner's window, in device pixels, with the keyboard in it. False
    // where there is no window.
    bool Open(DWORD style, const CRect& area, DrawFont* font);
    // Whether the field's window is there, which the user may have closed.
    bool IsOpen() const { return field_ && field_->Peer(); }
    CZel2Edit* Field() { return field_.get(); }
    // Puts an open field where the text is now, in the size that it has there.
    void Place(const CRect& area, DrawFont* font);
    // Takes what was typed into the text.
    void Store();
    // Stores, closes the field, and tells the owner's parent when the text is another one than at first.
    void Close();

    // The styles of a field for a text that is aligned by DT_* flags: of several lines, or of one.
    static DWORD StyleOf(bool lines, unsigned format);

  private:
    void UseFont(DrawFont* font);

    Zel2& owner_;
    CString& text_;
    CString textBefore_;
    std::unique_ptr<CFont> font_;
    std::unique_ptr<CZel2Edit> field_;
};

}  // namespace zel
