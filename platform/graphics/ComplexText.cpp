#include "platform/graphics/ComplexText.h"

#include "platform/graphics/Utf8.h"

#include <algorithm>
#include <array>

namespace zel {
namespace {

struct Range {
    char32_t first;
    char32_t last;
};

constexpr char32_t kFirstMark = 0x300;

// From the first combining mark on: blocks whose characters are simple. What is not listed may be complex.
constexpr std::array kSimple = {
    Range{0x0370, 0x0482},   Range{0x048A, 0x0590},   Range{0x10A0, 0x10FF},   Range{0x13A0, 0x167F},
    Range{0x1C90, 0x1CBF},   Range{0x1D00, 0x1DBF},   Range{0x1E00, 0x200A},   Range{0x2010, 0x2029},
    Range{0x202F, 0x205F},   Range{0x2070, 0x20CF},   Range{0x2100, 0x2DDF},   Range{0x2E00, 0x3029},
    Range{0x3030, 0x3098},   Range{0x309B, 0xA66E},   Range{0xA67E, 0xA69D},   Range{0xA700, 0xA801},
    Range{0xAC00, 0xD7A3},   Range{0xE000, 0xFB06},   Range{0xFE30, 0xFE6F},   Range{0xFF00, 0xFFFD},
    Range{0x1D400, 0x1F1E5}, Range{0x1F200, 0x1F3FA}, Range{0x1F400, 0x1FAFF}, Range{0x20000, 0x3FFFD},
};

// Hebrew, Arabic, Syriac, Thaana, N'Ko and what else is written from the right.
constexpr std::array kFromTheRight = {
    Range{0x0590, 0x08FF}, Range{0x200F, 0x200F},   Range{0xFB1D, 0xFDFF},
    Range{0xFE70, 0xFEFF}, Range{0x10800, 0x10FFF}, Range{0x1E800, 0x1EFFF},
};

template <std::size_t N>
bool IsIn(const std::array<Range, N>& ranges, char32_t c) {
    const auto after =
        std::upper_bound(ranges.begin(), ranges.end(), c,
                         [](char32_t value, const Range& range) { return value < range.first; });
    return after != ranges.begin() && c <= std::prev(after)->last;
}

// Letters decide the direction of a line, digits and signs do not.
bool IsLetter(char32_t c) {
    const char32_t lower = c | 0x20;
    return (lower >= 'a' && lower <= 'z') ||
           (c >= 0xC0 && c != 0xD7 && c != 0xF7 && !(c >= 0x2000 && c < 0x2C00));
}

}  // namespace

bool IsComplexText(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = NextCodePoint(text, at);
        if (c >= kFirstMark && !IsIn(kSimple, c)) return true;
    }
    return false;
}

bool IsRightToLeft(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = NextCodePoint(text, at);
        if (IsIn(kFromTheRight, c)) return true;
        if (IsLetter(c)) return false;
    }
    return false;
}

std::string WholeOf(std::span<const TextSpan> spans) {
    std::string whole;
    for (const TextSpan& span : spans) whole += span.text;
    return whole;
}

}  // namespace zel
