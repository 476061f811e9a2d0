#include "PuppetWindow.h"

#include "../harness/Pixels.h"

#include <unistd.h>

namespace skylet::puppet {
namespace {

constexpr std::uint32_t opaque = 0xFF000000U;

xcb_visualid_t visualOfDepth(const xcb_screen_t* screen, int wanted) {
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem > 0; xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual)) {
            if (depth.data->depth == wanted && visual.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR) {
                return visual.data->visual_id;
            }
        }
    }
    return screen->root_visual;
}

} // namespace

xcb_atom_t atom(xcb_connection_t* connection, const std::string& name) {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(connection, cookie, nullptr);
    const xcb_atom_t result = reply ? reply->atom : XCB_NONE;
    std::free(reply);
    return result;
}

PuppetWindow::PuppetWindow(xcb_connection_t* connection, const WindowOptions& options)
    : connection_(connection)
    , options_(options)
    , id_(xcb_generate_id(connection))
    , context_(xcb_generate_id(connection)) {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_visualid_t visual = visualOfDepth(screen, options.depth);
    const xcb_colormap_t colours = xcb_generate_id(connection);
    xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colours, screen->root, visual);
    const std::uint32_t values[] = {0, 0, options.overrideRedirect,
                                    XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                        XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_BUTTON_PRESS |
                                        XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_KEY_PRESS |
                                        XCB_EVENT_MASK_BUTTON_MOTION,
                                    colours};
    xcb_create_window(connection, static_cast<std::uint8_t>(options.depth), id_, screen->root,
                      static_cast<std::int16_t>(options.x), static_cast<std::int16_t>(options.y),
                      static_cast<std::uint16_t>(options.width), static_cast<std::uint16_t>(options.height),
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
                          XCB_CW_COLORMAP,
                      values);
    xcb_create_gc(connection, context_, id_, 0, nullptr);

    const auto setText = [&](const char* name, const char* type, const std::string& text) {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id_, atom(connection, name),
                            atom(connection, type), 8, static_cast<std::uint32_t>(text.size()), text.data());
    };
    setText("WM_NAME", "STRING", options.title);
    setText("_NET_WM_NAME", "UTF8_STRING", options.title);
    setText("WM_CLASS", "STRING", std::string("puppet\0Puppet\0", 14));
    const auto pid = static_cast<std::uint32_t>(::getpid());
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id_, atom(connection, "_NET_WM_PID"),
                        XCB_ATOM_CARDINAL, 32, 1, &pid);
    if (options.shadow != std::array<std::uint32_t, 4>{}) {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id_, atom(connection, "_GTK_FRAME_EXTENTS"),
                            XCB_ATOM_CARDINAL, 32, 4, options.shadow.data());
        const std::uint32_t undecorated[] = {2, 0, 0, 0, 0};
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id_, atom(connection, "_MOTIF_WM_HINTS"),
                            atom(connection, "_MOTIF_WM_HINTS"), 32, 5, undecorated);
    }
    // A place that the user chose, so that window managers keep it.
    const std::uint32_t sizeHints[18] = {1U, static_cast<std::uint32_t>(options.x),
                                         static_cast<std::uint32_t>(options.y)};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id_, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, 18, sizeHints);
    xcb_map_window(connection, id_);
}

void PuppetWindow::setPattern(std::uint32_t seed) {
    seed_ = seed;
    draw();
}

void PuppetWindow::resized(int width, int height) {
    options_.width = width;
    options_.height = height;
}

void PuppetWindow::draw() const {
    using desktop::patternTile;
    const int left = static_cast<int>(options_.shadow[0]);
    const int top = static_cast<int>(options_.shadow[2]);
    const int right = options_.width - static_cast<int>(options_.shadow[1]);
    const int bottom = options_.height - static_cast<int>(options_.shadow[3]);
    for (int y = top; y < bottom; y += patternTile) {
        for (int x = left; x < right; x += patternTile) {
            const std::uint32_t colour =
                opaque | desktop::patternColour(seed_, (x - left) / patternTile, (y - top) / patternTile);
            xcb_change_gc(connection_, context_, XCB_GC_FOREGROUND, &colour);
            const xcb_rectangle_t tile{
                static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                static_cast<std::uint16_t>(right - x < patternTile ? right - x : patternTile),
                static_cast<std::uint16_t>(bottom - y < patternTile ? bottom - y : patternTile)};
            xcb_poly_fill_rectangle(connection_, id_, context_, 1, &tile);
        }
    }
}

} // namespace skylet::puppet
