// Waiting for a condition of another process.
//
// Threads: any. Failure: false once the deadline has passed.
#pragma once

#include <chrono>
#include <thread>

namespace skylet::desktop {

// Generous, for two slow cores under a sanitizer; a test that passes never waits as long.
constexpr std::chrono::seconds patience{20};

template <class Condition>
[[nodiscard]] bool eventually(Condition condition, std::chrono::milliseconds deadline = patience) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) {
            return condition();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(8));
    }
    return true;
}

// Whether the condition holds at every look during the whole time.
template <class Condition>
[[nodiscard]] bool throughout(std::chrono::milliseconds time, Condition condition) {
    return !eventually([&] { return !condition(); }, time);
}

} // namespace skylet::desktop
