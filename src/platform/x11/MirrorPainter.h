// Draws a mirrored window's picture, stretched over a panel, into the panel's window.
//
// At 1:1 and equal depth a frame is one CopyArea; else it is one Render pass over the changed part, bilinear.
// A factor of exactly 2 makes the bilinear filter the 2x2 box average, so a picture that shrinks by more than
// that is halved as often as needed first, and nothing of it is skipped. No pixel crosses into this process.
//
// Coordinates: content = the mirrored part of the target, panel = the panel's window, both in X pixels,
// top-left. Threads: main thread. Failure: drawing from or to what is gone is an X error that is expected.
#pragma once

#include "platform/x11/PixelRect.h"
#include "platform/x11/RenderFormats.h"
#include "platform/x11/TargetWindow.h"
#include "platform/x11/XId.h"

#include <memory>
#include <vector>

namespace skylet::platform::x11 {

// Where to draw: a drawable of the root's visual and depth. The panel's origin lies at `offset` in it.
struct PaintDestination {
    xcb_drawable_t drawable = XCB_NONE;
    xcb_render_picture_t picture = XCB_NONE;
    int offsetX = 0;
    int offsetY = 0;
};

class MirrorPainter {
  public:
    MirrorPainter(Connection& connection, const RenderFormats& formats);

    // The picture to draw from and the size to draw it at. Cheap when nothing changed.
    void setSource(const std::shared_ptr<const NamedPixmap>& source, int panelWidth, int panelHeight);
    [[nodiscard]] bool hasSource() const { return source_ != nullptr; }

    // The part of the panel that a changed part of the content touches.
    [[nodiscard]] PixelRect toPanel(const PixelRect& contentRect) const;
    // Brings the halved pictures up to date where the content changed. Comes before `paint`.
    void refresh(const PixelRect& contentRect);
    void paint(const PaintDestination& destination, const PixelRect& panelRect);

  private:
    // One halving step: reads the picture before it, holds the result.
    struct Level {
        PixmapId pixmap;
        PictureId picture;
        int width = 0;
        int height = 0;
        int factorX = 1; // 1 or 2: how much smaller than the picture before
        int factorY = 1;
    };
    void rebuild();
    void setTransform(xcb_render_picture_t picture, double scaleX, double scaleY, double offsetX,
                      double offsetY);

    Connection& connection_;
    const RenderFormats& formats_;
    std::shared_ptr<const NamedPixmap> source_;
    int panelWidth_ = 0;
    int panelHeight_ = 0;
    bool copies_ = false; // 1:1 and equal depth
    PictureId sourcePicture_;
    std::vector<Level> levels_;
    GContextId gc_;
};

} // namespace skylet::platform::x11
