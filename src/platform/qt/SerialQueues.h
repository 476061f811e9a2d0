// Serial queues: one with a thread of its own, and one that runs on the main thread.
#pragma once

#include "platform/Queues.h"

#include <memory>
#include <string>

namespace skylet::platform::qt {

// Work runs on a thread that starts with the first work. The thread bears the last word of the label, because
// thread names are short.
class ThreadSerialQueue : public SerialQueue {
  public:
    explicit ThreadSerialQueue(const std::string& label);
    ThreadSerialQueue(const ThreadSerialQueue&) = delete;
    ThreadSerialQueue& operator=(const ThreadSerialQueue&) = delete;
    // Must not run on the queue's own thread.
    ~ThreadSerialQueue() override;

    void async(Work work) override;

  private:
    class Worker;
    std::unique_ptr<Worker> worker_;
};

class ThreadSerialQueueFactory : public SerialQueueFactory {
  public:
    [[nodiscard]] std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) override;
};

// For samples that carry no pixels into this process: work runs on the main queue, which must outlive this.
// Destroyed on the main thread, where it runs what is left.
class MainThreadSerialQueue : public SerialQueue {
  public:
    explicit MainThreadSerialQueue(MainQueue& mainQueue);
    MainThreadSerialQueue(const MainThreadSerialQueue&) = delete;
    MainThreadSerialQueue& operator=(const MainThreadSerialQueue&) = delete;
    ~MainThreadSerialQueue() override;

    void async(Work work) override;

  private:
    struct Pending;
    MainQueue& mainQueue_;
    std::shared_ptr<Pending> pending_;
};

} // namespace skylet::platform::qt
