// Where input on an overlay goes, on both sides of the version gate.
#include "foundation/PreferenceKeys.h"
#include "overlay/OverlayScene.h"

#include <gtest/gtest.h>

namespace skylet {
namespace {

using platform::EventType;
using platform::Point;

enum class Fate { nothing, forwarded, switched, scrolled };

constexpr Point middle{400, 250};
constexpr std::uint64_t command = 0x100000;

struct Situation {
    bool version27 = false;
    bool shown = true;
    std::optional<bool> forwardEvents = std::nullopt;
};

Fate fateOf(const Situation& situation, EventType type, std::uint64_t modifiers = 0) {
    OverlayScene s;
    s.desktop.workspace.version27 = situation.version27;
    if (situation.forwardEvents) {
        s.desktop.defaults.setBool(PreferenceKeys::forwardEvents, *situation.forwardEvents);
    }
    s.show();
    if (!situation.shown) {
        s.overlay->sendBehind();
    }
    platform::InputEvent event;
    event.type = type;
    event.locationInWindow = middle;
    event.modifierFlags = modifiers;
    event.scrollingDeltaY = type == EventType::scrollWheel ? 3 : 0;
    s.panel().inject(event);
    const bool switched = !s.desktop.workspace.activated.empty();
    EXPECT_LE(s.forwarded.size() + s.scrolls.size() + (switched ? 1 : 0), 1U);
    EXPECT_EQ(s.overlay->isPinVisible(), situation.shown && !switched) << "switching steps back";
    return switched               ? Fate::switched
           : !s.forwarded.empty() ? Fate::forwarded
           : !s.scrolls.empty()   ? Fate::scrolled
                                  : Fate::nothing;
}

TEST(OverlayInput, EveryEventHasOneFateInEverySituation) {
    const std::vector<EventType> otherPresses{EventType::rightMouseDown, EventType::otherMouseDown};
    const std::vector<EventType> releasesAndDrags{EventType::leftMouseUp,       EventType::rightMouseUp,
                                                  EventType::otherMouseUp,      EventType::leftMouseDragged,
                                                  EventType::rightMouseDragged, EventType::otherMouseDragged};
    struct Row {
        std::string name;
        Situation situation;
        Fate press, commandPress, otherPress, releaseOrDrag, scroll;
    };
    using enum Fate;
    const std::vector<Row> rows{
        {"before 27, never set", {}, forwarded, switched, forwarded, forwarded, forwarded},
        {"before 27, on", {.forwardEvents = true}, forwarded, switched, forwarded, forwarded, forwarded},
        {"before 27, off", {.forwardEvents = false}, switched, switched, nothing, nothing, nothing},
        {"before 27, behind", {.shown = false}, switched, switched, nothing, nothing, nothing},
        {"27, never set",
         {.version27 = true, .forwardEvents = {}},
         switched,
         switched,
         switched,
         nothing,
         nothing},
        {"27, on",
         {.version27 = true, .forwardEvents = true},
         switched,
         switched,
         switched,
         nothing,
         scrolled},
        {"27, off",
         {.version27 = true, .forwardEvents = false},
         switched,
         switched,
         switched,
         nothing,
         nothing},
        {"27, behind",
         {.version27 = true, .shown = false, .forwardEvents = true},
         switched,
         switched,
         nothing,
         nothing,
         nothing},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(fateOf(row.situation, EventType::leftMouseDown), row.press);
        EXPECT_EQ(fateOf(row.situation, EventType::leftMouseDown, command), row.commandPress);
        EXPECT_EQ(fateOf(row.situation, EventType::scrollWheel), row.scroll);
        EXPECT_EQ(fateOf(row.situation, EventType::mouseMoved), nothing);
        for (const EventType type : otherPresses) {
            EXPECT_EQ(fateOf(row.situation, type), row.otherPress);
            EXPECT_EQ(fateOf(row.situation, type, command), row.otherPress);
        }
        for (const EventType type : releasesAndDrags) {
            EXPECT_EQ(fateOf(row.situation, type), row.releaseOrDrag);
        }
    }
}

TEST(OverlayInput, AForwardPreferenceThatIsNoBoolFollowsTheGate) {
    OverlayScene s;
    s.desktop.defaults.setData(PreferenceKeys::forwardEvents, "yes");
    EXPECT_TRUE(WindowOverlay::forwardEvents(s.desktop.defaults, s.desktop.workspace));
    s.desktop.workspace.version27 = true;
    EXPECT_FALSE(WindowOverlay::forwardEvents(s.desktop.defaults, s.desktop.workspace));
}

TEST(OverlayInput, SwitchingLogsStepsBackAndRaises) {
    OverlayScene s;
    s.show();
    s.panel().inject(EventType::leftMouseDown, middle, command);
    const std::string id = std::to_string(s.target);
    EXPECT_EQ(s.desktop.takeLog(),
              (std::vector<std::string>{s.wid("switching to real window "), s.wid("sendBehind "),
                                        "raiseWindow: AXRaise wid=" + id + " pid=500 result=0",
                                        "raiseWindow: activated app 'Editor'"}));
}

TEST(OverlayInput, ScrollsMapProportionallyOntoTheTarget) {
    OverlayScene s;
    s.desktop.workspace.version27 = true;
    s.desktop.defaults.setBool(PreferenceKeys::forwardEvents, true);
    s.show();
    // The overlay keeps its size of 800 x 500 until the next look at the target.
    s.desktop.moveWindow(s.target, {1000, 50, 400, 1000});
    const auto scrollAt = [&s](Point location, double deltaY) {
        platform::InputEvent event;
        event.type = EventType::scrollWheel;
        event.locationInWindow = location;
        event.scrollingDeltaY = deltaY;
        s.panel().inject(event);
    };
    scrollAt({0, 500}, 3);
    scrollAt({800, 0}, -1.5);
    scrollAt({200, 400}, 3);
    scrollAt(middle, 0);
    s.desktop.closeWindow(s.target);
    scrollAt(middle, 3);
    EXPECT_EQ(s.scrolls, (std::vector<std::pair<double, Point>>{
                             {3, {1000, 50}}, {-1.5, {1400, 1050}}, {3, {1100, 250}}}));
}

TEST(OverlayInput, PressesInTheBottomCornersBelongToTheGrips) {
    struct Case {
        Point location;
        bool forwards;
    };
    for (const Case& test : {Case{{28, 28}, false}, Case{{28.5, 10}, true}, Case{{10, 28.5}, true},
                             Case{{772, 28}, false}, Case{{771.5, 10}, true}, Case{{790, 28.5}, true}}) {
        OverlayScene s;
        s.show();
        s.panel().inject(EventType::leftMouseDown, test.location);
        EXPECT_EQ(!s.forwarded.empty(), test.forwards) << test.location.x << "," << test.location.y;
        // Where no grip lies under the corner's edge, the press is one on the picture.
        EXPECT_EQ(!s.desktop.workspace.activated.empty(), !test.forwards);
    }
}

TEST(OverlayInput, AMoveDragOwnsTheMouseUntilTheLeftButtonIsReleased) {
    OverlayScene s;
    s.show();
    s.panel().inject(EventType::mouseMoved, {5, 5});
    s.panel().inject(EventType::leftMouseDown, {5, 5}, command);
    s.panel().inject(EventType::rightMouseDown, middle);
    s.panel().inject(EventType::rightMouseUp, middle);
    s.panel().inject(EventType::scrollWheel, middle);
    s.panel().inject(EventType::leftMouseUp, {5, 5});
    EXPECT_TRUE(s.forwarded.empty());
    EXPECT_TRUE(s.desktop.workspace.activated.empty());
    s.panel().inject(EventType::leftMouseDown, middle);
    EXPECT_EQ(s.forwarded, std::vector{EventType::leftMouseDown});
}

TEST(OverlayInput, RoutesThatLeadNowhereAreNotTaken) {
    OverlayScene s;
    s.routes = {};
    s.show();
    s.panel().inject(EventType::leftMouseDown, middle);
    s.stream().deliver({.status = platform::FrameStatus::complete,
                        .surface = std::make_shared<sim::SimSurface>(),
                        .pixelWidth = 1,
                        .pixelHeight = 1});
    s.desktop.advance(0);
    s.overlay->hideOverlay();
    EXPECT_FALSE(s.overlay->isPinVisible());
}

} // namespace
} // namespace skylet
