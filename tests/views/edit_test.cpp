#include "FakeWindows.h"

#include <zel/Zel2Edit.h>
#include <zel/platform/FrameWnd.h>
#include <zel/zel.h>

#include <gtest/gtest.h>

namespace {

using zel::WindowKind;
using zel::test::FakePeer;
using zel::test::OnFakeScreen;

// A view of 400 x 300 pixels on a drawing of 4000 x 3000 thousandths of an inch, 96 pixels to an inch.
class Editing : public OnFakeScreen {
  protected:
    Editing() {
        drawing_ = new Zel2Main;
        text_ = new Zel2TRect(CRect(1000, 1000, 1999, 1499), "before", -1, -1);
        drawing_->Add(text_);
        text_->RegisterFont("f", "Arial", 100, 0, 0, 0, 0, 0, 0);
        drawing_->Add(new Zel2Rect(CRect(0, 0, 3999, 2999), -1, -1, Zel2Rect::RECTANGLE, -1));
        frame_->Create("f", CRect(0, 0, 400, 300));
        frame_->SetView(view_);
        view_->SetDrawing(drawing_);
        view_->Viewer()->SetEditHandler([this](zel::ViewerEdit edit) { edits_.push_back(edit); });
        Of(view_).Paint();
    }
    ~Editing() override {
        if (frame_) frame_->DestroyWindow();
    }
    FakePeer* Field() { return screen_->Newest(WindowKind::EDIT); }
    CRect BoxOnScreen() {
        CRect box = view_->Viewer()->Root().Map()->ToDevice(text_->AbsRect());
        box.NormalizeRect();
        return box;
    }

