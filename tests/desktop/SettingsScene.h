// The settings window as the user works in it: found through what screen readers are told, worked with
// pointer and keys.
#pragma once

#include "DesktopTest.h"
#include "harness/AccessibleTree.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace skylet::desktop {

constexpr const char* settingsTitle = "Skylet — Impostazioni";
constexpr const char* forwardTitle = "Interagisci con la finestra flottante";
constexpr const char* spacesTitle = "Mostra su tutte le Scrivanie";
constexpr const char* iconTitle = "Mostra l’icona nella barra dei menu";
constexpr const char* pillTitle = "Mostra lo sfondo dell’icona";
constexpr const char* loginTitle = "Apri all’accesso";
constexpr const char* changeButton = "Modifica… — Fissa o sblocca la finestra";
constexpr const char* clearButton = "Rimuovi — Fissa o sblocca la finestra";
constexpr const char* cancelButton = "Annulla — Fissa o sblocca la finestra";
constexpr const char* shortcutTaken = "Questa scorciatoia è già usata da un’altra app.";

constexpr xcb_keysym_t keyReturn = 0xFF0D, keyEscape = 0xFF1B, keyTab = 0xFF09, keyEnd = 0xFF57;

class SettingsScene : public DesktopTest {
  protected:
    // The screen shows all of the settings window at once.
    void SetUp() override { PREPARE(openScene({.height = 1300})); }
    void openScene(const DesktopOptions& options) {
        tree_.reset();
        PREPARE(openDesktop(options));
        tree_ = std::make_unique<AccessibleTree>(desktop());
    }
    void TearDown() override {
        tree_.reset();
        DesktopTest::TearDown();
    }

    [[nodiscard]] std::string file() { return readFile(desktop().configPath("Skylet/skylet.conf")); }
    [[nodiscard]] bool stores(const std::string& line) {
        return eventually([&] { return file().find("\n" + line + "\n") != std::string::npos; });
    }

    [[nodiscard]] std::optional<Window> windowTitled(const std::string& title) {
        const auto windows = x().windowsOf(skylet().process().pid());
        const auto found = std::ranges::find_if(
            windows, [&](Window window) { return x().text(window, "_NET_WM_NAME") == title; });
        return found == windows.end() ? std::nullopt : std::optional(*found);
    }
    void openWindow(const std::string& action, const std::string& title) {
        ASSERT_TRUE(tree_->perform(action));
        ASSERT_TRUE(eventually([&] {
            const auto window = windowTitled(title);
            return window && x().isViewable(*window) && x().activeWindow() == *window;
        })) << title
            << " does not come to the front";
    }
    void openSettings() {
        openWindow("settings", settingsTitle);
        ASSERT_TRUE(comesToShow(loginTitle));
    }
    [[nodiscard]] Window settings() { return windowTitled(settingsTitle).value_or(XCB_NONE); }

    void closeByEscape() {
        x().press(keyEscape);
        EXPECT_TRUE(eventually([&] { return settings() == XCB_NONE; }));
    }

    [[nodiscard]] std::optional<AccessibleNode> node(const std::string& name) {
        return tree_->find("Skylet", name);
    }
    [[nodiscard]] bool comesToShow(const std::string& name) {
        return eventually([&] { return shows(name); });
    }
    [[nodiscard]] bool shows(const std::string& name) { return node(name).has_value(); }
    void click(const std::string& name) {
        std::optional<AccessibleNode> found;
        ASSERT_TRUE(eventually([&] {
            found = node(name);
            return found && found->place.width > 0;
        })) << name;
        x().click(found->place.x + found->place.width / 2, found->place.y + found->place.height / 2);
    }
    // Opens the picker, to which a screen reader gives its value for a name, and chooses by a key.
    void pick(const std::string& present, xcb_keysym_t key) {
        const std::size_t before = skylet().overlays().size(); // a list is as unmanaged as an overlay
        click(present);
        ASSERT_TRUE(eventually([&] { return skylet().overlays().size() == before + 1; }));
        x().press(key);
        x().press(keyReturn);
        ASSERT_TRUE(eventually([&] { return skylet().overlays().size() == before; }));
    }
    void startRecording() {
        click(changeButton);
        ASSERT_TRUE(comesToShow(cancelButton));
    }
    [[nodiscard]] bool toggles(const std::function<void()>& press) {
        const int before = skylet().count("togglePin: ");
        press();
        return eventually([&] { return skylet().count("togglePin: ") == before + 1; },
                          std::chrono::seconds(3));
    }

    std::unique_ptr<AccessibleTree> tree_;
};

} // namespace skylet::desktop
