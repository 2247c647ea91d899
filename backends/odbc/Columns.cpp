#include "backends/odbc/Columns.h"

#include <zel/platform/Dao.h>

#include <array>

namespace zel::odbc {
namespace {

constexpr SQLULEN kDigitsOfDouble = 15;
constexpr SQLULEN kDigitsOfMoney = 19;
constexpr SQLSMALLINT kScaleOfMoney = 4;

struct Kind {
    short type;
    Form form;
    long size;
};

// Numbers with more digits than a double keeps come as texts.
Kind KindOfDecimal(SQLULEN digits, SQLSMALLINT scale) {
    if (digits == kDigitsOfMoney && scale == kScaleOfMoney) return {dbCurrency, Form::TEXT, 8};
    if (digits >= 1 && digits <= kDigitsOfDouble) return {dbDouble, Form::NUMBER, 8};
    return {dbDecimal, Form::TEXT, 16};
}

Kind KindOf(SQLSMALLINT type, SQLULEN size, SQLSMALLINT scale) {
    const auto length = static_cast<long>(size);
    switch (type) {
        case SQL_BIT:
            return {dbBoolean, Form::BIT, 1};
        case SQL_TINYINT:
            return {dbByte, Form::INTEGER, 1};
        case SQL_SMALLINT:
            return {dbInteger, Form::INTEGER, 2};
        case SQL_INTEGER:
            return {dbLong, Form::INTEGER, 4};
        case SQL_BIGINT:
            return {dbBigInt, Form::INTEGER, 8};
        case SQL_REAL:
            return {dbSingle, Form::NUMBER, 4};
        case SQL_FLOAT:
        case SQL_DOUBLE:
            return {dbDouble, Form::NUMBER, 8};
        case SQL_NUMERIC:
        case SQL_DECIMAL:
            return KindOfDecimal(size, scale);
        case SQL_TYPE_DATE:
        case SQL_TYPE_TIMESTAMP:
        case SQL_TYPE_TIME:
            return {dbDate, Form::MOMENT, 8};
        case SQL_LONGVARCHAR:
        case SQL_WLONGVARCHAR:
            return {dbMemo, Form::TEXT, 0};
        case SQL_BINARY:
        case SQL_VARBINARY:
            return {dbBinary, Form::BYTES, length};
        case SQL_LONGVARBINARY:
            return {dbLongBinary, Form::BYTES, 0};
        case SQL_GUID:
            return {dbGUID, Form::TEXT, 16};
        default:
            return {dbText, Form::TEXT, length};
    }
}

SQLLEN NumberOf(SQLHSTMT statement, SQLUSMALLINT column, SQLUSMALLINT field, SQLLEN unknown) {
    SQLLEN value = unknown;
    if (!Succeeded(SQLColAttributeW(statement, column, field, nullptr, 0, nullptr, &value))) return unknown;
    return value;
}

void AddSource(SQLHSTMT statement, SQLUSMALLINT column, ColumnInfo& info) {
    info.sourceTable = ColumnText(statement, column, SQL_DESC_BASE_TABLE_NAME);
    if (info.sourceTable.empty()) return;
    info.sourceSchema = ColumnText(statement, column, SQL_DESC_SCHEMA_NAME);
    info.sourceColumn = ColumnText(statement, column, SQL_DESC_BASE_COLUMN_NAME);
}

long Attributes(SQLHSTMT statement, SQLUSMALLINT column, const ColumnInfo& info) {
    const bool variable =
        info.type == dbText || info.type == dbMemo || info.type == dbBinary || info.type == dbLongBinary;
    long attributes = variable ? dbVariableField : dbFixedField;
    if (NumberOf(statement, column, SQL_DESC_AUTO_UNIQUE_VALUE, SQL_FALSE) == SQL_TRUE)
        attributes |= dbAutoIncrField;
    const SQLLEN updatable = NumberOf(statement, column, SQL_DESC_UPDATABLE, SQL_ATTR_READWRITE_UNKNOWN);
    if (updatable != SQL_ATTR_READONLY && !info.sourceColumn.empty()) attributes |= dbUpdatableField;
    return attributes;
}

}  // namespace

std::vector<Column> DescribeColumns(const Handle& statement, const std::string& subject) {
    SQLSMALLINT count = 0;
    statement.Check(SQLNumResultCols(statement.Get(), &count), "run", subject);
    std::vector<Column> columns(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const auto at = static_cast<SQLUSMALLINT>(i + 1);
        std::array<SQLWCHAR, 512> name{};
        SQLSMALLINT length = 0, type = 0, scale = 0, nullable = 0;
        SQLULEN size = 0;
        statement.Check(
            SQLDescribeColW(statement.Get(), at, name.data(), static_cast<SQLSMALLINT>(name.size()), &length,
                            &type, &size, &scale, &nullable),
            "run", subject);
        // A server's own type for money is described as a floating-point number, and read as one: as a text
        // it has the signs of a currency.
        const bool money = ColumnText(statement.Get(), at, SQL_DESC_TYPE_NAME) == "money";
        const Kind kind = money ? Kind{dbCurrency, Form::NUMBER, 8} : KindOf(type, size, scale);
        ColumnInfo& info = columns[i].info;
        columns[i].form = kind.form;
        info.name = FromWide(name.data(), std::min(static_cast<std::size_t>(length), name.size() - 1));
        info.type = kind.type;
        info.size = kind.size;
        info.required = nullable == SQL_NO_NULLS;
        AddSource(statement.Get(), at, info);
        info.attributes = Attributes(statement.Get(), at, info);
    }
    return columns;
}

}  // namespace zel::odbc
