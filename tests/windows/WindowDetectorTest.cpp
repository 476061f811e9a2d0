#include "windows/WindowDetector.h"

#include "support/SimulatedDesktop.h"

#include <functional>
#include <gtest/gtest.h>

namespace skylet {
namespace {

using platform::WindowID;
using sim::SimulatedDesktop;

constexpr platform::Rect leftHalf{0, 0, 400, 300};
constexpr platform::Rect rightHalf{400, 0, 400, 300};

// An editor with a window behind and a window in front, of which the one behind has the focus.
struct Scene {
    Scene() {
        desktop.focus(backID);
        desktop.activate(editor);
    }
    sim::SimWindow& back() { return *desktop.world.find(backID); }
    sim::SimWindow& front() { return *desktop.world.find(frontID); }
    std::optional<ForeignWindow> frontmost() {
        return WindowDetector::getFrontmostForeignWindow(desktop.workspace, desktop.accessibility,
                                                         desktop.windowServer);
    }

    SimulatedDesktop desktop;
    WindowID backID = desktop.openWindow(editor, "back", leftHalf);
    WindowID frontID = desktop.openWindow(editor, "front", rightHalf);
};

// Which window is chosen after a change.
std::string chosen(const std::function<void(Scene&)>& change) {
    Scene s;
    const WindowID backID = s.backID;
    change(s);
    const auto found = s.frontmost();
    return !found ? "none" : found->windowID == backID ? "back" : "front";
}

std::string chosenWithoutNames(const std::function<void(Scene&)>& change) {
    return chosen([&](Scene& s) {
        s.back().entry.name.reset();
        s.front().entry.name.reset();
        change(s);
    });
}

std::string chosenWithoutTrust(const std::function<void(Scene&)>& change) {
    return chosen([&](Scene& s) {
        s.desktop.accessibility.trusted = false;
        change(s);
    });
}

TEST(WindowDetector, ChoosesByTitle) {
    EXPECT_EQ(chosen([](Scene&) {}), "back");
    EXPECT_EQ(chosen([](Scene& s) { s.front().entry.name = "back"; }), "front") << "nearer the front";
    EXPECT_EQ(chosen([](Scene& s) { s.back().ax->title.reset(); }), "back") << "by frame";
    EXPECT_EQ(chosen([](Scene& s) { s.back().ax->title = "", s.front().entry.name = ""; }), "back")
        << "an empty title counts as none";
}

TEST(WindowDetector, ChoosesByFrameWhereThereIsNoTitle) {
    EXPECT_EQ(chosenWithoutNames([](Scene&) {}), "back");
    EXPECT_EQ(chosenWithoutNames([](Scene& s) { s.back().ax->position->y += 1.5; }), "back");
    EXPECT_EQ(chosenWithoutNames([](Scene& s) { s.back().ax->position->y += 2.0; }), "front");
    EXPECT_EQ(chosenWithoutNames([](Scene& s) { s.back().ax->size.reset(); }), "front") << "half a frame";
    EXPECT_EQ(chosenWithoutNames([](Scene& s) { s.back().entry.bounds->x.reset(); }), "back") << "reads as 0";
}

TEST(WindowDetector, TakesTheFirstCandidateElse) {
    EXPECT_EQ(chosenWithoutTrust([](Scene&) {}), "front");
    EXPECT_EQ(chosen([](Scene& s) { s.desktop.world.applications[editor].focusedWindow = 0; }), "front");
    // Entries that lack a key, whose number is out of range, that are another's.
    EXPECT_EQ(chosenWithoutTrust([](Scene& s) { s.front().entry.layer.reset(); }), "back");
    EXPECT_EQ(chosenWithoutTrust([](Scene& s) { s.front().entry.number = std::int64_t{1} << 32; }), "back");
    EXPECT_EQ(chosenWithoutTrust([](Scene& s) { s.front().entry.ownerPID = browser; }), "back");
}

TEST(WindowDetector, FindsNothingWhereNothingIs) {
    EXPECT_EQ(chosen([](Scene& s) { s.back().entry.layer = s.front().entry.layer = 3; }), "none") << "panels";
    EXPECT_EQ(chosen([](Scene& s) { s.back().onScreen = s.front().onScreen = false; }), "none");
    EXPECT_EQ(chosen([](Scene& s) { s.desktop.windowServer.listFails = true; }), "none");
    EXPECT_EQ(chosen([](Scene& s) { s.desktop.world.frontmost.reset(); }), "none");
    Scene own;
    own.desktop.activate(sim::SimWorld::ownPID);
    EXPECT_FALSE(own.frontmost());
    EXPECT_EQ(own.desktop.windowServer.copies, 0) << "answered without the list";
}

TEST(WindowDetector, UnnamedApplicationAndUntitledWindow) {
    Scene scene;
    scene.desktop.world.applications[editor].name.reset();
    scene.back().entry.name.reset();
    const auto found = scene.frontmost();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->ownerName, "Unknown");
    EXPECT_EQ(found->displayLabel(), "Unknown");
}

TEST(WindowDetector, AllWindowsIncludesWhatIsOutOfView) {
    SimulatedDesktop desktop;
    std::unordered_set<WindowID> expected;
    for (const std::optional<std::int64_t> layer : {std::optional<std::int64_t>(), {-1}, {0}, {25}}) {
        const WindowID windowID = desktop.openWindow(editor, "window", leftHalf);
        desktop.world.find(windowID)->entry.layer = layer;
        desktop.world.find(windowID)->onScreen = layer != 0;
        if (layer.value_or(-1) >= 0) {
            expected.insert(windowID);
        }
    }
    EXPECT_EQ(WindowDetector::allOnScreenWindowIDs(desktop.windowServer), expected);
    desktop.windowServer.listFails = true;
    EXPECT_TRUE(WindowDetector::allOnScreenWindowIDs(desktop.windowServer).empty());
}

} // namespace
} // namespace skylet
