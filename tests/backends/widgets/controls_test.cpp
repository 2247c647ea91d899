#include "WidgetSupport.h"

#include <zel/platform/MessageBox.h>
#include <zel/zel.h>

#include <QAbstractScrollArea>
#include <QComboBox>
#include <QFontDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

namespace {

using zel::WindowKind;
using zel::test::OnWidgets;
using zel::widgets::WidgetOf;

constexpr UINT kEdit = 11, kText = 12, kList = 13, kCombo = 14, kFirst = 15, kSecond = 16;

// An edit control that says what it hears.
class Heard : public CEdit {
  public:
    std::string log;

  protected:
    DECLARE_MESSAGE_MAP()
    void OnKillFocus(CWnd* next) {
        log += "left with " + GetWindowText().GetString() + ";";
        CEdit::OnKillFocus(next);
    }
    void OnKeyDown(UINT key, UINT repeat, UINT flags) {
        if (key == VK_F1) {
            log += "help;";
            return;
        }
        CEdit::OnKeyDown(key, repeat, flags);
    }
};

BEGIN_MESSAGE_MAP(Heard, CEdit)
ON_WM_KILLFOCUS()
ON_WM_KEYDOWN()
END_MESSAGE_MAP()

class Host : public CWnd {
  public:
    zel::WindowKind Kind() const override { return WindowKind::FRAME; }
    std::string log;

