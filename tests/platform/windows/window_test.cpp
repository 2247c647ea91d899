#include "FakeWindows.h"
#include "Support.h"

#include <zel/platform/Controls.h>
#include <zel/platform/RectTracker.h>

#include <gtest/gtest.h>

namespace {

using zel::test::FakePeer;
using zel::test::MessageOf;
using zel::test::OnFakeScreen;

// Writes down what comes.
class Noted : public CWnd {
  public:
    explicit Noted(std::string& log) : log_(log) {}
    int refuse = 0;
    bool faulty = false;

  protected:
    DECLARE_MESSAGE_MAP()
    int OnCreate(LPCREATESTRUCT cs) {
        log_ += "create " + std::to_string(cs->cx) + ";";
        cs->dwExStyle |= WS_EX_TRANSPARENT;
        return refuse ? -1 : CWnd::OnCreate(cs);
    }
    void OnDestroy() {
        log_ += Peer() ? "destroy;" : "too late;";
        CWnd::OnDestroy();
    }
    void PostNcDestroy() override { log_ += Peer() ? "too early;" : "gone;"; }
    void OnSize(UINT, int cx, int cy) {
        log_ += "size " + std::to_string(cx) + "x" + std::to_string(cy) + ";";
    }
    void OnMouseMove(UINT flags, CPoint at) {
        log_ +=
            "move " + std::to_string(flags) + " " + std::to_string(at.x) + "," + std::to_string(at.y) + ";";
        CWnd::OnMouseMove(flags, at);
    }
    void OnTimer(UINT_PTR id) { log_ += "timer " + std::to_string(id) + ";"; }
    void OnCaptureChanged(CWnd* to) { log_ += to ? "capture taken;" : "capture released;"; }
    void OnSetFocus(CWnd*) { log_ += "focus;"; }
    void OnKillFocus(CWnd*) { log_ += "no focus;"; }
    BOOL OnMouseWheel(UINT, short delta, CPoint) {
        log_ += "wheel " + std::to_string(delta) + ";";
        return TRUE;
    }
    LRESULT OnUser(WPARAM w, LPARAM) {
        if (w == 7) AfxThrowInvalidArgException("Seven is too much.");
        return static_cast<LRESULT>(w) * 2;
    }
    void OnPaint() {
        CPaintDC dc(this);
        if (faulty) AfxThrowInvalidArgException("It cannot be drawn.");
        log_ += "paint " + std::to_string(dc.m_ps.rcPaint.right) + ";";
    }

