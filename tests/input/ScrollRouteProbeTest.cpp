#include "foundation/PreferenceKeys.h"
#include "input/ScrollScene.h"

#include <gtest/gtest.h>

namespace skylet {
namespace {

const std::string worked = "RESULT — SCROLLED, and focus did not move. This route WORKS.";
const std::string unmoved = "RESULT — the set was accepted but nothing moved. This route is closed.";
const std::string stolen = "RESULT — scrolled, but the frontmost app CHANGED. Focus was stolen.";

struct ProbeScene : ScrollScene {
    ProbeScene() {
        desktop.defaults.setBool(PreferenceKeys::axScrollProbe, true);
        desktop.world.frontmost = editor;
    }
    void probe() { desktop.scroller.probe(editor, target); }
    // What was logged, without the prefix and without a probe's first line.
    Lines said() {
        Lines lines = desktop.takeLog();
        std::erase(lines, "axprobe: START pid=500 wid=" + std::to_string(target) + " frontmost=Editor");
        for (std::string& line : lines) {
            EXPECT_TRUE(line.starts_with("axprobe: ")) << line;
            line.erase(0, std::string("axprobe: ").size());
        }
        return lines;
    }
    Lines outcome() {
        probe();
        desktop.advance(1);
        return said();
    }
};

TEST(ScrollRouteProbe, IsOffUnlessWanted) {
    ProbeScene s;
    s.addBar();
    s.desktop.defaults.setBool(PreferenceKeys::axScrollProbe, false);
    EXPECT_EQ(s.outcome(), Lines());
    s.desktop.defaults.remove(PreferenceKeys::axScrollProbe);
    EXPECT_EQ(s.outcome(), Lines());
    EXPECT_EQ(s.desktop.windowServer.copies, 0);
}

TEST(ScrollRouteProbe, MovesATenthAwayFromTheNearEnd) {
    struct {
        std::optional<double> minimum, maximum;
        double value, target;
    } const cases[] = {
        {{}, {}, 0.5, 0.6},     {{}, {}, 0.9, 0.8},           {0.0, 1.0, 0.84, 0.94},
        {0.0, 1.0, 0.85, 0.75}, {100.0, 300.0, 269.0, 289.0}, {100.0, 300.0, 270.0, 250.0},
    };
    Lines outcome;
    for (const auto& one : cases) {
        ProbeScene s;
        const auto bar = s.addBar(one.value);
        bar->minimum = one.minimum;
        bar->maximum = one.maximum;
        outcome = s.outcome();
        EXPECT_EQ(outcome.back(), worked);
        EXPECT_NEAR(*bar->value, one.target, 1e-9);
    }
    EXPECT_EQ(outcome, (Lines{"found 1 AXScrollArea(s)",
                              "scrollbar value=270.0000 min=100.0000 max=300.0000 settable=true (err=0)",
                              "set value 270.0000 -> 250.0000 result=0",
                              "value after=250.0000 moved=true frontmost=Editor (was Editor)", worked}));
}

TEST(ScrollRouteProbe, SaysWhatIsMissing) {
    const std::string one = "found 1 AXScrollArea(s)";
    const std::string sound = "scrollbar value=0.5000 min=nil max=nil settable=true (err=0)";
    const std::string closed = "RESULT — the scroll position is NOT settable. This route is closed.";
    const std::string still = "value after=0.5000 moved=false frontmost=Editor (was Editor)";
    struct {
        void (*spoil)(ProbeScene& s, sim::SimNode& area);
        Lines expected;
    } const cases[] = {
        {[](ProbeScene& s, sim::SimNode&) { s.desktop.world.find(s.target)->onScreen = false; },
         {"could not find the AX window — cannot proceed"}},
        {[](ProbeScene& s, sim::SimNode&) { s.content().children.clear(); },
         {"found 0 AXScrollArea(s)", "RESULT — no scroll area in this window. Nothing to drive."}},
        {[](ProbeScene& s, sim::SimNode& area) { area.verticalBar = nullptr, s.addArea(); },
         {"found 2 AXScrollArea(s)", "RESULT — scroll area has no vertical scroll bar."}},
        {[](ProbeScene&, sim::SimNode& area) { area.verticalBar->isSettable = false; },
         {one, "scrollbar value=0.5000 min=nil max=nil settable=false (err=0)", closed}},
        {[](ProbeScene&, sim::SimNode& area) { area.verticalBar->settableError = -25205; },
         {one, "scrollbar value=0.5000 min=nil max=nil settable=false (err=-25205)", closed}},
        {[](ProbeScene&, sim::SimNode& area) { area.verticalBar->value.reset(); },
         {one, "scrollbar value=nil min=nil max=nil settable=true (err=0)", closed}},
        {[](ProbeScene&, sim::SimNode& area) { area.verticalBar->maximum = 0; },
         {one, "scrollbar value=0.5000 min=nil max=0.0000 settable=true (err=0)",
          "RESULT — zero scroll range, nothing to move."}},
        {[](ProbeScene&, sim::SimNode& area) { area.verticalBar->ignoresWrites = true; },
         {one, sound, "set value 0.5000 -> 0.6000 result=0", still, unmoved}},
        {[](ProbeScene&, sim::SimNode& area) { area.verticalBar->setError = -25204; },
         {one, sound, "set value 0.5000 -> 0.6000 result=-25204", still, unmoved}},
    };
    for (const auto& test : cases) {
        ProbeScene s;
        test.spoil(s, *s.addArea());
        EXPECT_EQ(s.outcome(), test.expected);
    }
}

TEST(ScrollRouteProbe, LooksAtTheBarAndTheFocusAfterAFifthOfASecond) {
    struct {
        void (*meanwhile)(ProbeScene& s, sim::SimNode& bar);
        Lines end;
    } const cases[] = {
        {[](ProbeScene& s, sim::SimNode&) { s.desktop.world.frontmost = browser; },
         {"value after=0.6000 moved=true frontmost=Browser (was Editor)", stolen}},
        {[](ProbeScene& s, sim::SimNode&) { s.desktop.world.frontmost.reset(); },
         {"value after=0.6000 moved=true frontmost=? (was Editor)", stolen}},
        {[](ProbeScene&, sim::SimNode& bar) { bar.value.reset(); },
         {"value after=nil moved=false frontmost=Editor (was Editor)", unmoved}},
    };
    for (const auto& one : cases) {
        ProbeScene s;
        const auto bar = s.addBar();
        s.probe();
        s.desktop.advance(0.199);
        EXPECT_EQ(s.said().back(), "set value 0.5000 -> 0.6000 result=0");
        one.meanwhile(s, *bar);
        s.desktop.advance(0.002);
        EXPECT_EQ(s.said(), one.end);
    }
}

TEST(ScrollRouteProbe, HoldsBackWhatComesAfterIt) {
    ProbeScene s;
    const auto bar = s.addBar();
    const auto scroll = [&s](double deltaY) {
        s.desktop.scroller.scroll(editor, s.target, deltaY, {300, 300});
    };
    scroll(100);
    s.probe();
    scroll(-100);
    s.desktop.scroller.forget(s.target);
    s.probe();
    s.desktop.advance(0.1);
    scroll(-100);
    EXPECT_NEAR(*bar->value, 0.5 - 0.15 + 0.1, 1e-9);
    s.desktop.advance(0.15);
    EXPECT_NEAR(*bar->value, 0.5 + 0.1 + 0.1, 1e-9) << "one scroll, then the second probe";
    s.desktop.advance(1);
    EXPECT_NEAR(*bar->value, 0.5 + 0.15 + 0.1 + 0.1, 1e-9);
    EXPECT_EQ(std::ranges::count(s.desktop.takeLog(), "axprobe: " + worked), 2);
}

TEST(ScrollRouteProbe, MayBeCutShort) {
    for (const double seconds : {0.0, 0.1}) {
        ProbeScene s;
        s.addBar();
        auto& desktop = s.desktop;
        std::optional<AXScroller> scroller;
        scroller.emplace(AXScroller::Environment{desktop.accessibility, desktop.windowServer,
                                                 desktop.workspace, desktop.defaults, desktop.mainQueue,
                                                 desktop.scrollQueues, desktop.log});
        scroller->probe(editor, s.target);
        desktop.advance(seconds);
        scroller.reset();
        desktop.advance(1);
        for (const std::string& line : desktop.takeLog()) {
            EXPECT_EQ(line.find("RESULT"), std::string::npos) << line;
        }
    }
}

} // namespace
} // namespace skylet
