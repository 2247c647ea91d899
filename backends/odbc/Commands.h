// What stands in a text of SQL.
#pragma once

#include <string_view>

namespace zel::odbc {

// Whether a second command could stand behind the first one, for any database: what is a text, a name or a
// comment to one of them may be none to another, and settings change it too. A semicolon counts unless it is
// part of such a thing for all of them, or nothing follows it.
bool MayHaveSecondCommand(std::string_view sql);

}  // namespace zel::odbc
