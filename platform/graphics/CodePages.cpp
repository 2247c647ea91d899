#include "platform/graphics/CodePages.h"

#include "platform/graphics/Utf8.h"

#include <zel/platform/Warning.h>

#include <array>
#include <cstdio>
#include <iconv.h>
#include <optional>
#include <unordered_map>

namespace zel {
namespace {

// The sets in the order in which they are tried. The C library knows their tables.
struct CharSet {
    unsigned char number;
    const char* codePage;
};
constexpr unsigned char kSymbol = 2;
constexpr std::array kCharSets = {
    CharSet{0, "CP1252"},   CharSet{161, "CP1253"}, CharSet{204, "CP1251"}, CharSet{238, "CP1250"},
    CharSet{162, "CP1254"}, CharSet{186, "CP1257"}, CharSet{177, "CP1255"}, CharSet{178, "CP1256"},
    CharSet{222, "CP874"},  CharSet{163, "CP1258"},
};

// Of the font Symbol's encoding (Adobe), signs that no code page has.
struct Sign {
    char32_t character;
    unsigned char byte;
};
constexpr std::array kSigns = {
    Sign{0x2200, 0x22}, Sign{0x2203, 0x24}, Sign{0x220B, 0x27}, Sign{0x2245, 0x40}, Sign{0x2234, 0x5C},
    Sign{0x22A5, 0x5E}, Sign{0x223C, 0x7E}, Sign{0x2032, 0xA2}, Sign{0x2264, 0xA3}, Sign{0x2044, 0xA4},
    Sign{0x221E, 0xA5}, Sign{0x2663, 0xA7}, Sign{0x2666, 0xA8}, Sign{0x2665, 0xA9}, Sign{0x2660, 0xAA},
    Sign{0x2194, 0xAB}, Sign{0x2190, 0xAC}, Sign{0x2191, 0xAD}, Sign{0x2192, 0xAE}, Sign{0x2193, 0xAF},
    Sign{0x2033, 0xB2}, Sign{0x2265, 0xB3}, Sign{0x221D, 0xB5}, Sign{0x2202, 0xB6}, Sign{0x2260, 0xB9},
    Sign{0x2261, 0xBA}, Sign{0x2248, 0xBB}, Sign{0x2297, 0xC4}, Sign{0x2295, 0xC5}, Sign{0x2205, 0xC6},
    Sign{0x2229, 0xC7}, Sign{0x222A, 0xC8}, Sign{0x2283, 0xC9}, Sign{0x2287, 0xCA}, Sign{0x2284, 0xCB},
    Sign{0x2282, 0xCC}, Sign{0x2286, 0xCD}, Sign{0x2208, 0xCE}, Sign{0x2209, 0xCF}, Sign{0x2220, 0xD0},
    Sign{0x2207, 0xD1}, Sign{0x220F, 0xD5}, Sign{0x221A, 0xD6}, Sign{0x22C5, 0xD7}, Sign{0x2227, 0xD9},
    Sign{0x2228, 0xDA}, Sign{0x21D4, 0xDB}, Sign{0x21D0, 0xDC}, Sign{0x21D1, 0xDD}, Sign{0x21D2, 0xDE},
    Sign{0x21D3, 0xDF}, Sign{0x2211, 0xE5}, Sign{0x222B, 0xF2}, Sign{0x0394, 0x44}, Sign{0x03A9, 0x57},
};

// The bytes of characters in one code page, asked for once.
class CodePage {
  public:
    explicit CodePage(const char* name) : converter_(iconv_open(name, "UTF-32LE")) {}
    ~CodePage() {
        if (converter_ != kNone) iconv_close(converter_);
    }
    CodePage(const CodePage&) = delete;
    CodePage& operator=(const CodePage&) = delete;

    // Null when the page does not have the character, or the system does not have the page.
    std::optional<char> ByteOf(char32_t character) {
        const auto [known, isNew] = bytes_.try_emplace(character);
        if (isNew && converter_ != kNone) {
            char32_t from = character;
            char to = 0;
            char* in = reinterpret_cast<char*>(&from);
            char* out = &to;
            std::size_t inLeft = sizeof from, outLeft = sizeof to;
            // A count above 0 tells of a character that is only like the one asked for.
            if (iconv(converter_, &in, &inLeft, &out, &outLeft) == 0 && outLeft == 0) known->second = to;
            iconv(converter_, nullptr, nullptr, nullptr, nullptr);
        }
        return known->second;
    }

