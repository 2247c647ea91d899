#include "database/Databases.h"

#include <zel/platform/DatabaseDriver.h>

#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;
using zel::test::MessageOf;

class Records : public zel::test::EachDatabase {
  protected:
    void SetUp() override {
        Run("CREATE TABLE people (id INTEGER PRIMARY KEY, name VARCHAR(20) NOT NULL, age SMALLINT)");
        Run("INSERT INTO people VALUES (1, 'Ann', 31), (2, 'Bob', NULL), (3, 'Čeněk', 33), (4, 'Dora', 34)");
    }
    // The ids that are left to read, each followed by a blank.
    static std::string Rest(CDaoRecordset& records) {
        std::string ids;
        for (; !records.IsEOF(); records.MoveNext())
            ids += std::to_string(records.GetFieldValue(0).lVal) + " ";
        return ids;
    }
    std::string Query(const char* sql) {
        CDaoRecordset records(&database_);
        records.Open(AFX_DAO_USE_DEFAULT_TYPE, sql);
        COleVariant value = records.GetFieldValue(0);
        if (value.IsNull()) return "null";
        value.ChangeType(VT_BSTR);
        return std::string(value.Bytes());
    }
    LONG CodeOf(const std::function<void()>& action) {
        try {
            action();
        } catch (CDaoException* e) {
            const LONG code = e->m_pErrorInfo->m_lErrorCode;
            e->Delete();
            return code;
        }
        return 0;
    }
};

TEST_P(Records, MoveBothWays) {
    CDaoRecordset records(&database_);
    records.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT id, name FROM people ORDER BY id");
    EXPECT_FALSE(records.IsBOF() || records.IsEOF());
    EXPECT_EQ(Rest(records), "1 2 3 4 ");
    EXPECT_TRUE(records.IsEOF());
    EXPECT_EQ(CodeOf([&] { records.MoveNext(); }), CDaoException::noCurrentRecord);
    EXPECT_EQ(CodeOf([&] { records.GetFieldValue(0); }), CDaoException::noCurrentRecord);
    records.MovePrev();
    EXPECT_EQ(records.GetFieldValue("NAME").Bytes(), "Dora");
    records.MoveFirst();
    EXPECT_EQ(Rest(records), "1 2 3 4 ") << "once more";
    records.MoveFirst();
    records.Move(2);
    records.MovePrev();  // from the middle of what was read forward
    EXPECT_EQ(records.GetFieldValue(0).lVal, 2);
    EXPECT_EQ(records.GetAbsolutePosition(), 1);
    records.Move(-5);
    EXPECT_TRUE(records.IsBOF());
    EXPECT_EQ(CodeOf([&] { records.MovePrev(); }), CDaoException::noCurrentRecord);
    EXPECT_EQ(Rest((records.MoveNext(), records)), "1 2 3 4 ");
    records.MoveLast();
    EXPECT_EQ(records.GetFieldValue(0).lVal, 4);
    EXPECT_EQ(records.GetRecordCount(), 4);

    records.Open(dbOpenForwardOnly, "SELECT id FROM people ORDER BY id");
    records.MoveNext();
    EXPECT_EQ(CodeOf([&] { records.MovePrev(); }), CDaoException::invalidOperation);
    EXPECT_EQ(CodeOf([&] { records.MoveFirst(); }), CDaoException::invalidOperation);

    records.Open(dbOpenDynaset, "SELECT id FROM people WHERE id > 9");
    EXPECT_TRUE(records.IsBOF() && records.IsEOF());
    EXPECT_EQ(CodeOf([&] { records.MoveFirst(); }), CDaoException::noCurrentRecord);
}

