// Captures the next key press in this program's windows as a shortcut.
//
// Idle -> recording by `startRecording`; back by an accepted key, Escape, `stopRecording`, or the end of the
// recorder. While it records, the global tap is off, so that the present shortcut can be pressed, too; a key
// that is no shortcut leaves it recording. Threads: main thread. Failure: none; without a monitor recording
// can still be cancelled.
#pragma once

#include "foundation/Lifetime.h"
#include "foundation/Notice.h"
#include "platform/EventTap.h"
#include "platform/KeyDownMonitor.h"
#include "platform/Subscription.h"
#include "settings/Binding.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace skylet {

class ZentroShortcutRecorder {
  public:
    struct Connections {
        std::string label; // the row's title
        Binding<std::uint16_t> keyCode;
        Binding<std::uint64_t> modifiers; // see platform::ModifierFlags
        std::function<std::string()> displayString;
        // May be empty: called after a new shortcut was written.
        std::function<void()> onChanged;
        // May be empty: then the shortcut cannot be cleared.
        std::function<void()> onClear;
        // May be null.
        platform::EventTap* eventTapToDisable = nullptr;
        // May be empty.
        std::function<void(bool)> onRecordingChanged;
        // May be empty: why the present shortcut is not in force, if it is not.
        std::function<std::optional<platform::KeyRefusal>()> refusal;
    };

    // The monitor and the tap must outlive the recorder.
    ZentroShortcutRecorder(platform::KeyDownMonitor& monitor, Connections connections);
    ZentroShortcutRecorder(const ZentroShortcutRecorder&) = delete;
    ZentroShortcutRecorder& operator=(const ZentroShortcutRecorder&) = delete;
    ~ZentroShortcutRecorder();

    void startRecording();
    // Restores everything, also when nothing was being recorded.
    void stopRecording();
    void clear();

    [[nodiscard]] const std::string& label() const { return connections_.label; }
    [[nodiscard]] std::string displayString() const { return connections_.displayString(); }
    [[nodiscard]] bool isRecording() const { return isRecording_; }
    // The last key was refused because it needs a modifier.
    [[nodiscard]] bool needsModifier() const { return needsModifier_; }
    [[nodiscard]] bool isSet() const;
    [[nodiscard]] bool canClear() const { return connections_.onClear != nullptr && isSet(); }
    [[nodiscard]] std::optional<platform::KeyRefusal> refusal() const;

    // After anything that the row shows may have changed.
    [[nodiscard]] platform::Subscription observeDidChange(std::function<void()> observer) {
        return didChange_.observe(std::move(observer));
    }

  private:
    void keyDown(const platform::KeyEvent& event);

    platform::KeyDownMonitor& monitor_;
    Connections connections_;
    bool needsModifier_ = false;
    bool isRecording_ = false;
    platform::Subscription localMonitor_;
    Notice<> didChange_;
    Lifetime lifetime_;
};

} // namespace skylet
