// The calls with which a program changes the disk, watched, so that it can be made to die at any of them.
#pragma once

#include <cstddef>
#include <string>

namespace zel::test {

// The test program stands its own functions in front of the system's (open, write, fsync, rename and so on).
// They do what is asked of them; in a process that called Watch they also write their names down.
class WatchedCalls {
  public:
    WatchedCalls();
    ~WatchedCalls();
    WatchedCalls(const WatchedCalls&) = delete;
    WatchedCalls& operator=(const WatchedCalls&) = delete;

    // This process, a child of the test, is watched from here on and dies of SIGKILL at moment `end`: each
    // call has three, before it, half-way (a write has written half of its bytes, other calls are done), and
    // after it.
    void Watch(std::size_t end) const;
    // What the last watched process called, each name followed by a space.
    std::string Names() const;
};

}  // namespace zel::test
