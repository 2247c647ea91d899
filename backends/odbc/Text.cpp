#include "backends/odbc/Text.h"

#include <cstdint>

namespace zel::odbc {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;

// Takes one character from `text`.
std::uint32_t TakeCharacter(std::string_view& text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    const std::size_t length = first < 0x80       ? 1
                               : first >> 5 == 6  ? 2
                               : first >> 4 == 14 ? 3
                               : first >> 3 == 30 ? 4
                                                  : 0;
    if (length == 0 || text.size() < length) {
        text.remove_prefix(1);
        return kReplacement;
    }
    std::uint32_t c = length == 1 ? first : first & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            text.remove_prefix(1);
            return kReplacement;
        }
        c = c << 6 | (byte(i) & 0x3Fu);
    }
    text.remove_prefix(length);
    return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF) ? c : kReplacement;
}

void Append(std::string& text, std::uint32_t c) {
    const auto add = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (c < 0x80) {
        add(c);
        return;
    }
    if (c < 0x800) {
        add(0xC0 | c >> 6);
    } else {
        if (c < 0x10000) {
            add(0xE0 | c >> 12);
        } else {
            add(0xF0 | c >> 18);
            add(0x80 | (c >> 12 & 0x3F));
        }
        add(0x80 | (c >> 6 & 0x3F));
    }
    add(0x80 | (c & 0x3F));
}

}  // namespace

std::vector<SQLWCHAR> ToWide(std::string_view text) {
    std::vector<SQLWCHAR> wide;
    wide.reserve(text.size() + 1);
    while (!text.empty()) {
        const std::uint32_t c = TakeCharacter(text);
        if (c >= 0x10000) {
            wide.push_back(static_cast<SQLWCHAR>(0xD800 + ((c - 0x10000) >> 10)));
            wide.push_back(static_cast<SQLWCHAR>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        } else {
            wide.push_back(static_cast<SQLWCHAR>(c));
        }
    }
    wide.push_back(0);
    return wide;
}

std::string FromWide(const SQLWCHAR* text, std::size_t length) {
    std::string narrow;
    narrow.reserve(length);
    for (std::size_t i = 0; i < length; ++i) {
        std::uint32_t c = text[i];
        const bool high = c >= 0xD800 && c < 0xDC00;
        if (high && i + 1 < length && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00u);
        } else if (c >= 0xD800 && c < 0xE000) {
            c = kReplacement;
        }
        Append(narrow, c);
    }
    return narrow;
}

}  // namespace zel::odbc
