#include "platform/ServerTest.h"
#include "platform/x11/EventWindow.h"
#include "platform/x11/InstanceSelection.h"
#include "platform/x11/ServerCheck.h"

namespace skylet::test {

namespace {

using platform::x11::Connection;
using platform::x11::eventType;
using platform::x11::InstanceSelection;

class ConnectionTest : public ServerTest {};

constexpr xcb_window_t noWindow = 0x1FFFFFF0;

TEST_F(ConnectionTest, ToleratesOnlyWhatMeansGone) {
    connection().sendTolerant<xcb_map_window>(noWindow);
    dispatch();
    EXPECT_TRUE(reported_.empty());

    // Not gone, but wrong: a defect of ours also where the window is foreign.
    const std::uint32_t value = 99;
    connection().sendTolerant<xcb_configure_window>(
        connection().root(), std::uint16_t{XCB_CONFIG_WINDOW_STACK_MODE}, static_cast<const void*>(&value));
    // Tolerance is for one request.
    for (int i = 0; i < 200; ++i) {
        connection().sendTolerant<xcb_map_window>(noWindow);
        connection().send<xcb_map_window>(connection().root());
    }
    connection().send<xcb_map_window>(noWindow);
    dispatch();
    ASSERT_EQ(reported_.size(), 2U);
    EXPECT_EQ(reported_[0].code, XCB_VALUE);
    EXPECT_EQ(reported_[1].code, XCB_WINDOW);
    EXPECT_EQ(reported_[1].resource, noWindow);
    reported_.clear();
}

TEST_F(ConnectionTest, AnswersErrorsOfQuestionsWhereTheyAreAsked) {
    auto gone = connection().ask<xcb_get_geometry, xcb_get_geometry_reply>(noWindow);
    auto unread = connection().ask<xcb_get_geometry, xcb_get_geometry_reply>(noWindow);
    auto there = connection().ask<xcb_get_geometry, xcb_get_geometry_reply>(connection().root());
    EXPECT_EQ(there->width, 800);
    EXPECT_FALSE(gone);
    ASSERT_TRUE(gone.error());
    EXPECT_EQ(gone.error()->code, XCB_DRAWABLE);
    EXPECT_TRUE(connection().meansGone(*gone.error()));
    unread = {};
    dispatch();
    EXPECT_TRUE(reported_.empty());

    EXPECT_TRUE(connection().sendChecked<xcb_map_window_checked>(noWindow));
    EXPECT_FALSE(connection().sendChecked<xcb_map_window_checked>(connection().root()));
}

TEST_F(ConnectionTest, DeliversEventsToTheirWindowWhileSubscribed) {
    const xcb_window_t windows[] = {other_.createWindow({0, 0, 10, 10}), other_.createWindow({0, 0, 10, 10})};
    int maps[] = {0, 0};
    int batches = 0;
    const auto subscribe = [&](int which) {
        return connection().subscribe(windows[which], XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                                      [&maps, which](const xcb_generic_event_t& event) {
                                          maps[which] += eventType(event) == XCB_MAP_NOTIFY ? 1 : 0;
                                      });
    };
    auto first = subscribe(0);
    const auto second = subscribe(1);
    const auto batch = connection().subscribeAfterBatch([&] { ++batches; });
    dispatch();
    const int before = batches;
    other_.map(windows[0]);
    other_.map(windows[1]);
    // Nobody calls dispatch: the event loop does, also for events that came with a reply.
    static_cast<void>(connection().serverTime());
    EXPECT_TRUE(eventually([&] { return maps[0] == 1 && maps[1] == 1; }));
    EXPECT_GT(batches, before);

    first.reset();
    other_.unmap(windows[0]);
    other_.map(windows[0]);
    dispatch();
    EXPECT_EQ(maps[0], 1);
}

TEST_F(ConnectionTest, OneSubscriptionDoesNotEndTheEventsOfAnother) {
    const xcb_window_t window = other_.createWindow({0, 0, 10, 10});
    int maps = 0;
    int properties = 0;
    platform::Subscription self;
    const auto structure = connection().subscribe(
        window, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
        [&](const xcb_generic_event_t& event) { maps += eventType(event) == XCB_MAP_NOTIFY ? 1 : 0; });
    self =
        connection().subscribe(window, XCB_EVENT_MASK_PROPERTY_CHANGE, [&](const xcb_generic_event_t& event) {
            if (eventType(event) == XCB_PROPERTY_NOTIFY) {
                ++properties;
                self.reset();
            }
        });
    dispatch();
    other_.setItems(window, "A", XCB_ATOM_CARDINAL, {1});
    other_.setItems(window, "A", XCB_ATOM_CARDINAL, {2});
    other_.map(window);
    dispatch();
    EXPECT_EQ(properties, 1);
    EXPECT_EQ(maps, 1);
}

TEST_F(ConnectionTest, TellsOnceThatTheServerIsGone) {
    int closed = 0;
    connection().setClosedHandler([&] { ++closed; });
    server_.end();
    EXPECT_TRUE(eventually([&] { return closed > 0; }));
    EXPECT_FALSE(connection().isOpen());
    auto reply = connection().ask<xcb_get_geometry, xcb_get_geometry_reply>(connection().root());
    EXPECT_FALSE(reply);
    connection().dispatch();
    EXPECT_EQ(closed, 1);
}

TEST(ServerCheck, NamesTheMissingExtensionOnly) {
    {
        const PrivateServer server;
        EXPECT_FALSE(platform::x11::findServerProblem());
    }
    const PrivateServer server({"-extension", "Composite"});
    const auto problem = platform::x11::findServerProblem();
    ASSERT_TRUE(problem);
    EXPECT_NE(problem->find("Composite"), std::string::npos) << *problem;
}

TEST_F(ConnectionTest, LetsOneInstanceBeAndMakesRoomForTheNext) {
    int activations = 0;
    std::optional<InstanceSelection> first(std::in_place, connection(), [&] { ++activations; });
    ASSERT_TRUE(first->claim());
    const auto later = Connection::open({});
    ASSERT_TRUE(later.connection);
    InstanceSelection second(*later.connection, [] { ADD_FAILURE(); });
    EXPECT_FALSE(second.claim());
    EXPECT_FALSE(second.claim());
    EXPECT_TRUE(eventually([&] { return activations == 2; }));
    first.reset();
    dispatch();
    EXPECT_TRUE(second.claim());
}

} // namespace

} // namespace skylet::test
