// Controls: edit fields, buttons, lists, combo boxes and toolbars.
#pragma once

#include <zel/platform/Wnd.h>

// What the controls share: they are made as children with an identifier, and what the user does with them
// reaches the parent as notifications (ON_BN_CLICKED, ON_EN_CHANGE, ...).
class CStatic : public CWnd {
    DECLARE_DYNCREATE(CStatic)
  public:
    using CWnd::Create;
    BOOL Create(const char* text, DWORD style, const RECT& area, CWnd* parent, UINT id = 0xFFFF);
    zel::WindowKind Kind() const override { return zel::WindowKind::STATIC; }
};

// Push buttons, check boxes, radio buttons and group boxes, by the style.
class CButton : public CWnd {
    DECLARE_DYNCREATE(CButton)
  public:
    using CWnd::Create;
    BOOL Create(const char* text, DWORD style, const RECT& area, CWnd* parent, UINT id);
    int GetCheck() const { return Peer() ? Peer()->GetCheck() : 0; }
    void SetCheck(int check);
    zel::WindowKind Kind() const override { return zel::WindowKind::BUTTON; }
};

// A field of text (UTF-8), of one line or several. Positions are byte offsets.
class CEdit : public CWnd {
    DECLARE_DYNCREATE(CEdit)
  public:
    using CWnd::Create;
    BOOL Create(DWORD style, const RECT& area, CWnd* parent, UINT id);
    void SetSel(int begin, int end, BOOL noScroll = FALSE);
    void GetSel(int& begin, int& end) const;
    void ReplaceSel(const char* text);
    zel::WindowKind Kind() const override { return zel::WindowKind::EDIT; }
};

// What list and combo boxes share: an index out of range answers LB_ERR, which is CB_ERR.
class CItemList : public CWnd {
    DECLARE_DYNAMIC(CItemList)
  public:
    int GetCount() const { return Peer() ? Peer()->ItemCount() : 0; }
    // Appends; answers the index.
    int AddString(const char* text) { return InsertString(-1, text); }
    // Before the item `at`, -1 for the end.
    int InsertString(int at, const char* text);
    int DeleteString(int at);
    void ResetContent();
    int GetCurSel() const { return Peer() ? Peer()->SelectedItem() : LB_ERR; }
    // -1 selects none.
    int SetCurSel(int at);
    int FindStringExact(int after, const char* text) const;

  protected:
    int TextOfItem(int at, CString& text) const;
    bool Has(int at) const { return at >= 0 && at < GetCount(); }
};

class CListBox : public CItemList {
    DECLARE_DYNCREATE(CListBox)
  public:
    using CWnd::Create;
    BOOL Create(DWORD style, const RECT& area, CWnd* parent, UINT id);
    // Answers the length.
    int GetText(int at, CString& text) const { return TextOfItem(at, text); }
    zel::WindowKind Kind() const override { return zel::WindowKind::LIST; }
};

class CComboBox : public CItemList {
    DECLARE_DYNCREATE(CComboBox)
  public:
    using CWnd::Create;
    BOOL Create(DWORD style, const RECT& area, CWnd* parent, UINT id);
    int GetLBText(int at, CString& text) const { return TextOfItem(at, text); }
    zel::WindowKind Kind() const override { return zel::WindowKind::COMBO; }
};

// A row of tool buttons whose commands go to the parent. Buttons show by themselves, through update handlers,
// what can be chosen and what is chosen.
class CToolBar : public CWnd {
    DECLARE_DYNCREATE(CToolBar)
  public:
    using Image = std::function<void(CDC&, const CRect&)>;

    using CWnd::Create;
    BOOL Create(CWnd* parent, DWORD style = WS_CHILD | WS_VISIBLE, UINT id = AFX_IDW_TOOLBAR);
    // One button for each command; ID_SEPARATOR is a gap. Null makes empty places. Answers TRUE.
    BOOL SetButtons(const UINT* ids, int count);
    // Changes a button; a separator's last argument is its width in device pixels, room for a control.
    void SetButtonInfo(int index, UINT id, UINT style, int imageOrWidth);
    void SetButtonText(int index, const char* text);
    // Draws the button's picture into a square of device pixels.
    void SetButtonImage(int index, Image image);
    int GetCount() const { return static_cast<int>(buttons_.size()); }
    UINT GetItemID(int index) const;
    int CommandToIndex(UINT id) const;
    // The place of a button; empty out of range.
    void GetItemRect(int index, RECT* area) const;
    // Asks the update handlers of `target` about every button.
    virtual void OnUpdateCmdUI(CCmdTarget* target, BOOL disableUnhandled);
    zel::WindowKind Kind() const override { return zel::WindowKind::TOOLBAR; }

  protected:
    DECLARE_MESSAGE_MAP()
    LRESULT OnIdleUpdate(WPARAM disableUnhandled, LPARAM);

  private:
    bool Has(int index) const { return index >= 0 && index < GetCount(); }
    void Show();

    std::vector<zel::ToolButton> buttons_;
};
