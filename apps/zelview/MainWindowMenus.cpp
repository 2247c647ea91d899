#include "apps/zelview/Editing.h"
#include "apps/zelview/MainWindow.h"

#include <zel/widgets/Widgets.h>

#include <QAction>
#include <QActionGroup>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QSettings>
#include <QToolBar>

namespace zel::view {
namespace {

constexpr int kMostRecent = 10;
constexpr const char* kRecent = "recent";
constexpr const char* kMillimetres = "millimetres";
constexpr int kStep = 20;       // world units that an arrow key moves
constexpr int kLongStep = 200;  // with the shift key

}  // namespace

QAction* MainWindow::Action(const QString& name) const {
    return findChild<QAction*>(name);
}

QAction* MainWindow::Add(QMenu* menu, const char* name, const QString& text, const Keys& keys,
                         const Slot& slot) {
    auto* const action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcuts(keys.all);
    QObject::connect(action, &QAction::triggered, this, [slot] { slot(); });
    menu->addAction(action);
    return action;
}

QAction* MainWindow::AddCommand(QMenu* menu, const char* name, const QString& text, const Keys& keys,
                                UINT command) {
    return Add(menu, name, text, keys, [this, command] { Command(command); });
}

void MainWindow::MakeMenus() {
    millimetres_ = QSettings().value(kMillimetres, true).toBool();
    MakeFileMenu();
    MakeEditMenu();
    MakeViewMenu();
    MakePageMenu();
    MakeHelpMenu();
    MakeToolBar();
}

void MainWindow::MakeFileMenu() {
    QMenu* const menu = menuBar()->addMenu("&File");
    Add(menu, "new_csv", "&New from CSV…", QKeySequence::New, [this] { AskCsv(); });
    Add(menu, "open", "&Open…", QKeySequence::Open, [this] { AskOpen(); });
    recent_ = menu->addMenu("Open &Recent");
    recent_->setObjectName("recent");
    Add(menu, "recover", "&Recover…", {}, [this] { RecoverUntitled(); });
    QObject::connect(recent_, &QMenu::aboutToShow, this, [this] { ShowRecent(); });
    menu->addSeparator();
    Add(menu, "save", "&Save", QKeySequence::Save, [this] { Save(); });
    Add(menu, "save_as", "Save &As…", "Ctrl+Shift+S", [this] { AskSaveAs(); });
    Add(menu, "export", "&Export…", "Ctrl+E", [this] { AskExport(); });
    menu->addSeparator();
    AddCommand(menu, "preview", "Print Pre&view…", "Ctrl+Shift+P", ID_FILE_PRINT_PREVIEW);
    AddCommand(menu, "print", "&Print…", QKeySequence::Print, ID_FILE_PRINT);
    menu->addSeparator();
    Add(menu, "quit", "&Quit", "Ctrl+Q", [this] { close(); });
}

void MainWindow::MakeEditMenu() {
    QMenu* const menu = menuBar()->addMenu("&Edit");
    const auto selection = [this]() -> Zel2Selection& { return view_->Viewer()->Selection(); };
    Add(menu, "undo", "&Undo", QKeySequence::Undo, [this, selection] {
        selection().RemoveAll();
        if (history_.CanUndo()) ShowState(history_.Undo());
    });
    Add(menu, "redo", "&Redo", QKeySequence::Redo, [this, selection] {
        selection().RemoveAll();
        if (history_.CanRedo()) ShowState(history_.Redo());
    });
    menu->addSeparator();
    const auto remove = [this, selection](const char* name) {
        if (DeleteSelected(selection()) > 0) Edited(name);
    };
    Add(menu, "cut", "Cu&t", QKeySequence::Cut, [this, remove] {
        Copy();
        remove("Cut");
    });
    Add(menu, "copy", "&Copy", QKeySequence::Copy, [this] { Copy(); });
    Add(menu, "paste", "&Paste", QKeySequence::Paste, [this] { PasteClipboard(); });
    Add(menu, "delete", "&Delete", QKeySequence::Delete, [remove] { remove("Delete"); });
    menu->addSeparator();
    Add(menu, "select_all", "Select &All", QKeySequence::SelectAll, [this, selection] {
        SelectAll(*view_->Drawing(), selection());
        UpdateActions();
    });
    Add(menu, "deselect", "Select &Nothing", "Esc", [this, selection] {
        selection().RemoveAll();
        Command(ID_ZEL_SELECT);
    });
    for (const int by : {1, -1}) {
        Add(menu, by > 0 ? "select_next" : "select_previous", by > 0 ? "Select Ne&xt" : "Select Pre&vious",
            by > 0 ? "Ctrl+Tab" : "Ctrl+Shift+Tab", [this, selection, by] {
                SelectNext(*view_->Drawing(), selection(), by);
                UpdateActions();
            });
    }
    AddMoves(menu->addMenu("&Move and Size"));
    Add(menu, "edit_text", "Edit &Text", "Return", [selection] { EditText(selection()); });
    menu->addSeparator();
    AddCommand(menu, "colours", "C&olours…", {}, ID_ZEL_COLORS);
    AddCommand(menu, "pens", "P&ens…", {}, ID_ZEL_PENS);
    AddCommand(menu, "fonts", "&Fonts…", {}, ID_ZEL_FONTS);
}

// Without a mouse: the arrows move, with control they size.
void MainWindow::AddMoves(QMenu* menu) {
    const struct {
        const char* key;
        CSize by;
    } kDirections[] = {{"Left", {-1, 0}}, {"Right", {1, 0}}, {"Up", {0, 1}}, {"Down", {0, -1}}};
    const struct {
        const char* modifier;
        const char* text;
        int step;
        bool size;
    } kWays[] = {{"", "Move %1", kStep, false},
                 {"Shift+", "Move %1 Far", kLongStep, false},
                 {"Ctrl+", "Size %1", kStep, true}};
    for (const auto& way : kWays) {
        for (const auto& direction : kDirections) {
            const CSize by(direction.by.cx * way.step, direction.by.cy * way.step);
            const QString keys = QString(way.modifier) + direction.key;
            const bool size = way.size;
            Add(menu, (QString(size ? "size_" : "move_") + keys).toUtf8(),
                QString(way.text).arg(direction.key), keys.toUtf8().constData(), [this, by, size] {
                    if (Nudge(view_->Viewer()->Selection(), by, size)) {
                        Edited(size ? "Resize" : "Move");
                    } else {
                        // With nothing selected the arrows scroll.
                        view_->ScrollToDevicePosition(view_->GetDeviceScrollPosition() +
                                                      CSize(by.cx, -by.cy));
                    }
                });
        }
    }
}

void MainWindow::MakeViewMenu() {
    QMenu* const menu = menuBar()->addMenu("&View");
    AddCommand(menu, "pointer", "&Pointer", "F2", ID_ZEL_SELECT);
    AddCommand(menu, "zoom_rectangle", "Zoom to &Rectangle", "F3", ID_ZEL_ZOOM_RECTANGLE);
    menu->addSeparator();
    Keys larger(QKeySequence::ZoomIn);
    larger.all.append(QKeySequence("Ctrl+="));  // the plus without the shift key
    Add(menu, "zoom_in", "Zoom &In", larger, [this] { Zoom(1); });
    Add(menu, "zoom_out", "Zoom &Out", QKeySequence::ZoomOut, [this] { Zoom(0); });
    menu->addSeparator();
    AddCommand(menu, "fit_window", "Fit &Window", "Ctrl+0", ID_ZEL_FIT_WINDOW);
    AddCommand(menu, "fit_width", "Fit Wi&dth", "Ctrl+1", ID_ZEL_FIT_WIDTH);
    AddCommand(menu, "fit_height", "Fit &Height", "Ctrl+2", ID_ZEL_FIT_HEIGHT);
    menu->addSeparator();
    QAction* const printed = Add(menu, "as_printed", "&Show as Printed", "F6",
                                 [this] { view_->ShowAsPrinted(Action("as_printed")->isChecked()); });
    printed->setCheckable(true);
    QAction* const metric = Add(menu, "millimetres", "&Millimetres", {}, [this] {
        millimetres_ = Action("millimetres")->isChecked();
        QSettings().setValue(kMillimetres, millimetres_);
        ShowPosition(lastPosition_);
    });
    metric->setCheckable(true);
    metric->setChecked(millimetres_);
}

void MainWindow::MakePageMenu() {
    QMenu* const menu = menuBar()->addMenu("&Page");
    const auto go = [this](int by) { GoToPage(view_->Report() ? view_->Report()->SelectedPage() + by : 0); };
    Add(menu, "page_previous", "&Previous", "PgUp", [go] { go(-1); });
    Add(menu, "page_next", "&Next", "PgDown", [go] { go(1); });
    Add(menu, "page_first", "&First", "Ctrl+Home", [this] { GoToPage(0); });
    Add(menu, "page_last", "&Last", "Ctrl+End",
        [this] { GoToPage(view_->Report() ? view_->Report()->PageCount() - 1 : 0); });
    menu->addSeparator();
    Add(menu, "drawing_previous", "Pre&vious Drawing in the Folder", "Alt+PgUp",
        [this] { OpenNeighbour(-1); });
    Add(menu, "drawing_next", "Next &Drawing in the Folder", "Alt+PgDown", [this] { OpenNeighbour(1); });
}

void MainWindow::MakeHelpMenu() {
    QMenu* const menu = menuBar()->addMenu("&Help");
    Add(menu, "about", "&About", {}, [this] {
        QMessageBox::about(this, "Zel",
                           "Zel " ZEL_VERSION
                           "\n\nLooks at drawings, edits, prints and exports them.\nWheel: scrolls, with "
                           "control it zooms about the pointer.\nMiddle button: drags the drawing along.");
    });
}

void MainWindow::MakeToolBar() {
    QToolBar* const bar = addToolBar("Main");
    bar->setObjectName("main_bar");
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    for (const char* name : {"open", "save", "", "undo", "redo", "", "zoom_in", "zoom_out", "zoom_rectangle",
                             "fit_window", "", "page_previous", "page_next"}) {
        *name ? bar->addAction(Action(name)) : static_cast<void>(bar->addSeparator());
    }
}

void MainWindow::UpdateActions() {
    const auto step = [this](const char* name, const QString& verb, bool can, const std::string& edit) {
        Action(name)->setEnabled(can);
        Action(name)->setText(can ? verb + " " + QString::fromStdString(edit) : verb);
        Action(name)->setIconText(QString(verb).remove('&'));
    };
    step("undo", "&Undo", history_.CanUndo(), history_.UndoName());
    step("redo", "&Redo", history_.CanRedo(), history_.RedoName());
    const bool selected = view_->Viewer()->Selection().GetSize() > 0;
    for (const char* name : {"cut", "copy", "delete"}) Action(name)->setEnabled(selected);
    Zel2Report* const report = view_->Report();
    const int pages = report ? report->PageCount() : 0;
    const int page = report ? report->SelectedPage() : 0;
    for (const char* name : {"page_previous", "page_first"}) Action(name)->setEnabled(pages > 0 && page > 0);
    for (const char* name : {"page_next", "page_last"}) Action(name)->setEnabled(page + 1 < pages);
    for (const char* name : {"drawing_previous", "drawing_next"}) Action(name)->setEnabled(!Path().isEmpty());
    page_->setText(pages > 0 ? QString("Page %1 of %2").arg(page + 1).arg(pages) : QString());
    setWindowModified(history_.IsModified());
}

// Files that the user chooses

void MainWindow::Remember(const QString& path) {
    QStringList recent = QSettings().value(kRecent).toStringList();
    recent.removeAll(path);
    recent.prepend(path);
    QSettings().setValue(kRecent, QStringList(recent.mid(0, kMostRecent)));
}

void MainWindow::ShowRecent() {
    recent_->clear();
    for (const QString& path : QSettings().value(kRecent).toStringList()) {
        QAction* const action = recent_->addAction(path);
        QObject::connect(action, &QAction::triggered, this, [this, path] {
            if (MayLose()) Open(path);
        });
    }
    recent_->setDisabled(false);
    if (recent_->isEmpty()) recent_->addAction("None yet")->setEnabled(false);
}

void MainWindow::OpenNeighbour(int by) {
    const QFileInfo present(Path());
    const QDir folder = present.absoluteDir();
    const QStringList names = folder.entryList({"*.zel"}, QDir::Files, QDir::Name);
    const qsizetype count = names.size();
    if (Path().isEmpty() || count == 0 || !MayLose()) return;
    const qsizetype at = names.indexOf(present.fileName());
    Open(folder.filePath(names[(at + by + count) % count]));
}

void MainWindow::AskOpen() {
    if (!MayLose()) return;
    const QString path =
        QFileDialog::getOpenFileName(this, "Open", {}, "Drawings (*.zel);;Tables (*.csv);;All files (*)");
    if (!path.isEmpty()) Open(path);
}

void MainWindow::AskCsv() {
    if (!MayLose()) return;
    const QString path =
        QFileDialog::getOpenFileName(this, "New Drawing from CSV", {}, "Tables (*.csv);;All files (*)");
    if (!path.isEmpty()) OpenCsv(path);
}

bool MainWindow::AskSaveAs() {
    QFileDialog dialog(this, "Save As", Path(), "Drawings (*.zel)");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix("zel");
    return dialog.exec() == QDialog::Accepted && SaveAs(dialog.selectedFiles().value(0));
}

void MainWindow::AskExport() {
    const QFileInfo present(Path());
    QStringList filters;
    for (const FileFormat& format : ExportFormats()) {
        filters +=
            QString("%1 (*.%2)")
                .arg(QString::fromStdString(format.name), QString::fromStdString(format.endings.front()));
    }
    QFileDialog dialog(this, "Export", Path().isEmpty() ? QString() : present.absolutePath(),
                       filters.join(";;"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    // The name follows the format: the document's own stays for the document.
    const auto ending = [&dialog] {
        const QString suffix = dialog.selectedNameFilter().section("*.", 1).chopped(1);
        const QString chosen = QFileInfo(dialog.selectedFiles().value(0)).completeBaseName();
        dialog.setDefaultSuffix(suffix);
        if (!chosen.isEmpty()) dialog.selectFile(chosen + "." + suffix);
    };
    if (!Path().isEmpty()) dialog.selectFile(present.fileName());
    ending();
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, ending);
    if (dialog.exec() == QDialog::Accepted) Export(dialog.selectedFiles().value(0));
}

}  // namespace zel::view
