#include "apps/zel/Commands.h"
#include "apps/zel/Database.h"
#include "apps/zel/TableChoice.h"

#include <zel/platform/DatabaseDriver.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <strings.h>

namespace zel::cli {
namespace {

struct ImportChoice {
    TableChoice data;
    std::string database;
    std::string table;
    bool replace = false;
};

bool IsWhole(std::string_view cell, std::int64_t& number) {
    const auto [end, error] = std::from_chars(cell.data(), cell.data() + cell.size(), number);
    return error == std::errc() && end == cell.data() + cell.size();
}

// Numbers that are written with leading zeros are names of something.
bool HasLeadingZero(std::string_view cell) {
    if (cell.starts_with('-')) cell.remove_prefix(1);
    return cell.size() > 1 && cell[0] == '0' && cell[1] >= '0' && cell[1] <= '9';
}

// The narrowest type that takes all cells of a column; cells without a value are nulls of any type.
short TypeOf(const tables::Table& table, std::size_t column) {
    const tables::ColumnFacts& facts = table.Columns()[column];
    if (facts.unread > 0) return dbText;
    if (facts.kind == tables::Kind::TIME) return dbDate;
    if (facts.kind != tables::Kind::NUMBER) return dbText;
    bool narrow = true, whole = true;
    for (std::size_t row = 0; row < table.RowCount(); ++row) {
        if (std::isnan(table.At(column).At(row))) continue;
        const std::string_view cell = table.Text(row, column);
        if (HasLeadingZero(cell)) return dbText;
        std::int64_t number = 0;
        whole = whole && IsWhole(cell, number);
        narrow = narrow && number == static_cast<std::int32_t>(number);
    }
    return !whole ? dbDouble : narrow ? dbLong : dbBigInt;
}

COleVariant ValueOf(const tables::Table& table, std::size_t row, std::size_t column, short type) {
    const std::string cell(table.Text(row, column));
    const Column& values = table.At(column);
    if (cell.empty() || (type != dbText && std::isnan(values.At(row)))) return COleVariant::Null();
    COleVariant value;
    switch (type) {
        case dbDouble:
            return COleVariant(values.At(row));
        case dbDate: {
            constexpr double kDaysTo1970 = 25569, kSecondsOfDay = 86400;
            value = COleVariant((values.Origin() + values.At(row)) / kSecondsOfDay + kDaysTo1970);
            value.vt = VT_DATE;
            return value;
        }
        default:
            value.SetText(cell);
            if (type != dbText) value.ChangeType(VT_I8);
            return value;
    }
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

void CreateTable(CDaoDatabase& database, const ImportChoice& choice, const tables::Table& table,
                 const std::vector<short>& types) {
    const DatabaseConnection& connection = database.Connection();
    std::string columns;
    for (std::size_t i = 0; i < types.size(); ++i) {
        columns += (i ? ", " : "") + ColumnName(table.Columns()[i].name, connection) + " " +
                   connection.TypeName(types[i]);
    }
    if (choice.replace) database.Execute(("DROP TABLE IF EXISTS " + choice.table).c_str());
    database.Execute(("CREATE TABLE " + choice.table + " (" + columns + ")").c_str());
}

void InsertRows(CDaoDatabase& database, const ImportChoice& choice, const tables::Table& table,
                const std::vector<short>& types) {
    std::string marks;
    for (std::size_t i = 0; i < types.size(); ++i) marks += i ? ", ?" : "?";
    const std::string command = "INSERT INTO " + choice.table + " VALUES (" + marks + ")";
    std::vector<COleVariant> values(types.size());
    for (std::size_t row = 0; row < table.RowCount(); ++row) {
        for (std::size_t i = 0; i < types.size(); ++i) values[i] = ValueOf(table, row, i, types[i]);
        database.Execute(command.c_str(), values);
    }
}

// The table is there with all its rows or not at all, and so is a file that did not exist before.
void Import(const ImportChoice& choice) {
    const tables::Table table = choice.data.Read(true);
    std::vector<short> types;
    for (std::size_t i = 0; i < table.Columns().size(); ++i) types.push_back(TypeOf(table, i));
    std::error_code ignored;
    const bool fresh = IsDatabaseFile(choice.database) && !std::filesystem::exists(choice.database, ignored);
    CDaoDatabase database;
    try {
        CreateOrOpenDatabase(database, choice.database, fresh);
        database.BeginTrans();
        CreateTable(database, choice, table, types);
        InsertRows(database, choice, table, types);
        database.CommitTrans();
    } catch (...) {
        database.Close();
        if (fresh) std::filesystem::remove(choice.database, ignored);
        throw;
    }
    std::cout << table.RowCount() << " records in the table " << choice.table << "\n";
}

}  // namespace

void AddImportCommand(CLI::App& app) {
    CLI::App* command = app.add_subcommand("import", "Make a table of a database of one in a file");
    auto choice = std::make_shared<ImportChoice>();
    choice->data.AddTo(*command)->required();
    command->add_option("--db", choice->database, "SQLite file, made if need be, or ODBC connection string")
        ->required();
    command->add_option("--table", choice->table, "Table to make, as SQL takes its name")->required();
    command->add_flag("--replace", choice->replace, "Drop a table of that name first");
    command->footer(
        "Columns of whole numbers, numbers and dates get their types, others are texts; cells without a "
        "value are nulls.\n"
        "Example:\n  zel import weather.csv --db weather.sqlite --table daily");
    command->callback([choice] { Import(*choice); });
}

}  // namespace zel::cli
