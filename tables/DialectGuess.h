// How the beginning of a text shows what kind of table it is.
#pragma once

#include <zel/tables/Table.h>

#include <string>
#include <string_view>
#include <vector>

namespace zel::tables {

// The fields of the first lines of a table.
using SampleRows = std::vector<std::vector<std::string>>;

// Finds out what `options` leave open, from the first megabyte or less of a text in UTF-8. The encoding is
// not looked at.
Dialect GuessDialect(std::string_view head, const ReadOptions& options);

// The text from the beginning of line `skip`, from 0, on.
std::string_view WithoutLines(std::string_view text, std::size_t skip);

}  // namespace zel::tables
