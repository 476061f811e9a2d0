// What a panel's window shows: the mirrored picture with the decorations over it.
//
// Draws straight into the window. A frozen canvas holds its last picture as the window's background, which
// the server restores by itself where the window is uncovered; the same background gives a window its first
// pixels when it is mapped.
//
// Coordinates: the panel's X pixels, top-left origin. Threads: main thread.
#pragma once

#include "platform/x11/DecorationImage.h"
#include "platform/x11/MirrorPainter.h"
#include "platform/x11/MirrorSurface.h"

#include <functional>
#include <memory>
#include <vector>

namespace skylet::platform::x11 {

class PanelCanvas {
  public:
    // One decoration's place and picture. The canvas draws what it is told to by `redraw`.
    struct Item {
        PixelRect rect;
        bool hidden = true;
        DecorationImage image;
    };

    PanelCanvas(Connection& connection, const RenderFormats& formats, xcb_window_t window, int width,
                int height);

    void setSurface(std::shared_ptr<MirrorSurface> surface);
    // Draws what changed in the surface since the last drawing. Nothing while not `shown`.
    void drawChanges();
    void redraw(const PixelRect& rect);
    void redrawAll() { redraw(bounds()); }
    // Takes the new size, lets `layout` place the items, then draws it all once.
    void resize(int width, int height, const std::function<void()>& layout);

    // Keeps the present picture as the window's background, and draws no more until a surface is set.
    void freeze();
    // Makes the present picture the window's background for the moment of mapping.
    void prepareFirstPicture();
    // Whether drawing makes sense: the window is mapped.
    void setShown(bool shown);

    [[nodiscard]] Item& addItem();

  private:
    void drawBackground();
    void dropBackground();
    void draw(const PaintDestination& destination, const PixelRect& rect);
    void drawWithItems(const PaintDestination& destination, const PixelRect& rect);
    [[nodiscard]] PixelRect bounds() const { return {0, 0, width_, height_}; }

    Connection& connection_;
    const RenderFormats& formats_;
    xcb_window_t window_;
    int width_;
    int height_;
    bool shown_ = false;
    bool frozen_ = false;
    bool resizing_ = false;
    PictureId windowPicture_;
    MirrorPainter painter_;
    std::shared_ptr<MirrorSurface> surface_;
    std::vector<std::unique_ptr<Item>> items_;
    PixmapId background_;
};

} // namespace skylet::platform::x11
