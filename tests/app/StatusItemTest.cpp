#include "app/AppDelegate.h"
#include "app/ZentroMenuBarPill.h"
#include "foundation/PreferenceKeys.h"
#include "support/SimulatedDesktop.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace skylet {
namespace {

using Lines = std::vector<std::string>;
using platform::WindowID;

constexpr platform::ProcessID editor = 500;
constexpr platform::Rect place{100, 100, 800, 600};
const std::string hiddenKey = "ZentroStatusItemVisibility.Hidden.com.corvane.skylet";

class StatusItemTest : public testing::Test {
  protected:
    StatusItemTest() {
        desktop.launchApplication(editor, "Editor");
        document = desktop.openWindow(editor, "doc", place);
        app = std::make_unique<AppDelegate>(
            desktop.environment, desktop.scroller, desktop.eventTap, desktop.eventPoster, desktop.application,
            desktop.statusBar,
            AppCallbacks{.reportToUser = {},
                         .fatal = {},
                         .terminate = [this] { done.emplace_back("terminate"); },
                         .openSettings = [this] { done.emplace_back("settings"); },
                         .openAbout =
                             [this] {
                                 done.emplace_back("about");
                             }});
    }
    [[nodiscard]] sim::SimStatusItem& item() const { return *desktop.statusBar.items.at(0); }
    // The user opens the menu and chooses the item with this title.
    void choose(const std::string& title) {
        for (const platform::MenuItem& one : item().menu()) {
            if (one.title == title) {
                ASSERT_TRUE(one.action) << title;
                one.action();
                return;
            }
        }
        FAIL() << "no item " << title;
    }

