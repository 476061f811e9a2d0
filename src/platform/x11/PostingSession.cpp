#include "platform/x11/PostingSession.h"

#include "platform/x11/ClientGeometry.h"
#include "platform/x11/EventWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace skylet::platform::x11 {

namespace {

// How long after its last event a target is let go of: longer than a double click takes.
constexpr double idleSeconds = 1.0;
constexpr std::uint8_t rightButton = 3;
// Window managers use timestamps for theirs.
constexpr std::uint32_t pingSerials = 0x53000000;

} // namespace

PostingSession::PostingSession(Connection& connection, MainQueue& mainQueue, SecondPointer& pointer,
                               xcb_window_t client, ProcessID pid, std::function<void()> over)
    : connection_(connection)
    , mainQueue_(mainQueue)
    , pointer_(pointer)
    , client_(client)
    , over_(std::move(over))
    , formerClientPointer_(clientPointer(connection, client))
    , holes_(connection)
    , popups_(connection, pid, [this] { popupsGone(); }) {
    clientEvents_ = connection_.subscribe(client_, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                                          [this](const xcb_generic_event_t& event) {
                                              const auto type = eventType(event);
                                              if (type == XCB_DESTROY_NOTIFY || type == XCB_UNMAP_NOTIFY) {
                                                  isGone_ = type == XCB_DESTROY_NOTIFY;
                                                  letGo();
                                                  scheduleEnd();
                                              } else if (type == XCB_REPARENT_NOTIFY) {
                                                  topLevel_ = XCB_WINDOW_NONE;
                                              }
                                          });
    userWatch_ = std::make_unique<PointerWatch>(connection_, pointer_.pointerDevice(),
                                                PointerWatch::Handlers{.pressed = [this] { userPressed(); },
                                                                       .released = [this] { userReleased(); },
                                                                       .moved =
                                                                           [this] {
                                                                               userMoved();
                                                                           }});
    pointer_.becomeClientPointer(client_);
    pointer_.hideCursorOver(client_);
}

PostingSession::~PostingSession() {
    dismissPopups();
    letGo();
    if ((isReady_ || lead_) && !isGone_) {
        FocusLead::end(connection_, client_);
    }
    if (!isGone_) {
        pointer_.showCursorOver(client_);
        if (formerClientPointer_ != 0) {
            pointer_.giveClientPointer(client_, formerClientPointer_);
        }
    }
    connection_.flush();
}

void PostingSession::post(PostedInput input) {
    queue_.push_back(std::move(input));
    runQueue();
    scheduleEnd();
}

void PostingSession::runQueue() {
    while (!queue_.empty() && !isGone_) {
        if (queue_.front().kind == PostedInput::Kind::press && awaitsLead()) {
            break;
        }
        const PostedInput input = std::move(queue_.front());
        queue_.pop_front();
        switch (input.kind) {
        case PostedInput::Kind::press:
            press(input);
            break;
        case PostedInput::Kind::release:
            release(input);
            break;
        case PostedInput::Kind::motion:
            if (heldButton_ != 0) {
                follow(input);
            }
            break;
        case PostedInput::Kind::wheel:
            wheel(input);
            break;
        }
    }
    connection_.flush();
}

bool PostingSession::awaitsLead() {
    // A press beside popups only closes them.
    const bool isSettled = isSettled_ || popups_.isOpen();
    if (heldButton_ != 0 || (isReady_ && isSettled)) {
        return false;
    }
    if (!lead_) {
        const auto kind = isReady_ ? FocusLead::Kind::pingOnly : FocusLead::Kind::focusAndPing;
        lead_ = std::make_unique<FocusLead>(connection_, mainQueue_, client_, kind, pingSerials + ++leads_,
                                            [this, kind](bool ready) { leadAnswered(kind, ready); });
    }
    return true;
}

void PostingSession::leadAnswered(FocusLead::Kind kind, bool ready) {
    const bool wasReady = kind == FocusLead::Kind::pingOnly;
    if (!wasReady) {
        isReady_ = ready;
    }
    isSettled_ = true;
    mainQueue_.async([this, alive = std::weak_ptr(alive_)] {
        if (!alive.expired()) {
            lead_.reset();
            runQueue();
        }
    });
    if (!wasReady && !ready) {
        // A press that came late would take the focus after all, and what was told is read some time.
        FocusLead::end(connection_, client_);
        queue_.clear();
        dropsUntilRelease_ = true;
    }
}

bool PostingSession::findTopLevel() {
    for (xcb_window_t window = client_; topLevel_ == XCB_WINDOW_NONE;) {
        auto tree = connection_.ask<xcb_query_tree, xcb_query_tree_reply>(window);
        if (!tree || tree->parent == XCB_WINDOW_NONE) {
            return false;
        }
        if (tree->parent == connection_.root()) {
            topLevel_ = window;
        }
        window = tree->parent;
    }
    return true;
}

bool PostingSession::aim(const PostedInput& input) {
    PendingClientGeometry pending(connection_, client_);
    const auto geometry = pending.read();
    if (!geometry || !findTopLevel()) {
        return false;
    }
    // A point on the far edge lies just outside of the pixels, and a press on a frame disturbs its manager.
    const PixelRect client = toPixels(geometry->bounds);
    x_ = std::clamp(static_cast<int>(std::floor(input.x)), client.x, client.right() - 1);
    y_ = std::clamp(static_cast<int>(std::floor(input.y)), client.y, client.bottom() - 1);
    return true;
}

void PostingSession::follow(const PostedInput& input) {
    const int x = x_;
    const int y = y_;
    // A warp to where the pointer is would be told to the target as a motion.
    if (aim(input) && (x_ != x || y_ != y)) {
        pointer_.warp(x_, y_);
    }
}

