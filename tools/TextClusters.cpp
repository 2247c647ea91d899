#include "tools/TextClusters.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace zel {
namespace {

using CodePoint = std::uint32_t;
constexpr CodePoint kInvalid = 0xFFFFFFFF;
constexpr CodePoint kZeroWidthJoiner = 0x200D;

struct Range {
    CodePoint first;
    CodePoint last;
};

// Marks that extend the character before them.
constexpr std::array kExtending = {
    Range{0x0300, 0x036F},   Range{0x0483, 0x0489}, Range{0x0591, 0x05BD},   Range{0x05BF, 0x05BF},
    Range{0x05C1, 0x05C2},   Range{0x0610, 0x061A}, Range{0x064B, 0x065F},   Range{0x0670, 0x0670},
    Range{0x06D6, 0x06DC},   Range{0x06DF, 0x06E4}, Range{0x0711, 0x0711},   Range{0x0900, 0x0903},
    Range{0x093A, 0x093C},   Range{0x093E, 0x094F}, Range{0x0981, 0x0983},   Range{0x09BC, 0x09BC},
    Range{0x09BE, 0x09CD},   Range{0x0A01, 0x0A03}, Range{0x0A3C, 0x0A4D},   Range{0x0B3E, 0x0B4D},
    Range{0x0BBE, 0x0BCD},   Range{0x0C3E, 0x0C4D}, Range{0x0D3E, 0x0D4D},   Range{0x0E31, 0x0E31},
    Range{0x0E34, 0x0E3A},   Range{0x0E47, 0x0E4E}, Range{0x1160, 0x11FF},   Range{0x1AB0, 0x1AFF},
    Range{0x1DC0, 0x1DFF},   Range{0x200C, 0x200D}, Range{0x20D0, 0x20FF},   Range{0x3099, 0x309A},
    Range{0xFE00, 0xFE0F},   Range{0xFE20, 0xFE2F}, Range{0x1F3FB, 0x1F3FF}, Range{0xE0020, 0xE007F},
    Range{0xE0100, 0xE01EF},
};

bool Extends(CodePoint c) {
    const auto after =
        std::upper_bound(kExtending.begin(), kExtending.end(), c,
                         [](CodePoint value, const Range& range) { return value < range.first; });
    return after != kExtending.begin() && c <= std::prev(after)->last;
}

bool IsRegionalIndicator(CodePoint c) {
    return c >= 0x1F1E6 && c <= 0x1F1FF;
}

struct Decoded {
    CodePoint value;
    std::size_t length;
};

// The code point at `at`; an invalid byte has length 1.
Decoded Decode(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    if (lead < 0x80) return {lead, 1};
    const std::size_t length = lead >= 0xF0 && lead < 0xF5 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
    if (length == 0 || lead >= 0xF5 || at + length > text.size()) return {kInvalid, 1};
    CodePoint value = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[at + i]);
        if ((next & 0xC0) != 0x80) return {kInvalid, 1};
        value = value << 6 | (next & 0x3Fu);
    }
    return {value, length};
}

}  // namespace

std::vector<std::size_t> ClusterEnds(std::string_view text) {
    std::vector<std::size_t> ends;
    ends.reserve(text.size());
    CodePoint previous = kInvalid;
    bool openFlag = false;  // the last character is a single regional indicator, which a second one completes
    for (std::size_t at = 0; at < text.size();) {
        const Decoded c = Decode(text, at);
        at += c.length;
        const bool completesFlag = openFlag && IsRegionalIndicator(c.value);
        const bool joins = c.value != kInvalid && !ends.empty() &&
                           (Extends(c.value) || previous == kZeroWidthJoiner || completesFlag);
        if (joins) {
            ends.back() = at;
        } else {
            ends.push_back(at);
        }
        openFlag = IsRegionalIndicator(c.value) && !completesFlag;
        previous = c.value;
    }
    return ends;
}

}  // namespace zel