TEST_P(Records, DescribeTheirFields) {
    Run(IsSqlite()
            ? "CREATE TABLE kinds (n INTEGER PRIMARY KEY AUTOINCREMENT, b BOOLEAN, i SMALLINT, l INTEGER "
              "DEFAULT 7, "
              "g BIGINT, s FLOAT4, d DOUBLE PRECISION NOT NULL, t VARCHAR(20), m TIMESTAMP, y BYTEABLOB)"
            : "CREATE TABLE kinds (n SERIAL PRIMARY KEY, b BOOLEAN, i SMALLINT, l INTEGER DEFAULT 7, "
              "g BIGINT, s REAL, d DOUBLE PRECISION NOT NULL, t VARCHAR(20), m TIMESTAMP, y BYTEA)");
    CDaoRecordset records(&database_);
    records.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT n, b, i, l, g, s, d, t, m, d * 2 AS twice FROM kinds");
    const short types[] = {dbLong,   dbBoolean, dbInteger, dbLong, dbBigInt,
                           dbSingle, dbDouble,  dbText,    dbDate};
    ASSERT_EQ(records.GetFieldCount(), 10);
    CDaoFieldInfo info;
    for (int i = 0; i < 9; ++i) {
        records.GetFieldInfo(i, info);
        EXPECT_EQ(info.m_nType, types[i]) << info.m_strName.GetString();
        EXPECT_EQ((info.m_lAttributes & dbAutoIncrField) != 0, i == 0) << info.m_strName.GetString();
        EXPECT_TRUE(info.m_lAttributes & dbUpdatableField) << info.m_strName.GetString();
    }
    records.GetFieldInfo("T", info, AFX_DAO_SECONDARY_INFO);
    EXPECT_EQ(info.m_lSize, 20);
    EXPECT_EQ(info.m_nOrdinalPosition, 7);
    EXPECT_EQ(info.m_strSourceTable, "kinds");
    EXPECT_FALSE(info.m_bRequired);
    records.GetFieldInfo("d", info, AFX_DAO_SECONDARY_INFO);
    EXPECT_TRUE(info.m_bRequired);
    records.GetFieldInfo("l", info, AFX_DAO_ALL_INFO);
    EXPECT_EQ(info.m_strDefaultValue, "7");
    records.GetFieldInfo("twice", info, AFX_DAO_SECONDARY_INFO);
    EXPECT_FALSE(info.m_lAttributes & dbUpdatableField);
    EXPECT_EQ(info.m_strSourceField, "");
    Run("CREATE TABLE prices (p MONEY)");
    Run("INSERT INTO prices VALUES (-1234567.89)");
    CDaoRecordset prices(&database_);
    prices.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT p FROM prices");
    prices.GetFieldInfo(0, info);
    EXPECT_EQ(info.m_nType, dbCurrency);
    const COleVariant price = prices.GetFieldValue(0);
    EXPECT_EQ(price.vt, VT_CY);
    EXPECT_EQ(price.cyVal.int64, -12345678900);
    EXPECT_EQ(CodeOf([&] { records.GetFieldInfo(10, info); }), CDaoException::itemNotFound);
    EXPECT_THAT(MessageOf<CDaoException>([&] { records.GetFieldInfo("dd", info); }),
                HasSubstr("\"dd\" does not exist; there are: n, b, i"));
}

TEST_P(Records, ChangeByTheirKey) {
    CDaoRecordset records(&database_);
    records.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT id, name, age FROM people ORDER BY id");
    ASSERT_TRUE(records.CanUpdate());
    EXPECT_EQ(CodeOf([&] { records.SetFieldValue(2, COleVariant(1.0)); }), CDaoException::updateWithoutEdit);
    EXPECT_EQ(CodeOf([&] { records.Update(); }), CDaoException::updateWithoutEdit);
    records.MoveNext();
    records.Edit();
    records.SetFieldValue("age", COleVariant(31.5));  // to the nearest even number
    EXPECT_EQ(records.GetFieldValue("age").iVal, 32);
    EXPECT_EQ(CodeOf([&] { records.SetFieldValue("age", COleVariant("old", VT_BSTRT)); }),
              CDaoException::conversion);
    EXPECT_EQ(CodeOf([&] { records.SetFieldValue("name", COleVariant("123456789012345678901", VT_BSTR)); }),
              CDaoException::fieldTooSmall);
    records.Update();
    EXPECT_EQ(records.GetFieldValue("age").lVal, 32);
    EXPECT_EQ(Query("SELECT age FROM people WHERE id = 2"), "32");

    records.Edit();
    records.SetFieldValueNull("age");
    records.MoveNext();  // drops the edit
    EXPECT_EQ(Query("SELECT age FROM people WHERE id = 2"), "32");
    records.Delete();
    EXPECT_TRUE(records.IsDeleted());
    EXPECT_EQ(CodeOf([&] { records.GetFieldValue(0); }), CDaoException::recordDeleted);
    records.MovePrev();
    EXPECT_EQ(records.GetFieldValue(0).lVal, 2);
    EXPECT_EQ(Rest(records), "2 4 ");

    records.AddNew();
    EXPECT_TRUE(records.GetFieldValue(0).IsNull());
    records.SetFieldValue(0, COleVariant(LONG{9}));
    records.SetFieldValue(1, COleVariant("Žofie \"x\"", VT_BSTR));
    records.Update();
    records.MoveLast();
    EXPECT_EQ(records.GetFieldValue(1).Bytes(), "Žofie \"x\"");
    records.MoveFirst();
    EXPECT_EQ(Rest(records), "1 2 4 9 ");
}

