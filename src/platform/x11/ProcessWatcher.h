// Tells when processes end.
//
// The kernel's process descriptors tell at once and are not fooled by reused pids. Where there are none, the
// owner calls `checkAll` at moments when a process is likely to have ended.
//
// Threads: main thread. Failure: a process that cannot be watched is only seen by `checkAll`.
#pragma once

#include "platform/Types.h"

#include <QObject>

#include <functional>
#include <memory>
#include <unordered_map>

namespace skylet::platform::x11 {

class ProcessWatcher {
  public:
    // `ended` is called once for each watched process, from the event loop or from `checkAll`.
    explicit ProcessWatcher(std::function<void(ProcessID)> ended);
    ProcessWatcher(const ProcessWatcher&) = delete;
    ProcessWatcher& operator=(const ProcessWatcher&) = delete;
    ~ProcessWatcher();

    // Watching one that is watched already changes nothing. One that does not exist is not watched.
    void watch(ProcessID pid);
    // Whether every watched process tells of its end by itself.
    [[nodiscard]] bool needsChecks() const { return unwatchable_ > 0; }
    void checkAll();

  private:
    class Watch;
    void end(ProcessID pid);

    std::function<void(ProcessID)> ended_;
    QObject notifiers_; // parent of those that are let go of
    std::unordered_map<ProcessID, std::unique_ptr<Watch>> watches_;
    int unwatchable_ = 0;
};

[[nodiscard]] bool isProcessAlive(ProcessID pid);

} // namespace skylet::platform::x11
