// The status item over the message bus: its menu, and hosts that come and go.
#include "DesktopTest.h"

namespace skylet::desktop {
namespace {

const std::string hidden = "ZentroStatusItemVisibility.Hidden.com.corvane.skylet";
const std::string top = "Informazioni su Skylet|Controlla aggiornamenti|-|";
const std::string bottom = "|-|Impostazioni…|-|Esci da Skylet";

class StatusItemTest : public DesktopTest {
  protected:
    void SetUp() override { PREPARE(openDesktop()); }
    void startHost() { host_ = desktop().start({SKYLET_STATUS_HOST}, "host.err"); }
    std::string ask(const std::string& command) {
        host_.write(command + "\n");
        return host_.readLine().value_or("no answer");
    }
    [[nodiscard]] bool hasItems(int count) {
        return eventually([&] { return ask("items") == std::to_string(count); });
    }
    [[nodiscard]] bool menuBecomes(const std::string& middle) {
        return eventually([&] { return ask("menu") == top + middle + bottom; });
    }

    // The menu speaks of the window that became active last, so another application has to be in front first.
    void pinByMenu(Window window, const std::string& title, Window other) {
        PREPARE(bringToFront(other));
        ASSERT_TRUE(eventually([&] { return ask("menu").find("Fissa «other»") != std::string::npos; }));
        PREPARE(bringToFront(window));
        const std::string item = "Fissa «" + title + "»";
        ASSERT_TRUE(eventually([&] { return ask("menu").find(item) != std::string::npos; })) << ask("menu");
        ASSERT_EQ(ask("click " + item), "ok");
    }

    Process host_;
};

TEST_F(StatusItemTest, MenuPinsAndUnpins) {
    PREPARE(openPuppet());
    startHost();
    const Window first = puppet().open("100 90 480 320 title=first_one");
    const Window second = puppet().open("500 90 480 320 title=second");
    PREPARE(launch());
    ASSERT_TRUE(hasItems(1));
    EXPECT_EQ(ask("tooltip"), "Skylet");

    Puppet others(desktop());
    const Window other = others.open("900 500 200 200 title=other");
    PREPARE(pinByMenu(first, "first_one", other));
    EXPECT_TRUE(skylet().waitForLog("pin: overlay created for wid=" + std::to_string(first)));
    EXPECT_TRUE(menuBecomes("Sblocca «first_one»|-|(Finestre fissate)|*  Puppet — first_one|-|Sblocca tutte"))
        << ask("menu");
    EXPECT_EQ(ask("tooltip"), "Skylet — 1 finestre fissate");

    PREPARE(pinByMenu(second, "second", other));
    EXPECT_TRUE(eventually([&] { return ask("tooltip") == "Skylet — 2 finestre fissate"; }));
    // What the panel displays is the menu from before the second pin.
    EXPECT_EQ(ask("click   Puppet — first_one"), "ok");
    EXPECT_TRUE(menuBecomes("Sblocca «second»|-|(Finestre fissate)|*  Puppet — second|-|Sblocca tutte"))
        << ask("menu");
    EXPECT_EQ(ask("click Sblocca tutte"), "ok");
    EXPECT_TRUE(menuBecomes("Fissa «second»")) << ask("menu");
    EXPECT_TRUE(eventually([&] { return skylet().overlays().empty(); }));

    EXPECT_EQ(ask("click Esci da Skylet"), "ok");
    EXPECT_EQ(skylet().process().waitForExit(), 0);
    EXPECT_TRUE(hasItems(0));
    endSkylet();
}

TEST_F(StatusItemTest, TenWindowsOfOneApplication) {
    constexpr int count = 10;
    PREPARE(openPuppet());
    startHost();
    PREPARE(launch());
    ASSERT_TRUE(hasItems(1));
    Puppet others(desktop());
    const Window other = others.open("900 500 200 200 title=other");
    std::vector<Window> windows;
    for (int number = 0; number < count; ++number) {
        const std::string title = "number_" + std::to_string(number);
        const std::string place = std::to_string(20 + number * 40) + " " + std::to_string(40 + number * 30);
        windows.push_back(puppet().open(place + " 330 230 title=" + title));
        PREPARE(pinByMenu(windows.back(), title, other));
    }
    PREPARE(bringToFront(other));
    EXPECT_TRUE(eventually([&] { return skylet().overlays().size() == count; }));
    EXPECT_TRUE(eventually([&] { return ask("tooltip") == "Skylet — 10 finestre fissate"; }));
    PREPARE(bringToFront(windows[4]));
    EXPECT_TRUE(skylet().waitForLog("overlay: sendBehind wid=" + std::to_string(windows[4])));
    puppet().tell("destroy " + std::to_string(windows[7]));
    EXPECT_TRUE(eventually([&] { return ask("tooltip") == "Skylet — 9 finestre fissate"; }));
    EXPECT_EQ(ask("click Sblocca tutte"), "ok");
    EXPECT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
}

TEST_F(StatusItemTest, HiddenOneComesBackWhenTheProgramIsStartedAgain) {
    startHost();
    PREPARE(launch({{hidden, "true"}}));
    EXPECT_TRUE(throughout(std::chrono::milliseconds(300), [&] { return ask("items") == "0"; }));
    for (int start = 0; start < 2; ++start) {
        Process second = desktop().start({SKYLET_PROGRAM}, "second.err");
        EXPECT_EQ(second.waitForExit(), 0);
        EXPECT_EQ(second.errorOutput(), "");
        EXPECT_TRUE(hasItems(1));
    }
    EXPECT_EQ(skylet().count("Launched successfully"), 1);
    EXPECT_NE(readFile(desktop().configPath("Skylet/skylet.conf")).find(hidden + "=false"),
              std::string::npos);
}

} // namespace
} // namespace skylet::desktop
