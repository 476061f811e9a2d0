// Accessibility elements down to the scroll bars: processes and windows from the X server, what can be
// scrolled in a window from the accessibility bus.
//
// A window's children are its scroll areas, however deep they are in it; they have no children themselves.
// Values of bars go from 0 (top) to 1 (end), whatever the toolkit counts in.
//
// Threads: one thread, which need not run an event loop; the connection must be that thread's own. Calls to
// another application take 0.25 s at most whatever timeout is set. Failure: error codes.
#pragma once

#include "platform/Accessibility.h"
#include "platform/Queues.h"
#include "platform/qt/AccessibilityTrust.h"
#include "platform/x11/AtspiBars.h"
#include "platform/x11/AtspiBus.h"
#include "platform/x11/Connection.h"
#include "platform/x11/RaisedWindows.h"
#include "platform/x11/X11Accessibility.h"
#include "platform/x11/X11Elements.h"

#include <QDBusConnection>

namespace skylet::platform::x11 {

class AtspiAccessibility final : public Accessibility {
  public:
    // May be made and destroyed on another thread than it is used on.
    AtspiAccessibility(Connection& connection, MainQueue& mainQueue, qt::AccessibilityTrust& trust,
                       RaisedWindows& raised, QDBusConnection sessionBus);

    [[nodiscard]] bool isProcessTrusted() override { return windows_.isProcessTrusted(); }
    bool isProcessTrustedWithPrompt() override { return windows_.isProcessTrustedWithPrompt(); }

    [[nodiscard]] AXElementRef createApplication(ProcessID pid) override {
        return windows_.createApplication(pid);
    }
    [[nodiscard]] AXResult copyAttributeValue(const AXElementRef& element,
                                              std::string_view attribute) override;
    int setAttributeValue(const AXElementRef& element, std::string_view attribute, double value) override;
    [[nodiscard]] std::pair<int, bool> isAttributeSettable(const AXElementRef& element,
                                                           std::string_view attribute) override;
    int performAction(const AXElementRef& element, std::string_view action) override {
        return windows_.performAction(element, action);
    }
    void setMessagingTimeout(const AXElementRef& /*element*/, double /*seconds*/) override {}

  private:
    [[nodiscard]] AXResult readChildren(const AXElementRef& element, const WindowElement& window);

    Connection& connection_;
    X11Accessibility windows_;
    AtspiBus bus_;
    AtspiBars bars_{bus_};
};

} // namespace skylet::platform::x11
