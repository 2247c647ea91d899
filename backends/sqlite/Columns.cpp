#include "backends/sqlite/Columns.h"

#include "backends/sqlite/Values.h"

#include <zel/platform/Dao.h>

namespace zel::sqlite {
namespace {

std::string OrEmpty(const char* text) {
    return text ? text : "";
}

// Columns that are computed from others of their record.
bool IsGenerated(sqlite3* database, const ColumnInfo& column) {
    constexpr const char* kQuery = "SELECT hidden FROM pragma_table_xinfo(?1, ?2) WHERE name = ?3";
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(database, kQuery, -1, &prepared, nullptr) != SQLITE_OK) return false;
    const Statement statement(prepared);
    const std::string schema = column.sourceSchema.empty() ? "main" : column.sourceSchema;
    sqlite3_bind_text(prepared, 1, column.sourceTable.c_str(), -1, SQLITE_STATIC);
    sqlite3_bind_text(prepared, 2, schema.c_str(), -1, SQLITE_STATIC);
    sqlite3_bind_text(prepared, 3, column.sourceColumn.c_str(), -1, SQLITE_STATIC);
    return sqlite3_step(prepared) == SQLITE_ROW && sqlite3_column_int(prepared, 0) > 1;
}

void AddAttributes(sqlite3* database, const char* schema, ColumnInfo& column) {
    column.attributes = column.type == dbText || column.type == dbMemo || column.type == dbLongBinary
                            ? dbVariableField
                            : dbFixedField;
    if (column.sourceColumn.empty()) return;
    int required = 0, key = 0, counter = 0;
    const int known = sqlite3_table_column_metadata(database, schema, column.sourceTable.c_str(),
                                                    column.sourceColumn.c_str(), nullptr, nullptr, &required,
                                                    &key, &counter);
    if (known != SQLITE_OK) return;
    column.required = required != 0;
    if (counter) column.attributes |= dbAutoIncrField;
    if (!IsGenerated(database, column)) column.attributes |= dbUpdatableField;
}

long SizeOf(short type, const char* declared) {
    switch (type) {
        case dbBoolean:
        case dbByte:
            return 1;
        case dbInteger:
            return 2;
        case dbLong:
        case dbSingle:
            return 4;
        case dbText:
            return SizeOfDeclaration(declared);
        case dbMemo:
        case dbLongBinary:
            return 0;
        default:
            return 8;
    }
}

}  // namespace

std::vector<ColumnInfo> DescribeColumns(sqlite3* database, sqlite3_stmt* statement, bool hasRow) {
    std::vector<ColumnInfo> columns(static_cast<std::size_t>(sqlite3_column_count(statement)));
    for (std::size_t i = 0; i < columns.size(); ++i) {
        ColumnInfo& column = columns[i];
        const int at = static_cast<int>(i);
        const char* declared = sqlite3_column_decltype(statement, at);
        const char* schema = sqlite3_column_database_name(statement, at);
        column.name = OrEmpty(sqlite3_column_name(statement, at));
        column.sourceSchema = SchemaName(schema);
        column.sourceTable = OrEmpty(sqlite3_column_table_name(statement, at));
        column.sourceColumn = OrEmpty(sqlite3_column_origin_name(statement, at));
        column.type = TypeOfDeclaration(declared);
        if (column.type == 0) column.type = hasRow ? TypeOfValue(statement, at) : dbText;
        column.size = SizeOf(column.type, declared);
        column.ownKeyValue = IsTranslated(column.type);
        AddAttributes(database, schema, column);
    }
    return columns;
}

}  // namespace zel::sqlite
