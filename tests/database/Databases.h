// Databases for tests: a SQLite file and a PostgreSQL server of the test's own.
#pragma once

#include "Support.h"

#include <zel/platform/Dao.h>
#include <zel/platform/MessageBox.h>

#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace zel::test {

// A PostgreSQL server on the loopback interface, in a temporary folder. It is stopped with the object, and by
// the system if the test dies before. A fault of starting it fails the test.
class PostgresServer {
  public:
    PostgresServer();
    ~PostgresServer();
    PostgresServer(const PostgresServer&) = delete;
    PostgresServer& operator=(const PostgresServer&) = delete;

    // "ODBC;DRIVER=...;" for the database "postgres".
    std::string Connect() const;
    int Port() const { return port_; }
    // Kills the server as a power cut would.
    void Kill();

  private:
    void Initialise();
    void Start();
    bool Answers() const;

    TemporaryFolder folder_;
    std::string data_;
    int port_ = 0;
    pid_t process_ = -1;
};

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
