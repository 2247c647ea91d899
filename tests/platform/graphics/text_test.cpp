#include <zel/platform/DC.h>
#include <zel/platform/RecordingDevice.h>

#include <gtest/gtest.h>
#include <sstream>

namespace {

class Text : public testing::Test {
  protected:
    Text() {
        font_.CreateFont(-16, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
        dc_.SelectObject(&font_);
    }
    int Height(const char* text, UINT format, CRect box = CRect(20, 20, 120, 90)) {
        return dc_.DrawText(text, -1, &box, format);
    }
    CRect Measured(const char* text, UINT format) {
        CRect box(20, 20, 120, 90);
        dc_.DrawText(text, -1, &box, format | DT_CALCRECT);
        return box;
    }
    // Where the texts were written.
    std::string Written(const char* text, UINT format) {
        device_.Clear();
        CRect box(20, 20, 120, 90);
        dc_.DrawText(text, -1, &box, format);
        std::string lines;
        for (std::size_t at = 0; (at = device_.Text().find("text ", at)) != std::string::npos; ++at) {
            if (at > 0 && device_.Text()[at - 1] != '\n') continue;
            lines += device_.Text().substr(at + 5, device_.Text().find('\n', at) - at - 5) + "|";
        }
        return lines;
    }

    zel::RecordingDevice device_;
    CFont font_;
    CDC dc_{device_};
};

TEST_F(Text, MeasuresByTheSumOfAdvances) {
    EXPECT_EQ(dc_.GetTextExtent("Hello", 5).cx, 12 + 9 + 4 + 4 + 9);
    EXPECT_EQ(dc_.GetTextExtent("", 0), CSize(0, 0));
    EXPECT_EQ(dc_.GetTextExtent("\xC2\xB0", 2).cx, 6) << "two bytes, one character";
    TEXTMETRIC metrics{};
    dc_.GetTextMetrics(&metrics);
    EXPECT_EQ(metrics.tmHeight, metrics.tmAscent + metrics.tmDescent);
    EXPECT_EQ(metrics.tmHeight - metrics.tmInternalLeading, 16) << "a negative height is that of the em";
    CFont cell;
    cell.CreateFont(100, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
    dc_.SelectObject(&cell);
    dc_.GetTextMetrics(&metrics);
    EXPECT_NEAR(metrics.tmHeight, 100, 1) << "a positive one that of the cell";
    dc_.SelectObject(&font_);
}

TEST_F(Text, BreaksLinesAsThePlatformDoes) {
    const int line = dc_.GetTextExtent("x", 1).cy;
    EXPECT_EQ(Height("a\r\nb", 0), 2 * line);
    EXPECT_EQ(Height("a\rb", 0), 2 * line);
    EXPECT_EQ(Height("a\n\nb", 0), 3 * line);
    EXPECT_EQ(Height("a\n", 0), line) << "a line end at the very end adds no line";
    EXPECT_EQ(Height("", 0), line);
    EXPECT_EQ(Height("a\nb", DT_SINGLELINE), line);
    EXPECT_EQ(Height("Hello World wide web", DT_WORDBREAK), 2 * line);
    const CRect word = Measured("Donaudampfschifffahrtsgesellschaft", DT_WORDBREAK);
    EXPECT_GT(word.right, 120) << "a single word is not broken";
    EXPECT_EQ(word.Height(), line);
    EXPECT_EQ(Measured("", 0), CRect(20, 20, 20, 20));
}

// Each line takes as many words as fit, whatever the width.
TEST_F(Text, FillsLinesWithWords) {
    const std::string text =
        "i wide ww e iiiiiiiii mmmm a b c d e f g somewhat longer words and short x ones";
    for (int width = 1; width < 700; width += 7) {
        std::string lines, line;
        int count = 0;
        const auto fits = [&](const std::string& s) {
            return dc_.GetTextExtent(s.data(), static_cast<int>(s.size())).cx <= width;
        };
        std::istringstream words(text);
        for (std::string word; words >> word;) {
            if (!line.empty() && fits(line + " " + word)) {
                line += " " + word;
                continue;
            }
            line = word;
            ++count;
        }
        EXPECT_EQ(Height(text.c_str(), DT_WORDBREAK, CRect(0, 0, width, 9)) / Height("x", 0), count) << width;
    }
}

TEST_F(Text, StandsAnySizeAndLength) {
    CFont huge;
    huge.CreateFont(453'196'730, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
    dc_.SelectObject(&huge);
    for (const UINT format :
         {DT_EXPANDTABS | DT_WORDBREAK, DT_RIGHT | DT_BOTTOM | DT_SINGLELINE, DT_CALCRECT})
        Height("&a\tb c d\ne\nf\n\n\ng", format,
               CRect(2'000'000'000, 2'000'000'000, 2'100'000'000, 2'100'000'000));
    dc_.SelectObject(&font_);
    std::string words;
    for (int i = 0; i < 20000; ++i) words += "word ";
    EXPECT_EQ(Height(words.c_str(), DT_WORDBREAK, CRect(0, 0, 1'000'000'000, 9)), Height("x", 0));
}

TEST_F(Text, AlignsInTheRectangle) {
    EXPECT_EQ(Written("Hello", DT_LEFT), "20,20 \"Hello\"|");
    EXPECT_EQ(Written("Hello", DT_CENTER), "51,20 \"Hello\"|");
    EXPECT_EQ(Written("Hello", DT_RIGHT), "82,20 \"Hello\"|");
    EXPECT_EQ(Written("Hello", DT_VCENTER), "20,20 \"Hello\"|") << "only for a single line";
    EXPECT_EQ(Written("Hello", DT_VCENTER | DT_SINGLELINE), "20,47 \"Hello\"|");
    EXPECT_EQ(Written("Hello", DT_BOTTOM | DT_SINGLELINE), "20,73 \"Hello\"|");
    EXPECT_EQ(Written("a  b", DT_WORDBREAK), "20,20 \"a  b\"|");
    EXPECT_EQ(Written("&File", 0), "20,20 \"File\"|");
    EXPECT_EQ(Written("&File", DT_NOPREFIX), "20,20 \"&File\"|");
    EXPECT_EQ(Written("a\tb", DT_EXPANDTABS), "20,20 \"a\"|84,20 \"b\"|");
}

TEST_F(Text, AddsNoLineForBlanksAtTheEnd) {
    const std::string blanks = "Hello" + std::string(40, ' ');
    EXPECT_EQ(Height(blanks.c_str(), DT_WORDBREAK), Height("Hello", DT_WORDBREAK));
}

// Text hangs down on the device whichever way the y axis points.
TEST_F(Text, RunsDownwardsOnTheDevice) {
    dc_.SetMapMode(MM_ANISOTROPIC);
    dc_.SetViewportExt(1, -1);
    const int line = dc_.GetTextExtent("x", 1).cy;
    CRect box(20, -20, 120, -90);
    device_.Clear();
    EXPECT_EQ(dc_.DrawText("a\nb", 3, &box, 0), 2 * line);
    EXPECT_NE(device_.Text().find("text 20,-20 \"a\""), std::string::npos) << device_.Text();
    EXPECT_NE(device_.Text().find("text 20,-37 \"b\""), std::string::npos) << device_.Text();
    device_.Clear();
    dc_.DrawText("a", 1, &box, DT_SINGLELINE | DT_BOTTOM);
    EXPECT_NE(device_.Text().find("text 20,-73 \"a\""), std::string::npos) << device_.Text();
    dc_.DrawText("a\nb", 3, &box, DT_CALCRECT);
    EXPECT_EQ(box, CRect(20, -20, 29, -20 - 2 * line));
}

TEST_F(Text, LeavesTheAttributeContextAsItWas) {
    zel::RecordingDevice output;
    CDC dc(output);
    dc_.SaveDC();  // the attribute context is deeper in its levels than the output
    dc_.SetTextColor(RGB(1, 2, 3));
    dc.SetAttribDC(dc_.m_hDC);
    CRect box(20, 20, 120, 90);
    dc.DrawText("a", 1, &box, 0);
    dc.ExtTextOut(1, 1, ETO_CLIPPED, &box, "a", 1);
    EXPECT_EQ(dc_.GetTextColor(), RGB(1, 2, 3));
    EXPECT_TRUE(dc_.RestoreDC(1));
    dc.ReleaseAttribDC();
    EXPECT_EQ(dc.GetTextColor(), RGB(0, 0, 0)) << "the output context answers for itself";
    EXPECT_GT(dc.GetTextExtent("a", 1).cx, 0);
}

TEST_F(Text, MovesTheCurrentPosition) {
    dc_.SetTextAlign(TA_UPDATECP);
    dc_.MoveTo(5, 7);
    dc_.TextOut(99, 99, "Hello", 5);
    EXPECT_EQ(dc_.GetCurrentPosition(), CPoint(43, 7));
    dc_.Flush();
    EXPECT_NE(device_.Text().find("text 5,7 \"Hello\""), std::string::npos);
}

}  // namespace
