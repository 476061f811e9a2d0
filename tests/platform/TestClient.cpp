#include "platform/TestClient.h"

#include <xcb/xtest.h>

namespace skylet::test {

using platform::x11::XcbOwned;

TestClient::TestClient() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(raw()) == 0) {
        root_ = xcb_setup_roots_iterator(xcb_get_setup(raw())).data->root;
    }
}

xcb_window_t TestClient::createWindow(xcb_rectangle_t place, xcb_window_t parent, bool overrideRedirect) {
    const xcb_window_t window = xcb_generate_id(raw());
    const std::uint32_t values[] = {overrideRedirect ? 1U : 0U};
    xcb_create_window(raw(), XCB_COPY_FROM_PARENT, window, parent == XCB_WINDOW_NONE ? root_ : parent,
                      place.x, place.y, place.width, place.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, values);
    sync();
    return window;
}

xcb_window_t TestClient::show(xcb_rectangle_t place, bool overrideRedirect) {
    const xcb_window_t window = createWindow(place, XCB_WINDOW_NONE, overrideRedirect);
    map(window);
    raise(window);
    return window;
}

void TestClient::focus(xcb_window_t window) {
    finish(xcb_set_input_focus_checked(raw(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME));
}

void TestClient::raise(xcb_window_t window) {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    finish(xcb_configure_window_checked(raw(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above));
}

xcb_atom_t TestClient::atom(const std::string& name) {
    const XcbOwned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        raw(), xcb_intern_atom(raw(), 0, static_cast<std::uint16_t>(name.size()), name.c_str()), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void TestClient::setItems(xcb_window_t window, const std::string& property, xcb_atom_t type,
                          const std::vector<std::uint32_t>& items) {
    finish(xcb_change_property_checked(raw(), XCB_PROP_MODE_REPLACE, window, atom(property), type, 32,
                                       static_cast<std::uint32_t>(items.size()), items.data()));
}

void TestClient::setText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                         const std::string& bytes) {
    finish(xcb_change_property_checked(raw(), XCB_PROP_MODE_REPLACE, window, property, type, 8,
                                       static_cast<std::uint32_t>(bytes.size()), bytes.data()));
}

xcb_window_t TestClient::pretendToManage() {
    const xcb_window_t check = createWindow({-1, -1, 1, 1}, XCB_WINDOW_NONE, true);
    setItems(check, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, {check});
    setItems(root_, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, {check});
    return check;
}

std::optional<std::uint8_t> TestClient::grabKey(std::uint16_t modifiers, xcb_keycode_t key) {
    return finish(
        xcb_grab_key_checked(raw(), 0, root_, modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
}

void TestClient::ungrabKey(std::uint16_t modifiers, xcb_keycode_t key) {
    finish(xcb_ungrab_key_checked(raw(), key, root_, modifiers));
}

void TestClient::fakeKey(xcb_keycode_t key, bool press) {
    finish(xcb_test_fake_input_checked(raw(), press ? XCB_KEY_PRESS : XCB_KEY_RELEASE, key, XCB_CURRENT_TIME,
                                       XCB_WINDOW_NONE, 0, 0, 0));
}

void TestClient::strike(const std::vector<xcb_keycode_t>& keys) {
    for (const xcb_keycode_t key : keys) {
        fakeKey(key, true);
    }
    const std::vector<xcb_keycode_t> backwards(keys.rbegin(), keys.rend());
    for (const xcb_keycode_t key : backwards) {
        fakeKey(key, false);
    }
}

std::optional<std::uint8_t> TestClient::finish(xcb_void_cookie_t checked) {
    const XcbOwned<xcb_generic_error_t> error(xcb_request_check(raw(), checked));
    return error ? std::optional(error->error_code) : std::nullopt;
}

void TestClient::sync() {
    const XcbOwned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(raw(), xcb_get_input_focus(raw()), nullptr));
}

} // namespace skylet::test
