#include "app/GlobalHotkey.h"

#include "app/KeyNames.h"
#include "foundation/PreferenceKeys.h"
#include "support/SimulatedDesktop.h"

#include <gtest/gtest.h>
#include <set>
#include <stdexcept>

namespace skylet {
namespace {

using platform::TapEventType;

constexpr std::uint64_t shift = 0x20000, control = 0x40000, option = 0x80000, command = 0x100000;

class GlobalHotkeyTest : public testing::Test {
  protected:
    void store(std::int64_t keyCode, std::int64_t modifiers) {
        desktop.defaults.setInteger(PreferenceKeys::shortcutKeyCode, keyCode);
        desktop.defaults.setInteger(PreferenceKeys::shortcutModifiers, modifiers);
    }
    [[nodiscard]] std::string published() const {
        return desktop.defaults.readText(PreferenceKeys::registeredHotkeys).value;
    }

    sim::SimulatedDesktop desktop;
    AppCallbacks callbacks{.reportToUser = [this](const std::string& text) { reports.push_back(text); },
                           .fatal = [](const std::string& text) { throw std::runtime_error(text); },
                           .terminate = {}};
    Lines reports;
    int actions = 0;
    GlobalHotkey hotkey{
        {desktop.eventTap, desktop.accessibility, desktop.defaults, desktop.mainQueue, desktop.log},
        callbacks,
        [this] {
            ++actions;
        }};
};

TEST_F(GlobalHotkeyTest, TakesTheStoredPairOnlyWhenBothAreSet) {
    const std::tuple<std::uint16_t, std::uint32_t, bool> cases[] = {
        {0, 0x100000, false}, {12, 0, false}, {0, 0, false}, {12, 0x100000, true}, {65535, 0x20000, true}};
    for (const auto& [keyCode, modifiers, isTaken] : cases) {
        store(keyCode, modifiers);
        hotkey.setShortcut(35, command | control);
        hotkey.loadShortcut();
        EXPECT_EQ(hotkey.shortcutKeyCode(), isTaken ? keyCode : 35);
        EXPECT_EQ(hotkey.shortcutModifiers(), isTaken ? modifiers : command | control);
    }
}

TEST_F(GlobalHotkeyTest, ImpossibleValuesAreFatal) {
    for (const auto& [keyCode, modifiers] : {std::pair{65536, 0x100000}, {-1, 0x100000}, {12, -1}}) {
        store(keyCode, modifiers);
        EXPECT_THROW(hotkey.loadShortcut(), std::runtime_error) << keyCode << " " << modifiers;
        EXPECT_EQ(hotkey.shortcutKeyCode(), 35);
    }
    hotkey.setShortcut(12, ~std::uint64_t{0});
    EXPECT_THROW(hotkey.saveShortcut(), std::runtime_error);
}

TEST_F(GlobalHotkeyTest, FiresForExactlyItsModifiersAndNeverInsideTheCallback) {
    hotkey.registerHotkey();
    EXPECT_EQ(desktop.takeLog(), Lines{"tryCreateEventTap: SUCCESS — hotkey active for keyCode=35"});
    const std::tuple<std::int64_t, std::uint64_t, bool> cases[] = {
        {35, control | command, true},
        {35, control | command | 0x10000 | 0x800100, true},
        {35, control | command | option, false},
        {35, control | command | shift, false},
        {35, command, false},
        {36, control | command, false},
        {35 + 65536, control | command, false},
    };
    for (const auto& [keyCode, flags, fires] : cases) {
        actions = 0;
        EXPECT_EQ(desktop.eventTap.press(keyCode, flags), fires) << keyCode << " " << flags;
        EXPECT_EQ(actions, 0);
        desktop.advance(0);
        EXPECT_EQ(actions, fires ? 1 : 0);
    }
    // A held shortcut repeats.
    desktop.eventTap.press(35, control | command);
    desktop.eventTap.press(35, control | command);
    desktop.advance(0);
    EXPECT_EQ(actions, 2);
}

TEST_F(GlobalHotkeyTest, ADisabledTapIsEnabledAgainAndItsNoticePasses) {
    hotkey.registerHotkey();
    for (const auto notice : {TapEventType::disabledByTimeout, TapEventType::disabledByUserInput}) {
        EXPECT_FALSE(desktop.eventTap.disable(notice));
        EXPECT_TRUE(desktop.eventTap.enabled);
    }
}

TEST_F(GlobalHotkeyTest, WaitsForThePermissionAndThenStopsAsking) {
    auto& tap = desktop.eventTap;
    tap.canCreate = tap.permitted = false;
    desktop.accessibility.trusted = false;
    hotkey.registerHotkey();
    EXPECT_EQ(desktop.takeLog(), (Lines{"tryCreateEventTap: CGEvent.tapCreate failed (trusted=false)",
                                        "registerHotkey: waiting for Accessibility permission…"}));
    desktop.advance(5);
    EXPECT_EQ(tap.attempts, 1);
    EXPECT_EQ(desktop.takeLog(), Lines{});
    tap.permitted = desktop.accessibility.trusted = true;
    desktop.advance(1);
    EXPECT_EQ(desktop.takeLog(), (Lines{"registerHotkey: permission granted, retrying tap…",
                                        "tryCreateEventTap: CGEvent.tapCreate failed (trusted=true)"}));
    tap.canCreate = true;
    desktop.advance(2);
    EXPECT_EQ(desktop.takeLog(), (Lines{"registerHotkey: permission granted, retrying tap…",
                                        "tryCreateEventTap: SUCCESS — hotkey active for keyCode=35"}));
    desktop.advance(10);
    EXPECT_EQ(desktop.takeLog(), Lines{});
    EXPECT_EQ(tap.attempts, 3);
    EXPECT_TRUE(tap.enabled);
    EXPECT_TRUE(reports.empty());
}

TEST_F(GlobalHotkeyTest, AReasonIsReportedOnce) {
    desktop.eventTap.canCreate = false;
    desktop.eventTap.reason = "Another program holds the shortcut.";
    hotkey.registerHotkey();
    desktop.advance(20);
    EXPECT_EQ(reports, Lines{"Another program holds the shortcut."});
    const auto lines = desktop.takeLog();
    EXPECT_EQ(std::ranges::count(lines, "registerHotkey: Another program holds the shortcut."), 1);
}

TEST_F(GlobalHotkeyTest, AChangedShortcutTakesEffectWithoutANewTap) {
    hotkey.registerHotkey();
    hotkey.setShortcut(12, command | shift | 0x10000);
    EXPECT_TRUE(desktop.eventTap.press(35, control | command)) << "not saved yet";
    hotkey.saveShortcut();
    EXPECT_FALSE(desktop.eventTap.press(35, control | command));
    EXPECT_TRUE(desktop.eventTap.press(12, command | shift));
    EXPECT_EQ(desktop.eventTap.attempts, 1);
    EXPECT_EQ(desktop.eventTap.wantedKeys.back(), std::pair(std::uint16_t{12}, command | shift));
    EXPECT_EQ(desktop.defaults.readInteger(PreferenceKeys::shortcutKeyCode).value, 12);
    EXPECT_EQ(desktop.defaults.readInteger(PreferenceKeys::shortcutModifiers).value, 0x130000);
    EXPECT_NE(published().find(R"("keyCode":12,"modifiers":1245184)"), std::string::npos) << published();
    // Another program holds the next one.
    desktop.eventTap.keyIsFree = false;
    desktop.eventTap.reason = "Taken.";
    hotkey.setShortcut(13, command);
    hotkey.saveShortcut();
    EXPECT_EQ(reports, Lines{"Taken."});
}

TEST_F(GlobalHotkeyTest, AnotherShortcutEndsTheWaitingAtOnce) {
    desktop.eventTap.canCreate = false;
    hotkey.registerHotkey();
    desktop.eventTap.canCreate = true;
    hotkey.setShortcut(12, command);
    hotkey.saveShortcut();
    EXPECT_TRUE(desktop.eventTap.press(12, command));
    desktop.advance(10);
    EXPECT_EQ(desktop.eventTap.attempts, 2);
}

TEST_F(GlobalHotkeyTest, AClearedShortcutPassesEveryKeyAndPublishesNothing) {
    hotkey.registerHotkey();
    hotkey.setShortcut(0, 0);
    hotkey.saveShortcut();
    EXPECT_FALSE(desktop.eventTap.press(0, 0));
    EXPECT_EQ(published(), "[]");
    hotkey.setShortcut(0, command); // the A key
    hotkey.saveShortcut();
    EXPECT_TRUE(desktop.eventTap.press(0, command));
    EXPECT_NE(published().find(R"("keyCode":0,)"), std::string::npos);
}

TEST_F(GlobalHotkeyTest, ShowsTheShortcutAsSymbols) {
    const std::vector<std::tuple<std::uint16_t, std::uint64_t, std::string>> cases{
        {35, command | control, "⌃⌘P"}, {35, command | control | option | shift, "⌃⌥⇧⌘P"},
        {0, 0, "Non impostata"},        {0, command, "⌘A"},
        {49, option, "⌥Spazio"},        {96, 0, "F5"},
        {10, command, "⌘?10"},          {124, shift, "⇧→"},
        {42, control, "⌃\\"},           {111, 0, "F12"}};
    for (const auto& [keyCode, modifiers, text] : cases) {
        hotkey.setShortcut(keyCode, modifiers);
        EXPECT_EQ(hotkey.shortcutDisplayString(), text);
    }
}

TEST(KeyNames, SeventySixKeysHaveNamesOfTheirOwn) {
    std::set<std::string_view> names;
    for (std::uint16_t code = 0; code < 256; ++code) {
        if (!keyName(code).empty()) {
            EXPECT_TRUE(names.insert(keyName(code)).second) << keyName(code);
        }
    }
    EXPECT_EQ(names.size(), 76U);
}

} // namespace
} // namespace skylet
