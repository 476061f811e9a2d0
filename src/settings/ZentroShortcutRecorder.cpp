#include "settings/ZentroShortcutRecorder.h"

#include "platform/InputEvent.h"
#include "settings/ZentroShortcutPanel.h"

#include <algorithm>
#include <utility>

namespace skylet {

namespace {

namespace Modifier = platform::ModifierFlags;

constexpr std::int64_t keyEscape = 53;
// Shift alone makes no shortcut: the key would type a capital letter.
constexpr std::uint64_t requiredModifiers = Modifier::control | Modifier::option | Modifier::command;

bool isFunctionKey(std::int64_t keyCode) {
    return std::ranges::find(ZentroShortcutPanel::functionKeyCodes, keyCode) !=
           ZentroShortcutPanel::functionKeyCodes.end();
}

} // namespace

ZentroShortcutRecorder::ZentroShortcutRecorder(platform::KeyDownMonitor& monitor, Connections connections)
    : monitor_(monitor)
    , connections_(std::move(connections)) {}

ZentroShortcutRecorder::~ZentroShortcutRecorder() {
    if (isRecording_) {
        stopRecording();
    }
}

void ZentroShortcutRecorder::startRecording() {
    if (connections_.eventTapToDisable != nullptr) {
        connections_.eventTapToDisable->setEnabled(false);
    }
    isRecording_ = true;
    needsModifier_ = false;
    if (connections_.onRecordingChanged) {
        connections_.onRecordingChanged(true);
    }
    localMonitor_ = monitor_.addLocalMonitorForKeyDown(
        lifetime_.guard([this](const platform::KeyEvent& event) { keyDown(event); }));
    didChange_.post();
}

void ZentroShortcutRecorder::stopRecording() {
    localMonitor_.reset();
    isRecording_ = false;
    needsModifier_ = false;
    if (connections_.eventTapToDisable != nullptr) {
        connections_.eventTapToDisable->setEnabled(true);
    }
    if (connections_.onRecordingChanged) {
        connections_.onRecordingChanged(false);
    }
    didChange_.post();
}

void ZentroShortcutRecorder::keyDown(const platform::KeyEvent& event) {
    if (event.keyCode == keyEscape) {
        stopRecording();
        return;
    }
    if (!isFunctionKey(event.keyCode) && (event.flags & requiredModifiers) == 0) {
        needsModifier_ = true;
        didChange_.post();
        return;
    }
    connections_.keyCode.set(static_cast<std::uint16_t>(event.keyCode));
    connections_.modifiers.set(event.flags & Modifier::shortcutMask);
    if (connections_.onChanged) {
        connections_.onChanged();
    }
    stopRecording();
}

void ZentroShortcutRecorder::clear() {
    if (connections_.onClear) {
        connections_.onClear();
        didChange_.post();
    }
}

bool ZentroShortcutRecorder::isSet() const {
    return connections_.keyCode.get() != 0 || connections_.modifiers.get() != 0;
}

std::optional<platform::KeyRefusal> ZentroShortcutRecorder::refusal() const {
    return connections_.refusal && isSet() ? connections_.refusal() : std::nullopt;
}

} // namespace skylet
