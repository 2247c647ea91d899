// Tables of values from text files, as people have them.
#pragma once

#include <zel/Column.h>
#include <zel/Error.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zel::tables {

// What a column holds. Durations are numbers of seconds; booleans are texts.
enum class Kind { EMPTY, NUMBER, TIME, DURATION, BOOLEAN, TEXT };

// Which number stands first in a date such as 3/4/2020.
enum class DateOrder { DAY_FIRST, MONTH_FIRST };

// What is known of a file beforehand. What is not given is found out from its first megabyte.
struct ReadOptions {
    std::optional<char> delimiter{};     // between fields: , ; | tab, or a blank for any number of blanks
    std::optional<char> decimal{};       // . or ,
    std::optional<bool> header{};        // whether the first row names the columns
    std::optional<std::size_t> skip{};   // lines before the table
    std::optional<DateOrder> dates{};    // of dates that can be read in both ways
    std::string encoding{};              // by its usual name, "ISO-8859-1"; empty: found out
    std::vector<std::string> missing{};  // texts that stand for no value, beside those that always do
    bool keepTexts = false;              // for Table::Text
};

// How a file was read: what was given or found out.
struct Dialect {
    char delimiter = ',';
    char decimal = '.';
    bool header = true;
    std::size_t skip = 0;  // lines
    std::string encoding = "UTF-8";
};

// What a column was found to be.
struct ColumnFacts {
    std::string name;
    Kind kind = Kind::EMPTY;
    std::string unit;          // of numbers: what stands with each of them, such as "°C" or "$"
    std::string form;          // of times, for people: "day.month.year", "seconds since 1970"
    bool isAmbiguous = false;  // days and months could be taken for each other
    std::size_t present = 0;   // cells with a value
    std::size_t missing = 0;   // cells without one: empty, "NA", "-" and their like
    std::size_t unread = 0;    // cells that hold something else
    struct Unread {
        std::size_t row;  // of the table, from 1
        std::string text;
    };
    std::vector<Unread> examples;  // the first of them
};

// A table from a text file: fields between delimiters, in quotes where they hold one (RFC 4180 and what
// people make of it). Delimiter, decimal sign, header, leading lines, encoding (UTF-8, UTF-16 with a mark,
// else Windows-1252) and the kinds of columns are found out unless they are given. Files compressed with gzip
// are read as they are.
//
// Numbers may have thousands separators, a unit or a currency that all cells of the column share, and a true
// minus sign. Times may be ISO 8601 dates with or without a time and zone, dates with the day or the month
// first (the whole column decides), with English names of months, months, quarters, weeks, and seconds or
// milliseconds since 1970 under a name that says so; without a zone they are UTC. Cells that do not fit the
// kind of their column are absent and counted.
class Table {
  public:
    // Reads a file, or standard input for "-". Throws FileError when it cannot be read, FormatError when it
    // is no table, with the row where one is at fault.
    static Table Read(const std::string& path, const ReadOptions& options = {});
    // The same from bytes in memory; `name` stands for the file in messages.
    static Table Parse(std::string_view bytes, const std::string& name, const ReadOptions& options = {});

    const std::string& Name() const { return name_; }
    std::size_t RowCount() const { return rows_; }
    const Dialect& GetDialect() const { return dialect_; }
    const std::vector<ColumnFacts>& Columns() const { return facts_; }
    // The index of a column by its name, or by its number from 1. Throws Error that lists those there are.
    std::size_t IndexOf(const std::string& column) const;
    // The values of a column; absent where there is none.
    const Column& At(std::size_t column) const { return columns_[column]; }
    const Column& operator[](const std::string& column) const { return columns_[IndexOf(column)]; }
    // A cell as it stands in the file; only with ReadOptions::keepTexts. Empty beyond the end of its row.
    std::string_view Text(std::size_t row, std::size_t column) const;
    // Sentences about what was not taken in: fields beyond the header; and of one column cells that do not
    // fit, dates that can be read in two ways.
    const std::vector<std::string>& Notes() const { return notes_; }
    std::vector<std::string> NotesOf(std::size_t column) const;

  private:
    friend class TableReader;
    struct Texts;

    std::string name_;
    Dialect dialect_;
    std::size_t rows_ = 0;
    std::vector<ColumnFacts> facts_;
    std::vector<Column> columns_;
    std::vector<std::string> notes_;
    std::shared_ptr<const Texts> texts_;
};

// A text as a time, in any of the forms that columns of a table may have, or a year alone: seconds since 1970
// in UTC. Nothing when it is none.
std::optional<double> TimeOf(std::string_view text, DateOrder order = DateOrder::DAY_FIRST);

// The words for a kind: "number", "time", "duration", "boolean", "text", "empty".
const char* NameOf(Kind kind);

}  // namespace zel::tables
