#include "Receiver.h"

#include "Measures.h"

#include <cstdlib>
#include <cstring>
#include <poll.h>

namespace skylet::bench {

namespace {

xcb_atom_t atom(xcb_connection_t* connection, const std::string& name) {
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr);
    const xcb_atom_t result = reply ? reply->atom : XCB_NONE;
    std::free(reply);
    return result;
}

} // namespace

Receiver::Receiver(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    xcb_connection_t* x = connection_.get();
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
    root_ = screen->root;
    protocols_ = atom(x, "WM_PROTOCOLS");
    ping_ = atom(x, "_NET_WM_PING");
    window_ = xcb_generate_id(x);
    const std::uint32_t values[] = {screen->white_pixel,
                                    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                        XCB_EVENT_MASK_BUTTON_MOTION | XCB_EVENT_MASK_FOCUS_CHANGE};
    xcb_create_window(x, XCB_COPY_FROM_PARENT, window_, root_, 40, 40, 480, 320, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, window_, protocols_, XCB_ATOM_ATOM, 32, 1, &ping_);
    constexpr char title[] = "receiver";
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        sizeof title - 1, title);
    xcb_map_window(x, window_);
    xcb_flush(x);
}

std::uint8_t Receiver::take(double seconds) {
    const std::int64_t end = now() + static_cast<std::int64_t>(seconds * 1e9);
    while (true) {
        if (xcb_generic_event_t* event = xcb_poll_for_event(connection_.get())) {
            const auto type = static_cast<std::uint8_t>(event->response_type & 0x7F);
            if (type == XCB_CLIENT_MESSAGE) {
                auto* message = reinterpret_cast<xcb_client_message_event_t*>(event);
                if (message->type == protocols_ && message->data.data32[0] == ping_) {
                    message->window = root_;
                    xcb_send_event(connection_.get(), 0, root_,
                                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                                   reinterpret_cast<const char*>(message));
                    xcb_flush(connection_.get());
                }
            }
            std::free(event);
            return type;
        }
        const std::int64_t left = end - now();
        pollfd ready{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
        if (left <= 0 || ::poll(&ready, 1, static_cast<int>(left / 1'000'000) + 1) <= 0) {
            return 0;
        }
    }
}

std::optional<std::int64_t> Receiver::next(std::uint8_t type) {
    constexpr double longest = 2;
    const std::int64_t end = now() + static_cast<std::int64_t>(longest * 1e9);
    while (now() < end) {
        const std::uint8_t taken = take(longest);
        if (taken == type) {
            return now();
        }
        if (taken == 0) {
            break;
        }
    }
    return std::nullopt;
}

void Receiver::drain(double seconds) {
    const std::int64_t end = now() + static_cast<std::int64_t>(seconds * 1e9);
    while (now() < end) {
        (void)take(static_cast<double>(end - now()) / 1e9);
    }
}

} // namespace skylet::bench