TEST_P(Records, ChangeOnlyThemselves) {
    Run("CREATE TABLE twins (a INTEGER, b DOUBLE PRECISION)");
    Run("INSERT INTO twins VALUES (1, 0.1), (1, 0.1), (2, NULL)");
    CDaoRecordset records(&database_);
    records.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT a, b FROM twins ORDER BY a");
    const auto set = [&] {
        records.Edit();
        records.SetFieldValue(0, COleVariant(LONG{5}));
        records.Update();
    };
    EXPECT_THAT(MessageOf<CDaoException>(set), HasSubstr("2 records"));
    EXPECT_EQ(Query("SELECT COUNT(*) FROM twins WHERE a = 5"), "0");
    records.MoveLast();
    set();  // found by its null
    EXPECT_EQ(Query("SELECT b FROM twins WHERE a = 5"), "null");
    EXPECT_EQ(records.GetFieldValue(0).lVal, 5);

    Run("DELETE FROM twins");
    EXPECT_EQ(CodeOf(set), CDaoException::recordChanged) << "somebody else was faster";
    records.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT p.id, t.a FROM people p, twins t");
    EXPECT_FALSE(records.CanUpdate());
    EXPECT_EQ(CodeOf([&] { records.AddNew(); }), CDaoException::readOnly);
    records.Open(dbOpenTable, "people", dbReadOnly);
    EXPECT_EQ(CodeOf([&] { records.Edit(); }), CDaoException::readOnly);
    CDaoDatabase reading;
    Open(reading, true);
    CDaoRecordset others(&reading);
    others.Open(AFX_DAO_USE_DEFAULT_TYPE, "people");
    EXPECT_EQ(CodeOf([&] { others.Edit(); }), CDaoException::readOnly);
    EXPECT_EQ(CodeOf([&] { reading.Execute("DELETE FROM people"); }), CDaoException::readOnly);
}

// Reading goes on over what was there, whatever is written meanwhile.
TEST_P(Records, DoNotRunIntoTheirOwnChanges) {
    CDaoRecordset records(&database_);
    records.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT id, name FROM people");
    int seen = 0;
    for (; !records.IsEOF() && seen < 100; records.MoveNext(), ++seen) {
        const int id = records.GetFieldValue(0).lVal;
        Run(("INSERT INTO people VALUES (" + std::to_string(id + 100) + ", 'new', 0)").c_str());
        records.Edit();
        records.SetFieldValue(0, COleVariant(LONG{id + 1000}));
        records.Update();
    }
    EXPECT_EQ(seen, 4);
    EXPECT_EQ(Query("SELECT COUNT(*) FROM people WHERE id > 1000"), "4");

    database_.BeginTrans();
    Run("DELETE FROM people");
    EXPECT_EQ(database_.GetRecordsAffected(), 8);
    database_.Rollback();
    EXPECT_EQ(Query("SELECT COUNT(*) FROM people"), "8");
    database_.BeginTrans();
    Run("DELETE FROM people WHERE id > 1000");
    database_.CommitTrans();
    EXPECT_EQ(Query("SELECT COUNT(*) FROM people"), "4");

    records.Requery();
    database_.Close();
    EXPECT_FALSE(records.IsOpen());
    EXPECT_EQ(CodeOf([&] { records.MoveNext(); }), CDaoException::objectClosed);
}

TEST_P(Records, KeepWhatIsWritten) {
    Run(IsSqlite() ? "CREATE TABLE v (k DATETIME PRIMARY KEY, g BIGINT, d DOUBLE PRECISION, b BOOLEAN, y "
                     "BLOB, t TEXT)"
                   : "CREATE TABLE v (k TIMESTAMP PRIMARY KEY, g BIGINT, d DOUBLE PRECISION, b BOOLEAN, y "
                     "BYTEA, t TEXT)");
    const COleDateTime moment(1899, 12, 29, 6, 30, 15);
    const std::string text(5000, 'x');
    CDaoRecordset records(&database_);
    records.Open(AFX_DAO_USE_DEFAULT_TYPE, "v");
    records.AddNew();
    records.SetFieldValue("k", COleVariant(moment));
    records.SetFieldValue("g", COleVariant(std::int64_t{9007199254740993}));
    records.SetFieldValue("d", COleVariant(0.1 + 0.2));
    records.SetFieldValue("b", COleVariant(short{1}, VT_BOOL));
    COleVariant bytes;
    bytes.SetBinary(std::string_view("a\0\xFF", 3));
    records.SetFieldValue("y", bytes);
    records.SetFieldValue("t", COleVariant((text + "é").c_str(), VT_BSTR));
    records.Update();
    records.MoveFirst();
    EXPECT_NEAR(records.GetFieldValue("k").date, moment.m_dt, 1e-9);
    EXPECT_EQ(records.GetFieldValue("g").llVal, 9007199254740993);
    EXPECT_EQ(records.GetFieldValue("d").dblVal, 0.1 + 0.2);
    EXPECT_EQ(records.GetFieldValue("b").boolVal, VARIANT_TRUE);
    EXPECT_TRUE(records.GetFieldValue("y") == bytes);
    EXPECT_EQ(records.GetFieldValue("t").Bytes(), text + "é");
    // A key that is a date is found again.
    records.Edit();
    records.SetFieldValueNull("y");
    records.Update();
    records.Delete();
    EXPECT_EQ(Query("SELECT COUNT(*) FROM v"), "0");
}

INSTANTIATE_ON_EACH_DATABASE(Records);

}  // namespace