  private:
    static inline const auto kNone = reinterpret_cast<iconv_t>(-1);
    iconv_t converter_;
    std::unordered_map<char32_t, std::optional<char>> bytes_;
};

CodePage& PageOf(std::size_t set) {
    thread_local std::array<std::optional<CodePage>, kCharSets.size()> pages;
    if (!pages[set]) pages[set].emplace(kCharSets[set].codePage);
    return *pages[set];
}

// Characters that look like one of the Western set.
char32_t Familiar(char32_t c) {
    switch (c) {
        case '\t':
        case 0x2002:  // spaces of several widths
        case 0x2003:
        case 0x2009:
        case 0x200A:
        case 0x202F:
            return ' ';
        case 0x2010:
        case 0x2011:
        case 0x2212:
            return '-';
        case 0x03BC:
            return 0xB5;  // the Greek mu as the micro sign
        default:
            return c;
    }
}

struct Choice {
    unsigned char charSet;
    char byte;
    bool raised = false;
};

// Raised digits and signs. The Western set has three of them, which stay with others beside them.
std::optional<Choice> Raised(char32_t c, bool afterRaised) {
    switch (c) {
        case 0xB9:
            return afterRaised ? std::optional<Choice>({0, '1', true}) : std::nullopt;
        case 0xB2:
        case 0xB3:
            return afterRaised ? std::optional<Choice>({0, static_cast<char>('0' + (c - 0xB0)), true})
                               : std::nullopt;
        case 0x207A:
            return Choice{0, '+', true};
        case 0x207B:
            return Choice{0, '-', true};
        default:
            if (c != 0x2070 && (c < 0x2074 || c > 0x2079)) return std::nullopt;
            return Choice{0, static_cast<char>('0' + (c - 0x2070)), true};
    }
}

std::optional<Choice> In(std::size_t set, char32_t c) {
    const std::optional<char> byte = PageOf(set).ByteOf(c);
    return byte ? std::optional<Choice>({kCharSets[set].number, *byte}) : std::nullopt;
}

std::optional<Choice> InSigns(char32_t c) {
    for (const Sign& sign : kSigns)
        if (sign.character == c) return Choice{kSymbol, static_cast<char>(sign.byte)};
    return std::nullopt;
}

// Where a text stands in a set, its next character stays there when it can, as blanks of Greek words do; but
// not Latin letters, whose font may draw them another way.
std::optional<Choice> Encoded(char32_t c, unsigned char current) {
    const bool letter = (c | 0x20u) >= 'a' && (c | 0x20u) <= 'z';
    for (std::size_t set = 0; set < kCharSets.size() && !letter; ++set) {
        if (kCharSets[set].number != current || current == 0) continue;
        if (const auto same = In(set, c)) return same;
    }
    for (std::size_t set = 0; set < kCharSets.size(); ++set) {
        if (const auto found = In(set, c)) return found;
    }
    return InSigns(c);
}

bool IsMark(char32_t c) {
    return (c >= 0x300 && c <= 0x36F) || c == 0x200D || (c >= 0xFE00 && c <= 0xFE0F);
}

void WarnOf(char32_t c) {
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(c));
    Warn(std::string("Windows metafiles have no character set with the character ") + name +
         "; it becomes a question mark.");
}

}  // namespace

std::vector<EncodedText> EncodeForCharSets(std::string_view text) {
    std::vector<EncodedText> pieces;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = at;
        const char32_t c = Familiar(NextCodePoint(text, at));
        if (c < 0x20) continue;
        std::optional<Choice> choice = Raised(c, !pieces.empty() && pieces.back().raised);
        if (!choice) choice = Encoded(c, pieces.empty() ? 0 : pieces.back().charSet);
        const bool inPlace =
            choice && (!IsMark(c) || (!pieces.empty() && choice->charSet == pieces.back().charSet));
        if (IsMark(c) && !pieces.empty() && !inPlace) continue;
        if (!choice) {
            WarnOf(c);
            choice = Choice{0, '?'};
        }
        if (pieces.empty() || pieces.back().charSet != choice->charSet ||
            pieces.back().raised != choice->raised)
            pieces.push_back({"", choice->charSet, choice->charSet == kSymbol, choice->raised, begin});
        pieces.back().bytes += choice->byte;
    }
    return pieces;
}

std::string EncodeWestern(std::string_view text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = Familiar(NextCodePoint(text, at));
        if (IsMark(c) && !bytes.empty()) continue;
        bytes += PageOf(0).ByteOf(c).value_or('?');
    }
    return bytes;
}

}  // namespace zel
