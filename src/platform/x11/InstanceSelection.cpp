#include "platform/x11/InstanceSelection.h"

#include "platform/x11/EventWindow.h"

#include <string>
#include <utility>

namespace skylet::platform::x11 {

namespace {

int screenNumber(const Connection& connection) {
    int number = 0;
    for (auto it = xcb_setup_roots_iterator(xcb_get_setup(connection.raw())); it.rem > 0;
         xcb_screen_next(&it), ++number) {
        if (it.data->root == connection.root()) {
            break;
        }
    }
    return number;
}

xcb_atom_t internAtom(Connection& connection, const std::string& name) {
    auto reply = connection.ask<xcb_intern_atom, xcb_intern_atom_reply>(
        std::uint8_t{0}, static_cast<std::uint16_t>(name.size()), name.c_str());
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace

InstanceSelection::InstanceSelection(Connection& connection, std::function<void()> activated)
    : connection_(connection)
    , selection_(internAtom(connection, "_SKYLET_S" + std::to_string(screenNumber(connection))))
    , window_(connection.generateId())
    , activated_(std::move(activated)) {
    connection_.send<xcb_create_window>(
        std::uint8_t{0}, window_, connection_.root(), std::int16_t{-1}, std::int16_t{-1}, std::uint16_t{1},
        std::uint16_t{1}, std::uint16_t{0}, static_cast<std::uint16_t>(XCB_WINDOW_CLASS_INPUT_ONLY),
        xcb_visualid_t{0}, 0U, static_cast<const void*>(nullptr));
    events_ = connection_.subscribe(window_, 0, [this](const xcb_generic_event_t& event) { handle(event); });
}

// The server takes the selection back with its window.
InstanceSelection::~InstanceSelection() {
    events_.reset();
    connection_.send<xcb_destroy_window>(window_);
    connection_.flush();
}

bool InstanceSelection::claim() {
    const xcb_timestamp_t time = connection_.serverTime();
    // Two that start at once must not both find it free.
    connection_.send<xcb_grab_server>();
    auto before = connection_.ask<xcb_get_selection_owner, xcb_get_selection_owner_reply>(selection_);
    xcb_window_t owner = before ? before->owner : xcb_window_t{XCB_WINDOW_NONE};
    if (owner == XCB_WINDOW_NONE) {
        connection_.send<xcb_set_selection_owner>(window_, selection_, time);
        auto after = connection_.ask<xcb_get_selection_owner, xcb_get_selection_owner_reply>(selection_);
        owner = after ? after->owner : window_;
    }
    connection_.send<xcb_ungrab_server>();
    connection_.flush();
    if (owner == window_) {
        return true;
    }
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = owner;
    message.type = selection_;
    connection_.sendTolerant<xcb_send_event>(std::uint8_t{0}, owner, std::uint32_t{XCB_EVENT_MASK_NO_EVENT},
                                             reinterpret_cast<const char*>(&message)); // NOLINT: xcb's form
    connection_.flush();
    return false;
}

void InstanceSelection::handle(const xcb_generic_event_t& event) {
    if (eventType(event) == XCB_CLIENT_MESSAGE && as<xcb_client_message_event_t>(event).type == selection_) {
        activated_();
    }
}

} // namespace skylet::platform::x11
