#include "database/Databases.h"

#include <zel/odbc/Install.h>
#include <zel/sqlite/Install.h>

#include <utility>

namespace zel::test {

PostgresServer& SharedServer() {
    static PostgresServer server;
    return server;
}

MessageLog::MessageLog() {
    before_ = SetMessageBoxHandler([this](const std::string& text, UINT) {
        texts_.push_back(text);
        return IDOK;
    });
}

MessageLog::~MessageLog() {
    SetMessageBoxHandler(before_);
}

std::vector<std::string> MessageLog::Take() {
    return std::exchange(texts_, {});
}

EachDatabase::EachDatabase() {
    sqlite::Install();
    odbc::Install();
    if (IsSqlite()) {
        database_.Create((folder_ / "test.sqlite").c_str());
    } else {
        Open(database_);
        Run("DROP SCHEMA public CASCADE");
        Run("CREATE SCHEMA public");
    }
}

void EachDatabase::Open(CDaoDatabase& database, bool readOnly) const {
    if (IsSqlite()) {
        database.Open((folder_ / "test.sqlite").c_str(), FALSE, readOnly);
    } else {
        database.Open("", FALSE, readOnly, SharedServer().Connect().c_str());
    }
}

}  // namespace zel::test
