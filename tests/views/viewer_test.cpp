#include "FakeWindows.h"
#include "Support.h"

#include <zel/platform/FrameWnd.h>
#include <zel/zel.h>

#include <climits>
#include <gtest/gtest.h>

namespace {

using zel::test::FakePeer;
using zel::test::OnFakeScreen;

constexpr CSize kClient(400, 300);

// A view of 400 x 300 pixels on a drawing of 4000 x 2000 thousandths of an inch: 384 x 192 pixels at 96 per
// inch.
class Viewer : public OnFakeScreen {
  protected:
    Viewer() {
        drawing_ = new Zel2Main;
        a_ = AddRect(CRect(1000, 500, 1999, 999));
        b_ = AddRect(CRect(2500, 500, 3499, 999));
        drawing_->Add(new Zel2Text("corner", CRect(3900, 1900, 3999, 1999), -1, 0, 0, -1, -1, {-1, 0}));
        frame_->Create("f", CRect(CPoint(), kClient));
        frame_->SetView(view_);
        view_->SetDrawing(drawing_);
        viewer_ = view_->Viewer();
        peer_ = &Of(view_);
        peer_->Paint();
    }
    ~Viewer() override {
        if (frame_) frame_->DestroyWindow();
    }
    Zel2Rect* AddRect(const CRect& r) {
        auto* rect = new Zel2Rect(r, -1, -1, Zel2Rect::RECTANGLE, -1);
        drawing_->Add(rect);
        return rect;
    }
    void Command(UINT id) { Of(frame_).Send(WM_COMMAND, id); }
    CPoint Centre(Zel2Rect* rect) {
        const CRect box = viewer_->Root().Map()->ToDevice(rect->AbsRect());
        return {(box.left + box.right) / 2, (box.top + box.bottom) / 2};
    }
    CPoint Handle(Zel2Rect* rect, int i) { return viewer_->Root().Map()->ToDevice(rect->Cpt(i)); }
    // A press that makes no rectangle.
    void Click(const CPoint& at, UINT keys = 0) {
        Hover(at);
        screen_->script.emplace_back([=, this] { peer_->Mouse(WM_LBUTTONUP, keys, at); });
        peer_->Mouse(WM_LBUTTONDOWN, MK_LBUTTON | keys, at);
    }
    void Hover(const CPoint& at) { peer_->Mouse(WM_MOUSEMOVE, 0, at); }
    int Zoom() { return viewer_->Root().Map()->Scale(); }

