// A PostgreSQL server for tests and benchmarks.
#pragma once

#include <csignal>
#include <string>
#include <sys/types.h>

namespace zel::test {

// A PostgreSQL server on the loopback interface, in a temporary folder. It is stopped with the object, and by
// the system if the test dies before. Throws std::runtime_error when it cannot be started.
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
    // Stops all its processes where they are; the network still acknowledges for them.
    void Freeze() { Signal(SIGSTOP); }
    void Thaw() { Signal(SIGCONT); }

  private:
    void Initialise();
    void Start();
    bool Answers() const;
    void Signal(int signal) const;

    std::string folder_;
    std::string data_;
    int port_ = 0;
    pid_t process_ = -1;
};

}  // namespace zel::test
