#include "pinning/PinnedWindowTracker.h"

#include "support/SimulatedDesktop.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace skylet {
namespace {

using platform::ProcessID;
using platform::WindowID;
using Order = sim::SimPanel::Order;

constexpr ProcessID editor = 500;
constexpr ProcessID browser = 600;
constexpr platform::Rect place{100, 100, 800, 600};

class PinnedWindowTrackerTest : public testing::Test {
  protected:
    PinnedWindowTrackerTest() {
        desktop.launchApplication(editor, "Editor");
        desktop.launchApplication(browser, "Browser");
        document = desktop.openWindow(editor, "doc", place);
        page = desktop.openWindow(browser, "page", {300, 100, 800, 600});
        desktop.activate(browser);
        desktop.advance(0);
        tracker->onChange = [this] {
            ++changes;
        };
    }
    void pin(WindowID windowID) const { tracker->pin(desktop.foreign(windowID)); }
    [[nodiscard]] const WindowOverlay& overlay(WindowID windowID) const {
        return *tracker->overlays().at(windowID);
    }
    [[nodiscard]] int reassertions() {
        const auto lines = desktop.takeLog();
        return static_cast<int>(std::ranges::count_if(
            lines, [](const std::string& line) { return line.starts_with("overlay: reasserting"); }));
    }
    // What must hold after every operation.
    void expectConsistent() const {
        EXPECT_EQ(tracker->overlays().size(), tracker->pinnedWindows().size());
        for (const PinnedWindow& window : tracker->pinnedWindows()) {
            EXPECT_TRUE(tracker->overlays().contains(window.windowID));
            EXPECT_TRUE(tracker->isPinned(window.windowID));
        }
        EXPECT_EQ(desktop.panels.panels.size(), tracker->overlays().size());
    }

