#include "XSession.h"

#include <xcb/composite.h>

#include <algorithm>
#include <cstring>

namespace skylet::desktop {
namespace {

Picture read(xcb_connection_t* connection, xcb_drawable_t drawable, Rectangle part) {
    if (part.width <= 0 || part.height <= 0) {
        return {};
    }
    const auto cookie =
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, static_cast<std::int16_t>(part.x),
                      static_cast<std::int16_t>(part.y), static_cast<std::uint16_t>(part.width),
                      static_cast<std::uint16_t>(part.height), ~0U);
    const auto image = own(xcb_get_image_reply(connection, cookie, nullptr));
    Picture result{part.width, part.height, {}};
    result.pixels.resize(static_cast<std::size_t>(part.width) * static_cast<std::size_t>(part.height));
    const std::size_t bytes = result.pixels.size() * sizeof(std::uint32_t);
    if (bytes == 0 || !image || static_cast<std::size_t>(xcb_get_image_data_length(image.get())) < bytes) {
        return {};
    }
    std::memcpy(result.pixels.data(), xcb_get_image_data(image.get()), bytes);
    for (std::uint32_t& pixel : result.pixels) {
        pixel &= 0xFFFFFFU;
    }
    return result;
}

} // namespace

Picture XSession::screenshot(Rectangle part) const {
    const Rectangle all = screen();
    const int left = std::clamp(part.x, 0, all.width);
    const int top = std::clamp(part.y, 0, all.height);
    return read(connection(), root_,
                {left, top, std::clamp(part.right(), left, all.width) - left,
                 std::clamp(part.bottom(), top, all.height) - top});
}

std::optional<Picture> XSession::content(Window window) const {
    const std::optional<Rectangle> outer = geometry(window);
    const std::optional<Rectangle> visible = visibleGeometry(window);
    if (!outer || !visible) {
        return std::nullopt;
    }
    const auto whole =
        own(xcb_get_geometry_reply(connection(), xcb_get_geometry(connection(), window), nullptr));
    const int border = whole ? whole->border_width : 0;
    const xcb_pixmap_t pixmap = xcb_generate_id(connection());
    const auto named = xcb_composite_name_window_pixmap_checked(connection(), window, pixmap);
    if (own(xcb_request_check(connection(), named))) {
        return std::nullopt;
    }
    Picture result = read(
        connection(), pixmap,
        {visible->x - outer->x + border, visible->y - outer->y + border, visible->width, visible->height});
    xcb_free_pixmap(connection(), pixmap);
    sync();
    if (result.pixels.empty()) {
        return std::nullopt;
    }
    return result;
}

} // namespace skylet::desktop
