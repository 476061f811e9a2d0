// SIGTERM, SIGINT and SIGHUP as an orderly request to end the program.
//
// The first one asks; the next one ends the program at once, should it hang. SIGPIPE is ignored from here on.
// Threads: main thread. One object at a time.
#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace skylet::platform::qt {

class TerminationSignals {
  public:
    // `requested` is called from the event loop.
    explicit TerminationSignals(std::function<void()> requested);
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;
    ~TerminationSignals();

  private:
    int pipe_[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace skylet::platform::qt
