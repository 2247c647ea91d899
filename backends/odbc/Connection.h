// A data source.
#pragma once

#include "backends/odbc/Parameters.h"
#include "backends/odbc/Statement.h"

#include <zel/platform/DatabaseDriver.h>

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
    std::string Quoted(const std::string& name) const override;
    std::string TypeName(short type) const override;

  private:
    Handle NewStatement() const;
    void End(SQLSMALLINT how, const char* attempt);
    void SetAutoCommit(bool on);
    std::string OnSource() const;
    // The part of a name that the catalogue takes; null for all.
    std::string InfoText(SQLUSMALLINT what) const;

    DatabaseAddress address_;
    int timeout_;
    bool inTransaction_ = false;
    std::string quote_ = "\"";
    Handle connection_;
    // The command that ran last, for being run again.
    std::string lastSql_;
    Handle last_;
};

}  // namespace zel::odbc
