#include "platform/x11/FocusLead.h"

#include "platform/x11/EventWindow.h"
#include "platform/x11/Property.h"

#include <algorithm>
#include <utility>

namespace skylet::platform::x11 {

namespace {

// The longest that a click waits for a busy application. Browsers and offices are busy for half a second now
// and then; after more than this nobody expects the click any longer.
constexpr double longestWait = 1.0; // seconds

void sendFocus(Connection& connection, xcb_window_t client, std::uint8_t type) {
    // Sent events are 32 bytes whatever their kind.
    union {
        xcb_focus_in_event_t focus;
        char bytes[32];
    } event{};
    event.focus.response_type = type;
    event.focus.detail = XCB_NOTIFY_DETAIL_NONLINEAR;
    event.focus.event = client;
    event.focus.mode = XCB_NOTIFY_MODE_NORMAL;
    connection.sendTolerant<xcb_send_event>(std::uint8_t{0}, client, std::uint32_t{XCB_EVENT_MASK_NO_EVENT},
                                            static_cast<const char*>(event.bytes));
}

} // namespace

FocusLead::FocusLead(Connection& connection, MainQueue& mainQueue, xcb_window_t client, Kind kind,
                     std::uint32_t serial, Answer answer)
    : connection_(connection)
    , client_(client)
    , serial_(serial)
    , answer_(std::move(answer)) {
    const Atoms& atoms = connection_.atoms();
    auto pending = askProperty(connection_, client_, atoms.WM_PROTOCOLS, XCB_ATOM_ATOM, 64);
    // The answer to a ping is sent to the root, where window managers expect it.
    rootEvents_ = connection_.subscribe(connection_.root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                                        [this](const xcb_generic_event_t& event) { handle(event); });
    const auto protocols = items(pending, XCB_ATOM_ATOM);
    if (kind == Kind::focusAndPing) {
        sendFocus(connection_, client_, XCB_FOCUS_IN);
    }
    if (std::find(protocols.begin(), protocols.end(), atoms.NET_WM_PING) == protocols.end()) {
        mainQueue.async([this, alive = std::weak_ptr(alive_)] {
            if (!alive.expired()) {
                finish(true);
            }
        });
        return;
    }
    xcb_client_message_event_t ping{};
    ping.response_type = XCB_CLIENT_MESSAGE;
    ping.format = 32;
    ping.window = client_;
    ping.type = atoms.WM_PROTOCOLS;
    ping.data.data32[0] = atoms.NET_WM_PING;
    ping.data.data32[1] = serial_;
    ping.data.data32[2] = client_;
    connection_.sendTolerant<xcb_send_event>(std::uint8_t{0}, client_, std::uint32_t{XCB_EVENT_MASK_NO_EVENT},
                                             reinterpret_cast<const char*>(&ping));
    connection_.flush();
    mainQueue.after(longestWait, [this, alive = std::weak_ptr(alive_)] {
        if (!alive.expired()) {
            finish(false);
        }
    });
}

void FocusLead::handle(const xcb_generic_event_t& event) {
    if (eventType(event) != XCB_CLIENT_MESSAGE) {
        return;
    }
    const auto& message = as<xcb_client_message_event_t>(event);
    const Atoms& atoms = connection_.atoms();
    if (message.type == atoms.WM_PROTOCOLS && message.format == 32 &&
        message.data.data32[0] == atoms.NET_WM_PING && message.data.data32[1] == serial_) {
        finish(true);
    }
}

void FocusLead::finish(bool ready) {
    rootEvents_.reset();
    if (const Answer answer = std::exchange(answer_, nullptr)) {
        answer(ready);
    }
}

void FocusLead::end(Connection& connection, xcb_window_t client) {
    sendFocus(connection, client, XCB_FOCUS_OUT);
}

} // namespace skylet::platform::x11
