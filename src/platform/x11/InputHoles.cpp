#include "platform/x11/InputHoles.h"

#include "platform/x11/Property.h"

#include <xcb/shape.h>

#include <algorithm>
#include <utility>

namespace skylet::platform::x11 {

namespace {

// The root's property: for each hole the window, the number of rectangles of its former shape (or this), and
// the rectangles as two items each (x and y, width and height, 16 bits apiece).
constexpr std::uint32_t notShaped = 0xFFFFFFFF;
constexpr std::uint32_t maximumItems = 65536;

std::uint32_t packed(std::uint16_t high, std::uint16_t low) {
    return (std::uint32_t{high} << 16) | low;
}

void setInputShape(Connection& connection, xcb_window_t window, xcb_shape_op_t operation,
                   const std::vector<xcb_rectangle_t>& rectangles) {
    connection.sendTolerant<xcb_shape_rectangles>(
        operation, static_cast<xcb_shape_kind_t>(XCB_SHAPE_SK_INPUT),
        static_cast<std::uint8_t>(XCB_CLIP_ORDERING_UNSORTED), window, std::int16_t{0}, std::int16_t{0},
        static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
}

} // namespace

bool InputHoles::find(xcb_window_t topLevel, int x, int y) {
    holes_.clear();
    auto tree = connection_.ask<xcb_query_tree, xcb_query_tree_reply>(connection_.root());
    if (!tree) {
        return false;
    }
    const xcb_window_t* first = xcb_query_tree_children(tree.get());
    const xcb_window_t* last = first + xcb_query_tree_children_length(tree.get());
    const xcb_window_t* own = std::find(first, last, topLevel);
    if (own == last) {
        return false;
    }
    struct Asked {
        xcb_window_t window;
        Pending<xcb_get_window_attributes_reply> attributes;
        Pending<xcb_get_geometry_reply> geometry;
    };
    std::vector<Asked> asked;
    for (const xcb_window_t* window = own + 1; window != last; ++window) {
        asked.push_back({*window,
                         connection_.ask<xcb_get_window_attributes, xcb_get_window_attributes_reply>(*window),
                         connection_.ask<xcb_get_geometry, xcb_get_geometry_reply>(*window)});
    }
    struct Over {
        Hole hole;
        xcb_rectangle_t whole; // relative to the window, border included
        Pending<xcb_shape_get_rectangles_reply> shape;
    };
    std::vector<Over> over;
    for (Asked& one : asked) {
        if (!one.attributes || !one.geometry || one.attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
            continue;
        }
        const auto& geometry = *one.geometry.get();
        const int border = geometry.border_width;
        const int width = geometry.width + 2 * border;
        const int height = geometry.height + 2 * border;
        if (x < geometry.x || y < geometry.y || x >= geometry.x + width || y >= geometry.y + height) {
            continue;
        }
        Over found;
        found.hole.window = one.window;
        found.hole.hole = {static_cast<std::int16_t>(x - geometry.x - border),
                           static_cast<std::int16_t>(y - geometry.y - border), 1, 1};
        found.whole = {static_cast<std::int16_t>(-border), static_cast<std::int16_t>(-border),
                       static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)};
        found.shape = connection_.ask<xcb_shape_get_rectangles, xcb_shape_get_rectangles_reply>(
            one.window, static_cast<xcb_shape_kind_t>(XCB_SHAPE_SK_INPUT));
        over.push_back(std::move(found));
    }
    for (Over& one : over) {
        const auto* shape = one.shape.get();
        if (!shape) {
            continue;
        }
        const xcb_rectangle_t* rectangles = xcb_shape_get_rectangles_rectangles(shape);
        const int count = xcb_shape_get_rectangles_rectangles_length(shape);
        const auto same = [](const xcb_rectangle_t& a, const xcb_rectangle_t& b) {
            return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
        };
        one.hole.wasShaped = !(count == 1 && same(rectangles[0], one.whole));
        if (one.hole.wasShaped) {
            one.hole.shape.assign(rectangles, rectangles + count);
        }
        holes_.push_back(std::move(one.hole));
    }
    return true;
}

void InputHoles::cut() {
    std::vector<std::uint32_t> record;
    for (const Hole& hole : holes_) {
        record.push_back(hole.window);
        record.push_back(hole.wasShaped ? static_cast<std::uint32_t>(hole.shape.size()) : notShaped);
        for (const xcb_rectangle_t& rect : hole.shape) {
            record.push_back(packed(static_cast<std::uint16_t>(rect.x), static_cast<std::uint16_t>(rect.y)));
            record.push_back(packed(rect.width, rect.height));
        }
    }
    connection_.send<xcb_change_property>(std::uint8_t{XCB_PROP_MODE_REPLACE}, connection_.root(),
                                          connection_.atoms().SKYLET_HOLES, xcb_atom_t{XCB_ATOM_CARDINAL},
                                          std::uint8_t{32}, static_cast<std::uint32_t>(record.size()),
                                          static_cast<const void*>(record.data()));
    for (const Hole& hole : holes_) {
        setInputShape(connection_, hole.window, static_cast<xcb_shape_op_t>(XCB_SHAPE_SO_SUBTRACT),
                      {hole.hole});
    }
    isCut_ = true;
}

void InputHoles::close() {
    if (!std::exchange(isCut_, false)) {
        return;
    }
    for (const Hole& hole : holes_) {
        restore(connection_, hole.window, hole.wasShaped, hole.shape);
    }
    holes_.clear();
    connection_.send<xcb_delete_property>(connection_.root(), connection_.atoms().SKYLET_HOLES);
}

void InputHoles::restore(Connection& connection, xcb_window_t window, bool wasShaped,
                         const std::vector<xcb_rectangle_t>& shape) {
    if (wasShaped) {
        setInputShape(connection, window, static_cast<xcb_shape_op_t>(XCB_SHAPE_SO_SET), shape);
    } else {
        connection.sendTolerant<xcb_shape_mask>(static_cast<xcb_shape_op_t>(XCB_SHAPE_SO_SET),
                                                static_cast<xcb_shape_kind_t>(XCB_SHAPE_SK_INPUT), window,
                                                std::int16_t{0}, std::int16_t{0}, xcb_pixmap_t{XCB_NONE});
    }
}

void InputHoles::repair(Connection& connection) {
    auto pending = askProperty(connection, connection.root(), connection.atoms().SKYLET_HOLES,
                               XCB_ATOM_CARDINAL, maximumItems);
    const auto record = items(pending, XCB_ATOM_CARDINAL);
    for (std::size_t i = 0; i + 1 < record.size();) {
        const xcb_window_t window = record[i];
        const std::uint32_t count = record[i + 1];
        i += 2;
        std::vector<xcb_rectangle_t> shape;
        if (count != notShaped) {
            if (count > (record.size() - i) / 2) {
                break; // not what we wrote
            }
            for (std::uint32_t k = 0; k < count; ++k, i += 2) {
                shape.push_back({static_cast<std::int16_t>(record[i] >> 16),
                                 static_cast<std::int16_t>(record[i] & 0xFFFF),
                                 static_cast<std::uint16_t>(record[i + 1] >> 16),
                                 static_cast<std::uint16_t>(record[i + 1] & 0xFFFF)});
            }
        }
        restore(connection, window, count != notShaped, shape);
    }
    if (!record.empty()) {
        connection.send<xcb_delete_property>(connection.root(), connection.atoms().SKYLET_HOLES);
    }
}

} // namespace skylet::platform::x11
