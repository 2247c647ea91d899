// Draws the program's window and dialogs for the documentation.
//
//     zel_screenshots GALLERY TARGET ENDING
//
// GALLERY is where the gallery's documents are, TARGET the folder of the pictures, ENDING goes behind their
// names.
#include "apps/zelview/Editing.h"
#include "apps/zelview/MainWindow.h"

#include <zel/platform/Exception.h>
#include <zel/widgets/Widgets.h>

#include <QAction>
#include <QApplication>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPushButton>
#include <QStandardPaths>
#include <QTimer>

#include <cstdio>
#include <functional>

namespace {

using zel::view::MainWindow;

class Camera {
  public:
    Camera(QString folder, QString ending) : folder_(std::move(folder)), ending_(std::move(ending)) {}

    void Take(QWidget& widget, const char* name) const {
        for (int i = 0; i < 10; ++i) QApplication::processEvents();
        Keep(widget.grab().toImage(), name);
    }
    // A window with one of its menus open.
    void TakeWithMenu(QMainWindow& window, QMenu& menu, const QPoint& at, const char* name) const {
        menu.popup(window.mapToGlobal(at));
        for (int i = 0; i < 10; ++i) QApplication::processEvents();
        QPixmap picture = window.grab();
        QPainter painter(&picture);
        painter.drawPixmap(at, menu.grab());
        painter.end();
        menu.hide();
        Keep(picture.toImage(), name);
    }

  private:
    void Keep(const QImage& picture, const char* name) const {
        const QString path = folder_ + "/" + name + ending_ + ".png";
        if (!picture.save(path)) std::fprintf(stderr, "Cannot write \"%s\".\n", qPrintable(path));
    }
    QString folder_;
    QString ending_;
};

// Does something with the modal dialog that `command` opens, once it is there.
template <class Dialog>
void WithDialog(const std::function<void()>& command, const std::function<void(Dialog&)>& act) {
    QTimer waiting;
    const QWidget* const before = QApplication::activeModalWidget();
    QObject::connect(&waiting, &QTimer::timeout, [&] {
        QWidget* const modal = QApplication::activeModalWidget();
        auto* const dialog = modal != before ? qobject_cast<Dialog*>(modal) : nullptr;
        if (!dialog) return;
        waiting.stop();
        act(*dialog);
        dialog->close();
    });
    waiting.start(50);
    command();
}

void Table(const Camera& camera, MainWindow& window, const char* action, const char* name, int row) {
    const auto open = [&] { window.Action(action)->trigger(); };
    WithDialog<QDialog>(open, [&](QDialog& table) {
        table.findChild<QListWidget*>()->setCurrentRow(row);
        camera.Take(table, name);
        if (QString(action) != "colours") return;
        const auto change = [&] {
            for (QPushButton* button : table.findChildren<QPushButton*>()) {
                if (button->text() != "Change...") continue;
                button->click();
                return;
            }
        };
        WithDialog<QDialog>(change, [&](QDialog& picker) { camera.Take(picker, "dialog-colour"); });
    });
}

void Preview(const Camera& camera, MainWindow& window, const char* name) {
    const auto open = [&] { window.Action("preview")->trigger(); };
    WithDialog<QPrintPreviewDialog>(open, [&](QPrintPreviewDialog& preview) {
        preview.resize(1000, 700);
        auto* const pages = preview.findChild<QPrintPreviewWidget*>();
        for (int i = 0; i < 10; ++i) QApplication::processEvents();
        pages->setFacingPagesViewMode();
        pages->setCurrentPage(2);
        pages->fitInView();
        camera.Take(preview, name);
    });
}

void TakeAll(const Camera& camera, const QString& gallery) {
    MainWindow window;
    window.resize(1000, 700);
    window.show();
    window.Open(gallery + "/earthquakes.zel");
    window.Action("select_next")->trigger();
    camera.Take(window, "zelview");
    QMenu* const edit = window.menuBar()->actions()[1]->menu();
    camera.TakeWithMenu(window, *edit, window.menuBar()->actionGeometry(edit->menuAction()).bottomLeft(),
                        "zelview-menu");
    Table(camera, window, "colours", "dialog-colours", 2);
    Table(camera, window, "pens", "dialog-pens", 3);
    Table(camera, window, "fonts", "dialog-fonts", 0);
    window.Open(gallery + "/report.zel");
    window.Action("page_next")->trigger();
    camera.Take(window, "zelview-report");
    Preview(camera, window, "preview");
}

}  // namespace

int main(int argc, char** argv) {
    QStandardPaths::setTestModeEnabled(true);
    QApplication::setApplicationName("zelview-screenshots");
    QApplication application(argc, argv);
    if (argc != 4) return 2;
    try {
        zel::widgets::Install();
        TakeAll(Camera(argv[2], argv[3]), argv[1]);
    } catch (CException* e) {
        std::fprintf(stderr, "%s\n", zel::TakeMessage(e).c_str());
        return 1;
    }
    return 0;
}
