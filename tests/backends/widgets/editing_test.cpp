#include "WidgetView.h"

#include <QLineEdit>
#include <QPlainTextEdit>

namespace {

using zel::test::WidgetView;

// What people do to a drawing with the mouse and the keyboard, in every mode of the viewer.
class MouseEditing : public WidgetView {
  protected:
    void Command(UINT id) { view_->SendMessage(WM_COMMAND, id); }
    // Presses, drags over some points and lets go, also where the press runs a loop of its own.
    void Drag(const QPoint& from, const QPoint& to, Qt::KeyboardModifiers keys = {}) {
        Soon([=, this] {
            DragTo((from + to) / 2);
            DragTo(to);
            Release(to);
            return true;
        });
        Press(from, keys);
        Wait();
    }
    // Until the mouse has let go.
    void Wait() {
        QTest::qWait(40);
        Settle();
    }
    void ClickAndWait(const QPoint& at, Qt::KeyboardModifiers keys = {}) {
        Click(at, keys);
        Wait();
    }
    Qt::CursorShape Shape() { return area_->cursor().shape(); }
    Zel2TRect* AddText(const char* text, int wrap) {
        auto* box = new Zel2TRect(CRect(200, 200, 1799, 799), text, -1, -1);
        drawing_->Add(box);
        box->SetFont(0);
        box->SetStyle(wrap, 0);
        view_->Invalidate();
        Settle();
        return box;
    }
    int Selected() { return static_cast<int>(Viewer().Selection().GetSize()); }

