#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

class Layout : public testing::Test {
  protected:
    Layout() {
        pen_ = root_.RegisterPen("p", DrawPen::SOLID, 0, 0, 0, nullptr);
        color_ = root_.RegisterColor("c", RGB(9, 9, 9), 0);
        font_ = root_.RegisterFont("f", "Arial", 72, 0, 0, 0, 0, 0, 0);
    }
    std::string Drawn() {
        zel::RecordingDevice device(1000);
        CDC dc(device);
        root_.Map()->SetWorld(CPoint(0, 0), CSize(1000, 1000));
        root_.Map()->SetLogical(CPoint(0, 1000), CPoint(1000, 0));
        root_.Draw(&dc);
        dc.Flush();
        return device.Text();
    }
    Zel2Main root_;
    int pen_, color_, font_;
};

TEST_F(Layout, RectanglesFillThenFrame) {
    auto* rect = new Zel2Rect(CRect(10, 20, 0, 0), pen_, color_, Zel2Rect::RECTANGLE, -1);
    root_.Add(rect);
    EXPECT_EQ(rect->AbsRect(), CRect(0, 0, 11, 21));
    EXPECT_EQ(
        Drawn(),
        "fill 0,1000 12,980 #090909\npen solid 0 #000000\npolyline 0,1000 0,979 11,979 11,1000 0,1000\n");
    EXPECT_EQ(rect->Cpt(8), CPoint(-3, -3));
    Zel2Rect box;
    box.SetSize(CSize(9, 4));
    EXPECT_EQ(box.Cpt(3), CPoint(5, 0));
}

TEST_F(Layout, RectanglesTellTheirParentOnce) {
    class Listener : public Zel2Set {
      public:
        int OnNotify(Zel2*, long code) override { return code == RESIZED ? ++resized : 0; }
        int resized = 0;
    } listener;
    auto* rect = new Zel2Rect;
    listener.Add(rect);
    rect->SetSize(CSize(5, 5));
    rect->SetSize(CSize(5, 5));
    EXPECT_EQ(listener.resized, 1);
}

TEST_F(Layout, RectanglesAreResizedByTheirHandles) {
    auto* rect = new Zel2Rect(CRect(100, 100, 299, 199), pen_, -1, Zel2Rect::RECTANGLE, -1);
    root_.Add(rect);
    Drawn();
    rect->StartDrag(4);
    rect->Drag(4, CPoint(400, 950));
    rect->EndDrag(4);
    EXPECT_EQ(rect->Origin(), CPoint(100, 50));
    EXPECT_EQ(rect->Size(), CSize(301, 150)) << "a unit more across, none up";
    rect->StartDrag(CPoint(150, 900));
    rect->DragTo(CPoint(160, 890));
    rect->EndDrag();
    EXPECT_EQ(rect->Origin(), CPoint(110, 60));
}

TEST_F(Layout, TextsStandAtAPointOrInABox) {
    root_.Add(new Zel2Text("i", CPoint(100, 900), font_, 0, 900, -1, -1, {-1, 0.0F}));
    EXPECT_EQ(Drawn(), "font \"Arial\" -100 weight 400 angle 900\ntextcolor #000000\ntext 100,100 \"i\"\n");
    auto* box = new Zel2Text("i", CRect(0, 10, 99, 0), font_, DT_BOTTOM, 0, pen_, -1, {pen_, 0.5F});
    EXPECT_EQ(box->Size(), CSize(100, 9));
    EXPECT_EQ(box->Origin(), CPoint(0, 10));
    root_.Add(box);
    const std::string text = Drawn();
    EXPECT_THAT(text, testing::HasSubstr("polyline 0,990 0,980 101,980 101,990 0,990\n"))
        << "the frame, a unit larger";
    EXPECT_THAT(text, testing::HasSubstr("polyline 0,986 99,986\n")) << "the rule at half the height";
    box->SetText("%1 of %2!d!", "one", 2);
    EXPECT_STREQ(box->GetText(), "one of 2");
    box->SetPlainText("50 % of");
    EXPECT_STREQ(box->GetText(), "50 % of");
}

}  // namespace
