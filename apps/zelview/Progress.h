// Work that takes its time.
#pragma once

#include <atomic>
#include <exception>
#include <functional>

class QString;
class QWidget;

namespace zel::view {

// What a piece of work and the bar that shows it tell each other.
struct Work {
    std::atomic<bool> cancelled{false};
    // Steps done, of all; a bar of unknown length while `all` is 0.
    std::atomic<int> done{0};
    std::atomic<int> all{0};

    // Ends the work when the user has given it up. Throws Cancelled.
    void Check() const;
};

class Cancelled : public std::exception {
  public:
    const char* what() const noexcept override { return "It was cancelled."; }
};

// Runs `work` in a thread of its own and answers when it has ended. The window goes on living meanwhile;
// after a second a bar with a button to cancel stands in front of it. Throws what the work throws; once it is
// cancelled every failure is Cancelled.
void RunWithProgress(QWidget* owner, const QString& label, const std::function<void(Work&)>& work);

}  // namespace zel::view
