#include "database/Databases.h"

#include <zel/odbc/Install.h>
#include <zel/sqlite/Install.h>

#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace zel::test {
namespace {

namespace fs = std::filesystem;

// The server refuses to run as root.
constexpr const char* kUnprivileged = "setpriv --reuid=nobody --regid=nogroup --clear-groups ";

// The newest installed version's programs.
std::string ProgramFolder() {
    std::string newest;
    int version = 0;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator("/usr/lib/postgresql", none)) {
        const int found = std::atoi(entry.path().filename().c_str());
        if (found > version && fs::exists(entry.path() / "bin" / "initdb")) {
            version = found;
            newest = (entry.path() / "bin").string() + "/";
        }
    }
    if (newest.empty()) throw std::runtime_error("PostgreSQL is not installed");
    return newest;
}

int FreePort() {
    const int listening = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    bind(listening, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(listening, reinterpret_cast<sockaddr*>(&address), &size);
    close(listening);
    return ntohs(address.sin_port);
}

}  // namespace

PostgresServer::PostgresServer() : data_(folder_ / "data"), port_(FreePort()) {
    odbc::Install();
    Initialise();
    Start();
}

void PostgresServer::Initialise() {
    if (geteuid() == 0) {
        const auto done = RunProgram("chown nobody:nogroup " + fs::path(data_).parent_path().string());
        if (done.code != 0) throw std::runtime_error(done.text);
    }
    const auto done = RunProgram((geteuid() == 0 ? kUnprivileged : "") + ProgramFolder() + "initdb -D " +
                                 data_ + " -U zel -A trust -E UTF8 --locale=C.UTF-8 --no-sync");
    if (done.code != 0) throw std::runtime_error("Cannot make a PostgreSQL database: " + done.text);
}

void PostgresServer::Start() {
    const std::string program = ProgramFolder() + "postgres";
    const std::string port = std::to_string(port_);
    const std::string sockets = "unix_socket_directories=" + fs::path(data_).parent_path().string();
    const std::string log = folder_ / "log";
    process_ = fork();
    if (process_ == 0) {
        const int out = open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        dup2(out, 1);
        dup2(out, 2);
        if (geteuid() == 0) {
            execlp("setpriv", "setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups", "--pdeathsig",
                   "QUIT", program.c_str(), "-D", data_.c_str(), "-p", port.c_str(), "-h", "127.0.0.1", "-c",
                   sockets.c_str(), "-F", nullptr);
        } else {
            prctl(PR_SET_PDEATHSIG, SIGQUIT);
            execl(program.c_str(), program.c_str(), "-D", data_.c_str(), "-p", port.c_str(), "-h",
                  "127.0.0.1", "-c", sockets.c_str(), "-F", nullptr);
        }
        _exit(127);
    }
    for (int tries = 0; tries < 300; ++tries) {
        if (Answers()) return;
        if (waitpid(process_, nullptr, WNOHANG) == process_) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    throw std::runtime_error("Cannot start PostgreSQL: " + Content(log));
}

bool PostgresServer::Answers() const {
    return RunProgram(ProgramFolder() + "pg_isready -q -h 127.0.0.1 -p " + std::to_string(port_)).code == 0;
}

PostgresServer::~PostgresServer() {
    Kill();
}

void PostgresServer::Kill() {
    if (process_ <= 0) return;
    // The server ends its own processes on this signal, at once and without cleaning up.
    kill(process_, SIGQUIT);
    waitpid(process_, nullptr, 0);
    process_ = -1;
}

std::string PostgresServer::Connect() const {
    return "ODBC;DRIVER={PostgreSQL Unicode};SERVER=127.0.0.1;PORT=" + std::to_string(port_) +
           ";DATABASE=postgres;UID=zel;";
}

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
