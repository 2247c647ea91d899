#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <gtest/gtest.h>

namespace {

class Colors : public testing::Test {
  protected:
    DrawColor& Open(DrawColor& color) {
        color.OpenOn(&dc_, 1000);
        return color;
    }
    std::string Recorded() {
        dc_.Flush();
        std::string text = device_.Text();
        device_.Clear();
        return text;
    }
    zel::RecordingDevice device_;
    CDC dc_{device_};
};

TEST_F(Colors, FillWithTheVariantInUse) {
    DrawColor color("c", RGB(255, 0, 0), RGB(0, 0, 255));
    color.Rect(CRect(0, 0, 10, 10));
    EXPECT_EQ(Recorded(), "") << "closed";
    Open(color).Rect(CRect(0, 0, 10, 10));
    EXPECT_EQ(Recorded(), "fill 0,0 11,11 #ff0000\n") << "right and bottom edges too";
    EXPECT_EQ(color.SetPrinter(1), 0);
    color.Rect(CRect(0, 0, 1, 1));
    EXPECT_EQ(Recorded(), "fill 0,0 2,2 #ffffff\n") << "no brush until it is opened again: the context's own";
    Open(color).SetColor(RGB(1, 1, 1));
    EXPECT_EQ(color.ScrColor(), RGB(255, 0, 0));
    EXPECT_EQ(color.GetColor(), RGB(1, 1, 1));
}

TEST_F(Colors, MakeUpForTheMissingOutlineOfEllipses) {
    DrawColor color("c", RGB(255, 0, 0), 0);
    Open(color).Ellipse(CRect(10, 10, 20, 16));
    EXPECT_EQ(Recorded(), "pen null 0 #000000\nbrush solid #ff0000\nellipse 10,17 21,10\n");
    dc_.SetMapMode(MM_ANISOTROPIC);
    dc_.SetViewportExt(1, -1);
    color.Ellipse(CRect(10, 16, 20, 10));
    EXPECT_NE(Recorded().find("ellipse 10,9 21,16"), std::string::npos)
        << "downwards on the device, y pointing up";
}

TEST_F(Colors, SplitRunsIntoRings) {
    const CPoint a(0, 0), b(9, 0), c(9, 9), d(20, 20), e(30, 20);
    DrawColor color("c", 0, 0);
    Open(color);
    CPoint two[] = {a, b, c, a, d, e, d, b};
    color.PolyPolygon(two, 8);
    EXPECT_NE(Recorded().find("polygon 0,0 9,0 9,9 0,0 | 20,20 30,20 20,20\n"), std::string::npos);
    CPoint repeated[] = {a, a, b, c, a};
    color.PolyPolygon(repeated, 5);
    EXPECT_NE(Recorded().find("polygon 0,0 0,0 9,0 9,9 0,0\n"), std::string::npos);
    color.PolyPolygon(two, 3);
    EXPECT_EQ(Recorded(), "") << "no ring is closed";
}

TEST(DrawColorTable, AnswersBlackForUnknownColours) {
    DrawColorTable table;
    EXPECT_EQ(table.GetIndex("Red"), -1);
    table.RegisterColor("Red", 5, 6);
    EXPECT_EQ(table[0], 5U);
    EXPECT_EQ(table[1], 0U);
    EXPECT_EQ(table[-1], 0U);
    DrawColorTable copy;
    copy = table;
    copy(0)->SetColor(9);
    EXPECT_EQ(table[0], 5U) << "copies are deep";
    table.CopyFrom(&table);
    EXPECT_EQ(table.Size(), 1);
    EXPECT_EQ(table.Register(nullptr), -1);
}

// Overrides as the class interface has them: without const.
class Hatched : public DrawColor {
  public:
    using DrawColor::DrawColor;
    DrawTool* ACopy() override { return new Hatched(*this); }
};

TEST(DrawToolTable, KeepsHostsToolsAndFindsRenamedOnes) {
    DrawColorTable table;
    EXPECT_EQ(table.Register(new Hatched("a", 1, 2)), 0);
    EXPECT_EQ(table.Register(new DrawTool("no copy of itself")), 1);
    EXPECT_EQ(table.RegisterColor("c", 3, 4), 2);
    DrawColorTable copy(table);
    EXPECT_NE(dynamic_cast<Hatched*>(copy.Get(0)), nullptr);
    EXPECT_EQ(copy.Get(1), nullptr);
    EXPECT_EQ(copy[2], 3U) << "in its place, whatever became of the others";
    copy.OpenOn(nullptr, 1000);
    copy.Close();
    table.Get(2)->SetName("a");
    EXPECT_EQ(table.GetIndex("a"), 0) << "the first of the name";
    EXPECT_EQ(table.GetIndex("c"), -1);
    table.Get(0)->Name("b");
    EXPECT_EQ(table.GetIndex("a"), 2);
    *table(0) = *copy(2);
    EXPECT_EQ(table.GetIndex("c"), 0);
    EXPECT_EQ(table.RegisterColor("a", 0, 0), 2);
}

}  // namespace
