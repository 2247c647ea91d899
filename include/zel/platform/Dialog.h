// Dialogs and the exchange of data with their controls.
#pragma once

#include <zel/platform/Controls.h>

#include <string>

namespace zel {

// A control of a dialog. The area is in dialog units: a quarter of the average character's width, an eighth
// of its height.
struct DialogItem {
    WindowKind kind = WindowKind::STATIC;
    UINT id = 0xFFFF;
    std::string text;
    CRect area;
    DWORD style = 0;  // WS_CHILD and WS_VISIBLE go without saying
};

// What a dialog looks like.
struct DialogTemplate {
    std::string caption;
    CSize size;  // of the client area, dialog units
    std::vector<DialogItem> items;
};

// Keeps a template as the program's resource of an identifier; a later one replaces it.
void RegisterDialogTemplate(UINT id, DialogTemplate content);
// Null when there is none.
const DialogTemplate* FindDialogTemplate(UINT id);

}  // namespace zel

// One passage of data between a dialog's members and its controls.
class CDataExchange {
  public:
    CDataExchange(CWnd* dialog, BOOL save) : m_bSaveAndValidate(save), m_pDlgWnd(dialog) {}

    // The control of an identifier, which fails from then on when a value is refused. Throws
    // CNotSupportedException* for one that the dialog does not have.
    CWnd* PrepareCtrl(int id);
    CWnd* PrepareEditCtrl(int id) { return PrepareCtrl(id); }
    // Gives the control the focus and throws CUserException*; the user was told why.
    [[noreturn]] void Fail();

    BOOL m_bSaveAndValidate;
    CWnd* m_pDlgWnd;

  private:
    CWnd* last_ = nullptr;
};

// Each moves a value between a control and a member, in the direction of the exchange. Numbers that are none
// are refused with a message.
void DDX_Control(CDataExchange* dx, int id, CWnd& control);
void DDX_Text(CDataExchange* dx, int id, CString& value);
void DDX_Text(CDataExchange* dx, int id, int& value);
void DDX_Text(CDataExchange* dx, int id, double& value);
void DDX_Check(CDataExchange* dx, int id, int& value);
// The number of the chosen button among those that follow `id` up to the next of style WS_GROUP; -1 for none.
void DDX_Radio(CDataExchange* dx, int id, int& value);
void DDX_CBIndex(CDataExchange* dx, int id, int& index);
void DDX_CBString(CDataExchange* dx, int id, CString& value);
void DDX_LBIndex(CDataExchange* dx, int id, int& index);
// Each refuses a value of the control just exchanged, with a message.
void DDV_MinMaxInt(CDataExchange* dx, int value, int least, int most);
void DDV_MinMaxDouble(CDataExchange* dx, double value, double least, double most);
void DDV_MaxChars(CDataExchange* dx, const CString& value, int most);

// A window of controls that the user ends with OK or Cancel.
class CDialog : public CWnd {
    DECLARE_DYNCREATE(CDialog)
  public:
    CDialog() = default;
    // Looks like the template that is registered under an identifier.
    explicit CDialog(UINT templateId, CWnd* parent = nullptr) : templateId_(templateId), owner_(parent) {}
    ~CDialog() override;

    // Shows the dialog and waits for its end; answers what EndDialog was given, IDCANCEL when the program
    // ends. Throws CResourceException* for a template that does not exist, CNotSupportedException* where
    // there are no windows.
    virtual int DoModal();
    using CWnd::Create;
    // Shows it beside other windows, without waiting.
    BOOL Create(UINT templateId, CWnd* parent = nullptr);
    // Ends DoModal.
    void EndDialog(int result);
    zel::WindowKind Kind() const override { return zel::WindowKind::DIALOG; }

    // Prepares the controls; the base puts the members' values into them. FALSE when the focus is set
    // already.
    virtual BOOL OnInitDialog();

  protected:
    // Takes the values over and ends with IDOK, unless one is refused.
    virtual void OnOK();
    virtual void OnCancel();
    // The template; an override makes its own.
    virtual const zel::DialogTemplate* Template() const;
    // A rectangle of dialog units in device pixels.
    static CRect FromDialogUnits(const CRect& units);
    DECLARE_MESSAGE_MAP()
    void OnClose();

  private:
    void MakeWindow(CWnd* owner);
    void MakeControls(const zel::DialogTemplate& content);

    UINT templateId_ = 0;
    CWnd* owner_ = nullptr;
    std::vector<std::unique_ptr<CWnd>> controls_;
    int result_ = IDCANCEL;
    bool ended_ = false;
};

// The platform's font dialog.
class CFontDialog : public CDialog {
    DECLARE_DYNAMIC(CFontDialog)
  public:
    // Edits `font` in place.
    explicit CFontDialog(LOGFONT* font, DWORD flags = CF_EFFECTS | CF_SCREENFONTS, CDC* printer = nullptr,
                         CWnd* parent = nullptr);
    int DoModal() override;
    COLORREF GetColor() const { return m_cf.rgbColors; }
    // Tenths of a point.
    int GetSize() const { return m_cf.iPointSize; }
    CString GetFaceName() const { return m_cf.lpLogFont->lfFaceName; }

    struct {
        LOGFONT* lpLogFont;
        int iPointSize;
        DWORD Flags;
        COLORREF rgbColors;
        CString caption;
    } m_cf;

  private:
    CWnd* owner_;
};
