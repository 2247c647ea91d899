#include "apps/zel/Database.h"

#include <zel/odbc/Install.h>
#include <zel/platform/DatabaseDriver.h>
#include <zel/sqlite/Install.h>

#include <algorithm>
#include <filesystem>
#include <memory>

namespace zel::cli {
namespace {

constexpr short kFileTimeout = 10;  // seconds for which somebody waits in front of a terminal

// The text of the last message box that came up meanwhile.
class CaughtMessage {
  public:
    CaughtMessage() {
        before_ = SetMessageBoxHandler([this](const std::string& text, UINT) {
            text_ = text;
            return IDOK;
        });
    }
    ~CaughtMessage() { SetMessageBoxHandler(before_); }
    CaughtMessage(const CaughtMessage&) = delete;
    CaughtMessage& operator=(const CaughtMessage&) = delete;

    // On one line.
    std::string Text() const {
        std::string line;
        for (const char c : text_) {
            if (c != '\r') line += c == '\n' ? ' ' : c;
        }
        return line;
    }

  private:
    std::string text_;
    MessageBoxHandler before_;
};

std::string ConditionOf(const DatabaseChoice& choice) {
    if (choice.order.empty()) return choice.where;
    return (choice.where.empty() ? "1 = 1" : "(" + choice.where + ")") + " ORDER BY " + choice.order;
}

Series ReadOne(CDaoDatabase& database, const DatabaseChoice& choice, const std::string& x,
               const std::string& y) {
    const auto points = std::make_shared<Zel2DaoPointSet>();
    points->SetNulls(Zel2DaoPointSet::Nulls::GAP);
    points->SetDates(Zel2DaoPointSet::Dates::SECONDS);
    const CaughtMessage message;
    const int created =
        points->Create(&database, choice.table.c_str(), x.c_str(), y.c_str(), ConditionOf(choice).c_str());
    if (!created) {
        const std::string text = message.Text();
        throw Error(text.empty()
                        ? "Cannot plot the table \"" + choice.table + "\": no record meets the condition"
                        : text);
    }
    return {ColumnTitle(y), {}, {}, points};
}

// Such an address may hold a password, and no driver here takes it.
void RefuseAddress(const std::string& name) {
    if (name.find("://") != std::string::npos)
        throw Error(
            "Cannot open a database by an address with \"://\"; give a file, or an ODBC connection string "
            "such as \"DSN=weather;UID=me\"");
}

}  // namespace

std::string ColumnTitle(const std::string& column) {
    const bool quoted = column.size() > 2 && column.front() == '"' && column.back() == '"';
    return quoted ? column.substr(1, column.size() - 2) : column;
}

// A setting at the beginning ("SERVER=...") makes a connection string, unless there is a file of that name.
// What may hold a password must not become the name of one.
bool IsDatabaseFile(const std::string& name) {
    std::error_code ignored;
    if (std::filesystem::exists(name, ignored)) return true;
    const std::size_t end = name.find_first_of("=;/");
    return !HasConnectPrefix(name, "ODBC") && (end == std::string::npos || name[end] == '/');
}

void OpenDatabase(CDaoDatabase& database, const std::string& name, bool readOnly) {
    RefuseAddress(name);
    sqlite::Install();
    odbc::Install();
    if (IsDatabaseFile(name)) {
        database.SetQueryTimeout(kFileTimeout);
        database.Open(name.c_str(), FALSE, readOnly);
    } else {
        const std::string connect = HasConnectPrefix(name, "ODBC") ? name : "ODBC;" + name;
        database.Open("", FALSE, readOnly, connect.c_str());
    }
}

void CreateOrOpenDatabase(CDaoDatabase& database, const std::string& name, bool create) {
    if (!create) {
        OpenDatabase(database, name, false);
        return;
    }
    RefuseAddress(name);
    sqlite::Install();
    database.Create(name.c_str());
}

std::vector<Series> ReadSeries(const DatabaseChoice& choice, const std::string& x,
                               const std::vector<std::string>& ys) {
    if (choice.table.empty())
        throw Error("Cannot plot from a database without a table; name one with --table");
    CDaoDatabase database;
    OpenDatabase(database, choice.database, true);
    std::vector<Series> series;
    series.reserve(ys.size());
    for (const std::string& y : ys) series.push_back(ReadOne(database, choice, x, y));
    return series;
}

}  // namespace zel::cli
