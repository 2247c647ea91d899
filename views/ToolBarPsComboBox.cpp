#include "views/ToolImages.h"

#include <zel/ZelView.h>

IMPLEMENT_DYNCREATE(CToolBarPsComboBox, CToolBar)

namespace {

constexpr int kComboWidth = 30;  // dialog units: quarters of a character
constexpr int kCharacters = 4;

}  // namespace

BOOL CToolBarPsComboBox::SetButtonsAndCombos(const UINT* ids, int count) {
    std::vector<UINT> all(ids, ids + count);
    // A gap before each combo box, and its place.
    for (int i = 0; i < 2 * kCombos; ++i) all.push_back(ID_SEPARATOR);
    SetButtons(all.data(), static_cast<int>(all.size()));
    for (int i = 0; i < count; ++i) {
        CToolBar::Image image;
        const char* text = nullptr;
        if (!ToolOf(ids[i], image, text)) continue;
        SetButtonText(i, text);
        SetButtonImage(i, std::move(image));
    }
    const int width = zel::Windows().DialogUnit().cx * kComboWidth / kCharacters * 2;
    for (int i = 0; i < kCombos; ++i) {
        const int place = count + 2 * i + 1;
        SetButtonInfo(place, kFirstCombo + static_cast<UINT>(i), TBBS_SEPARATOR, width);
    }
    for (int i = 0; i < kCombos; ++i) {
        CRect area;
        GetItemRect(count + 2 * i + 1, &area);
        if (!combos_[i].Create(CBS_DROPDOWNLIST | WS_CHILD | WS_VISIBLE, area, this,
                               kFirstCombo + static_cast<UINT>(i)))
            return FALSE;
    }
    return TRUE;
}
