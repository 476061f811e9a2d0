// The main queue on Qt's event loop.
//
// Work from other threads reaches the loop through a pipe, so nothing wakes up while nothing is
// queued. Timers are precise: Qt's coarse ones may shift an interval by 5 %.
// Threads: made and destroyed on the main thread, which runs the loop; `async` from any thread until then.
// Failure: work that is still queued when the queue is destroyed never runs.
#pragma once

#include "platform/Queues.h"

#include <QMetaObject>
#include <QObject>
#include <QSocketNotifier>

#include <deque>
#include <memory>
#include <mutex>

namespace skylet::platform::qt {

class QtMainQueue : public MainQueue {
  public:
    QtMainQueue();
    QtMainQueue(const QtMainQueue&) = delete;
    QtMainQueue& operator=(const QtMainQueue&) = delete;
    ~QtMainQueue() override;

    [[nodiscard]] double now() const override;
    void async(Work work) override;
    void after(double seconds, Work work) override;
    [[nodiscard]] TimerRef every(double seconds, Work work) override;

    // Drops everything that is queued or waits for its time, with what it holds. For the end of the program,
    // while whatever the work refers to still exists.
    void discard();

  private:
    [[nodiscard]] Work takeNext();
    // Runs what is queued by now; whether that was anything.
    bool runQueued();

    int wakeUp_[2] = {-1, -1}; // pipe: read end, write end
    std::unique_ptr<QSocketNotifier> notifier_;
    QMetaObject::Connection awake_;
    std::unique_ptr<QObject> timers_; // parent of the repeating timers, context of the single ones
    std::mutex mutex_;
    std::deque<Work> queue_; // guarded by mutex_; the pipe holds one byte exactly while it is not empty
};

} // namespace skylet::platform::qt