    mutable sim::SimulatedDesktop desktop;
    OverlayInputRoutes routes;
    std::unique_ptr<PinnedWindowTracker> tracker =
        std::make_unique<PinnedWindowTracker>(desktop.environment, routes);
    WindowID document = 0;
    WindowID page = 0;
    int changes = 0;
};

TEST(PinnedWindow, LabelsShortenTheTitleOnly) {
    const auto label = [](const std::string& title) {
        return PinnedWindow(
                   ForeignWindow{.windowID = 1, .ownerPID = 2, .ownerName = "Editor", .windowTitle = title})
            .displayLabel();
    };
    EXPECT_EQ(label(""), "Editor");
    EXPECT_EQ(label(std::string(40, 'x')), "Editor — " + std::string(40, 'x'));
    EXPECT_EQ(label(std::string(41, 'x')), "Editor — " + std::string(40, 'x') + "…");
}

TEST_F(PinnedWindowTrackerTest, PinShowsTheOverlayAfterAMoment) {
    pin(document);
    EXPECT_EQ(changes, 1);
    expectConsistent();
    EXPECT_EQ(desktop.takeLog(), std::vector{"pin: overlay created for wid=" + std::to_string(document)});
    desktop.advance(0.14);
    EXPECT_FALSE(overlay(document).isPinVisible());
    desktop.advance(0.01);
    EXPECT_TRUE(overlay(document).isPinVisible());
}

TEST_F(PinnedWindowTrackerTest, PinningAgainUnderAnotherTitleChangesNothing) {
    pin(document);
    ForeignWindow renamed = desktop.foreign(document);
    renamed.windowTitle = "renamed";
    (void)desktop.takeLog();
    tracker->pin(renamed);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(tracker->pinnedWindows().begin()->windowTitle, "doc");
    EXPECT_TRUE(desktop.takeLog().empty());
}

TEST_F(PinnedWindowTrackerTest, UnpinHidesAndTellsOnceAndIgnoresStrangers) {
    pin(document);
    tracker->unpin(page);
    EXPECT_EQ(changes, 1);
    (void)desktop.takeLog();
    tracker->unpin(document);
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(desktop.takeLog(), std::vector{"overlay: hideOverlay wid=" + std::to_string(document)});
    expectConsistent();
    tracker->unpinAll();
    EXPECT_EQ(changes, 3) << "unpinAll tells even when nothing was pinned";
}

TEST_F(PinnedWindowTrackerTest, TheOverlayStepsBehindWhileItsWindowIsInFront) {
    pin(document);
    pin(page);
    desktop.advance(0.35);
    EXPECT_TRUE(overlay(document).isPinVisible());
    EXPECT_FALSE(overlay(page).isPinVisible()) << "its window is the frontmost one";
    desktop.activate(editor);
    desktop.advance(0.12);
    EXPECT_FALSE(overlay(document).isPinVisible());
    EXPECT_TRUE(overlay(page).isPinVisible());
    desktop.world.frontmost.reset();
    desktop.advance(0.35);
    EXPECT_TRUE(overlay(document).isPinVisible()) << "nothing is in front";
}

TEST_F(PinnedWindowTrackerTest, OnlyAnotherApplicationsActivationReconcilesEarly) {
    pin(document);
    desktop.advance(0.35); // the tick at 0.35; the next comes at 0.70
    const std::vector<std::pair<std::optional<platform::RunningApplication>, int>> cases{
        {platform::RunningApplication{.processIdentifier = browser, .localizedName = {}}, 1},
        {platform::RunningApplication{.processIdentifier = sim::SimWorld::ownPID, .localizedName = {}}, 0},
        {std::nullopt, 0},
    };
    for (const auto& [application, expected] : cases) {
        (void)desktop.takeLog();
        desktop.workspace.postDidActivate(application);
        desktop.advance(0.12);
        EXPECT_EQ(reassertions(), expected);
        desktop.advance(0.23);
    }
}

TEST_F(PinnedWindowTrackerTest, ClosedWindowsDropOutButHiddenOnesStay) {
    const WindowID second = desktop.openWindow(editor, "second", place);
    pin(document);
    pin(second);
    pin(page);
    changes = 0;
    desktop.world.find(page)->onScreen = false;
    desktop.closeWindow(document);
    desktop.closeWindow(second);
    desktop.advance(1.9);
    EXPECT_EQ(tracker->pinnedWindows().size(), 3U);
    desktop.advance(0.1);
    EXPECT_EQ(changes, 1) << "one change for all of them";
    EXPECT_TRUE(tracker->isPinned(page));
    expectConsistent();
    desktop.advance(10);
    EXPECT_EQ(changes, 1);
}

TEST_F(PinnedWindowTrackerTest, QuittingTheOwnerDropsItsWindowsAtOnce) {
    pin(document);
    pin(desktop.openWindow(editor, "second", place));
    pin(page);
    changes = 0;
    desktop.workspace.postDidTerminate(std::nullopt);
    desktop.quitApplication(editor);
    desktop.advance(0);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(tracker->pinnedWindows().size(), 1U);
    expectConsistent();
}

TEST_F(PinnedWindowTrackerTest, NothingHappensOnceTheTrackerIsGone) {
    pin(document);
    desktop.activate(editor);
    tracker.reset();
    desktop.quitApplication(browser);
    desktop.advance(5);
    EXPECT_TRUE(desktop.panels.panels.empty());
    EXPECT_TRUE(desktop.capture.streams.empty());
}

TEST_F(PinnedWindowTrackerTest, AnySequenceKeepsOverlaysAndRecordsTheSame) {
    std::mt19937 random(20); // NOLINT(bugprone-random-generator-seed): a failure must come again
    std::vector<WindowID> opened{document, page};
    const auto any = [&random](std::size_t count) {
        return random() % count;
    };
    for (int step = 0; step < 3000 && !HasFailure(); ++step) {
        const WindowID windowID = opened[any(opened.size())];
        const ProcessID pid = any(2) == 0 ? editor : browser;
        const bool listed = desktop.world.find(windowID) != nullptr;
        switch (any(10)) {
        case 0:
            desktop.launchApplication(pid, "Again");
            opened.push_back(desktop.openWindow(pid, "w" + std::to_string(step), place));
            break;
        case 1:
            desktop.closeWindow(windowID);
            break;
        case 2:
        case 3:
            listed ? pin(windowID) : tracker->unpin(windowID);
            break;
        case 4:
            tracker->unpin(windowID);
            break;
        case 5:
            any(20) == 0 ? tracker->unpinAll() : desktop.quitApplication(pid);
            break;
        case 6:
            desktop.activate(pid);
            break;
        case 7:
            desktop.capture.listsWindows = any(3) != 0;
            desktop.capture.answerDelay = static_cast<double>(any(3)) * 0.3;
            break;
        case 8:
            if (!desktop.capture.streams.empty()) {
                desktop.capture.streams[any(desktop.capture.streams.size())]->running = false;
            }
            break;
        default:
            break;
        }
        expectConsistent();
        desktop.advance(static_cast<double>(any(8)) * 0.1);
        expectConsistent();
    }
    tracker->unpinAll();
    desktop.advance(5);
    EXPECT_TRUE(desktop.capture.streams.empty());
    EXPECT_EQ(desktop.capture.prepared, 0);
}

} // namespace
} // namespace skylet
