#include "backends/sqlite/Values.h"

#include <zel/platform/Dao.h>
#include <zel/platform/DatabaseDriver.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>

namespace zel::sqlite {
namespace {

constexpr double kFirstOf1970 = 25569;           // days after 30 December 1899
constexpr double kJulianOfFirstDay = 2415018.5;  // the Julian day of 30 December 1899
constexpr double kSecondsPerDay = 86400;
constexpr std::int64_t kExactInDouble = std::int64_t{1} << 53;
constexpr std::int64_t kMoneyUnits = 10000;

// By the part of a declaration that decides, in the order in which they are looked for.
struct Declared {
    const char* part;
    short type;
};
constexpr Declared kDeclared[] = {
    {"BOOL", dbBoolean},   {"TINYINT", dbByte},  {"BYTE", dbByte},         {"SMALLINT", dbInteger},
    {"INT2", dbInteger},   {"BIGINT", dbBigInt}, {"BIG INT", dbBigInt},    {"INT8", dbBigInt},
    {"POINT", dbDouble},   {"INT", dbLong},      {"COUNTER", dbLong},      {"CURRENCY", dbCurrency},
    {"MONEY", dbCurrency}, {"FLOAT4", dbSingle}, {"SINGLE", dbSingle},     {"REAL", dbDouble},
    {"FLOA", dbDouble},    {"DOUB", dbDouble},   {"NUM", dbDouble},        {"DEC", dbDouble},
    {"DATE", dbDate},      {"TIME", dbDate},     {"BINARY", dbLongBinary}, {"BLOB", dbLongBinary},
    {"CLOB", dbMemo},      {"MEMO", dbMemo},     {"GUID", dbGUID},         {"UUID", dbGUID},
    {"CHAR", dbText},      {"TEXT", dbText}};

std::string_view TextAt(sqlite3_stmt* row, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return {text ? text : "", static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
}

void ReadInteger(sqlite3_int64 stored, short type, COleVariant& value) {
    switch (type) {
        case dbBoolean:
            value = COleVariant(static_cast<short>(stored != 0), VT_BOOL);
            return;
        case dbByte:
            if (stored < 0 || stored > 255) break;
            value = COleVariant(static_cast<BYTE>(stored));
            return;
        case dbInteger:
            if (stored < INT16_MIN || stored > INT16_MAX) break;
            value = COleVariant(static_cast<short>(stored));
            return;
        case dbDouble:
            if (stored > kExactInDouble || stored < -kExactInDouble) break;
            value.SetDouble(static_cast<double>(stored));
            return;
        case dbSingle:
            value = COleVariant(static_cast<float>(stored));
            return;
        case dbCurrency:
            if (stored > INT64_MAX / kMoneyUnits || stored < INT64_MIN / kMoneyUnits) break;
            value = COleVariant(CY{stored * kMoneyUnits});
            return;
        case dbBigInt:
            value = COleVariant(static_cast<std::int64_t>(stored));
            return;
        case dbDate:
            value = COleVariant(
                COleDateTime::FromDays(kFirstOf1970 + static_cast<double>(stored) / kSecondsPerDay));
            return;
        default:
            break;
    }
    value.SetInteger(stored);
}

void ReadReal(double stored, short type, COleVariant& value) {
    switch (type) {
        case dbSingle:
            value = COleVariant(static_cast<float>(stored));
            return;
        case dbCurrency:
            if (!(std::fabs(stored * double{kMoneyUnits}) < 9e18)) break;
            value = COleVariant(CY{std::llround(stored * double{kMoneyUnits})});
            return;
        case dbDate:
            value = COleVariant(COleDateTime::FromDays(stored - kJulianOfFirstDay));
            return;
        default:
            break;
    }
    value.SetDouble(stored);
}

void ReadText(std::string_view stored, short type, COleVariant& value) {
    COleDateTime date;
    if (type == dbDate && date.ParseDateTime(stored.data())) {
        value.SetDate(date.m_dt);
    } else {
        value.SetText(stored);
    }
}

// As SQLite's functions write dates; the time only where there is one.
std::string DateText(DATE date) {
    const COleDateTime moment(date);
    const double days = moment.ToDays();
    if (moment.GetStatus() != COleDateTime::valid)
        ThrowDatabaseError(CDaoException::conversion, "write", "a date",
                           "it lies outside the years 100 to 9999");
    const double milliseconds = (days - std::floor(days)) * kSecondsPerDay * 1000;
    const bool isDay = milliseconds < 0.5 || milliseconds > kSecondsPerDay * 1000 - 0.5;
    // Format rounds to seconds, so it is given a moment without a part of one.
    const double part = std::fmod(std::round(milliseconds), 1000);
    const COleDateTime second =
        COleDateTime::FromDays(std::round(milliseconds - part) / 1000 / kSecondsPerDay + std::floor(days));
    CString text;
    text.Format("%04d-%02d-%02d", second.GetYear(), second.GetMonth(), second.GetDay());
    if (isDay) return text.GetString();
    CString time;
    time.Format(" %02d:%02d:%02d", second.GetHour(), second.GetMinute(), second.GetSecond());
    text += time;
    if (part != 0) {
        time.Format(".%03d", static_cast<int>(part));
        text += time;
    }
    return text.GetString();
}

int BindText(sqlite3_stmt* statement, int index, const std::string& text) {
    return sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

}  // namespace

short TypeOfDeclaration(const char* declared) {
    if (!declared || !*declared) return 0;
    std::string upper(declared);
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (const Declared& known : kDeclared) {
        if (upper.find(known.part) != std::string::npos) return known.type;
    }
    return 0;
}

long SizeOfDeclaration(const char* declared) {
    const char* bracket = declared ? std::strchr(declared, '(') : nullptr;
    long size = 0;
    if (bracket) std::from_chars(bracket + 1, bracket + std::strlen(bracket), size);
    return std::max(size, 0L);
}

short TypeOfValue(sqlite3_stmt* row, int column) {
    switch (sqlite3_column_type(row, column)) {
        case SQLITE_INTEGER:
            return dbLong;
        case SQLITE_FLOAT:
            return dbDouble;
        case SQLITE_BLOB:
            return dbLongBinary;
        default:
            return dbText;
    }
}

bool IsTranslated(short type) {
    return type == dbDate || type == dbBoolean || type == dbCurrency || type == dbSingle;
}

void ReadValue(sqlite3_stmt* row, int column, short type, COleVariant& value) {
    switch (sqlite3_column_type(row, column)) {
        case SQLITE_FLOAT:
            ReadReal(sqlite3_column_double(row, column), type, value);
            break;
        case SQLITE_INTEGER:
            ReadInteger(sqlite3_column_int64(row, column), type, value);
            break;
        case SQLITE_TEXT:
            ReadText(TextAt(row, column), type, value);
            break;
        case SQLITE_BLOB:
            ReadStored(row, column, value);
            break;
        default:
            value.SetNull();
    }
}

void ReadStored(sqlite3_stmt* row, int column, COleVariant& value) {
    switch (sqlite3_column_type(row, column)) {
        case SQLITE_FLOAT:
            value.SetDouble(sqlite3_column_double(row, column));
            break;
        case SQLITE_INTEGER:
            value.SetInteger(sqlite3_column_int64(row, column));
            break;
        case SQLITE_TEXT:
            value.SetText(TextAt(row, column));
            break;
        case SQLITE_BLOB: {
            const auto* bytes = static_cast<const char*>(sqlite3_column_blob(row, column));
            value.SetBinary({bytes, static_cast<std::size_t>(sqlite3_column_bytes(row, column))});
            break;
        }
        default:
            value.SetNull();
    }
}

int BindValue(sqlite3_stmt* statement, int index, const COleVariant& value) {
    switch (value.vt) {
        case VT_UI1:
            return sqlite3_bind_int64(statement, index, value.bVal);
        case VT_I2:
            return sqlite3_bind_int64(statement, index, value.iVal);
        case VT_I4:
            return sqlite3_bind_int64(statement, index, value.lVal);
        case VT_I8:
            return sqlite3_bind_int64(statement, index, value.llVal);
        case VT_BOOL:
            return sqlite3_bind_int64(statement, index, value.boolVal ? 1 : 0);
        case VT_R4:
            return sqlite3_bind_double(statement, index, static_cast<double>(value.fltVal));
        case VT_R8:
            return sqlite3_bind_double(statement, index, value.dblVal);
        case VT_CY:
            return sqlite3_bind_double(statement, index,
                                       static_cast<double>(value.cyVal.int64) / double{kMoneyUnits});
        case VT_DATE:
            return BindText(statement, index, DateText(value.date));
        case VT_BSTR:
            return BindText(statement, index, std::string(value.Bytes()));
        case VT_ARRAY | VT_UI1:
            return sqlite3_bind_blob64(statement, index, value.bstrVal, value.cbBytes, SQLITE_TRANSIENT);
        default:
            return sqlite3_bind_null(statement, index);
    }
}

}  // namespace zel::sqlite
