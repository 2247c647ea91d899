// Numbers as people write them.
#pragma once

#include <string>
#include <string_view>

namespace zel::tables {

// `text` without blanks around it, no-break ones included.
std::string_view Trimmed(std::string_view text);

// How the numbers of a column are written.
struct NumberForm {
    char decimal = '.';
    // What all of them have before and behind, without blanks between.
    std::string prefix{};
    std::string suffix{};
};

// Reads a trimmed text: a sign, digits with thousands separators (a comma, point, blank, apostrophe; three
// digits between any two), a decimal sign, an exponent; prefix and suffix of the form may be there or not.
// False when it is no number.
bool ReadNumber(std::string_view text, const NumberForm& form, double& value);

// What stands before and behind the number in a text, trimmed; both empty when there is no digit. A prefix
// that is no currency counts as none.
struct Surroundings {
    std::string_view prefix, suffix;
};
Surroundings SurroundingsOf(std::string_view text);

}  // namespace zel::tables
