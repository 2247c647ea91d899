#include "platform/windows/WindowState.h"

#include <zel/platform/Dialog.h>
#include <zel/platform/Exception.h>

#include <map>

IMPLEMENT_DYNCREATE(CDialog, CWnd)
IMPLEMENT_DYNAMIC(CFontDialog, CDialog)

BEGIN_MESSAGE_MAP(CDialog, CWnd)
ON_WM_CLOSE()
ON_COMMAND(IDOK, OnOK)
ON_COMMAND(IDCANCEL, OnCancel)
END_MESSAGE_MAP()

namespace zel {
namespace {

std::map<UINT, DialogTemplate>& Templates() {
    static std::map<UINT, DialogTemplate> templates;
    return templates;
}

std::unique_ptr<CWnd> MakeControl(WindowKind kind) {
    switch (kind) {
        case WindowKind::EDIT:
            return std::make_unique<CEdit>();
        case WindowKind::BUTTON:
            return std::make_unique<CButton>();
        case WindowKind::COMBO:
            return std::make_unique<CComboBox>();
        case WindowKind::LIST:
            return std::make_unique<CListBox>();
        case WindowKind::STATIC:
            return std::make_unique<CStatic>();
        default:
            return std::make_unique<CWnd>();
    }
}

}  // namespace

void RegisterDialogTemplate(UINT id, DialogTemplate content) {
    Templates()[id] = std::move(content);
}

const DialogTemplate* FindDialogTemplate(UINT id) {
    const auto found = Templates().find(id);
    return found != Templates().end() ? &found->second : nullptr;
}

}  // namespace zel

CDialog::~CDialog() {
    DestroyWindow();
}

const zel::DialogTemplate* CDialog::Template() const {
    return zel::FindDialogTemplate(templateId_);
}

CRect CDialog::FromDialogUnits(const CRect& units) {
    const CSize unit = zel::Windows().DialogUnit();
    return {MulDiv(units.left, unit.cx, 4), MulDiv(units.top, unit.cy, 8), MulDiv(units.right, unit.cx, 4),
            MulDiv(units.bottom, unit.cy, 8)};
}

void CDialog::MakeControls(const zel::DialogTemplate& content) {
    for (const zel::DialogItem& item : content.items) {
        controls_.push_back(zel::MakeControl(item.kind));
        controls_.back()->CreateEx(0, nullptr, item.text.c_str(), item.style | WS_CHILD | WS_VISIBLE,
                                   FromDialogUnits(item.area), this, item.id);
    }
}

// The controls are there before OnInitDialog, and nothing is shown before it is done.
void CDialog::MakeWindow(CWnd* owner) {
    const zel::DialogTemplate* content = Template();
    if (!content) {
        AfxThrowResourceException(("Cannot show dialog " + std::to_string(templateId_) +
                                   ": the program has no template of that number.")
                                      .c_str());
    }
    const CRect area = FromDialogUnits(CRect(CPoint(), content->size));
    CWnd::Create("DIALOG", content->caption.c_str(), WS_POPUP | WS_CAPTION | WS_SYSMENU, area, owner, 0);
    MakeControls(*content);
    if (!OnInitDialog()) return;
    for (CWnd* control : Children()) {
        if (control->GetStyle() & WS_TABSTOP) {
            control->SetFocus();
            break;
        }
    }
}

int CDialog::DoModal() {
    ended_ = false;
    result_ = IDCANCEL;
    CWnd* const owner = owner_ ? owner_->GetTopLevelParent() : nullptr;
    MakeWindow(owner);
    // OnInitDialog may have ended it.
    if (!ended_) {
        Peer()->SetModal();
        ShowWindow(SW_SHOW);
        zel::Windows().RunLoop([this] { return ended_ || !Peer(); });
    }
    DestroyWindow();
    controls_.clear();
    return result_;
}

BOOL CDialog::Create(UINT templateId, CWnd* parent) {
    templateId_ = templateId;
    MakeWindow(parent ? parent->GetTopLevelParent() : nullptr);
    ShowWindow(SW_SHOW);
    return TRUE;
}

void CDialog::EndDialog(int result) {
    result_ = result;
    ended_ = true;
    if (zel::WindowSystem* system = zel::WindowsOrNull()) system->WakeLoop();
}

BOOL CDialog::OnInitDialog() {
    UpdateData(FALSE);
    return TRUE;
}

void CDialog::OnOK() {
    if (UpdateData(TRUE)) EndDialog(IDOK);
}
void CDialog::OnCancel() {
    EndDialog(IDCANCEL);
}
void CDialog::OnClose() {
    SendMessage(WM_COMMAND, IDCANCEL);
}

CFontDialog::CFontDialog(LOGFONT* font, DWORD flags, CDC*, CWnd* parent)
    : m_cf{font, 0, flags, RGB(0, 0, 0), {}}, owner_(parent) {}

int CFontDialog::DoModal() {
    CWnd* const owner = owner_ ? owner_->GetTopLevelParent() : nullptr;
    const bool chosen = zel::Windows().ChooseFont(owner ? owner->Peer() : nullptr, *m_cf.lpLogFont,
                                                  m_cf.rgbColors, m_cf.iPointSize, m_cf.caption.GetString());
    return chosen ? IDOK : IDCANCEL;
}
