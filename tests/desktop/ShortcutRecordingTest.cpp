// A new shortcut, recorded in the settings window.
#include "SettingsScene.h"

namespace skylet::desktop {
namespace {

class ShortcutRecordingTest : public SettingsScene {};

TEST_F(ShortcutRecordingTest, ARecordedShortcutIsInForceAtOnce) {
    PREPARE(openPuppet());
    const Window target = puppet().open("20 40 300 200 title=target");
    PREPARE(launch());
    PREPARE(openSettings());
    const auto pressNew = [&] {
        x().press('k', {Modifier::control, Modifier::alt});
    };
    PREPARE(startRecording());
    pressNew();
    EXPECT_TRUE(stores("shortcutKeyCode=40"));
    EXPECT_TRUE(stores("shortcutModifiers=786432"));
    EXPECT_TRUE(eventually([&] { return shows("⌃⌥K"); }));
    EXPECT_EQ(skylet().count("togglePin: "), 0);
    PREPARE(bringToFront(target));
    EXPECT_TRUE(toggles(pressNew));
    skylet().pressShortcut(); // the old one
    EXPECT_TRUE(toggles(pressNew));

    // The shortcut in force is recorded, not carried out.
    PREPARE(bringToFront(settings()));
    PREPARE(startRecording());
    pressNew();
    EXPECT_TRUE(eventually([&] { return shows(changeButton); }));
    EXPECT_EQ(skylet().count("togglePin: "), 2);

    // Keys that work in windows, on a keyboard of another layout.
    PREPARE(startRecording());
    x().press(keyTab, {Modifier::control, Modifier::shift});
    EXPECT_TRUE(stores("shortcutKeyCode=48"));
    EXPECT_TRUE(stores("shortcutModifiers=393216"));

    PREPARE(click(clearButton));
    EXPECT_TRUE(stores("shortcutKeyCode=0"));
    EXPECT_TRUE(eventually([&] { return shows("Non impostata") && !shows(clearButton); }));
    EXPECT_NE(file().find("ZentroRegisteredHotkeys=\"[]\""), std::string::npos) << file();
}

TEST_F(ShortcutRecordingTest, LeavingWhileItRecordsRestoresTheShortcut) {
    PREPARE(openPuppet());
    const Window target = puppet().open("20 40 300 200 title=target");
    PREPARE(launch());
    PREPARE(openSettings());
    PREPARE(startRecording());
    x().press(keyEscape, {});
    EXPECT_TRUE(eventually([&] { return shows(changeButton); }));
    PREPARE(startRecording());
    x().close(settings());
    EXPECT_TRUE(eventually([&] { return settings() == XCB_NONE; }));
    PREPARE(bringToFront(target));
    EXPECT_TRUE(toggles([&] { skylet().pressShortcut(); }));
    PREPARE(openSettings());
    EXPECT_TRUE(shows(changeButton));
    x().press(keyEscape, {});
    EXPECT_TRUE(eventually([&] { return settings() == XCB_NONE; }));
}

TEST_F(ShortcutRecordingTest, AShortcutThatAnotherProgramHoldsIsSaid) {
    expectedErrors_ = "skylet: another program holds the shortcut Control+Alt+J: choose another one with the "
                      "preferences keys shortcutKeyCode and shortcutModifiers in skylet.conf, or close that "
                      "program.\n";
    PREPARE(launch());
    grab('j', XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1);
    PREPARE(openSettings());
    PREPARE(startRecording());
    x().press('j', {Modifier::control, Modifier::alt});
    EXPECT_TRUE(eventually([&] { return shows(shortcutTaken); }));
    EXPECT_TRUE(shows("⌃⌥J"));
    PREPARE(startRecording());
    x().press('k', {Modifier::control, Modifier::alt});
    EXPECT_TRUE(eventually([&] { return shows("⌃⌥K") && !shows(shortcutTaken); }));
}

TEST_F(ShortcutRecordingTest, AShortcutThatIsTakenAtTheStartIsReplacedAtOnce) {
    expectedErrors_ =
        "skylet: another program holds the shortcut Control+Super+P: choose another one with the "
        "preferences keys shortcutKeyCode and shortcutModifiers in skylet.conf, or close that "
        "program.\n";
    PREPARE(openPuppet());
    const Window target = puppet().open("20 40 300 200 title=target");
    grab('p', XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4);
    PREPARE(launch());
    PREPARE(openSettings());
    EXPECT_TRUE(shows(shortcutTaken));
    PREPARE(startRecording());
    x().press('k', {Modifier::control, Modifier::alt});
    EXPECT_TRUE(eventually([&] { return shows("⌃⌥K") && !shows(shortcutTaken); }));
    PREPARE(bringToFront(target));
    EXPECT_TRUE(toggles([&] { x().press('k', {Modifier::control, Modifier::alt}); }));
}

} // namespace
} // namespace skylet::desktop
