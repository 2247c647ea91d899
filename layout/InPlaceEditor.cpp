#include "layout/InPlaceEditor.h"

#include <zel/DrawFont.h>
#include <zel/Zel2.h>

namespace zel {
namespace {

constexpr UINT kEditorId = 3000;

}  // namespace

DWORD InPlaceEditor::StyleOf(bool lines, unsigned format) {
    DWORD style = WS_CHILD | WS_VISIBLE;
    style |= lines ? ES_MULTILINE | ES_AUTOVSCROLL | ES_WANTRETURN : ES_AUTOHSCROLL;
    if (format & DT_CENTER) style |= ES_CENTER;
    if (format & DT_RIGHT) style |= ES_RIGHT;
    return style;
}

bool InPlaceEditor::Open(DWORD style, const CRect& area, DrawFont* font) {
    CWnd* const window = owner_.Window();
    if (!window || !window->Peer()) return false;
    field_ = std::make_unique<CZel2Edit>(&text_);
    if (!field_->Create(style, area, window, kEditorId)) {
        field_.reset();
        return false;
    }
    UseFont(font);
    field_->SetWindowText(text_);
    field_->SetFocus();
    return true;
}

void InPlaceEditor::UseFont(DrawFont* font) {
    if (!font) return;
    CClientDC dc(owner_.Window());
    std::unique_ptr<CFont> made(font->GetFont(&dc));
    field_->SetFont(made.get());
    font_ = std::move(made);
}

void InPlaceEditor::Place(const CRect& area, DrawFont* font) {
    if (!IsOpen() || !owner_.Window()) return;
    UseFont(font);
    field_->MoveWindow(area.left, area.top, area.Width(), area.Height(), TRUE);
}

void InPlaceEditor::Store() {
    if (field_) field_->Store();
}

void InPlaceEditor::Close() {
    if (!field_) return;
    field_->Store();
    // The field loses the focus while it goes, and must not come here again.
    const std::unique_ptr<CZel2Edit> closed = std::move(field_);
    closed->DestroyWindow();
    font_.reset();
    if (text_ != textBefore_ && owner_.GetParent()) owner_.GetParent()->OnNotify(&owner_, Zel2::EDITED);
}

}  // namespace zel
