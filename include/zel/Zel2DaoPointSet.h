// Data series that are filled from a database.
#pragma once

#include <zel/Zel2PointSet.h>
#include <zel/platform/Dao.h>

// A point array whose points are read from two columns of a table, one point for each record.
//
// Classic archives store it as a Zel2PointArray with its points. Documents also keep where the points came
// from, without passwords, so that Refresh can read them again.
class Zel2DaoPointSet : public Zel2PointArray {
    DECLARE_DOCUMENT_CLASS(Zel2DaoPointSet)
  public:
    // The argument that was not given.
    static const char kNone[1];
    enum class Nulls { ZERO, GAP };  // how a null is drawn
    // Dates on x: days since 1 January 1990, years with their fraction, or seconds since 1 January 1970, as
    // the time axes of charts take them.
    enum class Dates { DAYS, YEARS, SECONDS };

    // Replaces the points by those of "SELECT <xVar>,<yVar> FROM <table>", with " WHERE <where>" when there
    // is a condition. Names and condition go to the database as they are: an expression or a quoted name may
    // stand for a column, and nothing may come from people who are not trusted with the database.
    //
    // Answers 1 when records were read. With 0 either a name is missing or there is no such record, and the
    // points stay as they were; or the database failed, which is shown in a message box, and the points read
    // until then are there. The database is borrowed for the call.
    int Create(CDaoDatabase* db, const char* table = kNone, const char* xVar = kNone,
               const char* yVar = kNone, const char* where = kNone);

    // For the next reading; the first of each is the default.
    void SetNulls(Nulls nulls) { nulls_ = nulls; }
    void SetDates(Dates dates) { dates_ = dates; }
    // Whether x was a column of dates when the points were read last; not stored.
    bool HasDates() const { return hasDates_; }

    // Where the points were read from; all empty before Create.
    struct Source {
        CString database;  // as CDaoDatabase::Open takes it
        CString connect;   // without passwords
        CString table;
        CString x;
        CString y;
        CString where;
    };
    const Source& GetSource() const { return source_; }
    // Opens that database again, with `password` for a server that wants one, and reads the points anew.
    // Answers and fails as Create does; the message box also tells when the database cannot be opened.
    int Refresh(const char* password = "");

    void Serialize(CArchive& ar) override;

  private:
    void ReadPoints(CDaoRecordset& records, const char* xVar, const char* yVar);

    Nulls nulls_ = Nulls::ZERO;
    Dates dates_ = Dates::DAYS;
    bool hasDates_ = false;
    Source source_;
};
