// The settings window as the user works in it: found through what screen readers are told, worked with
// pointer and keys; and what its changes do to the running program.
#include "DesktopTest.h"
#include "harness/AccessibleTree.h"

#include <algorithm>
#include <filesystem>
#include <functional>

namespace skylet::desktop {
namespace {

namespace fs = std::filesystem;

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

constexpr xcb_keysym_t keyReturn = 0xFF0D, keyEscape = 0xFF1B, keyTab = 0xFF09, keyHome = 0xFF50,
                       keyEnd = 0xFF57;

class SettingsTest : public DesktopTest {
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

    [[nodiscard]] Window settings() {
        const auto windows = x().windowsOf(skylet().process().pid());
        const auto found = std::ranges::find_if(
            windows, [&](Window window) { return x().text(window, "_NET_WM_NAME") == settingsTitle; });
        return found == windows.end() ? XCB_NONE : *found;
    }
    void openSettings() {
        ASSERT_TRUE(tree_->perform("settings"));
        ASSERT_TRUE(eventually([&] { return settings() != XCB_NONE && x().activeWindow() == settings(); }))
            << "it does not come to the front";
        ASSERT_TRUE(comesToShow(loginTitle));
    }
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

    void pressNew() { x().press('k', {Modifier::control, Modifier::alt}); }
    void recordNew() {
        PREPARE(startRecording());
        pressNew();
        EXPECT_TRUE(eventually([&] { return shows("⌃⌥K") && !shows(shortcutTaken); }));
    }
    // Beside each other.
    void openTargetAndSettings() {
        PREPARE(openPuppet());
        target_ = puppet().open("20 40 300 200 title=target");
        PREPARE(launch());
        PREPARE(openSettings());
    }

    std::unique_ptr<AccessibleTree> tree_;
};

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
    PREPARE(launch({{"captureRate", "60"}}));
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

    // The slowest rate leaves the picture behind for a while, the fastest one does not.
    PREPARE(pick("60 fps", keyHome));
    ASSERT_TRUE(stores("captureRate=0.5")) << file();
    int seed = 100;
    EXPECT_TRUE(eventually([&] {
        puppet().tell("pattern " + std::to_string(seed++));
        return !eventually([&] { return skylet().mirrors(target); }, std::chrono::milliseconds(300));
    }));
    EXPECT_TRUE(eventually([&] { return skylet().mirrors(target); }));

    PREPARE(click(forwardTitle));
    ASSERT_TRUE(stores("forwardEvents=false"));
    const Rectangle place = overlayPlace();
    x().click(place.x + place.width / 2, place.y + place.height / 2);
    EXPECT_TRUE(eventually([&] { return x().activeWindow() == target; }));
}

TEST_F(SettingsTest, PermissionsAreShownLive) {
    PREPARE(launch());
    PREPARE(openSettings());
    constexpr const char* allow = "Consenti accesso — Accessibilità";
    EXPECT_FALSE(shows(allow));
    ASSERT_EQ(run({"dbus-send", "--session", "--print-reply=literal", "--dest=org.a11y.Bus", "/org/a11y/bus",
                   "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status", "string:IsEnabled",
                   "variant:boolean:false"},
                  desktop().environment()),
              0);
    EXPECT_TRUE(comesToShow(allow));
    // The button is the user's own word.
    PREPARE(click(allow));
    EXPECT_TRUE(eventually([&] { return !shows(allow); }));
}

TEST_F(SettingsTest, OpensWithThePointerAndFindsItsWayBack) {
    PREPARE(openScene({.twoMonitors = true})); // side by side, 640 wide each
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

TEST_F(SettingsTest, ARecordedShortcutIsInForceAtOnce) {
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

TEST_F(SettingsTest, AShortcutThatIsTakenAtTheStartIsReplacedAtOnce) {
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

// Window managers differ in whom they let come forward, and in which keys they keep for themselves.
class SettingsUnderManagersTest : public SettingsTest, public testing::WithParamInterface<WindowManagerKind> {
  protected:
    void SetUp() override { PREPARE(openScene({.windowManager = GetParam(), .height = 1300})); }
};

TEST_P(SettingsUnderManagersTest, OpensRecordsClosesAndComesBack) {
    PREPARE(openPuppet());
    const Window other = puppet().open("20 40 300 200 title=other");
    PREPARE(launch());
    x().press(keyEscape);         // a keyboard's first key makes managers take their shortcuts anew,
    PREPARE(bringToFront(other)); // which they have done by now
    PREPARE(openSettings());
    PREPARE(startRecording());
    x().press(keyTab, {Modifier::alt}); // the manager's own
    EXPECT_TRUE(comesToShow("⌥⇥"));
    EXPECT_TRUE(stores("shortcutKeyCode=48"));
    // It is said in both places, or the key could be had.
    EXPECT_TRUE(eventually([&] { return shows(shortcutTaken) != skylet().errorOutput().empty(); }));
    expectedErrors_ = skylet().errorOutput();
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

const auto nameOfManager = [](const auto& test) {
    return nameOf(test.param);
};
INSTANTIATE_TEST_SUITE_P(Small, SettingsUnderManagersTest, testing::Values(WindowManagerKind::openbox),
                         nameOfManager);
INSTANTIATE_TEST_SUITE_P(Full, SettingsUnderManagersTest,
                         testing::Values(WindowManagerKind::xfwm4, WindowManagerKind::metacity,
                                         WindowManagerKind::mutter, WindowManagerKind::kwin,
                                         WindowManagerKind::i3),
                         nameOfManager);

} // namespace
} // namespace skylet::desktop
