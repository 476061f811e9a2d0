#include "foundation/PreferenceKeys.h"
#include "input/ScrollScene.h"

#include <gtest/gtest.h>

namespace skylet {
namespace {

using Lines = std::vector<std::string>;

struct ProbeScene : ScrollScene {
    ProbeScene() {
        desktop.defaults.setBool(PreferenceKeys::axScrollProbe, true);
        desktop.launchApplication(browser, "Browser");
        desktop.world.frontmost = editor;
    }
    static constexpr platform::ProcessID browser = 600;

    void probe() {
        scroller.probe(editor, target);
        desktop.advance(1);
    }
    // What a probe logs after its first line, without the prefix.
    Lines outcome() {
        probe();
        Lines lines = desktop.takeLog();
        EXPECT_EQ(lines.at(0), "axprobe: START pid=500 wid=" + std::to_string(target) + " frontmost=Editor");
        lines.erase(lines.begin());
        for (std::string& line : lines) {
            line.erase(0, std::string("axprobe: ").size());
        }
        return lines;
    }
};

TEST(ScrollRouteProbe, IsOffUnlessWanted) {
    for (const bool isSet : {false, true}) {
        ScrollScene s;
        s.content().addScrollArea({100, 100, 800, 600}, 0.5);
        if (isSet) {
            s.desktop.defaults.setBool(PreferenceKeys::axScrollProbe, false);
        }
        s.scroller.probe(ScrollScene::editor, s.target);
        s.desktop.advance(1);
        EXPECT_EQ(s.desktop.takeLog(), Lines());
        EXPECT_EQ(s.desktop.windowServer.copies, 0);
    }
}

TEST(ScrollRouteProbe, MovesATenthAwayFromTheNearEnd) {
    struct {
        std::optional<double> minimum;
        std::optional<double> maximum;
        double value;
        double target;
        const char* bounds;
        const char* step;
    } const cases[] = {
        {std::nullopt, std::nullopt, 0.5, 0.6, "min=nil max=nil", "0.5000 -> 0.6000"},
        {std::nullopt, std::nullopt, 0.9, 0.8, "min=nil max=nil", "0.9000 -> 0.8000"},
        {0.0, 1.0, 0.84, 0.94, "min=0.0000 max=1.0000", "0.8400 -> 0.9400"},
        {0.0, 1.0, 0.85, 0.75, "min=0.0000 max=1.0000", "0.8500 -> 0.7500"},
        {100.0, 300.0, 269.0, 289.0, "min=100.0000 max=300.0000", "269.0000 -> 289.0000"},
        {100.0, 300.0, 270.0, 250.0, "min=100.0000 max=300.0000", "270.0000 -> 250.0000"},
    };
    for (const auto& one : cases) {
        ProbeScene s;
        const auto bar = s.content().addScrollArea({100, 100, 800, 600}, one.value)->verticalBar;
        bar->minimum = one.minimum;
        bar->maximum = one.maximum;
        const std::string step = one.step;
        const std::string before = step.substr(0, step.find(' '));
        const std::string after = step.substr(step.rfind(' ') + 1);
        EXPECT_EQ(s.outcome(),
                  (Lines{"found 1 AXScrollArea(s)",
                         "scrollbar value=" + before + " " + one.bounds + " settable=true (err=0)",
                         "set value " + step + " result=0",
                         "value after=" + after + " moved=true frontmost=Editor (was Editor)",
                         "RESULT — SCROLLED, and focus did not move. This route WORKS."}));
        EXPECT_NEAR(*bar->value, one.target, 1e-9) << step;
    }
}

TEST(ScrollRouteProbe, SaysWhatIsMissing) {
    constexpr auto closed = "RESULT — the scroll position is NOT settable. This route is closed.";
    struct {
        void (*spoil)(ProbeScene& s, sim::SimNode& area);
        Lines expected;
    } const cases[] = {
        {[](ProbeScene& s, sim::SimNode&) { s.desktop.world.find(s.target)->onScreen = false; },
         {"could not find the AX window — cannot proceed"}},
        {[](ProbeScene& s, sim::SimNode&) { s.content().children.clear(); },
         {"found 0 AXScrollArea(s)", "RESULT — no scroll area in this window. Nothing to drive."}},
        {[](ProbeScene& s, sim::SimNode& area) {
             area.verticalBar = nullptr;
             s.content().addScrollArea({100, 100, 50, 50}, 0.5);
         },
         {"found 2 AXScrollArea(s)", "RESULT — scroll area has no vertical scroll bar."}},
        {[](ProbeScene&, sim::SimNode& area) { area.verticalBar->isSettable = false; },
         {"found 1 AXScrollArea(s)", "scrollbar value=0.5000 min=nil max=nil settable=false (err=0)",
          closed}},
        {[](ProbeScene&, sim::SimNode& area) { area.verticalBar->settableError = -25205; },
         {"found 1 AXScrollArea(s)", "scrollbar value=0.5000 min=nil max=nil settable=false (err=-25205)",
          closed}},
        {[](ProbeScene&, sim::SimNode& area) { area.verticalBar->value.reset(); },
         {"found 1 AXScrollArea(s)", "scrollbar value=nil min=nil max=nil settable=true (err=0)", closed}},
        {[](ProbeScene&, sim::SimNode& area) { area.verticalBar->maximum = 0; },
         {"found 1 AXScrollArea(s)", "scrollbar value=0.5000 min=nil max=0.0000 settable=true (err=0)",
          "RESULT — zero scroll range, nothing to move."}},
        {[](ProbeScene&, sim::SimNode& area) { area.verticalBar->ignoresWrites = true; },
         {"found 1 AXScrollArea(s)", "scrollbar value=0.5000 min=nil max=nil settable=true (err=0)",
          "set value 0.5000 -> 0.6000 result=0",
          "value after=0.5000 moved=false frontmost=Editor (was Editor)",
          "RESULT — the set was accepted but nothing moved. This route is closed."}},
        {[](ProbeScene&, sim::SimNode& area) { area.verticalBar->setError = -25204; },
         {"found 1 AXScrollArea(s)", "scrollbar value=0.5000 min=nil max=nil settable=true (err=0)",
          "set value 0.5000 -> 0.6000 result=-25204",
          "value after=0.5000 moved=false frontmost=Editor (was Editor)",
          "RESULT — the set was accepted but nothing moved. This route is closed."}},
    };
    for (const auto& one : cases) {
        ProbeScene s;
        const auto area = s.content().addScrollArea({100, 100, 800, 600}, 0.5);
        one.spoil(s, *area);
        EXPECT_EQ(s.outcome(), one.expected);
    }
}

TEST(ScrollRouteProbe, LooksAtTheBarAndTheFocusAfterAFifthOfASecond) {
    struct {
        void (*meanwhile)(ProbeScene& s, sim::SimNode& bar);
        Lines end;
    } const cases[] = {
        {[](ProbeScene& s, sim::SimNode&) { s.desktop.world.frontmost = ProbeScene::browser; },
         {"value after=0.6000 moved=true frontmost=Browser (was Editor)",
          "RESULT — scrolled, but the frontmost app CHANGED. Focus was stolen."}},
        {[](ProbeScene& s, sim::SimNode&) { s.desktop.world.frontmost.reset(); },
         {"value after=0.6000 moved=true frontmost=? (was Editor)",
          "RESULT — scrolled, but the frontmost app CHANGED. Focus was stolen."}},
        {[](ProbeScene&, sim::SimNode& bar) { bar.value.reset(); },
         {"value after=nil moved=false frontmost=Editor (was Editor)",
          "RESULT — the set was accepted but nothing moved. This route is closed."}},
    };
    for (const auto& one : cases) {
        ProbeScene s;
        const auto bar = s.content().addScrollArea({100, 100, 800, 600}, 0.5)->verticalBar;
        s.scroller.probe(ScrollScene::editor, s.target);
        s.desktop.advance(0.199);
        EXPECT_EQ(s.desktop.takeLog().back(), "axprobe: set value 0.5000 -> 0.6000 result=0");
        one.meanwhile(s, *bar);
        s.desktop.advance(0.002);
        Lines expected;
        for (const std::string& line : one.end) {
            expected.push_back("axprobe: " + line);
        }
        EXPECT_EQ(s.desktop.takeLog(), expected);
    }
}

TEST(ScrollRouteProbe, HoldsBackWhatComesAfterIt) {
    ProbeScene s;
    const auto bar = s.content().addScrollArea({100, 100, 800, 600}, 0.5)->verticalBar;
    s.scroller.scroll(ScrollScene::editor, s.target, 100, {300, 300});
    s.scroller.probe(ScrollScene::editor, s.target);
    s.scroller.scroll(ScrollScene::editor, s.target, -100, {300, 300});
    s.scroller.forget(s.target);
    s.scroller.probe(ScrollScene::editor, s.target);
    s.desktop.advance(0.1);
    s.scroller.scroll(ScrollScene::editor, s.target, -100, {300, 300});
    EXPECT_NEAR(*bar->value, 0.5 - 0.15 + 0.1, 1e-9);
    s.desktop.advance(0.15);
    EXPECT_NEAR(*bar->value, 0.5 + 0.1 + 0.1, 1e-9) << "one scroll, then the second probe";
    s.desktop.advance(1);
    EXPECT_NEAR(*bar->value, 0.5 + 0.15 + 0.1 + 0.1, 1e-9);
    const Lines lines = s.desktop.takeLog();
    EXPECT_EQ(
        std::ranges::count(lines, "axprobe: RESULT — SCROLLED, and focus did not move. This route WORKS."),
        2);
}

TEST(ScrollRouteProbe, MayBeCutShort) {
    for (const double seconds : {0.0, 0.1}) {
        ProbeScene s;
        s.content().addScrollArea({100, 100, 800, 600}, 0.5);
        auto scroller = std::make_unique<AXScroller>(
            AXScroller::Environment{s.desktop.accessibility, s.desktop.windowServer, s.desktop.workspace,
                                    s.desktop.defaults, s.desktop.mainQueue, s.queues, s.desktop.log});
        scroller->probe(ScrollScene::editor, s.target);
        s.desktop.advance(seconds);
        scroller.reset();
        s.desktop.advance(1);
        for (const std::string& line : s.desktop.takeLog()) {
            EXPECT_EQ(line.find("RESULT"), std::string::npos) << line;
        }
    }
}

} // namespace
} // namespace skylet
