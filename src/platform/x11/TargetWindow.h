// The picture of one foreign window, kept whole by the Composite extension although the window is covered.
//
// While a TargetWindow lives, its window is redirected automatically: the server keeps drawing it to the
// screen and keeps all of its pixels in a pixmap. The pixmap is named anew whenever the server may have made
// another one, and an old name stays readable: it is the frozen last picture of a window that is unmapped or
// destroyed.
//
// Threads: main thread. Failure: a window that is gone gives no picture.
#pragma once

#include "platform/x11/PixelRect.h"
#include "platform/x11/RenderFormats.h"
#include "platform/x11/XId.h"

#include <functional>
#include <memory>
#include <vector>

namespace skylet::platform::x11 {

// One name of a window's pixmap, with what is needed to read it.
struct NamedPixmap {
    PixmapId pixmap;
    std::uint8_t depth = 0;
    xcb_render_pictformat_t format = 0;
    int width = 0;
    int height = 0;
    int border = 0;
    PixelRect content; // the part that is mirrored: without border and client-drawn shadow
};

class TargetWindow {
  public:
    // What a follower is told. Handlers must not destroy the TargetWindow.
    struct Events {
        std::function<void()> pictureReplaced; // `picture` is another one now
        std::function<void()> destroyed;
    };

    // One round trip.
    TargetWindow(Connection& connection, const RenderFormats& formats, xcb_window_t window);
    TargetWindow(const TargetWindow&) = delete;
    TargetWindow& operator=(const TargetWindow&) = delete;
    ~TargetWindow();

    [[nodiscard]] xcb_window_t window() const { return window_; }
    [[nodiscard]] bool isGone() const { return gone_; }
    // Null as long as the window was never viewable.
    [[nodiscard]] const std::shared_ptr<const NamedPixmap>& picture() const { return picture_; }
    // Takes over a pixmap that was named anew but may not hold the window's content before its first damage.
    void contentArrived();

    [[nodiscard]] Subscription follow(Events events);

  private:
    class Follower;
    void handle(const xcb_generic_event_t& event);
    void namePixmap();
    void replacePicture(std::shared_ptr<const NamedPixmap> picture);

    Connection& connection_;
    const RenderFormats& formats_;
    xcb_window_t window_;
    bool gone_ = false;
    bool redirected_ = false;
    std::uint8_t depth_ = 0;
    xcb_render_pictformat_t format_ = 0;
    std::shared_ptr<const NamedPixmap> picture_;
    std::shared_ptr<const NamedPixmap> next_; // named, waiting for its content
    std::shared_ptr<std::vector<Follower*>> followers_;
    Subscription events_;
};

} // namespace skylet::platform::x11
