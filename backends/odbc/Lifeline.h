// Giving up on a server that has fallen silent.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace zel::odbc {

// Drivers wait for ever when a server stops in the middle of an answer, and ODBC has no call that ends that:
// the network still acknowledges for the server. So the connection's socket is watched from a thread, and
// shut down when nothing has come for too long; the driver's call then fails as it does when a server dies.
class Lifeline {
  public:
    // Seconds of silence; 0: without limit.
    explicit Lifeline(int limit) : limit_(limit) {}
    ~Lifeline();
    Lifeline(const Lifeline&) = delete;
    Lifeline& operator=(const Lifeline&) = delete;

    // Runs `connect` and finds the socket that it opens. Without one (a database in a file), or with more
    // than one, nothing is watched.
    void Follow(const std::function<void()>& connect);
    void SetLimit(int seconds) { limit_ = seconds; }
    // Ends the call that is waiting now, from any thread; the connection is of no more use.
    void Cancel() { Cut(CANCELLED); }
    // Throws CDaoException* with the reason when the connection was given up.
    void ThrowIfCut(const std::string& attempt, const std::string& subject) const;

    // While it lives, the server's silence is limited: to the limit, and `more` seconds that the server was
    // given to find an answer. A negative number is no limit.
    class Watch {
      public:
        explicit Watch(Lifeline& lifeline, int more = 0);
        ~Watch() { lifeline_.deadline_ = before_; }
        Watch(const Watch&) = delete;
        Watch& operator=(const Watch&) = delete;

      private:
        Lifeline& lifeline_;
        std::int64_t before_;
    };

  private:
    enum Reason { NONE, SILENT, CANCELLED };

    void Run();
    void Cut(Reason reason);

    std::atomic<int> limit_;
    std::atomic<int> waited_{0};             // seconds that the watch of now allows
    std::atomic<std::int64_t> deadline_{0};  // nanoseconds of the steady clock; 0: nobody waits
    std::atomic<Reason> cut_{NONE};
    int socket_ = -1;  // our own descriptor of the driver's socket
    std::mutex mutex_;
    std::condition_variable end_;
    bool ends_ = false;
    std::thread thread_;
};

}  // namespace zel::odbc
