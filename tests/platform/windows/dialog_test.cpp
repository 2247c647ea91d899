#include "FakeWindows.h"
#include "Support.h"

#include <zel/platform/Dialog.h>

#include <gtest/gtest.h>

namespace {

using zel::WindowKind;
using zel::test::FakePeer;
using zel::test::MessageOf;
using zel::test::OnFakeScreen;

constexpr UINT kTemplate = 4001, kCount = 101, kRate = 102, kName = 103, kOn = 104, kFirst = 105,
               kSecond = 106, kKind = 107, kLast = 108;

class Settings : public CDialog {
  public:
    Settings() : CDialog(kTemplate) {}
    int count = 3, on = 1, choice = 1, kind = 0, changes = 0;
    double rate = 0.5;
    CString name = "b";
    CComboBox kinds;

  protected:
    BOOL OnInitDialog() override {
        SubclassDlgItem(0, this);  // there is none, which harms nobody
        CDialog::OnInitDialog();
        kinds.AddString("one");
        kinds.AddString("two");
        kinds.SetCurSel(kind);
        return TRUE;
    }
    void DoDataExchange(CDataExchange* dx) override {
        DDX_Control(dx, kKind, kinds);
        DDX_Text(dx, kCount, count);
        DDV_MinMaxInt(dx, count, 0, 255);
        DDX_Text(dx, kRate, rate);
        DDX_Text(dx, kName, name);
        DDV_MaxChars(dx, name, 3);
        DDX_Check(dx, kOn, on);
        DDX_Radio(dx, kFirst, choice);
        DDX_CBIndex(dx, kKind, kind);
    }
    DECLARE_MESSAGE_MAP()
    void OnChange() { ++changes; }
};

BEGIN_MESSAGE_MAP(Settings, CDialog)
ON_EN_CHANGE(kCount, OnChange)
END_MESSAGE_MAP()

class Dialog : public OnFakeScreen {
  protected:
    Dialog() {
        zel::RegisterDialogTemplate(
            kTemplate,
            {"Settings",
             CSize(100, 80),
             {{WindowKind::STATIC, 0xFFFF, "Count", CRect(4, 8, 40, 16), 0},
              {WindowKind::EDIT, kCount, "", CRect(40, 8, 80, 16), WS_TABSTOP},
              {WindowKind::EDIT, kRate, "", CRect(40, 18, 80, 26), WS_TABSTOP},
              {WindowKind::EDIT, kName, "", CRect(40, 28, 80, 36), WS_TABSTOP},
              {WindowKind::BUTTON, kOn, "On", CRect(4, 38, 40, 46), BS_AUTOCHECKBOX},
              {WindowKind::BUTTON, kFirst, "A", CRect(4, 48, 40, 56), BS_AUTORADIOBUTTON | WS_GROUP},
              {WindowKind::BUTTON, kSecond, "B", CRect(40, 48, 80, 56), BS_AUTORADIOBUTTON},
              {WindowKind::BUTTON, kLast, "Z", CRect(40, 48, 80, 56), BS_AUTORADIOBUTTON | WS_GROUP},
              {WindowKind::COMBO, kKind, "", CRect(4, 58, 80, 70), 0},
              {WindowKind::BUTTON, IDOK, "OK", CRect(4, 70, 40, 80), BS_DEFPUSHBUTTON},
              {WindowKind::BUTTON, IDCANCEL, "Cancel", CRect(50, 70, 90, 80), 0}}});
    }
    void Press(UINT id) { screen_->Control(id).Use(BN_CLICKED); }
};

TEST_F(Dialog, ExchangesItsValues) {
    Settings dialog;
    screen_->script = {[&] {
        EXPECT_EQ(screen_->Newest(WindowKind::DIALOG)->area, CRect(0, 0, 200, 160)) << "dialog units";
        EXPECT_EQ(screen_->Control(kCount).area, CRect(80, 16, 160, 32));
        EXPECT_EQ(screen_->Control(kCount).text, "3");
        EXPECT_EQ(screen_->Control(kRate).text, "0.5");
        EXPECT_EQ(screen_->Control(kOn).check, 1);
        EXPECT_EQ(screen_->Control(kFirst).check, 0);
        EXPECT_EQ(screen_->Control(kSecond).check, 1);
        EXPECT_EQ(screen_->Control(kLast).check, 0) << "another group";
        EXPECT_EQ(screen_->focus, &screen_->Control(kCount));
        EXPECT_EQ(screen_->Newest(WindowKind::DIALOG)->text, "Settings");
        screen_->Control(kCount).Type(" 42 ");
        screen_->Control(kRate).Type("1e3");
        screen_->Control(kName).Type("äb");
        screen_->Control(kOn).check = 0;
        screen_->Control(kSecond).check = 0;
        screen_->Control(kKind).selected = 1;
        Press(IDOK);
    }};
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(dialog.count, 42);
    EXPECT_EQ(dialog.rate, 1000);
    EXPECT_EQ(dialog.name, "äb");
    EXPECT_EQ(dialog.on, 0);
    EXPECT_EQ(dialog.choice, -1) << "no button of the group";
    EXPECT_EQ(dialog.kind, 1);
    EXPECT_EQ(dialog.changes, 1);
    EXPECT_TRUE(screen_->peers.empty());
    screen_->script = {[&] { Press(IDCANCEL); }};
    EXPECT_EQ(dialog.DoModal(), IDCANCEL) << "a dialog can run again";
    EXPECT_EQ(dialog.kinds.Peer(), nullptr);
    screen_->script = {[&] { screen_->Newest(WindowKind::DIALOG)->Send(WM_CLOSE); }};
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_EQ(dialog.DoModal(), IDCANCEL) << "the program ends while the dialog is open";
}

TEST_F(Dialog, RefusesValuesWithAReason) {
    Settings dialog;
    const auto attempt = [&](UINT id, const char* text) {
        screen_->script.emplace_back([=, this] {
            const std::string before = screen_->Control(id).text;
            screen_->Control(id).Type(text);
            Press(IDOK);
            EXPECT_EQ(screen_->focus, &screen_->Control(id));
            screen_->Control(id).Type(before);
        });
    };
    attempt(kCount, "256");
    attempt(kCount, "3 apples");
    attempt(kCount, "99999999999");
    attempt(kRate, "");
    attempt(kName, "abcd");
    screen_->script.emplace_back([&] { Press(IDCANCEL); });
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    const std::string integer = "Please enter an integer.";
    EXPECT_EQ(screen_->boxes, (std::vector<std::string>{"Please enter an integer between 0 and 255.", integer,
                                                        integer, "Please enter a number.",
                                                        "Please enter no more than 3 characters."}));
    EXPECT_EQ(dialog.rate, 0.5);
}

TEST_F(Dialog, NeedsItsTemplateAndItsControls) {
    CDialog nowhere(4999);
    EXPECT_EQ(MessageOf<CResourceException>([&] { nowhere.DoModal(); }),
              "Cannot show dialog 4999: the program has no template of that number.");
    class Wrong : public Settings {
        void DoDataExchange(CDataExchange* dx) override { DDX_Check(dx, 999, on); }
    } wrong;
    EXPECT_EQ(MessageOf<CNotSupportedException>([&] { wrong.DoModal(); }),
              "Cannot exchange data with control 999: the dialog has none of that number.");
}

TEST_F(Dialog, ReadsNumbersAndItemsOfControls) {
    CWnd window;
    window.Create(nullptr, "", 0, CRect(0, 0, 99, 99), nullptr, 0);
    CEdit edit;
    edit.Create(ES_NUMBER | WS_CHILD, CRect(), &window, kCount);
    BOOL good = FALSE;
    for (const auto& [text, value, valid] : {std::tuple("-5", -5, TRUE),
                                             {" 7", 7, TRUE},
                                             {"x", 0, FALSE},
                                             {"3000000000", 0, FALSE},
                                             {"", 0, FALSE}}) {
        window.SetDlgItemText(kCount, text);
        EXPECT_EQ(static_cast<int>(window.GetDlgItemInt(kCount, &good)), value) << text;
        EXPECT_EQ(good, valid) << text;
    }
    window.SetDlgItemInt(kCount, static_cast<UINT>(-12));
    EXPECT_EQ(edit.GetWindowText(), "-12");
    edit.SetSel(1, 2);
    edit.ReplaceSel("99");
    EXPECT_EQ(edit.GetWindowText(), "-992");
    window.SetDlgItemText(1234, "nowhere");

    CListBox list;
    list.Create(WS_CHILD, CRect(), &window, 200);
    EXPECT_EQ(list.AddString("b"), 0);
    EXPECT_EQ(list.InsertString(0, "a"), 0);
    EXPECT_EQ(list.InsertString(5, "x"), LB_ERR);
    EXPECT_EQ(list.FindStringExact(-1, "B"), 1);
    EXPECT_EQ(list.SetCurSel(2), LB_ERR);
    EXPECT_EQ(list.SetCurSel(1), 1);
    CString text;
    EXPECT_EQ(list.GetText(0, text), 1);
    EXPECT_EQ(list.DeleteString(-1), LB_ERR);
    list.ResetContent();
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(list.FindStringExact(-1, "a"), LB_ERR);
}

}  // namespace
