#include "platform/x11/RenderFormats.h"

namespace skylet::platform::x11 {

RenderFormats::RenderFormats(Connection& connection) {
    auto pending = connection.ask<xcb_render_query_pict_formats, xcb_render_query_pict_formats_reply>();
    const auto* reply = pending.get();
    if (!reply) {
        return;
    }
    for (auto it = xcb_render_query_pict_formats_formats_iterator(reply); it.rem != 0;
         xcb_render_pictforminfo_next(&it)) {
        const auto& info = *it.data;
        if (info.type == XCB_RENDER_PICT_TYPE_DIRECT && info.depth == 32 && info.direct.alpha_mask == 0xFF &&
            info.direct.alpha_shift == 24 && info.direct.red_shift == 16) {
            argb32_ = info.id;
        }
    }
    for (auto screen = xcb_render_query_pict_formats_screens_iterator(reply); screen.rem != 0;
         xcb_render_pictscreen_next(&screen)) {
        for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem != 0;
             xcb_render_pictdepth_next(&depth)) {
            for (auto visual = xcb_render_pictdepth_visuals_iterator(depth.data); visual.rem != 0;
                 xcb_render_pictvisual_next(&visual)) {
                byVisual_[visual.data->visual] = visual.data->format;
            }
        }
    }
}

xcb_render_pictformat_t RenderFormats::ofVisual(xcb_visualid_t visual) const {
    const auto it = byVisual_.find(visual);
    return it == byVisual_.end() ? 0 : it->second;
}

} // namespace skylet::platform::x11
