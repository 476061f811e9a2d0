// Accessibility elements backed by X windows: an application element is a process, its window elements are
// its client windows. That serves every program, whether or not its toolkit speaks an accessibility protocol.
//
// Threads: reads from any thread; the permission questions and actions on the main thread. Failure: error
// codes.
#pragma once

#include "platform/Accessibility.h"
#include "platform/Queues.h"
#include "platform/qt/AccessibilityTrust.h"
#include "platform/x11/ActiveWindow.h"
#include "platform/x11/Connection.h"
#include "platform/x11/RaisedWindows.h"

#include <thread>

namespace skylet::platform::x11 {

class X11Accessibility : public Accessibility {
  public:
    // Made on the main thread. `raised` learns which windows are raised.
    X11Accessibility(Connection& connection, MainQueue& mainQueue, qt::AccessibilityTrust& trust,
                     RaisedWindows& raised);

    [[nodiscard]] bool isProcessTrusted() override { return trust_.isTrusted(); }
    bool isProcessTrustedWithPrompt() override;

    [[nodiscard]] AXElementRef createApplication(ProcessID pid) override;
    [[nodiscard]] AXResult copyAttributeValue(const AXElementRef& element,
                                              std::string_view attribute) override;
    int setAttributeValue(const AXElementRef& element, std::string_view attribute, double value) override;
    [[nodiscard]] std::pair<int, bool> isAttributeSettable(const AXElementRef& element,
                                                           std::string_view attribute) override;
    int performAction(const AXElementRef& element, std::string_view action) override;
    // Nothing here waits for another application, only for the X server.
    void setMessagingTimeout(const AXElementRef& /*element*/, double /*seconds*/) override {}

  private:
    [[nodiscard]] AXResult readApplication(ProcessID pid, std::string_view attribute);
    [[nodiscard]] AXResult readWindow(xcb_window_t window, std::string_view attribute);
    void passOnEvents();

    Connection& connection_;
    MainQueue& mainQueue_;
    qt::AccessibilityTrust& trust_;
    RaisedWindows& raised_;
    ActiveClientReader activeReader_;
    std::thread::id mainThread_ = std::this_thread::get_id();
};

} // namespace skylet::platform::x11
