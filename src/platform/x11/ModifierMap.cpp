#include "platform/x11/ModifierMap.h"

#include "platform/InputEvent.h"

namespace skylet::platform::x11 {

namespace {
// Keysyms of the modifiers (X11 keysym encoding).
constexpr xcb_keysym_t altL = 0xFFE9;
constexpr xcb_keysym_t altR = 0xFFEA;
constexpr xcb_keysym_t superL = 0xFFEB;
constexpr xcb_keysym_t superR = 0xFFEC;
constexpr xcb_keysym_t numLockKey = 0xFF7F;
constexpr xcb_keysym_t scrollLockKey = 0xFF14;
constexpr int modifierCount = 8;
} // namespace

void ModifierMap::read(Connection& connection) {
    alt_ = super_ = numLock_ = scrollLock_ = 0;
    const auto* setup = xcb_get_setup(connection.raw());
    const std::uint8_t first = setup->min_keycode;
    auto modifiers = connection.ask<xcb_get_modifier_mapping, xcb_get_modifier_mapping_reply>();
    auto keyboard = connection.ask<xcb_get_keyboard_mapping, xcb_get_keyboard_mapping_reply>(
        xcb_keycode_t{first}, static_cast<std::uint8_t>(setup->max_keycode - first + 1));
    const auto* modifierReply = modifiers.get();
    const auto* keyboardReply = keyboard.get();
    if (!modifierReply || !keyboardReply) {
        return;
    }
    const xcb_keycode_t* codes = xcb_get_modifier_mapping_keycodes(modifierReply);
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(keyboardReply);
    const int perModifier = modifierReply->keycodes_per_modifier;
    const int perCode = keyboardReply->keysyms_per_keycode;
    for (int modifier = 0; modifier < modifierCount; ++modifier) {
        const auto bit = static_cast<std::uint16_t>(1U << unsigned(modifier));
        for (int i = 0; i < perModifier; ++i) {
            const xcb_keycode_t code = codes[modifier * perModifier + i];
            for (int column = 0; code >= first && column < perCode; ++column) {
                switch (symbols[(code - first) * perCode + column]) {
                case altL:
                case altR:
                    alt_ = alt_ != 0 ? alt_ : bit;
                    break;
                case superL:
                case superR:
                    super_ = super_ != 0 ? super_ : bit;
                    break;
                case numLockKey:
                    numLock_ = bit;
                    break;
                case scrollLockKey:
                    scrollLock_ = bit;
                    break;
                default:
                    break;
                }
            }
        }
    }
}

std::uint64_t ModifierMap::flags(std::uint16_t state) const {
    std::uint64_t flags = 0;
    flags |= (state & XCB_MOD_MASK_SHIFT) != 0 ? ModifierFlags::shift : 0;
    flags |= (state & XCB_MOD_MASK_LOCK) != 0 ? ModifierFlags::capsLock : 0;
    flags |= (state & XCB_MOD_MASK_CONTROL) != 0 ? ModifierFlags::control : 0;
    flags |= (state & alt_) != 0 ? ModifierFlags::option : 0;
    flags |= (state & super_) != 0 ? ModifierFlags::command : 0;
    return flags;
}

std::uint16_t ModifierMap::state(std::uint64_t flags) const {
    unsigned state = 0;
    state |= (flags & ModifierFlags::shift) != 0 ? unsigned{XCB_MOD_MASK_SHIFT} : 0U;
    state |= (flags & ModifierFlags::control) != 0 ? unsigned{XCB_MOD_MASK_CONTROL} : 0U;
    state |= (flags & ModifierFlags::option) != 0 ? alt_ : 0U;
    state |= (flags & ModifierFlags::command) != 0 ? super_ : 0U;
    return static_cast<std::uint16_t>(state);
}

} // namespace skylet::platform::x11
