#include "tools/TextClusters.h"

#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <gtest/gtest.h>

namespace {

class Fonts : public testing::Test {
  protected:
    Fonts() { font_.OpenOn(&dc_, 1000); }
    std::string Printed(const char* text, int angle, unsigned flags, DrawFont* font = nullptr) {
        device_.Clear();
        (font ? font : &font_)->Print(text, CPoint(100, 100), angle, flags);
        return device_.Text();
    }
    std::string Spans(const char* text, int angle, unsigned flags) {
        const std::string printed = Printed(text, angle, flags);
        const std::size_t first = printed.find("\ntext ");
        return first == std::string::npos ? "" : printed.substr(first + 1);
    }
    zel::RecordingDevice device_;
    CDC dc_{device_};
    DrawFont font_{"f", "Arial", 120, 0, 0, 0, 0, RGB(1, 2, 3), RGB(9, 9, 9)};
};

TEST_F(Fonts, SizeThemselvesAndMakeOnePlatformFontForTheSameText) {
    EXPECT_EQ(Printed("a", 0, 0), "font \"Arial\" -16 weight 400\ntextcolor #010203\ntext 100,100 \"a\"\n");
    const HFONT first =
        *dc_.SelectObject(CFont::FromHandle(reinterpret_cast<HFONT>(GetStockObject(SYSTEM_FONT))));
    EXPECT_TRUE(zel::IsAlive(reinterpret_cast<HGDIOBJ>(first)));
    font_.OpenOn(&dc_, 500);
    EXPECT_NE(Printed("a", 0, 0).find("-8 weight"), std::string::npos);
    const auto handle = [&] {
        return static_cast<HFONT>(
            *dc_.SelectObject(CFont::FromHandle(reinterpret_cast<HFONT>(GetStockObject(SYSTEM_FONT)))));
    };
    Printed("b", 0, 0);
    const HFONT current = handle();
    dc_.SelectObject(CFont::FromHandle(current));
    Printed("c", 0, 0);
    EXPECT_EQ(handle(), current);
    font_.Close();
    EXPECT_FALSE(zel::IsAlive(reinterpret_cast<HGDIOBJ>(current)));
    EXPECT_EQ(Printed("a", 0, 0), "") << "closed";
}

TEST_F(Fonts, WriteWholeCharactersAtTheirWidths) {
    EXPECT_EQ(Spans("i°C", 0, 0), "text 100,100 \"i\"\ntext 104,100 \"°\"\ntext 110,100 \"C\"\n");
    EXPECT_EQ(Spans("ab", 900, 0), "text 100,100 \"a\"\ntext 100,91 \"b\"\n") << "upwards";
    EXPECT_EQ(Spans("", 0, 0), "");
}

TEST_F(Fonts, PlaceLinesAndBlocks) {
    EXPECT_EQ(Spans("a\r\nb", 0, 0), "text 100,100 \"a\"\ntext 100,117 \"b\"\n");
    EXPECT_EQ(Spans("a\nb", 900, 0), "text 100,100 \"a\"\ntext 117,100 \"b\"\n")
        << "lines follow to the right";
    EXPECT_EQ(Spans("i", 0, DT_CENTER | DT_VCENTER), "text 98,92 \"i\"\n");
    EXPECT_EQ(Spans("i", 0, DT_RIGHT | DT_BOTTOM), "text 96,83 \"i\"\n");
    CRect box(10, 20, 50, 80);
    device_.Clear();
    font_.Print("i", box, 0);
    EXPECT_NE(device_.Text().find("text 10,80 \"i\""), std::string::npos) << "left and bottom without flags";
}

// A line of Arial takes 17 units at 12 points and 35 at 24, with external leading.
TEST_F(Fonts, MeasureTextInBoxesByTheRules) {
    DrawFont large("large", "Arial", 240, 0, 0, 0, 0, 0, 0);
    large.OpenOn(&dc_, 1000);
    const auto topOf = [&](int height, unsigned flags, ZelRules rules) {
        Printed("a", 0, 0);
        device_.Clear();
        RECT box{0, 0, 200, height};
        large.DrawText("i", &box, flags, rules);
        const std::string text = device_.Text();
        return std::stoi(text.substr(text.find("\ntext ") + 8));
    };
    const int line = static_cast<int>(large.Extent("i", 0).cy),
              small = static_cast<int>(font_.Extent("i", 0).cy);
    EXPECT_GT(line, small);
    EXPECT_EQ(topOf(100, DT_VCENTER, ZelRules::EXACT), (100 - line) / 2);
    EXPECT_EQ(topOf(100, DT_VCENTER, ZelRules::CLASSIC), (100 - small) / 2) << "by the font before";
    EXPECT_EQ(topOf(100, DT_BOTTOM, ZelRules::CLASSIC), 100 - small);
    EXPECT_EQ(topOf(10, DT_VCENTER, ZelRules::EXACT), 0) << "too high for the box";
    EXPECT_EQ(topOf(10, DT_VCENTER, ZelRules::CLASSIC), (10 - small) / 2);
}

TEST_F(Fonts, SurviveEachOther) {
    DrawFont other("g", "Courier New", 90, 1, 0, 0, 0, 0, 0);
    other.OpenOn(&dc_, 1000);
    Printed("a", 0, 0);
    EXPECT_NE(Printed("b", 300, 0, &other).find("Courier New"), std::string::npos);
    EXPECT_NE(Printed("c", 0, 0).find("\"Arial\" -16"), std::string::npos);
    DrawFont copy(font_);
    EXPECT_STREQ(copy.FontName(), "Arial");
    EXPECT_EQ(copy.PtSize10(), 120);
}

TEST(TextClusters, KeepCharactersWhole) {
    const auto count = [](const char* text) { return zel::ClusterEnds(text).size(); };
    EXPECT_EQ(count("café"), 4U);
    EXPECT_EQ(count("cafe\u0301"), 4U) << "a letter and its accent";
    EXPECT_EQ(count("µm²"), 3U);
    EXPECT_EQ(count("\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7"), 2U) << "two flags";
    EXPECT_EQ(count("\U0001F469\u200D\U0001F680"), 1U) << "joined";
    EXPECT_EQ(count("\xC3("), 2U) << "a byte that is no UTF-8";
    EXPECT_EQ(count("\xF0\x9F"), 2U) << "cut short";
}

}  // namespace
