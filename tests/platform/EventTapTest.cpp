#include "platform/InputEvent.h"
#include "platform/ServerTest.h"
#include "platform/x11/X11EventTap.h"

#include <atomic>
#include <linux/input-event-codes.h>
#include <thread>

namespace skylet::test {

namespace {

using namespace platform;
namespace Modifier = ModifierFlags;

constexpr std::uint16_t keyP = 35;
constexpr std::uint16_t keyO = 31;

constexpr std::uint16_t controlAndSuper = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4;

constexpr xcb_keycode_t x(int eventCode) {
    return static_cast<xcb_keycode_t>(eventCode + 8);
}

class EventTapTest : public ServerTest {
  protected:
    EventTapTest() { tap_.setWantedKey(keyP, Modifier::control | Modifier::command); }

    [[nodiscard]] bool create() {
        return tap_.create([this](TapEventType type, const KeyEvent& event) {
            EXPECT_EQ(type, TapEventType::keyDown);
            events_.push_back(event);
            return true;
        });
    }
    void enable() {
        ASSERT_TRUE(create());
        tap_.setEnabled(true);
    }
    // How often the tap saw the strike.
    [[nodiscard]] std::size_t strike(const std::vector<xcb_keycode_t>& keys) {
        events_.clear();
        other_.strike(keys);
        dispatch();
        return events_.size();
    }

