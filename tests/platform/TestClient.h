// A plain client of the X server, for what other programs do.
#pragma once

#include "platform/x11/Reply.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace skylet::test {

class TestClient {
  public:
    // Connects to $DISPLAY.
    TestClient();

    [[nodiscard]] xcb_connection_t* raw() const { return connection_.get(); }
    [[nodiscard]] xcb_window_t root() const { return root_; }

    [[nodiscard]] xcb_window_t createWindow(xcb_rectangle_t place, xcb_window_t parent = XCB_WINDOW_NONE,
                                            bool overrideRedirect = false);
    // Above the others.
    [[nodiscard]] xcb_window_t show(xcb_rectangle_t place, bool overrideRedirect = false);
    // Every change is done when the call returns.
    void map(xcb_window_t window) { finish(xcb_map_window_checked(raw(), window)); }
    void unmap(xcb_window_t window) { finish(xcb_unmap_window_checked(raw(), window)); }
    void destroy(xcb_window_t window) { finish(xcb_destroy_window_checked(raw(), window)); }
    void focus(xcb_window_t window);
    void raise(xcb_window_t window);
    [[nodiscard]] xcb_atom_t atom(const std::string& name);
    void setItems(xcb_window_t window, const std::string& property, xcb_atom_t type,
                  const std::vector<std::uint32_t>& items);
    void setText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, const std::string& bytes);
    // A window manager's claim to be there, as EWMH has it; answers its check window.
    xcb_window_t pretendToManage();

    // The error of a key grab on the root.
    [[nodiscard]] std::optional<std::uint8_t> grabKey(std::uint16_t modifiers, xcb_keycode_t key);
    void ungrabKey(std::uint16_t modifiers, xcb_keycode_t key);
    void fakeKey(xcb_keycode_t key, bool press);
    // Presses the keys in order and releases them in reverse order.
    void strike(const std::vector<xcb_keycode_t>& keys);

    // What came so far of one type of event; the rest is forgotten.
    template <class Event>
    [[nodiscard]] std::vector<Event> events(std::uint8_t type) {
        std::vector<Event> result;
        while (const platform::x11::XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(raw())}) {
            if ((event->response_type & 0x7F) == type) {
                result.push_back(reinterpret_cast<const Event&>(*event)); // NOLINT
            }
        }
        return result;
    }
    void sync();

  private:
    std::optional<std::uint8_t> finish(xcb_void_cookie_t checked);

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    xcb_window_t root_ = XCB_WINDOW_NONE;
};

} // namespace skylet::test
