#include <zel/platform/Controls.h>

#include <algorithm>

IMPLEMENT_DYNCREATE(CStatic, CWnd)
IMPLEMENT_DYNCREATE(CButton, CWnd)
IMPLEMENT_DYNCREATE(CEdit, CWnd)
IMPLEMENT_DYNAMIC(CItemList, CWnd)
IMPLEMENT_DYNCREATE(CListBox, CItemList)
IMPLEMENT_DYNCREATE(CComboBox, CItemList)

BOOL CStatic::Create(const char* text, DWORD style, const RECT& area, CWnd* parent, UINT id) {
    return CreateEx(0, "STATIC", text, style, area, parent, id);
}

BOOL CButton::Create(const char* text, DWORD style, const RECT& area, CWnd* parent, UINT id) {
    return CreateEx(0, "BUTTON", text, style, area, parent, id);
}

void CButton::SetCheck(int check) {
    if (Peer()) Peer()->SetCheck(check != 0 ? 1 : 0);
}

BOOL CEdit::Create(DWORD style, const RECT& area, CWnd* parent, UINT id) {
    return CreateEx(0, "EDIT", nullptr, style, area, parent, id);
}

void CEdit::SetSel(int begin, int end, BOOL noScroll) {
    SendMessage(EM_SETSEL, static_cast<WPARAM>(begin), end);
    if (!noScroll) SendMessage(EM_SCROLLCARET);
}

void CEdit::GetSel(int& begin, int& end) const {
    const auto selection = Peer() ? Peer()->SelectedText() : std::pair(0, 0);
    begin = selection.first;
    end = selection.second;
}

void CEdit::ReplaceSel(const char* text) {
    int begin = 0, end = 0;
    GetSel(begin, end);
    std::string content = GetWindowText().GetString();
    const std::string inserted = text ? text : "";
    const auto size = static_cast<int>(content.size());
    begin = std::clamp(begin, 0, size);
    end = std::clamp(end, begin, size);
    content.replace(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin), inserted);
    SetWindowText(content.c_str());
    const int caret = begin + static_cast<int>(inserted.size());
    SetSel(caret, caret);
}

int CItemList::InsertString(int at, const char* text) {
    const int count = GetCount();
    if (!Peer() || at > count) return LB_ERR;
    if (at < 0) at = count;
    Peer()->InsertItem(at, text ? text : "");
    return at;
}

int CItemList::DeleteString(int at) {
    if (!Has(at)) return LB_ERR;
    Peer()->RemoveItem(at);
    return GetCount();
}

void CItemList::ResetContent() {
    while (GetCount() > 0) DeleteString(GetCount() - 1);
}

int CItemList::SetCurSel(int at) {
    if (!Peer() || (at != -1 && !Has(at))) return LB_ERR;
    Peer()->SelectItem(at);
    return at;
}

int CItemList::FindStringExact(int after, const char* text) const {
    const int count = GetCount();
    for (int i = 0; i < count; ++i) {
        const int at = (std::max(after, -1) + 1 + i) % count;
        if (CString(Peer()->ItemText(at)).CompareNoCase(text ? text : "") == 0) return at;
    }
    return LB_ERR;
}

int CItemList::TextOfItem(int at, CString& text) const {
    if (!Has(at)) return LB_ERR;
    text = CString(Peer()->ItemText(at));
    return text.GetLength();
}

BOOL CListBox::Create(DWORD style, const RECT& area, CWnd* parent, UINT id) {
    return CreateEx(0, "LISTBOX", nullptr, style, area, parent, id);
}

BOOL CComboBox::Create(DWORD style, const RECT& area, CWnd* parent, UINT id) {
    return CreateEx(0, "COMBOBOX", nullptr, style, area, parent, id);
}
