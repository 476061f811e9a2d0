#include "platform/qt/QtMainQueue.h"

#include <QAbstractEventDispatcher>
#include <QPointer>
#include <QTimer>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace skylet::platform::qt {

namespace {

// How far work that queues further work is followed before the loop goes round again.
constexpr int roundsPerTurn = 4;

std::chrono::milliseconds toMilliseconds(double seconds) {
    return std::chrono::milliseconds(std::llround(seconds * 1000));
}

// The Qt timer may be in the middle of its own tick when it is let go of, so it is deleted later.
class RepeatingTimer : public Timer {
  public:
    RepeatingTimer(QObject& parent, double seconds, Work work) : timer_(new QTimer(&parent)) {
        timer_->setTimerType(Qt::PreciseTimer);
        QObject::connect(timer_, &QTimer::timeout, timer_, std::move(work));
        timer_->start(toMilliseconds(seconds));
    }
    RepeatingTimer(const RepeatingTimer&) = delete;
    RepeatingTimer& operator=(const RepeatingTimer&) = delete;
    ~RepeatingTimer() override {
        if (timer_) {
            timer_->stop();
            QObject::disconnect(timer_, nullptr, nullptr, nullptr);
            timer_->deleteLater();
        }
    }

  private:
    QPointer<QTimer> timer_; // null once the queue is gone
};

} // namespace

QtMainQueue::QtMainQueue() : timers_(std::make_unique<QObject>()) {
    if (pipe(wakeUp_) == 0) {
        for (const int descriptor : wakeUp_) {
            fcntl(descriptor, F_SETFD, FD_CLOEXEC);
            fcntl(descriptor, F_SETFL, O_NONBLOCK);
        }
    }
    notifier_ = std::make_unique<QSocketNotifier>(wakeUp_[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { runQueued(); });
    // What the loop's events queued runs right after them: with a further turn of the loop for each step, the
    // way of a frame from its event to its drawing would cost more than the drawing.
    if (auto* dispatcher = QAbstractEventDispatcher::instance()) {
        awake_ = QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, [this] {
            for (int round = 0; round < roundsPerTurn && runQueued(); ++round) {
            }
        });
    }
}

QtMainQueue::~QtMainQueue() {
    QObject::disconnect(awake_);
    notifier_.reset();
    close(wakeUp_[0]);
    close(wakeUp_[1]);
}

void QtMainQueue::discard() {
    timers_ = std::make_unique<QObject>();
    // What is dropped may queue more when it goes.
    while (const Work dropped = takeNext()) {
    }
}

double QtMainQueue::now() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void QtMainQueue::async(Work work) {
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(work));
    if (queue_.size() == 1) {
        const char byte = 0;
        [[maybe_unused]] const auto written = write(wakeUp_[1], &byte, 1);
    }
}

Work QtMainQueue::takeNext() {
    const std::lock_guard lock(mutex_);
    if (queue_.empty()) {
        return {};
    }
    Work work = std::move(queue_.front());
    queue_.pop_front();
    if (queue_.empty()) {
        char byte = 0;
        [[maybe_unused]] const auto taken = read(wakeUp_[0], &byte, 1);
    }
    return work;
}

// What the work itself queues waits for the next round, so that timers and events get their turn. A nested
// event loop inside the work goes on with the rest, because the pipe stays readable.
bool QtMainQueue::runQueued() {
    std::size_t count = 0;
    {
        const std::lock_guard lock(mutex_);
        count = queue_.size();
    }
    const bool any = count > 0;
    for (; count > 0; --count) {
        const Work work = takeNext();
        if (!work) {
            break;
        }
        work();
    }
    return any;
}

void QtMainQueue::after(double seconds, Work work) {
    if (seconds <= 0) {
        async(std::move(work));
        return;
    }
    // QTimer::singleShot would keep the work beyond `discard`, until its time has come.
    auto* timer = new QTimer(timers_.get());
    timer->setTimerType(Qt::PreciseTimer);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, work = std::move(work)] {
        timer->deleteLater();
        work();
    });
    timer->start(toMilliseconds(seconds));
}

TimerRef QtMainQueue::every(double seconds, Work work) {
    return std::make_unique<RepeatingTimer>(*timers_, seconds, std::move(work));
}

} // namespace skylet::platform::qt
