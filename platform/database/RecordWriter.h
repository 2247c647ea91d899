// Changes of records as SQL commands.
#pragma once

#include "platform/database/Recordset.h"

namespace zel {

// Writes to the one table that a recordset's columns come from. `values` and `changed` have an element for
// each column. All throw CDaoException*; a command that would hit other records than the current one is not
// run.
void UpdateRecord(Recordset& rows, const std::vector<COleVariant>& values, const std::vector<bool>& changed);
void InsertRecord(Recordset& rows, const std::vector<COleVariant>& values, const std::vector<bool>& changed);
void DeleteRecord(Recordset& rows);

// Whether the columns come from one table.
bool HasOneTable(const Recordset& rows);

}  // namespace zel
