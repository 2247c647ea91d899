#include "apps/zel/TableChoice.h"

#include <zel/platform/Warning.h>

namespace zel::cli {
namespace {

char DelimiterOf(const std::string& name) {
    if (name == "tab" || name == "\\t") return '\t';
    if (name == "blank" || name == "space") return ' ';
    if (name.size() == 1) return name.front();
    throw Error("Cannot use the delimiter \"" + name + "\": it is one character, \"tab\" or \"blank\"");
}

Column Warned(const tables::Table& table, std::size_t column) {
    for (const std::string& note : table.NotesOf(column)) Warn(note);
    return table.At(column);
}

[[noreturn]] void Refuse(const tables::Table& table, const std::string& column) {
    throw Error("Cannot use the column \"" + column + "\" of \"" + table.Name() +
                "\": it holds no numbers or dates");
}

}  // namespace

CLI::Option* TableChoice::AddTo(CLI::App& command) {
    CLI::Option* const file =
        command.add_option("data", path_,
                           "Table: a CSV file or one like it, also compressed with gzip; - for "
                           "standard input");
    command.add_option("--delimiter", delimiter_,
                       "Between fields: a character, tab or blank (default: found out)");
    command.add_option("--decimal", decimal_, "Decimal sign (default: found out)")
        ->check(CLI::IsMember({".", ","}));
    command.add_flag("--no-header", noHeader_,
                     "The first row has values; columns are \"column 1\" and so on");
    command.add_option("--skip", skip_, "Lines before the table (default: found out)")
        ->check(CLI::NonNegativeNumber);
    command.add_option("--encoding", encoding_, "Such as ISO-8859-1 (default: found out)");
    command.add_option("--na", missing_, "Texts that stand for no value, beside NA, -, null and their like");
    command
        .add_option("--dates", dates_,
                    "Of dates such as 3/4/2020: day or month first (default: the whole column decides)")
        ->check(CLI::IsMember({"day", "month"}));
    return file;
}

tables::Table TableChoice::Read(bool keepTexts) const {
    tables::ReadOptions options;
    if (!delimiter_.empty()) options.delimiter = DelimiterOf(delimiter_);
    if (!decimal_.empty()) options.decimal = decimal_.front();
    if (noHeader_) options.header = false;
    if (skip_ >= 0) options.skip = static_cast<std::size_t>(skip_);
    if (!dates_.empty())
        options.dates = dates_ == "day" ? tables::DateOrder::DAY_FIRST : tables::DateOrder::MONTH_FIRST;
    options.encoding = encoding_;
    options.missing = missing_;
    options.keepTexts = keepTexts;
    tables::Table table = tables::Table::Read(path_, options);
    for (const std::string& note : table.Notes()) Warn(note);
    return table;
}

Column CoordinateOf(const tables::Table& table, const std::string& column) {
    const std::size_t index = table.IndexOf(column);
    if (table.Columns()[index].present == 0) Refuse(table, column);
    return Warned(table, index);
}

Column MeasureOf(const tables::Table& table, const std::string& column) {
    const std::size_t index = table.IndexOf(column);
    if (table.At(index).GetKind() == Column::Kind::TEXTS || table.Columns()[index].present == 0)
        Refuse(table, column);
    return Warned(table, index);
}

}  // namespace zel::cli
