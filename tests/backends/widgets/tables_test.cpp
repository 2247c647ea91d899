#include "WidgetView.h"

#include <zel/ToolDialogs.h>

#include <QComboBox>
#include <QFontDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>

namespace {

using zel::test::kBlue;
using zel::test::WidgetView;

// The view's commands, and the dialogs that they open, under a real mouse.
class ToolTables : public WidgetView {
  protected:
    void Command(UINT id) { view_->SendMessage(WM_COMMAND, id); }
    static QWidget* Modal() { return QApplication::activeModalWidget(); }
    // The modal window of a title; null while another one is in front.
    static QWidget* Dialog(const char* title) {
        return Modal() && Modal()->windowTitle() == title ? Modal() : nullptr;
    }
    static QPushButton* Button(const QWidget& dialog, const char* text, int which = 0) {
        for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
            if (button->text().remove('&') == text && which-- == 0) return button;
        }
        ADD_FAILURE() << "no button " << text;
        return nullptr;
    }
    static void Press(const QWidget& dialog, const char* text, int which = 0) {
        if (QPushButton* button = Button(dialog, text, which)) QTest::mouseClick(button, Qt::LeftButton);
    }
    static void Choose(const QWidget& dialog, int row) {
        auto* list = dialog.findChild<QListWidget*>();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(row)).center());
    }
    // What has the most room in the right half: the samples.
    static bool Shows(QWidget& dialog, const QColor& color) {
        Settle();
        const QImage image = dialog.grab().toImage();
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = image.width() / 2; x < image.width(); ++x) count += image.pixelColor(x, y) == color;
        return count > 100;
    }
};

TEST_F(ToolTables, CommandsSetTheirModes) {
    const struct {
        UINT id;
        int mode;
        int zoomType;
    } kCommands[] = {{32504, ZelViewer::MODE_REDUCE, ZelViewer::ZOOM_FREE},
                     {32503, ZelViewer::MODE_ENLARGE, ZelViewer::ZOOM_FREE},
                     {32502, ZelViewer::MODE_ZOOM_RECTANGLE, ZelViewer::ZOOM_FREE},
                     {32501, ZelViewer::MODE_SELECT, ZelViewer::ZOOM_FREE},
                     {32505, ZelViewer::MODE_SELECT, ZelViewer::ZOOM_FIT_VERTICALLY},
                     {32506, ZelViewer::MODE_SELECT, ZelViewer::ZOOM_FIT_HORIZONTALLY},
                     {32507, ZelViewer::MODE_SELECT, ZelViewer::ZOOM_FIT_WINDOW}};
    for (const auto& command : kCommands) {
        Command(command.id);
        Settle();
        EXPECT_EQ(Viewer().GetMode(), command.mode) << command.id;
        EXPECT_EQ(Viewer().GetZoomType(), command.zoomType) << command.id;
    }
    const std::pair<UINT, const char*> kTables[] = {
        {32508, "Font Table"}, {32509, "Color Table"}, {32510, "Line Table"}};
    for (const auto& [id, title] : kTables) {
        Soon([title = title] {
            QWidget* const dialog = Dialog(title);
            if (dialog) QTest::keyClick(dialog, Qt::Key_Escape);
            return dialog != nullptr;
        });
        Command(id);
        EXPECT_EQ(Modal(), nullptr);
    }
}

TEST_F(ToolTables, ColoursAreChosenAndShown) {
    drawing_->RegisterColor("Sand", RGB(250, 220, 120), RGB(200, 200, 200));
    Soon([this] {
        QWidget* const table = Dialog("Color Table");
        if (!table) return false;
        EXPECT_TRUE(Shows(*table, QColor(20, 60, 200)));
        EXPECT_TRUE(Shows(*table, Qt::black)) << "the printer's variant beside it";
        Choose(*table, 1);
        EXPECT_TRUE(Shows(*table, QColor(250, 220, 120)));
        Choose(*table, 0);
        Soon([table] {
            if (!Modal() || Modal() == table) return false;
            QWidget* const picker = Modal();
            const auto fields = picker->findChildren<QLineEdit*>();
            QTest::mouseDClick(fields[0], Qt::LeftButton);
            QTest::keyClicks(fields[0], "250");
            Press(*picker, "OK");
            return true;
        });
        Press(*table, "Change...");
        EXPECT_TRUE(Shows(*table, QColor(250, 60, 200)));
        Press(*table, "OK");
        return true;
    });
    Command(ID_ZEL_COLORS);
    EXPECT_EQ((*drawing_->Colors())(0)->ScrColor(), RGB(250, 60, 200));
    EXPECT_EQ(PixelAt(Grab(), DeviceOf(CPoint(1500, 1500))), RGB(250, 60, 200)) << "drawn anew";
    Soon([] {
        QWidget* const table = Dialog("Color Table");
        if (!table) return false;
        Soon([table] {
            if (!Modal() || Modal() == table) return false;
            Press(*Modal(), "Cancel");
            return true;
        });
        Press(*table, "Change...", 1);
        Press(*table, "Cancel");
        return true;
    });
    Command(ID_ZEL_COLORS);
    EXPECT_EQ((*drawing_->Colors())(0)->PrnColor(), RGB(0, 0, 0));
}

