#include "app/StatusMenu.h"

#include "foundation/Text.h"

#include <QString>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace skylet::StatusMenu {

namespace {

using platform::Menu;
using platform::MenuItem;

constexpr std::size_t longestFrontmostLabel = 30;

// Canonically equivalent texts have the same key, and UTF-8 sorts by code points.
std::string sortKey(const std::string& text) {
    return QString::fromStdString(text).normalized(QString::NormalizationForm_C).toStdString();
}

std::vector<PinnedWindow> sorted(const std::unordered_set<PinnedWindow>& pinned) {
    std::vector<std::pair<std::string, PinnedWindow>> keyed;
    keyed.reserve(pinned.size());
    for (const PinnedWindow& window : pinned) {
        keyed.emplace_back(sortKey(window.displayLabel()), window);
    }
    std::ranges::stable_sort(keyed, {}, &std::pair<std::string, PinnedWindow>::first);
    std::vector<PinnedWindow> windows;
    windows.reserve(keyed.size());
    for (auto& [key, window] : keyed) {
        windows.push_back(std::move(window));
    }
    return windows;
}

MenuItem disabled(std::string identity, std::string title) {
    return {.identity = std::move(identity), .title = std::move(title), .isEnabled = false};
}

MenuItem frontmostItem(const std::optional<ForeignWindow>& window,
                       const std::unordered_set<PinnedWindow>& pinned, const StatusMenuActions& actions) {
    if (!window) {
        return disabled("frontmost", "Nessuna finestra da fissare");
    }
    const char* verb = pinned.contains(PinnedWindow(*window)) ? "Sblocca «" : "Fissa «";
    return {.identity = "frontmost:" + std::to_string(window->windowID),
            .title = verb + shortened(window->displayLabel(), longestFrontmostLabel) + "»",
            .action = [toggle = actions.toggleFrontmost, window = *window] {
                toggle(window);
            }};
}

void appendPinned(Menu& menu, const std::unordered_set<PinnedWindow>& pinned,
                  const StatusMenuActions& actions) {
    menu.push_back(MenuItem::separator("before pinned"));
    menu.push_back(disabled("pinned", "Finestre fissate"));
    for (const PinnedWindow& window : sorted(pinned)) {
        menu.push_back({.identity = "pinned:" + std::to_string(window.windowID),
                        .title = "  " + window.displayLabel(),
                        .isOn = true,
                        .action = [unpin = actions.unpinMenuItem, windowID = window.windowID] {
                            unpin(windowID);
                        }});
    }
    menu.push_back(MenuItem::separator("after pinned"));
    menu.push_back({.identity = "unpin all", .title = "Sblocca tutte", .action = actions.unpinAllAction});
}

} // namespace

Menu build(const std::optional<ForeignWindow>& frontmost, const std::unordered_set<PinnedWindow>& pinned,
           const StatusMenuActions& actions) {
    Menu menu{{.identity = "about", .title = "Informazioni su Skylet", .action = actions.openAbout},
              {.identity = "updates", .title = "Controlla aggiornamenti", .action = actions.openUpdatesPage},
              MenuItem::separator("before frontmost"),
              frontmostItem(frontmost, pinned, actions)};
    if (!pinned.empty()) {
        appendPinned(menu, pinned, actions);
    }
    menu.push_back(MenuItem::separator("before settings"));
    menu.push_back({.identity = "settings",
                    .title = "Impostazioni…",
                    .keyEquivalent = ",",
                    .action = actions.openSettings});
    menu.push_back(MenuItem::separator("before quit"));
    menu.push_back(
        {.identity = "quit", .title = "Esci da Skylet", .keyEquivalent = "q", .action = actions.quit});
    return menu;
}

} // namespace skylet::StatusMenu
