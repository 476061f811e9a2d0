#include "platform/qt/SerialQueues.h"

#include <QString>
#include <QThread>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace skylet::platform::qt {

namespace {
// Enough for blocking D-Bus calls; the default would reserve 8 MiB for each queue.
constexpr unsigned stackBytes = 512 * 1024;

QString threadName(const std::string& label) {
    const auto dot = label.rfind('.');
    return QString::fromStdString(dot == std::string::npos ? label : label.substr(dot + 1));
}
} // namespace

class ThreadSerialQueue::Worker : public QThread {
  public:
    explicit Worker(const std::string& label) {
        setObjectName(threadName(label));
        setStackSize(stackBytes);
    }

    void push(Work work) {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(work));
        if (!started_) {
            started_ = true;
            start();
        }
        changed_.notify_one();
    }

    void finish() {
        {
            const std::lock_guard lock(mutex_);
            finishing_ = true;
            changed_.notify_one();
        }
        wait();
    }

  protected:
    void run() override {
        std::unique_lock lock(mutex_);
        while (true) {
            changed_.wait(lock, [this] { return finishing_ || !queue_.empty(); });
            if (queue_.empty()) {
                return;
            }
            Work work = std::move(queue_.front());
            queue_.pop_front();
            lock.unlock();
            work();
            work = nullptr; // what it holds is released outside the lock
            lock.lock();
        }
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Work> queue_;
    bool started_ = false;
    bool finishing_ = false;
};

ThreadSerialQueue::ThreadSerialQueue(const std::string& label) : worker_(std::make_unique<Worker>(label)) {}

ThreadSerialQueue::~ThreadSerialQueue() {
    worker_->finish();
}

void ThreadSerialQueue::async(Work work) {
    worker_->push(std::move(work));
}

std::unique_ptr<SerialQueue> ThreadSerialQueueFactory::makeSerialQueue(const std::string& label) {
    return std::make_unique<ThreadSerialQueue>(label);
}

struct MainThreadSerialQueue::Pending {
    std::mutex mutex;
    std::deque<Work> queue;

    // Answers whether there was something to run.
    bool runNext() {
        Work work;
        {
            const std::lock_guard lock(mutex);
            if (queue.empty()) {
                return false;
            }
            work = std::move(queue.front());
            queue.pop_front();
        }
        work();
        return true;
    }
};

MainThreadSerialQueue::MainThreadSerialQueue(MainQueue& mainQueue)
    : mainQueue_(mainQueue)
    , pending_(std::make_shared<Pending>()) {}

MainThreadSerialQueue::~MainThreadSerialQueue() {
    while (pending_->runNext()) {
    }
}

void MainThreadSerialQueue::async(Work work) {
    {
        const std::lock_guard lock(pending_->mutex);
        pending_->queue.push_back(std::move(work));
    }
    mainQueue_.async([pending = pending_] { pending->runNext(); });
}

} // namespace skylet::platform::qt
