#include "backends/odbc/Lifeline.h"

#include <zel/platform/Dao.h>
#include <zel/platform/DatabaseDriver.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <set>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace zel::odbc {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Socket = std::pair<int, ino_t>;  // a descriptor, and what tells it from a later one of that number

constexpr auto kGlance = 200ms;
constexpr std::int64_t kNanoseconds = 1'000'000'000;

std::int64_t Now() {
    return std::chrono::nanoseconds(Clock::now().time_since_epoch()).count();
}

// The connected sockets of this process.
std::set<Socket> Sockets() {
    std::set<Socket> sockets;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", ignored)) {
        const std::string name = entry.path().filename().string();
        int descriptor = -1;
        std::from_chars(name.data(), name.data() + name.size(), descriptor);
        struct stat info {};
        sockaddr_storage peer{};
        socklen_t size = sizeof peer;
        if (::fstat(descriptor, &info) == 0 && S_ISSOCK(info.st_mode) &&
            ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0)
            sockets.emplace(descriptor, info.st_ino);
    }
    return sockets;
}

// Nanoseconds since the last bytes came; for ever where nobody counts.
std::int64_t SilenceOf(int socket) {
    tcp_info info{};
    socklen_t size = sizeof info;
    if (::getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size) != 0) return INT64_MAX;
    return std::int64_t{info.tcpi_last_data_recv} * 1'000'000;
}

}  // namespace

Lifeline::~Lifeline() {
    if (thread_.joinable()) {
        {
            const std::scoped_lock lock(mutex_);
            ends_ = true;
        }
        end_.notify_all();
        thread_.join();
    }
    if (socket_ >= 0) ::close(socket_);
}

void Lifeline::Follow(const std::function<void()>& connect) {
    const std::set<Socket> before = Sockets();
    connect();
    const std::set<Socket> after = Sockets();
    std::vector<Socket> opened;
    std::set_difference(after.begin(), after.end(), before.begin(), before.end(), std::back_inserter(opened));
    if (opened.size() != 1) return;
    socket_ = ::fcntl(opened.front().first, F_DUPFD_CLOEXEC, 0);
    if (socket_ >= 0) thread_ = std::thread([this] { Run(); });
}

void Lifeline::Run() {
    std::unique_lock lock(mutex_);
    while (!end_.wait_for(lock, kGlance, [this] { return ends_; })) {
        const std::int64_t deadline = deadline_;
        if (deadline == 0 || Now() < deadline || SilenceOf(socket_) < waited_ * kNanoseconds) continue;
        // Only if that call still waits: another one has its own time.
        if (deadline_ == deadline) Cut(SILENT);
    }
}

void Lifeline::Cut(Reason reason) {
    Reason none = NONE;
    if (socket_ >= 0 && cut_.compare_exchange_strong(none, reason)) ::shutdown(socket_, SHUT_RDWR);
}

void Lifeline::ThrowIfCut(const std::string& attempt, const std::string& subject) const {
    if (cut_ == NONE) return;
    ThrowDatabaseError(CDaoException::invalidOperation, attempt, subject,
                       cut_ == CANCELLED
                           ? "it was cancelled, and the connection is closed"
                           : "the server has given no sign of life for " + std::to_string(waited_) +
                                 " seconds, and the connection is closed");
}

Lifeline::Watch::Watch(Lifeline& lifeline, int more) : lifeline_(lifeline), before_(lifeline.deadline_) {
    const int limit = lifeline.limit_;
    if (limit <= 0 || more < 0) {
        lifeline.deadline_ = 0;
        return;
    }
    lifeline.waited_ = limit + more;
    lifeline.deadline_ = Now() + (limit + std::int64_t{more}) * kNanoseconds;
}

}  // namespace zel::odbc
