#include "platform/Puppet.h"
#include "platform/ServerTest.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/SerialQueues.h"
#include "platform/x11/ClientPid.h"
#include "platform/x11/X11Accessibility.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11Workspace.h"

#include <unistd.h>

namespace skylet::test {

namespace {

using namespace platform;
using namespace platform::x11;

class DesktopQueriesTest : public ServerTest {
  protected:
    // What a window manager would tell.
    void manage(const std::vector<xcb_window_t>& stacking, const std::vector<std::uint32_t>& active) {
        if (check_ == XCB_WINDOW_NONE) {
            check_ = other_.pretendToManage();
        }
        other_.setItems(other_.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, stacking);
        other_.setItems(other_.root(), "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW, stacking);
        other_.setItems(other_.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, active);
    }
    [[nodiscard]] xcb_window_t active() { return reader_.read().window; }

    ActiveClientReader reader_{connection()};
    xcb_window_t check_ = XCB_WINDOW_NONE;
};

TEST_F(DesktopQueriesTest, KnowsTheProcessOfEachWindow) {
    const Puppet one;
    const Puppet two;
    const xcb_window_t own = other_.createWindow({0, 0, 10, 10});
    const xcb_window_t sub = other_.createWindow({0, 0, 5, 5}, own);
    other_.setItems(own, "_NET_WM_PID", XCB_ATOM_CARDINAL, {1});
    const std::vector<xcb_window_t> windows{one.window(), own, two.window(), sub, one.window()};
    const auto pids = clientPids(connection(), windows);
    EXPECT_EQ(pids.at(one.window()), one.pid());
    EXPECT_EQ(pids.at(two.window()), two.pid());
    EXPECT_EQ(pids.at(own), getpid()) << "the server knows better than the claim";
    EXPECT_EQ(pids.at(sub), getpid());
    EXPECT_EQ(pids.size(), 4U);
    EXPECT_TRUE(clientPids(connection(), {}).empty());
    EXPECT_EQ(clientPid(connection(), 0x1FE00001), std::nullopt) << "no such client";
}

TEST_F(DesktopQueriesTest, TakesTheClaimWhereTheServerDoesNotKnow) {
    const PrivateServer server({"-extension", "X-Resource"});
    const auto opened = Connection::open({});
    ASSERT_TRUE(opened.connection);
    ASSERT_FALSE(opened.connection->extensions().resource);
    TestClient client;
    const xcb_window_t window = client.createWindow({0, 0, 10, 10});
    EXPECT_EQ(clientPid(*opened.connection, window), std::nullopt);
    for (const auto& [claim, pid] :
         std::vector<std::pair<std::vector<std::uint32_t>, std::optional<ProcessID>>>{
             {{4711}, 4711}, {{0}, {}}, {{0xFFFFFFFF}, {}}, {{}, {}}}) {
        client.setItems(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, claim);
        EXPECT_EQ(clientPid(*opened.connection, window), pid);
    }
}

TEST_F(DesktopQueriesTest, WithoutAManagerTheFocusTells) {
    EXPECT_EQ(active(), xcb_window_t{XCB_WINDOW_NONE});
    const xcb_window_t low = other_.show({0, 0, 100, 100});
    const xcb_window_t high = other_.show({50, 50, 100, 100});
    const xcb_window_t menu = other_.show({0, 0, 800, 600}, true);
    EXPECT_EQ(active(), high) << "the top-most that is no menu";
    EXPECT_EQ(readClientWindows(connection()).windows, (std::vector<xcb_window_t>{high, low}));

    other_.unmap(menu);
    xcb_warp_pointer(other_.raw(), XCB_WINDOW_NONE, other_.root(), 0, 0, 0, 0, 10, 10);
    other_.sync();
    EXPECT_EQ(active(), low) << "under the pointer, which the focus follows";

    const xcb_window_t field = other_.createWindow({0, 0, 10, 10}, high);
    const xcb_window_t inner = other_.createWindow({0, 0, 5, 5}, field);
    other_.map(field);
    other_.map(inner);
    other_.focus(inner);
    EXPECT_EQ(active(), high) << "a window inside it has the focus";
    other_.unmap(high);
    EXPECT_EQ(active(), low);
}

TEST_F(DesktopQueriesTest, WithAManagerItsWordIsChecked) {
    const xcb_window_t one = other_.show({0, 0, 100, 100});
    const xcb_window_t two = other_.show({50, 50, 100, 100});
    struct {
        std::vector<xcb_window_t> stacking;
        std::vector<std::uint32_t> told;
        xcb_window_t active;
    } const cases[] = {
        {{one, two}, {one}, one},        {{one, two}, {two, 0}, two},
        {{one}, {two}, XCB_WINDOW_NONE}, // not in the list
        {{one}, {0}, XCB_WINDOW_NONE},   {{one}, {}, XCB_WINDOW_NONE},
    };
    for (const auto& test : cases) {
        manage(test.stacking, test.told);
        EXPECT_EQ(active(), test.active);
        EXPECT_EQ(readClientWindows(connection()).windows,
                  std::vector(test.stacking.rbegin(), test.stacking.rend()));
    }
    manage({one}, {one});
    other_.setText(other_.root(), other_.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, "x");
    EXPECT_EQ(active(), xcb_window_t{XCB_WINDOW_NONE});

    manage({one}, {one});
    other_.destroy(check_);
    EXPECT_EQ(active(), two) << "the manager is dead; its words stay behind";
    other_.pretendToManage();
    EXPECT_EQ(active(), one) << "there is another one";
}

TEST_F(DesktopQueriesTest, TheActiveProcessCostsOneWaitWhileItStays) {
    const Puppet one;
    const Puppet two;
    for (const Puppet* puppet : {&one, &two, &one}) {
        manage({one.window(), two.window()}, {puppet->window()});
        EXPECT_EQ(reader_.read().pid, puppet->pid());
        const auto before = connection().roundTrips();
        EXPECT_EQ(reader_.read().pid, puppet->pid());
        EXPECT_EQ(connection().roundTrips() - before, 1U);
    }
}

TEST_F(DesktopQueriesTest, ScreensLeaveRoomForDocks) {
    ScreenLayout layout(connection());
    X11Screens screens(connection(), layout);
    EXPECT_EQ(screens.screens().at(0).visibleFrame, (Rect{0, 0, 800, 600}));
    struct {
        std::vector<std::uint32_t> areas;
        std::uint32_t desktop;
        Rect visible;
    } const cases[] = {
        {{0, 24, 800, 576}, 0, {0, 0, 800, 576}},
        {{0, 24, 800, 576}, 3, {0, 0, 800, 576}},
        {{0, 0, 800, 600, 0, 0, 800, 550}, 1, {0, 50, 800, 550}},
        {{900, 900, 10, 10}, 0, {0, 0, 800, 600}},
        {{0, 24, 800}, 0, {0, 0, 800, 600}},
    };
    for (const auto& one : cases) {
        other_.setItems(other_.root(), "_NET_WORKAREA", XCB_ATOM_CARDINAL, one.areas);
        other_.setItems(other_.root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL, {one.desktop});
        ASSERT_EQ(screens.screens().size(), 1U);
        EXPECT_EQ(screens.screens()[0].visibleFrame, one.visible) << one.areas[1];
        EXPECT_EQ(screens.mainScreen()->frame, (Rect{0, 0, 800, 600}));
    }
}

class WorkspaceTest : public DesktopQueriesTest {
  protected:
    [[nodiscard]] auto recorder() {
        return [this](const std::optional<RunningApplication>& application) {
            ASSERT_TRUE(application);
            told_.push_back(application->processIdentifier);
        };
    }

