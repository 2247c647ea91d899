#include "apps/zel/Commands.h"
#include "apps/zel/Csv.h"
#include "apps/zel/Database.h"

#include <zel/platform/DatabaseDriver.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <iostream>
#include <strings.h>

namespace zel::cli {
namespace {

struct ImportChoice {
    std::string input;
    std::string database;
    std::string table;
    bool replace = false;
};

template <class Number>
bool Parse(const std::string& cell, Number& number) {
    const auto [end, error] = std::from_chars(cell.data(), cell.data() + cell.size(), number);
    return error == std::errc() && end == cell.data() + cell.size();
}

bool IsNarrow(const std::string& cell) {
    int number = 0;
    return Parse(cell, number);
}
// Numbers that are written with leading zeros are names of something.
bool IsInteger(const std::string& cell) {
    std::int64_t number = 0;
    return Parse(cell, number) && (cell == "0" || cell[cell[0] == '-' ? 1 : 0] != '0');
}
bool IsNumber(const std::string& cell) {
    double number = 0;
    return Parse(cell, number) && (IsInteger(cell) || cell.find_first_of(".eE") != std::string::npos);
}
bool IsDate(const std::string& cell) {
    COleDateTime date;
    return date.ParseDateTime(cell.c_str()) && date.GetStatus() == COleDateTime::valid;
}

const std::string& Cell(const CsvTable& csv, std::size_t row, std::size_t column) {
    static const std::string none;
    const std::vector<std::string>& cells = csv.Row(row);
    return column < cells.size() ? cells[column] : none;
}

// The narrowest type that takes all cells of a column; empty cells are nulls of any type.
short TypeOf(const CsvTable& csv, std::size_t column) {
    bool any = false, narrow = true, integers = true, numbers = true, dates = true;
    for (std::size_t row = 0; row < csv.RowCount(); ++row) {
        const std::string& cell = Cell(csv, row, column);
        if (cell.empty()) continue;
        any = true;
        narrow = narrow && IsNarrow(cell);
        integers = integers && IsInteger(cell);
        numbers = numbers && IsNumber(cell);
        dates = dates && IsDate(cell);
    }
    if (!any) return dbText;
    if (integers) return narrow ? dbLong : dbBigInt;
    return numbers ? dbDouble : dates ? dbDate : dbText;
}

COleVariant ValueOf(const std::string& cell, short type) {
    if (cell.empty()) return COleVariant::Null();
    COleVariant value;
    value.SetText(cell);
    if (type == dbBigInt || type == dbLong) value.ChangeType(VT_I8);
    if (type == dbDouble) value.ChangeType(VT_R8);
    if (type == dbDate) value.ChangeType(VT_DATE);
    return value;
}

// Names that need no quotes go without, so that queries can use them in upper or lower case everywhere.
std::string ColumnName(const std::string& name, const DatabaseConnection& connection) {
    static constexpr std::array kReserved = {
        "all",   "and",    "as",   "asc",    "by",     "case",  "check", "default", "desc",
        "else",  "end",    "from", "group",  "in",     "index", "is",    "limit",   "not",
        "null",  "on",     "or",   "order",  "select", "set",   "table", "then",    "to",
        "union", "unique", "user", "values", "when",   "where", "with"};
    const auto isWord = [](unsigned char c) { return std::isalnum(c) || c == '_'; };
    const bool simple = !name.empty() && !std::isdigit(static_cast<unsigned char>(name[0])) &&
                        std::all_of(name.begin(), name.end(), isWord) &&
                        std::none_of(kReserved.begin(), kReserved.end(),
                                     [&](const char* word) { return strcasecmp(word, name.c_str()) == 0; });
    return simple ? name : connection.Quoted(name);
}

void CreateTable(CDaoDatabase& database, const ImportChoice& choice, const CsvTable& csv,
                 const std::vector<short>& types) {
    const DatabaseConnection& connection = database.Connection();
    std::string columns;
    for (std::size_t i = 0; i < types.size(); ++i) {
        columns +=
            (i ? ", " : "") + ColumnName(csv.Names()[i], connection) + " " + connection.TypeName(types[i]);
    }
    if (choice.replace) database.Execute(("DROP TABLE IF EXISTS " + choice.table).c_str());
    database.Execute(("CREATE TABLE " + choice.table + " (" + columns + ")").c_str());
}

void InsertRows(CDaoDatabase& database, const ImportChoice& choice, const CsvTable& csv,
                const std::vector<short>& types) {
    std::string marks;
    for (std::size_t i = 0; i < types.size(); ++i) marks += i ? ", ?" : "?";
    const std::string command = "INSERT INTO " + choice.table + " VALUES (" + marks + ")";
    std::vector<COleVariant> values(types.size());
    for (std::size_t row = 0; row < csv.RowCount(); ++row) {
        for (std::size_t i = 0; i < types.size(); ++i) values[i] = ValueOf(Cell(csv, row, i), types[i]);
        database.Execute(command.c_str(), values);
    }
}

// The table is there with all its rows or not at all, and so is a file that did not exist before.
void Import(const ImportChoice& choice) {
    const CsvTable csv = CsvTable::Read(choice.input);
    std::vector<short> types;
    for (std::size_t i = 0; i < csv.Names().size(); ++i) types.push_back(TypeOf(csv, i));
    std::error_code ignored;
    const bool fresh = IsDatabaseFile(choice.database) && !std::filesystem::exists(choice.database, ignored);
    CDaoDatabase database;
    try {
        CreateOrOpenDatabase(database, choice.database, fresh);
        database.BeginTrans();
        CreateTable(database, choice, csv, types);
        InsertRows(database, choice, csv, types);
        database.CommitTrans();
    } catch (...) {
        database.Close();
        if (fresh) std::filesystem::remove(choice.database, ignored);
        throw;
    }
    std::cout << csv.RowCount() << " records in the table " << choice.table << "\n";
}

}  // namespace

void AddImportCommand(CLI::App& app) {
    CLI::App* command = app.add_subcommand("import", "Make a database table of a CSV file");
    auto choice = std::make_shared<ImportChoice>();
    command->add_option("data", choice->input, "CSV file; its first row names the columns")->required();
    command->add_option("--db", choice->database, "SQLite file, made if need be, or ODBC connection string")
        ->required();
    command->add_option("--table", choice->table, "Table to make, as SQL takes its name")->required();
    command->add_flag("--replace", choice->replace, "Drop a table of that name first");
    command->footer(
        "Columns of whole numbers, numbers and dates get their types, others are texts; empty cells are "
        "nulls.\n"
        "Example:\n  zel import weather.csv --db weather.sqlite --table daily");
    command->callback([choice] { Import(*choice); });
}

}  // namespace zel::cli
