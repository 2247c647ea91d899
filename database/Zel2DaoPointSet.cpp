#include "core/ArchiveFields.h"

#include <zel/DBField.h>
#include <zel/Zel2DaoPointSet.h>
#include <zel/platform/DatabaseDriver.h>
#include <zel/platform/MessageBox.h>

#include <cmath>

IMPLEMENT_DOCUMENT_CLASS(Zel2DaoPointSet, Zel2PointArray)

const char Zel2DaoPointSet::kNone[1] = "";

namespace {

constexpr UINT kLongestReason = 512;

// Databases name a computed column as they please; the queries here have x first and y second.
DBField FieldOf(CDaoRecordset& records, const char* name, int ordinal, bool nulls) {
    DBField field;
    try {
        field.Define(&records, name, nulls);
    } catch (CDaoException* e) {
        const bool renamed = e->m_scode == CDaoException::itemNotFound;
        if (!renamed) throw;
        e->Delete();
        field.Define(&records, ordinal, nulls);
    }
    return field;
}

// The year of a day counted from 1 January 1990, and how much of it has passed.
double YearOf(double days) {
    static const double first = COleDateTime(1990, 1, 1, 0, 0, 0).ToDays();
    const COleDateTime date = COleDateTime::FromDays(first + days);
    if (date.GetStatus() != COleDateTime::valid) return 1990 + days / 365.2425;
    // The first moment of a year must not be rounded into the year before.
    const int year = date.GetYear();
    const double begin = COleDateTime(year, 1, 1, 0, 0, 0).ToDays();
    const double end = year < 9999 ? COleDateTime(year + 1, 1, 1, 0, 0, 0).ToDays() : begin + 365;
    return year + (date.ToDays() - begin) / (end - begin);
}

}  // namespace

int Zel2DaoPointSet::Create(CDaoDatabase* db, const char* table, const char* xVar, const char* yVar,
                            const char* where) {
    if (table == kNone || xVar == kNone || yVar == kNone || !table || !xVar || !yVar) return 0;
    const CString condition(where);
    try {
        CDaoRecordset records(db);
        CString query;
        query.Format("SELECT %s,%s FROM %s", xVar, yVar, table);
        if (condition.Compare("") != 0) query += " WHERE " + condition;
        records.Open(AFX_DAO_USE_DEFAULT_TYPE, query, 0);
        source_ = {db->GetName(), db->GetConnect(), table, xVar, yVar, condition};
        if (records.IsBOF() && records.IsEOF()) return 0;
        Clear();
        ReadPoints(records, xVar, yVar);
        return 1;
    } catch (CException* e) {
        char reason[kLongestReason] = "";
        e->GetErrorMessage(reason, sizeof reason);
        e->Delete();
        CString message;
        message.Format("Creating points from table '%s'\r\nHor Var = %s, Vert Var = %s\r\n", table, xVar,
                       yVar);
        AfxMessageBox(message + reason, 0, 0);
    }
    return 0;
}

void Zel2DaoPointSet::ReadPoints(CDaoRecordset& records, const char* xVar, const char* yVar) {
    const bool gaps = nulls_ == Nulls::GAP;
    const DBField xField = FieldOf(records, xVar, 0, gaps);
    const DBField yField = FieldOf(records, yVar, 1, gaps);
    hasDates_ = xField.Type() == dbDate;
    const auto valueOf = [this](double days) {
        if (!hasDates_ || !std::isfinite(days) || dates_ == Dates::DAYS) return days;
        constexpr double kDaysFrom1970To1990 = 7305, kSecondsPerDay = 86'400;
        return dates_ == Dates::YEARS ? YearOf(days) : (days + kDaysFrom1970To1990) * kSecondsPerDay;
    };
    std::vector<double>& xs = *GetXVec();
    std::vector<double>& ys = *GetYVec();
    PointsChanged();  // nothing is drawn before all is read
    while (!records.IsEOF()) {
        // Runs of plain numbers need no fields; they are most of what series are made of.
        records.ReadNumbers(xField.Ordinal(), yField.Ordinal(), xs, ys);
        if (records.IsEOF()) break;
        const double x = xField;
        const double y = yField;
        Append(valueOf(x), y);
        records.MoveNext();
    }
}

int Zel2DaoPointSet::Refresh(const char* password) {
    const Source source = source_;
    CString connect = source.connect;
    if (password && *password) connect += ("PWD=" + zel::BracedForConnect(password) + ";").c_str();
    CDaoDatabase database;
    try {
        database.Open(source.database, FALSE, TRUE, connect);
    } catch (CException* e) {
        e->ReportError(MB_OK, 0);
        e->Delete();
        return 0;
    }
    return Create(&database, source.table, source.x, source.y, source.where);
}

void Zel2DaoPointSet::Serialize(CArchive& ar) {
    Zel2PointArray::Serialize(ar);
    if (!zel::IsComplete(ar)) return;
    bool gaps = nulls_ == Nulls::GAP;
    BYTE dates = static_cast<BYTE>(dates_);
    zel::ExchangeFlag(ar, gaps);
    zel::Exchange(ar, dates);
    nulls_ = gaps ? Nulls::GAP : Nulls::ZERO;
    dates_ = dates <= static_cast<BYTE>(Dates::SECONDS) ? static_cast<Dates>(dates) : Dates::DAYS;
    zel::Exchange(ar, source_.database, source_.connect, source_.table, source_.x, source_.y, source_.where);
}
