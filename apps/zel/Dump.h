// What is in a document or an archive, value by value.
#pragma once

#include <ostream>

namespace zel::cli {

// Prints what a document's header says, or what is wrong with it or the checksums, then a line for each value
// of the content of a document or of a classic archive, with its offset in the content, indented by the
// objects that it stands in. A broken file ends in the loader's exception, after what could be read.
void PrintDump(const char* path, std::ostream& out);

}  // namespace zel::cli
