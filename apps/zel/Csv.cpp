#include "apps/zel/Csv.h"

#include <zel/platform/Warning.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
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

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

}  // namespace

double CellValue(const std::string& cell) {
    std::string_view text = Trimmed(cell);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return !text.empty() && error == std::errc() && end == text.data() + text.size() ? value : kNoValue;
}

std::optional<std::int64_t> CellTime(const std::string& cell) {
    std::string_view text = Trimmed(cell);
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    if (!TakeNumber(text, 4, year) || !TakeCharacter(text, "-/") || !TakeNumber(text, 2, month) ||
        !TakeCharacter(text, "-/") || !TakeNumber(text, 2, day))
        return std::nullopt;
    const std::chrono::year_month_day date(std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day)));
    if (!date.ok()) return std::nullopt;
    if (TakeCharacter(text, "T ")) {
        if (!TakeNumber(text, 2, hour) || !TakeCharacter(text, ":") || !TakeNumber(text, 2, minute))
            return std::nullopt;
        if (TakeCharacter(text, ":") && !TakeNumber(text, 2, second)) return std::nullopt;
    }
    const auto time = std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
                      std::chrono::seconds(second);
    return std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count();
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

bool CsvTable::IsOfTimes(std::size_t column) const {
    std::size_t times = 0, numbers = 0;
    for (const auto& row : rows_) {
        if (column >= row.size() || row[column].empty()) continue;
        if (CellTime(row[column])) {
            ++times;
        } else if (std::isfinite(CellValue(row[column]))) {
            ++numbers;
        }
    }
    return times > numbers;
}

zel::Column CsvTable::Column(const std::string& name) const {
    const std::size_t index = IndexOf(name);
    const bool ofTimes = IsOfTimes(index);
    std::vector<double> values;
    std::vector<std::int64_t> times;
    bool any = false;
    for (const auto& row : rows_) {
        const std::string cell = index < row.size() ? row[index] : "";
        if (ofTimes) {
            const auto time = CellTime(cell);
            times.push_back(time.value_or(std::numeric_limits<std::int64_t>::min()));
            any = any || time;
        } else {
            values.push_back(CellValue(cell));
            any = any || std::isfinite(values.back());
        }
    }
    if (!any)
        throw Error("Cannot use the column \"" + name + "\" of \"" + path_ +
                    "\": it holds no numbers or dates");
    WarnOfWords(index);
    zel::Column column = ofTimes ? zel::Column::Times(std::move(times), 1) : zel::Column(std::move(values));
    return column.SetName(names_[index]);
}

zel::Column CsvTable::ColumnOrNames(const std::string& name) const {
    const std::size_t index = IndexOf(name);
    std::vector<std::string> names;
    for (const auto& row : rows_) {
        names.push_back(index < row.size() ? row[index] : "");
        if (CellTime(names.back()) || std::isfinite(CellValue(names.back()))) return Column(name);
    }
    return zel::Column(names).SetName(names_[index]);
}

void CsvTable::WarnOfWords(std::size_t column) const {
    std::size_t count = 0;
    std::string first;
    const bool ofTimes = IsOfTimes(column);
    for (const auto& row : rows_) {
        if (column >= row.size() || row[column].empty()) continue;
        if (ofTimes ? CellTime(row[column]).has_value() : std::isfinite(CellValue(row[column]))) continue;
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
