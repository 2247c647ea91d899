// A data source.
#pragma once

#include "backends/odbc/Lifeline.h"
#include "backends/odbc/Parameters.h"
#include "backends/odbc/Statement.h"

#include <zel/platform/DatabaseDriver.h>

#include <memory>
#include <string>

namespace zel::odbc {

class Connection : public DatabaseConnection {
  public:
    Connection(SQLHENV environment, const DatabaseAddress& address);
    ~Connection() override;

    std::unique_ptr<DatabaseCursor> Query(const std::string& sql,
                                          std::span<const COleVariant> values) override;
    long Execute(const std::string& sql, std::span<const COleVariant> values) override;
    void Begin() override;
    void Commit() override { End(SQL_COMMIT, "commit"); }
    void Rollback() override { End(SQL_ROLLBACK, "roll back"); }
    std::vector<std::string> PrimaryKey(const ColumnInfo& column) override;
    void Describe(ColumnInfo& column) override;
    bool CanUpdate() const override { return !address_.readOnly; }
    void SetQueryTimeout(int seconds) override;
    void SetSilenceLimit(int seconds) override { lifeline_.SetLimit(seconds); }
    void Cancel() override { lifeline_.Cancel(); }
    std::string Quoted(const std::string& name) const override;
    std::string TypeName(short type) const override;

  private:
    Handle NewStatement() const;
    void End(SQLSMALLINT how, const char* attempt);
    void SetAutoCommit(bool on);
    SQLRETURN Roll(SQLSMALLINT how);
    // Seconds that the server may take for an answer before its silence counts; -1: as long as it likes.
    int AnswerTime() const { return timeout_ > 0 ? timeout_ : -1; }
    void Guard();
    // Has to be held while something is read.
    std::shared_ptr<void> Reading();
    // As Handle::Check, in our own words where the connection was given up.
    void Check(const Handle& handle, SQLRETURN code, const std::string& attempt,
               const std::string& subject) const;
    std::string OnSource() const;
    // The part of a name that the catalogue takes; null for all.
    std::string InfoText(SQLUSMALLINT what) const;

    DatabaseAddress address_;
    int timeout_;
    bool inTransaction_ = false;
    bool guarded_ = false;         // the server has transactions that cannot change anything
    std::weak_ptr<void> reading_;  // while something is read in one
    std::string quote_ = "\"";
    Lifeline lifeline_;
    Handle connection_;
    // The command that ran last, for being run again.
    std::string lastSql_;
    Handle last_;
};

}  // namespace zel::odbc