    // What a pixel is worth, and a rounding.
    int tolerance_ = static_cast<int>(2 * 1000 / 96 / factor_) + 2;
};

TEST_F(MouseEditing, EachHandlePullsItsEdges) {
    static constexpr Qt::CursorShape kShapes[] = {Qt::SizeFDiagCursor, Qt::SizeHorCursor, Qt::SizeBDiagCursor,
                                                  Qt::SizeVerCursor};
    // The edges that follow: left, bottom, right, top.
    static constexpr bool kFollows[8][4] = {{true, false, false, true}, {true, false, false, false},
                                            {true, true, false, false}, {false, true, false, false},
                                            {false, true, true, false}, {false, false, true, false},
                                            {false, false, true, true}, {false, false, false, true}};
    for (int handle = 0; handle < 8; ++handle) {
        SCOPED_TRACE(handle);
        rect_->MoveTo(CRect(1000, 1000, 1999, 1999));
        Settle();
        if (!rect_->Selected()) ClickAndWait(AtWorld(1500, 1500));
        ASSERT_TRUE(rect_->Selected());
        const QPoint from = At(DeviceOf(rect_->Cpt(handle)));
        Move(from, {});
        EXPECT_EQ(Viewer().GetMode(), ZelViewer::MODE_PART);
        EXPECT_EQ(Shape(), kShapes[handle % 4]);
        const CSize by(200, -150);
        Drag(from, At(DeviceOf(rect_->Cpt(handle) + by)));
        EXPECT_EQ(Viewer().GetMode(), ZelViewer::MODE_SELECT);
        const CRect box(rect_->Origin(), rect_->Size());
        const LONG edges[] = {box.left, box.top, box.right, box.bottom};
        const LONG before[] = {1000, 1000, 2000, 2000};
        for (int edge = 0; edge < 4; ++edge) {
            const LONG moved = edge % 2 ? by.cy : by.cx;
            EXPECT_NEAR(edges[edge], before[edge] + (kFollows[handle][edge] ? moved : 0), tolerance_) << edge;
        }
    }
    // Pulled over to the other side, the corners change their roles.
    rect_->MoveTo(CRect(1000, 1000, 1999, 1999));
    Settle();
    Drag(At(DeviceOf(rect_->Cpt(0))), AtWorld(2500, 500));
    EXPECT_NEAR(rect_->Origin().x, 2000, tolerance_);
    EXPECT_NEAR(rect_->Size().cx, 500, tolerance_);
    EXPECT_NEAR(rect_->Origin().y, 500, tolerance_);
    EXPECT_NEAR(rect_->Size().cy, 500, tolerance_);
}

TEST_F(MouseEditing, ShiftAndBandSelectSeveral) {
    Zel2* const ellipse = (*drawing_)[1];
    ClickAndWait(AtWorld(1500, 1500));
    ClickAndWait(AtWorld(3250, 1700), Qt::ShiftModifier);
    ASSERT_EQ(Selected(), 2);
    EXPECT_TRUE(ellipse->GetStatus(Zel2::FOCUS));
    ClickAndWait(AtWorld(1500, 1500));
    EXPECT_TRUE(rect_->GetStatus(Zel2::FOCUS)) << "a click on what is selected moves the focus";
    EXPECT_EQ(Selected(), 2);
    Drag(AtWorld(1500, 1500), AtWorld(1300, 1600));
    for (const auto& [object, before] :
         {std::pair<Zel2*, CPoint>(rect_, CPoint(1000, 1000)), {ellipse, CPoint(2500, 500)}}) {
        EXPECT_NEAR(object->Origin().x, before.x - 200, tolerance_);
        EXPECT_NEAR(object->Origin().y, before.y + 100, tolerance_);
    }
    EXPECT_EQ(rect_->Size(), CSize(1000, 1000)) << "moving keeps the size to the unit";
    ClickAndWait(AtWorld(200, 200));
    EXPECT_EQ(Selected(), 0);
    rect_->MoveTo(CPoint(1000, 1000));
    ellipse->MoveTo(CPoint(2400, 400));
    Settle();
    // A band from the right to the left, out of the window and back.
    const QPoint from(398, 298), to(4, 0);
    Soon([=, this] {
        for (const QPoint& at : {QPoint(-500, 4000), QPoint(9000, -20), QPoint(-1, -1), to}) DragTo(at);
        Release(to);
        return true;
    });
    Press(from);
    Wait();
    EXPECT_EQ(Selected(), 2);
    Drag(AtWorld(100, 100), AtWorld(1100, 1100));
    EXPECT_EQ(Selected(), 0) << "a band that touches takes nothing, and what was selected goes";
}

TEST_F(MouseEditing, EachModeShowsItsCursorAndEnds) {
    Move(AtWorld(500, 2500), {});
    EXPECT_EQ(Shape(), Qt::ArrowCursor);
    ClickAndWait(AtWorld(1500, 1500));
    Move(AtWorld(1500, 1600), {});
    EXPECT_EQ(Viewer().GetMode(), ZelViewer::MODE_OVER_SELECTION);
    EXPECT_EQ(Shape(), Qt::SizeAllCursor);
    Move(AtWorld(500, 2500), {});
    EXPECT_EQ(Viewer().GetMode(), ZelViewer::MODE_SELECT);
    EXPECT_EQ(Shape(), Qt::ArrowCursor) << "beside the selection";
    for (const UINT id : {ID_ZEL_ZOOM_IN, ID_ZEL_ZOOM_OUT}) {
        Command(id);
        Move(QPoint(200, 150), {});
        EXPECT_EQ(Shape(), Qt::BitmapCursor);
        Move(QPoint(-20, 150), {});
        EXPECT_NE(Shape(), Qt::BitmapCursor) << "outside the window";
        Move(QPoint(200, 150), {});
        EXPECT_EQ(Shape(), Qt::BitmapCursor);
        const int before = Viewer().GetScale();
        ClickAndWait(QPoint(200, 150));
        EXPECT_EQ(Viewer().GetScale(), id == ID_ZEL_ZOOM_IN ? before * 3 / 2 : 1000);
        EXPECT_EQ(Viewer().GetMode(), ZelViewer::MODE_SELECT);
        Move(AtWorld(500, 2500), {});
        EXPECT_EQ(Shape(), Qt::ArrowCursor);
    }
    Command(ID_ZEL_ZOOM_RECTANGLE);
    const int before = Viewer().GetScale();
    const CPoint corner = Viewer().Root().Map()->FromDevice(CPoint(0, 0));
    Drag(AtWorld(1000, 2000), AtWorld(2000, 1250));
    EXPECT_GT(Viewer().GetScale(), before * 3);
    const CPoint now = Viewer().Root().Map()->FromDevice(CPoint(0, 0));
    EXPECT_FALSE(now == corner);
    EXPECT_NEAR(now.x, 1000, 2 * tolerance_);
    EXPECT_NEAR(now.y, 2000, 2 * tolerance_);
    EXPECT_EQ(Viewer().GetMode(), ZelViewer::MODE_SELECT);
    // A rectangle of nothing changes nothing; one that was given up neither.
    const int zoomed = Viewer().GetScale();
    Command(ID_ZEL_ZOOM_RECTANGLE);
    ClickAndWait(QPoint(50, 50));
    EXPECT_EQ(Viewer().GetScale(), zoomed);
    EXPECT_EQ(Viewer().GetMode(), ZelViewer::MODE_SELECT);
}

TEST_F(MouseEditing, ZoomsToItsLimitsAndBack) {
    const auto turn = [&](int delta, int times) {
        for (int i = 0; i < times; ++i) {
            QWheelEvent wheel(QPointF(200, 150), area_->mapToGlobal(QPointF(200, 150)), QPoint(),
                              QPoint(0, delta), Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(area_, &wheel);
            if (i % 8 == 0) Grab();
        }
    };
    turn(120, 1);
    EXPECT_EQ(Viewer().GetScale(), 1500);
    turn(120, 40);
    EXPECT_EQ(Viewer().GetScale(), 32000);
    turn(-120, 80);
    EXPECT_GE(Viewer().GetScale(), 1);
    EXPECT_LT(Viewer().GetScale(), 10);
    turn(120, 1);
    EXPECT_GE(Viewer().GetScale(), 2) << "there is a way back from the smallest";
    for (const QSize size : {QSize(1, 1), QSize(400, 300)}) {
        host_.resize(size);
        Command(ID_ZEL_FIT_WINDOW);
        Grab();
    }
    EXPECT_NEAR(Viewer().GetScale(), 1040, 25);
}

TEST_F(MouseEditing, TypesInPlace) {
    Zel2TRect* const text = AddText("old", 0);
    const auto field = [&] { return area_->findChild<QLineEdit*>(); };
    ClickAndWait(AtWorld(400, 500));
    ASSERT_NE(field(), nullptr);
    EXPECT_TRUE(field()->hasFocus());
    field()->selectAll();
    QTest::keyClicks(field(), "50 % of ");
    const QPoint before = field()->pos();
    Command(ID_ZEL_FIT_WIDTH);
    view_->Viewer()->OnEnlarge(CPoint(10, 10));
    Settle();
    EXPECT_NE(field()->pos(), before) << "the field goes along with its box";
    Command(ID_ZEL_FIT_WINDOW);
    Settle();
    ClickAndWait(AtWorld(3900, 2900));
    EXPECT_EQ(text->GetText(), "50 % of ");
    EXPECT_EQ(field(), nullptr) << "clicking elsewhere ends it";
    // Several lines.
    text->SetStyle(1, 0);
    ClickAndWait(AtWorld(400, 500));
    auto* const lines = area_->findChild<QPlainTextEdit*>();
    ASSERT_NE(lines, nullptr);
    lines->selectAll();
    QTest::keyClicks(lines, "a");
    QTest::keyClick(lines, Qt::Key_Return);
    QTest::keyClicks(lines, "b");
    // The object goes while it is selected, focused and edited.
    EXPECT_EQ(Selected(), 1);
    drawing_->Del(text);
    Settle();
    EXPECT_EQ(area_->findChild<QPlainTextEdit*>(), nullptr);
    EXPECT_EQ(Selected(), 0);
    ClickAndWait(AtWorld(400, 500));
    EXPECT_EQ(Selected(), 0);
}

TEST_F(MouseEditing, ObjectsMayGoWhileTheyAreDragged) {
    ClickAndWait(AtWorld(1500, 1500));
    Press(AtWorld(1500, 1500));
    DragTo(AtWorld(1600, 1600));
    drawing_->Del(rect_);
    DragTo(AtWorld(1700, 1700));
    Release(AtWorld(1700, 1700));
    Zel2* const ellipse = (*drawing_)[1];
    ClickAndWait(AtWorld(3250, 1700));
    ASSERT_TRUE(ellipse->Selected());
    Press(At(DeviceOf(ellipse->Cpt(0))));
    ASSERT_EQ(Viewer().GetMode(), ZelViewer::MODE_DRAG_PART);
    DragTo(AtWorld(2600, 2600));
    drawing_->Del(ellipse);
    DragTo(AtWorld(2700, 2500));
    Release(AtWorld(2700, 2500));
    EXPECT_EQ(Viewer().GetMode(), ZelViewer::MODE_SELECT);
    view_->Invalidate();
    QImage blank = Grab();
    blank.fill(Qt::white);
    EXPECT_EQ(Grab(), blank) << "no outline stays behind";
    EXPECT_EQ(Selected(), 0);
}

}  // namespace
