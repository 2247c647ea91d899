// The parts that reports of tables and figures are put together from.
#pragma once

#include <zel/zel.h>

#include <memory>
#include <string>
#include <vector>

namespace zel::cli {

// A table's content: a name for each column, and its rows. Rows may be shorter than the names.
struct PrintedTable {
    std::vector<std::string> names;
    std::vector<std::vector<std::string>> rows;
    std::vector<bool> isNumber;  // columns set to the right
};

// Makes objects in one style, with the tools of the report that they will stand in. All lengths are world
// units; what is made belongs to the caller, until it is appended.
class ReportParts {
  public:
    explicit ReportParts(Zel2Report& report);

    // The width that the report's paper leaves.
    int Width() const { return width_; }
    std::unique_ptr<Zel2> Title(const std::string& text) const;
    std::unique_ptr<Zel2> Heading(const std::string& text) const;
    // A line of text with a rule above it.
    std::unique_ptr<Zel2> RuledLine(const std::string& text) const;
    std::unique_ptr<Zel2> Gap(int height) const;
    // A caption and a value for each pair, side by side over the whole width.
    std::unique_ptr<Zel2> Fields(const std::vector<std::pair<std::string, std::string>>& fields) const;
    // Tables with one header row. Columns are as wide as their longest text; what does not fit on the paper's
    // width goes into further tables, one below another, which begin with the first column again unless it
    // takes more than a third of the width. A text wider than the paper is cut short.
    std::vector<std::unique_ptr<Zel2>> Tables(const PrintedTable& table) const;

    int TextFont() const { return textFont_; }

  private:
    std::vector<int> ColumnWidths(const PrintedTable& table) const;
    std::unique_ptr<Zel2> MakeTable(const PrintedTable& table, const std::vector<std::size_t>& columns,
                                    const std::vector<int>& widths) const;

    int width_;
    int titleFont_, headingFont_, textFont_, smallFont_, headerFont_;
    int rulePen_, thinPen_;
    int shade_;
};

}  // namespace zel::cli
