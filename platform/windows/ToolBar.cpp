#include <zel/platform/Controls.h>

#include <algorithm>

IMPLEMENT_DYNCREATE(CToolBar, CWnd)

BEGIN_MESSAGE_MAP(CToolBar, CWnd)
ON_MESSAGE(WM_IDLEUPDATECMDUI, OnIdleUpdate)
END_MESSAGE_MAP()

BOOL CToolBar::Create(CWnd* parent, DWORD style, UINT id) {
    return CreateEx(0, "TOOLBAR", nullptr, style, CRect(), parent, id);
}

BOOL CToolBar::SetButtons(const UINT* ids, int count) {
    buttons_.assign(static_cast<std::size_t>(std::max(count, 0)), {});
    for (int i = 0; i < GetCount(); ++i) {
        zel::ToolButton& button = buttons_[static_cast<std::size_t>(i)];
        button.id = ids ? ids[i] : ID_SEPARATOR;
        if (button.id == ID_SEPARATOR) button.style = TBBS_SEPARATOR;
    }
    Show();
    return TRUE;
}

void CToolBar::Show() {
    if (Peer()) Peer()->SetButtons(buttons_);
}

void CToolBar::SetButtonInfo(int index, UINT id, UINT style, int imageOrWidth) {
    if (!Has(index)) return;
    zel::ToolButton& button = buttons_[static_cast<std::size_t>(index)];
    button.id = id;
    button.style = style;
    button.width = style & TBBS_SEPARATOR ? imageOrWidth : 0;
    Show();
}

void CToolBar::SetButtonText(int index, const char* text) {
    if (!Has(index)) return;
    buttons_[static_cast<std::size_t>(index)].text = text ? text : "";
    Show();
}

void CToolBar::SetButtonImage(int index, Image image) {
    if (!Has(index)) return;
    buttons_[static_cast<std::size_t>(index)].image = [draw = std::move(image)](zel::GraphicsDevice& device,
                                                                                const CRect& area) {
        CDC dc(device);
        draw(dc, area);
        dc.Flush();
    };
    Show();
}

UINT CToolBar::GetItemID(int index) const {
    return Has(index) ? buttons_[static_cast<std::size_t>(index)].id : 0;
}

int CToolBar::CommandToIndex(UINT id) const {
    for (int i = 0; i < GetCount(); ++i) {
        if (GetItemID(i) == id) return i;
    }
    return -1;
}

void CToolBar::GetItemRect(int index, RECT* area) const {
    *area = Has(index) && Peer() ? Peer()->ButtonArea(index) : CRect();
}

void CToolBar::OnUpdateCmdUI(CCmdTarget* target, BOOL disableUnhandled) {
    if (!Peer()) return;
    for (const zel::ToolButton& button : buttons_) {
        if (button.style & TBBS_SEPARATOR) continue;
        CCmdUI state(button.id);
        state.DoUpdate(target, disableUnhandled);
        Peer()->SetButtonState(button.id, state.m_bEnabled != FALSE, state.m_nCheck == 1);
    }
}

LRESULT CToolBar::OnIdleUpdate(WPARAM disableUnhandled, LPARAM) {
    if (GetOwner()) OnUpdateCmdUI(GetOwner(), disableUnhandled != 0);
    return 0;
}
