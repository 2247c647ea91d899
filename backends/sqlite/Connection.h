// A SQLite file.
#pragma once

#include "backends/sqlite/Statement.h"

#include <zel/platform/DatabaseDriver.h>

#include <string>

namespace zel::sqlite {

class Connection : public DatabaseConnection {
  public:
    explicit Connection(const DatabaseAddress& address);

    std::unique_ptr<DatabaseCursor> Query(const std::string& sql,
                                          std::span<const COleVariant> values) override;
    long Execute(const std::string& sql, std::span<const COleVariant> values) override;
    void Begin() override;
    void Commit() override;
    void Rollback() override;
    std::vector<std::string> PrimaryKey(const ColumnInfo& column) override;
    void Describe(ColumnInfo& column) override;
    bool CanUpdate() const override;
    void SetQueryTimeout(int seconds) override;
    void Cancel() override { sqlite3_interrupt(database_.get()); }
    std::string TypeName(short type) const override;

    sqlite3* Handle() const { return database_.get(); }
    // Throws the database's last error.
    [[noreturn]] void Fail(const std::string& attempt, const std::string& subject) const;
    // " on <file>", for messages.
    std::string OnFile() const { return " on " + address_.Shown(); }

  private:
    void Open(int flags);
    // Reads from the file, so that a file that is no database shows at once. A code of SQLite.
    int Probe() const;
    void OpenForWriting();
    // The first command of `sql`, whose text is advanced behind it; null for an empty one.
    Statement Prepare(const char*& sql, const std::string& attempt, const std::string& subject) const;
    void Bind(sqlite3_stmt* statement, std::span<const COleVariant> values, const std::string& subject) const;
    void Run(sqlite3_stmt* statement, const std::string& subject) const;
    long RunScript(const std::string& sql);

    DatabaseAddress address_;
    bool writing_ = false;
    int timeout_;
    DatabaseHandle database_;
    // The command that ran last, for being run again.
    std::string lastSql_;
    Statement last_;
};

}  // namespace zel::sqlite
