#include "platform/x11/X11EventTap.h"

#include "platform/InputEvent.h"
#include "platform/x11/EventWindow.h"
#include "platform/x11/KeyCodes.h"

#include <QChar>
#include <QString>

#include <utility>

namespace skylet::platform::x11 {

namespace {

constexpr xcb_keysym_t firstFunctionKey = 0xFFBE; // F1
constexpr xcb_keysym_t lastFunctionKey = 0xFFD1;  // F20
constexpr const char* wayOut = "choose another one with the preferences keys shortcutKeyCode and "
                               "shortcutModifiers in skylet.conf";

// What the user reads on the key, where it is short; else the number that the preferences take.
std::string keyInWords(Connection& connection, xcb_keycode_t keyCode, std::uint16_t virtualKeyCode) {
    auto mapping =
        connection.ask<xcb_get_keyboard_mapping, xcb_get_keyboard_mapping_reply>(keyCode, std::uint8_t{1});
    if (mapping && xcb_get_keyboard_mapping_keysyms_length(mapping.get()) > 0) {
        const xcb_keysym_t symbol = *xcb_get_keyboard_mapping_keysyms(mapping.get());
        if (symbol >= firstFunctionKey && symbol <= lastFunctionKey) {
            return std::string("F").append(std::to_string(symbol - firstFunctionKey + 1));
        }
        // Keysyms of Latin-1 characters are the characters.
        if ((symbol > 0x20 && symbol < 0x7F) || (symbol > 0xA0 && symbol <= 0xFF)) {
            return QString(QChar(static_cast<char16_t>(symbol)).toUpper()).toStdString();
        }
    }
    return std::string("key code ").append(std::to_string(virtualKeyCode));
}

} // namespace

X11EventTap::X11EventTap(Connection& connection) : connection_(connection), modifiers_(connection) {
    keys_ = connection_.subscribe(connection_.root(), 0,
                                  [this](const xcb_generic_event_t& event) { handleKey(event); });
    mapping_ =
        connection_.subscribeBroadcast([this](const xcb_generic_event_t& event) { handleMapping(event); });
    // A change of layout announces itself several times.
    batch_ = connection_.subscribeAfterBatch([this] {
        if (std::exchange(mappingChanged_, false)) {
            modifiers_.read(connection_);
            if (enabled_) {
                grab();
            }
        }
    });
}

bool X11EventTap::setWantedKey(std::uint16_t keyCode, std::uint64_t flags) {
    wantedKey_ = keyCode;
    wantedFlags_ = flags & ModifierFlags::shortcutMask;
    if (!exists()) {
        return true;
    }
    const bool had = grab();
    if (!enabled_) {
        grab_.reset();
    }
    return had;
}

bool X11EventTap::create(Callback callback) {
    if (!grab()) {
        return false;
    }
    grab_.reset();
    callback_ = std::move(callback);
    return true;
}

void X11EventTap::setEnabled(bool enabled) {
    if (enabled == enabled_ || !exists()) {
        return;
    }
    enabled_ = enabled;
    if (enabled_) {
        grab();
    } else {
        grab_.reset();
    }
}

bool X11EventTap::grab() {
    // Held until the new grab is there: a key that is pressed in between would be lost.
    std::unique_ptr<KeyGrab> former = std::move(grab_);
    failureReason_.reset();
    refusal_.reset();
    if (wantedKey_ == 0 && wantedFlags_ == 0) {
        return true;
    }
    const auto keyCode = toXKeyCode(wantedKey_);
    if (!keyCode) {
        return refuse(KeyRefusal::notOnKeyboard, "no key has the shortcut's key code " +
                                                     std::to_string(wantedKey_) + ": " + wayOut + ".");
    }
    const std::uint16_t state = modifiers_.state(wantedFlags_);
    if (modifiers_.flags(state) != wantedFlags_) {
        return refuse(KeyRefusal::notOnKeyboard, "the keyboard layout lacks a modifier of the shortcut " +
                                                     wantedInWords() + ": " + wayOut + ".");
    }
    auto result = KeyGrab::make(connection_, modifiers_, *keyCode, state);
    if (result.error && result.error->code == XCB_ACCESS) {
        return refuse(KeyRefusal::heldByAnotherProgram, "another program holds the shortcut " +
                                                            wantedInWords() + ": " + wayOut +
                                                            ", or close that program.");
    }
    if (result.error) {
        return refuse(KeyRefusal::notOnKeyboard,
                      "the X server refuses the shortcut " + wantedInWords() + ": " + wayOut + ".");
    }
    result.grab->takeOver(std::move(former));
    grab_ = std::move(result.grab);
    return true;
}

bool X11EventTap::refuse(KeyRefusal refusal, std::string reason) {
    refusal_ = refusal;
    failureReason_ = std::move(reason);
    return false;
}

void X11EventTap::handleKey(const xcb_generic_event_t& event) {
    if (eventType(event) != XCB_KEY_PRESS || !grab_ || !callback_) {
        return;
    }
    const auto& press = as<xcb_key_press_event_t>(event);
    if (press.detail == grab_->keyCode()) {
        callback_(TapEventType::keyDown, {wantedKey_, modifiers_.flags(press.state)});
    }
}

void X11EventTap::handleMapping(const xcb_generic_event_t& event) {
    if (eventType(event) == XCB_MAPPING_NOTIFY &&
        as<xcb_mapping_notify_event_t>(event).request != XCB_MAPPING_POINTER) {
        mappingChanged_ = true;
    }
}

std::string X11EventTap::wantedInWords() {
    std::string words;
    for (const auto& [flag, name] : {std::pair{ModifierFlags::control, "Control+"},
                                     {ModifierFlags::option, "Alt+"},
                                     {ModifierFlags::shift, "Shift+"},
                                     {ModifierFlags::command, "Super+"}}) {
        if ((wantedFlags_ & flag) != 0) {
            words += name;
        }
    }
    const auto keyCode = toXKeyCode(wantedKey_);
    return words + (keyCode ? keyInWords(connection_, *keyCode, wantedKey_) : std::string());
}

} // namespace skylet::platform::x11
