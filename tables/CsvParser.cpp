#include "tables/CsvParser.h"

#include <zel/Error.h>

#include <new>
#include <utility>

namespace zel::tables {

CsvParser::CsvParser(char delimiter, std::string source)
    : source_(std::move(source)), blanks_(delimiter == ' ') {
    // Quotes within a field without quotes are taken as they stand: they are inches more often than mistakes.
    if (csv_init(&parser_, 0) != 0) throw std::bad_alloc();
    csv_set_delim(&parser_, static_cast<unsigned char>(delimiter));
    csv_set_space_func(&parser_, [](unsigned char) { return 0; });
}

CsvParser::~CsvParser() {
    csv_free(&parser_);
}

void CsvParser::TakeField(void* text, std::size_t length, void* parser) {
    auto& self = *static_cast<CsvParser*>(parser);
    if (!self.stopped_) self.OnField({static_cast<const char*>(text), length});
}

void CsvParser::TakeRow(int, void* parser) {
    auto& self = *static_cast<CsvParser*>(parser);
    if (self.stopped_) return;
    ++self.rows_;
    self.OnRow();
}

void CsvParser::Feed(std::string_view text) {
    if (!started_) text = SkipComments(text);
    if (text.empty() || stopped_) return;
    if (blanks_) text = JoinBlanks(text);
    if (csv_parse(&parser_, text.data(), text.size(), TakeField, TakeRow, this) != text.size()) Fail();
}

void CsvParser::Finish() {
    if (stopped_) return;
    csv_set_opts(&parser_, CSV_STRICT | CSV_STRICT_FINI);  // one that is never closed is a mistake
    if (csv_fini(&parser_, TakeField, TakeRow, this) != 0) Fail();
}

std::string_view CsvParser::SkipComments(std::string_view text) {
    while (!text.empty()) {
        if (!inComment_ && text.front() != '#' && text.front() != '\n' && text.front() != '\r') {
            started_ = true;
            return text;
        }
        inComment_ = inComment_ || text.front() == '#';
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) return {};
        inComment_ = false;
        text.remove_prefix(end + 1);
    }
    return {};
}

// One blank for each run of blanks and tabs outside of quotes, none at the beginning of a line.
std::string_view CsvParser::JoinBlanks(std::string_view text) {
    joined_.clear();
    for (const char c : text) {
        if (c == '"') inQuotes_ = !inQuotes_;
        const bool blank = !inQuotes_ && (c == ' ' || c == '\t');
        if (blank) {
            pending_ = !atBegin_;
            continue;
        }
        const bool lineEnd = !inQuotes_ && (c == '\n' || c == '\r');
        if (pending_ && !lineEnd) joined_ += ' ';
        pending_ = false;
        atBegin_ = lineEnd;
        joined_ += c;
    }
    return joined_;
}

void CsvParser::Fail() {
    throw FormatError(
        "Cannot read \"" + source_ + "\", row " + std::to_string(rows_ + 1) + ": " +
        (csv_error(&parser_) == CSV_EPARSE ? "a quote is never closed" : csv_strerror(csv_error(&parser_))));
}

}  // namespace zel::tables
