// Databases on the command line.
#pragma once

#include "apps/zel/Figure.h"

#include <zel/zel.h>

#include <string>
#include <vector>

namespace zel::cli {

// Which records of a database are drawn, as SQL takes them.
struct DatabaseChoice {
    std::string database;  // a SQLite file, or an ODBC connection string
    std::string table;
    std::string where;
    std::string order;
};

// Opens a SQLite file by its path, or a data source by a connection string such as "DSN=weather;UID=me".
// Throws CDaoException*.
void OpenDatabase(CDaoDatabase& database, const std::string& name, bool readOnly);
// The same for changing it; a file is made when `create` is set.
void CreateOrOpenDatabase(CDaoDatabase& database, const std::string& name, bool create);
// Whether a name is that of a file, there or not.
bool IsDatabaseFile(const std::string& name);

// A column's name for titles, without the quotes that SQL wants.
std::string ColumnTitle(const std::string& column);
// A series of each of `ys`. Dates on x are seconds since 1970, nulls are gaps. Throws Error.
std::vector<Series> ReadSeries(const DatabaseChoice& choice, const std::string& x,
                               const std::vector<std::string>& ys);

}  // namespace zel::cli
