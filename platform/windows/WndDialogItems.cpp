#include <zel/platform/Dialog.h>
#include <zel/platform/Exception.h>
#include <zel/platform/MessageBox.h>

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

void CWnd::SetDlgItemText(int id, const char* text) {
    if (CWnd* item = GetDlgItem(id)) item->SetWindowText(text);
}

int CWnd::GetDlgItemText(int id, CString& text) const {
    const CWnd* item = GetDlgItem(id);
    text = item ? item->GetWindowText() : CString();
    return text.GetLength();
}

void CWnd::SetDlgItemInt(int id, UINT value, BOOL isSigned) {
    const std::string text = isSigned ? std::to_string(static_cast<int>(value)) : std::to_string(value);
    SetDlgItemText(id, text.c_str());
}

UINT CWnd::GetDlgItemInt(int id, BOOL* valid, BOOL isSigned) const {
    CString text;
    GetDlgItemText(id, text);
    text.TrimLeft();
    text.TrimRight();
    const std::string_view digits = text.GetString();
    long long value = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    const long long least = isSigned ? INT32_MIN : 0;
    const long long most = isSigned ? INT32_MAX : UINT32_MAX;
    const bool good =
        end.ec == std::errc() && end.ptr == digits.data() + digits.size() && value >= least && value <= most;
    if (valid) *valid = good ? TRUE : FALSE;
    return good ? static_cast<UINT>(value) : 0;
}

void CWnd::CheckDlgButton(int id, UINT check) {
    const CWnd* item = GetDlgItem(id);
    if (item && item->Peer()) item->Peer()->SetCheck(static_cast<int>(check));
}

UINT CWnd::IsDlgButtonChecked(int id) const {
    const CWnd* item = GetDlgItem(id);
    return item && item->Peer() ? static_cast<UINT>(item->Peer()->GetCheck()) : 0;
}

BOOL CWnd::UpdateData(BOOL save) {
    CDataExchange exchange(this, save);
    try {
        DoDataExchange(&exchange);
        return TRUE;
    } catch (CUserException* e) {
        e->Delete();  // the user has been told
        return FALSE;
    }
}

BOOL CWnd::SubclassDlgItem(UINT id, CWnd* parent) {
    CWnd* const standIn = parent->GetDlgItem(static_cast<int>(id));
    if (!standIn || peer_) return FALSE;
    peer_ = std::exchange(standIn->peer_, nullptr);
    ownedPeer_ = std::move(standIn->ownedPeer_);
    peer_->Bind(this);
    id_ = id;
    style_ = standIn->style_;
    extendedStyle_ = standIn->extendedStyle_;
    parent_ = std::exchange(standIn->parent_, nullptr);
    standIn->self_.reset();
    standIn->Forget();
    self_ = std::make_shared<CWnd*>(this);
    std::replace(parent->children_.begin(), parent->children_.end(), standIn, this);
    return TRUE;
}

int CWnd::MessageBox(const char* text, const char*, UINT type) {
    return AfxMessageBox(text, type);
}
