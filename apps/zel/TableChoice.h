// The table that a command reads, and how.
#pragma once

#include <zel/tables/Table.h>

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace zel::cli {

// Options on how a table is read, shared by the commands that read one. What is not given is found out.
class TableChoice {
  public:
    // The choice must outlive the parsing. Returns the positional option of the file.
    CLI::Option* AddTo(CLI::App& command);
    // Warns of fields beyond the header. Throws Error.
    tables::Table Read(bool keepTexts = false) const;
    const std::string& Path() const { return path_; }
    // Whether a table was named at all.
    bool IsGiven() const { return !path_.empty(); }

  private:
    std::string path_;
    std::string delimiter_, decimal_, encoding_, dates_;
    std::vector<std::string> missing_;
    bool noHeader_ = false;
    int skip_ = -1;
};

// A column as a coordinate: numbers, durations and times as they are, names as categories. Warns of cells
// that were left out. Throws Error when it does not exist or has no value.
Column CoordinateOf(const tables::Table& table, const std::string& column);
// The same for what is measured: texts are no values.
Column MeasureOf(const tables::Table& table, const std::string& column);

}  // namespace zel::cli
