// The character sets of texts of eight bits.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zel {

// A piece of text in one character set of the platform.
struct EncodedText {
    std::string bytes;
    unsigned char charSet = 0;  // the lfCharSet of the font that shows it
    bool symbol = false;        // in the font "Symbol", whatever the text's own
    bool raised = false;        // in a smaller font, at the top: exponents
    std::size_t begin = 0;      // where it begins in the text
};

// Splits a text (UTF-8) into pieces of one character set each, Western where that can be, and changing sets
// as seldom as possible. Marks that Western text has no place for are left out where their letter is there;
// a character of none of the sets becomes '?', with a warning. Raised digits become digits in a smaller font.
std::vector<EncodedText> EncodeForCharSets(std::string_view text);

// In the Western character set (Windows-1252), '?' for what it does not have.
std::string EncodeWestern(std::string_view text);

}  // namespace zel
