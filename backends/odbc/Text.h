// Texts between UTF-8 and the UTF-16 of ODBC.
#pragma once

#include "backends/odbc/Api.h"

#include <string>
#include <string_view>
#include <vector>

namespace zel::odbc {

// Closed by a zero. Bytes that are no UTF-8 become the replacement character.
std::vector<SQLWCHAR> ToWide(std::string_view text);
std::string FromWide(const SQLWCHAR* text, std::size_t length);

}  // namespace zel::odbc
