// What the user calls the application of a window.
//
// The desktop entries are read on a worker thread at the start and again when a directory of them changed;
// until then names come from what windows and processes say about themselves.
//
// Threads: main thread. Failure: nothing when neither the window nor the process tells a name.
#pragma once

#include "platform/Queues.h"
#include "platform/Types.h"
#include "platform/x11/Connection.h"
#include "platform/x11/DesktopEntries.h"

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace skylet::platform::x11 {

// Where names come from.
struct NameSources {
    std::vector<std::string> directories = DesktopEntries::defaultDirectories();
    std::string locale = DesktopEntries::defaultLocale();
};

class ApplicationNames {
  public:
    ApplicationNames(Connection& connection, MainQueue& mainQueue, SerialQueueFactory& queues,
                     NameSources sources = {});
    ApplicationNames(const ApplicationNames&) = delete;
    ApplicationNames& operator=(const ApplicationNames&) = delete;
    ~ApplicationNames();

    // `window` is a window of the process, or none. One round trip, none for a process asked before.
    [[nodiscard]] std::optional<std::string> name(ProcessID pid, xcb_window_t window);
    // Whether `name` needs no window.
    [[nodiscard]] bool isKnown(ProcessID pid) const { return known_.contains(pid); }
    void forget(ProcessID pid) { known_.erase(pid); }

    // Whether the desktop entries have been read.
    [[nodiscard]] bool isReady() const { return entries_ != nullptr; }

  private:
    void refresh();
    [[nodiscard]] std::optional<std::string> find(ProcessID pid, xcb_window_t window);

    Connection& connection_;
    MainQueue& mainQueue_;
    NameSources sources_;
    std::vector<std::int64_t> times_; // of the directories when they were last read
    double lastCheck_ = 0;
    std::shared_ptr<const DesktopEntries> entries_; // null until read
    std::unordered_map<ProcessID, std::string> known_;
    std::shared_ptr<ApplicationNames*> self_; // answers of the worker that come too late find it gone
    std::unique_ptr<SerialQueue> worker_;
};

} // namespace skylet::platform::x11