    std::vector<ProcessID> told_;
    qt::QtMainQueue mainQueue_;
    qt::ThreadSerialQueueFactory queues_;
    RaisedWindows raised_;
    X11Workspace workspace_{connection(), mainQueue_, queues_, raised_};
    qt::AccessibilityTrust trust_{QDBusConnection(QStringLiteral("none"))};
    X11Accessibility accessibility_{connection(), mainQueue_, trust_, raised_};
};

TEST_F(WorkspaceTest, TellsOfEveryOtherApplicationThatComesToTheFront) {
    const Puppet one("One");
    const Puppet two("Two");
    const auto subscription = workspace_.observeDidActivateApplication(recorder());
    other_.focus(one.window());
    EXPECT_TRUE(eventually([&] { return told_ == std::vector<ProcessID>{one.pid()}; }));
    other_.focus(two.window());
    EXPECT_TRUE(eventually([&] { return told_.size() == 2 && told_.back() == two.pid(); }));
    ASSERT_TRUE(workspace_.frontmostApplication());
    EXPECT_EQ(workspace_.frontmostApplication()->processIdentifier, two.pid());
    EXPECT_EQ(workspace_.frontmostApplication()->localizedName, "Two");
    EXPECT_EQ(workspace_.runningApplication(one.pid())->localizedName, "One");

    // A manager starts; the same application stays in front.
    manage({one.window(), two.window()}, {two.window()});
    manage({one.window(), two.window()}, {0});
    manage({one.window(), two.window()}, {two.window()});
    manage({one.window(), two.window()}, {one.window()});
    EXPECT_TRUE(eventually([&] { return told_.size() == 3; }));
    EXPECT_EQ(told_.back(), one.pid());

    // It dies without a word, and the focus tells again.
    other_.destroy(check_);
    other_.focus(one.window());
    other_.focus(two.window());
    EXPECT_TRUE(eventually([&] { return told_.size() == 4; }));
    EXPECT_EQ(told_.back(), two.pid());
}

TEST_F(WorkspaceTest, TellsOnceWhenAnApplicationEnds) {
    Puppet puppet("Ends");
    const auto subscription = workspace_.observeDidTerminateApplication(recorder());
    const ProcessID pid = puppet.pid();
    ASSERT_TRUE(workspace_.runningApplication(pid));
    ASSERT_TRUE(workspace_.runningApplication(pid));
    EXPECT_TRUE(told_.empty());
    puppet.end();
    EXPECT_TRUE(eventually([&] { return !told_.empty(); }));
    EXPECT_EQ(told_, std::vector<ProcessID>{pid});
    EXPECT_FALSE(workspace_.runningApplication(pid));
    EXPECT_FALSE(workspace_.activate(pid));
}

TEST_F(WorkspaceTest, ActivatesTheWindowThatWasRaised) {
    const Puppet puppet;
    const xcb_window_t first = other_.show({0, 0, 100, 100});
    const xcb_window_t second = other_.show({0, 0, 100, 100});
    raised_.record(getpid(), first);
    EXPECT_TRUE(workspace_.activate(getpid()));
    dispatch();
    EXPECT_EQ(active(), first);
    EXPECT_EQ(readClientWindows(connection()).windows.front(), first);
    EXPECT_TRUE(workspace_.activate(puppet.pid()));
    dispatch();
    EXPECT_EQ(active(), puppet.window());
    // The raise was for once; now the last active window counts.
    other_.focus(second);
    EXPECT_EQ(workspace_.frontmostApplication()->processIdentifier, getpid());
    other_.focus(puppet.window());
    EXPECT_TRUE(workspace_.activate(getpid()));
    dispatch();
    EXPECT_EQ(active(), second);
}

TEST_F(WorkspaceTest, AsksTheManagerAsTheUserWould) {
    const xcb_window_t window = other_.show({0, 0, 100, 100});
    manage({window}, {0});
    other_.setItems(other_.root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL, {0});
    other_.setItems(window, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, {2});
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_change_window_attributes(other_.raw(), other_.root(), XCB_CW_EVENT_MASK, &mask);
    other_.sync();
    EXPECT_TRUE(workspace_.activate(getpid()));
    dispatch();
    const auto messages = other_.events<xcb_client_message_event_t>(XCB_CLIENT_MESSAGE);
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].type, other_.atom("_NET_CURRENT_DESKTOP"));
    EXPECT_EQ(messages[0].data.data32[0], 2U);
    EXPECT_EQ(messages[1].type, other_.atom("_NET_ACTIVE_WINDOW"));
    EXPECT_EQ(messages[1].window, window);
    EXPECT_EQ(messages[1].data.data32[0], 2U) << "source: the user, not a program";
    EXPECT_NE(messages[1].data.data32[1], 0U) << "a real time";
}

TEST_F(WorkspaceTest, WindowsAreAccessibilityElements) {
    EXPECT_FALSE(accessibility_.isProcessTrustedWithPrompt());
    const Puppet puppet;
    const xcb_window_t back = other_.show({0, 0, 100, 100});
    const xcb_window_t front = other_.show({10, 20, 100, 100});
    other_.setText(front, connection().atoms().NET_WM_NAME, connection().atoms().UTF8_STRING,
                   "Titolo \xC3\xA8");
    other_.setItems(front, "_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {10, 10, 5, 15});
    const auto mine = accessibility_.createApplication(getpid());
    const auto read = [&](const AXElementRef& element, const char* attribute) {
        return accessibility_.copyAttributeValue(element, attribute);
    };

    const auto listed = read(mine, "AXWindows");
    const auto* windows = listed.get<std::vector<AXElementRef>>();
    ASSERT_TRUE(windows);
    ASSERT_EQ(windows->size(), 2U);
    const AXElementRef& top = windows->front();
    EXPECT_EQ(*read(top, "AXTitle").get<std::string>(), "Titolo \xC3\xA8");
    EXPECT_EQ(*read(top, "AXRole").get<std::string>(), "AXWindow");
    EXPECT_EQ(*read(top, "AXPosition").get<Point>(), (Point{20, 25}));
    EXPECT_EQ(*read(top, "AXSize").get<Size>(), (Size{80, 80}));

    other_.focus(back);
    EXPECT_EQ(read(mine, "AXFocusedWindow").error, AXError::success);
    const auto theirs = accessibility_.createApplication(puppet.pid());
    EXPECT_EQ(read(theirs, "AXFocusedWindow").error, AXError::noValue) << "another application has it";
    EXPECT_EQ(read(accessibility_.createApplication(0x3FFFFFFF), "AXWindows").error,
              AXError::invalidUIElement);

    EXPECT_EQ(accessibility_.performAction(windows->back(), "AXRaise"), AXError::success);
    EXPECT_EQ(readClientWindows(connection()).windows.front(), back);
    EXPECT_EQ(raised_.take(getpid()), back);
    other_.destroy(front);
    EXPECT_EQ(read(top, "AXTitle").error, AXError::invalidUIElement);
    EXPECT_EQ(read(top, "AXPosition").error, AXError::invalidUIElement);
    EXPECT_EQ(accessibility_.performAction(top, "AXRaise"), AXError::invalidUIElement);
}

// A reply that another thread waits for brings events with it; they must reach their handlers all the same.
TEST_F(WorkspaceTest, ReadsOnOtherThreadsHoldNoEventsBack) {
    const xcb_window_t window = other_.show({0, 0, 100, 100});
    int changes = 0;
    const auto subscription = connection().subscribe(window, XCB_EVENT_MASK_PROPERTY_CHANGE,
                                                     [&](const xcb_generic_event_t&) { ++changes; });
    dispatch();
    qt::ThreadSerialQueue queue("test");
    constexpr int rounds = 50;
    for (int i = 0; i < rounds; ++i) {
        queue.async([&] {
            other_.setItems(window, "P", XCB_ATOM_CARDINAL, {1});
            static_cast<void>(
                accessibility_.copyAttributeValue(accessibility_.createApplication(getpid()), "AXWindows"));
        });
    }
    // Nothing but the events themselves wakes this loop up.
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.start(patience);
    while (changes < rounds && deadline.isActive()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    EXPECT_EQ(changes, rounds);
}

} // namespace

} // namespace skylet::test
