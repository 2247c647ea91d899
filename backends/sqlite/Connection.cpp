#include "backends/sqlite/Connection.h"

#include "backends/sqlite/Cursor.h"
#include "backends/sqlite/Values.h"

#include <zel/platform/Dao.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace zel::sqlite {
namespace {

int PrimaryCode(int code) {
    return code & 0xFF;
}

bool IsBlank(const char* sql) {
    return std::strspn(sql, " \t\r\n;") == std::strlen(sql);
}

std::string AsQuery(const std::string& sql) {
    return "the query " + ShownQuery(sql);
}

}  // namespace

Connection::Connection(const DatabaseAddress& address) : address_(address), timeout_(address.queryTimeout) {
    const std::string subject = "the database " + address.Shown();
    if (address.name.empty())
        ThrowDatabaseError(CDaoException::invalidArgument, "open", subject, "it has no name");
    std::error_code ignored;
    if (address.create) {
        if (std::filesystem::exists(address.name, ignored))
            ThrowDatabaseError(EEXIST, "create", subject, "there is a file of that name");
        Open(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        writing_ = true;
        return;
    }
    if (std::filesystem::is_directory(address.name, ignored))
        ThrowDatabaseError(EISDIR, "open", subject, "it is a folder");
    Open(SQLITE_OPEN_READONLY);
    int code = Probe();
    // What a program left behind that was interrupted while it wrote can only be put right by writing.
    const bool repair = PrimaryCode(code) == SQLITE_READONLY || PrimaryCode(code) == SQLITE_CANTOPEN;
    if (repair && !address.readOnly) {
        Open(SQLITE_OPEN_READWRITE);
        writing_ = true;
        code = Probe();
    }
    if (code != SQLITE_OK) Fail("open", subject);
}

void Connection::Open(int flags) {
    last_.reset();
    lastSql_.clear();
    sqlite3* opened = nullptr;
    // One thread uses a connection, so SQLite need not lock it for each value that is read.
    const int code = sqlite3_open_v2(address_.name.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    database_.reset(opened);
    if (code != SQLITE_OK) Fail("open", "the database " + address_.Shown());
    sqlite3_extended_result_codes(opened, 1);
    // A misspelt column in quotes is an error and not a text.
    sqlite3_db_config(opened, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(opened, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    SetQueryTimeout(timeout_);
    if (address_.exclusive)
        sqlite3_exec(opened, "PRAGMA locking_mode = EXCLUSIVE", nullptr, nullptr, nullptr);
}

int Connection::Probe() const {
    return sqlite3_exec(database_.get(), "PRAGMA schema_version", nullptr, nullptr, nullptr);
}

void Connection::Fail(const std::string& attempt, const std::string& subject) const {
    if (!database_) AfxThrowMemoryException();
    const int code = sqlite3_extended_errcode(database_.get());
    std::string words = sqlite3_errmsg(database_.get());
    const int reason = sqlite3_system_errno(database_.get());
    if (PrimaryCode(code) == SQLITE_CANTOPEN && reason != 0)
        words += std::string(" (") + std::error_code(reason, std::generic_category()).message() + ")";
    ThrowDatabaseError(code, attempt, subject, words);
}

void Connection::OpenForWriting() {
    if (writing_) return;
    if (address_.readOnly)
        ThrowDatabaseError(CDaoException::readOnly, "change", "the database " + address_.Shown(),
                           "it was opened for reading only");
    last_.reset();
    lastSql_.clear();
    if (sqlite3_next_stmt(database_.get(), nullptr))
        ThrowDatabaseError(SQLITE_BUSY, "change", "the database " + address_.Shown(),
                           "a query is still reading it");
    Open(SQLITE_OPEN_READWRITE);
    writing_ = true;
}

bool Connection::CanUpdate() const {
    return !address_.readOnly && access(address_.name.c_str(), W_OK) == 0;
}

void Connection::SetQueryTimeout(int seconds) {
    timeout_ = seconds;
    const bool limited = seconds > 0 && seconds < INT_MAX / 1000;
    sqlite3_busy_timeout(database_.get(), limited ? seconds * 1000 : INT_MAX);
}

Statement Connection::Prepare(const char*& sql, const std::string& attempt,
                              const std::string& subject) const {
    sqlite3_stmt* prepared = nullptr;
    const char* rest = sql;
    const int code = sqlite3_prepare_v2(database_.get(), sql, -1, &prepared, &rest);
    Statement statement(prepared);
    if (code != SQLITE_OK) Fail(attempt, subject);
    sql = rest;
    return statement;
}

void Connection::Bind(sqlite3_stmt* statement, std::span<const COleVariant> values,
                      const std::string& subject) const {
    const int wanted = sqlite3_bind_parameter_count(statement);
    if (static_cast<std::size_t>(wanted) != values.size())
        ThrowDatabaseError(SQLITE_RANGE, "run", subject,
                           "it has " + std::to_string(wanted) + " question marks, and " +
                               std::to_string(values.size()) + " values were given");
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (BindValue(statement, static_cast<int>(i) + 1, values[i]) != SQLITE_OK) Fail("run", subject);
    }
}

std::unique_ptr<DatabaseCursor> Connection::Query(const std::string& sql,
                                                  std::span<const COleVariant> values) {
    const std::string subject = AsQuery(sql) + OnFile();
    const char* rest = sql.c_str();
    Statement statement = Prepare(rest, "run", subject);
    const auto refuse = [&](const char* why) { ThrowDatabaseError(SQLITE_MISUSE, "run", subject, why); };
    if (!IsBlank(rest)) refuse("more than one command stands in it");
    if (!statement || sqlite3_column_count(statement.get()) == 0) refuse("it delivers no records");
    if (!sqlite3_stmt_readonly(statement.get())) refuse("it would change the database");
    Bind(statement.get(), values, subject);
    return std::make_unique<Cursor>(*this, std::move(statement), subject);
}

void Connection::Run(sqlite3_stmt* statement, const std::string& subject) const {
    int code = SQLITE_ROW;
    while (code == SQLITE_ROW) code = sqlite3_step(statement);
    if (code == SQLITE_DONE) {
        sqlite3_reset(statement);
        return;
    }
    try {
        Fail("run", subject);
    } catch (...) {
        sqlite3_reset(statement);
        throw;
    }
}

// One command after another; none of them has values.
long Connection::RunScript(const std::string& sql) {
    const int before = sqlite3_total_changes(database_.get());
    const char* rest = sql.c_str();
    while (!IsBlank(rest)) {
        const std::string subject = "the command " + ShownQuery(rest) + OnFile();
        const Statement statement = Prepare(rest, "run", subject);
        if (!statement) continue;
        Bind(statement.get(), {}, subject);
        Run(statement.get(), subject);
    }
    return sqlite3_total_changes(database_.get()) - before;
}

long Connection::Execute(const std::string& sql, std::span<const COleVariant> values) {
    OpenForWriting();
    if (values.empty()) return RunScript(sql);
    const std::string subject = "the command " + ShownQuery(sql) + OnFile();
    if (lastSql_ != sql || !last_) {
        const char* rest = sql.c_str();
        last_ = Prepare(rest, "run", subject);
        lastSql_ = sql;
    }
    Bind(last_.get(), values, subject);
    const int before = sqlite3_total_changes(database_.get());
    Run(last_.get(), subject);
    return sqlite3_total_changes(database_.get()) - before;
}

// Takes the lock for writing at once: two that began by reading could wait for each other.
void Connection::Begin() {
    OpenForWriting();
    RunScript("BEGIN IMMEDIATE");
}
void Connection::Commit() {
    RunScript("COMMIT");
}
void Connection::Rollback() {
    RunScript("ROLLBACK");
}

std::vector<std::string> Connection::PrimaryKey(const ColumnInfo& column) {
    const std::string schema = column.sourceSchema.empty() ? "main" : column.sourceSchema;
    const COleVariant values[] = {{column.sourceTable.c_str(), VT_BSTR}, {schema.c_str(), VT_BSTR}};
    const auto cursor = Query("SELECT name FROM pragma_table_info(?, ?) WHERE pk > 0 ORDER BY pk", values);
    std::vector<std::string> names;
    COleVariant name;
    while (cursor->Next()) {
        cursor->Read(0, name);
        names.emplace_back(name.Bytes());
    }
    // Every other table numbers its rows; a query that delivers the numbers can use them.
    if (names.empty()) names.emplace_back("rowid");
    return names;
}

void Connection::Describe(ColumnInfo& column) {
    if (column.sourceColumn.empty()) return;
    const std::string schema = column.sourceSchema.empty() ? "main" : column.sourceSchema;
    const COleVariant values[] = {{column.sourceTable.c_str(), VT_BSTR},
                                  {schema.c_str(), VT_BSTR},
                                  {column.sourceColumn.c_str(), VT_BSTR}};
    const auto cursor = Query("SELECT dflt_value FROM pragma_table_info(?, ?) WHERE name = ?", values);
    COleVariant value;
    if (cursor->Next()) cursor->Read(0, value);
    column.defaultValue = std::string(value.Bytes());
}

std::string Connection::TypeName(short type) const {
    switch (type) {
        case dbBoolean:
            return "BOOLEAN";
        case dbByte:
            return "TINYINT";
        case dbInteger:
            return "SMALLINT";
        case dbLong:
            return "INTEGER";
        case dbBigInt:
            return "BIGINT";
        case dbCurrency:
            return "MONEY";
        case dbSingle:
        case dbDouble:
        case dbDecimal:
            return "REAL";
        case dbDate:
            return "DATETIME";
        case dbBinary:
        case dbLongBinary:
            return "BLOB";
        default:
            return "TEXT";
    }
}

}  // namespace zel::sqlite
