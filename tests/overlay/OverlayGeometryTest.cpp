// Following the target, the user's moves and resizes, and the stream's size.
#include "overlay/OverlayScene.h"

namespace skylet {
namespace {

using platform::EventType;
using platform::Point;
using platform::Rect;

// The user drags from one place of the overlay; the way is given on the screen.
void drag(OverlayScene& s, Point from, Point way) {
    s.panel().inject(EventType::mouseMoved, from);
    s.panel().inject(EventType::leftMouseDown, from);
    platform::InputEvent event;
    event.type = EventType::leftMouseDragged;
    const Rect start = s.panel().frame();
    event.locationOnScreen = {start.x + from.x + way.x, start.y + from.y + way.y};
    s.panel().inject(event);
    event.type = EventType::leftMouseUp;
    s.panel().inject(event);
}

constexpr Point moveGrip{5, 5};
constexpr Point resizeGrip{795, 5};

TEST(OverlayGeometry, CustomSizeAndPositionEachStopFollowing) {
    struct {
        const char* name;
        std::optional<Point> move;
        std::optional<Point> resize;
        Rect expected; // after the target went to {0, 0, 600, 400} in window-server coordinates
    } const cases[] = {
        {"follows wholly", {}, {}, {0, 680, 600, 400}},
        {"own place, the target's size", Point{50, 60}, {}, {150, 440, 600, 400}},
        {"own size, hung from the target's top left corner", {}, Point{-100, 50}, {0, 630, 700, 450}},
        {"own size and place", Point{50, 60}, Point{-100, 50}, {150, 490, 700, 450}},
        {"smallest size, the top left corner stays", Point{0, 0}, Point{-2000, 2000}, {100, 660, 320, 220}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        OverlayScene s;
        s.show();
        if (test.move) {
            drag(s, moveGrip, *test.move);
        }
        if (test.resize) {
            drag(s, resizeGrip, *test.resize);
        }
        s.desktop.moveWindow(s.target, {0, 0, 600, 400});
        s.desktop.advance(0.5);
        EXPECT_EQ(s.panel().frame(), test.expected);
        EXPECT_EQ(s.panel().layer.frame, (Rect{0, 0, test.expected.width, test.expected.height}));
        EXPECT_EQ(s.panel().decorations[1]->frame, (Rect{test.expected.width - 26, 0, 26, 26}));
        // The flags outlive stepping behind.
        s.overlay->sendBehind();
        s.overlay->bringToFront();
        EXPECT_EQ(s.panel().frame(), test.expected);
    }
}

TEST(OverlayGeometry, FollowsTwiceASecondHoweverOftenTheOrderIsReasserted) {
    OverlayScene s;
    s.show();
    s.desktop.moveWindow(s.target, {0, 0, 640, 480});
    s.desktop.advance(0.35);
    s.overlay->bringToFront();
    EXPECT_EQ(s.panel().frame(), OverlayScene::frame);
    s.desktop.advance(0.15);
    EXPECT_EQ(s.panel().frame(), (Rect{0, 600, 640, 480}));
    s.desktop.closeWindow(s.target);
    s.desktop.advance(1);
    EXPECT_EQ(s.panel().frame(), (Rect{0, 600, 640, 480})) << "keeps its place";
}

TEST(OverlayGeometry, SteppingBehindEndsAResizeUnderWay) {
    OverlayScene s;
    s.show();
    s.panel().inject(EventType::mouseMoved, resizeGrip);
    s.panel().inject(EventType::leftMouseDown, resizeGrip);
    s.overlay->sendBehind();
    s.panel().inject(EventType::leftMouseDragged, {900, 100});
    EXPECT_EQ(s.panel().frame(), OverlayScene::frame);
    s.panel().endTracking();
    EXPECT_TRUE(s.panel().decorations[1]->hidden);
}

TEST(OverlayGeometry, ReconfiguresTheStreamOnlyForMoreThanOnePoint) {
    OverlayScene s;
    s.show();
    const auto grow = [&s](double by) {
        Rect bounds = OverlayScene::bounds;
        bounds.width += by;
        s.desktop.moveWindow(s.target, bounds);
        s.desktop.advance(0.5);
        return s.stream().configurations.size() - 1;
    };
    EXPECT_EQ(grow(1.0), 0U);
    EXPECT_EQ(grow(1.5), 1U);
    EXPECT_EQ(grow(2.5), 1U) << "the threshold counts from the last configuration";
    EXPECT_EQ(grow(2.6), 2U);
    EXPECT_EQ(s.stream().configurations.back().width, 1605);
    s.desktop.capture.updateError = {.domain = "d", .code = 1, .message = "busy"};
    EXPECT_EQ(grow(9), 3U);
    EXPECT_EQ(s.logged("update"), Lines{"overlay: updateConfiguration (rate) error: busy"});
}

} // namespace
} // namespace skylet
