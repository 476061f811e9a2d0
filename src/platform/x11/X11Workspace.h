// Running applications on X11: an application is a process that owns windows.
//
// Threads: main thread.
#pragma once

#include "platform/Queues.h"
#include "platform/Workspace.h"
#include "platform/qt/Observers.h"
#include "platform/x11/ActivationWatch.h"
#include "platform/x11/ActiveWindow.h"
#include "platform/x11/ApplicationNames.h"
#include "platform/x11/ProcessWatcher.h"
#include "platform/x11/RaisedWindows.h"

#include <unordered_map>

namespace skylet::platform::x11 {

class X11Workspace : public Workspace {
  public:
    // `raised` tells which window to bring forward with an application.
    X11Workspace(Connection& connection, MainQueue& mainQueue, SerialQueueFactory& queues,
                 RaisedWindows& raised);

    [[nodiscard]] ProcessID ownProcessIdentifier() const override;
    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() override;
    // From here on its end is told.
    [[nodiscard]] std::optional<RunningApplication> runningApplication(ProcessID pid) override;
    bool activate(ProcessID pid) override;

    [[nodiscard]] Subscription observeDidActivateApplication(ApplicationNotice notice) override {
        return activated_.add(std::move(notice));
    }
    [[nodiscard]] Subscription observeDidTerminateApplication(ApplicationNotice notice) override {
        return terminated_.add(std::move(notice));
    }

    bool openURL(const std::string& url) override;
    // Posted clicks reach background windows on X11. $SKYLET_SYSTEM_VERSION, for example 27.0, overrides that
    // for development; read once.
    [[nodiscard]] bool isSystemVersion27OrLater() const override { return isVersion27OrLater_; }

  private:
    using Notices = qt::Observers<const std::optional<RunningApplication>&>;

    [[nodiscard]] ActiveClientReader::Client activeClient();
    [[nodiscard]] RunningApplication application(ProcessID pid, xcb_window_t window);
    [[nodiscard]] std::vector<xcb_window_t> windowsOf(ProcessID pid, const ClientWindows& clients);
    xcb_window_t checkActivation();
    void handleTermination(ProcessID pid);

    Connection& connection_;
    RaisedWindows& raised_;
    bool isVersion27OrLater_;
    ApplicationNames names_;
    ProcessWatcher processes_;
    std::unordered_map<ProcessID, xcb_window_t> lastActive_; // each application's last active window
    std::optional<ProcessID> frontmost_;                     // as last told
    Notices activated_;
    Notices terminated_;
    Subscription clientList_;
    ActiveClientReader activeReader_;
    ActivationWatch activation_;
};

} // namespace skylet::platform::x11
