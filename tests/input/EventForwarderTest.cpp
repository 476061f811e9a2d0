// What a forwarded event carries, and where it lands.
#include "input/EventForwarder.h"

#include "support/SimulatedDesktop.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace skylet {
namespace {

using platform::EventType;
using platform::InputEvent;
using platform::Point;
using platform::SyntheticEvent;

constexpr platform::ProcessID editor = 500;

class EventForwarderTest : public testing::Test {
  protected:
    EventForwarderTest() {
        desktop.launchApplication(editor, "Editor");
        window = desktop.openWindow(editor, "doc", {100, 200, 1000, 500});
    }
    // The one event that was posted, or nothing.
    std::optional<SyntheticEvent> forward(const InputEvent& event, platform::Size size = {500, 250}) {
        desktop.eventPoster.posted.clear();
        EventForwarder::forward(desktop.environment.windowServer, desktop.eventPoster, event,
                                {window, editor, size});
        if (desktop.eventPoster.posted.empty()) {
            return std::nullopt;
        }
        EXPECT_EQ(desktop.eventPoster.posted.size(), 1U);
        EXPECT_EQ(desktop.eventPoster.posted.front().pid, editor);
        return desktop.eventPoster.posted.front().event;
    }

    sim::SimulatedDesktop desktop;
    platform::WindowID window = 0;
};

TEST_F(EventForwarderTest, MapsProportionallyAndDropsWhatLiesOutside) {
    struct Case {
        Point location;
        std::optional<Point> target;
    };
    const std::vector<Case> cases{
        {{150, 175}, Point{400, 350}}, {{0, 250}, Point{100, 200}}, {{500, 0}, Point{1100, 700}},
        {{500.01, 10}, std::nullopt},  {{-0.01, 10}, std::nullopt}, {{10, 250.01}, std::nullopt},
        {{10, -0.01}, std::nullopt},
    };
    for (const Case& c : cases) {
        const auto posted = forward({.type = EventType::leftMouseDown, .locationInWindow = c.location});
        ASSERT_EQ(posted.has_value(), c.target.has_value()) << c.location.x << "," << c.location.y;
        if (posted) {
            EXPECT_NEAR(posted->location.x, c.target->x, 1e-9);
            EXPECT_NEAR(posted->location.y, c.target->y, 1e-9);
        }
    }
    EXPECT_FALSE(forward({.type = EventType::leftMouseDown}, {0, 250}));
    desktop.closeWindow(window);
    EXPECT_FALSE(forward({.type = EventType::leftMouseDown, .locationInWindow = {10, 10}}));
}

TEST_F(EventForwarderTest, MouseEventsCarryTheirFieldsInOrder) {
    using Field = SyntheticEvent::Field;
    const auto id = std::int64_t{window};
    const std::vector<Field> target{
        {40, std::int64_t{editor}}, {91, id}, {92, id}, {51, id}, {58, std::int64_t{1}}};
    struct Case {
        EventType type;
        platform::PostedMouseButton button;
        bool hasNumber;
    };
    using Button = platform::PostedMouseButton;
    for (const Case& c : std::vector<Case>{{EventType::leftMouseDown, Button::left, false},
                                           {EventType::leftMouseUp, Button::left, false},
                                           {EventType::rightMouseDown, Button::right, false},
                                           {EventType::rightMouseUp, Button::right, false},
                                           {EventType::leftMouseDragged, Button::left, false},
                                           {EventType::rightMouseDragged, Button::right, false},
                                           {EventType::otherMouseDown, Button::center, true},
                                           {EventType::otherMouseUp, Button::center, true},
                                           {EventType::otherMouseDragged, Button::center, true}}) {
        const auto posted = forward({.type = c.type,
                                     .locationInWindow = {1, 1},
                                     .modifierFlags = 0x100000 | 0x20000 | 0x10000 | 0x8,
                                     .clickCount = 0,
                                     .pressure = 0.5,
                                     .buttonNumber = 3});
        ASSERT_TRUE(posted);
        EXPECT_EQ(static_cast<int>(posted->type), static_cast<int>(c.type));
        EXPECT_EQ(posted->button, c.button);
        EXPECT_EQ(posted->flags, 0x120000U);
        std::vector<Field> expected{{1, std::int64_t{1}}, {2, 0.5}};
        if (c.hasNumber) {
            expected.push_back({3, std::int64_t{3}});
        }
        expected.insert(expected.end(), target.begin(), target.end());
        EXPECT_EQ(posted->fields, expected);
    }
    EXPECT_FALSE(forward({.type = EventType::mouseMoved, .locationInWindow = {1, 1}}));
    EXPECT_EQ(forward({.type = EventType::leftMouseDown, .locationInWindow = {1, 1}, .clickCount = 2})
                  ->integerField(1),
              2);
}

TEST_F(EventForwarderTest, ScrollsByLinesOrByPoints) {
    const auto lines =
        forward({.type = EventType::scrollWheel, .locationInWindow = {1, 1}, .scrollingDeltaY = -2.6});
    ASSERT_TRUE(lines);
    EXPECT_EQ(lines->scrollUnit, platform::ScrollUnit::line);
    EXPECT_EQ(lines->scrollSteps, (std::array<std::int32_t, 2>{-3, 0}));
    EXPECT_FALSE(lines->integerField(88));

    const auto points = forward({.type = EventType::scrollWheel,
                                 .locationInWindow = {1, 1},
                                 .scrollingDeltaX = -0.2,
                                 .scrollingDeltaY = 0.3,
                                 .hasPreciseScrollingDeltas = true});
    ASSERT_TRUE(points);
    EXPECT_EQ(points->scrollUnit, platform::ScrollUnit::pixel);
    EXPECT_EQ(points->scrollSteps, (std::array<std::int32_t, 2>{1, -1}));
    EXPECT_EQ(points->integerField(88), 1);
    EXPECT_EQ(points->doubleField(96), 0.3);
    EXPECT_EQ(points->doubleField(97), -0.2);

    const auto nothing = forward({.type = EventType::scrollWheel, .locationInWindow = {1, 1}});
    ASSERT_TRUE(nothing);
    EXPECT_EQ(nothing->scrollSteps, (std::array<std::int32_t, 2>{0, 0}));
}

TEST(ScrollStepsTest, RoundsHalvesAwayFromZeroAndKeepsTheSmallestMotion) {
    for (const auto& [value, steps] : std::vector<std::pair<double, int>>{{0, 0},
                                                                          {0.1, 1},
                                                                          {-0.1, -1},
                                                                          {0.5, 1},
                                                                          {-0.5, -1},
                                                                          {1.5, 2},
                                                                          {-1.5, -2},
                                                                          {2.4, 2},
                                                                          {2147483647, 2147483647}}) {
        EXPECT_EQ(EventForwarder::scrollSteps(value), steps) << value;
    }
    EXPECT_DEATH((void)EventForwarder::scrollSteps(2147483648.0), "impossible");
    EXPECT_DEATH((void)EventForwarder::scrollSteps(std::nan("")), "impossible");
}

} // namespace
} // namespace skylet
