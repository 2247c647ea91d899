#include "backends/odbc/Parameters.h"

#include <zel/platform/Dao.h>
#include <zel/platform/DatabaseDriver.h>

#include <charconv>
#include <cmath>

namespace zel::odbc {
namespace {

constexpr double kSecondsPerDay = 86400;

// All digits, so that a value is found again by what it was read as.
std::string NumberText(double value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value > 0 ? "Infinity" : "-Infinity";
    char text[40];
    return {text, std::to_chars(std::begin(text), std::end(text), value).ptr};
}

std::string FloatText(float value) {
    if (!std::isfinite(value)) return NumberText(static_cast<double>(value));
    char text[40];
    return {text, std::to_chars(std::begin(text), std::end(text), value).ptr};
}

SQL_TIMESTAMP_STRUCT MomentOf(DATE date) {
    const COleDateTime moment(date);
    if (moment.GetStatus() != COleDateTime::valid)
        ThrowDatabaseError(CDaoException::conversion, "write", "a date",
                           "it lies outside the years 100 to 9999");
    // The date's parts are rounded to seconds; microseconds are added to the second that has begun.
    const double seconds = std::round(moment.ToDays() * kSecondsPerDay * 1e6) / 1e6;
    const double whole = std::floor(seconds);
    const COleDateTime begun = COleDateTime::FromDays(whole / kSecondsPerDay);
    SQL_TIMESTAMP_STRUCT result{};
    result.year = static_cast<SQLSMALLINT>(begun.GetYear());
    result.month = static_cast<SQLUSMALLINT>(begun.GetMonth());
    result.day = static_cast<SQLUSMALLINT>(begun.GetDay());
    result.hour = static_cast<SQLUSMALLINT>(begun.GetHour());
    result.minute = static_cast<SQLUSMALLINT>(begun.GetMinute());
    result.second = static_cast<SQLUSMALLINT>(begun.GetSecond());
    // Dates are doubles: beyond ten thousandths of a second their digits are noise.
    result.fraction = static_cast<SQLUINTEGER>(std::floor((seconds - whole) * 1e4 + 0.5) * 1e5);
    if (result.fraction >= 1000000000U) result.fraction = 999900000U;
    return result;
}

}  // namespace

void Parameters::Take(Bound& bound, const COleVariant& value) {
    const auto integer = [&](SQLBIGINT number) {
        bound.kind = SQL_C_SBIGINT, bound.type = SQL_BIGINT, bound.size = 19;
        bound.integer = number, bound.data = &bound.integer, bound.length = sizeof bound.integer;
    };
    const auto number = [&](std::string text, SQLSMALLINT type) {
        bound.kind = SQL_C_CHAR, bound.type = type, bound.size = 17;
        bound.bytes = std::move(text), bound.data = bound.bytes.data(), bound.length = SQL_NTS;
    };
    switch (value.vt) {
        case VT_UI1:
            return integer(value.bVal);
        case VT_I2:
            return integer(value.iVal);
        case VT_I4:
            return integer(value.lVal);
        case VT_I8:
            return integer(value.llVal);
        case VT_R4:
            return number(FloatText(value.fltVal), SQL_DOUBLE);
        case VT_R8:
            return number(NumberText(value.dblVal), SQL_DOUBLE);
        case VT_CY: {
            COleVariant text;
            text.ChangeType(VT_BSTR, &value);
            return number(std::string(text.Bytes()), SQL_NUMERIC);
        }
        case VT_BOOL:
            bound.kind = SQL_C_BIT, bound.type = SQL_BIT;
            bound.bit = value.boolVal ? 1 : 0, bound.data = &bound.bit, bound.length = 1;
            return;
        case VT_DATE:
            bound.kind = SQL_C_TYPE_TIMESTAMP, bound.type = SQL_TYPE_TIMESTAMP, bound.size = 26,
            bound.digits = 6;
            bound.moment = MomentOf(value.date), bound.data = &bound.moment,
            bound.length = sizeof bound.moment;
            return;
        case VT_BSTR:
            bound.kind = SQL_C_WCHAR, bound.type = SQL_WVARCHAR;
            bound.wide = ToWide(value.Bytes()), bound.data = bound.wide.data(), bound.length = SQL_NTS;
            bound.size = std::max<SQLULEN>(bound.wide.size() - 1, 1);
            return;
        case VT_ARRAY | VT_UI1:
            bound.kind = SQL_C_BINARY, bound.type = SQL_VARBINARY;
            bound.bytes = std::string(value.Bytes()), bound.data = bound.bytes.data();
            bound.length = static_cast<SQLLEN>(bound.bytes.size());
            bound.size = std::max<SQLULEN>(bound.bytes.size(), 1);
            return;
        default:
            return;
    }
}

void Parameters::Bind(const Handle& statement, std::span<const COleVariant> values,
                      const std::string& subject) {
    SQLSMALLINT wanted = 0;
    if (Succeeded(SQLNumParams(statement.Get(), &wanted)) &&
        static_cast<std::size_t>(wanted) != values.size())
        ThrowDatabaseError(CDaoException::invalidArgument, "run", subject,
                           "it has " + std::to_string(wanted) + " question marks, and " +
                               std::to_string(values.size()) + " values were given");
    bound_.clear();
    for (std::size_t i = 0; i < values.size(); ++i) {
        bound_.push_back(std::make_unique<Bound>());
        Bound& bound = *bound_.back();
        Take(bound, values[i]);
        const auto index = static_cast<SQLUSMALLINT>(i + 1);
        // The type of the column that the value goes to, where the driver can tell.
        SQLSMALLINT type = 0, digits = 0, nullable = 0;
        SQLULEN size = 0;
        if (Succeeded(SQLDescribeParam(statement.Get(), index, &type, &size, &digits, &nullable)) &&
            type != SQL_UNKNOWN_TYPE) {
            bound.type = type;
            bound.size = std::max(bound.size, size);
            bound.digits = std::max(bound.digits, digits);
        }
        statement.Check(SQLBindParameter(statement.Get(), index, SQL_PARAM_INPUT, bound.kind, bound.type,
                                         bound.size, bound.digits, bound.data, 0, &bound.length),
                        "run", subject);
    }
}

}  // namespace zel::odbc
