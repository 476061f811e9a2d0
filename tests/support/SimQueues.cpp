#include "support/SimQueues.h"

namespace skylet::sim {

namespace {

// Sums of decimal fractions may fall short of each other by a rounding error.
constexpr double timeTolerance = 1e-9;

} // namespace

struct SimMainQueue::Tick {
    double start = 0;
    double interval = 0;
    int count = 1;
    bool stopped = false;
    platform::Work work;
};

void SimMainQueue::after(double seconds, platform::Work work) {
    work_.emplace(std::pair(now_ + seconds, queued_++), std::move(work));
}

platform::TimerRef SimMainQueue::every(double seconds, platform::Work work) {
    class SimTimer final : public platform::Timer {
      public:
        explicit SimTimer(std::shared_ptr<Tick> tick) : tick_(std::move(tick)) {}
        ~SimTimer() override { tick_->stopped = true; }

      private:
        std::shared_ptr<Tick> tick_;
    };
    auto tick = std::make_shared<Tick>();
    tick->start = now_;
    tick->interval = seconds;
    tick->work = std::move(work);
    scheduleTick(tick);
    return std::make_unique<SimTimer>(std::move(tick));
}

void SimMainQueue::scheduleTick(const std::shared_ptr<Tick>& tick) {
    const double due = tick->start + tick->interval * tick->count++;
    work_.emplace(std::pair(due, queued_++), [this, tick] {
        if (!tick->stopped) {
            scheduleTick(tick);
            tick->work();
        }
    });
}

void SimMainQueue::advance(double seconds) {
    const double end = now_ + seconds;
    while (!work_.empty() && work_.begin()->first.first <= end + timeTolerance) {
        auto next = work_.extract(work_.begin());
        now_ = std::max(now_, next.key().first);
        next.mapped()();
    }
    now_ = std::max(now_, end);
}

void SimSerialQueue::async(platform::Work work) {
    items_->push_back(std::move(work));
    if (runner_ != nullptr) {
        runner_->async([items = items_] { runNext(*items); });
    }
}

void SimSerialQueue::drain() {
    while (!items_->empty()) {
        runNext(*items_);
    }
}

void SimSerialQueue::runNext(Items& items) {
    if (!items.empty()) {
        const platform::Work work = std::move(items.front());
        items.pop_front();
        work();
    }
}

std::unique_ptr<platform::SerialQueue> SimSerialQueueFactory::makeSerialQueue(const std::string& /*label*/) {
    auto queue = std::make_unique<SimSerialQueue>(runner_);
    last_ = queue.get();
    return queue;
}

void SimSerialQueueFactory::drain() const {
    if (last_ != nullptr) {
        last_->drain();
    }
}

} // namespace skylet::sim
