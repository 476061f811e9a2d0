#include "platform/x11/WindowActivation.h"

#include <array>

namespace skylet::platform::x11 {

namespace {

// Source indication of requests that come from the user by way of a pager (EWMH); managers question those of
// applications.
constexpr std::uint32_t sourcePager = 2;
constexpr std::uint32_t allDesktops = 0xFFFFFFFF;

void sendToManager(Connection& connection, xcb_window_t window, xcb_atom_t type,
                   const std::array<std::uint32_t, 5>& data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    for (std::size_t i = 0; i < data.size(); ++i) {
        message.data.data32[i] = data[i]; // NOLINT: the event's own form
    }
    // Sent without the connection's bookkeeping, because it may be called on any thread; the root always is.
    xcb_send_event(connection.raw(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message)); // NOLINT: how xcb takes events
}

} // namespace

bool raiseWindow(Connection& connection, xcb_window_t window) {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    sendToManager(connection, window, connection.atoms().NET_RESTACK_WINDOW,
                  {sourcePager, XCB_WINDOW_NONE, XCB_STACK_MODE_ABOVE, 0, 0});
    return !connection.sendChecked<xcb_configure_window_checked>(
        window, std::uint16_t{XCB_CONFIG_WINDOW_STACK_MODE}, static_cast<const void*>(&above));
}

namespace {

void focusWithoutManager(Connection& connection, xcb_window_t window) {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    connection.sendTolerant<xcb_configure_window>(window, std::uint16_t{XCB_CONFIG_WINDOW_STACK_MODE},
                                                  static_cast<const void*>(&above));
    connection.sendTolerant<xcb_set_input_focus>(std::uint8_t{XCB_INPUT_FOCUS_POINTER_ROOT}, window,
                                                 connection.serverTime());
    connection.flush();
}

// The window's desktop where the user is on another one.
std::optional<std::uint32_t> otherDesktop(Connection& connection, xcb_window_t window,
                                          const ClientWindows& desktop) {
    auto place = askProperty(connection, window, connection.atoms().NET_WM_DESKTOP, XCB_ATOM_CARDINAL, 1);
    const auto itsDesktop = firstItem(place, XCB_ATOM_CARDINAL);
    const bool isElsewhere = itsDesktop && desktop.currentDesktop && *itsDesktop != allDesktops &&
                             *itsDesktop != *desktop.currentDesktop;
    return isElsewhere ? itsDesktop : std::nullopt;
}

} // namespace

void activateWindow(Connection& connection, xcb_window_t window, const ClientWindows& desktop) {
    if (desktop.windowManager == XCB_WINDOW_NONE) {
        focusWithoutManager(connection, window);
        return;
    }
    const auto itsDesktop = otherDesktop(connection, window, desktop);
    const xcb_timestamp_t time = connection.serverTime();
    if (itsDesktop) {
        sendToManager(connection, connection.root(), connection.atoms().NET_CURRENT_DESKTOP,
                      {*itsDesktop, time, 0, 0, 0});
    }
    sendToManager(connection, window, connection.atoms().NET_ACTIVE_WINDOW, {sourcePager, time, 0, 0, 0});
    connection.flush();
}

void activateHere(Connection& connection, xcb_window_t window, const ClientWindows& desktop) {
    if (desktop.windowManager == XCB_WINDOW_NONE) {
        focusWithoutManager(connection, window);
        return;
    }
    if (otherDesktop(connection, window, desktop)) {
        sendToManager(connection, window, connection.atoms().NET_WM_DESKTOP,
                      {*desktop.currentDesktop, sourcePager, 0, 0, 0});
    }
    sendToManager(connection, window, connection.atoms().NET_ACTIVE_WINDOW,
                  {sourcePager, connection.serverTime(), 0, 0, 0});
    connection.flush();
}

} // namespace skylet::platform::x11
