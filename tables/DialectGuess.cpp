#include "tables/DialectGuess.h"

#include "tables/CsvParser.h"
#include "tables/Numbers.h"
#include "tables/Times.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace zel::tables {
namespace {

constexpr std::size_t kMostRows = 200;
constexpr double kLeastShare = 0.3;  // of rows with the same number of fields, in a table
constexpr double kClearShare = 0.5;  // with which blanks are not thought of
constexpr std::array kDelimiters = {'\t', ';', '|', ','};

class SampleParser : public CsvParser {
  public:
    explicit SampleParser(char delimiter) : CsvParser(delimiter, "") {}
    SampleRows rows;

  protected:
    void OnField(std::string_view text) override { row_.emplace_back(Trimmed(text)); }
    void OnRow() override {
        rows.push_back(std::move(row_));
        row_.clear();
        if (rows.size() == kMostRows) Stop();
    }

  private:
    std::vector<std::string> row_;
};

// The last line of a head may be cut; a quote that is not closed in it is no fault.
SampleRows RowsOf(std::string_view head, char delimiter) {
    SampleParser parser(delimiter);
    const std::size_t end = head.rfind('\n');
    try {
        parser.Feed(end == std::string_view::npos || parser.Rows() == kMostRows ? head
                                                                                : head.substr(0, end + 1));
        parser.Finish();
    } catch (const FormatError&) {
        return std::move(parser.rows);
    }
    return std::move(parser.rows);
}

// The number of fields that most rows have, and their share of all rows.
struct Width {
    std::size_t fields = 0;
    double share = 0;
};
Width WidthOf(const SampleRows& rows) {
    std::map<std::size_t, std::size_t> counts;
    for (const auto& row : rows) ++counts[row.size()];
    Width width;
    for (const auto& [fields, count] : counts) {
        const double share = static_cast<double>(count) / static_cast<double>(rows.size());
        if (share >= width.share) width = {fields, share};
    }
    return width;
}

char GuessDelimiter(std::string_view head) {
    char best = ',';
    double share = 0;
    for (const char delimiter : kDelimiters) {
        const Width width = WidthOf(RowsOf(head, delimiter));
        if (width.fields < 2 || width.share <= share) continue;
        best = delimiter;
        share = width.share;
    }
    if (share < kClearShare) {
        const Width blanks = WidthOf(RowsOf(head, ' '));
        if (blanks.fields > 1 && blanks.share > std::max(share, kClearShare)) return ' ';
    }
    return share < kLeastShare ? ',' : best;
}

// Titles above a table have far fewer fields than its rows. Counted in lines, since they have no quotes.
std::size_t GuessSkip(std::string_view head, const SampleRows& rows) {
    const std::size_t fields = WidthOf(rows).fields;
    std::size_t titles = 0;
    while (titles + 1 < rows.size() && 2 * rows[titles].size() <= fields && fields > 1) ++titles;
    if (titles == 0 || titles + 1 >= rows.size()) return 0;
    // Empty lines and comments are lines, and no rows.
    std::size_t lines = 0, passed = 0;
    while (passed < titles) {
        const std::string_view line =
            Trimmed(WithoutLines(head, lines).substr(0, WithoutLines(head, lines).find('\n')));
        ++lines;
        if (!line.empty() && line != "\r" && !(passed == 0 && line.front() == '#')) ++passed;
    }
    return lines;
}

// Votes of one cell for the decimal sign.
void Vote(std::string_view cell, std::size_t& commas, std::size_t& points) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const std::size_t first = cell.find_first_of("0123456789"), last = cell.find_last_of("0123456789");
    if (first == std::string_view::npos || first > 4) return;
    cell = cell.substr(first, last - first + 1);
    const std::size_t sign = cell.find_last_of(",.");
    if (sign == std::string_view::npos) return;
    if (!std::all_of(cell.begin(), cell.end(),
                     [&](char c) { return isDigit(c) || c == ',' || c == '.' || c == ' ' || c == '\''; }))
        return;
    const char c = cell[sign], other = c == ',' ? '.' : ',';
    const bool both = cell.find(other) != std::string_view::npos;
    const bool several = cell.find(c) != sign;
    // 1,234 may be either; 1,234,567 has separators of thousands, and 12.345,6 is told by its last sign.
    if (several) {
        if (!both) ++(c == ',' ? points : commas);
    } else if (both || cell.size() - sign != 4 || sign > 3 || cell.front() == '0') {
        ++(c == ',' ? commas : points);
    }
}

