#include "Program.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPushButton>

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using zel::test::Content;
using zel::test::Program;

// Every command as people reach it from the keyboard, with what it has to do.
class Menus : public Program {
  protected:
    static QWidget* Modal() { return QApplication::activeModalWidget(); }
    // The keys go where the focus is, as those of a person.
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        // Without a window manager nobody gives the keyboard back when a dialog has closed.
        window_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
        Settle();
        QWidget* const focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : &window_, key, modifiers);
        Settle();
    }
    // Chooses a path in the file dialog that is about to open; none takes what it proposes.
    void Choose(const std::string& path, const char* filter = nullptr) {
        Soon([=] {
            auto* const dialog = qobject_cast<QFileDialog*>(Modal());
            if (!dialog) return false;
            if (filter) dialog->selectNameFilter(filter), Q_EMIT dialog->filterSelected(filter);
            auto* const name = dialog->findChild<QLineEdit*>("fileNameEdit");
            const bool saves = dialog->acceptMode() == QFileDialog::AcceptSave;
            const QString chosen = QString::fromStdString(path);
            if (!path.empty()) saves ? dialog->selectFile(chosen) : name->setText(chosen);
            // While the folder is being read, the name that the dialog began with may come back.
            if (saves && !path.empty() && name->text() != QFileInfo(chosen).fileName()) name->setText(chosen);
            QPushButton* const accept = dialog->findChild<QDialogButtonBox*>()->button(
                saves ? QDialogButtonBox::Save : QDialogButtonBox::Open);
            if (!accept->isEnabled()) return false;  // the folder is still being read
            QTest::mouseClick(accept, Qt::LeftButton);
            return true;
        });
    }
    template <class Dialog>
    void Dismiss() {
        Soon([] {
            auto* const dialog = qobject_cast<Dialog*>(Modal());
            if (dialog) QTest::keyClick(static_cast<QWidget*>(dialog), Qt::Key_Escape);
            return dialog != nullptr;
        });
    }
    int Scale() { return window_.View().Viewer()->GetScale(); }
    int Selected() { return static_cast<int>(Selection().GetSize()); }
};

