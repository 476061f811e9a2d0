// When the grips show, what their drags report and how they look.
#include "overlay/GripDrawing.h"
#include "overlay/OverlayCanvasView.h"
#include "support/SimPanel.h"

#include <algorithm>
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

TEST(GripDrawing, TheMoveGripIsAnArrowInFourDirections) {
    const auto drawing = moveGripDrawing({0, 0, 26, 26});
    EXPECT_EQ(std::get<platform::FilledRoundedRect>(drawing.at(0)).rect, (platform::Rect{3, 3, 20, 20}));
    std::vector<std::array<double, 4>> strokes;
    for (const auto& [from, to] : std::get<platform::StrokedLines>(drawing.at(1)).segments) {
        strokes.push_back({from.x, from.y, to.x, to.y});
    }
    const std::vector<std::array<double, 4>> expected{
        {5, 13, 21, 13},  {13, 5, 13, 21}, {5, 13, 9, 16}, {5, 13, 9, 10},   {21, 13, 17, 16},
        {21, 13, 17, 10}, {13, 5, 10, 9},  {13, 5, 16, 9}, {13, 21, 10, 17}, {13, 21, 16, 17}};
    EXPECT_TRUE(std::ranges::is_permutation(strokes, expected)) << testing::PrintToString(strokes);
}

} // namespace
} // namespace skylet
