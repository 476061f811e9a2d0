// Panels among other windows: their place in the stack, lockers, desktops, and the input on them.
#include "platform/ServerTest.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/x11/EventWindow.h"
#include "platform/x11/X11Panel.h"

#include <xcb/shape.h>
#include <xcb/xtest.h>

#include <algorithm>

namespace skylet::test {

namespace {

using namespace platform;
using namespace platform::x11;

class PanelTest : public ServerTest {
  protected:
    ~PanelTest() override {
        panels_.clear();
        queue_.discard();
    }

    Panel& makePanel(Rect rootRect) {
        panels_.push_back(factory_.makePanel(layout_.flipped(rootRect), {}));
        panels_.back()->setEventHandler([this](const InputEvent& event) { events_.push_back(event); });
        dispatch();
        return *panels_.back();
    }
    // Shown at the front, and the only one there.
    Panel& showPanel(Rect rootRect) {
        Panel& panel = makePanel(rootRect);
        panel.orderFrontRegardless();
        EXPECT_TRUE(eventually([&] { return panelsShown() == 1; }));
        return panel;
    }
    // The mapped children of the root, back to front.
    [[nodiscard]] std::vector<xcb_window_t> stacking() {
        auto tree = connection().ask<xcb_query_tree, xcb_query_tree_reply>(connection().root());
        const xcb_window_t* first = xcb_query_tree_children(tree.get());
        std::vector<xcb_window_t> visible;
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            auto attributes =
                connection().ask<xcb_get_window_attributes, xcb_get_window_attributes_reply>(first[i]);
            if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
                attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT) {
                visible.push_back(first[i]);
            }
        }
        return visible;
    }
    [[nodiscard]] bool isOwn(xcb_window_t window) const { return connection().isOwnResource(window); }
    [[nodiscard]] int panelsShown() {
        return static_cast<int>(std::ranges::count_if(stacking(), [&](auto one) { return isOwn(one); }));
    }
    // Waits until the foreign windows and "ours" (0) lie like this.
    [[nodiscard]] bool liesLike(const std::vector<xcb_window_t>& expected) {
        return eventually([&] {
            auto windows = stacking();
            std::ranges::replace_if(
                windows, [&](auto one) { return isOwn(one); }, 0U);
            return windows == expected;
        });
    }
    void pointer(int x, int y) {
        xcb_test_fake_input(other_.raw(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, XCB_NONE,
                            static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
        other_.sync();
    }
    void button(std::uint8_t number, bool press) {
        xcb_test_fake_input(other_.raw(), press ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, number,
                            XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        other_.sync();
    }
    void click(std::uint8_t number) {
        button(number, true);
        button(number, false);
    }
    [[nodiscard]] bool saw(EventType type) {
        return eventually([&] { return std::ranges::count(events_, type, &InputEvent::type) > 0; });
    }

    qt::QtMainQueue queue_;
    RenderFormats formats_{connection()};
    ScreenLayout layout_{connection()};
    ModifierMap modifiers_{connection()};
    PanelStack stack_{connection(), layout_, queue_};
    X11PanelFactory factory_{{connection(), formats_, layout_, modifiers_, stack_, queue_}};
    const xcb_window_t window_ = other_.show({50, 50, 300, 200});
    std::vector<std::unique_ptr<Panel>> panels_;
    std::vector<InputEvent> events_;
};

TEST_F(PanelTest, LiesAboveManagedWindowsAndBelowMenus) {
    makePanel({100, 100, 200, 100}).orderFrontRegardless();
    EXPECT_TRUE(liesLike({window_, 0}));
    const xcb_window_t second = other_.show({150, 120, 300, 200});
    EXPECT_TRUE(liesLike({window_, second, 0}));
    const xcb_window_t menu = other_.show({160, 130, 50, 50}, true);
    EXPECT_TRUE(liesLike({window_, second, 0, menu}));
    other_.raise(window_);
    EXPECT_TRUE(liesLike({second, menu, window_, 0}) || liesLike({second, window_, 0, menu}));
    other_.destroy(window_);
    other_.destroy(second);
    other_.destroy(menu);
    EXPECT_TRUE(liesLike({0}));
}

TEST_F(PanelTest, SeveralPanelsKeepTheirOrderAndTheOneInUseComesUp) {
    Panel& first = makePanel({100, 100, 200, 100});
    Panel& second = makePanel({100, 300, 200, 100});
    first.orderFrontRegardless();
    second.orderFrontRegardless();
    ASSERT_TRUE(liesLike({window_, 0, 0}));
    const auto before = stacking();
    first.orderFrontRegardless();
    dispatch();
    EXPECT_EQ(stacking(), before) << "reasserting the front moves nothing";
    pointer(110, 110);
    click(1);
    EXPECT_TRUE(eventually([&] { return stacking() == std::vector{before[0], before[2], before[1]}; }));
}

TEST_F(PanelTest, NothingShowsOverWhatCoversAMonitor) {
    Panel& panel = showPanel({100, 100, 200, 100});
    const xcb_window_t almost = other_.show({0, 0, 800, 599}, true);
    dispatch();
    EXPECT_EQ(panelsShown(), 1);
    const xcb_window_t rest = other_.show({0, 590, 800, 10}, true);
    EXPECT_TRUE(eventually([&] { return panelsShown() == 0; })) << "two windows cover it together";
    EXPECT_TRUE(panel.isVisible());
    makePanel({200, 200, 100, 100}).orderFrontRegardless();
    dispatch();
    EXPECT_EQ(panelsShown(), 0);
    other_.unmap(rest);
    EXPECT_TRUE(eventually([&] { return panelsShown() == 2; }));
    other_.destroy(almost);
    stack_.setSessionLocked(true);
    dispatch();
    EXPECT_EQ(panelsShown(), 0);
    stack_.setSessionLocked(false);
    dispatch();
    EXPECT_EQ(panelsShown(), 2);
    // A managed full-screen window is no locker.
    (void)other_.show({0, 0, 800, 600});
    dispatch();
    EXPECT_EQ(panelsShown(), 2);
}

TEST_F(PanelTest, BehindShowsOnlyWhereNoWindowIs) {
    Panel& panel = makePanel({300, 100, 200, 100});
    panel.orderBack();
    const auto shape = [this] {
        std::vector<Rect> rects;
        const auto windows = stacking();
        const auto own = std::ranges::find_if(windows, [&](auto one) { return isOwn(one); });
        if (own != windows.end()) {
            auto reply = connection().ask<xcb_shape_get_rectangles, xcb_shape_get_rectangles_reply>(
                *own, xcb_shape_kind_t{XCB_SHAPE_SK_BOUNDING});
            const auto* first = xcb_shape_get_rectangles_rectangles(reply.get());
            for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(reply.get()); ++i) {
                rects.push_back(
                    {1.0 * first[i].x, 1.0 * first[i].y, 1.0 * first[i].width, 1.0 * first[i].height});
            }
        }
        return rects;
    };
    // The window reaches to x = 350: fifty of the panel's two hundred columns are under it.
    EXPECT_TRUE(eventually([&] { return shape() == std::vector{Rect{50, 0, 150, 100}}; }));
    const std::uint32_t away[] = {500, 400};
    xcb_configure_window(other_.raw(), window_, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, away);
    other_.sync();
    EXPECT_TRUE(eventually([&] { return shape() == std::vector{Rect{0, 0, 200, 100}}; }));
    (void)other_.show({0, 0, 800, 600});
    EXPECT_TRUE(eventually([&] { return shape().empty(); }));
    panel.orderFrontRegardless();
    EXPECT_TRUE(eventually([&] { return shape().size() == 1; }));
}

TEST_F(PanelTest, GivesEventsInTheirOwnTermsAndNeverTakesTheFocus) {
    other_.focus(window_);
    showPanel({400, 300, 200, 100});
    pointer(410, 310);
    EXPECT_TRUE(saw(EventType::mouseEntered));
    struct {
        std::uint8_t xButton;
        EventType down;
        EventType up;
        int number;
    } const cases[] = {{1, EventType::leftMouseDown, EventType::leftMouseUp, 0},
                       {3, EventType::rightMouseDown, EventType::rightMouseUp, 1},
                       {2, EventType::otherMouseDown, EventType::otherMouseUp, 2},
                       {8, EventType::otherMouseDown, EventType::otherMouseUp, 3}};
    for (const auto& c : cases) {
        events_.clear();
        click(c.xButton);
        ASSERT_TRUE(saw(c.up)) << int(c.xButton);
        EXPECT_EQ(events_[0].type, c.down);
        EXPECT_EQ(events_[0].buttonNumber, c.number);
        EXPECT_EQ(events_[0].locationInWindow, (Point{10, 90}));
        EXPECT_EQ(events_[0].locationOnScreen, (Point{410, 290}));
        EXPECT_EQ(events_[0].clickCount, 1);
        EXPECT_EQ(events_[1].clickCount, 1);
    }
    events_.clear();
    for (int i = 0; i < 3; ++i) {
        click(1);
    }
    ASSERT_TRUE(eventually([&] { return events_.size() == 6; }));
    EXPECT_EQ(events_[2].clickCount, 2);
    EXPECT_EQ(events_[4].clickCount, 3);

    for (const auto& [number, x, y] : std::vector<std::tuple<std::uint8_t, double, double>>{
             {4, 0, 1}, {5, 0, -1}, {6, 1, 0}, {7, -1, 0}}) {
        events_.clear();
        click(number);
        ASSERT_TRUE(saw(EventType::scrollWheel));
        EXPECT_EQ(events_.size(), 1U);
        EXPECT_EQ(events_[0].scrollingDeltaX, x);
        EXPECT_EQ(events_[0].scrollingDeltaY, y);
    }
    auto focus = connection().ask<xcb_get_input_focus, xcb_get_input_focus_reply>();
    EXPECT_EQ(focus->focus, window_);
}

TEST_F(PanelTest, ATrackedDragIsToldThatItsPanelGoes) {
    Panel& panel = showPanel({400, 300, 200, 100});
    std::vector<std::optional<InputEvent>> tracked;
    panel.setEventHandler([&](const InputEvent& event) {
        if (event.type == EventType::leftMouseDown) {
            panel.trackEvents(eventMask(EventType::leftMouseDragged) | eventMask(EventType::leftMouseUp),
                              [&](const std::optional<InputEvent>& next) {
                                  tracked.push_back(next);
                                  return next.has_value();
                              });
        }
    });
    pointer(410, 310);
    button(1, true);
    pointer(420, 320);
    EXPECT_TRUE(eventually([&] { return !tracked.empty(); }));
    panel.orderOut();
    ASSERT_FALSE(tracked.empty());
    EXPECT_FALSE(tracked.back().has_value());
    button(1, false);
}

} // namespace

} // namespace skylet::test