void PostingSession::press(const PostedInput& input) {
    dropsUntilRelease_ = false;
    if (popups_.isOpen()) {
        // As a click beside a menu does: it closes, and the click is spent.
        closePopups(0);
        dropsUntilRelease_ = true;
        return;
    }
    if (heldButton_ != 0 || !aim(input) || !holes_.find(topLevel_, x_, y_)) {
        dropsUntilRelease_ = heldButton_ == 0;
        return;
    }
    openBlock(input);
    pointer_.press(input.button);
    heldButton_ = input.button;
    isSettled_ = false;
    spareIsDown_ = true;
    isAway_ = true;
    if (input.button == rightButton) {
        // A menu grabs the pointer at the press and would take the spare button's release for a choice.
        releaseSpare();
    }
    closeBlock();
    connection_.flush();
}

void PostingSession::holdServer(bool andUser) {
    holdsUser_ = andUser;
    connection_.send<xcb_grab_server>();
    if (holdsUser_) {
        pointer_.holdUserPointer();
    }
}

// What comes between goes out as one write, so that nothing is left half done.
void PostingSession::openBlock(const PostedInput& input) {
    holdServer(input.kind == PostedInput::Kind::press && !userButtonIsDown());
    if (isAway_) {
        pointer_.park();
    }
    pointer_.pressSpare();
    holes_.cut();
    pointer_.lockModifiers(input.state);
    pointer_.warpUnnoticed(x_, y_);
}

void PostingSession::closeBlock() {
    holes_.close();
    if (holdsUser_) {
        pointer_.freeUserPointer();
    }
    connection_.send<xcb_ungrab_server>();
}

bool PostingSession::userButtonIsDown() {
    constexpr unsigned anyButton =
        XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3 | XCB_BUTTON_MASK_4 | XCB_BUTTON_MASK_5;
    auto pointer = connection_.ask<xcb_query_pointer, xcb_query_pointer_reply>(connection_.root());
    return pointer && (pointer->mask & anyButton) != 0;
}

// After the other button where possible: some terminals take any release for the end of a selection.
void PostingSession::releaseSpare() {
    if (std::exchange(spareIsDown_, false)) {
        pointer_.releaseSpare();
    }
}

void PostingSession::release(const PostedInput& input) {
    if (std::exchange(dropsUntilRelease_, false) || heldButton_ != input.button) {
        return;
    }
    // Menus open where the pointer is, and some close when it leaves.
    const bool mayOpenMenu = heldButton_ == rightButton || popups_.isOpen();
    // What is a button only hears a release that happens over it, and the pointer left it with the hole.
    follow(input);
    const bool isOver = !mayOpenMenu && holes_.find(topLevel_, x_, y_);
    if (isOver) {
        holdServer(!userButtonIsDown());
        holes_.cut();
    }
    pointer_.release(std::exchange(heldButton_, std::uint8_t{0}));
    releaseSpare();
    pointer_.unlockModifiers();
    if (!mayOpenMenu) {
        pointer_.park();
        isAway_ = false;
    }
    if (isOver) {
        closeBlock();
    }
    connection_.flush();
}

// The hole lies beside the user's pointer, which must not enter the target. Holding that pointer as for a
// press is no way here: some browsers take no scroll then.
bool PostingSession::aimBesideUser(const PostedInput& input) {
    if (!aim(input)) {
        return false;
    }
    const auto user = userPointer();
    for (const double step : {1.0, -1.0}) {
        if (user && user->x == x_ && user->y == y_) {
            PostedInput beside = input;
            beside.x += step;
            if (!aim(beside)) {
                return false;
            }
        }
    }
    return true;
}

void PostingSession::wheel(const PostedInput& input) {
    if (!aimBesideUser(input)) {
        return;
    }
    const bool inDrag = heldButton_ != 0;
    if (!inDrag && !holes_.find(topLevel_, x_, y_)) {
        return;
    }
    if (!inDrag) {
        openBlock(input);
    }
    for (const auto& [button, clicks] : input.wheel) {
        for (int i = 0; i < clicks; ++i) {
            pointer_.press(button);
            pointer_.release(button);
        }
    }
    if (!inDrag) {
        pointer_.releaseSpare();
        pointer_.unlockModifiers();
        pointer_.park();
        closeBlock();
        isAway_ = false;
    }
    connection_.flush();
}

// Ends whatever is under way, wherever it got stuck.
void PostingSession::letGo() {
    if (heldButton_ != 0 || spareIsDown_ || isAway_) {
        pointer_.releaseAllButtons();
        pointer_.unlockModifiers();
        pointer_.park();
        heldButton_ = 0;
        spareIsDown_ = false;
        isAway_ = false;
    }
    connection_.flush();
}

void PostingSession::scheduleEnd() {
    endTime_ = mainQueue_.now() + idleSeconds;
    if (!std::exchange(endIsScheduled_, true)) {
        waitForEnd(idleSeconds);
    }
}

void PostingSession::waitForEnd(double seconds) {
    mainQueue_.after(seconds, [this, alive = std::weak_ptr(alive_)] {
        if (!alive.expired()) {
            endIfIdle();
        }
    });
}

void PostingSession::endIfIdle() {
    const double rest = endTime_ - mainQueue_.now();
    const bool isIdle = rest <= 0 && heldButton_ == 0 && !popups_.isOpen() && !lead_;
    if (isGone_ || isIdle) {
        over_();
    } else {
        waitForEnd(rest > 0 ? rest : idleSeconds);
    }
}

} // namespace skylet::platform::x11
