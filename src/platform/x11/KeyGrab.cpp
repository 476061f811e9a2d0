#include "platform/x11/KeyGrab.h"

#include <algorithm>

namespace skylet::platform::x11 {

namespace {

std::vector<std::uint16_t> lockCombinations(const ModifierMap& map, std::uint16_t modifiers) {
    std::vector<std::uint16_t> states{modifiers};
    for (const std::uint16_t lock : {std::uint16_t{XCB_MOD_MASK_LOCK}, map.numLock(), map.scrollLock()}) {
        const auto count = states.size();
        for (std::size_t i = 0; i < count; ++i) {
            const auto state = static_cast<std::uint16_t>(states[i] | lock);
            if (std::find(states.begin(), states.end(), state) == states.end()) {
                states.push_back(state);
            }
        }
    }
    return states;
}

} // namespace

KeyGrab::Result KeyGrab::make(Connection& connection, const ModifierMap& map, xcb_keycode_t keyCode,
                              std::uint16_t modifiers) {
    Result result;
    result.grab.reset(new KeyGrab(connection, keyCode));
    result.grab->states_ = lockCombinations(map, modifiers);
    std::vector<xcb_void_cookie_t> cookies;
    for (const std::uint16_t state : result.grab->states_) {
        cookies.push_back(xcb_grab_key_checked(connection.raw(), 0, connection.root(), state, keyCode,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    for (const xcb_void_cookie_t cookie : cookies) {
        const XcbOwned<xcb_generic_error_t> error(xcb_request_check(connection.raw(), cookie));
        if (error && !result.error) {
            result.error = toXError(*error);
        }
    }
    if (result.error) {
        result.grab.reset();
    }
    return result;
}

// The server lets a client's newer grab replace its older one without a gap.
void KeyGrab::takeOver(std::unique_ptr<KeyGrab> former) const {
    if (former && former->keyCode_ == keyCode_) {
        std::erase_if(former->states_, [this](std::uint16_t state) {
            return std::find(states_.begin(), states_.end(), state) != states_.end();
        });
    }
}

// Letting go of a combination that was never had is no error.
KeyGrab::~KeyGrab() {
    for (const std::uint16_t state : states_) {
        connection_.send<xcb_ungrab_key>(keyCode_, connection_.root(), state);
    }
    connection_.flush();
}

} // namespace skylet::platform::x11
