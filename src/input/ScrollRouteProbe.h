// Tells, in the log, whether a window can be scrolled through accessibility: moves the bar of its first
// scroll area by a tenth and looks whether it moved and nothing else did. The bar stays where it was moved
// to.
//
// Threads: the scroller's queue. Failure: each way to fail has its log line.
#pragma once

#include "foundation/DiagnosticsLog.h"
#include "platform/Accessibility.h"
#include "platform/Types.h"
#include "platform/WindowServer.h"

#include <optional>
#include <string>

namespace skylet {

class ScrollRouteProbe {
  public:
    // A bar that was written to.
    struct Attempt {
        platform::AXElementRef bar;
        double valueBefore = 0;
        std::string frontmostBefore;
    };

    ScrollRouteProbe(platform::Accessibility& accessibility, platform::WindowServer& windowServer,
                     DiagnosticsLog& log)
        : accessibility_(accessibility)
        , windowServer_(windowServer)
        , log_(log) {}

    // Moves the bar. Nothing when there is no bar to move. `frontmost` is the name of the frontmost
    // application.
    [[nodiscard]] std::optional<Attempt> run(platform::ProcessID pid, platform::WindowID windowID,
                                             const std::string& frontmost);
    // Says what came of it. To be called some time after the attempt.
    void conclude(const Attempt& attempt, const std::string& frontmost);

  private:
    [[nodiscard]] platform::AXElementRef findBar(platform::ProcessID pid, platform::WindowID windowID);
    void say(const std::string& message);

    platform::Accessibility& accessibility_;
    platform::WindowServer& windowServer_;
    DiagnosticsLog& log_;
};

} // namespace skylet
