#include "platform/x11/X11EventPoster.h"

#include "platform/x11/PostingRepair.h"
#include "platform/x11/Property.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace skylet::platform::x11 {

X11EventPoster::X11EventPoster(Connection& connection, const ModifierMap& modifiers, MainQueue& mainQueue)
    : connection_(connection)
    , modifiers_(modifiers)
    , mainQueue_(mainQueue)
    , sendEvent_(connection) {
    if (const std::uint16_t left = repairPosting(connection_); left != 0) {
        const double settling = std::chrono::duration<double>(settlingAfterRepair).count();
        mainQueue_.after(settling, [this, left, alive = std::weak_ptr(alive_)] {
            // A pointer that is in use by now was adopted.
            if (!alive.expired() && !pointer_) {
                SecondPointer::remove(connection_, left);
                connection_.flush();
            }
        });
    }
}

X11EventPoster::~X11EventPoster() {
    session_.reset();
    if (pointer_) {
        pointer_.reset();
        cleanUpAfterPosting(connection_);
    }
}

bool X11EventPoster::preflightPostAccess() {
    return connection_.extensions().xtest && connection_.extensions().xinput;
}

void X11EventPoster::postToPid(const SyntheticEvent& event, ProcessID pid) {
    PostedInput input = toPostedInput(event, pid, modifiers_, accumulator_);
    if (input.window == XCB_WINDOW_NONE) {
        return;
    }
    if (!usesSecondPointer(input)) {
        sendEvent_.post(input);
        return;
    }
    if (!session_ || session_->client() != input.window) {
        session_.reset();
        session_ = std::make_unique<PostingSession>(connection_, mainQueue_, *pointer_, input.window, pid,
                                                    [this] { session_.reset(); });
    }
    session_->post(std::move(input));
}

bool X11EventPoster::usesSecondPointer(const PostedInput& input) {
    if (!std::exchange(triedPointer_, true)) {
        pointer_ = SecondPointer::acquire(connection_);
    }
    if (!pointer_) {
        return false;
    }
    switch (input.kind) {
    case PostedInput::Kind::press:
        sentPress_ = !takesRealPress(input);
        return !sentPress_;
    case PostedInput::Kind::motion:
        return !sentPress_;
    case PostedInput::Kind::release:
        return !std::exchange(sentPress_, false);
    case PostedInput::Kind::wheel:
        return takesRealPress(input);
    }
    return true;
}

// Toolkits listen by XInput, which other clients cannot see; but they also answer pings. What does neither
// and has no core button events selected anywhere under the point would let the press fall through to its
// frame.
bool X11EventPoster::takesRealPress(const PostedInput& input) {
    const Atoms& atoms = connection_.atoms();
    auto pending = askProperty(connection_, input.window, atoms.WM_PROTOCOLS, XCB_ATOM_ATOM, 64);
    const auto protocols = items(pending, XCB_ATOM_ATOM);
    if (std::find(protocols.begin(), protocols.end(), atoms.NET_WM_PING) != protocols.end()) {
        return true;
    }
    for (xcb_window_t window = input.window; window != XCB_WINDOW_NONE;) {
        auto attributes = connection_.ask<xcb_get_window_attributes, xcb_get_window_attributes_reply>(window);
        auto inside = connection_.ask<xcb_translate_coordinates, xcb_translate_coordinates_reply>(
            connection_.root(), window, static_cast<std::int16_t>(std::floor(input.x)),
            static_cast<std::int16_t>(std::floor(input.y)));
        if (!attributes || !inside) {
            return false;
        }
        if ((attributes->all_event_masks & XCB_EVENT_MASK_BUTTON_PRESS) != 0) {
            return true;
        }
        window = inside->child;
    }
    return false;
}

} // namespace skylet::platform::x11
