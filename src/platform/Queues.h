// Where work runs: the main queue (which also carries time) and serial queues.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace skylet::platform {

using Work = std::function<void()>;

// A repeating timer. Destroying it stops it; a tick that is already due does not run any more.
class Timer {
  public:
    Timer() = default;
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    virtual ~Timer() = default;
};

using TimerRef = std::unique_ptr<Timer>;

// The main thread's queue. Times are in seconds.
// Threads: `async` may be called from any thread, everything else on the main thread only. Work runs on the
// main thread, in the order queued, never inside the call that queued it.
class MainQueue {
  public:
    virtual ~MainQueue() = default;
    // Monotonic time. Only differences mean anything.
    [[nodiscard]] virtual double now() const = 0;
    virtual void async(Work work) = 0;
    virtual void after(double seconds, Work work) = 0;
    [[nodiscard]] virtual TimerRef every(double seconds, Work work) = 0;
};

// Work queued here runs one item at a time, in the order queued, off the caller's stack.
// Threads: `async` may be called from any thread. Destroying the queue waits for the item that is running and
// drops none: what was queued before runs first.
class SerialQueue {
  public:
    virtual ~SerialQueue() = default;
    virtual void async(Work work) = 0;
};

class SerialQueueFactory {
  public:
    virtual ~SerialQueueFactory() = default;
    // `label` names the queue (and its thread, where it has one of its own) for debugging.
    [[nodiscard]] virtual std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) = 0;
};

} // namespace skylet::platform
