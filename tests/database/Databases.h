// Databases for tests: a SQLite file and a PostgreSQL server of the test's own.
#pragma once

#include "Support.h"
#include "database/PostgresServer.h"

#include <zel/platform/Dao.h>
#include <zel/platform/MessageBox.h>

#include <memory>
#include <string>
#include <vector>

namespace zel::test {

// One server for all tests of a process that do not break it.
PostgresServer& SharedServer();

// What message boxes would have shown.
class MessageLog {
  public:
    MessageLog();
    ~MessageLog();
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;
    // All since the last call.
    std::vector<std::string> Take();

  private:
    std::vector<std::string> texts_;
    MessageBoxHandler before_;
};

// A test that runs on each kind of database.
class EachDatabase : public testing::TestWithParam<const char*> {
  protected:
    EachDatabase();
    bool IsSqlite() const { return std::string(GetParam()) == "SQLite"; }
    // Opens the test's database once more.
    void Open(CDaoDatabase& database, bool readOnly = false) const;
    void Run(const char* sql) { database_.Execute(sql); }

    TemporaryFolder folder_;
    MessageLog messages_;
    CDaoDatabase database_;
};

#define INSTANTIATE_ON_EACH_DATABASE(Suite)                 \
    INSTANTIATE_TEST_SUITE_P(                               \
        On, Suite, testing::Values("SQLite", "PostgreSQL"), \
        [](const testing::TestParamInfo<const char*>& of) { return std::string(of.param); })

}  // namespace zel::test
