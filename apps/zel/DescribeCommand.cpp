#include "apps/zel/Commands.h"
#include "apps/zel/TableChoice.h"

#include <zel/Scale.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>

namespace zel::cli {
namespace {

std::string NameOfDelimiter(char delimiter) {
    return delimiter == '\t' ? "tab" : delimiter == ' ' ? "blank" : std::string(1, delimiter);
}

// Names wider than this are cut.
constexpr std::size_t kWidest = 30;

// The characters of a text in UTF-8.
std::size_t LengthOf(const std::string& text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string Padded(std::string text, std::size_t width) {
    text.append(width - std::min(width, LengthOf(text)), ' ');
    return text;
}

// The lowest and the highest value, as an axis would write them.
std::string RangeOf(const Column& column) {
    constexpr double kDay = 86400;
    double low = INFINITY, high = -INFINITY;
    bool areDays = column.GetKind() == Column::Kind::TIMES;
    for (std::size_t row = 0; row < column.Size(); ++row) {
        const double value = column.At(row);
        if (!std::isfinite(value)) continue;
        low = std::min(low, value);
        high = std::max(high, value);
        areDays = areDays && std::fmod(column.Origin() + value, kDay) == 0;
    }
    if (low > high) return "";
    if (column.GetKind() == Column::Kind::TEXTS) {
        const std::vector<std::string>& names = column.Names();
        std::string text = std::to_string(names.size()) + " different: ";
        for (std::size_t i = 0; i < std::min<std::size_t>(names.size(), 3); ++i)
            text += (i ? ", " : "") + names[i];
        return names.size() > 3 ? text + ", \u2026" : text;
    }
    Scale scale = Scale::Linear(low, std::max(high, std::nextafter(low, INFINITY)));
    if (column.GetKind() == Column::Kind::TIMES)
        scale = Scale::Time(column.Origin() + low, column.Origin() + std::max(high, low + 1), "UTC");
    const double from = column.GetKind() == Column::Kind::TIMES ? column.Origin() : 0;
    const double step = areDays ? kDay : (high - low) / 1000;
    return scale.TextOf(from + low, step) + " to " + scale.TextOf(from + high, step);
}

void Describe(const TableChoice& choice) {
    const tables::Table table = choice.Read();
    const tables::Dialect& dialect = table.GetDialect();
    std::cout << table.Name() << ": " << table.RowCount() << " rows of " << table.Columns().size()
              << " columns\n"
              << "  delimiter " << NameOfDelimiter(dialect.delimiter) << "   decimal sign " << dialect.decimal
              << "   encoding " << dialect.encoding << (dialect.header ? "   with a header" : "   no header");
    if (dialect.skip > 0) std::cout << "   " << dialect.skip << " lines above it";
    std::cout << "\n\n";
    std::size_t width = 6;
    for (const auto& facts : table.Columns())
        width = std::max(width, std::min(LengthOf(facts.name), kWidest));
    std::cout << "  " << Padded("column", width) << "  kind      values     missing    range\n";
    for (std::size_t k = 0; k < table.Columns().size(); ++k) {
        const tables::ColumnFacts& facts = table.Columns()[k];
        std::cout << "  " << Padded(facts.name, width) << "  " << Padded(tables::NameOf(facts.kind), 8)
                  << "  " << std::left << std::setw(9) << facts.present << "  " << std::setw(9)
                  << facts.missing << "  " << RangeOf(table.At(k))
                  << (facts.unit.empty() ? "" : " " + facts.unit)
                  << (facts.form.empty() ? "" : "  (" + facts.form + ")") << "\n";
    }
    for (std::size_t k = 0; k < table.Columns().size(); ++k)
        for (const std::string& note : table.NotesOf(k)) std::cout << "\n" << note << "\n";
}

}  // namespace

void AddDescribeCommand(CLI::App& app) {
    CLI::App* command = app.add_subcommand("describe", "Say how a table is understood");
    auto choice = std::make_shared<TableChoice>();
    choice->AddTo(*command)->required();
    command->footer("Example:\n  zel describe weather.csv");
    command->callback([choice] { Describe(*choice); });
}

}  // namespace zel::cli
