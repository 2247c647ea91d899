// User-perceived characters of UTF-8 text.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace zel {

// The byte offsets at which the characters of `text` end, in order; the last is the length of the text. A
// base letter and its combining marks, a joined emoji, a flag and a Hangul syllable of jamo are one character
// (the cases of Unicode Standard Annex 29 that occur in labels). A byte that is not UTF-8 is a character of
// its own.
std::vector<std::size_t> ClusterEnds(std::string_view text);

}  // namespace zel
