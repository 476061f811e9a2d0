#include "XSession.h"

#include "Wait.h"

#include <xcb/composite.h>
#include <xcb/res.h>

#include <algorithm>

namespace skylet::desktop {
namespace {

// A window manager takes these as a pager's word, which means the user's.
constexpr std::uint32_t sourcePager = 2;

} // namespace

XSession::XSession(const std::string& display)
    : connection_(xcb_connect(display.empty() ? nullptr : display.c_str(), nullptr)) {
    if (!isConnected()) {
        return;
    }
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection())).data;
    root_ = screen->root;
    own_ = xcb_generate_id(connection());
    const std::uint32_t values[] = {1, XCB_EVENT_MASK_PROPERTY_CHANGE};
    xcb_create_window(connection(), XCB_COPY_FROM_PARENT, own_, root_, -10, -10, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    own(xcb_composite_query_version_reply(
        connection(),
        xcb_composite_query_version(connection(), XCB_COMPOSITE_MAJOR_VERSION, XCB_COMPOSITE_MINOR_VERSION),
        nullptr));
    sync();
}

bool XSession::isConnected() const {
    return xcb_connection_has_error(connection()) == 0;
}

Rectangle XSession::screen() const {
    return geometry(root_).value_or(Rectangle{});
}

void XSession::sync() const {
    own(xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
    while (own(xcb_poll_for_event(connection()))) {
    }
}

xcb_atom_t XSession::atom(const std::string& name) const {
    xcb_atom_t& atom = atoms_[name];
    if (atom == XCB_NONE) {
        const auto cookie =
            xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(name.size()), name.c_str());
        if (const auto reply = own(xcb_intern_atom_reply(connection(), cookie, nullptr))) {
            atom = reply->atom;
        }
    }
    return atom;
}

Reply<xcb_get_property_reply_t> XSession::property(Window window, const std::string& name) const {
    constexpr std::uint32_t longEnough = 65536;
    const auto cookie =
        xcb_get_property(connection(), 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, longEnough);
    return own(xcb_get_property_reply(connection(), cookie, nullptr));
}

std::vector<std::uint32_t> XSession::numbers(Window window, const std::string& name) const {
    const auto reply = property(window, name);
    if (!reply || reply->format != 32) {
        return {};
    }
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + xcb_get_property_value_length(reply.get()) / 4};
}

