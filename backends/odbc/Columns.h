// What a driver tells about the columns of a result.
#pragma once

#include "backends/odbc/Statement.h"

#include <zel/platform/DatabaseDriver.h>

#include <vector>

namespace zel::odbc {

// How the values of a column come in.
enum class Form { NUMBER, INTEGER, BIT, MOMENT, TEXT, BYTES };

struct Column {
    ColumnInfo info;
    Form form = Form::TEXT;
};

// Of a statement that has run; none when it delivers no rows.
std::vector<Column> DescribeColumns(const Handle& statement, const std::string& subject);

}  // namespace zel::odbc
