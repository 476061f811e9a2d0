// What a forwarded event carries, and where it lands.
#include "input/EventForwarder.h"

#include "support/SimulatedDesktop.h"

#include <cmath>
#include <gtest/gtest.h>

namespace skylet {
namespace {

using platform::EventType;
using platform::InputEvent;
using platform::Point;
using platform::SyntheticEvent;

class EventForwarderTest : public testing::Test {
  protected:
    // The one event that was posted, or nothing.
    std::optional<SyntheticEvent> forward(const InputEvent& event, platform::Size size = {500, 250}) {
        desktop.eventPoster.posted.clear();
        EventForwarder::forward(desktop.environment.windowServer, desktop.eventPoster, event,
                                {window, editor, size});
        if (desktop.eventPoster.posted.empty()) {
            return std::nullopt;
        }
        EXPECT_EQ(desktop.eventPoster.posted.size(), 1U);
        EXPECT_EQ(desktop.eventPoster.posted.front().second, editor);
        return desktop.eventPoster.posted.front().first;
    }

    sim::SimulatedDesktop desktop;
    platform::WindowID window = desktop.openWindow(editor, "doc", {100, 200, 1000, 500});
};

TEST_F(EventForwarderTest, MapsProportionallyAndDropsWhatLiesOutside) {
    const std::pair<Point, std::optional<Point>> cases[] = {
        {{150, 175}, Point{400, 350}}, {{0, 250}, Point{100, 200}}, {{500, 0}, Point{1100, 700}},
        {{500.01, 10}, std::nullopt},  {{-0.01, 10}, std::nullopt}, {{10, 250.01}, std::nullopt},
        {{10, -0.01}, std::nullopt},
    };
    for (const auto& [location, target] : cases) {
        const auto posted = forward({.type = EventType::leftMouseDown, .locationInWindow = location});
        ASSERT_EQ(posted.has_value(), target.has_value()) << location.x << "," << location.y;
        if (posted) {
            EXPECT_NEAR(posted->location.x, target->x, 1e-9);
            EXPECT_NEAR(posted->location.y, target->y, 1e-9);
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
    using Button = platform::PostedMouseButton;
    using enum EventType;
    const std::pair<EventType, Button> cases[] = {
        {leftMouseDown, Button::left},    {leftMouseUp, Button::left},    {leftMouseDragged, Button::left},
        {rightMouseDown, Button::right},  {rightMouseUp, Button::right},  {rightMouseDragged, Button::right},
        {otherMouseDown, Button::center}, {otherMouseUp, Button::center}, {otherMouseDragged, Button::center},
    };
    for (const auto& [type, button] : cases) {
        const auto posted = forward({.type = type,
                                     .locationInWindow = {1, 1},
                                     .modifierFlags = 0x100000 | 0x20000 | 0x10000 | 0x8,
                                     .clickCount = 0,
                                     .pressure = 0.5,
                                     .buttonNumber = 3});
        ASSERT_TRUE(posted);
        EXPECT_EQ(static_cast<int>(posted->type), static_cast<int>(type));
        EXPECT_EQ(posted->button, button);
        EXPECT_EQ(posted->flags, 0x120000U);
        std::vector<Field> expected{{1, std::int64_t{1}}, {2, 0.5}};
        if (button == Button::center) {
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
    const std::pair<double, int> cases[] = {
        {0, 0},     {0.1, 1},   {-0.1, -1},
        {0.5, 1},   {-0.5, -1}, {1.5, 2},
        {-1.5, -2}, {2.4, 2},   {2147483647, 2147483647},
    };
    for (const auto& [value, steps] : cases) {
        EXPECT_EQ(EventForwarder::scrollSteps(value), steps) << value;
    }
    EXPECT_DEATH((void)EventForwarder::scrollSteps(2147483648.0), "impossible");
    EXPECT_DEATH((void)EventForwarder::scrollSteps(std::nan("")), "impossible");
}

} // namespace
} // namespace skylet
