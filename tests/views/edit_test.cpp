#include "FakeWindows.h"
#include "Support.h"

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

// What can be seen of a series is hit, as wide as it is drawn, and shows marks once it is selected.
TEST_F(Editing, SeriesAreHitAndMarkedWhereTheyAreSeen) {
    drawing_->SetRules(ZelRules::EXACT);
    auto* graph = new Zel2Graph;
    graph->SetGraphSize(CSize(3000, 2000));
    graph->SetMargins(500, 500, 500, 500);
    graph->SetCoord(0, 0, 10, 10);
    auto* series = new Zel2PointArray;
    series->SetPoints({2, 5, 5, 20}, {5, 5, 10.1, 10.1});
    series->SetPen(drawing_->RegisterPen("wide", DrawPen::SOLID, 50, 0, 0, nullptr));
    series->SetExtension(Zel2PointSet::LEFT, 0);
    graph->AddIn(series);
    drawing_->Add(graph);
    view_->Invalidate();
    Of(view_).Paint();
    Mapping& map = *view_->Viewer()->Root().Map();
    const auto hit = [&](double x, double y, CSize beside = {}) {
        return series->IsIn(map.ToDevice(graph->F2R(x, y)) + beside);
    };
    EXPECT_TRUE(hit(1, 5)) << "the extension";
    EXPECT_TRUE(hit(3, 5, CSize(0, 11))) << "half of 5 mm and the reach: 12 pixels";
    EXPECT_FALSE(hit(3, 5, CSize(0, 15)));
    EXPECT_FALSE(hit(8, 10)) << "what lies beyond the limit is not seen";
    series->SetPen(drawing_->RegisterPen("none", DrawPen::NONE, 1, 0, 0, nullptr));
    EXPECT_FALSE(hit(3, 5));
    const auto symbol = [&](const char* name, int size) {
        return drawing_->RegisterSymbol(name, CSize(size, size), zel::SYMBOL_SQUARE, "", 0, 0, 0, 0, 0, 0,
                                        "Arial", 80, 0, 0, nullptr, nullptr, 0);
    };
    for (const int size : {100, 400, 100, 100}) series->AddSymbol(symbol(std::to_string(size).c_str(), size));
    EXPECT_TRUE(hit(5, 5, CSize(20, 0))) << "a large symbol: 19 pixels and the reach";
    EXPECT_FALSE(hit(2, 5, CSize(-20, 0))) << "a small one";
    Of(view_).invalid.clear();
    series->Select(1);
    ASSERT_FALSE(Of(view_).invalid.empty());
    EXPECT_TRUE(Of(view_).invalid.back().PtInRect(map.ToDevice(graph->F2R(9, 1))))
        << "its graph is repainted";
    EXPECT_EQ(map.ToDevice(series->Cpt(0)), map.ToDevice(graph->F2R(2, 5)));
    EXPECT_EQ(series->nCpt(), 0U);
}

// A text of two lines of 10 points, turned upwards: 15 pixels a line.
TEST_F(Editing, TextsAreRepaintedWhereTheyStandAndEditedInPlace) {
    drawing_->SetRules(ZelRules::EXACT);
    auto* text = new Zel2Text("first line\nsecond", CPoint(3000, 1000), 0, DT_CENTER, 900, -1, -1, {-1, 0});
    drawing_->Add(text);
    view_->Invalidate();
    Of(view_).Paint();
    const Mapping& map = *view_->Viewer()->Root().Map();
    const CPoint at = map.ToDevice(CPoint(3000, 1000));
    const auto invalidated = [&](CSize from) {
        return std::any_of(Of(view_).invalid.begin(), Of(view_).invalid.end(),
                           [&](const CRect& part) { return part.PtInRect(at + from) != 0; });
    };
    text->MoveTo(CPoint(3000, 1100));
    for (const CSize end : {CSize(1, -22), CSize(28, -22), CSize(1, 22), CSize(28, 22)})
        EXPECT_TRUE(invalidated(end)) << end.cx << ',' << end.cy << ": upwards, centred on its point";
    EXPECT_FALSE(invalidated(CSize(-10, 0)));
    EXPECT_FALSE(invalidated(CSize(10, 60)));
    Of(view_).Paint();
    text->SetPlainText("now of one line that is a good deal longer");
    EXPECT_TRUE(invalidated(CSize(5, -100))) << "where the new text will stand";
    // A click on the selected text opens an editor, level over the middle.
    Of(view_).Paint();
    const CPoint middle = map.ToDevice(CPoint(3070, 1100));
    view_->Viewer()->OnLButtonDown(MK_LBUTTON, middle);
    view_->Viewer()->OnLButtonUp(0, middle);
    EXPECT_EQ(Field(), nullptr) << "the first click selects";
    view_->Viewer()->OnLButtonDown(MK_LBUTTON, middle);
    view_->Viewer()->OnLButtonUp(0, middle);
    ASSERT_TRUE(Field());
    EXPECT_TRUE(Field()->area.PtInRect(middle));
    EXPECT_GT(Field()->area.Width(), Field()->area.Height());
    Field()->Type("typed");
    view_->Invalidate();
    EXPECT_EQ(zel::test::Letters(Of(view_).Paint()).find("now of"), std::string::npos)
        << "no old text behind it";
    view_->Viewer()->Selection().RemoveAll();
    EXPECT_EQ(Field(), nullptr);
    EXPECT_STREQ(text->GetText(), "typed");
    EXPECT_EQ(edits_, (std::vector<zel::ViewerEdit>{zel::ViewerEdit::TEXT}));
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
    band.accumulate = 1;
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
