#include "database/Databases.h"

#include <zel/platform/Archive.h>
#include <zel/platform/File.h>
#include <zel/zel.h>

#include <gmock/gmock.h>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class Points : public zel::test::EachDatabase {
  protected:
    void SetUp() override {
        Run("CREATE TABLE p (x DOUBLE PRECISION, y DOUBLE PRECISION, t VARCHAR(9), d DATE, \"odd name\" "
            "INTEGER)");
        Run("INSERT INTO p VALUES (1, 2, 'a', '1990-01-02', 7), (3, NULL, '4', '2012-07-02', 8), (5, 6, 'b', "
            "NULL, 9)");
    }
    int Create(const char* x, const char* y, const char* where = "", const char* table = "p") {
        return points_.Create(&database_, table, x, y, where);
    }
    static std::vector<double> Values(Zel2PointArray& points) {
        std::vector<double> values;
        for (unsigned i = 0; i < points.NPoints(); ++i) {
            values.push_back(points.X(static_cast<long>(i)));
            values.push_back(points.Y(static_cast<long>(i)));
        }
        return values;
    }
    std::vector<double> Values() { return Values(points_); }
    Zel2DaoPointSet points_;
};

TEST_P(Points, AreTheRecords) {
    EXPECT_EQ(Create("x", "y"), 1);
    EXPECT_THAT(Values(), ElementsAre(1, 2, 3, 0, 5, 6));
    EXPECT_EQ(Create("y", "\"odd name\"", "y IS NOT NULL ORDER BY x DESC"), 1);
    EXPECT_THAT(Values(), ElementsAre(6, 9, 2, 7));
    EXPECT_EQ(Create("x * 2", "p.y", "x < 2"), 1) << "whatever the database calls the columns";
    EXPECT_THAT(Values(), ElementsAre(2, 2));
    EXPECT_EQ(Create("x", "y", "x > 9"), 0);
    EXPECT_THAT(Values(), ElementsAre(2, 2)) << "the points stay";
    EXPECT_EQ(points_.Create(&database_), 0);
    EXPECT_EQ(points_.Create(&database_, "p", "x"), 0);
    EXPECT_THAT(messages_.Take(), IsEmpty());
    EXPECT_EQ(Create("d", "x", "d IS NOT NULL"), 1);
    EXPECT_THAT(Values(), ElementsAre(1, 1, 8218, 3));
    points_.SetDates(Zel2DaoPointSet::Dates::YEARS);
    points_.SetNulls(Zel2DaoPointSet::Nulls::GAP);
    EXPECT_EQ(Create("d", "y", "x > 1"), 1);
    const std::vector<double> values = Values();
    EXPECT_NEAR(values[0], 2012.5, 1e-9);
    EXPECT_FALSE(std::isfinite(values[1]) || std::isfinite(values[2])) << "nulls are gaps";
}

TEST_P(Points, TellWhatIsWrong) {
    const std::string head = "Creating points from table 'p'\r\nHor Var = x, Vert Var = ";
    const char* no = IsSqlite() ? "no such column: yy" : "column \"yy\" does not exist";
    points_.Append(8, 9);
    EXPECT_EQ(Create("x", "yy"), 0);
    EXPECT_THAT(messages_.Take(), ElementsAre(AllOf(StartsWith(head + "yy\r\n"), HasSubstr(no))));
    EXPECT_EQ(Create("x", "y", "", "q"), 0);
    EXPECT_THAT(messages_.Take(),
                ElementsAre(AllOf(StartsWith("Creating points from table 'q'"),
                                  HasSubstr(IsSqlite() ? "no such table: q" : "\"q\" does not exist"))));
    EXPECT_EQ(Create("x", "y", "this is no condition"), 0);
    EXPECT_THAT(messages_.Take(), ElementsAre(HasSubstr("syntax error")));
    EXPECT_EQ(Create("x", "y", "1 = 1; DELETE FROM p"), 0);
    EXPECT_THAT(messages_.Take(), ElementsAre(HasSubstr("more than one command")));
    EXPECT_EQ(Create("x", "y", "", std::string("").c_str()), 0) << "an empty name that was given";
    EXPECT_EQ(messages_.Take().size(), 1U);
    EXPECT_THAT(Values(), ElementsAre(8, 9));
    EXPECT_EQ(Create("x", "t", "x > 1"), 0) << "a text in place of a number";
    EXPECT_THAT(messages_.Take(),
                ElementsAre(StartsWith("Unable to read value of the field t"),
                            AllOf(StartsWith(head + "t\r\n"), HasSubstr("\"b\" for a number"))));
    EXPECT_THAT(Values(), ElementsAre(3, 4)) << "those before stay";
    EXPECT_EQ(points_.Create(nullptr, "p", "x", "y"), 0);
    CDaoDatabase closed;
    EXPECT_EQ(points_.Create(&closed, "p", "x", "y"), 0);
    EXPECT_THAT(messages_.Take(), ElementsAre(HasSubstr("no database"), HasSubstr("not open")));
    EXPECT_EQ(Create("x", "y"), 1) << "nothing was deleted, and the database still works";
    EXPECT_EQ(Values().size(), 6U);
}

