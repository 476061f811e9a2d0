#include "platform/x11/ClientGeometry.h"

namespace skylet::platform::x11 {

ShadowExtents readShadow(PendingProperty& extents, std::uint32_t width, std::uint32_t height) {
    const auto values = items(extents, XCB_ATOM_CARDINAL);
    if (values.size() != 4) {
        return {};
    }
    const std::uint64_t horizontal = std::uint64_t{values[0]} + values[1];
    const std::uint64_t vertical = std::uint64_t{values[2]} + values[3];
    if (horizontal >= width || vertical >= height) {
        return {};
    }
    return {values[0], values[1], values[2], values[3]};
}

PendingClientGeometry::PendingClientGeometry(Connection& connection, xcb_window_t window)
    : geometry_(connection.ask<xcb_get_geometry, xcb_get_geometry_reply>(window))
    , position_(connection.ask<xcb_translate_coordinates, xcb_translate_coordinates_reply>(
          window, connection.root(), std::int16_t{0}, std::int16_t{0}))
    // One item more than there should be, so that a longer list shows.
    , extents_(askProperty(connection, window, connection.atoms().GTK_FRAME_EXTENTS, XCB_ATOM_CARDINAL, 5)) {}

std::optional<ClientGeometry> PendingClientGeometry::read() {
    const auto* geometry = geometry_.get();
    const auto* position = position_.get();
    if (!geometry || !position) {
        return std::nullopt;
    }
    ClientGeometry result;
    result.client = {double(position->dst_x), double(position->dst_y), double(geometry->width),
                     double(geometry->height)};
    result.shadow = readShadow(extents_, geometry->width, geometry->height);
    result.borderWidth = geometry->border_width;
    result.bounds = {result.client.x + result.shadow.left, result.client.y + result.shadow.top,
                     result.client.width - result.shadow.left - result.shadow.right,
                     result.client.height - result.shadow.top - result.shadow.bottom};
    return result;
}

} // namespace skylet::platform::x11
