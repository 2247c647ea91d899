// Tables of values from CSV files.
#pragma once

#include <zel/Column.h>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace zel::cli {

// Says what was attempted, on what, and why it failed.
class Error : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A CSV file (RFC 4180): the first row names the columns. Quoted fields, commas and line ends within them,
// CRLF line ends and a byte-order mark are understood.
class CsvTable {
  public:
    // Throws Error when the file cannot be read or has no header. Warns of fields beyond the header's names.
    static CsvTable Read(const std::string& path);

    const std::vector<std::string>& Names() const { return names_; }
    std::size_t RowCount() const { return rows_.size(); }
    // The cells as they stand in the file; rows may be shorter or longer than the names.
    const std::vector<std::vector<std::string>>& Rows() const { return rows_; }
    // The cells of a row; there may be fewer or more than names.
    const std::vector<std::string>& Row(std::size_t i) const { return rows_[i]; }

    // A column by its name or its number from 1: times where most of its cells are dates ("2012-01-31", with
    // a time after "T" or a blank), else numbers; its name is that of the table. Empty cells and cells of
    // another kind are absent. Throws Error for a column that does not exist or holds no value at all, and
    // warns of cells that hold none.
    zel::Column Column(const std::string& name) const;
    // The same, but texts where it holds neither numbers nor dates.
    zel::Column ColumnOrNames(const std::string& name) const;
    // Says how many cells of a column, from 0, are neither empty nor a value, and what the first of them is.
    void WarnOfWords(std::size_t column) const;

  private:
    std::size_t IndexOf(const std::string& name) const;
    // Whether more cells are dates than numbers.
    bool IsOfTimes(std::size_t column) const;
    void WarnOfFieldsBeyondNames() const;

    std::string path_;
    std::vector<std::string> names_;
    std::vector<std::vector<std::string>> rows_;
};

// The number in a cell; NaN for anything else.
double CellValue(const std::string& cell);
// The seconds since 1970 of a date in a cell; none for anything else.
std::optional<std::int64_t> CellTime(const std::string& cell);

}  // namespace zel::cli