char GuessDecimal(const SampleRows& rows, char delimiter) {
    std::size_t commas = 0, points = 0, open = 0;
    for (const auto& row : rows) {
        for (const std::string& cell : row) {
            const std::size_t before = commas + points;
            Vote(cell, commas, points);
            if (before == commas + points && cell.find(',') != std::string::npos) ++open;
        }
    }
    if (commas == 0 && points == 0 && open > 0) return delimiter == ';' ? ',' : '.';
    return commas > points ? ',' : '.';
}

bool IsValue(const std::string& cell, char decimal) {
    double number = 0;
    const Surroundings around = SurroundingsOf(cell);
    const NumberForm form{decimal, std::string(around.prefix), std::string(around.suffix)};
    if (cell.empty() || ReadNumber(cell, form, number)) return !cell.empty();
    return std::any_of(std::begin(kTimeForms), std::end(kTimeForms),
                       [&](TimeForm time) { return ReadTime(cell, time).has_value(); });
}

// Years that follow one another name columns.
bool AreYears(const std::vector<std::string>& row, char decimal) {
    double before = 0, step = 0;
    std::size_t years = 0;
    for (const std::string& cell : row) {
        double year = 0;
        if (!ReadNumber(cell, {decimal}, year)) continue;
        if (year < 1000 || year > 2500 || year != std::floor(year) || (years > 1 && year - before != step))
            return false;
        if (years == 1) step = year - before;
        before = year;
        ++years;
    }
    return years > 2 && step > 0 && years + 2 >= row.size();
}

// A header names columns: it has texts where the rows have values. A table of nothing but texts has one too.
bool GuessHeader(const SampleRows& rows, char decimal) {
    if (rows.empty()) return true;
    const auto& first = rows.front();
    bool values = false;
    for (std::size_t k = 0; k < first.size(); ++k) {
        if (first[k].empty()) continue;
        const bool isValue = IsValue(first[k], decimal);
        values = values || isValue;
        if (isValue) continue;
        std::size_t below = 0, valuesBelow = 0;
        for (std::size_t i = 1; i < rows.size(); ++i) {
            if (k >= rows[i].size() || rows[i][k].empty()) continue;
            ++below;
            if (IsValue(rows[i][k], decimal)) ++valuesBelow;
        }
        if (2 * valuesBelow > below) return true;
    }
    return !values || AreYears(first, decimal);
}

}  // namespace

std::string_view WithoutLines(std::string_view text, std::size_t skip) {
    for (; skip > 0; --skip) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) return {};
        text.remove_prefix(end + 1);
    }
    return text;
}

Dialect GuessDialect(std::string_view head, const ReadOptions& options) {
    Dialect dialect;
    if (options.skip) head = WithoutLines(head, *options.skip);
    dialect.delimiter = options.delimiter ? *options.delimiter : GuessDelimiter(head);
    SampleRows rows = RowsOf(head, dialect.delimiter);
    dialect.skip = options.skip.value_or(0);
    if (!options.skip) {
        dialect.skip = GuessSkip(head, rows);
        if (dialect.skip > 0) rows = RowsOf(WithoutLines(head, dialect.skip), dialect.delimiter);
    }
    dialect.decimal = options.decimal ? *options.decimal : GuessDecimal(rows, dialect.delimiter);
    dialect.header = options.header ? *options.header : GuessHeader(rows, dialect.decimal);
    return dialect;
}

}  // namespace zel::tables
