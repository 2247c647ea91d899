// The SQLite driver: databases that are files.
#pragma once

namespace zel::sqlite {

// Lets CDaoDatabase open SQLite files by their path, with an empty connection string or "SQLite;". Safe to
// call more than once, before databases are opened.
//
// Files are opened for reading; the first command that changes something opens them for writing. Texts in
// columns that are declared as dates are read as such ("2012-01-31", a time may follow), whole numbers there
// are seconds since 1970 and others Julian days, as SQLite's own functions take them.
void Install();

}  // namespace zel::sqlite
