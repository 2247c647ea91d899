// Values between SQLite, which types each value, and variants, which follow their column.
#pragma once

#include "backends/sqlite/Statement.h"

#include <zel/platform/OleVariant.h>

#include <string>

namespace zel::sqlite {

// The field type that a column's declaration means; 0 for none, as with computed columns.
short TypeOfDeclaration(const char* declared);
// The characters that "VARCHAR(20)" holds; 0 without a limit.
long SizeOfDeclaration(const char* declared);
// The field type of the value that a computed column has in the current row.
short TypeOfValue(sqlite3_stmt* row, int column);

// The value of a column of the current row as its field type asks. A value of another kind, a text in a
// column of numbers for one, is given as it is.
void ReadValue(sqlite3_stmt* row, int column, short type, COleVariant& value);
// The value as it is stored.
void ReadStored(sqlite3_stmt* row, int column, COleVariant& value);
// Whether ReadValue changes values of a type on their way.
bool IsTranslated(short type);

// Binds a value to a question mark, counted from 1; a code of SQLite. Texts must outlive the statement's run.
int BindValue(sqlite3_stmt* statement, int index, const COleVariant& value);

}  // namespace zel::sqlite
