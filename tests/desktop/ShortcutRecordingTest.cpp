// A new shortcut, recorded in the settings window.
#include "SettingsScene.h"

namespace skylet::desktop {
namespace {

class ShortcutRecordingTest : public SettingsScene {
  protected:
    void pressNew() { x().press('k', {Modifier::control, Modifier::alt}); }
    // Another one than that which is taken.
    void recordNew() {
        PREPARE(startRecording());
        pressNew();
        EXPECT_TRUE(eventually([&] { return shows("⌃⌥K") && !shows(shortcutTaken); }));
    }
    void openTargetAndSettings() {
        PREPARE(openPuppet());
        target_ = puppet().open("20 40 300 200 title=target");
        PREPARE(launch());
        PREPARE(openSettings());
    }
};

TEST_F(ShortcutRecordingTest, ARecordedShortcutIsInForceAtOnce) {
    PREPARE(openTargetAndSettings());
    PREPARE(recordNew());
    EXPECT_TRUE(stores("shortcutKeyCode=40"));
    EXPECT_TRUE(stores("shortcutModifiers=786432"));
    EXPECT_EQ(skylet().count("togglePin: "), 0);
    PREPARE(bringToFront(target_));
    EXPECT_TRUE(toggles([&] { pressNew(); }));
    skylet().pressShortcut(); // the old one
    EXPECT_TRUE(toggles([&] { pressNew(); }));

    // The shortcut in force is recorded, not carried out.
    PREPARE(bringToFront(settings()));
    PREPARE(startRecording());
    pressNew();
    EXPECT_TRUE(comesToShow(changeButton));
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

TEST_F(ShortcutRecordingTest, AShortcutThatIsTakenAtTheStartIsReplacedAtOnce) {
    expectedErrors_ =
        "skylet: another program holds the shortcut Control+Super+P: choose another one with the "
        "preferences keys shortcutKeyCode and shortcutModifiers in skylet.conf, or close that "
        "program.\n";
    ASSERT_TRUE(x().grabKey('p', XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4));
    PREPARE(openTargetAndSettings());
    EXPECT_TRUE(shows(shortcutTaken));
    PREPARE(recordNew());
    PREPARE(bringToFront(target_));
    EXPECT_TRUE(toggles([&] { pressNew(); }));
}

} // namespace
} // namespace skylet::desktop
