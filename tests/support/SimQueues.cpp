#include "support/SimQueues.h"

namespace skylet::sim {

namespace {

// Sums of decimal fractions may fall short of each other by a rounding error.
constexpr double timeTolerance = 1e-9;

} // namespace

struct SimMainQueue::Tick {
    double start = 0;
    double interval = 0;
    platform::Work work;
    int count = 1;
};

void SimMainQueue::after(double seconds, platform::Work work) {
    work_.emplace(std::pair(now_ + seconds, queued_++), std::move(work));
}

platform::TimerRef SimMainQueue::every(double seconds, platform::Work work) {
    struct SimTimer final : platform::Timer {
        std::shared_ptr<Tick> tick;
    };
    auto timer = std::make_unique<SimTimer>();
    timer->tick = std::make_shared<Tick>(Tick{now_, seconds, std::move(work)});
    scheduleTick(timer->tick);
    return timer;
}

// A timer that is let go of takes its ticks with it.
void SimMainQueue::scheduleTick(const std::shared_ptr<Tick>& next) {
    const double due = next->start + next->interval * next->count++;
    work_.emplace(std::pair(due, queued_++), [this, waiting = std::weak_ptr(next)] {
        if (const auto tick = waiting.lock()) {
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
    if (runner_ == nullptr) {
        work();
        return;
    }
    items_->push_back(std::move(work));
    runner_->async([items = items_] { runNext(*items); });
}

void SimSerialQueue::runNext(Items& items) {
    if (!items.empty()) {
        const platform::Work work = std::move(items.front());
        items.pop_front();
        work();
    }
}

} // namespace skylet::sim
