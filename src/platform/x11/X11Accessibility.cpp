#include "platform/x11/X11Accessibility.h"

#include "platform/x11/ClientGeometry.h"
#include "platform/x11/ClientPid.h"
#include "platform/x11/ProcessWatcher.h"
#include "platform/x11/WindowActivation.h"
#include "platform/x11/X11Elements.h"

#include <utility>

namespace skylet::platform::x11 {

namespace {

AXResult failed(int error) {
    return {error, {}};
}

template <class T>
AXResult succeeded(T value) {
    return {AXError::success, std::move(value)};
}

} // namespace

X11Accessibility::X11Accessibility(Connection& connection, MainQueue& mainQueue,
                                   qt::AccessibilityTrust& trust, RaisedWindows& raised)
    : connection_(connection)
    , mainQueue_(mainQueue)
    , trust_(trust)
    , raised_(raised)
    , activeReader_(connection) {}

bool X11Accessibility::isProcessTrustedWithPrompt() {
    const bool trusted = trust_.isTrusted();
    if (!trusted) {
        trust_.prompt();
    }
    return trusted;
}

AXElementRef X11Accessibility::createApplication(ProcessID pid) {
    return std::make_shared<ApplicationElement>(pid);
}

AXResult X11Accessibility::copyAttributeValue(const AXElementRef& element, std::string_view attribute) {
    AXResult result = failed(AXError::invalidUIElement);
    if (const auto* application = dynamic_cast<const ApplicationElement*>(element.get())) {
        result = readApplication(application->pid, attribute);
    } else if (const auto* window = dynamic_cast<const WindowElement*>(element.get())) {
        result = readWindow(window->window, attribute);
    }
    passOnEvents();
    return result;
}

// Waiting for a reply on another thread may take events off the socket, and the main loop would not wake up
// for them. Where no loop waits for them at all they must not pile up.
void X11Accessibility::passOnEvents() {
    if (!connection_.isWatched()) {
        connection_.dispatch();
    } else if (std::this_thread::get_id() != mainThread_) {
        mainQueue_.async([this] { connection_.dispatch(); });
    }
}

AXResult X11Accessibility::readApplication(ProcessID pid, std::string_view attribute) {
    if (!isProcessAlive(pid)) {
        return failed(AXError::invalidUIElement);
    }
    if (attribute == "AXRole") {
        return succeeded(std::string("AXApplication"));
    }
    if (attribute == "AXFocusedWindow") {
        const auto active = activeReader_.read();
        if (active.pid != pid) {
            return failed(AXError::noValue);
        }
        return succeeded<AXElementRef>(std::make_shared<WindowElement>(pid, active.window));
    }
    if (attribute == "AXWindows") {
        const auto clients = readClientWindows(connection_).windows;
        const auto pids = clientPids(connection_, clients);
        std::vector<AXElementRef> windows;
        for (const xcb_window_t client : clients) {
            if (const auto it = pids.find(client); it != pids.end() && it->second == pid) {
                windows.push_back(std::make_shared<WindowElement>(pid, client));
            }
        }
        return succeeded(std::move(windows));
    }
    return failed(AXError::attributeUnsupported);
}

AXResult X11Accessibility::readWindow(xcb_window_t window, std::string_view attribute) {
    if (attribute == "AXPosition" || attribute == "AXSize") {
        const auto geometry = PendingClientGeometry(connection_, window).read();
        if (!geometry) {
            return failed(AXError::invalidUIElement);
        }
        return attribute == "AXSize" ? succeeded(geometry->bounds.size())
                                     : succeeded(geometry->bounds.origin());
    }
    if (attribute == "AXTitle") {
        auto name = askText(connection_, window, connection_.atoms().NET_WM_NAME);
        auto oldName = askText(connection_, window, XCB_ATOM_WM_NAME);
        if (!name) {
            return failed(AXError::invalidUIElement);
        }
        auto title = text(name, connection_.atoms());
        return succeeded(title ? *title : text(oldName, connection_.atoms()).value_or(""));
    }
    if (attribute == "AXRole") {
        return succeeded(std::string("AXWindow"));
    }
    return failed(attribute == "AXChildren" ? AXError::noValue : AXError::attributeUnsupported);
}

int X11Accessibility::setAttributeValue(const AXElementRef& /*element*/, std::string_view /*attribute*/,
                                        double /*value*/) {
    return AXError::attributeUnsupported;
}

std::pair<int, bool> X11Accessibility::isAttributeSettable(const AXElementRef& /*element*/,
                                                           std::string_view /*attribute*/) {
    return {AXError::attributeUnsupported, false};
}

int X11Accessibility::performAction(const AXElementRef& element, std::string_view action) {
    const auto* window = dynamic_cast<const WindowElement*>(element.get());
    if (!window || action != "AXRaise") {
        return AXError::actionUnsupported;
    }
    if (!raiseWindow(connection_, window->window)) {
        return AXError::invalidUIElement;
    }
    raised_.record(window->pid, window->window);
    return AXError::success;
}

} // namespace skylet::platform::x11