TEST_P(Points, TakeStrangeValues) {
    Run("CREATE TABLE s (n INTEGER, d TIMESTAMP, g BIGINT)");
    Run("INSERT INTO s VALUES (1, '1899-12-29 06:00:00', 9007199254740993), (2, '0100-01-01', 0), "
        "(3, '9999-12-31 23:59:59', 0), (4, '0044-03-15', 0)");
    EXPECT_EQ(Create("d", "g", "n > 0 ORDER BY n", "s"), 1);
    EXPECT_THAT(messages_.Take(), IsEmpty());
    const std::vector<double> values = Values();
    EXPECT_EQ(values[0], -32874.75);
    EXPECT_EQ(values[1], 9007199254740992.0) << "the nearest number there is";
    EXPECT_EQ(values[2], -657434 - 32874);
    EXPECT_NEAR(values[4], 2958465 - 32874 + 1, 2e-5);
    EXPECT_EQ(values[6], -710688) << "no date of the calendar, and yet so many days";

    // The least number that there is, in columns of each kind.
    if (IsSqlite()) {
        Run("CREATE TABLE m (n NUMERIC, c MONEY, g BIGINT)");
        Run("INSERT INTO m VALUES (-9223372036854775807 - 1, -9223372036854775807 - 1, -9223372036854775807 "
            "- 1)");
        for (const char* column : {"n", "c", "g"}) {
            EXPECT_EQ(Create(column, column, "", "m"), 1);
            EXPECT_EQ(Values()[0], -9223372036854775808.0) << column;
        }
    }

    Run("INSERT INTO s VALUES (5, '12000-01-01', 1)");
    const int created = Create("d", "n", "n > 3 ORDER BY n", "s");
    EXPECT_EQ(Values()[0], -710688);
    if (IsSqlite()) {
        EXPECT_EQ(created, 1);
        EXPECT_EQ(Values()[2], 3656077);
        CDaoRecordset records(&database_);
        records.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT d FROM s WHERE n = 5");
        EXPECT_EQ(CString(DBField(&records, 0, false)), "Invalid DateTime");
    } else {
        // The driver cannot deliver the year, and says so instead of making one up.
        EXPECT_EQ(created, 0);
        EXPECT_THAT(messages_.Take(), ElementsAre(StartsWith("Unable to read"), HasSubstr("for a date")));
    }
}

TEST_P(Points, ComeBackFromDocumentsAndRefresh) {
    auto root = std::make_unique<Zel2Main>();
    auto* graph = new Zel2Graph;
    root->Add(graph);
    auto* series = new Zel2DaoPointSet;
    graph->AddIn(series);
    series->SetNulls(Zel2DaoPointSet::Nulls::GAP);
    const std::string file = folder_ / "test.sqlite";
    CDaoDatabase database;
    const std::string secret = "PWD={top;secret};";
    const std::string connect = (IsSqlite() ? "SQLite;" : zel::test::SharedServer().Connect()) + secret;
    database.Open(IsSqlite() ? file.c_str() : "", FALSE, TRUE, connect.c_str());
    ASSERT_EQ(series->Create(&database, "p", "x", "y", "x < 5 ORDER BY x"), 1);
    EXPECT_EQ(series->GetRuntimeClass(), Zel2PointArray::GetThisClass());

    const std::string path = folder_ / "a.zel";
    zel::SaveDocument(*root, path.c_str());
    EXPECT_EQ(zel::test::Content(path).find("secret"), std::string::npos);
    const auto loaded = zel::LoadDocument(path.c_str());
    Zel2Set& inner = dynamic_cast<Zel2Graph*>((*loaded)[0])->Inner();
    auto* again = dynamic_cast<Zel2DaoPointSet*>(inner[0]);
    ASSERT_TRUE(again);
    EXPECT_EQ(Values(*again)[2], 3);
    Run("UPDATE p SET x = x + 0.5 WHERE y IS NOT NULL");
    EXPECT_EQ(again->Refresh("other"), 1);
    EXPECT_THAT(messages_.Take(), IsEmpty());
    EXPECT_EQ(Values(*again)[0], 1.5);
    EXPECT_FALSE(std::isfinite(Values(*again)[3])) << "nulls are still gaps";

    CMemFile classic;
    CArchive storing(&classic, CArchive::store);
    storing.WriteObject(again);
    storing.Close();
    classic.SeekToBegin();
    CArchive loading(&classic, CArchive::load);
    const auto array = loading.ReadNewObject(nullptr);
    EXPECT_EQ(dynamic_cast<Zel2DaoPointSet*>(array.get()), nullptr);
    ASSERT_TRUE(dynamic_cast<Zel2PointArray*>(array.get()));
    EXPECT_EQ(dynamic_cast<Zel2PointArray*>(array.get())->X(0), 1.5);
}

INSTANTIATE_ON_EACH_DATABASE(Points);

}  // namespace
