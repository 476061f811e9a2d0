// The applications and windows of the simulated desktop, and the interfaces through which they are seen.
#pragma once

#include "foundation/Notice.h"
#include "platform/Accessibility.h"
#include "platform/Screens.h"
#include "platform/WindowServer.h"
#include "platform/Workspace.h"
#include "support/SimContent.h"
#include "support/SimQueues.h"

#include <list>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace skylet::sim {

struct SimWindow {
    platform::WindowEntry entry; // as the window server lists it; take keys out to make them missing
    bool onScreen = true;        // false: minimised, hidden or on another desktop
    SimNodeRef ax = std::make_shared<SimNode>(); // what accessibility says

    [[nodiscard]] platform::WindowID id() const {
        return static_cast<platform::WindowID>(entry.number.value_or(0));
    }
};

struct SimApplication {
    std::optional<std::string> name;
    platform::WindowID focusedWindow = 0;
    bool isHung = false; // answers nothing
};

struct SimWorld {
    static constexpr platform::ProcessID ownPID = 77;

    std::list<SimWindow> windows; // front to back
    std::map<platform::ProcessID, SimApplication> applications;
    std::optional<platform::ProcessID> frontmost;
    platform::WindowID lastWindowID = 100;

    [[nodiscard]] SimWindow* find(platform::WindowID windowID);
    [[nodiscard]] std::optional<platform::RunningApplication> running(platform::ProcessID pid) const;
};

struct SimWindowServer final : platform::WindowServer {
    explicit SimWindowServer(SimWorld& world) : world_(world) {}
    bool listFails = false;
    int copies = 0;

    std::optional<std::vector<platform::WindowEntry>> copyWindowList(std::uint32_t options,
                                                                     platform::WindowID relativeTo) override;
    int normalWindowLevel() const override { return 0; }

    SimWorld& world_;
};

struct SimAccessibility final : platform::Accessibility {
    explicit SimAccessibility(SimWorld& world) : world_(world) {}
    bool trusted = true;
    std::function<void()> onPrompt = [] {
    };
    std::vector<platform::WindowID> raised;
    double waited = 0; // for other applications, in seconds

    bool isProcessTrusted() override { return trusted; }
    bool isProcessTrustedWithPrompt() override {
        onPrompt();
        return trusted;
    }
    platform::AXElementRef createApplication(platform::ProcessID pid) override;
    platform::AXResult copyAttributeValue(const platform::AXElementRef& element,
                                          std::string_view attribute) override;
    int setAttributeValue(const platform::AXElementRef& element, std::string_view attribute,
                          double value) override;
    std::pair<int, bool> isAttributeSettable(const platform::AXElementRef& element,
                                             std::string_view attribute) override;
    int performAction(const platform::AXElementRef& element, std::string_view action) override;
    // Holds for everything reached through the element, too.
    void setMessagingTimeout(const platform::AXElementRef& element, double seconds) override;

    [[nodiscard]] int reach(const platform::AXElementRef& element);

    SimWorld& world_;
};

struct SimWorkspace final : platform::Workspace {
    SimWorkspace(SimWorld& world, SimMainQueue& mainQueue) : world_(world), mainQueue_(mainQueue) {}
    bool version27 = false;
    std::vector<platform::ProcessID> activated; // on this program's request

    void postDidActivate(std::optional<platform::RunningApplication> application);
    void postDidTerminate(std::optional<platform::RunningApplication> application);

    platform::ProcessID ownProcessIdentifier() const override { return SimWorld::ownPID; }
    std::optional<platform::RunningApplication> frontmostApplication() override {
        return world_.frontmost ? world_.running(*world_.frontmost) : std::nullopt;
    }
    std::optional<platform::RunningApplication> runningApplication(platform::ProcessID pid) override {
        return world_.running(pid);
    }
    bool activate(platform::ProcessID pid) override;
    platform::Subscription observeDidActivateApplication(ApplicationNotice notice) override {
        return didActivate_.observe(std::move(notice));
    }
    platform::Subscription observeDidTerminateApplication(ApplicationNotice notice) override {
        return didTerminate_.observe(std::move(notice));
    }
    std::vector<std::string> openedURLs;
    bool openURL(const std::string& url) override {
        openedURLs.push_back(url);
        return true;
    }
    bool isSystemVersion27OrLater() const override { return version27; }

    using Notices = Notice<std::optional<platform::RunningApplication>>;
    SimWorld& world_;
    SimMainQueue& mainQueue_;
    Notices didActivate_;
    Notices didTerminate_;
};

struct SimScreens final : platform::Screens {
    std::vector<platform::Screen> all{
        {.frame = {0, 0, 1920, 1080}, .visibleFrame = {}, .backingScaleFactor = 1}};

    std::vector<platform::Screen> screens() override { return all; }
    std::optional<platform::Screen> mainScreen() override {
        return all.empty() ? std::nullopt : std::optional(all.front());
    }
    platform::Subscription observeDidChangeParameters(std::function<void()> notice) override {
        return didChange_.observe(std::move(notice));
    }
    void postDidChangeParameters() { didChange_.post(); }

    Notice<> didChange_;
};

} // namespace skylet::sim
