#include "database/Databases.h"

#include <zel/DBField.h>

#include <gmock/gmock.h>
#include <limits>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

class Fields : public zel::test::EachDatabase {
  protected:
    Fields() : records_(&database_) {
        if (IsSqlite()) {
            Run("CREATE TABLE f (n INTEGER PRIMARY KEY AUTOINCREMENT, b BOOLEAN, u TINYINT, i SMALLINT, l "
                "INTEGER, "
                "g BIGINT, s FLOAT4, d DOUBLE PRECISION, c CURRENCY, m TIMESTAMP, t VARCHAR(20))");
        } else {
            Run("CREATE TABLE f (n SERIAL PRIMARY KEY, b BOOLEAN, u SMALLINT, i SMALLINT, l INTEGER, g "
                "BIGINT, s REAL, "
                "d DOUBLE PRECISION, c NUMERIC(19,4), m TIMESTAMP, t VARCHAR(20))");
        }
        Run("INSERT INTO f (b, u, i, l, g, s, d, c, m, t) VALUES (TRUE, 65, -5, 70000, 9007199254740993, "
            "0.5, 1234567.5, "
            "12.34, '1990-01-02 00:00:00', '  text ')");
        Run("INSERT INTO f (m, t) VALUES ('1989-12-31 12:00:00', 'abc')");
        Run("INSERT INTO f (t) VALUES ('12.5')");
        records_.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT * FROM f ORDER BY n");
    }
    double Number(const char* name) { return DBField(&records_, name, false); }
    std::string Text(const char* name) { return CString(DBField(&records_, name, false)).GetString(); }
    CDaoRecordset records_;
};

TEST_P(Fields, ReadNumbers) {
    EXPECT_EQ(Number("b"), -1);
    EXPECT_EQ(Number("u"), 65);
    EXPECT_EQ(Number("i"), -5);
    EXPECT_EQ(Number("l"), 70000);
    EXPECT_EQ(Number("g"), 9007199254740992.0) << "the nearest there is";
    EXPECT_EQ(Number("s"), 0.5);
    EXPECT_EQ(Number("d"), 1234567.5);
    EXPECT_EQ(Number("c"), 12.34);
    EXPECT_EQ(Number("m"), 1);
    DBField m(&records_, "m", true), d(&records_, "d", true), unnamed;
    EXPECT_TRUE(d.IsDefined());
    records_.MoveNext();
    EXPECT_EQ(double(m), -0.5);
    EXPECT_EQ(double(d), kInfinity);
    EXPECT_FALSE(d.IsDefined());
    d.SetdbRetNull(false);
    EXPECT_EQ(double(d), 0.0);
    EXPECT_EQ(double(unnamed), 0.0);
    EXPECT_FALSE(unnamed.IsDefined());
    EXPECT_TRUE(messages_.Take().empty());
    EXPECT_NE(zel::test::MessageOf<COleException>([&] { Number("t"); }), "");
    EXPECT_THAT(messages_.Take(), ElementsAre("Unable to read value of the field t,index is 10"));
    records_.MoveNext();
    EXPECT_EQ(Number("t"), 12.5) << "a text that is a number";
    records_.MoveNext();
    zel::test::MessageOf<CDaoException>([&] { Text("d"); });
    EXPECT_THAT(messages_.Take(), ElementsAre("Unable to read value of the field 'd'"));
}

TEST_P(Fields, ReadTexts) {
    EXPECT_EQ(Text("b"), "-1");
    EXPECT_EQ(Text("u"), IsSqlite() ? "A" : "65") << "a byte is a character; the server has no bytes";
    EXPECT_EQ(Text("i"), "-5");
    EXPECT_EQ(Text("l"), "70000");
    EXPECT_EQ(Text("g"), "9007199254740993");
    EXPECT_EQ(Text("s"), "0.5");
    EXPECT_EQ(Text("d"), "1.23457e+06");
    EXPECT_EQ(Text("c"), "");
    EXPECT_EQ(Text("m"), "1/2/1990");
    EXPECT_EQ(Text("t"), "text");
    records_.MoveNext();
    EXPECT_EQ(Text("m"), "12/31/1989 12:00:00 PM");
    EXPECT_EQ(Text("d"), "");
    EXPECT_EQ(CString(DBField()), "");
}

TEST_P(Fields, KnowTheirKind) {
    const auto field = [&](const char* name) { return DBField(&records_, name, false); };
    const auto numeric = [&](const char* name) { return field(name).IsNumeric(); };
    EXPECT_TRUE(numeric("u") && numeric("i") && numeric("l") && numeric("s") && numeric("d"));
    EXPECT_FALSE(numeric("n") || numeric("c") || numeric("m") || numeric("t") || numeric("b"));
    EXPECT_TRUE(field("n").IsCounter() && field("b").IsBool() && field("t").IsText() &&
                field("d").IsUpdatable());
    EXPECT_FALSE(field("l").IsCounter() || field("l").IsText() || field("l").IsBool());
    EXPECT_EQ(DBField(&records_, 7, false).Name(), "d");
    EXPECT_EQ(DBField(&records_, 7, false).Type(), dbDouble);

    DBField none(&records_, records_.GetFieldCount(), true);
    EXPECT_THAT(messages_.Take(), ElementsAre("DBField object construction: field # 11 does not exist."));
    EXPECT_EQ(none.Type(), -1);
    EXPECT_FALSE(none.GetdbRetNull());
    EXPECT_THAT(zel::test::MessageOf<CDaoException>([&] { field("x"); }), HasSubstr("\"x\" does not exist"));
}

TEST_P(Fields, AreAssignedTo) {
    DBField d(&records_, "d", true), l(&records_, "l", false), t(&records_, "t", false),
        g(&records_, "g", false);
    records_.Edit();
    d = kInfinity;
    l = 6.6;
    t = "new";
    records_.Update();
    EXPECT_EQ(double(d), kInfinity);
    EXPECT_FALSE(d.IsDefined());
    EXPECT_EQ(double(l), 7);
    EXPECT_EQ(CString(t), "new");
    d.SetdbRetNull(false);
    records_.Edit();
    d = kInfinity;
    t = g;
    records_.Update();
    records_.Requery();
    EXPECT_TRUE(d.IsDefined());
    EXPECT_EQ(double(d), kInfinity) << "as a number";
    EXPECT_EQ(CString(t), "9007199254740993");
    records_.Edit();
    g = 5;
    g = t;  // all digits come back
    records_.Update();
    EXPECT_EQ(CString(g), "9007199254740993");
    EXPECT_TRUE(messages_.Take().empty());

    d = 1.5;
    ASSERT_THAT(messages_.Take(),
                ElementsAre(StartsWith(
                    "DBField::operator = (double\tx)\nthe field name is d, index = 7, data type is 7, "
                    "m_bRetdbNull is false And the value is 1.5.\nThe error message as follow:\n"
                    "Cannot change the records of")));
    t = "x";
    EXPECT_THAT(messages_.Take(), ElementsAre(HasSubstr("neither Edit nor AddNew")));
    t = g;
    EXPECT_THAT(messages_.Take(),
                ElementsAre("DBField::operator = (const DBField &fld)", HasSubstr("neither Edit")));
    DBField unnamed;
    unnamed = 1.0;
    unnamed = "x";
    EXPECT_TRUE(messages_.Take().empty());
}

INSTANTIATE_ON_EACH_DATABASE(Fields);

}  // namespace
