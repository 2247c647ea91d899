#include "FakeWindows.h"

#include <zel/platform/FrameWnd.h>

#include <gtest/gtest.h>

namespace {

using zel::test::FakePeer;
using zel::test::OnFakeScreen;

constexpr UINT kRed = 40001, kBlue = 40002, kNobody = 40003;

class Sheet : public CScrollView {
  public:
    void OnDraw(CDC* dc) override {
        dc->MoveTo(0, 0);
        dc->LineTo(300, 200);
    }
    BOOL OnPreparePrinting(CPrintInfo* info) override {
        info->SetMaxPage(3);
        return DoPreparePrinting(info);
    }
    void OnPrint(CDC* dc, CPrintInfo* info) override {
        dc->TextOut(0, 0, CString("p") + std::to_string(info->m_nCurPage).c_str());
    }
    void OnUpdate(CView*, LPARAM hint, CObject*) override { lastHint = hint; }
    int red = 0;
    LPARAM lastHint = -1;

  protected:
    DECLARE_MESSAGE_MAP()
    void OnRed() { ++red; }
    void OnUpdateRed(CCmdUI* ui) {
        ui->SetCheck(red % 2);
        ui->Enable(red < 2);
    }
};

BEGIN_MESSAGE_MAP(Sheet, CScrollView)
ON_COMMAND(kRed, OnRed)
ON_UPDATE_COMMAND_UI(kRed, OnUpdateRed)
ON_COMMAND(ID_FILE_PRINT, OnFilePrint)
ON_COMMAND(ID_FILE_PRINT_PREVIEW, OnFilePrintPreview)
END_MESSAGE_MAP()

class Paper : public CDocument {
  public:
    int blue = 0;

  protected:
    DECLARE_MESSAGE_MAP()
    void OnBlue() { ++blue; }
};

BEGIN_MESSAGE_MAP(Paper, CDocument)
ON_COMMAND(kBlue, OnBlue)
END_MESSAGE_MAP()

class View : public OnFakeScreen {
  protected:
    View() {
        frame_->Create("Frame", CRect(0, 0, 200, 120));
        frame_->SetView(sheet_, &paper_);
        peer_ = &Of(sheet_);
    }
    ~View() override {
        if (!frame_->DestroyWindow()) delete frame_;
    }
    void Command(UINT id) { Of(frame_).Send(WM_COMMAND, id); }

