// The settings window, and what its changes do to the running program.
#include "SettingsScene.h"

#include <filesystem>

namespace skylet::desktop {
namespace {

namespace fs = std::filesystem;

class SettingsTest : public SettingsScene {};

TEST_F(SettingsTest, EveryChangeIsStoredAtOnce) {
    PREPARE(launch());
    PREPARE(openSettings());
    struct Case {
        const char* title;
        const char* key;
        bool inverted = false;
        bool initially = false;
    };
    for (const Case& test :
         {Case{forwardTitle, "forwardEvents", false, true}, Case{spacesTitle, "pinToAllSpaces"},
          Case{pillTitle, "menuBarPillEnabled"},
          Case{iconTitle, "ZentroStatusItemVisibility.Hidden.com.corvane.skylet", true, true}}) {
        SCOPED_TRACE(test.title);
        const auto before = node(test.title);
        ASSERT_TRUE(before);
        EXPECT_EQ(before->is(stateChecked), test.initially);
        PREPARE(click(test.title));
        const bool stored = test.initially == test.inverted;
        EXPECT_TRUE(stores(std::string(test.key) + "=" + (stored ? "true" : "false"))) << file();
        EXPECT_TRUE(eventually([&] { return node(test.title)->is(stateChecked) != test.initially; }));
    }
    // Opened again, the program shows its icon, and the settings that are open say so.
    ASSERT_TRUE(tree_->perform(""));
    EXPECT_TRUE(stores("ZentroStatusItemVisibility.Hidden.com.corvane.skylet=false"));
    EXPECT_TRUE(eventually([&] { return node(iconTitle)->is(stateChecked); }));

    PREPARE(pick("30 fps", keyEnd));
    EXPECT_TRUE(stores("captureRate=60")) << file();

    const std::string entry = desktop().configPath("autostart/com.corvane.skylet.desktop");
    PREPARE(click(loginTitle));
    EXPECT_TRUE(eventually([&] { return fs::exists(entry); }));
    EXPECT_NE(readFile(entry).find("/skylet\""), std::string::npos) << readFile(entry);
    PREPARE(click(loginTitle));
    EXPECT_TRUE(eventually([&] { return !fs::exists(entry); }));
}

TEST_F(SettingsTest, OpenOverlaysFollow) {
    PREPARE(openPuppet());
    const Window target = puppet().open("20 40 300 200 title=target");
    const Window cover = puppet().open("20 700 300 200 title=cover");
    PREPARE(launch());
    PREPARE(pinAndCover(target, cover));
    PREPARE(openSettings());

    PREPARE(click(spacesTitle));
    ASSERT_TRUE(stores("pinToAllSpaces=true"));
    x().switchDesktop(1);
    EXPECT_TRUE(throughout(std::chrono::milliseconds(500), [&] { return skylet().overlays().size() == 1; }));
    x().switchDesktop(0);
    PREPARE(click(spacesTitle));
    ASSERT_TRUE(stores("pinToAllSpaces=false"));
    x().switchDesktop(1);
    EXPECT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
    x().switchDesktop(0);
    ASSERT_TRUE(eventually([&] { return skylet().mirrors(target); }));

    PREPARE(click(forwardTitle));
    ASSERT_TRUE(stores("forwardEvents=false"));
    const Rectangle place = overlayPlace();
    x().click(place.x + place.width / 2, place.y + place.height / 2);
    EXPECT_TRUE(eventually([&] { return x().activeWindow() == target; }));
}

TEST_F(SettingsTest, OpensWithThePointerAndFindsItsWayBack) {
    PREPARE(openScene({.height = 800, .twoMonitors = true})); // side by side, 640 wide each
    PREPARE(launch());
    x().movePointer(1000, 300);
    PREPARE(openSettings());
    const auto place = [&] {
        return x().geometry(settings()).value_or(Rectangle{});
    };
    EXPECT_GE(place().x, 640) << place();
    EXPECT_LE(place().height, 640) << place();
    EXPECT_EQ(place().width, 512) << "four fifths of the monitor";
    ASSERT_EQ(run({"xrandr", "--delmonitor", "right"}, desktop().environment()), 0);
    EXPECT_TRUE(eventually([&] { return place().right() <= 640; })) << place();
}

// Window managers differ in whom they let come forward, and in which keys they keep for themselves.
class SettingsUnderManagersTest : public SettingsTest, public testing::WithParamInterface<WindowManagerKind> {
  protected:
    void SetUp() override { PREPARE(openScene({.windowManager = GetParam(), .height = 1300})); }
};

TEST_P(SettingsUnderManagersTest, OpensRecordsClosesAndComesBack) {
    PREPARE(openPuppet());
    const Window other = puppet().open("20 40 300 200 title=other");
    PREPARE(launch());
    PREPARE(bringToFront(other));
    PREPARE(openSettings());
    PREPARE(startRecording());
    x().press(keyTab, {Modifier::alt}); // the manager's own
    EXPECT_TRUE(comesToShow("⌥⇥"));
    EXPECT_TRUE(stores("shortcutKeyCode=48"));
    // It is said in both places, or the key could be had.
    expectedErrors_ = skylet().errorOutput();
    EXPECT_EQ(shows(shortcutTaken), !expectedErrors_.empty());
    PREPARE(closeByEscape());

    if (x().numbers(x().root(), "_NET_NUMBER_OF_DESKTOPS") < std::vector<std::uint32_t>{2}) {
        return;
    }
    const auto userIsOn = [&](std::uint32_t desktop) {
        return x().numbers(x().root(), "_NET_CURRENT_DESKTOP") == std::vector{desktop};
    };
    const auto settingsAreOn = [&](std::uint32_t desktop) {
        return x().numbers(settings(), "_NET_WM_DESKTOP") == std::vector{desktop};
    };
    for (const std::uint32_t desktop : {1U, 0U}) {
        x().switchDesktop(desktop);
        ASSERT_TRUE(eventually([&] { return userIsOn(desktop); }));
        PREPARE(openSettings());
        EXPECT_TRUE(eventually([&] { return settingsAreOn(desktop); }));
        EXPECT_TRUE(userIsOn(desktop));
    }
}

INSTANTIATE_TEST_SUITE_P(Small, SettingsUnderManagersTest, testing::Values(WindowManagerKind::openbox),
                         [](const auto& test) { return nameOf(test.param); });
INSTANTIATE_TEST_SUITE_P(Full, SettingsUnderManagersTest,
                         testing::Values(WindowManagerKind::xfwm4, WindowManagerKind::metacity,
                                         WindowManagerKind::mutter, WindowManagerKind::kwin,
                                         WindowManagerKind::i3),
                         [](const auto& test) { return nameOf(test.param); });

} // namespace
} // namespace skylet::desktop
