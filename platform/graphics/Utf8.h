// Stepping through UTF-8.
#pragma once

#include <cstddef>
#include <string_view>

namespace zel {

// The code point at `at`, which is moved behind it. A byte that is not UTF-8 stands for itself.
inline char32_t NextCodePoint(std::string_view text, std::size_t& at) {
    const auto lead = static_cast<unsigned char>(text[at++]);
    const int more = lead >= 0xF0 && lead < 0xF5 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC2 ? 1 : 0;
    if (lead < 0x80 || more == 0 || lead >= 0xF5 || at + static_cast<std::size_t>(more) > text.size())
        return lead;
    char32_t value = lead & (0x3Fu >> more);
    for (int i = 0; i < more; ++i) {
        const auto next = static_cast<unsigned char>(text[at + static_cast<std::size_t>(i)]);
        if ((next & 0xC0) != 0x80) return lead;
        value = value << 6 | (next & 0x3Fu);
    }
    at += static_cast<std::size_t>(more);
    return value;
}

}  // namespace zel