TEST_F(Menus, FilesAreOpenedSavedAndExported) {
    const std::string table = folder_ / "table.csv";
    std::ofstream(table) << "x,y\n1,2\n2,4\n";
    Click(At(1500, 1500));
    Press(Qt::Key_Right);
    ASSERT_TRUE(window_.isWindowModified());
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_FALSE(window_.isWindowModified());
    EXPECT_EQ(Selected(), 1) << "what is selected stays so";
    Choose({}, "SVG (*.svg)");
    Press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(fs::exists(fs::path(path_).replace_extension("svg"))) << "by the document's name";
    Choose(folder_ / "copy");
    Press(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(window_.Path().toStdString(), folder_ / "copy.zel") << "with the ending of a drawing";
    EXPECT_EQ(Content(folder_ / "copy.zel"), Content(path_));
    Choose(table);
    Press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_TRUE(window_.Path().isEmpty());
    EXPECT_TRUE(window_.isWindowModified());
    Answer(QMessageBox::Discard);
    Choose(path_);
    Press(Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(window_.Path().toStdString(), path_);
    Choose(folder_ / "picture", "SVG (*.svg)");
    Press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(fs::exists(folder_ / "picture.svg"));
    Dismiss<QFileDialog>();
    Press(Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(window_.Path().toStdString(), path_) << "given up";
    // The second entry is the copy; Alt+F, R opens the list.
    auto* const recent = window_.findChild<QMenu*>("recent");
    Q_EMIT recent->aboutToShow();
    ASSERT_GE(recent->actions().size(), 2);
    recent->actions()[1]->trigger();
    EXPECT_EQ(window_.Path().toStdString(), folder_ / "copy.zel");
    fs::remove(path_);
    Q_EMIT recent->aboutToShow();
    Answer(QMessageBox::Ok);
    recent->actions()[1]->trigger();
    EXPECT_EQ(window_.Path().toStdString(), folder_ / "copy.zel") << "what is gone is told";
}

TEST_F(Menus, PagesAndFilesAreTurned) {
    fs::copy_file(path_, folder_ / "a.zel");
    for (const char* name : {"a.zel", "drawing.zel"}) {
        Press(Qt::Key_PageDown, Qt::AltModifier);
        EXPECT_EQ(window_.Path().toStdString(), folder_ / name);
    }
    Press(Qt::Key_PageUp, Qt::AltModifier);
    EXPECT_EQ(window_.Path().toStdString(), folder_ / "a.zel");
    fs::remove(folder_ / "a.zel");
    Press(Qt::Key_PageDown, Qt::AltModifier);
    EXPECT_EQ(window_.Path().toStdString(), path_);
}

TEST_F(Menus, PrintsIntoAFile) {
    const std::string target = folder_ / "printed.pdf";
    Soon([&] {
        auto* const dialog = qobject_cast<QPrintDialog*>(Modal());
        if (!dialog) return false;
        for (QComboBox* printers : dialog->findChildren<QComboBox*>()) {
            const int file = printers->findText("Print to File", Qt::MatchStartsWith);
            if (file >= 0) printers->setCurrentIndex(file), Q_EMIT printers->activated(file);
        }
        auto* const name = dialog->findChild<QLineEdit*>("filename");
        EXPECT_TRUE(name);
        if (name) name->setText(QString::fromStdString(target));
        for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
            if (button->text().remove('&') == "Print") button->click();
        }
        return true;
    });
    Press(Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(Content(target).substr(0, 5), "%PDF-");
    Dismiss<QPrintDialog>();
    Press(Qt::Key_P, Qt::ControlModifier);
    Dismiss<QPrintPreviewDialog>();
    Press(Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(window_.isWindowModified());
}

TEST_F(Menus, EditsBySelection) {
    Press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Selected(), 3);
    Press(Qt::Key_Escape);
    EXPECT_EQ(Selected(), 0);
    Press(Qt::Key_Tab, Qt::ControlModifier);
    ASSERT_EQ(Selected(), 1);
    Zel2* const rect = Selection()[0];
    EXPECT_EQ(rect, Drawing()[0]);
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        CPoint origin;
        CSize size;
        const char* name;
    } kMoves[] = {{Qt::Key_Left, {}, {980, 1000}, {1000, 1000}, "Move"},
                  {Qt::Key_Up, {}, {980, 1020}, {1000, 1000}, "Move"},
                  {Qt::Key_Right, Qt::ShiftModifier, {1180, 1020}, {1000, 1000}, "Move"},
                  {Qt::Key_Down, Qt::ShiftModifier, {1180, 820}, {1000, 1000}, "Move"},
                  {Qt::Key_Right, Qt::ControlModifier, {1180, 820}, {1020, 1000}, "Resize"},
                  {Qt::Key_Down, Qt::ControlModifier, {1180, 820}, {1020, 980}, "Resize"}};
    for (const auto& move : kMoves) {
        Press(move.key, move.modifiers);
        EXPECT_EQ(rect->Origin(), move.origin);
        EXPECT_EQ(rect->Size(), move.size);
        EXPECT_EQ(window_.Steps().UndoName(), move.name);
    }
    Press(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(Drawing()[0], nullptr);
    EXPECT_EQ(window_.Steps().UndoName(), "Cut");
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(window_.Steps().UndoName(), "Paste");
    EXPECT_EQ(Selected(), 1);
    Press(Qt::Key_C, Qt::ControlModifier);
    Press(Qt::Key_Delete);
    EXPECT_EQ(window_.Steps().UndoName(), "Delete");
    EXPECT_EQ(Selected(), 0);
    Press(Qt::Key_Tab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Selected(), 1);
    for (int i = 0; i < 9; ++i) Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(window_.isWindowModified());
    EXPECT_EQ(Drawing()[0]->Origin(), CPoint(1000, 1000));
    Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Drawing()[0]->Origin(), CPoint(980, 1000)) << "redone";
    Press(Qt::Key_Z, Qt::ControlModifier);
}

TEST_F(Menus, ToolTablesAreEditedAndUndone) {
    for (const auto& [action, title] : {std::pair("colours", "Color Table"), std::pair("pens", "Line Table"),
                                        std::pair("fonts", "Font Table")}) {
        Soon([title = title] {
            if (!Modal() || Modal()->windowTitle() != title) return false;
            QTest::keyClick(Modal(), Qt::Key_Escape);
            return true;
        });
        Do(action);
        EXPECT_FALSE(window_.isWindowModified()) << title << " was given up";
    }
    Soon([] {
        QWidget* const table = Modal();
        if (!table) return false;
        Soon([table] {
            if (!Modal() || Modal() == table) return false;
            auto* const red = Modal()->findChildren<QLineEdit*>()[0];
            red->selectAll();
            QTest::keyClicks(red, "7");
            QTest::keyClick(red, Qt::Key_Return);
            return true;
        });
        for (QPushButton* button : table->findChildren<QPushButton*>()) {
            if (button->text() != "Change...") continue;
            button->click();
            break;
        }
        QTest::keyClick(table, Qt::Key_Return);
        return true;
    });
    Do("colours");
    EXPECT_EQ(window_.Steps().UndoName(), "Change of Tools");
    EXPECT_EQ((*Drawing().Colors())(0)->ScrColor(), RGB(7, 0, 0));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ((*Drawing().Colors())(0)->ScrColor(), RGB(200, 0, 0));
    EXPECT_FALSE(window_.isWindowModified());
}

TEST_F(Menus, TheViewIsChosen) {
    ZelViewer& viewer = *window_.View().Viewer();
    Press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(viewer.GetZoomType(), ZelViewer::ZOOM_FIT_HORIZONTALLY);
    Press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(viewer.GetZoomType(), ZelViewer::ZOOM_FIT_VERTICALLY);
    Press(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(viewer.GetZoomType(), ZelViewer::ZOOM_FIT_WINDOW);
    const int fitted = Scale();
    Press(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_NEAR(Scale(), fitted * 1.5, 3);
    Press(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_NEAR(Scale(), fitted, 3);
    Press(Qt::Key_F3);
    EXPECT_EQ(viewer.GetMode(), ZelViewer::MODE_ZOOM_RECTANGLE);
    Press(Qt::Key_F2);
    EXPECT_EQ(viewer.GetMode(), ZelViewer::MODE_SELECT);
    const auto red = [&] {
        const QPoint at = At(1500, 1500);
        return Area()->grab().toImage().pixelColor(at * window_.devicePixelRatioF());
    };
    Press(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(red(), QColor(200, 0, 0));
    Press(Qt::Key_F6);
    EXPECT_EQ(red(), QColor(0, 0, 0)) << "the printer's variant";
    Press(Qt::Key_F6);
    EXPECT_EQ(red(), QColor(200, 0, 0));
    const bool metric = window_.Action("millimetres")->isChecked();
    Do("millimetres");
    EXPECT_NE(window_.Action("millimetres")->isChecked(), metric);
    EXPECT_EQ(QSettings().value("millimetres").toBool(), !metric) << "kept for the next start";
    Do("millimetres");
    Dismiss<QMessageBox>();
    Do("about");
    Press(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_FALSE(window_.isVisible());
}

}  // namespace
