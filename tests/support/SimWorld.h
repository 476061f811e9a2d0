// The applications and windows of the simulated desktop, and the interfaces through which they are seen.
#pragma once

#include "foundation/Notice.h"
#include "platform/Accessibility.h"
#include "platform/Screens.h"
#include "platform/WindowServer.h"
#include "platform/Workspace.h"
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
    // What accessibility says; absent: that attribute cannot be read.
    std::optional<std::string> axTitle;
    std::optional<platform::Point> axPosition;
    std::optional<platform::Size> axSize;
};

struct SimApplication {
    std::optional<std::string> name;
    platform::WindowID focusedWindow = 0;
};

struct SimWorld {
    static constexpr platform::ProcessID ownPID = 77;

    std::list<SimWindow> windows; // front to back
    std::map<platform::ProcessID, SimApplication> applications;
    std::optional<platform::ProcessID> frontmost;
    platform::WindowID lastWindowID = 100;

    [[nodiscard]] SimWindow* find(platform::WindowID windowID);
};

class SimWindowServer final : public platform::WindowServer {
  public:
    explicit SimWindowServer(SimWorld& world) : world_(world) {}
    bool listFails = false;
    int copies = 0;

    [[nodiscard]] std::optional<std::vector<platform::WindowEntry>>
    copyWindowList(std::uint32_t options, platform::WindowID relativeTo) override;
    [[nodiscard]] int normalWindowLevel() const override { return 0; }

  private:
    SimWorld& world_;
};

class SimAccessibility final : public platform::Accessibility {
  public:
    explicit SimAccessibility(SimWorld& world) : world_(world) {}
    bool trusted = true;
    std::function<void()> onPrompt = [] {
    };
    std::vector<platform::WindowID> raised;

    [[nodiscard]] bool isProcessTrusted() override { return trusted; }
    bool isProcessTrustedWithPrompt() override;
    [[nodiscard]] platform::AXElementRef createApplication(platform::ProcessID pid) override;
    [[nodiscard]] platform::AXResult copyAttributeValue(const platform::AXElementRef& element,
                                                        std::string_view attribute) override;
    int setAttributeValue(const platform::AXElementRef& element, std::string_view attribute,
                          double value) override;
    [[nodiscard]] std::pair<int, bool> isAttributeSettable(const platform::AXElementRef& element,
                                                           std::string_view attribute) override;
    int performAction(const platform::AXElementRef& element, std::string_view action) override;
    void setMessagingTimeout(const platform::AXElementRef& /*element*/, double /*seconds*/) override {}

  private:
    SimWorld& world_;
};

class SimWorkspace final : public platform::Workspace {
  public:
    SimWorkspace(SimWorld& world, SimMainQueue& mainQueue) : world_(world), mainQueue_(mainQueue) {}
    bool version27 = false;
    std::vector<platform::ProcessID> activated; // on this program's request

    void postDidActivate(std::optional<platform::RunningApplication> application);
    void postDidTerminate(std::optional<platform::RunningApplication> application);

    [[nodiscard]] platform::ProcessID ownProcessIdentifier() const override { return SimWorld::ownPID; }
    [[nodiscard]] std::optional<platform::RunningApplication> frontmostApplication() override;
    [[nodiscard]] std::optional<platform::RunningApplication>
    runningApplication(platform::ProcessID pid) override;
    bool activate(platform::ProcessID pid) override;
    [[nodiscard]] platform::Subscription observeDidActivateApplication(ApplicationNotice notice) override;
    [[nodiscard]] platform::Subscription observeDidTerminateApplication(ApplicationNotice notice) override;
    std::vector<std::string> openedURLs;
    bool openURL(const std::string& url) override {
        openedURLs.push_back(url);
        return true;
    }
    [[nodiscard]] bool isSystemVersion27OrLater() const override { return version27; }

  private:
    using Notices = Notice<std::optional<platform::RunningApplication>>;
    SimWorld& world_;
    SimMainQueue& mainQueue_;
    Notices didActivate_;
    Notices didTerminate_;
};

class SimScreens final : public platform::Screens {
  public:
    std::vector<platform::Screen> all{
        {.frame = {0, 0, 1920, 1080}, .visibleFrame = {}, .backingScaleFactor = 1}};

    [[nodiscard]] std::vector<platform::Screen> screens() override { return all; }
    [[nodiscard]] std::optional<platform::Screen> mainScreen() override {
        return all.empty() ? std::nullopt : std::optional(all.front());
    }
    [[nodiscard]] platform::Subscription observeDidChangeParameters(std::function<void()> notice) override {
        return didChange_.observe(std::move(notice));
    }
    void postDidChangeParameters() { didChange_.post(); }

  private:
    Notice<> didChange_;
};

} // namespace skylet::sim
