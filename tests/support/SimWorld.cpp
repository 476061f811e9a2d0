#include "support/SimWorld.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace skylet::sim {

using platform::AXElementRef;
using platform::AXResult;
using platform::AXValue;
using platform::RunningApplication;
using platform::WindowID;

namespace AXError = platform::AXError;

namespace {

struct SimElement final : platform::AXElement {
    SimElement(platform::ProcessID owner, WindowID window, SimNodeRef content, double seconds)
        : pid(owner)
        , windowID(window)
        , node(std::move(content))
        , timeout(seconds) {}
    platform::ProcessID pid;
    WindowID windowID; // 0: the application, which has no node
    SimNodeRef node;
    double timeout;
};

SimElement& real(const AXElementRef& element) {
    return dynamic_cast<SimElement&>(*element);
}

template <class T>
AXValue known(const std::optional<T>& value) {
    return value ? AXValue(*value) : AXValue();
}

// Nothing for what such an element does not have.
std::optional<AXValue> read(const SimElement& element, std::string_view attribute) {
    const auto part = [&element](const SimNodeRef& node) -> AXElementRef {
        return std::make_shared<SimElement>(element.pid, element.windowID, node, element.timeout);
    };
    const SimNode& node = *element.node;
    if (attribute == "AXChildren") {
        std::vector<AXElementRef> children(node.children.size());
        std::ranges::transform(node.children, children.begin(), part);
        return children;
    }
    if (attribute == "AXVerticalScrollBar") {
        return node.verticalBar == nullptr ? AXValue() : part(node.verticalBar);
    }
    return attribute == "AXRole"       ? std::optional<AXValue>(node.role)
           : attribute == "AXTitle"    ? known(node.title)
           : attribute == "AXPosition" ? known(node.position)
           : attribute == "AXSize"     ? known(node.size)
           : attribute == "AXValue"    ? known(node.value)
           : attribute == "AXMinValue" ? known(node.minimum)
           : attribute == "AXMaxValue" ? std::optional<AXValue>(known(node.maximum))
                                       : std::nullopt;
}

} // namespace

SimWindow* SimWorld::find(WindowID windowID) {
    const auto found = std::ranges::find(windows, windowID, &SimWindow::id);
    return found == windows.end() ? nullptr : &*found;
}

std::optional<RunningApplication> SimWorld::running(platform::ProcessID pid) const {
    const auto found = applications.find(pid);
    return found == applications.end() ? std::nullopt
                                       : std::optional(RunningApplication{
                                             .processIdentifier = pid, .localizedName = found->second.name});
}

std::optional<std::vector<platform::WindowEntry>> SimWindowServer::copyWindowList(std::uint32_t options,
                                                                                  WindowID relativeTo) {
    ++copies;
    if (listFails) {
        return std::nullopt;
    }
    const bool single = (options & platform::WindowListOption::includingWindow) != 0;
    const bool onScreenOnly = (options & platform::WindowListOption::onScreenOnly) != 0;
    std::vector<platform::WindowEntry> entries;
    for (const SimWindow& window : world_.windows) {
        if (single ? window.id() == relativeTo : window.onScreen || !onScreenOnly) {
            entries.push_back(window.entry);
        }
    }
    return entries;
}

AXElementRef SimAccessibility::createApplication(platform::ProcessID pid) {
    constexpr double defaultTimeout = 6.0;
    return std::make_shared<SimElement>(pid, 0, nullptr, defaultTimeout);
}

// The error that a call to the element's application ends with before it is looked at.
int SimAccessibility::reach(const AXElementRef& element) {
    const SimElement& target = real(element);
    if (!trusted) {
        return AXError::apiDisabled;
    }
    const auto application = world_.applications.find(target.pid);
    if (application == world_.applications.end()) {
        return AXError::invalidUIElement;
    }
    const double seconds = application->second.isHung ? target.timeout
                           : target.node == nullptr   ? 0.0
                                                      : target.node->answerSeconds;
    waited += std::min(seconds, target.timeout);
    return seconds < target.timeout ? AXError::success : AXError::cannotComplete;
}

AXResult SimAccessibility::copyAttributeValue(const AXElementRef& element, std::string_view attribute) {
    const SimElement& target = real(element);
    if (const int error = reach(element); error != AXError::success) {
        return {.error = error, .value = {}};
    }
    std::optional<AXValue> value;
    if (target.node != nullptr) {
        ++target.node->reads;
        value = read(target, attribute);
    } else if (attribute == "AXFocusedWindow" || attribute == "AXWindows") {
        const WindowID focused = world_.applications[target.pid].focusedWindow;
        value = AXValue();
        std::vector<AXElementRef> windows;
        for (const SimWindow& window : world_.windows) {
            if (window.entry.ownerPID == std::int64_t{target.pid}) {
                windows.push_back(
                    std::make_shared<SimElement>(target.pid, window.id(), window.ax, target.timeout));
                value = window.id() == focused ? AXValue(windows.back()) : *value;
            }
        }
        value = attribute == "AXWindows" ? AXValue(windows) : *value;
    }
    const int error = !value                                           ? AXError::attributeUnsupported
                      : std::holds_alternative<std::monostate>(*value) ? AXError::noValue
                                                                       : AXError::success;
    return {.error = error, .value = value.value_or(AXValue())};
}

int SimAccessibility::setAttributeValue(const AXElementRef& element, std::string_view attribute,
                                        double value) {
    EXPECT_EQ(attribute, "AXValue");
    SimNode& node = *real(element).node;
    const int unreached = reach(element);
    const int error = unreached == AXError::success ? node.setError : unreached;
    if (error == AXError::success) {
        ++node.writes;
        node.value = node.ignoresWrites ? node.value : value;
    }
    return error;
}

std::pair<int, bool> SimAccessibility::isAttributeSettable(const AXElementRef& element,
                                                           std::string_view attribute) {
    EXPECT_EQ(attribute, "AXValue");
    const int unreached = reach(element);
    const SimNode& node = *real(element).node;
    return {unreached == AXError::success ? node.settableError : unreached, node.isSettable};
}

void SimAccessibility::setMessagingTimeout(const AXElementRef& element, double seconds) {
    real(element).timeout = seconds;
}

int SimAccessibility::performAction(const AXElementRef& element, std::string_view action) {
    EXPECT_EQ(action, "AXRaise");
    raised.push_back(real(element).windowID);
    return AXError::success;
}

bool SimWorkspace::activate(platform::ProcessID pid) {
    activated.push_back(pid);
    world_.frontmost = pid;
    postDidActivate(world_.running(pid));
    return true;
}

void SimWorkspace::postDidActivate(std::optional<RunningApplication> application) {
    mainQueue_.async([this, application = std::move(application)] { didActivate_.post(application); });
}

void SimWorkspace::postDidTerminate(std::optional<RunningApplication> application) {
    mainQueue_.async([this, application = std::move(application)] { didTerminate_.post(application); });
}

} // namespace skylet::sim
