#include "foundation/PreferenceKeys.h"
#include "input/ScrollScene.h"

#include <gtest/gtest.h>
#include <limits>

namespace skylet {
namespace {

TEST(AXScroller, MovesTheBarByTheDeltaAndTheSensitivity) {
    struct {
        std::optional<double> sensitivity;
        double value;
        double deltaY;
        double expected;
        int writes;
    } const cases[] = {
        {std::nullopt, 0.5, 10, 0.485, 1}, {std::nullopt, 0.5, -10, 0.515, 1},
        {0.01, 0.5, -10, 0.6, 1},          {0.0, 0.5, -10, 0.515, 1},
        {-3.0, 0.5, -10, 0.515, 1},        {std::numeric_limits<double>::quiet_NaN(), 0.5, -10, 0.515, 1},
        {std::nullopt, 0.0, 10, 0, 0},     {std::nullopt, 1.0, -10, 1, 0},
        {std::nullopt, 0.99, -100, 1, 1},  {1.0, 0.5, -1e9, 1, 1},
        {1.0, 0.5, 0.9e-5, 0.5, 0},        {1.0, 0.5, 1.1e-5, 0.5 - 1.1e-5, 1},
    };
    for (const auto& one : cases) {
        ScrollScene s;
        if (one.sensitivity) {
            s.desktop.defaults.setDouble(PreferenceKeys::axScrollSensitivity, *one.sensitivity);
        }
        const auto bar = s.addBar(one.value);
        s.scroll(one.deltaY);
        EXPECT_NEAR(*bar->value, one.expected, 1e-12) << one.value << " by " << one.deltaY;
        EXPECT_EQ(bar->writes, one.writes) << one.value << " by " << one.deltaY;
    }
}

TEST(AXScroller, DropsAHorizontalScrollBeforeTheQueue) {
    ScrollScene s;
    s.scroll(0);
    EXPECT_EQ(s.desktop.windowServer.copies, 0);
    EXPECT_EQ(s.desktop.takeLog(), Lines());
}

TEST(AXScroller, ScrollsTheInnermostAreaUnderThePointer) {
    ScrollScene s;
    const auto outer = s.content().addScrollArea({100, 100, 400, 400}, 0.5);
    const auto inner = outer->add({})->addScrollArea({200, 200, 100, 100}, 0.5);
    const auto twin = s.content().addScrollArea({200, 200, 100, 100}, 0.5);
    const std::pair<platform::Point, sim::SimNodeRef> cases[] = {
        {{250, 250}, inner}, // the twin is no smaller, and found later
        {{200, 200}, inner}, {{299, 299}, inner},  {{300, 250}, outer},   {{250, 300}, outer},
        {{100, 100}, outer}, {{99, 100}, nullptr}, {{500, 250}, nullptr}, {{250, 500}, nullptr},
    };
    for (const auto& [point, scrolled] : cases) {
        for (const auto& area : {outer, inner, twin}) {
            area->verticalBar->writes = 0;
        }
        s.scroll(10, point);
        for (const auto& area : {outer, inner, twin}) {
            EXPECT_EQ(area->verticalBar->writes, area == scrolled ? 1 : 0) << point.x << "," << point.y;
        }
    }
    // A pointer outside of them all is no reason to look again.
    EXPECT_EQ(s.desktop.takeLog(),
              (Lines{s.wid("resolved 3 scrollable area(s) for wid=") + ": 400x400 100x100 100x100"}));
    EXPECT_EQ(s.desktop.windowServer.copies, 1);
}

TEST(AXScroller, TakesOnlyAreasThatCanBeDriven) {
    struct {
        const char* what;
        void (*spoil)(sim::SimNode& area);
        bool isDriven;
    } const cases[] = {
        {"sound", [](sim::SimNode&) {}, true},
        {"of another role", [](sim::SimNode& area) { area.role = "AXGroup"; }, false},
        {"no bar", [](sim::SimNode& area) { area.verticalBar = nullptr; }, false},
        {"fixed", [](sim::SimNode& area) { area.verticalBar->isSettable = false; }, false},
        {"not saying", [](sim::SimNode& area) { area.verticalBar->settableError = -25204; }, false},
        {"nowhere", [](sim::SimNode& area) { area.position.reset(); }, false},
        {"slow bar", [](sim::SimNode& area) { area.verticalBar->answerSeconds = 0.3; }, false},
        {"bar in time", [](sim::SimNode& area) { area.verticalBar->answerSeconds = 0.2; }, true},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        ScrollScene s;
        const auto area = s.content().addScrollArea({100, 100, 640.9, 480.9}, 0.5);
        const auto bar = area->verticalBar;
        one.spoil(*area);
        s.scroll(10);
        EXPECT_EQ(bar->writes, one.isDriven ? 1 : 0);
        EXPECT_EQ(s.desktop.takeLog(),
                  Lines{one.isDriven ? s.wid("resolved 1 scrollable area(s) for wid=") + ": 640x480"
                                     : s.wid("no settable scroll bar in wid=")});
    }
}

TEST(AXScroller, SearchesTwelveLevelsAndTakesEightAreas) {
    for (const int level : {11, 12}) {
        ScrollScene s;
        sim::SimNode* parent = &s.content();
        for (int depth = 1; depth < level; ++depth) {
            parent = parent->add({}).get();
        }
        const auto bar = parent->addScrollArea(ScrollScene::bounds, 0.5)->verticalBar;
        s.scroll(10);
        EXPECT_EQ(bar->writes, level == 11 ? 1 : 0) << level;
    }
    ScrollScene s;
    for (int i = 0; i < 10; ++i) {
        // Later areas are smaller, so that each would be preferred.
        s.content().addScrollArea({100, 100, 600.0 - i, 400}, 0.5);
    }
    s.scroll(10);
    EXPECT_EQ(s.content().children[7]->verticalBar->writes, 1);
    EXPECT_EQ(s.content().children[8]->reads, 0);
}

TEST(AXScroller, LooksAgainAfterFiveSeconds) {
    ScrollScene s;
    s.addBar();
    s.scroll(10);
    const auto inner = s.content().addScrollArea({200, 200, 300, 300}, 0.5)->verticalBar;
    for (const double seconds : {4.999, 0.001, 5.0}) {
        s.desktop.wallClock += seconds;
        s.scroll(10);
        EXPECT_EQ(inner->writes == 0, s.desktop.wallClock < 1005);
    }
    EXPECT_EQ(s.desktop.takeLog(),
              (Lines{s.wid("resolved 1 scrollable area(s) for wid=") + ": 800x600",
                     s.wid("resolved 2 scrollable area(s) for wid=") + ": 800x600 300x300"}))
        << "the same shape is logged once";
}

TEST(AXScroller, ForgetsAWindowButNotItsShape) {
    ScrollScene s;
    s.addBar();
    s.scroll(10);
    s.desktop.scroller.forget(s.target + 1);
    s.scroll(10);
    EXPECT_EQ(s.desktop.windowServer.copies, 1);
    s.desktop.scroller.forget(s.target);
    s.scroll(10);
    EXPECT_EQ(s.desktop.windowServer.copies, 2);
    EXPECT_EQ(s.desktop.takeLog().size(), 1U);
}

TEST(AXScroller, DropsABarThatFails) {
    ScrollScene s;
    const auto bar = s.addBar();
    s.scroll(10);
    (void)s.desktop.takeLog();

    bar->setError = platform::AXError::cannotComplete;
    s.scroll(10);
    s.scroll(10);
    EXPECT_EQ(s.desktop.takeLog(), Lines(2, "axscroll: set failed err=-25204, dropping the cached bar"));
    EXPECT_EQ(s.desktop.windowServer.copies, 2) << "looked for again after the first failure";

    bar->value.reset();
    s.scroll(10);
    s.scroll(10);
    EXPECT_EQ(s.desktop.takeLog(), Lines()) << "a bar that cannot be read is not worth a line";
    EXPECT_EQ(s.desktop.windowServer.copies, 4);
}

TEST(AXScroller, TriesAgainAfterFindingNothing) {
    ScrollScene s;
    s.scroll(10);
    s.desktop.world.find(s.target)->onScreen = false;
    s.scroll(10);
    EXPECT_EQ(s.desktop.takeLog(),
              (Lines{s.wid("no settable scroll bar in wid="), s.wid("no AX window for wid=")}));
    s.desktop.world.find(s.target)->onScreen = true;
    const auto bar = s.addBar();
    s.scroll(10);
    EXPECT_EQ(bar->writes, 1);
}

TEST(AXScroller, WaitsAQuarterOfASecondForAnAnswer) {
    ScrollScene s;
    s.content().add({})->answerSeconds = std::numeric_limits<double>::infinity();
    const auto bar = s.addBar();
    s.scroll(10);
    EXPECT_EQ(bar->writes, 1) << "what does not answer hides nothing else";
    EXPECT_DOUBLE_EQ(s.desktop.accessibility.waited, 2 * 0.25) << "role and children";

    s.desktop.world.applications[editor].isHung = true;
    s.scroll(10);
    EXPECT_DOUBLE_EQ(s.desktop.accessibility.waited, 3 * 0.25) << "the known bar";
    s.desktop.accessibility.trusted = false;
    s.scroll(10);
    EXPECT_EQ(s.desktop.takeLog().back(), s.wid("no AX window for wid="));
}

TEST(AXScroller, EndsWithWorkQueued) {
    sim::SimNodeRef bar;
    {
        ScrollScene s;
        bar = s.addBar();
        s.desktop.scroller.scroll(editor, s.target, 10, {300, 300});
        EXPECT_EQ(bar->writes, 0) << "done inside the call";
    }
    EXPECT_EQ(bar->writes, 0);
}

} // namespace
} // namespace skylet
