// Waiting for a condition with a deadline, while the event loop runs.
#pragma once

#include <QCoreApplication>
#include <QTimer>

#include <chrono>

namespace skylet::test {

// Far beyond what anything here takes, also on a loaded machine.
constexpr std::chrono::seconds patience(20);

template <class Condition>
[[nodiscard]] bool eventually(Condition&& condition) {
    // The loop sleeps between events, as in the program.
    QTimer look;
    look.start(std::chrono::milliseconds(1));
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace skylet::test