    CFrameWnd* frame_ = new CFrameWnd;
    CZelView* view_ = new CZelView;
    Zel2Main* drawing_;
    Zel2TRect* text_;
    std::vector<zel::ViewerEdit> edits_;
};

TEST_F(Editing, TakesWhatWasTypedInEveryWayOfEnding) {
    text_->Select(1);
    ASSERT_TRUE(Field());
    EXPECT_EQ(Field()->text, "before");
    EXPECT_EQ(screen_->focus, Field());
    EXPECT_EQ(Field()->spec.extendedStyle, WS_EX_TRANSPARENT);
    EXPECT_EQ(Field()->spec.parent, &Of(view_));
    text_->Select(1);
    EXPECT_EQ(std::count_if(screen_->peers.begin(), screen_->peers.end(),
                            [](FakePeer* p) { return p->spec.kind == WindowKind::EDIT; }),
              1)
        << "one editor at a time";
    Field()->Type("asked");
    EXPECT_STREQ(text_->GetText(), "asked");
    text_->SetText("set to %1", "this");
    EXPECT_EQ(Field()->text, "set to this");
    Field()->Type("closed");
    Field()->Send(WM_CLOSE);
    EXPECT_EQ(Field(), nullptr);
    EXPECT_STREQ(text_->GetText(), "closed");
    text_->Select(1);
    Field()->Type("deselected");
    text_->Select(0);
    EXPECT_EQ(Field(), nullptr);
    EXPECT_STREQ(text_->GetText(), "deselected");
    EXPECT_EQ(edits_, std::vector{zel::ViewerEdit::TEXT});
    text_->Select(1);
    text_->Select(0);
    EXPECT_EQ(edits_.size(), 1U) << "nothing typed, nothing edited";
}

TEST_F(Editing, SurvivesItsWindowAndGoesWithItsObject) {
    text_->Select(1);
    Field()->Type("focus lost");
    Of(view_).TakeFocus();
    const Zel2TRect copy(*text_);
    EXPECT_STREQ(Zel2TRect(copy).GetText(), "focus lost");
    Field()->Type("view closed");
    Zel2Tools* const drawing = view_->Viewer()->Drawing();
    view_->Viewer()->Root().DetachChildren();
    frame_->DestroyWindow();
    frame_ = nullptr;
    EXPECT_STREQ(text_->GetText(), "view closed");
    text_->Select(0);
    EXPECT_STREQ(text_->GetText(), "view closed");
    delete drawing;
}

TEST_F(Editing, DeletingTheObjectClosesTheField) {
    text_->Select(1);
    drawing_->Del(text_);
    EXPECT_EQ(Field(), nullptr);
    Of(view_).Paint();
}

TEST_F(Editing, HasTheStyleOfTheText) {
    const struct {
        int wrap, format;
        DWORD style;
    } cases[] = {{1, 0, 0x50001044},         {1, DT_CENTER, 0x50001045}, {0, 0, 0x50000080},
                 {0, DT_CENTER, 0x50000081}, {0, DT_RIGHT, 0x50000082},  {1, DT_VCENTER, 0x50001044}};
    for (const auto& expected : cases) {
        text_->SetStyle(expected.wrap, expected.format);
        text_->Select(1);
        EXPECT_EQ(Field()->spec.style, expected.style);
        EXPECT_EQ(Field()->spec.id, 3000U);
        text_->Select(0);
    }
}

TEST_F(Editing, FollowsItsBox) {
    text_->SetStatus(Zel2::PROPAGATE, 1);
    text_->Select(1);
    CRect box = BoxOnScreen();
    box.InflateRect(-4, -4);  // three points of 96 pixels to 72 points
    EXPECT_EQ(Field()->area, box);
    view_->SendMessage(WM_COMMAND, ID_ZEL_FIT_WINDOW);
    view_->Viewer()->OnEnlarge(CPoint(200, 100));
    Of(view_).Paint();
    box = BoxOnScreen();
    box.InflateRect(-6, -6);
    EXPECT_EQ(Field()->area, box) << "margin and box at the zoom";
    EXPECT_EQ(Field()->font.lfHeight, -20) << "ten points at 96 to an inch, times 3/2";
    Field()->Type("typed");
    Field()->selection = {1, 3};
    text_->SetSize(CSize(1500, 800));
    EXPECT_EQ(Field()->text, "typed");
    EXPECT_EQ(Field()->selection, std::pair(1, 3));
    EXPECT_GT(Field()->area.Width(), box.Width());
}

TEST_F(Editing, DataFieldsEditTheirValue) {
    auto* field = new Zel2DataField(CRect(2000, 0, 2999, 399), "12 %", "share", -1, -1, -1);
    drawing_->Add(field);
    view_->Invalidate();
    Of(view_).Paint();
    field->Select(1);
    ASSERT_TRUE(Field());
    EXPECT_EQ(Field()->text, "12 %");
    Field()->Type("13 %");
    field->Select(0);
    EXPECT_STREQ(field->GetText(), "13 %");
    EXPECT_STREQ(field->GetLabel(), "share");
    EXPECT_FALSE(field->Selected());
    field->SetStatus(Zel2::PROPAGATE, 1);
    field->Select(1);
    EXPECT_TRUE(field->Selected());
    EXPECT_EQ(Field(), nullptr) << "then only the box is selected";
    field->Select(0);
}

// What a click finds with exact rules: the first of what is drawn last.
TEST_F(Editing, ClicksFindSeriesGraphsAndTurnedTexts) {
    drawing_->SetRules(ZelRules::EXACT);
    auto* graph = new Zel2Graph;
    graph->SetGraphSize(CSize(3000, 2000));
    graph->SetMargins(500, 500, 500, 500);
    graph->SetCoord(0, 0, 10, 10);
    auto* series = new Zel2PointArray;
    for (const double x : {0.0, 10.0}) series->Append(x, x);
    series->SetPen(drawing_->RegisterPen("line", DrawPen::SOLID, 0, 0, 0, nullptr));
    graph->AddIn(series);
    drawing_->Add(graph);
    auto* turned = new Zel2Text("upwards", CPoint(3500, 1000), 0, 0, 900, -1, -1, {-1, 0});
    drawing_->Add(turned);
    view_->Invalidate();
    Of(view_).Paint();
    const auto at = [&](int x, int y) -> Zel2* {
        Zel2Selection found;
        view_->Viewer()->Root().SelectAt(view_->Viewer()->Root().Map()->ToDevice(CPoint(x, y)), &found);
        return found.GetSize() > 0 ? found[0] : nullptr;
    };
    EXPECT_EQ(at(1500, 1000), series);
    EXPECT_EQ(at(1500, 1000 + 35), series) << "three pixels beside";
    EXPECT_EQ(at(1500, 1000 + 120), graph);
    EXPECT_EQ(at(100, 100), graph);
    EXPECT_EQ(at(3550, 1200), turned);
    EXPECT_NE(at(3450, 1200), turned);
    EXPECT_NE(at(3550, 900), turned);
    graph->Drag(3, view_->Viewer()->Root().Map()->ToDevice(CPoint(3400, 2400)));
    EXPECT_NEAR(graph->Size().cx, 3400, 12);
    EXPECT_NEAR(graph->Size().cy, 2400, 12);
}

// Texts at a point show where they end, and are repainted whole; pages of reports are open to the mouse.
TEST_F(Editing, SelectsTextsAtAPointAndWhatStandsOnPages) {
    drawing_->SetRules(ZelRules::EXACT);
    auto* text = new Zel2Text("a text of some length", CPoint(1000, 2000), 0, 0, 0, -1, -1, {-1, 0});
    drawing_->Add(text);
    auto* report = new Zel2Report;
    drawing_->Add(report);
    auto* row = new Zel2Row;
    auto* field = new Zel2DataField(CRect(0, 0, 899, 399), "1", "x", -1, -1, -1);
    row->Add(new Zel2Rect(CRect(0, 0, 999, 399), -1, -1, Zel2Rect::RECTANGLE, -1));
    row->Add(field);
    report->Append(row);
    report->MakePages();
    view_->Invalidate();
    Of(view_).Paint();
    ZelViewer& viewer = *view_->Viewer();
    const auto found = [&](int x, int y) -> Zel2* {
        MouseStatus status;
        status.point = viewer.Root().Map()->ToDevice(CPoint(x, y));
        return viewer.Root().OnMouse(status).object;
    };
    EXPECT_EQ(found(1500, 200), field);
    EXPECT_EQ(found(500, 200), (*row)[0]);
    Zel2Selection band;
    band.SetAccumulate(1);
    viewer.Root().SelectAt(CRect(0, 0, 400, 300), &band);
    bool inBand = false;
    for (int i = 0; i < band.GetSize(); ++i) inBand |= band[i] == field;
    EXPECT_TRUE(inBand);
    EXPECT_EQ(text->nCpt(), 0U);
    EXPECT_EQ(text->Cpt(0), CPoint(1000, 2000));
    const CPoint end = text->Cpt(2);
    EXPECT_GT(end.x, 2000);
    EXPECT_LT(end.y, 1950);
    ASSERT_EQ(found(end.x - 30, 1990), text);
    // Moved, it is repainted where it was: a pixel near its end is invalid.
    Of(view_).Paint();
    text->MoveTo(CPoint(1000, 2200));
    const CPoint left = viewer.Root().Map()->ToDevice(CPoint(end.x - 30, 1990));
    bool invalid = false;
    for (const CRect& part : Of(view_).invalid) invalid |= part.PtInRect(left) != 0;
    EXPECT_TRUE(invalid);
}

}  // namespace