  protected:
    DECLARE_MESSAGE_MAP()
    void OnEdit() { log += "edit;"; }
    void OnText() { log += "text;"; }
    void OnList() { log += "list;"; }
    void OnCombo() { log += "combo;"; }
    void OnKeyDown(UINT key, UINT, UINT) { log += "key " + std::to_string(key) + ";"; }
    void OnChar(UINT c, UINT, UINT) { log += "char " + std::to_string(c) + ";"; }
    void OnTimer(UINT_PTR id) {
        log += "timer;";
        KillTimer(id);
    }
};

BEGIN_MESSAGE_MAP(Host, CWnd)
ON_EN_CHANGE(kEdit, OnEdit)
ON_EN_CHANGE(kText, OnText)
ON_LBN_SELCHANGE(kList, OnList)
ON_CBN_SELCHANGE(kCombo, OnCombo)
ON_WM_KEYDOWN()
ON_WM_CHAR()
ON_WM_TIMER()
END_MESSAGE_MAP()

class Controls : public OnWidgets {
  protected:
    Controls() {
        host_.Create(nullptr, "Host", WS_OVERLAPPEDWINDOW, CRect(0, 0, 400, 300), nullptr, 0);
        Show(*WidgetOf(host_));
    }
    template <class Widget>
    Widget* Native(const CWnd& window) {
        return qobject_cast<Widget*>(WidgetOf(window));
    }
    Host host_;
};

TEST_F(Controls, EditTextInPlace) {
    Heard line, text;
    line.Create(WS_CHILD | WS_VISIBLE | ES_CENTER, CRect(10, 10, 200, 40), &host_, kEdit);
    text.Create(WS_CHILD | WS_VISIBLE | ES_MULTILINE | ES_WANTRETURN, CRect(10, 60, 200, 160), &host_, kText);
    line.SetFocus();
    Settle();
    EXPECT_EQ(CWnd::GetFocus(), &line);
    QTest::keyClicks(Native<QLineEdit>(line), "12 ");
    EXPECT_EQ(line.GetWindowText(), "12 ");
    QTest::keyClick(Native<QLineEdit>(line), Qt::Key_F1);
    line.SetWindowText("a°µb");
    line.SetSel(1, 5);
    int begin = 0, end = 0;
    line.GetSel(begin, end);
    EXPECT_EQ(std::pair(begin, end), std::pair(1, 5)) << "counted in bytes";
    line.ReplaceSel("é");
    EXPECT_EQ(line.GetWindowText(), "aéb");
    text.SetFocus();
    Settle();
    EXPECT_EQ(line.log, "help;left with aéb;");
    auto* edit = Native<QPlainTextEdit>(text);
    QTest::keyClicks(edit, "x");
    QTest::keyClick(edit, Qt::Key_Return);
    QTest::keyClicks(edit, "y");
    EXPECT_EQ(text.GetWindowText(), "x\ny");
    text.SetSel(0, -1);
    text.GetSel(begin, end);
    EXPECT_EQ(std::pair(begin, end), std::pair(0, 3));
    EXPECT_EQ(host_.log, "edit;edit;edit;text;text;text;") << "what the user does, not what the program does";
    CFont font;
    font.CreateFont(-24, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
    line.SetFont(&font);
    EXPECT_TRUE(Native<QLineEdit>(line)->font().bold());
    EXPECT_NEAR(QFontInfo(Native<QLineEdit>(line)->font()).pixelSize() * line.Peer()->ClientSize().cy /
                    Native<QLineEdit>(line)->height(),
                24, 2)
        << "device pixels";
}

TEST_F(Controls, ListItems) {
    CListBox list;
    CComboBox combo;
    list.Create(WS_CHILD | WS_VISIBLE, CRect(10, 10, 200, 100), &host_, kList);
    combo.Create(WS_CHILD | WS_VISIBLE | CBS_DROPDOWNLIST, CRect(10, 110, 200, 200), &host_, kCombo);
    for (const char* item : {"a", "b", "c"}) {
        list.AddString(item);
        combo.AddString(item);
    }
    EXPECT_EQ(combo.GetCurSel(), -1) << "nothing is selected by itself";
    list.SetCurSel(0);
    combo.SetCurSel(0);
    EXPECT_EQ(host_.log, "");
    QTest::keyClick(Native<QListWidget>(list), Qt::Key_Down);
    QTest::keyClick(Native<QComboBox>(combo), Qt::Key_Down);
    EXPECT_EQ(host_.log, "list;combo;");
    EXPECT_EQ(list.GetCurSel(), 1);
    EXPECT_EQ(combo.GetCurSel(), 1);
    list.DeleteString(0);
    EXPECT_EQ(list.GetCount(), 2);
}

TEST_F(Controls, KeysAndTimersReachTheWindow) {
    QWidget* const area = WidgetOf(host_)->findChild<QAbstractScrollArea*>();
    area->setFocus();
    QTest::keyClick(area, Qt::Key_Delete);
    QKeyEvent accent(QEvent::KeyPress, Qt::Key_Eacute, Qt::NoModifier, QString(QChar(0xE9)));
    QApplication::sendEvent(area, &accent);
    EXPECT_NE(host_.log.find("key 46;"), std::string::npos);
    EXPECT_NE(host_.log.find("char 233;"), std::string::npos);
    host_.log.clear();
    host_.SetTimer(3, 1);
    QTest::qWait(60);
    EXPECT_EQ(host_.log, "timer;");
}

TEST_F(Controls, AnswerMessageBoxes) {
    Soon([] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box) return false;
        EXPECT_EQ(box->text(), "Save <this>?");
        box->button(QMessageBox::No)->click();
        return true;
    });
    EXPECT_EQ(AfxMessageBox("Save <this>?", MB_YESNOCANCEL | MB_ICONQUESTION), IDNO);
    Soon([] {
        QWidget* box = QApplication::activeModalWidget();
        if (box) QTest::keyClick(box, Qt::Key_Escape);
        return box != nullptr;
    });
    EXPECT_EQ(AfxMessageBox("Save?", MB_YESNOCANCEL), IDCANCEL);
}

