// The status item in panels, used with pointer and keyboard.
#include "DesktopTest.h"

#include <array>
#include <csignal>

namespace skylet::desktop {
namespace {

enum class PanelKind { trayer, tint2, xfce, lxqt };

std::string nameOf(PanelKind kind) {
    constexpr std::array names{"trayer", "tint2", "xfce", "lxqt"};
    return names.at(static_cast<std::size_t>(kind));
}

// One panel of 26 pixels at the bottom with a tray and nothing else.
constexpr const char* xfceSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=8;x=640;y=787"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="26"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray"/>
  </property>
</channel>
)";
constexpr const char* lxqtSettings = "[General]\n__userfile__=true\npanels=panel1\n[panel1]\n"
                                     "plugins=statusnotifier\nposition=Bottom\npanelSize=32\niconSize=22\n"
                                     "[statusnotifier]\ntype=statusnotifier\n";

Command commandOf(PanelKind kind) {
    const std::array<Command, 4> commands{
        {{"trayer", "--edge", "bottom"}, {"tint2"}, {"xfce4-panel", "--disable-wm-check"}, {"lxqt-panel"}}};
    return commands.at(static_cast<std::size_t>(kind));
}

constexpr xcb_keysym_t escape = 0xFF1B;
constexpr xcb_keysym_t down = 0xFF54;
constexpr xcb_keysym_t enter = 0xFF0D;

class PanelsTest : public DesktopTest {
  protected:
    void SetUp() override {
        PREPARE(openDesktop());
        writeFile(desktop().configPath("xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"), xfceSettings);
        writeFile(desktop().configPath("lxqt/panel.conf"), lxqtSettings);
        // Where the menu does not lie over it.
        PREPARE(openPuppet());
        target_ = puppet().open("500 60 300 200 title=target");
        other_ = std::make_unique<Puppet>(desktop());
        cover_ = other_->open("450 20 500 300 title=cover");
    }
    void startPanel(PanelKind kind) { panel_ = desktop().start(commandOf(kind), "panel.err"); }

    [[nodiscard]] int redPixels() { return skylet().icon().pixels; }
    [[nodiscard]] bool iconAppears() {
        constexpr int smallest = 8;
        constexpr int largest = 48;
        return eventually([&] {
            const Rectangle place = skylet().icon().place;
            return place.height >= smallest && place.height <= largest && place.width <= largest;
        });
    }
    // Windows over everything else that are no overlays: menus, of whichever program.
    [[nodiscard]] std::optional<Window> openMenu() {
        constexpr int smallestMenu = 100;
        for (const Window window : x().children(x().root())) {
            const Rectangle place = x().geometry(window).value_or(Rectangle{});
            if (x().isViewable(window) && x().isOverrideRedirect(window) && !x().isInputOnly(window) &&
                place.height >= smallestMenu && place.right() > 0 &&
                place.bottom() > x().screen().height - 64 && place.width < x().screen().width) {
                return window;
            }
        }
        return std::nullopt;
    }
    [[nodiscard]] bool menuIs(bool open) {
        return eventually([&] { return openMenu().has_value() == open; });
    }
    void openWithPointer(int button) {
        ASSERT_TRUE(iconAppears());
        const Rectangle icon = skylet().icon().place;
        x().click(icon.x + icon.width / 2, icon.y + icon.height / 2, button);
        ASSERT_TRUE(menuIs(true));
    }
    // Chooses the item with this number, counted without separators and disabled ones.
    void choose(int number) {
        for (int i = 0; i < number; ++i) {
            x().press(down);
        }
        x().press(enter);
        ASSERT_TRUE(menuIs(false));
    }
    // The program looks at a new window in front a moment later, and nothing tells when its menu has it.
    [[nodiscard]] bool isRemembered(Window window) {
        return throughout(std::chrono::milliseconds(400), [&] { return x().activeWindow() == window; });
    }
    // What it looks at is which application is in front, so another one has to be noticed there first.
    void pinByMenu(Window window) {
        PREPARE(bringToFront(cover_));
        ASSERT_TRUE(isRemembered(cover_));
        PREPARE(bringToFront(window));
        ASSERT_TRUE(isRemembered(window));
        const std::string pinned = "pin: overlay created for wid=" + std::to_string(window);
        const int before = skylet().count(pinned);
        PREPARE(openWithPointer(1));
        PREPARE(choose(3));
        ASSERT_TRUE(skylet().waitForLog(pinned, before + 1));
    }
    void usePanel() {
        PREPARE(bringToFront(target_));
        // The second time at once, as if it were a double click.
        for (int i = 0; i < 2; ++i) {
            PREPARE(openWithPointer(1));
            x().press(escape);
            ASSERT_TRUE(menuIs(false));
        }
        ASSERT_TRUE(isRemembered(target_)); // and the panel has drawn its item under the pointer
        const int outline = redPixels();
        const std::string released = "overlay: hideOverlay wid=" + std::to_string(target_);
        const int before = skylet().count(released);
        PREPARE(pinByMenu(target_));
        EXPECT_TRUE(eventually([&] { return redPixels() > outline; })) << "filled";
        EXPECT_EQ(x().activeWindow(), target_);
        EXPECT_EQ(x().pidOf(x().inputFocus()), x().pidOf(target_));

        PREPARE(bringToFront(cover_));
        ASSERT_TRUE(eventually([&] { return floatsOver(target_); }));
        const Rectangle overlay = overlayPlace();
        ASSERT_TRUE(isRemembered(cover_));
        PREPARE(openWithPointer(3));
        puppet().tell("pattern " + std::to_string(++patterns_));
        EXPECT_TRUE(eventually([&] { return x().screenshot(overlay) == x().content(target_); }))
            << "the mirror stands still while the menu is open";
        PREPARE(choose(5));
        EXPECT_TRUE(skylet().waitForLog(released, before + 1));
        EXPECT_TRUE(eventually([&] { return redPixels() == outline; })) << "an outline again";
    }