  private:
    std::string& log_;
};

BEGIN_MESSAGE_MAP(Noted, CWnd)
ON_WM_CREATE()
ON_WM_DESTROY()
ON_WM_SIZE()
ON_WM_MOUSEMOVE()
ON_WM_TIMER()
ON_WM_CAPTURECHANGED()
ON_WM_SETFOCUS()
ON_WM_KILLFOCUS()
ON_WM_MOUSEWHEEL()
ON_WM_PAINT()
ON_MESSAGE(WM_USER + 1, OnUser)
END_MESSAGE_MAP()

class Window : public OnFakeScreen {
  protected:
    void Make(Noted& window, CWnd* parent = nullptr, UINT id = 0) {
        window.Create(nullptr, "w", parent ? WS_CHILD | WS_VISIBLE : WS_VISIBLE, CRect(10, 20, 110, 70),
                      parent, id);
    }
    std::string log_;
};

TEST_F(Window, LivesFromCreateToNcDestroy) {
    std::string inner;
    Noted window(log_), child(inner);
    Make(window);
    Make(child, &window, 5);
    EXPECT_EQ(Of(&window).spec.extendedStyle, WS_EX_TRANSPARENT) << "WM_CREATE may still change it";
    EXPECT_TRUE(window.IsWindowVisible());
    EXPECT_EQ(window.GetDlgItem(5), &child);
    CPoint at(1, 2);
    child.ClientToScreen(&at);
    EXPECT_EQ(at, CPoint(21, 42));
    child.ScreenToClient(&at);
    EXPECT_EQ(at, CPoint(1, 2));
    CRect place;
    child.GetWindowRect(&place);
    EXPECT_EQ(place, CRect(20, 40, 120, 90));
    EXPECT_TRUE(window.DestroyWindow());
    EXPECT_FALSE(window.DestroyWindow());
    EXPECT_EQ(log_, "create 100;destroy;gone;");
    EXPECT_EQ(inner, "create 100;destroy;gone;") << "children go first, and are told";
    EXPECT_EQ(child.Peer(), nullptr);
    Noted refused(log_);
    refused.refuse = 1;
    EXPECT_FALSE(refused.Create(nullptr, "", 0, CRect(), nullptr, 0));
    EXPECT_EQ(refused.Peer(), nullptr);
}

TEST_F(Window, ReceivesWhatUsersDo) {
    Noted window(log_);
    Make(window);
    log_.clear();
    FakePeer& peer = Of(&window);
    peer.Mouse(WM_MOUSEMOVE, MK_SHIFT, CPoint(-3, 7));
    peer.Send(WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-120)), 0);
    peer.Resize(CSize(40000, 30));
    window.SetTimer(4, 250);
    EXPECT_EQ(peer.timers[4], 250U);
    peer.Send(WM_TIMER, 4);
    window.KillTimer(4);
    EXPECT_EQ(peer.timers[4], 0U);
    EXPECT_EQ(log_, "move 4 -3,7;wheel -120;size 40000x30;timer 4;");
    log_.clear();
    peer.invalid.clear();
    const CRect part(5, 5, 9, 9);
    window.InvalidateRect(&part);
    window.UpdateWindow();
    window.UpdateWindow();
    EXPECT_EQ(log_, "paint 9;") << "once for what is invalid";
    EXPECT_NE(peer.device.Text().find("clip 5,5 9,9"), std::string::npos);
    window.faulty = true;
    for (int i = 0; i < 3; ++i) {
        window.Invalidate();
        peer.Paint();
    }
    EXPECT_TRUE(screen_->boxes.empty()) << "no box in the middle of painting";
    ASSERT_EQ(screen_->posted.size(), 1U) << "and not one for each";
    screen_->posted.front()();
    screen_->posted.clear();
    EXPECT_EQ(screen_->boxes, std::vector<std::string>{"It cannot be drawn."});
    screen_->boxes.clear();
    EXPECT_EQ(window.SendMessage(WM_USER + 1, 21), 42);
    EXPECT_EQ(peer.Send(WM_USER + 1, 7), 0);
    EXPECT_EQ(screen_->boxes, std::vector<std::string>{"Seven is too much."})
        << "the user reads it, the program goes on";
}

TEST_F(Window, HasCaptureFocusAndCursorOneAtATime) {
    std::string otherLog;
    Noted window(log_), other(otherLog);
    Make(window);
    Make(other);
    log_.clear();
    window.SetCapture();
    EXPECT_TRUE(Of(&window).captured);
    Of(&window).Mouse(WM_MOUSEMOVE, 0, CPoint(500, 500));
    const HCURSOR arrow = ::SetCursor(LoadCursor(IDC_SIZEALL));
    EXPECT_EQ(arrow->id, IDC_ARROW);
    EXPECT_EQ(Of(&window).cursor, IDC_SIZEALL) << "under capture the cursor is the window's";
    other.SetCapture();
    EXPECT_FALSE(Of(&window).captured);
    EXPECT_EQ(CWnd::GetCapture(), &other);
    other.DestroyWindow();
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
    EXPECT_FALSE(ReleaseCapture());
    Of(&window).Mouse(WM_MOUSEMOVE, 0, CPoint(1, 1));
    EXPECT_EQ(Of(&window).cursor, IDC_ARROW) << "free, each window shows its own";
    window.SetFocus();
    EXPECT_EQ(CWnd::GetFocus(), &window);
    EXPECT_NE(log_.find("capture taken;"), std::string::npos);
    EXPECT_NE(log_.find("focus;"), std::string::npos);
    EXPECT_EQ(LoadCursor(4711), nullptr);
}

