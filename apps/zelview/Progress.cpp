#include "apps/zelview/Progress.h"

#include <zel/platform/Exception.h>

#include <QEventLoop>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace zel::view {
namespace {

using namespace std::chrono_literals;

constexpr auto kAtOnce = 50ms;   // so little that the window need not come to life
constexpr int kPatience = 1000;  // milliseconds until the bar appears
constexpr int kGlance = 20;      // milliseconds between looks at the work

// A thread that does one piece of work and keeps what it threw.
class Worker {
  public:
    explicit Worker(const std::function<void()>& work)
        : thread_([this, work] {
              try {
                  work();
              } catch (...) {
                  failure_ = std::current_exception();
              }
              const std::scoped_lock lock(mutex_);
              ended_ = true;
              end_.notify_all();
          }) {}
    ~Worker() { thread_.join(); }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    bool EndsWithin(std::chrono::milliseconds time) {
        std::unique_lock lock(mutex_);
        return end_.wait_for(lock, time, [this] { return ended_; });
    }
    void Rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }

  private:
    std::mutex mutex_;
    std::condition_variable end_;
    bool ended_ = false;
    std::exception_ptr failure_;
    std::thread thread_;  // the last member: it uses the others
};

// Lets events through until the work ends or, with a limit, the time is over.
void LiveOn(Worker& worker, int limit, QEventLoop::ProcessEventsFlags flags,
            const std::function<void()>& glance) {
    QEventLoop loop;
    QTimer timer;
    int waited = 0;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        glance();
        waited += kGlance;
        if (worker.EndsWithin(0ms) || (limit > 0 && waited >= limit)) loop.quit();
    });
    timer.start(kGlance);
    loop.exec(flags);
}

void ShowBar(QWidget* owner, const QString& label, Worker& worker, Work& state) {
    QProgressDialog bar(label, "Cancel", 0, 0, owner);
    bar.setWindowModality(Qt::ApplicationModal);
    bar.setMinimumDuration(0);
    bar.setAutoClose(false);
    bar.setAutoReset(false);
    QObject::connect(&bar, &QProgressDialog::canceled, &bar, [&] {
        state.cancelled = true;
        bar.setLabelText("Cancelling…");
        bar.setCancelButton(nullptr);
        bar.show();  // what has begun is brought to an orderly end
    });
    bar.show();
    LiveOn(worker, 0, QEventLoop::AllEvents, [&] {
        bar.setMaximum(state.all);
        bar.setValue(state.done);
    });
}

// What was given up needs no report of how it ended.
void Conclude(const Worker& worker, const Work& state) {
    try {
        worker.Rethrow();
    } catch (CException* e) {
        if (!state.cancelled) throw;
        e->Delete();
        throw Cancelled();
    } catch (const std::exception&) {
        if (!state.cancelled) throw;
        throw Cancelled();
    }
}

}  // namespace

void Work::Check() const {
    if (cancelled) throw Cancelled();
}

void RunWithProgress(QWidget* owner, const QString& label, const std::function<void(Work&)>& work) {
    Work state;
    Worker worker([&] { work(state); });
    // Until the bar is there, mouse and keys wait: nobody edits a document that is about to be replaced.
    if (!worker.EndsWithin(kAtOnce)) LiveOn(worker, kPatience, QEventLoop::ExcludeUserInputEvents, [] {});
    if (!worker.EndsWithin(0ms)) ShowBar(owner, label, worker, state);
    Conclude(worker, state);
}

}  // namespace zel::view
