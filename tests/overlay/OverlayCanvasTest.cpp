// When the grips show, and what their drags report.
#include "overlay/OverlayCanvasView.h"
#include "support/SimPanel.h"

#include <gtest/gtest.h>

namespace skylet {
namespace {

using platform::EventType;
using platform::InputEvent;
using platform::Point;

class OverlayCanvasTest : public testing::Test {
  protected:
    OverlayCanvasTest() {
        canvas.setMoveHandler([this] { ++moves; });
        canvas.setResizeHandlers([this](const InputEvent&) { return mayResize; },
                                 [this](const InputEvent&) { ++drags; }, [this] { ++ends; });
        panel.setEventHandler([](const InputEvent&) {});
        canvas.pinIsVisible = true;
    }
    using Shown = std::pair<bool, bool>;

    static InputEvent at(Point location) { return {.locationInWindow = location}; }
    [[nodiscard]] Shown shown() const {
        return {!panel.decorations[0]->hidden, !panel.decorations[1]->hidden};
    }

    std::vector<sim::SimPanel*> panels;
    sim::SimPanel panel{panels, {0, 0, 800, 500}, {}};
    OverlayCanvasView canvas{{0, 0, 800, 500}, panel.layer, panel};
    bool mayResize = true;
    int moves = 0, drags = 0, ends = 0;
};

TEST_F(OverlayCanvasTest, GripsShowNearTheirCornersOnly) {
    const std::vector<std::pair<Point, Shown>> cases{
        {{42, 42}, {true, false}},   {{42.5, 10}, {false, false}},  {{10, 42.5}, {false, false}},
        {{758, 42}, {false, true}},  {{757.5, 10}, {false, false}}, {{790, 42.5}, {false, false}},
        {{400, 250}, {false, false}}};
    for (const auto& [location, expected] : cases) {
        canvas.mouseMoved(at(location));
        EXPECT_EQ(shown(), expected) << location.x << "," << location.y;
        canvas.mouseExited(at(location));
        EXPECT_EQ(shown(), Shown(false, false));
    }
    canvas.pinIsVisible = false;
    canvas.mouseEntered(at({5, 5}));
    EXPECT_EQ(shown(), Shown(false, false));
}

TEST_F(OverlayCanvasTest, BothGripsShowOnANarrowOverlayAndTheResizeGripIsOnTop) {
    canvas.setSize({40, 100});
    canvas.mouseEntered(at({20, 10}));
    EXPECT_EQ(shown(), Shown(true, true));
    EXPECT_TRUE(canvas.mouseDown(at({20, 10})));
    EXPECT_EQ(moves, 0);
    panel.inject(EventType::leftMouseUp, {20, 10});
    EXPECT_EQ(ends, 1);
}

TEST_F(OverlayCanvasTest, HiddenGripsTakeNoPress) {
    EXPECT_FALSE(canvas.mouseDown(at({5, 5})));
    canvas.mouseMoved(at({5, 5}));
    EXPECT_TRUE(canvas.mouseDown(at({5, 5})));
    EXPECT_FALSE(canvas.mouseDown(at({26, 5}))) << "the hover zone is larger than the grip";
}

TEST_F(OverlayCanvasTest, AGripStaysWhileItsDragRuns) {
    canvas.mouseMoved(at({795, 5}));
    canvas.mouseDown(at({795, 5}));
    canvas.mouseExited(at({900, 5}));
    EXPECT_EQ(shown(), Shown(false, true));
    panel.inject(EventType::leftMouseDragged, {900, 5});
    panel.inject(EventType::rightMouseDown, {900, 5});
    panel.inject(EventType::leftMouseUp, {900, 5});
    EXPECT_EQ(shown(), Shown(false, false));
    EXPECT_EQ(drags, 1);
    EXPECT_EQ(ends, 1);

    canvas.mouseMoved(at({5, 5}));
    canvas.mouseDown(at({5, 5}));
    canvas.mouseExited(at({-5, 5}));
    EXPECT_EQ(shown(), Shown(true, false));
    panel.inject(EventType::leftMouseUp, {5, 5});
    EXPECT_EQ(shown(), Shown(false, false));
    EXPECT_EQ(moves, 1);
}

TEST_F(OverlayCanvasTest, ARefusedResizeConsumesThePressAndTracksNothing) {
    mayResize = false;
    canvas.mouseMoved(at({795, 5}));
    EXPECT_TRUE(canvas.mouseDown(at({795, 5})));
    panel.inject(EventType::leftMouseDragged, {900, 5});
    panel.inject(EventType::leftMouseUp, {900, 5});
    EXPECT_EQ(drags + ends, 0);
}

TEST_F(OverlayCanvasTest, TrackingThatCanNotGoOnEndsTheResize) {
    canvas.mouseMoved(at({795, 5}));
    canvas.mouseDown(at({795, 5}));
    panel.endTracking();
    EXPECT_EQ(ends, 1);
}

} // namespace
} // namespace skylet
