// Screen lockers: not one pixel of an overlay may be seen while the screen is locked.
#include "DesktopTest.h"

#include <csignal>

namespace skylet::desktop {
namespace {

struct Locker {
    const char* name;
    WindowManagerKind windowManager;
    // The last one locks, or for a locker that refuses to lock the superuser's screen, blanks.
    std::vector<Command> commands;
    // Not so where the locker draws on the compositor's window, which is above everything anyway.
    bool unmapsOverlays = true;
};

class LockerTest : public DesktopTest, public testing::WithParamInterface<Locker> {};

TEST_P(LockerTest, NoOverlayPixelWhileLocked) {
    PREPARE(openDesktop({.windowManager = GetParam().windowManager}));
    PREPARE(openTarget(Toolkit::raw, "10 10 1200 740"));
    application().changeContent();
    PREPARE(launchAndPin());

    const Rectangle place = x().visibleGeometry(target_).value_or(Rectangle{});
    const auto telltalePixels = [&] {
        const Picture seen = x().screenshot(place);
        int result = 0;
        for (int tile = 0; tile < 24 && !seen.pixels.empty(); ++tile) {
            result += count(seen, patternColour(1, tile, tile % 16)); // which no locker shows
        }
        return result;
    };
    ASSERT_GT(telltalePixels(), 0);

    // What the locker hides of the application in front tells that it locks, wherever its window is.
    const Rectangle corner{60, 80, 120, 60};
    const Picture unlocked = x().screenshot(corner);
    std::vector<Process> locker;
    for (const Command& command : GetParam().commands) {
        locker.push_back(desktop().start(command, "locker.err"));
        (void)locker.back().waitForExit(std::chrono::milliseconds(1500));
    }
    ASSERT_TRUE(eventually([&] { return difference(x().screenshot(corner), unlocked) > 120 * 60 / 2; }))
        << readFile(desktop().path("locker.err"));
    EXPECT_TRUE(eventually([&] { return telltalePixels() == 0; }));
    // A compositor paints in an order of its own, so being below the locker is not enough.
    EXPECT_TRUE(!GetParam().unmapsOverlays || eventually([&] { return skylet().overlays().empty(); }));
    // The pinned window goes on, applications and desktops come and go; nothing of it may be seen.
    for (int change = 0; change < 6; ++change) {
        x().switchDesktop(change % 3 == 0 ? 1 : 0);
        x().activate(change % 2 == 0 ? target_ : cover_);
        application().process().write("pattern 1\n");
        EXPECT_TRUE(throughout(std::chrono::milliseconds(400), [&] { return telltalePixels() == 0; }));
    }
    for (Process& process : locker) {
        process.signal(SIGKILL);
        (void)process.waitForExit(); // its helpers are ours from then on, and can be found
    }
    for (const char* helper :
         {"xscreensaver-gf", "xscreensaver-au", "saver_multiplex", "saver_blank", "dimmer"}) {
        for (const pid_t pid : descendantsNamed(helper)) {
            ::kill(pid, SIGKILL);
        }
    }
    x().activate(cover_);
    EXPECT_TRUE(eventually([&] { return skylet().mirrors(target_); }));
}

INSTANTIATE_TEST_SUITE_P(
    Full, LockerTest,
    testing::Values(Locker{"i3lock", WindowManagerKind::openbox, {{"i3lock", "--nofork", "--color=102030"}}},
                    Locker{"i3lock_under_kwin",
                           WindowManagerKind::kwinCompositing,
                           {{"i3lock", "--nofork", "--color=102030"}}},
                    Locker{"xsecurelock", WindowManagerKind::openbox, {{"xsecurelock"}}, false},
                    Locker{"xscreensaver",
                           WindowManagerKind::openbox,
                           {{"xscreensaver", "--no-splash"}, {"xscreensaver-command", "-activate"}}}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace skylet::desktop