std::string XSession::text(Window window, const std::string& name) const {
    const auto reply = property(window, name);
    if (!reply || reply->format != 8) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

void XSession::tellRoot(Window window, const std::string& message,
                        const std::vector<std::uint32_t>& values) const {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(message);
    std::copy_n(values.begin(), std::min<std::size_t>(values.size(), 5), event.data.data32);
    xcb_send_event(connection(), 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    sync();
}

std::vector<Window> XSession::children(Window window) const {
    const auto tree = own(xcb_query_tree_reply(connection(), xcb_query_tree(connection(), window), nullptr));
    if (!tree) {
        return {};
    }
    const Window* first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

std::vector<Window> XSession::managedWindows() const {
    if (hasWindowManager()) {
        return numbers(root_, "_NET_CLIENT_LIST");
    }
    std::vector<Window> result = children(root_);
    std::erase_if(result, [this](Window window) {
        return !isViewable(window) || isOverrideRedirect(window) || isInputOnly(window);
    });
    return result;
}

std::vector<Window> XSession::windowsOf(pid_t pid) const {
    std::vector<Window> result = managedWindows();
    std::erase_if(result, [&](Window window) { return pidOf(window) != pid || !isViewable(window); });
    return result;
}

pid_t XSession::pidOf(Window window) const {
    const xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto reply = own(xcb_res_query_client_ids_reply(
        connection(), xcb_res_query_client_ids(connection(), 1, &spec), nullptr));
    if (!reply) {
        return -1;
    }
    const auto ids = xcb_res_query_client_ids_ids_iterator(reply.get());
    return ids.rem > 0 ? static_cast<pid_t>(*xcb_res_client_id_value_value(ids.data)) : -1;
}

std::optional<Rectangle> XSession::geometry(Window window) const {
    const auto size = xcb_get_geometry(connection(), window);
    const auto place = xcb_translate_coordinates(connection(), window, root_, 0, 0);
    const auto sized = own(xcb_get_geometry_reply(connection(), size, nullptr));
    const auto placed = own(xcb_translate_coordinates_reply(connection(), place, nullptr));
    if (!sized || !placed) {
        return std::nullopt;
    }
    return Rectangle{placed->dst_x, placed->dst_y, sized->width, sized->height};
}

std::optional<Rectangle> XSession::visibleGeometry(Window window) const {
    std::optional<Rectangle> result = geometry(window);
    const std::vector<std::uint32_t> shadow = numbers(window, "_GTK_FRAME_EXTENTS");
    if (result && shadow.size() == 4) {
        const auto at = [&](std::size_t i) {
            return static_cast<int>(shadow[i]);
        };
        *result = {result->x + at(0), result->y + at(2), result->width - at(0) - at(1),
                   result->height - at(2) - at(3)};
    }
    return result;
}

Reply<xcb_get_window_attributes_reply_t> XSession::attributes(Window window) const {
    return own(xcb_get_window_attributes_reply(connection(), xcb_get_window_attributes(connection(), window),
                                               nullptr));
}

bool XSession::isViewable(Window window) const {
    const auto reply = attributes(window);
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool XSession::isOverrideRedirect(Window window) const {
    const auto reply = attributes(window);
    return reply && reply->override_redirect != 0;
}

bool XSession::isInputOnly(Window window) const {
    const auto reply = attributes(window);
    return reply && reply->_class == XCB_WINDOW_CLASS_INPUT_ONLY;
}

std::vector<Rectangle> XSession::shape(Window window, xcb_shape_sk_t kind) const {
    const auto reply = own(xcb_shape_get_rectangles_reply(
        connection(), xcb_shape_get_rectangles(connection(), window, kind), nullptr));
    std::vector<Rectangle> result;
    if (reply) {
        const xcb_rectangle_t* first = xcb_shape_get_rectangles_rectangles(reply.get());
        for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(reply.get()); ++i) {
            result.push_back({first[i].x, first[i].y, first[i].width, first[i].height});
        }
    }
    return result;
}

Window XSession::topLevelOf(Window window) const {
    const auto tree = own(xcb_query_tree_reply(connection(), xcb_query_tree(connection(), window), nullptr));
    if (!tree) {
        return XCB_NONE;
    }
    return tree->parent == root_ || tree->parent == XCB_NONE ? window : topLevelOf(tree->parent);
}

Window XSession::activeWindow() const {
    const std::vector<std::uint32_t> values = numbers(root_, "_NET_ACTIVE_WINDOW");
    return values.empty() ? XCB_NONE : values.front();
}

Window XSession::inputFocus() const {
    const auto reply =
        own(xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
    return reply ? reply->focus : XCB_NONE;
}

Window XSession::selectionOwner(const std::string& selection) const {
    const auto reply = own(xcb_get_selection_owner_reply(
        connection(), xcb_get_selection_owner(connection(), atom(selection)), nullptr));
    return reply ? reply->owner : XCB_NONE;
}

bool XSession::hasWindowManager() const {
    const std::vector<std::uint32_t> named = numbers(root_, "_NET_SUPPORTING_WM_CHECK");
    return named.size() == 1 && numbers(named.front(), "_NET_SUPPORTING_WM_CHECK") == named;
}

bool XSession::hasCompositor() const {
    return selectionOwner("_NET_WM_CM_S0") != XCB_NONE;
}

bool XSession::windowManagerAnswers() const {
    const Window probe = xcb_generate_id(connection());
    xcb_create_window(connection(), XCB_COPY_FROM_PARENT, probe, root_, 0, 0, 20, 20, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const bool managed = eventually([&] {
        xcb_map_window(connection(), probe);
        sync();
        const bool shown = eventually([&] { return isViewable(probe); }, std::chrono::milliseconds(500));
        if (!shown) {
            xcb_unmap_window(connection(), probe);
        }
        return shown;
    });
    xcb_destroy_window(connection(), probe);
    sync();
    return managed && eventually([&] {
               return managedWindows().empty() || !std::ranges::count(managedWindows(), probe);
           });
}

std::uint32_t XSession::serverTime() const {
    xcb_change_property(connection(), XCB_PROP_MODE_APPEND, own_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0,
                        nullptr);
    xcb_flush(connection());
    // A lost server ends the waiting with no event.
    while (const auto event = own(xcb_wait_for_event(connection()))) {
        if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY) {
            return reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->time;
        }
    }
    return XCB_CURRENT_TIME;
}

void XSession::activate(Window window) {
    if (hasWindowManager()) {
        tellRoot(window, "_NET_ACTIVE_WINDOW", {sourcePager, serverTime(), 0});
        return;
    }
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_set_input_focus(connection(), XCB_INPUT_FOCUS_POINTER_ROOT, window, serverTime());
    sync();
}

void XSession::moveResize(Window window, Rectangle geometry) const {
    const std::uint32_t values[] = {
        static_cast<std::uint32_t>(geometry.x), static_cast<std::uint32_t>(geometry.y),
        static_cast<std::uint32_t>(geometry.width), static_cast<std::uint32_t>(geometry.height)};
    xcb_configure_window(connection(), window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values);
    sync();
}

void XSession::close(Window window) {
    tellRoot(window, "_NET_CLOSE_WINDOW", {serverTime(), sourcePager});
}

void XSession::switchDesktop(std::uint32_t desktop) {
    tellRoot(root_, "_NET_CURRENT_DESKTOP", {desktop, serverTime()});
}

void XSession::moveToDesktop(Window window, std::uint32_t desktop) {
    tellRoot(window, "_NET_WM_DESKTOP", {desktop, sourcePager});
}

std::map<std::string, int> XSession::resourcesOf(pid_t pid) const {
    std::map<std::string, int> result;
    const auto clients =
        own(xcb_res_query_clients_reply(connection(), xcb_res_query_clients(connection()), nullptr));
    if (!clients) {
        return result;
    }
    for (auto i = xcb_res_query_clients_clients_iterator(clients.get()); i.rem > 0; xcb_res_client_next(&i)) {
        const auto types = own(xcb_res_query_client_resources_reply(
            connection(), xcb_res_query_client_resources(connection(), i.data->resource_base), nullptr));
        if (pidOf(i.data->resource_base) != pid || !types) {
            continue;
        }
        for (auto type = xcb_res_query_client_resources_types_iterator(types.get()); type.rem > 0;
             xcb_res_type_next(&type)) {
            const auto name = own(xcb_get_atom_name_reply(
                connection(), xcb_get_atom_name(connection(), type.data->resource_type), nullptr));
            if (name) {
                const std::string kind(xcb_get_atom_name_name(name.get()),
                                       static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get())));
                result[kind] += static_cast<int>(type.data->count);
            }
        }
    }
    return result;
}

} // namespace skylet::desktop