TEST_F(ToolTables, PensAreShapedAndShown) {
    drawing_->RegisterPen("Second", DrawPen::DASH, 7, RGB(0, 160, 0), 0, nullptr);
    Soon([] {
        QWidget* const table = Dialog("Line Table");
        if (!table) return false;
        auto* const style = table->findChild<QComboBox*>();
        const auto fields = table->findChildren<QLineEdit*>();
        QTest::mouseDClick(fields[0], Qt::LeftButton);
        QTest::keyClicks(fields[0], "x");
        Soon([] {
            auto* const box = qobject_cast<QMessageBox*>(Modal());
            if (!box) return false;
            EXPECT_TRUE(box->text().contains("integer"));
            QTest::keyClick(box, Qt::Key_Return);
            return true;
        });
        Choose(*table, 1);
        EXPECT_EQ(table->findChild<QListWidget*>()->currentRow(), 0) << "the field holds the user back";
        fields[0]->clear();
        QTest::keyClicks(fields[0], "30");
        style->setFocus();
        QTest::keyClick(style, Qt::Key_End);
        EXPECT_EQ(style->currentText(), "User Defined");
        EXPECT_TRUE(fields[1]->isEnabled());
        fields[1]->clear();
        QTest::keyClicks(fields[1], "60 20");
        EXPECT_TRUE(Shows(*table, Qt::black)) << "the line in its new width";
        Choose(*table, 1);
        EXPECT_EQ(fields[0]->text(), "7");
        EXPECT_FALSE(fields[1]->isEnabled());
        EXPECT_TRUE(Shows(*table, QColor(0, 160, 0)));
        Press(*table, "OK");
        return true;
    });
    Command(ID_ZEL_PENS);
    const DrawPen* const pen = drawing_->Pens()->Pen(0);
    EXPECT_EQ(pen->Style(), DrawPen::USER_DEFINED);
    EXPECT_EQ(pen->Width(), 30);
    EXPECT_EQ(const_cast<DrawPen*>(pen)->Pattern()[0], 60);
    const CRect ellipse = Viewer().Root().Map()->ToDevice((*drawing_)[1]->AbsRect());
    EXPECT_NE(PixelAt(Grab(), CPoint(ellipse.left + 3, (ellipse.top + ellipse.bottom) / 2)),
              RGB(255, 255, 255))
        << "three millimetres wide";
}

TEST_F(ToolTables, FontsAreChosenAndShown) {
    auto* const text = new Zel2TRect(CRect(200, 200, 1799, 799), "text", -1, -1);
    drawing_->Add(text);
    text->SetFont(0);
    const QImage before = Grab();
    Soon([] {
        QWidget* const table = Dialog("Font Table");
        if (!table) return false;
        Soon([] {
            auto* const fonts = qobject_cast<QFontDialog*>(Modal());
            if (!fonts) return false;
            QFont chosen = fonts->currentFont();
            chosen.setPointSize(24);
            fonts->setCurrentFont(chosen);
            Press(*fonts, "OK");
            return true;
        });
        auto* const list = table->findChild<QListWidget*>();
        Choose(*table, 0);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {},
                           list->visualItemRect(list->item(0)).center());
        Press(*table, "OK");
        return true;
    });
    Command(ID_ZEL_FONTS);
    EXPECT_EQ(drawing_->Fonts()->Font(0)->PtSize10(), 240);
    EXPECT_NE(Grab(), before);
}

}  // namespace
