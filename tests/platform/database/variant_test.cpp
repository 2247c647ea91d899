#include "Support.h"

#include <zel/platform/OleVariant.h>

#include <gmock/gmock.h>
#include <limits>

namespace {

using testing::HasSubstr;

COleVariant Text(const char* text) {
    return {text, VT_BSTR};
}

template <class T>
double As(VARTYPE type, T value) {
    COleVariant variant(value);
    variant.ChangeType(type);
    EXPECT_EQ(variant.vt, type);
    variant.ChangeType(VT_R8);
    return variant.dblVal;
}

std::string Refused(COleVariant value, VARTYPE type, SCODE code) {
    const COleVariant before = value;
    try {
        value.ChangeType(type);
    } catch (COleException* e) {
        EXPECT_EQ(e->m_sc, code);
        EXPECT_TRUE(value == before) << "the value stays";
        return zel::TakeMessage(e);
    }
    return "not refused";
}

TEST(Variants, TurnIntoOneAnother) {
    EXPECT_EQ(As(VT_I4, 2.5), 2) << "to the nearest even number";
    EXPECT_EQ(As(VT_I2, 3.5), 4);
    EXPECT_EQ(As(VT_UI1, LONG{255}), 255);
    EXPECT_EQ(As(VT_BOOL, 0.5), -1);
    EXPECT_EQ(As(VT_CY, 1.23456), 1.2346);
    EXPECT_EQ(As(VT_DATE, Text("1990-01-02")), 32875);
    EXPECT_EQ(As(VT_R8, Text(" +1e3 ")), 1000);
    EXPECT_EQ(As(VT_R4, Text("0.1")), static_cast<double>(0.1F));
    EXPECT_EQ(As(VT_BOOL, Text("TRUE")), -1);
    COleVariant wide = Text("9007199254740993");
    wide.ChangeType(VT_I8);
    EXPECT_EQ(wide.llVal, 9007199254740993) << "all digits";
    wide.ChangeType(VT_BSTR);
    EXPECT_EQ(wide.Bytes(), "9007199254740993");
    const auto text = [](COleVariant value) {
        value.ChangeType(VT_BSTR);
        return std::string(value.Bytes());
    };
    EXPECT_EQ(text(COleVariant(CY{-12300})), "-1.23");
    EXPECT_EQ(text(COleVariant(CY{std::numeric_limits<std::int64_t>::min()})), "-922337203685477.5808");
    EXPECT_EQ(text(COleVariant(0.1)), "0.1");
    EXPECT_EQ(text(COleVariant(COleDateTime(1990, 1, 2, 0, 0, 0))), "1/2/1990");
}

TEST(Variants, RefuseWhatDoesNotFit) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    EXPECT_THAT(Refused(Text("ab"), VT_R8, DISP_E_TYPEMISMATCH), HasSubstr("\"ab\" for a number"));
    for (const char* none : {"", " ", "nan", "inf", "1,5", "1.5x", "0x10"})
        EXPECT_NE(Refused(Text(none), VT_R8, DISP_E_TYPEMISMATCH), "not refused") << none;
    for (const double big : {70000.0, -32768.6, kInfinity})
        EXPECT_THAT(Refused(COleVariant(big), VT_I2, DISP_E_OVERFLOW), HasSubstr("too large"));
    EXPECT_NE(zel::test::MessageOf<COleException>([] { COleVariant(std::nan("")).ChangeType(VT_I4); }), "");
    EXPECT_NE(Refused(Text("99999999999999999999"), VT_I8, DISP_E_OVERFLOW), "not refused");
    EXPECT_NE(Refused(COleVariant(1e300), VT_CY, DISP_E_OVERFLOW), "not refused");
    EXPECT_NE(Refused(COleVariant(1e300), VT_R4, DISP_E_OVERFLOW), "not refused");
    EXPECT_THAT(Refused(COleVariant::Null(), VT_R8, DISP_E_TYPEMISMATCH), HasSubstr("null"));
    EXPECT_NE(Refused(COleVariant(1.0), VT_NULL, DISP_E_BADVARTYPE), "not refused");
    EXPECT_NE(zel::test::MessageOf<COleException>([] { COleVariant("x", VT_R8); }), "");
}

TEST(Variants, OwnTheirTexts) {
    COleVariant a = Text("some text"), b(a), c;
    a.SetBinary(std::string_view("\0x", 2));
    c = b;
    b = std::move(c);
    c = a;
    EXPECT_EQ(b.Bytes(), "some text");
    EXPECT_TRUE(c == a);
    EXPECT_FALSE(a == b);
    EXPECT_EQ(c.Bytes().size(), 2U);
    const COleVariant& self = b;
    b = self;
    b.SetText(b.Bytes().substr(5));
    EXPECT_STREQ(b.bstrVal, "text");
}

}  // namespace