    CFrameWnd* frame_ = new CFrameWnd;
    CZelView* view_ = new CZelView;
    Zel2Main* drawing_;
    Zel2Rect* a_;
    Zel2Rect* b_;
    ZelViewer* viewer_ = nullptr;
    FakePeer* peer_ = nullptr;
};

TEST_F(Viewer, ZoomsInStepsAroundThePointer) {
    const CPoint at(100, 80);
    const CPoint world = viewer_->Root().Map()->FromDevice(at);
    viewer_->OnEnlarge(at);
    EXPECT_EQ(viewer_->GetScale(), 1500);
    EXPECT_EQ(viewer_->GetLgGraphsSize(), CSize(576, 288));
    EXPECT_EQ(viewer_->Root().Map()->ToDevice(world), screen_->cursor)
        << "what lay under the pointer stays there";
    viewer_->OnReduce(at);
    EXPECT_EQ(viewer_->GetScale(), 1000);
    viewer_->OnReduce(at);
    EXPECT_EQ(viewer_->GetScale(), 667);
    for (int i = 0; i < 3; ++i) {
        view_->Invalidate();
        peer_->Paint();
    }
    EXPECT_NEAR(Zoom(), 667, 1) << "a repaint does not zoom";
    for (int i = 0; i < 30; ++i) viewer_->OnEnlarge(at);
    EXPECT_EQ(viewer_->GetScale(), 32000) << "the limit";
    viewer_->Root().Map()->SetAbsoluteZoom(1000, 999);
    viewer_->OnEnlarge(at);
    EXPECT_EQ(viewer_->Root().Map()->ZoomNumerator(), 750);
    EXPECT_EQ(viewer_->Root().Map()->ZoomDenominator(), 499);
}

TEST_F(Viewer, ZoomsOutForEverOnlyWithClassicRules) {
    for (int i = 0; i < 40; ++i) viewer_->OnReduce(CPoint(10, 10));
    EXPECT_EQ(viewer_->GetScale(), 0);
    drawing_->SetRules(ZelRules::EXACT);
    peer_->Paint();
    view_->Invalidate();
    peer_->Paint();
    EXPECT_EQ(viewer_->Root().Rules(), ZelRules::EXACT) << "clips and printing follow the drawing";
    Command(ID_ZEL_FIT_WINDOW);
    EXPECT_EQ(viewer_->GetScale(), Zoom());
    EXPECT_GT(Zoom(), 0) << "a fit leaves a zoom of nothing behind";
    for (int i = 0; i < 40; ++i) viewer_->OnReduce(CPoint(10, 10));
    EXPECT_GT(viewer_->Root().Map()->ZoomNumerator(), 0);
    for (int i = 0; i < 60; ++i) viewer_->OnEnlarge(CPoint(10, 10));
    EXPECT_EQ(viewer_->GetScale(), 32000) << "and one gets back";
}

TEST_F(Viewer, FitsTheDrawingAndFollowsTheWindow) {
    Command(ID_ZEL_FIT_WIDTH);
    EXPECT_EQ(viewer_->GetZoomType(), ZelViewer::ZOOM_FIT_HORIZONTALLY);
    EXPECT_NEAR(viewer_->GetLgGraphsSize().cx, 400, 1);
    Command(ID_ZEL_FIT_HEIGHT);
    EXPECT_NEAR(viewer_->GetLgGraphsSize().cy, 284, 2) << "less the bar that the width now needs";
    Command(ID_ZEL_FIT_WINDOW);
    EXPECT_EQ(viewer_->GetZoomType(), ZelViewer::ZOOM_FIT_WINDOW);
    EXPECT_LE(viewer_->GetLgGraphsSize().cx, 400);
    EXPECT_NEAR(viewer_->GetLgGraphsSize().cx, 400, 2);
    Of(frame_).Resize(CSize(1000, 150));
    EXPECT_NEAR(viewer_->GetLgGraphsSize().cy, 150, 2) << "a wide window: the height decides";
    peer_->Paint();
    EXPECT_NEAR(viewer_->GetLgGraphsSize().cy, 150, 2);
    for (const CSize size : {CSize(1, 1), CSize(0, 0), CSize(1, 3000), CSize(3000, 1)}) {
        Of(frame_).Resize(size);
        peer_->Paint();
    }
    Of(frame_).Resize(kClient);
    EXPECT_NEAR(viewer_->GetLgGraphsSize().cx, 400, 2);
}

TEST_F(Viewer, ZoomsToARectangle) {
    Command(ID_ZEL_ZOOM_RECTANGLE);
    EXPECT_EQ(viewer_->GetMode(), ZelViewer::MODE_ZOOM_RECTANGLE);
    screen_->script = {[&] { peer_->Mouse(WM_LBUTTONUP, 0, CPoint(50, 40)); }};
    peer_->Mouse(WM_LBUTTONDOWN, MK_LBUTTON, CPoint(150, 90));
    EXPECT_EQ(viewer_->GetMode(), ZelViewer::MODE_SELECT);
    EXPECT_NEAR(viewer_->GetScale(), 4000, 10) << "400 pixels show the rectangle's 100";
    EXPECT_EQ(view_->GetDeviceScrollPosition().x, 200);
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
    const CRect world = viewer_->GetZoomRectangle();
    EXPECT_NEAR(world.left, 521, 1);
    EXPECT_NEAR(world.Width(), 1042, 2);
    Command(ID_ZEL_ZOOM_RECTANGLE);
    screen_->script = {[&] { peer_->Mouse(WM_LBUTTONUP, 0, CPoint(151, 91)); }};
    peer_->Mouse(WM_LBUTTONDOWN, MK_LBUTTON, CPoint(150, 90));
    EXPECT_LE(viewer_->GetLgGraphsSize().cx, 32767) << "where coordinates end";
    viewer_->Reset();
    delete drawing_;
    viewer_->AdjustViewToRectangle(CRect(1, 1, 5, 5));
    viewer_->OnEnlarge(CPoint(1, 1));
    Command(ID_ZEL_FIT_WINDOW);
    peer_->Paint();
    drawing_ = new Zel2Main;
    viewer_->Set(drawing_);
}

TEST_F(Viewer, SelectsByClickBandAndShift) {
    EXPECT_EQ(viewer_->GetMode(), ZelViewer::MODE_SELECT);
    Click(Centre(a_));
    ASSERT_EQ(viewer_->Selection().GetSize(), 1);
    EXPECT_TRUE(a_->Selected());
    EXPECT_EQ(viewer_->Selection().GetFocus(), a_);
    Click(Centre(b_), MK_SHIFT);
    EXPECT_EQ(viewer_->Selection().GetSize(), 2) << "the shift key adds";
    EXPECT_EQ(viewer_->Selection().GetFocus(), b_);
    Click(CPoint(5, 5));
    EXPECT_EQ(viewer_->Selection().GetSize(), 0);
    EXPECT_FALSE(a_->Selected());
    screen_->script = {[&] { peer_->Mouse(WM_LBUTTONUP, 0, CPoint(60, 60)); }};
    peer_->Mouse(WM_LBUTTONDOWN, MK_LBUTTON, CPoint(350, 180));
    EXPECT_EQ(viewer_->Selection().GetSize(), 2) << "a band upwards and to the left";
    const CPoint text = viewer_->Root().Map()->ToDevice(CPoint(3950, 1950));
    Click(text);
    EXPECT_EQ(viewer_->Selection().GetSize(), 0) << "classic: a text is not hit by a click";
    drawing_->SetRules(ZelRules::EXACT);
    Click(text);
    ASSERT_EQ(viewer_->Selection().GetSize(), 1);
    EXPECT_EQ(viewer_->Selection()[0], (*drawing_)[2]);
    Click(Centre(a_));
    Click(Centre(b_), MK_SHIFT);
    drawing_->Del(static_cast<Zel2*>(b_));
    EXPECT_EQ(viewer_->Selection().GetSize(), 1) << "what is deleted is not selected any more";
    EXPECT_EQ(viewer_->Selection().GetFocus(), nullptr);
    Click(CPoint(5, 5));
    EXPECT_EQ(viewer_->Selection().GetSize(), 0);
}

TEST_F(Viewer, DragsTheSelection) {
    Click(Centre(a_));
    const CPoint from = Centre(a_);
    Hover(from);
    EXPECT_EQ(viewer_->GetMode(), ZelViewer::MODE_OVER_SELECTION);
    EXPECT_EQ(peer_->cursor, IDC_SIZEALL);
    peer_->Paint();
    peer_->device.Clear();
    peer_->Drag({from, from + CSize(30, 10), from + CSize(48, -24)});
    EXPECT_EQ(viewer_->GetMode(), ZelViewer::MODE_SELECT);
    EXPECT_NEAR(a_->Origin().x, 1500, 12);
    EXPECT_NEAR(a_->Origin().y, 750, 12) << "up on the screen is up in the drawing";
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
    const CPoint there = Centre(a_);
    Hover(there);
    EXPECT_EQ(viewer_->Selection().GetFocus(), a_);
    Click(Centre(b_), MK_SHIFT);
    Hover(there);
    peer_->Drag({there});
    EXPECT_EQ(viewer_->Selection().GetFocus(), a_) << "a click without a move gives the focus";
    Hover(there);
    peer_->Mouse(WM_LBUTTONDOWN, MK_LBUTTON, there);
    drawing_->Del(static_cast<Zel2*>(a_));
    peer_->Mouse(WM_MOUSEMOVE, MK_LBUTTON, CPoint(-5000, 9000));
    peer_->Mouse(WM_LBUTTONUP, 0, CPoint(-5000, 9000));
    EXPECT_EQ(viewer_->GetMode(), ZelViewer::MODE_SELECT);
}

TEST_F(Viewer, ResizesByEachHandle) {
    static constexpr UINT kCursors[8] = {IDC_SIZENWSE, IDC_SIZEWE, IDC_SIZENESW, IDC_SIZENS,
                                         IDC_SIZENWSE, IDC_SIZEWE, IDC_SIZENESW, IDC_SIZENS};
    Click(Centre(a_));
    for (int i = 0; i < 8; ++i) {
        a_->MoveTo(CRect(1000, 500, 1999, 999));
        const CPoint at = Handle(a_, i);
        Hover(at);
        EXPECT_EQ(viewer_->GetMode(), ZelViewer::MODE_PART) << i;
        EXPECT_EQ(peer_->cursor, kCursors[i]) << i;
        peer_->Drag({at, at + CSize(12, 12)});
        EXPECT_EQ(viewer_->GetMode(), ZelViewer::MODE_SELECT);
        const CRect box = a_->AbsRect();
        const bool left = i <= 2, right = i >= 4 && i <= 6, top = i == 0 || i >= 6, bottom = i >= 2 && i <= 4;
        EXPECT_NEAR(box.left, left ? 1125 : 1000, 12) << i;
        EXPECT_NEAR(box.right, right ? 2125 : 2000, 12) << i;
        EXPECT_NEAR(box.top, bottom ? 375 : 500, 12) << i;
        EXPECT_NEAR(box.bottom, top ? 875 : 1000, 12) << i;
    }
    Hover(Handle(a_, 0));
    Hover(CPoint(2, 2));
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
    EXPECT_EQ(GetCursor()->id, IDC_ARROW);
}

TEST_F(Viewer, ZoomsByClickWhileItsCursorIsShown) {
    Command(ID_ZEL_ZOOM_IN);
    Hover(CPoint(20, 20));
    EXPECT_EQ(peer_->cursor, ZelViewer::kZoomCursor);
    EXPECT_EQ(CWnd::GetCapture(), view_);
    Hover(CPoint(-1, 20));
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
    Hover(CPoint(20, 20));
    peer_->Drag({CPoint(20, 20)});
    EXPECT_EQ(viewer_->GetScale(), 1500);
    EXPECT_EQ(viewer_->GetMode(), ZelViewer::MODE_SELECT);
    Command(ID_ZEL_ZOOM_OUT);
    peer_->Drag({CPoint(20, 20)});
    EXPECT_EQ(viewer_->GetScale(), 1000);
    Command(ID_ZEL_ZOOM_IN);
    Command(ID_ZEL_SELECT);
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
}

TEST_F(Viewer, ZoomsByWheelAndPansByTheMiddleButton) {
    const CPoint at(200, 150);
    const auto turn = [&](int parts) {
        for (int i = 0; i < parts; ++i)
            peer_->Send(WM_MOUSEWHEEL, MAKEWPARAM(MK_CONTROL, 60), MAKELPARAM(at.x, at.y));
    };
    turn(4);  // until there is something to scroll both ways
    const CPoint world = viewer_->Root().Map()->FromDevice(at);
    turn(4);
    EXPECT_NEAR(viewer_->GetScale(), 5062, 10) << "four whole steps";
    const CPoint after = viewer_->Root().Map()->ToDevice(world);
    EXPECT_NEAR(after.x, at.x, 2);
    EXPECT_NEAR(after.y, at.y, 2);
    const CPoint scroll = view_->GetDeviceScrollPosition();
    peer_->Mouse(WM_MBUTTONDOWN, MK_MBUTTON, at);
    peer_->Mouse(WM_MOUSEMOVE, MK_MBUTTON, at + CSize(-30, 20));
    EXPECT_EQ(view_->GetDeviceScrollPosition(), scroll + CSize(30, -20));
    peer_->Mouse(WM_MBUTTONUP, 0, at);
    peer_->Mouse(WM_MOUSEMOVE, 0, at);
    EXPECT_EQ(view_->GetDeviceScrollPosition(), scroll + CSize(30, -20));
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
}

TEST_F(Viewer, DrawsItsDragRectangleAway) {
    Hover(CPoint(20, 20));
    viewer_->OnLButtonUp(0, CPoint(0, 0));
    Command(ID_ZEL_ZOOM_IN);
    Command(ID_ZEL_SELECT);
    peer_->device.Clear();
    viewer_->UpdateDragRectangle(CPoint(10, 20));
    viewer_->UpdateDragRectangle(CPoint(0, 0));
    EXPECT_EQ(
        peer_->device.Text(),
        "mode 10\npen dot 1 #000000\npolyline 0,0 0,20 10,20 10,0 0,0\npolyline 0,0 0,20 10,20 10,0 0,0\n");
}

TEST_F(Viewer, ShowsItsModeOnTheToolbar) {
    const UINT ids[] = {ID_ZEL_SELECT, ID_ZEL_ZOOM_RECTANGLE, 0, ID_ZEL_FIT_WINDOW, ID_ZEL_PENS};
    EXPECT_EQ(view_->CreateToolBar(777, ids, 5), 1);
    FakePeer& bar = Of(view_->ToolBar());
    EXPECT_EQ(bar.buttons.size(), 5U + 2 * CToolBarPsComboBox::kCombos);
    EXPECT_NE(view_->ToolBar()->Combo(2).Peer(), nullptr);
    bar.Use(BN_CLICKED, ID_ZEL_ZOOM_RECTANGLE);
    bar.Send(WM_IDLEUPDATECMDUI, TRUE);
    EXPECT_EQ(bar.states[ID_ZEL_SELECT], std::pair(true, false));
    EXPECT_EQ(bar.states[ID_ZEL_ZOOM_RECTANGLE], std::pair(true, true));
    bar.Use(BN_CLICKED, ID_ZEL_FIT_WINDOW);
    bar.Send(WM_IDLEUPDATECMDUI, TRUE);
    EXPECT_EQ(bar.states[ID_ZEL_SELECT], std::pair(true, true)) << "fitting goes back to selecting";
    EXPECT_EQ(bar.states[ID_ZEL_FIT_WINDOW], std::pair(true, true));
    EXPECT_EQ(bar.states[ID_ZEL_PENS], std::pair(true, false));
}

TEST_F(Viewer, PrintsAtNaturalSizeWithoutHandles) {
    drawing_->RegisterColor("Red", RGB(255, 0, 0), RGB(9, 9, 9));
    drawing_->RegisterPen("P", 0, 1, 0, 0, nullptr);
    drawing_->RegisterFont("F", "Arial", 100, 0, 0, 0, 0, 0, 0);
    a_->SetColor(0);
    Click(Centre(a_));
    viewer_->OnEnlarge(CPoint(10, 10));
    peer_->Paint();
    peer_->device.Clear();
    Command(ID_FILE_PRINT);
    EXPECT_EQ(peer_->device.Text(), "") << "nothing is drawn on the window";
    EXPECT_NE(screen_->pages.find("fill 100,150 201,101 #090909\n"), std::string::npos)
        << "the printer colour at 100 units per inch: " << screen_->pages;
    const std::string printed = screen_->pages;
    screen_->pages.clear();
    Command(ID_FILE_PRINT_PREVIEW);
    EXPECT_EQ(screen_->pages, printed);
    EXPECT_EQ(viewer_->GetScale(), 1500);
    EXPECT_EQ(viewer_->Root().Window(), view_);
    EXPECT_NEAR(Zoom(), 1500, 1) << "the mouse finds what is shown";
}

TEST_F(Viewer, PrintsAllPagesOfAReport) {
    drawing_->SetRules(ZelRules::EXACT);
    auto* report = new Zel2Report;
    drawing_->Add(report);
    zel::ReportPaper paper;
    paper.footer.middle = "{page}/{pages};";
    report->SetPaper(paper);
    for (int page = 0; page < 3; ++page) {
        report->Append(new Zel2Rect(CRect(0, 0, 999, 999), -1, -1, Zel2Rect::RECTANGLE, -1));
        report->BreakPage();
    }
    report->MakePages();
    for (const UINT command : {ID_FILE_PRINT_PREVIEW, ID_FILE_PRINT_DIRECT}) {
        screen_->pages.clear();
        Command(command);
        EXPECT_EQ(zel::test::Letters(screen_->pages), "1/3;2/3;3/3;");
    }
}

TEST(IdentFilter, CutsNumbersInBrackets) {
    CString text = "Series[12]";
    EXPECT_EQ(CZelView::IdentFilter(text, 1), 12);
    EXPECT_EQ(text, "Series[12]");
    EXPECT_EQ(CZelView::IdentFilter(text, 2), 12);
    EXPECT_EQ(text, "Series");
    EXPECT_EQ(CZelView::IdentFilter(text, 0), INT_MIN);
    text = "a[b][7]";
    EXPECT_EQ(CZelView::IdentFilter(text, 0), 0);
    EXPECT_EQ(text, "a[b]");
    std::string told;
    zel::SetMessageBoxHandler([&](const std::string& message, UINT) {
        told = message;
        return IDOK;
    });
    EXPECT_EQ(CZelView::IdentFilter(text, 3), INT_MIN);
    EXPECT_EQ(told, "the option is not specified in CMultiGraphView::IdentFilter");
    zel::SetMessageBoxHandler(nullptr);
    text = "[";
    EXPECT_EQ(CZelView::IdentFilter(text, 2), 0);
}

TEST(CZelViewWithoutWindow, DoesNothing) {
    class Bare : public CZelView {
      public:
        ~Bare() override = default;
        void Try() {
            OnZoomPlus();
            OnExpwnd();
            OnEditFonttable();
            OnLButtonDown(0, CPoint(1, 1));
            SetDrawing(nullptr);
        }
    } view;
    view.Try();
    EXPECT_EQ(view.Viewer(), nullptr);
}

}  // namespace