    Process panel_;
    std::unique_ptr<Puppet> other_;
    int patterns_ = 10;
};

class BusTest : public PanelsTest, public testing::WithParamInterface<std::optional<PanelKind>> {};

TEST_P(BusTest, ItsEndIsOutlived) {
    if (GetParam()) {
        startPanel(*GetParam());
    }
    PREPARE(launch());
    ASSERT_TRUE(!GetParam() || iconAppears());
    // The toolkit does not survive the end of the bus while it introduces itself to assistive programs.
    const auto isRunning = [&] {
        return skylet().process().isRunning();
    };
    ASSERT_TRUE(throughout(std::chrono::seconds(1), isRunning));
    desktop().sessionBus().signal(SIGKILL);
    ASSERT_TRUE(desktop().sessionBus().waitForExit());
    // A host that is gone is given up after a second.
    EXPECT_TRUE(throughout(std::chrono::seconds(2), isRunning));
    // A tray that comes then serves if it ever could.
    startPanel(PanelKind::trayer);
    if (GetParam() != PanelKind::lxqt) {
        PREPARE(usePanel());
    }
    Process second = desktop().start({SKYLET_PROGRAM}, "second.err");
    EXPECT_EQ(second.waitForExit(), 0);
    EXPECT_EQ(second.errorOutput(), "");
    EXPECT_EQ(skylet().count("Launched successfully"), 1);
    EXPECT_TRUE(skylet().pin(target_));
}

const auto nameOfPanel = [](const auto& test) {
    return test.param ? nameOf(*test.param) : std::string("none");
};
INSTANTIATE_TEST_SUITE_P(Small, BusTest, testing::Values(std::nullopt, PanelKind::trayer), nameOfPanel);
// It shows items over the bus.
INSTANTIATE_TEST_SUITE_P(Full, BusTest, testing::Values(PanelKind::lxqt), nameOfPanel);

class PanelSequenceTest : public PanelsTest, public testing::WithParamInterface<std::vector<PanelKind>> {};

TEST_P(PanelSequenceTest, ItemIsUsedInEachPanelThatComes) {
    PREPARE(launch());
    for (const PanelKind kind : GetParam()) {
        SCOPED_TRACE(nameOf(kind));
        startPanel(kind);
        PREPARE(usePanel());
        panel_.stop();
        ASSERT_TRUE(eventually([&] { return redPixels() == 0; }));
    }
}

using Sequence = std::vector<PanelKind>;

std::string nameOfSequence(const testing::TestParamInfo<Sequence>& test) {
    std::string name;
    for (const PanelKind kind : test.param) {
        name += (name.empty() ? "" : "_") + nameOf(kind);
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Small, PanelSequenceTest,
                         testing::Values(Sequence{PanelKind::trayer, PanelKind::trayer}), nameOfSequence);
INSTANTIATE_TEST_SUITE_P(Full, PanelSequenceTest,
                         testing::Values(Sequence{PanelKind::tint2, PanelKind::tint2},
                                         Sequence{PanelKind::xfce, PanelKind::xfce},
                                         Sequence{PanelKind::lxqt, PanelKind::lxqt, PanelKind::trayer,
                                                  PanelKind::xfce, PanelKind::tint2, PanelKind::lxqt}),
                         nameOfSequence);

} // namespace
} // namespace skylet::desktop