TEST_F(Window, DropsMessagesPostedToTheDead) {
    {
        Noted window(log_);
        Make(window);
        window.PostMessage(WM_TIMER, 1);
        log_.clear();
        screen_->posted.front()();
        window.PostMessage(WM_TIMER, 2);
    }
    screen_->posted.back()();
    EXPECT_EQ(log_, "timer 1;") << "a destructor does not call its own class any more";
}

TEST_F(Window, TracksARubberBand) {
    Noted window(log_);
    Make(window);
    FakePeer& peer = Of(&window);
    peer.Paint();
    peer.device.Clear();
    const auto move = [&](int x, int y) { peer.Mouse(WM_MOUSEMOVE, MK_LBUTTON, CPoint(x, y)); };
    screen_->script = {[&] { move(50, 40); }, [&] { move(30, 5); },
                       [&] { peer.Mouse(WM_LBUTTONUP, 0, CPoint(2, 5)); }};
    CRectTracker tracker;
    log_.clear();
    EXPECT_TRUE(tracker.TrackRubberBand(&window, CPoint(10, 10)));
    EXPECT_EQ(tracker.m_rect, CRect(10, 10, 2, 5)) << "as the mouse went";
    const std::string shape1 = "rectangle 10,10 50,40\n", shape2 = "rectangle 10,5 30,10\n",
                      shape3 = "rectangle 2,5 10,10\n";
    EXPECT_EQ(peer.device.Text(), "mode 10\npen dot 1 #000000\nbrush null\n" + shape1 + shape1 + shape2 +
                                      shape2 + shape3 + shape3)
        << "each outline is drawn twice";
    EXPECT_EQ(log_.find("move"), std::string::npos) << "the window itself sees nothing of it";
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
    screen_->script = {[&] { move(50, 40); }, [&] { peer.Send(WM_KEYDOWN, VK_ESCAPE); }};
    EXPECT_FALSE(tracker.TrackRubberBand(&window, CPoint(10, 10)));
    screen_->script = {[&] { peer.Mouse(WM_LBUTTONUP, 0, CPoint(10, 30)); }};
    EXPECT_FALSE(tracker.TrackRubberBand(&window, CPoint(10, 10))) << "a line is no rectangle";
    screen_->script = {[&] { window.DestroyWindow(); }};
    EXPECT_FALSE(tracker.TrackRubberBand(&window, CPoint(10, 10)));
}

TEST(WindowWithoutSystem, SaysWhatIsMissing) {
    CWnd window;
    EXPECT_EQ(MessageOf<CNotSupportedException>([&] { window.Create(nullptr, "", 0, CRect(), nullptr, 0); }),
              "Cannot make a window: that needs a back end such as zel::widgets, and none is installed.");
    EXPECT_NE(MessageOf<CResourceException>([&] { CClientDC dc(&window); }), "");
    std::string asked;
    zel::SetMessageBoxHandler([&](const std::string& text, UINT) {
        asked = text;
        return IDYES;
    });
    EXPECT_EQ(AfxMessageBox("Really?", MB_YESNO), IDYES);
    EXPECT_EQ(asked, "Really?");
    zel::SetMessageBoxHandler(nullptr);
    EXPECT_EQ(zel::CautiousAnswer(MB_YESNO), IDNO);
    EXPECT_EQ(zel::CautiousAnswer(MB_YESNOCANCEL | MB_ICONQUESTION), IDCANCEL);
    EXPECT_EQ(zel::CautiousAnswer(MB_OK), IDOK);
}

}  // namespace
