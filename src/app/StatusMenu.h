// What the status item's menu offers.
//
// Threads: main thread.
#pragma once

#include "pinning/PinnedWindow.h"
#include "platform/Menu.h"
#include "windows/ForeignWindow.h"

#include <functional>
#include <optional>
#include <unordered_set>

namespace skylet {

// What the items do; each item carries a copy with the window that it stands for.
struct StatusMenuActions {
    std::function<void()> openAbout;
    std::function<void()> openUpdatesPage;
    std::function<void(const ForeignWindow&)> toggleFrontmost;
    std::function<void(platform::WindowID)> unpinMenuItem;
    std::function<void()> unpinAllAction;
    std::function<void()> openSettings;
    std::function<void()> quit;
};

namespace StatusMenu {

// `frontmost` is the window that was in front before the menu opened.
[[nodiscard]] platform::Menu build(const std::optional<ForeignWindow>& frontmost,
                                   const std::unordered_set<PinnedWindow>& pinned,
                                   const StatusMenuActions& actions);

} // namespace StatusMenu

} // namespace skylet
