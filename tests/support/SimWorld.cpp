#include "support/SimWorld.h"

#include <algorithm>

namespace skylet::sim {

using platform::AXElementRef;
using platform::AXResult;
using platform::RunningApplication;
using platform::WindowID;

namespace {

namespace AXError = platform::AXError;

// What calls wait at most where nothing else was said.
constexpr double defaultTimeout = 6.0;

struct SimElement final : platform::AXElement {
    SimElement(platform::ProcessID owner, WindowID window) : pid(owner), windowID(window) {}
    SimElement(const SimElement& parent, SimNodeRef content)
        : pid(parent.pid)
        , windowID(parent.windowID)
        , node(std::move(content))
        , timeout(parent.timeout) {}
    platform::ProcessID pid;
    WindowID windowID; // 0: the application
    SimNodeRef node;   // null: the window itself
    double timeout = defaultTimeout;
};

template <class T>
AXResult answer(const std::optional<T>& value) {
    return value ? AXResult{.error = AXError::success, .value = *value}
                 : AXResult{.error = AXError::noValue, .value = {}};
}

AXResult childrenOf(const SimElement& element, const SimNode& node) {
    std::vector<AXElementRef> children;
    for (const SimNodeRef& child : node.children) {
        children.push_back(std::make_shared<SimElement>(element, child));
    }
    return {.value = children};
}

AXResult readNode(const SimElement& element, std::string_view attribute) {
    const SimNode& node = *element.node;
    if (attribute == "AXRole") {
        return {.value = node.role};
    }
    if (attribute == "AXChildren") {
        return childrenOf(element, node);
    }
    if (attribute == "AXVerticalScrollBar") {
        return node.verticalBar == nullptr
                   ? AXResult{.error = AXError::noValue, .value = {}}
                   : AXResult{.value = AXElementRef(std::make_shared<SimElement>(element, node.verticalBar))};
    }
    return attribute == "AXPosition" ? answer(node.frame ? std::optional(node.frame->origin()) : std::nullopt)
           : attribute == "AXSize"   ? answer(node.frame ? std::optional(node.frame->size()) : std::nullopt)
           : attribute == "AXValue"  ? answer(node.value)
           : attribute == "AXMinValue" ? answer(node.minimum)
           : attribute == "AXMaxValue" ? answer(node.maximum)
                                       : AXResult{.error = AXError::attributeUnsupported, .value = {}};
}

} // namespace

SimWindow* SimWorld::find(WindowID windowID) {
    const auto found = std::ranges::find_if(
        windows, [&](const SimWindow& window) { return window.entry.number == std::int64_t{windowID}; });
    return found == windows.end() ? nullptr : &*found;
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
        if (single ? window.entry.number == std::int64_t{relativeTo} : window.onScreen || !onScreenOnly) {
            entries.push_back(window.entry);
        }
    }
    return entries;
}

bool SimAccessibility::isProcessTrustedWithPrompt() {
    onPrompt();
    return trusted;
}

AXElementRef SimAccessibility::createApplication(platform::ProcessID pid) {
    return std::make_shared<SimElement>(pid, 0);
}

AXResult SimAccessibility::copyAttributeValue(const AXElementRef& element, std::string_view attribute) {
    const auto& target = dynamic_cast<const SimElement&>(*element);
    if (const int error = reach(target); error != AXError::success) {
        return {.error = error, .value = {}};
    }
    if (target.node != nullptr) {
        ++target.node->reads;
        return readNode(target, attribute);
    }
    const auto application = world_.applications.find(target.pid);
    if (attribute == "AXFocusedWindow") {
        const WindowID focused = application->second.focusedWindow;
        return focused == 0
                   ? AXResult{.error = AXError::noValue, .value = {}}
                   : AXResult{.value = AXElementRef(std::make_shared<SimElement>(target.pid, focused))};
    }
    if (attribute == "AXWindows") {
        std::vector<AXElementRef> elements;
        for (const SimWindow& window : world_.windows) {
            if (window.entry.ownerPID == std::int64_t{target.pid}) {
                elements.push_back(std::make_shared<SimElement>(
                    target.pid, static_cast<WindowID>(window.entry.number.value_or(0))));
            }
        }
        return {.value = elements};
    }
    const SimWindow* window = world_.find(target.windowID);
    if (window == nullptr) {
        return {.error = AXError::invalidUIElement, .value = {}};
    }
    if (attribute == "AXTitle") {
        return answer(window->axTitle);
    }
    if (attribute == "AXChildren") {
        return childrenOf(target, *window->content);
    }
    return attribute == "AXPosition" ? answer(window->axPosition)
           : attribute == "AXSize"   ? answer(window->axSize)
                                     : AXResult{.error = AXError::attributeUnsupported, .value = {}};
}

int SimAccessibility::reach(const platform::AXElement& element) {
    const auto& target = dynamic_cast<const SimElement&>(element);
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

int SimAccessibility::setAttributeValue(const AXElementRef& element, std::string_view attribute,
                                        double value) {
    const auto& target = dynamic_cast<const SimElement&>(*element);
    if (const int error = reach(target); error != AXError::success) {
        return error;
    }
    if (target.node == nullptr || attribute != "AXValue") {
        return AXError::attributeUnsupported;
    }
    SimNode& node = *target.node;
    if (node.setError == AXError::success) {
        ++node.writes;
        node.value = node.ignoresWrites ? node.value : value;
    }
    return node.setError;
}

std::pair<int, bool> SimAccessibility::isAttributeSettable(const AXElementRef& element,
                                                           std::string_view attribute) {
    const auto& target = dynamic_cast<const SimElement&>(*element);
    if (const int error = reach(target); error != AXError::success) {
        return {error, false};
    }
    if (target.node == nullptr || attribute != "AXValue") {
        return {AXError::attributeUnsupported, false};
    }
    return {target.node->settableError, target.node->isSettable};
}

void SimAccessibility::setMessagingTimeout(const AXElementRef& element, double seconds) {
    dynamic_cast<SimElement&>(*element).timeout = seconds;
}

int SimAccessibility::performAction(const AXElementRef& element, std::string_view action) {
    if (action != "AXRaise") {
        return AXError::actionUnsupported;
    }
    raised.push_back(dynamic_cast<const SimElement&>(*element).windowID);
    return AXError::success;
}

std::optional<RunningApplication> SimWorkspace::frontmostApplication() {
    return world_.frontmost ? runningApplication(*world_.frontmost) : std::nullopt;
}

std::optional<RunningApplication> SimWorkspace::runningApplication(platform::ProcessID pid) {
    const auto found = world_.applications.find(pid);
    if (found == world_.applications.end()) {
        return std::nullopt;
    }
    return RunningApplication{.processIdentifier = pid, .localizedName = found->second.name};
}

bool SimWorkspace::activate(platform::ProcessID pid) {
    activated.push_back(pid);
    world_.frontmost = pid;
    postDidActivate(runningApplication(pid));
    return true;
}

void SimWorkspace::postDidActivate(std::optional<RunningApplication> application) {
    mainQueue_.async([this, application = std::move(application)] { didActivate_.post(application); });
}

void SimWorkspace::postDidTerminate(std::optional<RunningApplication> application) {
    mainQueue_.async([this, application = std::move(application)] { didTerminate_.post(application); });
}

platform::Subscription SimWorkspace::observeDidActivateApplication(ApplicationNotice notice) {
    return didActivate_.observe(std::move(notice));
}

platform::Subscription SimWorkspace::observeDidTerminateApplication(ApplicationNotice notice) {
    return didTerminate_.observe(std::move(notice));
}

} // namespace skylet::sim
