// Properties that no honest program sets, on a window that is then pinned: the program neither trusts nor
// fears them.
#include "DesktopTest.h"

#include <sstream>

namespace skylet::desktop {
namespace {

struct Hostile {
    const char* name;
    // For the puppet: NAME TYPE FORMAT REPEAT HEX.
    std::vector<const char*> properties;
};

class HostileTest : public DesktopTest, public testing::WithParamInterface<Hostile> {};

TEST_P(HostileTest, PinsAndMirrorsAllTheSame) {
    PREPARE(openDesktop());
    PREPARE(openTarget());
    const std::string window = std::to_string(target_);
    PREPARE(launch());
    const auto poison = [&] {
        for (const char* property : GetParam().properties) {
            Process& hostile = application().process();
            hostile.write("property " + window + " " + property + "\n");
            ASSERT_EQ(hostile.readLine(), "ok");
        }
    };
    PREPARE(poison());
    PREPARE(pinAndCover(target_, cover_));
    // Once more while it is watched.
    PREPARE(poison());
    const Rectangle client = x().geometry(target_).value_or(Rectangle{});
    EXPECT_TRUE(eventually([&] {
        return overlayPlace() == client &&
               x().screenshot(client) == patternPicture(0, client.width, client.height);
    }));
    // No title begins a line of the log of its own.
    std::istringstream log(skylet().logText());
    for (std::string line; std::getline(log, line);) {
        EXPECT_TRUE(line.starts_with("20")) << line.substr(0, 200);
    }
    skylet().pressShortcut();
    EXPECT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
}

INSTANTIATE_TEST_SUITE_P(
    Small, HostileTest,
    testing::Values(
        Hostile{"wrong_formats",
                {"_NET_WM_NAME UTF8_STRING 32 3 41424344", "WM_CLASS STRING 16 5 4142",
                 "_NET_WM_PID CARDINAL 8 1 07", "_NET_WM_WINDOW_TYPE ATOM 8 3 01",
                 "_NET_WM_STATE ATOM 8 5 01", "_GTK_FRAME_EXTENTS CARDINAL 8 4 0a",
                 "_NET_WM_DESKTOP CARDINAL 16 1 0100"}},
        Hostile{"wrong_types",
                {"_NET_WM_NAME CARDINAL 32 2 41424344", "_NET_WM_PID STRING 8 4 31",
                 "WM_CLASS ATOM 32 1 01000000", "_NET_WM_STATE CARDINAL 32 2 ffffffff",
                 "_GTK_FRAME_EXTENTS STRING 8 16 31", "WM_NAME WINDOW 32 1 01000000"}},
        Hostile{"wrong_lengths",
                {"_GTK_FRAME_EXTENTS CARDINAL 32 3 0a000000", "_NET_WM_PID CARDINAL 32 0 00",
                 "_NET_WM_DESKTOP CARDINAL 32 0 00", "WM_CLASS STRING 8 40 41",
                 "_NET_WM_NAME UTF8_STRING 8 0 00", "_NET_WM_STATE ATOM 32 5000 01000000"}},
        Hostile{"invalid_utf8",
                {"_NET_WM_NAME UTF8_STRING 8 9 c3", "WM_NAME STRING 8 9 ff", "WM_CLASS STRING 8 9 ff00"}},
        Hostile{"control_characters", {"_NET_WM_NAME UTF8_STRING 8 3 610a0d1b5b00"}},
        Hostile{"huge_title", {"_NET_WM_NAME UTF8_STRING 8 1048576 41", "WM_NAME STRING 8 1048576 41"}},
        Hostile{"negative_sizes",
                {"_GTK_FRAME_EXTENTS CARDINAL 32 4 9cffffff", "_GTK_FRAME_EXTENTS CARDINAL 32 4 00ffff7f"}},
        Hostile{"shadow_larger_than_the_window", {"_GTK_FRAME_EXTENTS CARDINAL 32 4 90010000"}},
        Hostile{"pid_of_another", {"_NET_WM_PID CARDINAL 32 1 01000000"}},
        Hostile{"impossible_numbers",
                {"_NET_WM_PID CARDINAL 32 1 ffffffff", "_NET_WM_STATE ATOM 32 4 ffffffff",
                 "_NET_WM_WINDOW_TYPE ATOM 32 4 fffffff7", "WM_TRANSIENT_FOR WINDOW 32 1 ffffff1f",
                 "WM_HINTS WM_HINTS 32 9 ffffffff"}}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace skylet::desktop
