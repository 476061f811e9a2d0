// PostingSession: the user's own pointer meanwhile, and the popups that the target opens.
#include "platform/x11/PostingSession.h"

#include <utility>

namespace skylet::platform::x11 {

namespace {

// The release that the overlay reports comes within this time of the user's own, or not at all.
constexpr double releaseGrace = 0.1;
// What a popup needs to notice a click beside it.
constexpr double popupGrace = 0.15;
constexpr int closingAttempts = 8;
constexpr std::uint8_t leftButton = 1;
// The keys' places on every keyboard: evdev codes 1 and 28 and the offset of 8.
constexpr xcb_keycode_t escapeKey = 9;
constexpr xcb_keycode_t returnKey = 36;

} // namespace

void PostingSession::userPressed() {
    if (!popups_.isOpen() || heldButton_ != 0) {
        return;
    }
    const auto place = userPointer();
    if (!place) {
        return;
    }
    if (!popups_.at(*place)) {
        closePopups(0);
    } else if (popups_.isDeafAt(*place)) {
        // Pointing works by proxy, but such toolkits renew their grab at a press and lose the entry by it.
        leadTo(*place);
        pointer_.tapKey(returnKey);
        connection_.flush();
    }
}

void PostingSession::userMoved() {
    if (!popups_.hasDeaf()) {
        return;
    }
    if (const auto place = userPointer(); place && popups_.isDeafAt(*place)) {
        leadTo(*place);
        connection_.flush();
    }
}

std::optional<PixelPoint> PostingSession::userPointer() {
    auto pointer = connection_.ask<xcb_query_pointer, xcb_query_pointer_reply>(connection_.root());
    return pointer ? std::optional(PixelPoint{pointer->root_x, pointer->root_y}) : std::nullopt;
}

void PostingSession::leadTo(PixelPoint place) {
    pointer_.warp(place.x, place.y);
    isAway_ = true;
}

// A drag that left the overlay, or one whose overlay went away, ends with the user's button.
void PostingSession::userReleased() {
    if (heldButton_ == 0) {
        return;
    }
    mainQueue_.after(releaseGrace, [this, alive = std::weak_ptr(alive_), held = heldButton_] {
        if (!alive.expired() && heldButton_ == held) {
            if (!userButtonIsDown()) {
                letGo();
                scheduleEnd();
            }
        }
    });
}

// A click beside the popups is what closes those that hold the pointer, so that nothing else sees it. Others
// close with the focus, or at least by Escape. A busy target may not hold the pointer yet.
void PostingSession::closePopups(int attempt) {
    if (!popups_.isOpen() || heldButton_ != 0 || attempt == closingAttempts) {
        return;
    }
    pointer_.park();
    isAway_ = false;
    pointer_.press(leftButton);
    pointer_.release(leftButton);
    if (attempt > 0) {
        FocusLead::end(connection_, client_);
        isReady_ = false;
        dismissPopups();
    }
    connection_.flush();
    mainQueue_.after(popupGrace, [this, attempt, round = popupRound_, alive = std::weak_ptr(alive_)] {
        // What opens later is not to be closed.
        if (!alive.expired() && popupRound_ == round) {
            closePopups(attempt + 1);
        }
    });
}

void PostingSession::popupsGone() {
    // A popup's grabs may have told the target that it lost the focus.
    isReady_ = false;
    ++popupRound_;
    if (heldButton_ == 0) {
        letGo();
        scheduleEnd();
    }
}

void PostingSession::dismissPopups() {
    if (popups_.isOpen()) {
        pointer_.tapKey(escapeKey);
    }
}

} // namespace skylet::platform::x11
