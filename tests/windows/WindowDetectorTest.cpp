#include "windows/WindowDetector.h"

#include "support/SimulatedDesktop.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace skylet {
namespace {

using platform::WindowID;
using sim::SimulatedDesktop;

constexpr platform::ProcessID editor = 500;
constexpr platform::Rect leftHalf{0, 0, 400, 300};
constexpr platform::Rect rightHalf{400, 0, 400, 300};

std::optional<ForeignWindow> frontmost(SimulatedDesktop& desktop) {
    return WindowDetector::getFrontmostForeignWindow(desktop.workspace, desktop.accessibility,
                                                     desktop.windowServer);
}

// An editor with a window `back` (behind) and a window `front`, of which `back` has the focus.
struct Scene {
    Scene() {
        desktop.launchApplication(editor, "Editor");
        back = desktop.openWindow(editor, "back", leftHalf);
        front = desktop.openWindow(editor, "front", rightHalf);
        desktop.focus(back);
        desktop.activate(editor);
    }
    sim::SimWindow& window(WindowID id) { return *desktop.world.find(id); }

    SimulatedDesktop desktop;
    WindowID back = 0;
    WindowID front = 0;
};

enum class Expected { none, back, front };

struct Case {
    std::string name;
    std::function<void(Scene&)> change;
    Expected expected;
};

TEST(WindowDetector, ChoosesByTitleThenFrameThenOrder) {
    const auto untitle = [](Scene& s) {
        s.window(s.back).entry.name.reset();
        s.window(s.front).entry.name.reset();
    };
    const std::vector<Case> cases{
        {"by title", [](Scene&) {}, Expected::back},
        {"same title twice: nearer the front", [](Scene& s) { s.window(s.front).entry.name = "back"; },
         Expected::front},
        {"title read fails: by frame", [](Scene& s) { s.window(s.back).axTitle.reset(); }, Expected::back},
        {"empty title counts as none",
         [](Scene& s) {
             s.window(s.back).axTitle = "";
             s.window(s.front).entry.name = "";
         },
         Expected::back},
        {"no names in the list: by frame", untitle, Expected::back},
        {"frame off by 1.5",
         [&](Scene& s) {
             untitle(s);
             s.window(s.back).axPosition->y += 1.5;
         },
         Expected::back},
        {"frame off by exactly 2.0: first candidate",
         [&](Scene& s) {
             untitle(s);
             s.window(s.back).axPosition->y += 2.0;
         },
         Expected::front},
        {"missing bounds keys read as 0",
         [&](Scene& s) {
             untitle(s);
             s.window(s.back).entry.bounds->x.reset();
             s.window(s.back).entry.bounds->y.reset();
         },
         Expected::back},
        {"half a frame is no frame",
         [&](Scene& s) {
             untitle(s);
             s.window(s.back).axSize.reset();
         },
         Expected::front},
        {"no trust: first candidate", [](Scene& s) { s.desktop.accessibility.trusted = false; },
         Expected::front},
        {"no focused window: first candidate",
         [](Scene& s) { s.desktop.focus(s.back), s.desktop.world.applications[editor].focusedWindow = 0; },
         Expected::front},
        {"panels are no candidates",
         [](Scene& s) {
             s.window(s.back).entry.layer = 3;
             s.window(s.front).entry.layer = 3;
         },
         Expected::none},
        {"entries that lack a key are skipped",
         [](Scene& s) {
             s.desktop.accessibility.trusted = false;
             s.window(s.front).entry.layer.reset();
         },
         Expected::back},
        {"a number out of range is no number",
         [](Scene& s) {
             s.desktop.accessibility.trusted = false;
             s.window(s.front).entry.number = std::int64_t{1} << 32;
         },
         Expected::back},
        {"windows of others are no candidates",
         [](Scene& s) {
             s.desktop.accessibility.trusted = false;
             s.window(s.front).entry.ownerPID = editor + 1;
         },
         Expected::back},
        {"out of view", [](Scene& s) { s.window(s.back).onScreen = s.window(s.front).onScreen = false; },
         Expected::none},
        {"list fails", [](Scene& s) { s.desktop.windowServer.listFails = true; }, Expected::none},
        {"no frontmost application", [](Scene& s) { s.desktop.world.frontmost.reset(); }, Expected::none},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        Scene scene;
        const WindowID expected = test.expected == Expected::none   ? 0
                                  : test.expected == Expected::back ? scene.back
                                                                    : scene.front;
        test.change(scene);
        const auto found = frontmost(scene.desktop);
        EXPECT_EQ(found ? found->windowID : 0, expected);
    }
}

TEST(WindowDetector, OwnApplicationIsAnsweredWithoutTheWindowList) {
    Scene scene;
    scene.desktop.activate(sim::SimWorld::ownPID);
    EXPECT_FALSE(frontmost(scene.desktop));
    EXPECT_EQ(scene.desktop.windowServer.copies, 0);
}

TEST(WindowDetector, UnnamedApplicationAndUntitledWindow) {
    Scene scene;
    scene.desktop.world.applications[editor].name.reset();
    scene.window(scene.back).entry.name.reset();
    const auto found = frontmost(scene.desktop);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->ownerName, "Unknown");
    EXPECT_EQ(found->windowTitle, "");
    EXPECT_EQ(found->displayLabel(), "Unknown");
}

TEST(WindowDetector, AllWindowsIncludesWhatIsOutOfView) {
    Scene scene;
    const WindowID below = scene.desktop.openWindow(editor, "below", leftHalf);
    const WindowID unlayered = scene.desktop.openWindow(editor, "unlayered", leftHalf);
    const WindowID panel = scene.desktop.openWindow(editor, "panel", leftHalf);
    scene.window(scene.back).onScreen = false;
    scene.window(below).entry.layer = -1;
    scene.window(unlayered).entry.layer.reset();
    scene.window(panel).entry.layer = 25;
    EXPECT_EQ(WindowDetector::allOnScreenWindowIDs(scene.desktop.windowServer),
              (std::unordered_set<WindowID>{scene.back, scene.front, panel}));
    scene.desktop.windowServer.listFails = true;
    EXPECT_TRUE(WindowDetector::allOnScreenWindowIDs(scene.desktop.windowServer).empty());
}

} // namespace
} // namespace skylet