    sim::SimulatedDesktop desktop;
    WindowID document = 0;
    Lines done;
    std::unique_ptr<AppDelegate> app;
};

TEST_F(StatusItemTest, ExistsFromTheLaunchOnUnlessHidden) {
    EXPECT_TRUE(desktop.statusBar.items.empty());
    app->applicationDidFinishLaunching();
    ASSERT_EQ(desktop.statusBar.items.size(), 1U);
    EXPECT_EQ(item().autosaveName, "SkyletStatusItem");
    EXPECT_TRUE(desktop.application.accessory);

    sim::SimulatedDesktop other;
    other.defaults.setBool(hiddenKey, true);
    AppDelegate hidden(other.environment, other.scroller, other.eventTap, other.eventPoster,
                       other.application, other.statusBar, {});
    hidden.applicationDidFinishLaunching();
    EXPECT_EQ(other.statusBar.itemsMade, 0);
    hidden.updateIcon();
    hidden.applicationShouldHandleReopen();
    EXPECT_EQ(other.statusBar.items.size(), 1U);
}

TEST_F(StatusItemTest, ComesAndGoesWithThePreference) {
    app->applicationDidFinishLaunching();
    auto& visibility = app->statusItemVisibility();
    visibility.setVisible(false);
    EXPECT_TRUE(desktop.statusBar.items.empty());
    visibility.setVisible(true);
    visibility.setVisible(true);
    EXPECT_EQ(desktop.statusBar.items.size(), 1U);
    EXPECT_EQ(desktop.statusBar.itemsMade, 2);
    EXPECT_EQ(item().autosaveName, "SkyletStatusItem");
    EXPECT_EQ(item().toolTip, "Skylet") << "drawn when it was made again";
}

TEST_F(StatusItemTest, IconAndToolTipFollowThePins) {
    app->applicationDidFinishLaunching();
    const WindowID second = desktop.openWindow(editor, "second", place);
    const platform::AppearanceColor red = item().image.tint;
    EXPECT_EQ(red.light, (platform::Color{1, 59 / 255.0, 48 / 255.0}));
    EXPECT_EQ(red.dark, (platform::Color{1, 69 / 255.0, 58 / 255.0}));
    struct {
        const char* description;
        std::function<void()> step;
        std::string symbol;
        std::string toolTip;
    } const steps[] = {
        {"at first", [] {}, "pin", "Skylet"},
        {"one", [&] { app->tracker().pin(desktop.foreign(document)); }, "pin.fill",
         "Skylet — 1 finestre fissate"},
        {"two", [&] { app->tracker().pin(desktop.foreign(second)); }, "pin.fill",
         "Skylet — 2 finestre fissate"},
        {"one less", [&] { app->tracker().unpin(document); }, "pin.fill", "Skylet — 1 finestre fissate"},
        {"none", [&] { app->tracker().unpinAll(); }, "pin", "Skylet"},
    };
    for (const auto& one : steps) {
        SCOPED_TRACE(one.description);
        one.step();
        EXPECT_EQ(item().image.symbol,
                  (platform::Symbol{one.symbol, "Skylet", 16, platform::SymbolWeight::semibold}));
        EXPECT_EQ(item().image.tint, red);
        EXPECT_FALSE(item().image.background);
        EXPECT_EQ(item().toolTip, one.toolTip);
    }
}

TEST_F(StatusItemTest, BackgroundFollowsThePreferenceAtTheNextDrawing) {
    app->applicationDidFinishLaunching();
    const auto red = item().image.tint;
    desktop.defaults.setBool(PreferenceKeys::menuBarPillEnabled, true);
    EXPECT_FALSE(item().image.background);
    app->updateIcon();
    ASSERT_TRUE(item().image.background);
    EXPECT_EQ(item().image.tint, red);
    const int drawings = item().drawings;
    desktop.defaults.setBool(PreferenceKeys::menuBarPillEnabled, false);
    desktop.screens.postDidChangeParameters();
    EXPECT_EQ(item().drawings, drawings + 1);
    EXPECT_FALSE(item().image.background);
}

TEST_F(StatusItemTest, MenuActionsReachTheController) {
    app->applicationDidFinishLaunching();
    desktop.activate(editor);
    desktop.advance(0.1);
    choose("Fissa «doc»");
    EXPECT_TRUE(app->tracker().isPinned(document));
    choose("  Editor — doc");
    EXPECT_FALSE(app->tracker().isPinned(document));
    choose("Fissa «doc»");
    choose("Sblocca «doc»");
    EXPECT_FALSE(app->tracker().isPinned(document));
    choose("Fissa «doc»");
    choose("Sblocca tutte");
    EXPECT_TRUE(app->tracker().pinnedWindows().empty());
    choose("Controlla aggiornamenti");
    EXPECT_EQ(desktop.workspace.openedURLs, Lines{"https://corvane.com/skylet"});
    choose("Fissa «doc»");
    choose("Informazioni su Skylet");
    choose("Impostazioni…");
    choose("Esci da Skylet");
    EXPECT_TRUE(app->tracker().pinnedWindows().empty());
    EXPECT_EQ(done, (Lines{"about", "settings", "terminate"}));
}

TEST_F(StatusItemTest, AnItemChosenLateStillMeansWhatItShowed) {
    app->applicationDidFinishLaunching();
    const WindowID other = desktop.openWindow(editor, "other", {0, 0, 50, 50});
    desktop.activate(editor);
    desktop.advance(0.1);
    const platform::Menu menu = item().menu();
    ASSERT_EQ(menu[3].title, "Fissa «other»");
    desktop.focus(document);
    desktop.activate(editor);
    desktop.advance(0.1);
    ASSERT_EQ(item().menu()[3].title, "Fissa «doc»");
    menu[3].action();
    EXPECT_TRUE(app->tracker().isPinned(other));
    EXPECT_FALSE(app->tracker().isPinned(document));
    app.reset();
    menu[3].action();
}

TEST_F(StatusItemTest, TellsABarThatKeepsACopyOfTheMenu) {
    app->applicationDidFinishLaunching();
    const auto shown = [this] {
        return item().copy.size() > 3 ? item().copy[3].title : "";
    };
    desktop.activate(editor);
    desktop.advance(0.1);
    EXPECT_EQ(shown(), "Fissa «doc»");
    app->tracker().pin(desktop.foreign(document));
    EXPECT_EQ(shown(), "Sblocca «doc»");
    app->tracker().unpinAll();
    EXPECT_EQ(shown(), "Fissa «doc»");
}

TEST_F(StatusItemTest, ReopeningOpensTheSettingsWhereNothingShowsTheIcon) {
    app->applicationDidFinishLaunching();
    app->applicationShouldHandleReopen();
    EXPECT_EQ(done, Lines{});
    desktop.statusBar.shown = false;
    app->statusItemVisibility().setVisible(false);
    app->applicationShouldHandleReopen();
    EXPECT_EQ(done, Lines{"settings"});
    EXPECT_TRUE(app->statusItemVisibility().isVisible());
}

TEST_F(StatusItemTest, ApplicationMenuQuitsAndEdits) {
    app->applicationDidFinishLaunching();
    const platform::MainMenu& menu = desktop.application.mainMenu;
    ASSERT_EQ(menu.size(), 2U);
    Lines items;
    for (const platform::TopLevelMenu& top : menu) {
        items.push_back("[" + top.title + "]");
        for (const platform::MenuItem& one : top.items) {
            items.push_back(one.isSeparator ? "-" : one.title + " " + one.keyEquivalent);
        }
    }
    EXPECT_EQ(items, (Lines{"[]", "Esci da Skylet q", "[Modifica]", "Annulla z", "Ripeti Z", "-", "Taglia x",
                            "Copia c", "Incolla v", "-", "Seleziona tutto a"}));
    menu[0].items[0].action();
    EXPECT_EQ(done, Lines{"terminate"});
}

TEST(ZentroMenuBarPill, SizesTheCapsuleByTheSymbolAndTheBar) {
    struct {
        platform::Size symbol;
        double thickness;
        platform::Size size;
    } const cases[] = {
        {{12, 16}, 22, {24, 20}},
        {{8, 10}, 22, {22, 14}},  // never narrower than 22
        {{12, 20}, 22, {24, 20}}, // never higher than the bar allows
        {{13, 17}, 30, {25, 21}},
    };
    for (const auto& one : cases) {
        const auto image = ZentroMenuBarPill::compose({}, one.symbol, one.thickness, std::nullopt);
        EXPECT_EQ(image.size, one.size);
        ASSERT_TRUE(image.background);
        EXPECT_EQ(image.background->cornerRadius, one.size.height / 2);
        EXPECT_EQ(image.symbolOrigin.x * 2 + one.symbol.width, one.size.width);
        EXPECT_EQ(image.symbolOrigin.y * 2 + one.symbol.height, one.size.height);
    }
}

TEST(ZentroMenuBarPill, ColoursFollowTheAppearanceAndATintReplacesTheSymbols) {
    const auto plain = ZentroMenuBarPill::compose({}, {12, 16}, 22, std::nullopt);
    EXPECT_EQ(plain.background->color.dark, (platform::Color{0.85, 0.85, 0.85, 1}));
    EXPECT_EQ(plain.background->color.light, (platform::Color{0.2, 0.2, 0.2, 0.85}));
    EXPECT_EQ(plain.tint.dark, (platform::Color{0.1, 0.1, 0.1, 1}));
    EXPECT_EQ(plain.tint.light, (platform::Color{1, 1, 1, 1}));
    const platform::AppearanceColor tint{.light = {1, 0, 0}, .dark = {0, 1, 0}};
    const auto tinted = ZentroMenuBarPill::compose({}, {12, 16}, 22, tint);
    EXPECT_EQ(tinted.tint, tint);
    EXPECT_EQ(tinted.background, plain.background);
}

} // namespace
} // namespace skylet
