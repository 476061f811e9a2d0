// Vector drawings of panel decorations, rasterised once and kept in the X server.
#pragma once

#include "platform/Panel.h"
#include "platform/x11/RenderFormats.h"
#include "platform/x11/XId.h"

namespace skylet::platform::x11 {

// A premultiplied ARGB picture of `drawing`, one pixel per point.
class DecorationImage {
  public:
    DecorationImage() = default;
    DecorationImage(Connection& connection, const RenderFormats& formats, const Drawing& drawing, int width,
                    int height);
    [[nodiscard]] xcb_render_picture_t picture() const { return picture_.get(); }
    explicit operator bool() const { return static_cast<bool>(picture_); }

  private:
    PixmapId pixmap_;
    PictureId picture_;
};

} // namespace skylet::platform::x11
