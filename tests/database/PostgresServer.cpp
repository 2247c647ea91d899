#include "database/PostgresServer.h"

#include <zel/odbc/Install.h>

#include <arpa/inet.h>
#include <cctype>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <netinet/in.h>
#include <stdexcept>
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

std::string NewFolder() {
    std::string pattern = (fs::temp_directory_path() / "zel-server-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("Cannot make a temporary folder");
    return pattern;
}

void Run(const std::string& command) {
    if (std::system(command.c_str()) != 0) throw std::runtime_error("Cannot run " + command);
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

PostgresServer::PostgresServer() : folder_(NewFolder()), data_(folder_ + "/data"), port_(FreePort()) {
    odbc::Install();
    Initialise();
    Start();
}

void PostgresServer::Initialise() {
    if (geteuid() == 0) {
        Run("chown nobody:nogroup " + folder_);
    }
    Run((geteuid() == 0 ? kUnprivileged : "") + ProgramFolder() + "initdb -D " + data_ +
        " -U zel -A trust -E UTF8 --locale=C.UTF-8 --no-sync >" + folder_ + "/initdb.log");
}

void PostgresServer::Start() {
    const std::string program = ProgramFolder() + "postgres";
    const std::string port = std::to_string(port_);
    const std::string sockets = "unix_socket_directories=" + folder_;
    const std::string log = folder_ + "/log";
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
    std::ifstream text(log);
    const std::string why{std::istreambuf_iterator<char>(text), {}};
    Kill();
    throw std::runtime_error("Cannot start PostgreSQL: " + why);
}

bool PostgresServer::Answers() const {
    return std::system(
               (ProgramFolder() + "pg_isready -q -h 127.0.0.1 -p " + std::to_string(port_)).c_str()) == 0;
}

PostgresServer::~PostgresServer() {
    Kill();
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void PostgresServer::Signal(int signal) const {
    std::error_code none;
    for (const auto& entry : fs::directory_iterator("/proc", none)) {
        std::ifstream status(entry.path() / "stat");
        int process = 0, parent = 0;
        std::string name, state;
        if (status >> process >> name &&
            std::isdigit(static_cast<unsigned char>(entry.path().filename().string()[0]))) {
            while (name.back() != ')' && status >> state) name += state;
            if (status >> state >> parent && parent == process_) kill(process, signal);
        }
    }
    kill(process_, signal);
}

void PostgresServer::Kill() {
    if (process_ <= 0) return;
    Thaw();
    // The server ends its own processes on this signal, at once and without cleaning up.
    kill(process_, SIGQUIT);
    waitpid(process_, nullptr, 0);
    process_ = -1;
}

std::string PostgresServer::Connect() const {
    return "ODBC;DRIVER={PostgreSQL Unicode};SERVER=127.0.0.1;PORT=" + std::to_string(port_) +
           ";DATABASE=postgres;UID=zel;";
}

}  // namespace zel::test
