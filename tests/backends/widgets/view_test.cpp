#include "Support.h"
#include "WidgetView.h"
#include "backends/widgets/Printer.h"

#include <zel/platform/FrameWnd.h>
#include <zel/platform/MessageBox.h>

#include <QAction>
#include <QFileInfo>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QScrollBar>
#include <QToolBar>

namespace {

using zel::test::kBlue;
using zel::test::TemporaryFolder;
using zel::test::WidgetView;

TEST_F(WidgetView, DrawsInWholePixelsOfTheScreen) {
    CClientDC dc(view_);
    EXPECT_EQ(dc.GetDeviceCaps(LOGPIXELSX), std::lround(96 * factor_));
    EXPECT_EQ(dc.GetDeviceCaps(HORZRES), std::lround(400 * factor_));
    EXPECT_EQ(dc.CurveColumn(), 1) << "or a window would walk every point of a series";
    const QImage image = Grab();
    EXPECT_EQ(image.width(), std::lround(400 * factor_));
    const CRect box = Viewer().Root().Map()->ToDevice(CRect(1000, 1999, 1999, 1000));
    EXPECT_EQ(box.Width(), MulDiv(1999, dc.GetDeviceCaps(LOGPIXELSX), 1000) -
                               MulDiv(1000, dc.GetDeviceCaps(LOGPIXELSX), 1000));
    EXPECT_EQ(PixelAt(image, CPoint(box.left, box.top + 3)), kBlue) << "edges are crisp";
    EXPECT_EQ(PixelAt(image, CPoint(box.left - 1, box.top + 3)), RGB(255, 255, 255));
    EXPECT_EQ(PixelAt(image, CPoint(box.right - 1, box.top + 3)), kBlue);
    EXPECT_EQ(PixelAt(image, CPoint(box.right + 2, box.top + 3)), RGB(255, 255, 255));
    // A window between others, not on a whole pixel at a fractional factor, is as crisp.
    host_.layout()->setContentsMargins(7, 5, 0, 0);
    const QImage moved = Grab();
    const CPoint by(static_cast<int>(std::lround(7 * factor_)), static_cast<int>(std::lround(5 * factor_)));
    EXPECT_EQ(PixelAt(moved, CPoint(box.left + by.x, box.top + 3 + by.y)), kBlue);
    EXPECT_EQ(PixelAt(moved, CPoint(box.left - 1 + by.x, box.top + 3 + by.y)), RGB(255, 255, 255));
}

TEST_F(WidgetView, SelectsDragsAndResizesWithARealMouse) {
    Click(AtWorld(1500, 1500));
    ASSERT_TRUE(rect_->Selected());
    const QImage before = Grab();
    // Over the handle of the upper right corner, away and back: the outlines leave nothing behind.
    Press(AtWorld(2000, 2000));
    EXPECT_EQ(Viewer().GetMode(), ZelViewer::MODE_DRAG_PART);
    DragTo(AtWorld(2300, 2600));
    EXPECT_NE(Grab(), before) << "an outline follows the mouse";
    for (int i = 0; i < 20; ++i) DragTo(AtWorld(2000 + 77 * i % 900, 1400 + 131 * i % 1500));
    DragTo(AtWorld(2000, 2000));
    rect_->Drag(8, CPoint());  // erased and drawn again, unchanged
    Release(AtWorld(2500, 2500));
    EXPECT_NEAR(rect_->Size().cx, 1500, 15);
    EXPECT_NEAR(rect_->Size().cy, 1500, 15);
    const CPoint origin = rect_->Origin();
    Press(AtWorld(1500, 1500));
    EXPECT_EQ(Viewer().GetMode(), ZelViewer::MODE_DRAG_SELECTION);
    DragTo(AtWorld(1200, 1300));
    DragTo(QPoint(-300, 5000));
    Release(AtWorld(1200, 1300));
    EXPECT_NEAR(rect_->Origin().x, origin.x - 300, 15);
    EXPECT_NEAR(rect_->Origin().y, origin.y - 200, 15);
    Soon([&] {
        DragTo(AtWorld(3999, 200));
        DragTo(AtWorld(3900, 100));
        Release(AtWorld(3900, 100));
        return true;
    });
    Press(AtWorld(200, 2950));
    EXPECT_TRUE(rect_->Selected()) << "inside the band";
    EXPECT_EQ(Viewer().Selection().GetSize(), 1) << "the ellipse reaches out of it";
    Click(AtWorld(200, 200));
    EXPECT_EQ(Viewer().Selection().GetSize(), 0);
}

TEST_F(WidgetView, LeavesNoTraceOfOutlines) {
    const QImage before = Grab();
    CPen dotted(PS_DOT, 1, RGB(0, 0, 0));
    for (int i = 0; i < 30; ++i) {
        CClientDC dc(view_);
        dc.SetROP2(R2_NOTXORPEN);
        CPen* previous = dc.SelectObject(&dotted);
        const CRect box(CPoint(11 + 5 * (i % 15), 20), CSize(150 + i, 120));
        dc.Rectangle(&box);
        dc.Ellipse(box);
        dc.MoveTo(box.TopLeft());
        dc.LineTo(box.BottomRight());
        dc.Flush();
        EXPECT_NE(Grab(), before);
        dc.Rectangle(&box);
        dc.Ellipse(box);
        dc.MoveTo(box.TopLeft());
        dc.LineTo(box.BottomRight());
        dc.SelectObject(previous);
    }
    EXPECT_EQ(Grab(), before);
}

TEST_F(WidgetView, ZoomsAndScrolls) {
    view_->SendMessage(WM_COMMAND, ID_ZEL_ZOOM_IN);
    Move(QPoint(100, 100), Qt::NoButton);
    EXPECT_EQ(area_->cursor().shape(), Qt::BitmapCursor);
    Press(QPoint(100, 100));
    Release(QPoint(100, 100));
    EXPECT_EQ(Viewer().GetScale(), 1500);
    auto* bar = zel::widgets::WidgetOf(*view_)->findChild<QScrollBar*>();
    Settle();
    const auto bars = zel::widgets::WidgetOf(*view_)->findChildren<QScrollBar*>();
    ASSERT_GE(bars.size(), 2);
    for (QScrollBar* each : bars) {
        if (each->orientation() == Qt::Vertical) bar = each;
    }
    EXPECT_TRUE(bar->isVisible());
    const QImage before = Grab();
    const int from = view_->GetDeviceScrollPosition().y;
    bar->setValue(bar->maximum());
    bar->setValue(0);
    bar->setValue(from);
    EXPECT_EQ(view_->GetDeviceScrollPosition().y, from);
    EXPECT_EQ(Grab(), before) << "scrolled away and back";
    view_->Invalidate();
    EXPECT_EQ(Grab(), before) << "and painted anew";
    QWheelEvent wheel(QPointF(50, 50), area_->mapToGlobal(QPointF(50, 50)), QPoint(), QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(area_, &wheel);
    EXPECT_GT(view_->GetDeviceScrollPosition().y, from);
    view_->SendMessage(WM_COMMAND, ID_ZEL_FIT_WINDOW);
    Settle();
    EXPECT_FALSE(bar->isVisible());
    const CSize fitted = Viewer().GetLgGraphsSize();
    EXPECT_LE(fitted.cx, std::lround(400 * factor_));
    host_.resize(200, 150);
    Settle();
    EXPECT_NEAR(Viewer().GetLgGraphsSize().cx, fitted.cx / 2, 3) << "the fit follows the window";
    for (const QSize size : {QSize(1, 1), QSize(2, 400), QSize(400, 300)}) {
        host_.resize(size);
        Grab();
    }
    EXPECT_NEAR(Viewer().GetLgGraphsSize().cx, fitted.cx, 3);
}

TEST_F(WidgetView, GoesWithTheHostsWidget) {
    struct Counted : CZelView {
        explicit Counted(int& gone) : gone_(gone) {}
        ~Counted() override { ++gone_; }
        int& gone_;
    };
    int gone = 0;
    {
        QWidget other;
        auto* view = new Counted(gone);
        zel::widgets::Embed(view, &other);
        view->SetDrawing(new Zel2Main);
        other.show();
        Settle();
    }
    EXPECT_EQ(gone, 1);
    auto* view = new Counted(gone);
    zel::widgets::Embed(view, &host_);
    view->DestroyWindow();
    EXPECT_EQ(gone, 2);
}

TEST_F(WidgetView, PrintsWhatItPreviews) {
    TemporaryFolder folder;
    const auto print = [&](const std::string& path) {
        auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
        printer->setOutputFormat(QPrinter::PdfFormat);
        printer->setOutputFileName(QString::fromStdString(path));
        const auto pages = zel::widgets::PagesOn(std::move(printer));
        view_->PrintTo(*pages);
    };
    print(folder / "a.pdf");
    EXPECT_GT(QFileInfo(QString::fromStdString(folder / "a.pdf")).size(), 1000);
    EXPECT_EQ(folder.FileCount(), 1U);
    EXPECT_NE(
        zel::test::MessageOf<CFileException>([&] { print("/nowhere/at/all.pdf"); }).find("No such file"),
        std::string::npos);
    bool seen = false;
    Soon([&] {
        auto* dialog = qobject_cast<QPrintPreviewDialog*>(QApplication::activeModalWidget());
        if (!dialog) return false;
        seen = dialog->findChild<QPrintPreviewWidget*>()->pageCount() == 1;
        dialog->close();
        return true;
    });
    view_->SendMessage(WM_COMMAND, ID_FILE_PRINT_PREVIEW);
    EXPECT_TRUE(seen);
    std::string told;
    zel::SetMessageBoxHandler([&](const std::string& text, UINT) {
        told = text;
        return IDOK;
    });
    view_->PostMessage(WM_COMMAND, ID_FILE_PRINT_DIRECT);
    Settle();
    zel::SetMessageBoxHandler(nullptr);
    EXPECT_NE(told.find("no printer"), std::string::npos) << told;
}

TEST_F(WidgetView, StandsInAFrameWithItsToolbar) {
    auto* frame = new CFrameWnd;
    frame->Create("Frame", CRect(20, 20, 20 + 900, 20 + 500));
    auto* view = new CZelView;
    frame->SetView(view);
    auto* drawing = new Zel2Main;
    drawing->Add(new Zel2Rect(CRect(0, 0, 999, 999), -1, -1, Zel2Rect::RECTANGLE, -1));
    view->SetDrawing(drawing);
    const UINT ids[] = {ID_ZEL_SELECT, ID_ZEL_ZOOM_IN, 0, ID_ZEL_FIT_WINDOW};
    ASSERT_EQ(view->CreateToolBar(1, ids, 4), 1);
    frame->ShowWindow(SW_SHOW);
    QWidget* const window = zel::widgets::WidgetOf(*frame);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    Settle();
    auto* bar = qobject_cast<QToolBar*>(zel::widgets::WidgetOf(*view->ToolBar()));
    EXPECT_TRUE(bar->isVisible());
    CRect below;
    view->GetWindowRect(&below);
    CRect tools;
    view->ToolBar()->GetWindowRect(&tools);
    EXPECT_GE(below.top, tools.bottom);
    EXPECT_FALSE(bar->actions()[1]->icon().isNull());
    bar->actions()[1]->trigger();
    EXPECT_EQ(view->Viewer()->GetMode(), ZelViewer::MODE_ENLARGE);
    EXPECT_TRUE(bar->actions()[1]->isChecked());
    bar->actions()[3]->trigger();
    EXPECT_FALSE(bar->actions()[1]->isChecked());
    EXPECT_TRUE(bar->actions()[3]->isChecked());
    EXPECT_NE(zel::widgets::WidgetOf(view->ToolBar()->Combo(0)), nullptr);
    class Program : public CWinApp {
    } program;
    program.m_pMainWnd = frame;
    Soon([&] { return window->close(), true; });
    EXPECT_EQ(program.Run(), 0);
    EXPECT_EQ(program.m_pMainWnd, nullptr);
}

}  // namespace
