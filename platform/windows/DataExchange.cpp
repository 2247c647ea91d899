#include <zel/platform/Dialog.h>
#include <zel/platform/Exception.h>
#include <zel/platform/MessageBox.h>

#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>

CWnd* CDataExchange::PrepareCtrl(int id) {
    CWnd* const control = m_pDlgWnd->GetDlgItem(id);
    if (!control) {
        AfxThrowNotSupportedException(("Cannot exchange data with control " + std::to_string(id) +
                                       ": the dialog has none of that number.")
                                          .c_str());
    }
    return last_ = control;
}

void CDataExchange::Fail() {
    if (m_bSaveAndValidate && last_) {
        last_->SetFocus();
        if (auto* edit = dynamic_cast<CEdit*>(last_)) edit->SetSel(0, edit->GetWindowText().GetLength());
    }
    throw new CUserException("A value was refused.");
}

namespace {

[[noreturn]] void Refuse(CDataExchange* dx, const std::string& why) {
    AfxMessageBox(why.c_str(), MB_ICONEXCLAMATION);
    dx->Fail();
}

// The whole text, blanks around it left out, as a number.
template <class Number>
bool Parse(const CString& content, Number& value) {
    CString trimmed = content;
    trimmed.TrimLeft();
    trimmed.TrimRight();
    const std::string_view text = trimmed.GetString();
    Number parsed{};
    const auto end = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (end.ec != std::errc() || end.ptr != text.data() + text.size()) return false;
    value = parsed;
    return true;
}

std::string Text(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.15g", value);
    return text;
}

}  // namespace

void DDX_Control(CDataExchange* dx, int id, CWnd& control) {
    if (control.Peer()) return;  // in its place since the first exchange
    dx->PrepareCtrl(id);
    control.SubclassDlgItem(static_cast<UINT>(id), dx->m_pDlgWnd);
}

void DDX_Text(CDataExchange* dx, int id, CString& value) {
    CWnd* control = dx->PrepareEditCtrl(id);
    if (dx->m_bSaveAndValidate) {
        value = control->GetWindowText();
    } else {
        control->SetWindowText(value);
    }
}

void DDX_Text(CDataExchange* dx, int id, int& value) {
    CWnd* control = dx->PrepareEditCtrl(id);
    if (!dx->m_bSaveAndValidate) {
        control->SetWindowText(std::to_string(value).c_str());
    } else if (!Parse(control->GetWindowText(), value)) {
        Refuse(dx, "Please enter an integer.");
    }
}

void DDX_Text(CDataExchange* dx, int id, double& value) {
    CWnd* control = dx->PrepareEditCtrl(id);
    if (!dx->m_bSaveAndValidate) {
        control->SetWindowText(Text(value).c_str());
    } else if (!Parse(control->GetWindowText(), value)) {
        Refuse(dx, "Please enter a number.");
    }
}

void DDX_Check(CDataExchange* dx, int id, int& value) {
    zel::WindowPeer* peer = dx->PrepareCtrl(id)->Peer();
    if (dx->m_bSaveAndValidate) {
        value = peer->GetCheck();
    } else {
        peer->SetCheck(value);
    }
}

void DDX_Radio(CDataExchange* dx, int id, int& value) {
    CWnd* const first = dx->PrepareCtrl(id);
    if (dx->m_bSaveAndValidate) value = -1;
    int button = 0;
    bool inGroup = false;
    for (CWnd* control : dx->m_pDlgWnd->Children()) {
        if (control == first) {
            inGroup = true;
        } else if (inGroup && control->GetStyle() & WS_GROUP) {
            break;
        }
        const bool radio = control->Kind() == zel::WindowKind::BUTTON &&
                           (control->GetStyle() & BS_TYPEMASK) == BS_AUTORADIOBUTTON;
        if (!inGroup || !radio) continue;
        if (!dx->m_bSaveAndValidate) {
            control->Peer()->SetCheck(button == value ? 1 : 0);
        } else if (control->Peer()->GetCheck()) {
            value = button;
        }
        ++button;
    }
}

namespace {

void ExchangeSelection(CDataExchange* dx, int id, int& index) {
    zel::WindowPeer* peer = dx->PrepareCtrl(id)->Peer();
    if (dx->m_bSaveAndValidate) {
        index = peer->SelectedItem();
    } else {
        peer->SelectItem(index >= 0 && index < peer->ItemCount() ? index : -1);
    }
}

}  // namespace

void DDX_CBIndex(CDataExchange* dx, int id, int& index) {
    ExchangeSelection(dx, id, index);
}
void DDX_LBIndex(CDataExchange* dx, int id, int& index) {
    ExchangeSelection(dx, id, index);
}

void DDX_CBString(CDataExchange* dx, int id, CString& value) {
    zel::WindowPeer* peer = dx->PrepareCtrl(id)->Peer();
    if (dx->m_bSaveAndValidate) {
        value = CString(peer->GetText());
        return;
    }
    for (int i = 0; i < peer->ItemCount(); ++i) {
        if (peer->ItemText(i) == value.GetString()) {
            peer->SelectItem(i);
            return;
        }
    }
    peer->SetText(value.GetString());
}

void DDV_MinMaxInt(CDataExchange* dx, int value, int least, int most) {
    if (!dx->m_bSaveAndValidate || (value >= least && value <= most)) return;
    Refuse(dx,
           "Please enter an integer between " + std::to_string(least) + " and " + std::to_string(most) + ".");
}

void DDV_MinMaxDouble(CDataExchange* dx, double value, double least, double most) {
    if (!dx->m_bSaveAndValidate || (value >= least && value <= most)) return;
    Refuse(dx, "Please enter a number between " + Text(least) + " and " + Text(most) + ".");
}

void DDV_MaxChars(CDataExchange* dx, const CString& value, int most) {
    if (!dx->m_bSaveAndValidate || value.GetLength() <= most) return;
    Refuse(dx, "Please enter no more than " + std::to_string(most) + " characters.");
}
