#include <zel/platform/String.h>

#include <gtest/gtest.h>

namespace {

template <class... Arguments>
std::string Message(const char* format, Arguments... arguments) {
    CString text;
    text.FormatMessage(format, arguments...);
    return text.GetString();
}

TEST(CString, InsertsMessageArguments) {
    EXPECT_EQ(Message("%1 of %2", "one", "two"), "one of two");
    EXPECT_EQ(Message("%2 %1 %2", "a", "b"), "b a b");
    EXPECT_EQ(Message("%1!d! points, %2!5.2f! mm, %3!s!", 12, 3.14159, "x"), "12 points,  3.14 mm, x");
    EXPECT_EQ(Message("%1!ld! %2!08x! %3!lld!", 1L << 40, 255, 1LL << 50),
              "1099511627776 000000ff 1125899906842624");
    EXPECT_EQ(Message("100%% sure%n%! %."), "100% sure\n! .");
    EXPECT_EQ(Message("cut%0 off"), "cut");
    EXPECT_EQ(Message("50 %"), "50 %") << "a trailing sign stays";
    EXPECT_EQ(Message("%q %1", "v"), "%q v") << "an unknown escape stays";
    EXPECT_EQ(Message("%12", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "twelve"), "twelve");
    EXPECT_EQ(Message("%1!*d! %1!n!"), "%1!*d! %1!n!") << "formats that would write or take more arguments";
}

TEST(CString, LeavesInsertsWithoutArguments) {
    CString text;
    text.FormatMessageV("keep %1 and %2!d!", nullptr, 0);
    EXPECT_STREQ(text, "keep %1 and %2!d!");
}

TEST(CString, CutsFindsAndTrims) {
    CString text("  Grüße, Welt ");
    EXPECT_STREQ(CString(text).TrimLeft().TrimRight(), "Grüße, Welt");
    EXPECT_EQ(text.Find("Welt"), 11);
    EXPECT_EQ(text.Find('x'), -1);
    EXPECT_EQ(text.ReverseFind(' '), 15);
    EXPECT_STREQ(text.Mid(11, 99), "Welt ");
    EXPECT_STREQ(text.Right(3), "lt ");
    EXPECT_STREQ(CString("abc").Left(-1), "");
    EXPECT_EQ(CString("Red").CompareNoCase("rED"), 0);
    EXPECT_LT(CString("a").Compare("b"), 0);
    CString formatted;
    formatted.Format("%s-%03d", "n", 7);
    EXPECT_STREQ(formatted, "n-007");
}

}  // namespace