TEST_F(Controls, PickAColour) {
    COLORREF color = RGB(1, 2, 3);
    CXColorDialog dialog(&host_, "Colour", &color);
    Soon([&] {
        QWidget* const modal = QApplication::activeModalWidget();
        if (!modal || !dialog.Peer()) return false;
        QWidget* const area = modal->findChild<QWidget*>("qt_scrollarea_viewport");
        const double factor = modal->devicePixelRatioF();
        const CRect row = dialog.AreaRect(CXColorDialog::FIXED);
        const QPoint at(static_cast<int>((row.left + row.Width() * 1.5 / 15) / factor),
                        static_cast<int>((row.top + row.bottom) / 2 / factor));
        QTest::mouseClick(area, Qt::LeftButton, {}, at);
        EXPECT_EQ(dialog.Colour(), RGB(255, 0, 0));
        Settle();
        const QImage shown = modal->grab().toImage();
        EXPECT_EQ(QColor(shown.pixel(at * factor)), QColor(255, 0, 0));
        const auto fields = modal->findChildren<QLineEdit*>();
        EXPECT_EQ(fields[0]->text(), "255");
        fields[1]->setFocus();
        fields[1]->selectAll();
        QTest::keyClicks(fields[1], "300");
        EXPECT_EQ(fields[1]->text(), "255");
        QTest::keyClick(fields[1], Qt::Key_Return);
        return true;
    });
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(color, RGB(255, 255, 0));
    Soon([&] {
        if (!dialog.Peer() || !QApplication::activeModalWidget()) return false;
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
        return true;
    });
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
}

TEST_F(Controls, EditPensAndFonts) {
    zel::InstallToolDialogs();
    Zel2Main root;
    root.RegisterPen("Coast", DrawPen::DASH, 5, RGB(1, 2, 3), 0, nullptr);
    root.RegisterFont("Town", "Arial", 100, 0, 0, 0, 0, RGB(9, 9, 9), 0);
    Soon([] {
        QWidget* const modal = QApplication::activeModalWidget();
        if (!modal) return false;
        QLineEdit* const width = modal->findChildren<QLineEdit*>()[0];
        width->selectAll();
        QTest::keyClicks(width, "20");
        Settle();
        QTest::keyClick(width, Qt::Key_Return);
        return true;
    });
    EXPECT_EQ(root.Pens()->Edit(), 1);
    EXPECT_EQ(root.Pens()->Pen(0)->Width(), 20);
    Soon([] {
        QWidget* const modal = QApplication::activeModalWidget();
        if (!modal) return false;
        Soon([modal] {
            auto* fonts = qobject_cast<QFontDialog*>(QApplication::activeModalWidget());
            if (!fonts) return false;
            EXPECT_EQ(fonts->windowTitle(), "Town");
            QFont chosen = fonts->currentFont();
            EXPECT_EQ(chosen.pointSizeF(), 10);
            chosen.setPointSize(14);
            chosen.setItalic(true);
            chosen.setStyleName("Italic");
            fonts->setCurrentFont(chosen);
            Soon([modal] {
                if (QApplication::activeModalWidget() != modal) return false;
                QTest::keyClick(modal, Qt::Key_Return);
                return true;
            });
            static_cast<QDialog*>(fonts)->accept();
            return true;
        });
        for (QPushButton* button : modal->findChildren<QPushButton*>()) {
            if (button->text() == "Font...") {
                button->click();
                break;
            }
        }
        return true;
    });
    EXPECT_EQ(root.Fonts()->Edit(), 1);
    EXPECT_EQ(root.Fonts()->Font(0)->PtSize10(), 140);
    EXPECT_EQ(root.Fonts()->Font(0)->Italic(), 1);
    EXPECT_EQ(root.Fonts()->Font(0)->FontName(), "Arial") << "what stands in for a face does not replace it";
}

TEST_F(Controls, RadioButtonsExcludeOneAnother) {
    CButton first, second, other;
    first.Create("1", WS_CHILD | WS_VISIBLE | WS_GROUP | BS_AUTORADIOBUTTON, CRect(0, 0, 50, 20), &host_,
                 kFirst);
    second.Create("2", WS_CHILD | WS_VISIBLE | BS_AUTORADIOBUTTON, CRect(0, 20, 50, 40), &host_, kSecond);
    other.Create("3", WS_CHILD | WS_VISIBLE | WS_GROUP | BS_AUTORADIOBUTTON, CRect(0, 40, 50, 60), &host_,
                 99);
    other.SetCheck(1);
    first.SetCheck(1);
    Native<QRadioButton>(second)->click();
    EXPECT_EQ(first.GetCheck(), 0);
    EXPECT_EQ(other.GetCheck(), 1) << "another group";
    second.SetCheck(0);
    EXPECT_EQ(second.GetCheck(), 0);
}

}  // namespace
