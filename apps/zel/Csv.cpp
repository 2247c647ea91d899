#include "apps/zel/Csv.h"

#include <zel/platform/Warning.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <csv.h>
#include <fstream>
#include <limits>

namespace zel::cli {
namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Collects what the parser calls back with.
struct ParsedRows {
    std::vector<std::vector<std::string>> rows{{}};
};

void OnField(void* text, std::size_t length, void* rows) {
    static_cast<ParsedRows*>(rows)->rows.back().emplace_back(static_cast<const char*>(text), length);
}

void OnRow(int, void* rows) {
    static_cast<ParsedRows*>(rows)->rows.emplace_back();
}

class Parser {
  public:
    Parser() {
        if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI) != 0)
            throw Error("Cannot read CSV files: out of memory");
    }
    ~Parser() { csv_free(&parser_); }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    void Feed(std::string_view bytes, ParsedRows& rows, const std::string& path) {
        if (csv_parse(&parser_, bytes.data(), bytes.size(), OnField, OnRow, &rows) != bytes.size()) {
            Fail(rows, path);
        }
    }
    void Finish(ParsedRows& rows, const std::string& path) {
        if (csv_fini(&parser_, OnField, OnRow, &rows) != 0) Fail(rows, path);
    }

  private:
    [[noreturn]] void Fail(const ParsedRows& rows, const std::string& path) {
        throw Error("Cannot read \"" + path + "\", row " + std::to_string(rows.rows.size()) + ": " +
                    csv_strerror(csv_error(&parser_)));
    }

    csv_parser parser_{};
};

bool IsLeap(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

// Reads `digits` digits; false when they are not there.
bool TakeNumber(std::string_view& text, std::size_t digits, int& number) {
    if (text.size() < digits) return false;
    const auto [end, error] = std::from_chars(text.data(), text.data() + digits, number);
    if (error != std::errc() || end != text.data() + digits) return false;
    text.remove_prefix(digits);
    return true;
}

bool TakeCharacter(std::string_view& text, std::string_view allowed) {
    if (text.empty() || allowed.find(text.front()) == std::string_view::npos) return false;
    text.remove_prefix(1);
    return true;
}

// The year, and how much of it has passed; NaN for what is no date.
double DecimalYear(std::string_view text) {
    static constexpr std::array kDaysBefore = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    static constexpr std::array kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    if (!TakeNumber(text, 4, year) || !TakeCharacter(text, "-/") || !TakeNumber(text, 2, month) ||
        !TakeCharacter(text, "-/") || !TakeNumber(text, 2, day) || month < 1 || month > 12)
        return kNoValue;
    const auto m = static_cast<std::size_t>(month - 1);
    if (day < 1 || day > kDays[m] + (month == 2 && IsLeap(year) ? 1 : 0)) return kNoValue;
    if (TakeCharacter(text, "T ")) {
        if (!TakeNumber(text, 2, hour) || !TakeCharacter(text, ":") || !TakeNumber(text, 2, minute))
            return kNoValue;
        if (TakeCharacter(text, ":") && !TakeNumber(text, 2, second)) return kNoValue;
    }
    const int dayOfYear = kDaysBefore[m] + day - 1 + (month > 2 && IsLeap(year) ? 1 : 0);
    const double days = dayOfYear + (hour + (minute + second / 60.0) / 60.0) / 24.0;
    return year + days / (IsLeap(year) ? 366 : 365);
}

}  // namespace

double CellValue(const std::string& cell) {
    std::string_view text(cell);
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (!text.empty() && error == std::errc() && end == text.data() + text.size()) return value;
    return DecimalYear(text);
}

CsvTable CsvTable::Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw Error("Cannot open \"" + path + "\": " + std::strerror(errno));
    ParsedRows rows;
    Parser parser;
    std::vector<char> block(1 << 16);
    bool first = true;
    while (file.read(block.data(), static_cast<std::streamsize>(block.size())) || file.gcount() > 0) {
        std::string_view bytes(block.data(), static_cast<std::size_t>(file.gcount()));
        if (first && bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
        first = false;
        parser.Feed(bytes, rows, path);
    }
    if (file.bad()) throw Error("Cannot read \"" + path + "\": " + std::strerror(errno));
    parser.Finish(rows, path);
    CsvTable table;
    table.path_ = path;
    std::erase_if(rows.rows, [](const auto& row) { return row.empty(); });
    if (rows.rows.empty())
        throw Error("Cannot use \"" + path + "\": it has no header row with the columns' names");
    table.names_ = std::move(rows.rows.front());
    table.rows_.assign(std::make_move_iterator(rows.rows.begin() + 1),
                       std::make_move_iterator(rows.rows.end()));
    table.WarnOfFieldsBeyondNames();
    return table;
}

std::size_t CsvTable::IndexOf(const std::string& name) const {
    const auto found = std::find(names_.begin(), names_.end(), name);
    if (found != names_.end()) return static_cast<std::size_t>(found - names_.begin());
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error == std::errc() && end == name.data() + name.size() && number >= 1 && number <= names_.size())
        return number - 1;
    std::string known;
    for (const std::string& one : names_) known += (known.empty() ? "" : ", ") + one;
    throw Error("Cannot find the column \"" + name + "\" in \"" + path_ + "\"; it has: " + known);
}

std::vector<double> CsvTable::Column(const std::string& name) const {
    const std::size_t index = IndexOf(name);
    std::vector<double> values;
    values.reserve(rows_.size());
    bool any = false;
    for (const auto& row : rows_) {
        values.push_back(index < row.size() ? CellValue(row[index]) : kNoValue);
        any = any || std::isfinite(values.back());
    }
    if (!any)
        throw Error("Cannot use the column \"" + name + "\" of \"" + path_ +
                    "\": it holds no numbers or dates");
    WarnOfWords(index);
    return values;
}

void CsvTable::WarnOfWords(std::size_t column) const {
    std::size_t count = 0;
    std::string first;
    for (const auto& row : rows_) {
        if (column >= row.size() || row[column].empty() || std::isfinite(CellValue(row[column]))) continue;
        if (count++ == 0) first = row[column];
    }
    if (count > 0)
        Warn("\"" + path_ + "\": " + std::to_string(count) + " of " + std::to_string(rows_.size()) +
             " values of the column \"" + names_[column] +
             "\" are no finite numbers or dates and are left out; the first is \"" + first + "\".");
}

void CsvTable::WarnOfFieldsBeyondNames() const {
    std::size_t count = 0;
    std::string first;
    for (const auto& row : rows_) {
        const auto begin = row.begin() + static_cast<std::ptrdiff_t>(std::min(row.size(), names_.size()));
        const auto more =
            std::find_if(begin, row.end(), [](const std::string& cell) { return !cell.empty(); });
        if (more == row.end()) continue;
        if (count++ == 0) first = *more;
    }
    if (count > 0)
        Warn("\"" + path_ + "\": " + std::to_string(count) + " of " + std::to_string(rows_.size()) +
             " rows have more fields than the header has names (" + std::to_string(names_.size()) +
             "); these fields are left out, \"" + first +
             "\" first. Fields with commas need quotes, and decimal commas points.");
}

}  // namespace zel::cli
