// Running applications and what the desktop does with them.
//
// Threads: main thread; notices are delivered there, never inside a call. Failure: empty optionals, false.
#pragma once

#include "platform/Subscription.h"
#include "platform/Types.h"

#include <functional>
#include <optional>
#include <string>

namespace skylet::platform {

struct RunningApplication {
    ProcessID processIdentifier = 0;
    std::optional<std::string> localizedName;
};

class Workspace {
  public:
    // The notice's application, or nothing when the notice carries none.
    using ApplicationNotice = std::function<void(const std::optional<RunningApplication>&)>;

    virtual ~Workspace() = default;

    [[nodiscard]] virtual ProcessID ownProcessIdentifier() const = 0;
    [[nodiscard]] virtual std::optional<RunningApplication> frontmostApplication() = 0;
    [[nodiscard]] virtual std::optional<RunningApplication> runningApplication(ProcessID pid) = 0;
    // Brings the application forward, with the window that was raised last in front.
    virtual bool activate(ProcessID pid) = 0;

    [[nodiscard]] virtual Subscription observeDidActivateApplication(ApplicationNotice notice) = 0;
    [[nodiscard]] virtual Subscription observeDidTerminateApplication(ApplicationNotice notice) = 0;

    virtual bool openURL(const std::string& url) = 0;

    // The version gate: whether a click on an overlay has to switch to the real window because posted clicks
    // do not reach background windows (system version 27.0 or later on macOS).
    [[nodiscard]] virtual bool isSystemVersion27OrLater() const = 0;
};

} // namespace skylet::platform
