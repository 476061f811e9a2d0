// The diagnostics log: one-line English messages with a local timestamp, appended to a file.
//
// Off unless the preference "debugLogging" is true, which is read anew for every message. A line reads
// "yyyy-MM-dd HH:mm:ss.SSS", two blanks, the message, a line feed. The file is opened and closed for each
// line, so that it can be moved away at any time; it never grows on its own and is never cut. Threads:
// `wplog` from any thread; it never waits for the disk. Lines appear in the order in which they were logged.
// Failure: silent; a line that cannot be written is dropped.
#pragma once

#include "platform/Defaults.h"
#include "platform/Queues.h"

#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace skylet {

class DiagnosticsLog {
  public:
    using PathProvider = std::function<std::string()>;

    // `path` is called at most once, on the log's queue, when the first line is written; it may create
    // directories. Destroying the log writes what was logged before.
    DiagnosticsLog(const platform::Defaults& defaults, platform::SerialQueueFactory& queues,
                   PathProvider path);

    [[nodiscard]] bool isEnabled() const;
    // Logs regardless of the preference; `wplog` is the way in for messages.
    void append(std::chrono::system_clock::time_point time, std::string message);

  private:
    void write(std::chrono::system_clock::time_point time, const std::string& message);

    const platform::Defaults& defaults_;
    platform::SerialQueueFactory& queues_;
    PathProvider path_;
    // Both belong to wpLogQueue, which makes them when it writes the first line.
    std::optional<std::string> wpLogPath;
    QString wpLogFmt;
    std::mutex creation_; // the queue is made by whichever thread logs first
    // Last, so that its destruction finds everything that pending lines use.
    std::unique_ptr<platform::SerialQueue> wpLogQueue;
};

// Logs what `message`, a function without arguments that returns the text, answers. It is called only when
// logging is on, on the calling thread.
template <class Message>
void wplog(DiagnosticsLog& log, Message&& message) {
    if (!log.isEnabled()) {
        return;
    }
    const auto time = std::chrono::system_clock::now();
    log.append(time, message());
}

} // namespace skylet
