#include "platform/Waiting.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/SerialQueues.h"

#include <QEventLoop>

#include <gtest/gtest.h>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

namespace skylet::test {

namespace {

using namespace platform;
using namespace platform::qt;

std::vector<int> upTo(int count) {
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

TEST(QtMainQueue, RunsInOrderAndNeverInsideTheCall) {
    QtMainQueue queue;
    std::vector<int> ran;
    queue.async([&] {
        queue.async([&] { ran.push_back(2); });
        ran.push_back(0);
    });
    queue.async([&] { ran.push_back(1); });
    EXPECT_TRUE(ran.empty());
    EXPECT_TRUE(eventually([&] { return ran.size() == 3; }));
    queue.after(0.03, [&] { ran.push_back(5); });
    queue.after(0.01, [&] { ran.push_back(4); });
    queue.after(0, [&] { ran.push_back(3); });
    EXPECT_EQ(ran, upTo(3));
    EXPECT_TRUE(eventually([&] { return ran.size() == 6; }));
    EXPECT_EQ(ran, upTo(6));
}

TEST(QtMainQueue, TakesWorkFromOtherThreadsInTheirOrder) {
    QtMainQueue queue;
    constexpr int count = 2000; // of each thread
    std::vector<int> ran[2];
    const auto main = std::this_thread::get_id();
    const auto fill = [&](std::vector<int>& of) {
        return std::thread([&] {
            for (int i = 0; i < count; ++i) {
                queue.async([&of, main, i] {
                    EXPECT_EQ(std::this_thread::get_id(), main);
                    of.push_back(i);
                });
            }
        });
    };
    std::thread one = fill(ran[0]);
    std::thread other = fill(ran[1]);
    EXPECT_TRUE(eventually([&] { return ran[0].size() == count && ran[1].size() == count; }));
    one.join();
    other.join();
    EXPECT_EQ(ran[0], upTo(count));
    EXPECT_EQ(ran[1], upTo(count));
}

TEST(QtMainQueue, GoesOnInsideANestedLoop) {
    QtMainQueue queue;
    std::vector<int> ran;
    QEventLoop nested;
    queue.async([&] {
        ran.push_back(0);
        nested.exec();
        ran.push_back(3);
    });
    queue.async([&] { ran.push_back(1); });
    queue.async([&] {
        ran.push_back(2);
        nested.quit();
    });
    EXPECT_TRUE(eventually([&] { return ran.size() == 4; }));
    EXPECT_EQ(ran, upTo(4));
}

TEST(QtMainQueue, StopsATimerThatIsLetGoOf) {
    QtMainQueue queue;
    int ticks = 0;
    int late = 0;
    TimerRef own;
    TimerRef other = queue.every(0.001, [&] { ++late; });
    // Both are due at once; whichever ticks lets go of itself and of the other.
    own = queue.every(0.001, [&] {
        if (++ticks == 3) {
            other.reset();
            own.reset();
            late = 0;
        }
    });
    EXPECT_TRUE(eventually([&] { return ticks == 3; }));
    bool after = false;
    queue.after(0.02, [&] { after = true; });
    EXPECT_TRUE(eventually([&] { return after; }));
    EXPECT_EQ(ticks, 3);
    EXPECT_EQ(late, 0);
}

TEST(QtMainQueue, TimersMayOutliveIt) {
    TimerRef timer;
    {
        QtMainQueue queue;
        timer = queue.every(0.001, [] {});
        queue.after(0.001, [] { ADD_FAILURE(); });
    }
    QCoreApplication::processEvents();
    timer.reset();
}

TEST(QtMainQueue, LetsGoOfWhatItDiscards) {
    QtMainQueue queue;
    const auto held = std::make_shared<int>();
    TimerRef timer = queue.every(1000, [held] {});
    queue.after(1000, [held] {});
    queue.async([held] { ADD_FAILURE(); });
    EXPECT_EQ(held.use_count(), 4);
    queue.discard();
    EXPECT_EQ(held.use_count(), 1);
    bool ran = false;
    queue.after(0.001, [&] { ran = true; });
    EXPECT_TRUE(eventually([&] { return ran; })) << "it goes on";
}

TEST(ThreadSerialQueue, RunsAllInOrderBeforeItEnds) {
    std::vector<int> ran;
    {
        ThreadSerialQueue queue("com.example.test");
        for (int i = 0; i < 1000; ++i) {
            queue.async([&ran, i] { ran.push_back(i); });
        }
        queue.async([&] { queue.async([&] { ran.push_back(1000); }); });
    }
    EXPECT_EQ(ran, upTo(1001));
}

TEST(MainThreadSerialQueue, RunsOnTheMainQueueAndWhatIsLeftAtItsEnd) {
    QtMainQueue mainQueue;
    std::vector<int> ran;
    {
        MainThreadSerialQueue queue(mainQueue);
        std::thread([&] { queue.async([&] { ran.push_back(0); }); }).join();
        queue.async([&] { ran.push_back(1); });
        EXPECT_TRUE(ran.empty());
        EXPECT_TRUE(eventually([&] { return ran.size() == 2; }));
        queue.async([&] { ran.push_back(2); });
    }
    EXPECT_EQ(ran, upTo(3));
    QCoreApplication::processEvents();
    EXPECT_EQ(ran, upTo(3));
}

} // namespace

} // namespace skylet::test
