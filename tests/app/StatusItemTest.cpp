#include "app/AppTest.h"
#include "app/ZentroMenuBarPill.h"

namespace skylet {
namespace {

class StatusItemTest : public AppTest {
  protected:
    [[nodiscard]] sim::SimStatusItem& item() const { return *desktop.statusBar.items.at(0); }
    // The user opens the menu and chooses the item with this title.
    void choose(const std::string& title) {
        const platform::Menu menu = item().menu();
        const auto chosen = std::ranges::find(menu, title, &platform::MenuItem::title);
        ASSERT_NE(chosen, menu.end()) << title;
        chosen->action();
    }
};

TEST_F(StatusItemTest, ComesAndGoesWithThePreference) {
    app->applicationDidFinishLaunching();
    EXPECT_TRUE(desktop.application.accessory);
    int notices = 0;
    auto& visibility = app->statusItemVisibility();
    const auto observer = visibility.observeDidChange([&notices] { ++notices; });
    for (const bool shown : {true, false, false, true, true}) {
        visibility.setVisible(shown);
        ASSERT_EQ(desktop.statusBar.items.size(), shown ? 1U : 0U);
    }
    EXPECT_EQ(notices, 2);
    EXPECT_EQ(desktop.statusBar.itemsMade, 2);
    EXPECT_EQ(item().autosaveName, "SkyletStatusItem");
    EXPECT_EQ(item().toolTip, "Skylet") << "drawn when it was made again";
}

TEST_F(StatusItemTest, AHiddenOneComesBackWhenTheProgramIsOpenedAgain) {
    desktop.defaults.setBool(hiddenKey, true);
    app->applicationDidFinishLaunching();
    app->updateIcon();
    EXPECT_EQ(desktop.statusBar.itemsMade, 0);
    EXPECT_TRUE(app->applicationShouldHandleReopen());
    EXPECT_EQ(desktop.statusBar.items.size(), 1U);
    EXPECT_FALSE(desktop.defaults.readBool(hiddenKey).valueOr(true));
    EXPECT_EQ(done, Lines{});
    // Where nothing shows the icon, the settings are opened instead.
    desktop.statusBar.shown = false;
    app->applicationShouldHandleReopen();
    EXPECT_EQ(done, Lines{"settings"});
}

TEST_F(StatusItemTest, IconAndToolTipFollowThePins) {
    app->applicationDidFinishLaunching();
    const auto second = desktop.openWindow(editor, "second", place);
    const platform::AppearanceColor red = item().image.tint;
    EXPECT_EQ(red.light, (platform::Color{1, 59 / 255.0, 48 / 255.0}));
    const auto expectShown = [&](const char* symbol, const char* toolTip) {
        EXPECT_EQ(item().image.symbol,
                  (platform::Symbol{symbol, "Skylet", 16, platform::SymbolWeight::semibold}));
        EXPECT_EQ(item().image.tint, red);
        EXPECT_EQ(item().toolTip, toolTip);
    };
    expectShown("pin", "Skylet");
    app->tracker().pin(desktop.foreign(document));
    expectShown("pin.fill", "Skylet — 1 finestre fissate");
    app->tracker().pin(desktop.foreign(second));
    expectShown("pin.fill", "Skylet — 2 finestre fissate");
    app->tracker().unpinAll();
    expectShown("pin", "Skylet");
}

TEST_F(StatusItemTest, BackgroundFollowsThePreferenceAtTheNextDrawing) {
    app->applicationDidFinishLaunching();
    const auto red = item().image.tint;
    desktop.defaults.setBool(PreferenceKeys::menuBarPillEnabled, true);
    EXPECT_FALSE(item().image.background);
    app->updateIcon();
    EXPECT_TRUE(item().image.background);
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
    for (const char* release : {"  Editor — doc", "Sblocca «doc»", "Sblocca tutte", "Esci da Skylet"}) {
        choose("Fissa «doc»");
        EXPECT_TRUE(app->tracker().isPinned(document));
        choose(release);
        EXPECT_TRUE(app->tracker().pinnedWindows().empty()) << release;
    }
    choose("Controlla aggiornamenti");
    EXPECT_EQ(desktop.workspace.openedURLs, Lines{"https://corvane.com/skylet"});
    choose("Informazioni su Skylet");
    choose("Impostazioni…");
    EXPECT_EQ(done, (Lines{"terminate", "about", "settings"}));
}

TEST_F(StatusItemTest, AnItemChosenLateStillMeansWhatItShowed) {
    app->applicationDidFinishLaunching();
    const auto other = desktop.openWindow(editor, "other", {0, 0, 50, 50});
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
    desktop.activate(editor);
    desktop.advance(0.1);
    EXPECT_EQ(item().copy.at(3).title, "Fissa «doc»");
    app->tracker().pin(desktop.foreign(document));
    EXPECT_EQ(item().copy.at(3).title, "Sblocca «doc»");
}

TEST_F(StatusItemTest, ApplicationMenuQuitsAndEdits) {
    app->applicationDidFinishLaunching();
    const platform::MainMenu& menu = desktop.application.mainMenu;
    Lines items;
    for (const platform::TopLevelMenu& top : menu) {
        items.push_back("[" + top.title + "]");
        for (const platform::MenuItem& one : top.items) {
            items.push_back(one.isSeparator ? "-" : one.title + " " + one.keyEquivalent);
        }
    }
    EXPECT_EQ(items, (Lines{"[]", "Esci da Skylet q", "[Modifica]", "Annulla z", "Ripeti Z", "-", "Taglia x",
                            "Copia c", "Incolla v", "-", "Seleziona tutto a"}));
    menu.at(0).items.at(0).action();
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

} // namespace
} // namespace skylet
