// The desktop program under the hand of a test.
#pragma once

#include "Support.h"
#include "apps/zelview/Editing.h"
#include "apps/zelview/MainWindow.h"
#include "backends/widgets/WidgetSupport.h"

#include <zel/zel.h>

#include <QAbstractButton>
#include <QAction>
#include <QMessageBox>
#include <QSettings>
#include <QStandardPaths>

namespace zel::test {

using view::MainWindow;

// A window on a document with a rectangle, a graph and a data field.
class Program : public OnWidgets {
  protected:
    static void SetUpTestSuite() {
        // Tests that run at the same time must not find each other's unsaved work.
        static const TemporaryFolder kSettings;
        qputenv("HOME", QByteArray::fromStdString(kSettings / "home"));
        QStandardPaths::setTestModeEnabled(true);
        QCoreApplication::setApplicationName("zelview-test");
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           QString::fromStdString(kSettings / ""));
        OnWidgets::SetUpTestSuite();
    }
    Program() : path_(folder_ / "drawing.zel") {
        Zel2Main drawing;
        drawing.SetRules(ZelRules::EXACT);
        const int red = drawing.RegisterColor("Red", RGB(200, 0, 0), RGB(0, 0, 0));
        drawing.Add(new Zel2Rect(CRect(1000, 1000, 1999, 1999), -1, red, Zel2Rect::RECTANGLE, -1));
        auto* graph = new Zel2Graph;
        graph->SetGraphSize(CSize(3000, 2000));
        graph->SetCoord(0, 0, 10, 10);
        drawing.Add(graph);
        graph->Origin(CPoint(3000, 0));
        auto* series = new Zel2PointArray;
        for (const double x : {0.0, 10.0}) series->Append(x, x);
        graph->AddIn(series);
        drawing.Add(new Zel2DataField(CRect(0, 3000, 1999, 3799), "value", "label", -1, -1, -1));
        SaveDocument(drawing, path_.c_str());
        EXPECT_TRUE(window_.Open(QString::fromStdString(path_)));
        Show(window_);
    }
    ~Program() override {
        Do("deselect");
        view::DocumentFile file;
        while (!file.TakeLeft().isEmpty()) file.DropCopy();
    }
    void Do(const char* action) {
        window_.Action(action)->setEnabled(true);
        window_.Action(action)->trigger();
        Settle();
    }
    Zel2Main& Drawing() { return *window_.View().Drawing(); }
    Zel2Selection& Selection() { return window_.View().Viewer()->Selection(); }
    QWidget* Area() {
        return widgets::WidgetOf(window_.View())->findChild<QWidget*>("qt_scrollarea_viewport");
    }
    QPoint At(int x, int y) {
        const CPoint pixel = window_.View().Viewer()->Root().Map()->ToDevice(CPoint(x, y));
        const double factor = window_.devicePixelRatioF();
        return {static_cast<int>(pixel.x / factor), static_cast<int>(pixel.y / factor)};
    }
    void Move(const QPoint& to, Qt::MouseButtons buttons) {
        QMouseEvent move(QEvent::MouseMove, to, Area()->mapToGlobal(to), Qt::NoButton, buttons, {});
        QApplication::sendEvent(Area(), &move);
    }
    void Click(const QPoint& at) {
        Move(at, {});
        Soon([=, this] { return QTest::mouseRelease(Area(), Qt::LeftButton, {}, at), true; });
        QTest::mousePress(Area(), Qt::LeftButton, {}, at);
        Settle();
    }
    void Drag(const QPoint& from, const QPoint& to) {
        Move(from, {});
        QTest::mousePress(Area(), Qt::LeftButton, {}, from);
        Move(to, Qt::LeftButton);
        QTest::mouseRelease(Area(), Qt::LeftButton, {}, to);
        Settle();
    }
    static void Answer(QMessageBox::StandardButton button) {
        Soon([=] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || !box->button(button)) return false;
            box->button(button)->click();
            return true;
        });
    }
    view::Bytes State() { return view::StateOf(Drawing(), Selection()); }

    TemporaryFolder folder_;
    std::string path_;
    MainWindow window_;
};

}  // namespace zel::test
