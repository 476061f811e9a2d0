// Where input on an overlay goes, on both sides of the version gate.
#include "overlay/OverlayScene.h"

namespace skylet {
namespace {

using platform::EventType;
using platform::Point;

enum class Fate { nothing, forwarded, switched, scrolled };

constexpr Point middle{400, 250};
constexpr std::uint64_t command = 0x100000;

struct Situation {
    bool version27;
    bool shown;
    std::optional<bool> forwardEvents;
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
    s.panel().inject({.type = type,
                      .locationInWindow = middle,
                      .modifierFlags = modifiers,
                      .scrollingDeltaY = type == EventType::scrollWheel ? 3.0 : 0.0});
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
    using enum Fate;
    const std::optional<bool> neverSet;
    struct {
        const char* name;
        Situation situation;
        Fate press, commandPress, otherPress, releaseOrDrag, scroll;
    } const rows[] = {
        {"before 27", {false, true, neverSet}, forwarded, switched, forwarded, forwarded, forwarded},
        {"before 27, on", {false, true, true}, forwarded, switched, forwarded, forwarded, forwarded},
        {"before 27, off", {false, true, false}, switched, switched, nothing, nothing, nothing},
        {"before 27, behind", {false, false, neverSet}, switched, switched, nothing, nothing, nothing},
        {"27, never set", {true, true, neverSet}, switched, switched, switched, nothing, nothing},
        {"27, on", {true, true, true}, switched, switched, switched, nothing, scrolled},
        {"27, off", {true, true, false}, switched, switched, switched, nothing, nothing},
        {"27, behind", {true, false, true}, switched, switched, nothing, nothing, nothing},
    };
    for (const auto& row : rows) {
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
    EXPECT_EQ(s.desktop.takeLog(), (Lines{s.wid("switching to real window "), s.wid("sendBehind "),
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
        s.panel().inject(
            {.type = EventType::scrollWheel, .locationInWindow = location, .scrollingDeltaY = deltaY});
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
    const std::pair<Point, bool> cases[] = {{{28, 28}, false},  {{28.5, 10}, true},  {{10, 28.5}, true},
                                            {{772, 28}, false}, {{771.5, 10}, true}, {{790, 28.5}, true}};
    for (const auto& [location, forwards] : cases) {
        OverlayScene s;
        s.show();
        s.panel().inject(EventType::leftMouseDown, location);
        EXPECT_EQ(!s.forwarded.empty(), forwards) << location.x << "," << location.y;
        // Where no grip lies under the corner's edge, the press is one on the picture.
        EXPECT_EQ(!s.desktop.workspace.activated.empty(), !forwards);
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

} // namespace
} // namespace skylet
