// Connection: the way in, and what the server must have.
#include "platform/x11/Connection.h"

#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/render.h>
#include <xcb/res.h>
#include <xcb/shape.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <string>
#include <utility>

namespace skylet::platform::x11 {

Connection::Opened Connection::open(const std::string& display, Events events) {
    int screenNumber = 0;
    RawConnection raw(xcb_connect(display.empty() ? nullptr : display.c_str(), &screenNumber));
    if (xcb_connection_has_error(raw.get())) {
        return {nullptr, "cannot connect to the X server"};
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(raw.get()));
    for (int i = 0; i < screenNumber && screens.rem > 1; ++i) {
        xcb_screen_next(&screens);
    }
    std::unique_ptr<Connection> connection(new Connection(std::move(raw), screens.data, screenNumber));
    if (std::string missing = connection->queryExtensions(); !missing.empty()) {
        return {nullptr, std::move(missing)};
    }
    const std::string selection = "_NET_WM_CM_S" + std::to_string(screenNumber);
    auto compositor = connection->ask<xcb_intern_atom, xcb_intern_atom_reply>(
        std::uint8_t{0}, static_cast<std::uint16_t>(selection.size()), selection.c_str());
    connection->atoms_ = internAtoms(connection->raw());
    connection->compositorSelection_ = compositor ? compositor->atom : xcb_atom_t{XCB_ATOM_NONE};
    connection->events_ = events;
    if (events == Events::byLoop) {
        connection->watchSocket();
    }
    return {std::move(connection), {}};
}

std::string Connection::queryExtensions() {
    const auto need = [this](xcb_extension_t& id) {
        return xcb_get_extension_data(raw(), &id);
    };
    for (xcb_extension_t* id : {&xcb_composite_id, &xcb_damage_id, &xcb_xfixes_id, &xcb_render_id,
                                &xcb_shape_id, &xcb_randr_id, &xcb_res_id, &xcb_test_id, &xcb_input_id}) {
        xcb_prefetch_extension_data(raw(), id);
    }
    const auto* damageData = need(xcb_damage_id);
    const auto* renderData = need(xcb_render_id);
    const auto* xfixesData = need(xcb_xfixes_id);
    const auto* shapeData = need(xcb_shape_id);
    const auto present = [](const xcb_query_extension_reply_t* data) {
        return data && data->present;
    };
    for (const auto& [data, name] : {std::pair{need(xcb_composite_id), "Composite"},
                                     {damageData, "Damage"},
                                     {xfixesData, "XFixes"},
                                     {renderData, "Render"},
                                     {shapeData, "Shape"}}) {
        if (!present(data)) {
            return std::string("the X server lacks the ") + name + " extension, which live mirroring needs";
        }
    }
    extensions_.damageEvent = damageData->first_event;
    extensions_.damageError = damageData->first_error;
    extensions_.renderError = renderData->first_error;
    extensions_.xfixesEvent = xfixesData->first_event;
    extensions_.xfixesError = xfixesData->first_error;
    extensions_.shapeEvent = shapeData->first_event;

    auto composite = ask<xcb_composite_query_version, xcb_composite_query_version_reply>(0U, 4U);
    auto damage = ask<xcb_damage_query_version, xcb_damage_query_version_reply>(1U, 1U);
    auto xfixes = ask<xcb_xfixes_query_version, xcb_xfixes_query_version_reply>(5U, 0U);
    auto render = ask<xcb_render_query_version, xcb_render_query_version_reply>(0U, 11U);
    Pending<xcb_randr_query_version_reply> randr;
    Pending<xcb_res_query_version_reply> resource;
    Pending<xcb_input_xi_query_version_reply> xinput;
    if (const auto* data = need(xcb_randr_id); present(data)) {
        extensions_.randrEvent = data->first_event;
        randr = ask<xcb_randr_query_version, xcb_randr_query_version_reply>(1U, 5U);
    }
    if (present(need(xcb_res_id))) {
        resource = ask<xcb_res_query_version, xcb_res_query_version_reply>(std::uint8_t{1}, std::uint8_t{2});
    }
    extensions_.xtest = present(need(xcb_test_id));
    if (const auto* data = need(xcb_input_id); present(data)) {
        extensions_.xinputEvent = data->first_event;
        extensions_.xinputOpcode = data->major_opcode;
        xinput = ask<xcb_input_xi_query_version, xcb_input_xi_query_version_reply>(std::uint16_t{2},
                                                                                   std::uint16_t{2});
    }
    const auto atLeast = [](auto& reply, std::uint32_t major, std::uint32_t minor) {
        return reply && (reply->major_version > major ||
                         (reply->major_version == major && reply->minor_version >= minor));
    };
    for (const auto& [ok, name] : {std::pair{atLeast(composite, 0, 4), "Composite 0.4"},
                                   {atLeast(damage, 1, 1), "Damage 1.1"},
                                   {atLeast(xfixes, 5, 0), "XFixes 5"},
                                   {atLeast(render, 0, 11), "Render 0.11"}}) {
        if (!ok) {
            return std::string("the X server is too old: live mirroring needs the extension ") + name;
        }
    }
    extensions_.randr = atLeast(randr, 1, 5);
    extensions_.resource = resource && (resource->server_major > 1 ||
                                        (resource->server_major == 1 && resource->server_minor >= 2));
    extensions_.xinput = atLeast(xinput, 2, 0);
    return {};
}

} // namespace skylet::platform::x11