    Paper paper_;
    CFrameWnd* frame_ = new CFrameWnd;
    Sheet* sheet_ = new Sheet;
    FakePeer* peer_;
};

TEST_F(View, ScrollsWhatIsLargerThanItsWindow) {
    const CSize total(300, 110);
    sheet_->SetScrollSizes(MM_TEXT, total);
    EXPECT_EQ(peer_->scroll[SB_HORZ], (zel::ScrollState{300, 184, 0}))
        << "the bar below leaves no room for the height";
    EXPECT_EQ(peer_->scroll[SB_VERT], (zel::ScrollState{110, 104, 0}));
    sheet_->ScrollToPosition(CPoint(1000, 2));
    EXPECT_EQ(sheet_->GetDeviceScrollPosition(), CPoint(116, 2));
    EXPECT_EQ(peer_->scrolled, CSize(-116, -2));
    EXPECT_EQ(peer_->scroll[SB_HORZ].position, 116);
    EXPECT_NE(peer_->Paint().find("viewport -116,-2"), std::string::npos);
    peer_->Send(WM_HSCROLL, SB_LINELEFT);
    EXPECT_EQ(sheet_->GetDeviceScrollPosition().x, 113) << "a tenth of a tenth";
    peer_->Send(WM_HSCROLL, SB_THUMBTRACK, 50);
    EXPECT_EQ(sheet_->GetDeviceScrollPosition().x, 50);
    peer_->Send(WM_HSCROLL, SB_ENDSCROLL);
    peer_->Send(WM_VSCROLL, SB_BOTTOM);
    EXPECT_EQ(sheet_->GetDeviceScrollPosition(), CPoint(50, 6));
    for (int i = 0; i < 4; ++i) peer_->Send(WM_MOUSEWHEEL, MAKEWPARAM(0, 30), 0);
    EXPECT_EQ(sheet_->GetDeviceScrollPosition().y, 3) << "fine turns of a wheel add up";
    Of(frame_).Resize(CSize(1, 1));
    EXPECT_EQ(peer_->scroll[SB_VERT].page, 0);
    Of(frame_).Resize(CSize(400, 300));
    EXPECT_EQ(sheet_->GetDeviceScrollPosition(), CPoint(0, 0));
    EXPECT_EQ(peer_->ClientSize(), CSize(400, 300)) << "no bars where all is seen";
    sheet_->SetScrollSizes(MM_LOMETRIC, CSize(2540, 2540));
    EXPECT_EQ(peer_->scroll[SB_HORZ].range, 960);
}

TEST_F(View, RoutesCommandsFromFrameToViewToDocument) {
    Command(kRed);
    Command(kBlue);
    Command(kNobody);
    EXPECT_EQ(sheet_->red, 1);
    EXPECT_EQ(paper_.blue, 1);
    CToolBar bar;
    bar.Create(frame_);
    const UINT ids[] = {kRed, ID_SEPARATOR, kBlue, kNobody};
    bar.SetButtons(ids, 4);
    frame_->DockControlBar(&bar);
    Of(&bar).Send(WM_IDLEUPDATECMDUI, TRUE);
    auto& states = Of(&bar).states;
    EXPECT_EQ(states[kRed], std::pair(true, true));
    EXPECT_EQ(states[kBlue], std::pair(true, false)) << "somebody takes it";
    EXPECT_EQ(states[kNobody], std::pair(false, false));
    Of(&bar).Use(BN_CLICKED, kRed);
    EXPECT_EQ(sheet_->red, 2);
    Of(&bar).Use(BN_CLICKED, kRed);
    EXPECT_EQ(sheet_->red, 2) << "disabled by now";
    paper_.UpdateAllViews(nullptr, 9);
    EXPECT_EQ(sheet_->lastHint, 9);
    bar.SetButtonInfo(1, 77, TBBS_SEPARATOR, 120);
    EXPECT_EQ(Of(&bar).buttons[1].width, 120);
    EXPECT_EQ(bar.CommandToIndex(kBlue), 2);
    CRect place;
    bar.GetItemRect(9, &place);
    EXPECT_TRUE(place.IsRectEmpty());
    bar.DestroyWindow();
}

TEST_F(View, PrintsItsPages) {
    paper_.SetTitle("Sheet 1");
    Command(ID_FILE_PRINT);
    EXPECT_EQ(screen_->printed, std::vector<std::string>{"Sheet 1"});
    const std::string printed = screen_->pages;
    std::string texts;
    for (std::size_t at = 0; (at = printed.find("\"p", at)) != std::string::npos; ++at)
        texts += printed.substr(at, 4);
    EXPECT_EQ(texts, "\"p1\"\"p2\"\"p3\"");
    EXPECT_TRUE(printed.ends_with("finished\n"));
    screen_->pages.clear();
    Command(ID_FILE_PRINT_PREVIEW);
    EXPECT_EQ(screen_->pages, printed) << "the preview shows what is printed";
    EXPECT_EQ(screen_->printed.size(), 1U) << "and asks for no printer";
    screen_->pages.clear();
    screen_->hasPrinter = false;
    Command(ID_FILE_PRINT);
    EXPECT_EQ(screen_->pages, "") << "cancelled";
}

TEST_F(View, GoesWithItsWindow) {
    frame_->DestroyWindow();
    EXPECT_TRUE(paper_.Views().empty());
    frame_ = new CFrameWnd;
    frame_->Create("again");
    class Program : public CWinApp {
      public:
        BOOL InitInstance() override { return TRUE; }
        int ExitInstance() override { return 5; }
    } program;
    program.m_pMainWnd = frame_;
    screen_->script = {[&] { Of(frame_).Send(WM_CLOSE); }};
    EXPECT_EQ(program.Run(), 5);
    EXPECT_EQ(program.m_pMainWnd, nullptr);
    frame_ = new CFrameWnd;
}

}  // namespace
