#include "settings/ZentroShortcutRecorder.h"

#include "platform/InputEvent.h"
#include "settings/ZentroShortcutPanel.h"
#include "support/SimKeys.h"
#include "support/SimSettings.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace skylet {
namespace {

constexpr std::uint64_t shift = 0x20000, control = 0x40000, option = 0x80000, command = 0x100000;
constexpr std::uint64_t capsLock = 0x10000, numericPad = 0x200000, function = 0x800000;

class ZentroShortcutRecorderTest : public testing::Test {
  protected:
    ZentroShortcutRecorderTest() {
        static_cast<void>(tap.create([](platform::TapEventType, const platform::KeyEvent&) { return true; }));
        tap.setEnabled(true);
    }
    [[nodiscard]] ZentroShortcutRecorder::Connections connections() {
        return {
            .label = "label",
            .keyCode = sim::bound(keyCode),
            .modifiers = sim::bound(modifiers),
            .displayString = [] { return std::string("shown"); },
            // The tap is still off and the pair already written when it is told.
            .onChanged =
                [this] {
                    events.push_back("changed " + std::to_string(keyCode) + (tap.enabled ? " tap on" : ""));
                },
            .onClear =
                [this] {
                    keyCode = 0;
                    modifiers = 0;
                    events.emplace_back("cleared");
                },
            .eventTapToDisable = &tap,
            .onRecordingChanged = [this](bool on) { events.emplace_back(on ? "started" : "stopped"); },
            .refusal = {},
        };
    }

    sim::SimEventTap tap;
    sim::SimKeyDownMonitor monitor;
    std::uint16_t keyCode = 35;
    std::uint64_t modifiers = control | command;
    std::vector<std::string> events;
};

TEST_F(ZentroShortcutRecorderTest, TakesRefusesOrCancelsByKeyAndModifiers) {
    enum class Outcome { taken, refused, cancelled };
    using enum Outcome;
    struct {
        const char* description;
        std::int64_t key;
        std::uint64_t flags;
        Outcome outcome;
        std::uint64_t stored = 0;
    } const cases[] = {
        {"F5 alone", 96, 0, taken, 0},
        {"F20 with shift", 90, shift, taken, shift},
        {"F1 with its function flag", 122, function, taken, 0},
        {"P alone", 35, 0, refused},
        {"shift-P", 35, shift, refused},
        {"caps lock is no modifier", 35, capsLock, refused},
        {"command-shift-P", 35, command | shift, taken, command | shift},
        {"with caps lock on", 35, command | shift | capsLock, taken, command | shift},
        {"option-keypad", 83, option | numericPad, taken, option},
        {"control-A, whose key code is 0", 0, control, taken, control},
        {"all four", 11, shift | control | option | command, taken, shift | control | option | command},
        {"arrows are no function keys", 123, function, refused},
        {"tab", 48, 0, refused},
        {"escape", 53, 0, cancelled},
        {"escape with modifiers", 53, control | command, cancelled},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.description);
        keyCode = 35;
        modifiers = control | command;
        events.clear();
        ZentroShortcutRecorder recorder(monitor, connections());
        recorder.startRecording();
        EXPECT_TRUE(recorder.isRecording());
        EXPECT_FALSE(tap.enabled);
        EXPECT_TRUE(monitor.press(test.key, test.flags));
        const bool goesOn = test.outcome == refused;
        EXPECT_EQ(recorder.needsModifier(), goesOn);
        EXPECT_EQ(recorder.isRecording(), goesOn);
        EXPECT_EQ(monitor.isInstalled(), goesOn);
        EXPECT_EQ(tap.enabled, !goesOn);
        EXPECT_EQ(keyCode, test.outcome == taken ? test.key : 35);
        EXPECT_EQ(modifiers, test.outcome == taken ? test.stored : control | command);
        const std::string changed = "changed " + std::to_string(test.key);
        using Events = std::vector<std::string>;
        EXPECT_EQ(events, test.outcome == taken ? (Events{"started", changed, "stopped"})
                          : goesOn              ? Events{"started"}
                                                : (Events{"started", "stopped"}));
    }
}

TEST_F(ZentroShortcutRecorderTest, EveryWayOutRestoresTheTap) {
    {
        ZentroShortcutRecorder recorder(monitor, connections());
        recorder.startRecording();
    }
    EXPECT_TRUE(tap.enabled);
    EXPECT_FALSE(monitor.isInstalled());
    EXPECT_EQ(events, (std::vector<std::string>{"started", "stopped"}));
    ZentroShortcutRecorder recorder(monitor, connections());
    tap.setEnabled(false);
    recorder.stopRecording(); // runs fully though nothing is being recorded
    EXPECT_TRUE(tap.enabled);
}

TEST_F(ZentroShortcutRecorderTest, ClearsOnlyWhatIsSetAndOnlyWhereItMay) {
    for (const auto& [code, flags] : {std::pair{0, std::uint64_t{0}}, {0, command}, {96, 0}}) {
        keyCode = static_cast<std::uint16_t>(code);
        modifiers = flags;
        const bool isSet = code != 0 || flags != 0;
        ZentroShortcutRecorder recorder(monitor, connections());
        EXPECT_EQ(recorder.isSet(), isSet);
        EXPECT_EQ(recorder.canClear(), isSet);
        auto without = connections();
        without.onClear = {};
        EXPECT_FALSE(ZentroShortcutRecorder(monitor, without).canClear());
        recorder.clear();
        EXPECT_FALSE(recorder.canClear());
    }
}

} // namespace
} // namespace skylet
