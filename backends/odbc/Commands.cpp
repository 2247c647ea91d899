#include "backends/odbc/Commands.h"

#include <algorithm>

namespace zel::odbc {
namespace {

// In what databases differ, each a bit.
enum Trait : unsigned {
    BACKSLASHES = 1,           // escape a quote in '...'
    BACKSLASHES_IN_NAMES = 2,  // and in "..."
    ESCAPE_TEXTS = 4,          // and in E'...'
    DOLLAR_QUOTES = 8,         // $tag$...$tag$
    NESTED_COMMENTS = 16,      // /* /* */ */
    LIVE_COMMENTS = 32,        // /*! is run */
    DASHES_NEED_BLANK = 64,    // --x is no comment
    HASH_COMMENTS = 128,       // # to the end of the line
    BACKTICKS = 256,           // `names`
    BRACKETS = 512,            // [names]
    ALL_TRAITS = 1024
};

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsNamePart(char c) {
    const bool letter = (c | 32) >= 'a' && (c | 32) <= 'z';
    return letter || IsDigit(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

class Lexer {
  public:
    Lexer(std::string_view sql, unsigned traits) : rest_(sql), traits_(traits) {}

    bool FindsSecondCommand() {
        bool ended = false;
        while (!rest_.empty()) {
            if (IsBlank(rest_[0])) {
                rest_.remove_prefix(1);
            } else if (SkipComment()) {
                continue;
            } else if (rest_[0] == ';') {
                ended = true;
                rest_.remove_prefix(1);
            } else if (ended) {
                return true;
            } else {
                SkipToken();
            }
        }
        return false;
    }

  private:
    bool Has(Trait trait) const { return (traits_ & trait) != 0; }
    bool StartsWith(std::string_view text) const { return rest_.starts_with(text); }
    void SkipTo(std::size_t end) { rest_.remove_prefix(std::min(end, rest_.size())); }
    // Behind `mark`, which is looked for from `from` on.
    void SkipBehind(std::string_view mark, std::size_t from) {
        const std::size_t at = rest_.find(mark, std::min(from, rest_.size()));
        SkipTo(at == std::string_view::npos ? rest_.size() : at + mark.size());
    }

    bool SkipComment() {
        const bool dashes =
            StartsWith("--") && (!Has(DASHES_NEED_BLANK) || rest_.size() == 2 || IsBlank(rest_[2]));
        if (dashes || (Has(HASH_COMMENTS) && StartsWith("#"))) {
            SkipTo(rest_.find_first_of("\r\n"));
            return true;
        }
        if (!StartsWith("/*")) {
            // The end of a comment that was run.
            if (!live_ || !StartsWith("*/")) return false;
            live_ = false;
            SkipTo(2);
            return true;
        }
        if (Has(LIVE_COMMENTS) && StartsWith("/*!")) {
            live_ = true;
            SkipTo(3);
            return true;
        }
        SkipTo(2);
        for (int depth = 1; depth > 0 && !rest_.empty();) {
            const bool ends = StartsWith("*/"), begins = Has(NESTED_COMMENTS) && StartsWith("/*");
            depth += begins ? 1 : ends ? -1 : 0;
            SkipTo(ends || begins ? 2U : 1U);
        }
        return true;
    }

    void SkipToken() {
        const char c = rest_[0];
        if (c == '\'') {
            SkipQuoted(c, escapes_ || Has(BACKSLASHES));
            return;  // what is quoted next may be more of the same text
        }
        escapes_ = false;
        if (c == '"') {
            SkipQuoted(c, Has(BACKSLASHES_IN_NAMES));
        } else if ((Has(BACKTICKS) && c == '`') || (Has(BRACKETS) && c == '[')) {
            SkipBehind(c == '[' ? "]" : "`", 1);
        } else if (IsNamePart(c) && !IsDigit(c)) {
            SkipName();
        } else if (!SkipDollarQuoted()) {
            SkipTo(1);  // numbers digit by digit: a name may begin right behind them
        }
    }

    void SkipName() {
        std::size_t length = 1;
        while (length < rest_.size() && (IsNamePart(rest_[length]) || rest_[length] == '$')) ++length;
        escapes_ = Has(ESCAPE_TEXTS) && length == 1 && (StartsWith("e'") || StartsWith("E'"));
        SkipTo(length);
    }

    // A doubled quote needs no care: it ends one text and begins the next.
    void SkipQuoted(char quote, bool backslashes) {
        std::size_t at = 1;
        while (at < rest_.size() && rest_[at] != quote) at += backslashes && rest_[at] == '\\' ? 2U : 1U;
        SkipTo(at + 1);
    }

    bool SkipDollarQuoted() {
        if (!Has(DOLLAR_QUOTES) || rest_[0] != '$') return false;
        std::size_t end = 1;
        while (end < rest_.size() && IsNamePart(rest_[end])) ++end;
        if (end == rest_.size() || rest_[end] != '$' || IsDigit(rest_[1])) return false;
        const std::string_view tag = rest_.substr(0, end + 1);
        SkipBehind(tag, tag.size());
        return true;
    }

    std::string_view rest_;
    unsigned traits_;
    bool live_ = false;     // within a comment that is run
    bool escapes_ = false;  // in what is quoted next: an E stands before it
};

}  // namespace

bool MayHaveSecondCommand(std::string_view sql) {
    const std::size_t end = sql.find_last_not_of("; \t\r\n");
    const std::string_view inner = sql.substr(0, end + 1);
    if (inner.find(';') == std::string_view::npos) return false;
    if (inner.find('{') != std::string_view::npos) return true;  // drivers rewrite what stands in braces
    for (unsigned traits = 0; traits < ALL_TRAITS; ++traits) {
        if (Lexer(sql, traits).FindsSecondCommand()) return true;
    }
    return false;
}

}  // namespace zel::odbc
