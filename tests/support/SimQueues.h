// Queues on virtual time: nothing runs until a test advances the time.
//
// Threads: one thread only.
#pragma once

#include "platform/Queues.h"

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace skylet::sim {

class SimMainQueue final : public platform::MainQueue {
  public:
    [[nodiscard]] double now() const override { return now_; }
    void async(platform::Work work) override { after(0, std::move(work)); }
    void after(double seconds, platform::Work work) override;
    [[nodiscard]] platform::TimerRef every(double seconds, platform::Work work) override;

    // Runs everything that becomes due, in the order of its time, then of its queueing.
    void advance(double seconds);
    // Forgets all queued work.
    void dropAll() { work_.clear(); }

  private:
    struct Tick;
    void scheduleTick(const std::shared_ptr<Tick>& tick);

    double now_ = 0;
    std::uint64_t queued_ = 0;
    std::map<std::pair<double, std::uint64_t>, platform::Work> work_;
};

// Runs its items on the main queue, one per turn, and what is left at its end; at once if there is none.
class SimSerialQueue final : public platform::SerialQueue {
  public:
    explicit SimSerialQueue(SimMainQueue* runner) : runner_(runner) {}
    ~SimSerialQueue() override {
        while (!items_->empty()) {
            runNext(*items_);
        }
    }
    void async(platform::Work work) override;

  private:
    using Items = std::deque<platform::Work>;
    static void runNext(Items& items);

    SimMainQueue* runner_;
    std::shared_ptr<Items> items_ = std::make_shared<Items>();
};

struct SimSerialQueueFactory final : platform::SerialQueueFactory {
    explicit SimSerialQueueFactory(SimMainQueue* main = nullptr) : runner(main) {}
    [[nodiscard]] std::unique_ptr<platform::SerialQueue> makeSerialQueue(const std::string&) override {
        return std::make_unique<SimSerialQueue>(runner);
    }
    SimMainQueue* runner;
};

} // namespace skylet::sim