    x11::X11EventTap tap_{connection()};
    std::vector<KeyEvent> events_;
    const std::vector<xcb_keycode_t> shortcut_{x(KEY_LEFTCTRL), x(KEY_LEFTMETA), x(KEY_P)};
};

TEST_F(EventTapTest, HearsTheKeyUnderEveryLock) {
    ASSERT_TRUE(create());
    EXPECT_EQ(strike(shortcut_), 0U) << "before it is enabled";
    tap_.setEnabled(true);
    for (const std::vector<xcb_keycode_t>& locks : std::vector<std::vector<xcb_keycode_t>>{
             {}, {x(KEY_CAPSLOCK)}, {x(KEY_NUMLOCK)}, {x(KEY_CAPSLOCK), x(KEY_NUMLOCK)}}) {
        other_.strike(locks);
        EXPECT_EQ(strike(shortcut_), 1U);
        ASSERT_EQ(events_.size(), 1U);
        EXPECT_EQ(events_[0].keyCode, keyP);
        EXPECT_EQ(events_[0].flags & Modifier::shortcutMask, Modifier::control | Modifier::command);
        other_.strike(locks);
    }
    EXPECT_EQ(strike({x(KEY_RIGHTCTRL), x(KEY_RIGHTMETA), x(KEY_P)}), 1U);
}

TEST_F(EventTapTest, HearsNothingElse) {
    enable();
    EXPECT_EQ(strike({x(KEY_P)}), 0U);
    EXPECT_EQ(strike({x(KEY_LEFTCTRL), x(KEY_P)}), 0U);
    EXPECT_EQ(strike({x(KEY_LEFTCTRL), x(KEY_LEFTMETA), x(KEY_LEFTALT), x(KEY_P)}), 0U);
    EXPECT_EQ(strike({x(KEY_LEFTCTRL), x(KEY_LEFTMETA), x(KEY_O)}), 0U);
    EXPECT_EQ(strike(shortcut_), 1U);
    tap_.setEnabled(false);
    EXPECT_EQ(strike(shortcut_), 0U);
    EXPECT_FALSE(other_.grabKey(controlAndSuper, x(KEY_P))) << "still grabbed";
}

TEST_F(EventTapTest, SwallowsTheKeyAndOnlyIt) {
    const xcb_window_t window = other_.show({0, 0, 50, 50});
    const std::uint32_t mask = XCB_EVENT_MASK_KEY_PRESS;
    xcb_change_window_attributes(other_.raw(), window, XCB_CW_EVENT_MASK, &mask);
    other_.focus(window);
    enable();
    EXPECT_EQ(strike(shortcut_), 1U);
    EXPECT_EQ(strike({x(KEY_O)}), 0U);
    std::vector<int> seen;
    for (const auto& press : other_.events<xcb_key_press_event_t>(XCB_KEY_PRESS)) {
        seen.push_back(press.detail);
    }
    EXPECT_EQ(seen, (std::vector<int>{x(KEY_LEFTCTRL), x(KEY_LEFTMETA), x(KEY_O)}));
}

TEST_F(EventTapTest, SaysWhoIsInTheWay) {
    // One lock combination in other hands is enough.
    ASSERT_FALSE(other_.grabKey(controlAndSuper | XCB_MOD_MASK_LOCK, x(KEY_P)));
    EXPECT_FALSE(create());
    EXPECT_FALSE(tap_.exists());
    ASSERT_TRUE(tap_.failureReason());
    EXPECT_NE(tap_.failureReason()->find("another program holds the shortcut Control+Super+P"),
              std::string::npos)
        << *tap_.failureReason();
    EXPECT_NE(tap_.failureReason()->find("shortcutKeyCode"), std::string::npos);
    EXPECT_EQ(tap_.refusal(), KeyRefusal::heldByAnotherProgram);
    EXPECT_FALSE(other_.grabKey(controlAndSuper, x(KEY_P))) << "a part was kept";

    other_.ungrabKey(controlAndSuper | XCB_MOD_MASK_LOCK, x(KEY_P));
    other_.ungrabKey(controlAndSuper, x(KEY_P));
    EXPECT_TRUE(create());
    EXPECT_FALSE(tap_.failureReason());
    EXPECT_FALSE(tap_.refusal());
}

TEST_F(EventTapTest, ChangesTheKeyAtOnce) {
    enable();
    EXPECT_TRUE(tap_.setWantedKey(keyO, Modifier::option | Modifier::shift));
    EXPECT_EQ(strike(shortcut_), 0U);
    EXPECT_EQ(strike({x(KEY_LEFTSHIFT), x(KEY_LEFTALT), x(KEY_O)}), 1U);
    EXPECT_TRUE(tap_.setWantedKey(0, 0));
    EXPECT_EQ(strike({x(KEY_LEFTSHIFT), x(KEY_LEFTALT), x(KEY_O)}), 0U);

    ASSERT_FALSE(other_.grabKey(XCB_MOD_MASK_CONTROL, x(KEY_P)));
    EXPECT_FALSE(tap_.setWantedKey(keyP, Modifier::control));
    EXPECT_TRUE(tap_.failureReason());
    EXPECT_FALSE(tap_.setWantedKey(54, Modifier::control)) << "no key has this code";
    EXPECT_TRUE(tap_.failureReason());
    EXPECT_EQ(tap_.refusal(), KeyRefusal::notOnKeyboard);
    EXPECT_TRUE(tap_.setWantedKey(keyO, Modifier::control));
    EXPECT_FALSE(tap_.failureReason());
    EXPECT_EQ(strike({x(KEY_LEFTCTRL), x(KEY_O)}), 1U);
}

TEST_F(EventTapTest, HearsRepeatedPresses) {
    enable();
    events_.clear();
    other_.fakeKey(x(KEY_LEFTCTRL), true);
    other_.fakeKey(x(KEY_LEFTMETA), true);
    other_.fakeKey(x(KEY_P), true);
    EXPECT_TRUE(eventually([&] {
        dispatch();
        return events_.size() >= 3;
    }));
    for (const int key : {KEY_P, KEY_LEFTMETA, KEY_LEFTCTRL}) {
        other_.fakeKey(x(key), false);
    }
}

// Exchanges the modifier bits of Super and Num Lock, and gives the letter's key another letter.
TEST_F(EventTapTest, FollowsTheLayout) {
    enable();
    using x11::XcbOwned;
    const XcbOwned<xcb_get_modifier_mapping_reply_t> map(
        xcb_get_modifier_mapping_reply(other_.raw(), xcb_get_modifier_mapping(other_.raw()), nullptr));
    ASSERT_TRUE(map);
    const std::size_t per = map->keycodes_per_modifier;
    std::vector<xcb_keycode_t> codes(xcb_get_modifier_mapping_keycodes(map.get()),
                                     xcb_get_modifier_mapping_keycodes(map.get()) + 8 * per);
    std::swap_ranges(codes.begin() + long(4 * per), codes.begin() + long(5 * per),
                     codes.begin() + long(6 * per));
    const XcbOwned<xcb_set_modifier_mapping_reply_t> set(xcb_set_modifier_mapping_reply(
        other_.raw(), xcb_set_modifier_mapping(other_.raw(), static_cast<std::uint8_t>(per), codes.data()),
        nullptr));
    ASSERT_TRUE(set);
    const xcb_keysym_t symbols[] = {'x', 'X'};
    xcb_change_keyboard_mapping(other_.raw(), 1, x(KEY_P), 2, symbols);
    other_.sync();
    dispatch();
    EXPECT_EQ(strike(shortcut_), 1U);
    ASSERT_EQ(events_.size(), 1U);
    EXPECT_EQ(events_[0].flags & Modifier::shortcutMask, Modifier::control | Modifier::command);
    other_.strike({x(KEY_NUMLOCK)});
    EXPECT_EQ(strike(shortcut_), 1U);
    other_.strike({x(KEY_NUMLOCK)});
    EXPECT_FALSE(other_.grabKey(controlAndSuper, x(KEY_P))) << "the former bits are still grabbed";
}

// A key that another client can have for a moment could be pressed in it.
TEST_F(EventTapTest, KeepsTheKeyWhileTheKeyboardChanges) {
    enable();
    std::atomic<int> tries = 0;
    std::atomic<int> had = 0;
    std::jthread thief([&](const std::stop_token& stop) {
        TestClient client;
        while (!stop.stop_requested()) {
            had += client.grabKey(controlAndSuper, x(KEY_P)) ? 0 : 1;
            ++tries;
        }
    });
    constexpr int changes = 1000;
    for (int change = 0; change < changes; ++change) {
        const int before = tries;
        const xcb_keysym_t symbols[] = {'p', 'P'};
        xcb_change_keyboard_mapping(other_.raw(), 1, x(KEY_P), 2, symbols);
        other_.sync();
        dispatch();
        ASSERT_TRUE(eventually([&] { return tries > before; }));
    }
    thief.request_stop();
    thief.join();
    EXPECT_EQ(had, 0);
    EXPECT_EQ(strike(shortcut_), 1U);
}

TEST_F(EventTapTest, RefusesAModifierThatNoKeyGives) {
    for (const xcb_keycode_t key : {x(KEY_LEFTMETA), x(KEY_RIGHTMETA), xcb_keycode_t{206}}) {
        const xcb_keysym_t none[] = {0, 0, 0, 0, 0, 0, 0};
        xcb_change_keyboard_mapping(other_.raw(), 1, key, 7, none);
    }
    other_.sync();
    dispatch();
    EXPECT_FALSE(create()) << "it would have been Control+P for every program";
    EXPECT_TRUE(tap_.failureReason());
}

} // namespace

} // namespace skylet::test
