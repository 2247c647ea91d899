// What SQLite knows about the columns of a query.
#pragma once

#include "backends/sqlite/Statement.h"

#include <zel/platform/DatabaseDriver.h>

#include <vector>

namespace zel::sqlite {

// `hasRow`: the statement stands on its first row, whose values tell the types of computed columns.
std::vector<ColumnInfo> DescribeColumns(sqlite3* database, sqlite3_stmt* statement, bool hasRow);

// The schema to name in commands; empty for the file's own.
inline std::string SchemaName(const char* schema) {
    return schema && std::string(schema) != "main" ? schema : "";
}

}  // namespace zel::sqlite
