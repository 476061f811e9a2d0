// The controller's status item: icon, menu and what the menu's items do.
#include "app/AppDelegate.h"
#include "app/ZentroMenuBarPill.h"
#include "foundation/PreferenceKeys.h"
#include "foundation/Product.h"

#include <string>

namespace skylet {

namespace {

constexpr const char* autosaveName = "SkyletStatusItem";
constexpr const char* productPage = "https://corvane.com/skylet";
constexpr double symbolPointSize = 16;

constexpr platform::AppearanceColor systemRed{.light = {255.0 / 255, 59.0 / 255, 48.0 / 255},
                                              .dark = {255.0 / 255, 69.0 / 255, 58.0 / 255}};

} // namespace

void AppDelegate::createStatusItem() {
    if (!statusItemVisibility_.isVisible()) {
        return;
    }
    statusItem =
        statusBar_.makeStatusItem(autosaveName, lifetime_.guard([this] { return menuNeedsUpdate(); }));
    updateIcon();
}

void AppDelegate::applyStatusItemVisibility() {
    if (!statusItemVisibility_.isVisible()) {
        statusItem.reset();
    } else if (!statusItem) {
        createStatusItem();
    }
}

// The icon is red whether or not anything is pinned; the symbol tells the difference.
void AppDelegate::updateIcon() {
    if (!statusItem) {
        return;
    }
    const std::size_t count = tracker_.pinnedWindows().size();
    const platform::Symbol symbol{.name = count > 0 ? "pin.fill" : "pin",
                                  .accessibilityDescription = productName,
                                  .pointSize = symbolPointSize,
                                  .weight = platform::SymbolWeight::semibold};
    const platform::Size size = statusBar_.symbolSize(symbol);
    if (environment_.defaults.readBool(PreferenceKeys::menuBarPillEnabled).valueOr(false)) {
        statusItem->setImage(ZentroMenuBarPill::compose(symbol, size, statusBar_.thickness(), systemRed));
    } else {
        statusItem->setImage({.symbol = symbol, .tint = systemRed, .size = size, .symbolOrigin = {}});
    }
    statusItem->setToolTip(count > 0 ? std::string(productName) + " — " + std::to_string(count) +
                                           " finestre fissate"
                                     : productName);
}

platform::Menu AppDelegate::menuNeedsUpdate() {
    return StatusMenu::build(lastForeignWindow_, tracker_.pinnedWindows(), menuActions());
}

void AppDelegate::noteMenuChange() const {
    if (statusItem) {
        statusItem->noteMenuChange();
    }
}

StatusMenuActions AppDelegate::menuActions() {
    return {
        .openAbout = lifetime_.guard([this] { openAbout(); }),
        .openUpdatesPage = lifetime_.guard([this] { openUpdatesPage(); }),
        .toggleFrontmost = lifetime_.guard([this](const ForeignWindow& window) { toggleFrontmost(window); }),
        .unpinMenuItem = lifetime_.guard([this](platform::WindowID windowID) { unpinMenuItem(windowID); }),
        .unpinAllAction = lifetime_.guard([this] { unpinAllAction(); }),
        .openSettings = lifetime_.guard([this] { openSettings(); }),
        .quit = lifetime_.guard([this] { quit(); })};
}

void AppDelegate::toggleFrontmost(const ForeignWindow& window) {
    if (tracker_.isPinned(window.windowID)) {
        tracker_.unpin(window.windowID);
    } else {
        tracker_.pin(window);
    }
}

void AppDelegate::unpinMenuItem(platform::WindowID windowID) {
    tracker_.unpin(windowID);
}

void AppDelegate::unpinAllAction() {
    tracker_.unpinAll();
}

void AppDelegate::openSettings() {
    if (callbacks_.openSettings) {
        callbacks_.openSettings();
    }
}

void AppDelegate::openAbout() {
    if (callbacks_.openAbout) {
        callbacks_.openAbout();
    }
}

void AppDelegate::openUpdatesPage() {
    environment_.workspace.openURL(productPage);
}

void AppDelegate::quit() {
    tracker_.unpinAll();
    if (callbacks_.terminate) {
        callbacks_.terminate();
    }
}

} // namespace skylet
