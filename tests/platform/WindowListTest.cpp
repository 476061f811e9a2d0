// The window list: layers, order, what counts as on screen, managers that come and go, and its cost.
#include "platform/ServerTest.h"
#include "platform/x11/X11WindowServer.h"

#include <algorithm>

namespace skylet::test {

namespace {

using namespace platform;
using namespace platform::x11;

constexpr std::uint32_t onScreen = WindowListOption::onScreenOnly | WindowListOption::excludeDesktopElements;
constexpr std::uint32_t existing = WindowListOption::excludeDesktopElements;

class WindowListTest : public ServerTest {
  protected:
    [[nodiscard]] std::vector<std::int64_t> numbers(std::uint32_t options) {
        std::vector<std::int64_t> result;
        const auto list = windowServer_.copyWindowList(options, nullWindowID);
        for (const WindowEntry& entry : *list) {
            result.push_back(*entry.number);
        }
        return result;
    }
    [[nodiscard]] std::optional<WindowEntry> entry(xcb_window_t window) {
        const auto list = windowServer_.copyWindowList(WindowListOption::includingWindow, window);
        return list->empty() ? std::nullopt : std::optional(list->front());
    }
    void manage(const std::vector<std::uint32_t>& backToFront) {
        other_.setItems(other_.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, backToFront);
        other_.setItems(other_.root(), "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW, backToFront);
    }

    X11WindowServer windowServer_{connection()};
};

TEST_F(WindowListTest, WithoutAManagerTheMappedChildrenCount) {
    const xcb_window_t back = other_.show({0, 0, 100, 100});
    const xcb_window_t front = other_.show({50, 50, 100, 100});
    const xcb_window_t menu = other_.show({60, 60, 20, 20}, true);
    (void)other_.createWindow({0, 0, 10, 10});
    EXPECT_EQ(numbers(onScreen), (std::vector<std::int64_t>{menu, front, back}));
    EXPECT_GT(entry(menu)->layer, 0);
    EXPECT_EQ(entry(front)->layer, 0);
}

TEST_F(WindowListTest, TheManagerSaysWhatIsThereAndInWhichOrder) {
    const xcb_window_t a = other_.show({0, 0, 100, 100});
    const xcb_window_t b = other_.show({50, 50, 100, 100});
    const xcb_window_t c = other_.show({50, 50, 100, 100});
    other_.pretendToManage();
    other_.setItems(other_.root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL, {1});
    manage({b, a, c});
    EXPECT_EQ(numbers(onScreen), (std::vector<std::int64_t>{c, a, b}));

    other_.setItems(a, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, {0});
    other_.setItems(b, "_NET_WM_STATE", XCB_ATOM_ATOM, {other_.atom("_NET_WM_STATE_HIDDEN")});
    other_.setItems(c, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, {0xFFFFFFFF});
    EXPECT_EQ(numbers(onScreen), (std::vector<std::int64_t>{c}));
    EXPECT_EQ(numbers(existing), (std::vector<std::int64_t>{c, a, b}));
    other_.unmap(c);
    EXPECT_EQ(numbers(onScreen), std::vector<std::int64_t>{});
    EXPECT_EQ(numbers(existing), (std::vector<std::int64_t>{c, a, b}));
}

TEST_F(WindowListTest, LayersFollowTypesAndStates) {
    const xcb_window_t window = other_.show({0, 0, 100, 100});
    other_.pretendToManage();
    manage({window});
    const std::string state = "_NET_WM_STATE";
    const std::string type = "_NET_WM_WINDOW_TYPE";
    for (const auto& [property, value, sign] :
         std::vector<std::tuple<std::string, const char*, int>>{{state, "_FOCUSED", 0},
                                                                {state, "_ABOVE", 1},
                                                                {state, "_BELOW", -1},
                                                                {state, "_FOCUSED", 0},
                                                                {type, "_DOCK", 1}}) {
        other_.setItems(window, property, XCB_ATOM_ATOM, {other_.atom(property + value)});
        const auto layer = *entry(window)->layer;
        EXPECT_EQ((layer > 0) - (layer < 0), sign) << value;
    }
    other_.setItems(window, type, XCB_ATOM_ATOM, {other_.atom(type + "_DESKTOP")});
    EXPECT_TRUE(numbers(existing).empty());
    EXPECT_EQ(numbers(0).size(), 1U);
}

TEST_F(WindowListTest, WindowsOutliveTheirManager) {
    const xcb_window_t window = other_.show({0, 0, 100, 100});
    const xcb_window_t minimised = other_.show({0, 0, 100, 100});
    const xcb_window_t check = other_.pretendToManage();
    manage({window, minimised});
    other_.setItems(window, "WM_STATE", other_.atom("WM_STATE"), {1, 0});
    other_.setItems(minimised, "WM_STATE", other_.atom("WM_STATE"), {3, 0});
    other_.unmap(minimised);
    const std::vector<std::int64_t> both{window, minimised};
    EXPECT_TRUE(std::ranges::is_permutation(numbers(existing), both));
    // The manager dies and leaves its properties behind, then another one takes over and lists nothing yet.
    other_.destroy(check);
    EXPECT_TRUE(std::ranges::is_permutation(numbers(existing), both));
    manage({});
    other_.pretendToManage();
    EXPECT_TRUE(std::ranges::is_permutation(numbers(existing), both));
    // Withdrawn windows are gone, whoever manages.
    other_.setItems(minimised, "WM_STATE", other_.atom("WM_STATE"), {0, 0});
    EXPECT_EQ(numbers(existing), (std::vector<std::int64_t>{window}));
    other_.destroy(window);
    EXPECT_TRUE(numbers(existing).empty());
    EXPECT_FALSE(entry(window));
}

TEST_F(WindowListTest, ANameOfAWrongTypeIsNoName) {
    const xcb_window_t window = other_.show({0, 0, 100, 100});
    EXPECT_EQ(entry(window)->name, "");
    other_.setText(window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, "caf\xE9");
    other_.setText(window, other_.atom("_NET_WM_NAME"), other_.atom("UTF8_STRING"), "città");
    EXPECT_EQ(entry(window)->name, "città");
    other_.setItems(window, "_NET_WM_NAME", XCB_ATOM_CARDINAL, {1, 2, 3});
    EXPECT_EQ(entry(window)->name, "café");
}

TEST_F(WindowListTest, TheRoundTripsDoNotGrowWithTheWindows) {
    for (int i = 0; i < 60; ++i) {
        (void)other_.show({0, 0, 10, 10});
    }
    (void)numbers(onScreen); // from the second copy on it also asks after the windows of the first
    for (const bool managed : {false, true}) {
        if (managed) {
            std::vector<std::uint32_t> windows;
            for (const std::int64_t number : numbers(onScreen)) {
                windows.push_back(static_cast<std::uint32_t>(number));
            }
            other_.pretendToManage();
            manage(windows);
        }
        const auto before = connection().roundTrips();
        EXPECT_EQ(numbers(onScreen).size(), 60U);
        EXPECT_LE(connection().roundTrips() - before, 3U) << "managed: " << managed;
    }
    const auto before = connection().roundTrips();
    (void)entry(other_.show({0, 0, 10, 10}));
    EXPECT_EQ(connection().roundTrips() - before, 1U);
}

} // namespace

} // namespace skylet::test
