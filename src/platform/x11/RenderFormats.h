// The Render formats of the server's visuals, read once.
#pragma once

#include "platform/x11/Connection.h"

#include <xcb/render.h>

#include <unordered_map>

namespace skylet::platform::x11 {

class RenderFormats {
  public:
    // One round trip.
    explicit RenderFormats(Connection& connection);

    // 0 when the visual has none.
    [[nodiscard]] xcb_render_pictformat_t ofVisual(xcb_visualid_t visual) const;
    // Premultiplied 32-bit ARGB.
    [[nodiscard]] xcb_render_pictformat_t argb32() const { return argb32_; }

  private:
    std::unordered_map<xcb_visualid_t, xcb_render_pictformat_t> byVisual_;
    xcb_render_pictformat_t argb32_ = 0;
};

} // namespace skylet::platform::x11
