// Queues on virtual time: nothing runs until a test advances the time.
//
// Threads: one thread only.
#pragma once

#include "platform/Queues.h"

#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace skylet::sim {

struct SimMainQueue final : platform::MainQueue {
    double now() const override { return now_; }
    void async(platform::Work work) override { after(0, std::move(work)); }
    void after(double seconds, platform::Work work) override { at(now_ + seconds, std::move(work)); }
    platform::TimerRef every(double seconds, platform::Work work) override {
        struct SimTimer final : platform::Timer {
            std::shared_ptr<Ticks> ticks;
        };
        auto timer = std::make_unique<SimTimer>();
        timer->ticks = std::make_shared<Ticks>(Ticks{now_, seconds, std::move(work)});
        scheduleTick(timer->ticks);
        return timer;
    }

    // Runs everything that becomes due, in the order of its time, then of its queueing.
    void advance(double seconds) {
        // Sums of decimal fractions may fall short of each other by a rounding error.
        constexpr double tolerance = 1e-9;
        const double end = now_ + seconds;
        while (!work_.empty() && work_.begin()->first.first <= end + tolerance) {
            auto next = work_.extract(work_.begin());
            now_ = std::max(now_, next.key().first);
            next.mapped()();
        }
        now_ = std::max(now_, end);
    }
    // Forgets all queued work.
    void dropAll() { work_.clear(); }

  private:
    struct Ticks {
        double start = 0;
        double interval = 0;
        platform::Work work;
        int next = 1;
    };
    void at(double time, platform::Work work) { work_.emplace(std::pair(time, queued_++), std::move(work)); }
    // A timer that is let go of takes its ticks with it.
    void scheduleTick(const std::shared_ptr<Ticks>& ticks) {
        at(ticks->start + ticks->interval * ticks->next++, [this, waiting = std::weak_ptr(ticks)] {
            if (const auto due = waiting.lock()) {
                scheduleTick(due);
                due->work();
            }
        });
    }

    double now_ = 0;
    std::uint64_t queued_ = 0;
    std::map<std::pair<double, std::uint64_t>, platform::Work> work_;
};

// Runs its items on the main queue, one per turn, and what is left at its end; at once if there is none.
struct SimSerialQueue final : platform::SerialQueue {
    using Items = std::deque<platform::Work>;

    explicit SimSerialQueue(SimMainQueue* runner) : runner_(runner) {}
    ~SimSerialQueue() override {
        while (!items_->empty()) {
            runNext(*items_);
        }
    }
    void async(platform::Work work) override {
        items_->push_back(std::move(work));
        if (runner_ == nullptr) {
            runNext(*items_);
        } else {
            runner_->async([items = items_] { runNext(*items); });
        }
    }
    static void runNext(Items& items) {
        if (!items.empty()) {
            const platform::Work work = std::move(items.front());
            items.pop_front();
            work();
        }
    }

    SimMainQueue* runner_;
    std::shared_ptr<Items> items_ = std::make_shared<Items>();
};

struct SimSerialQueueFactory final : platform::SerialQueueFactory {
    explicit SimSerialQueueFactory(SimMainQueue* main = nullptr) : runner(main) {}
    std::unique_ptr<platform::SerialQueue> makeSerialQueue(const std::string&) override {
        return std::make_unique<SimSerialQueue>(runner);
    }
    SimMainQueue* runner;
};

} // namespace skylet::sim
