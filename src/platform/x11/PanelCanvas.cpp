#include "platform/x11/PanelCanvas.h"

#include <utility>

namespace skylet::platform::x11 {

namespace {

// A pixmap of the root's depth with its picture.
struct Buffer {
    PixmapId pixmap;
    PictureId picture;

    Buffer(Connection& connection, const RenderFormats& formats, int width, int height)
        : pixmap(connection, connection.generateId())
        , picture(connection, connection.generateId()) {
        connection.send<xcb_create_pixmap>(
            connection.screen().root_depth, pixmap.get(), xcb_drawable_t{connection.root()},
            static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height));
        connection.send<xcb_render_create_picture>(picture.get(), xcb_drawable_t{pixmap.get()},
                                                   formats.ofVisual(connection.screen().root_visual), 0U,
                                                   static_cast<const void*>(nullptr));
    }
};

void fill(Connection& connection, xcb_render_picture_t picture, const PixelRect& rect) {
    const xcb_render_color_t black{0, 0, 0, 0xFFFF};
    const xcb_rectangle_t area = toXRectangle(rect);
    connection.send<xcb_render_fill_rectangles>(std::uint8_t{XCB_RENDER_PICT_OP_SRC}, picture, black, 1U,
                                                &area);
}

} // namespace

PanelCanvas::PanelCanvas(Connection& connection, const RenderFormats& formats, xcb_window_t window, int width,
                         int height)
    : connection_(connection)
    , formats_(formats)
    , window_(window)
    , width_(width)
    , height_(height)
    , windowPicture_(connection, connection.generateId())
    , painter_(connection, formats) {
    connection_.send<xcb_render_create_picture>(windowPicture_.get(), xcb_drawable_t{window_},
                                                formats_.ofVisual(connection_.screen().root_visual), 0U,
                                                static_cast<const void*>(nullptr));
}

PanelCanvas::Item& PanelCanvas::addItem() {
    return *items_.emplace_back(std::make_unique<Item>());
}

void PanelCanvas::setSurface(std::shared_ptr<MirrorSurface> surface) {
    const bool isNew = surface != surface_;
    surface_ = std::move(surface);
    frozen_ = false;
    if (!surface_) {
        painter_.setSource(nullptr, width_, height_);
        dropBackground();
        return;
    }
    if (isNew) {
        surface_->addWholeDamage();
    }
    drawChanges();
}

void PanelCanvas::drawChanges() {
    if (!shown_ || frozen_ || !surface_ || !surface_->picture()) {
        return;
    }
    painter_.setSource(surface_->picture(), width_, height_);
    const PixelRect changed = surface_->takeDamage();
    painter_.refresh(changed);
    redraw(painter_.toPanel(changed));
    dropBackground();
}

void PanelCanvas::redraw(const PixelRect& rect) {
    if (shown_ && !frozen_ && !resizing_) {
        drawWithItems({window_, windowPicture_.get(), 0, 0}, intersection(rect, bounds()));
    }
}

// Decorations are translucent: under one the picture is drawn again first, off screen, so that neither a bare
// nor a doubled decoration is ever seen.
void PanelCanvas::drawWithItems(const PaintDestination& destination, const PixelRect& rect) {
    std::vector<PixelRect> plain{rect};
    for (const auto& item : items_) {
        const PixelRect touched = intersection(item->rect, rect);
        if (item->hidden || !item->image || touched.isEmpty()) {
            continue;
        }
        const PixelRect whole = intersection(item->rect, bounds());
        const Buffer buffer(connection_, formats_, whole.width, whole.height);
        const PaintDestination scratch{buffer.pixmap.get(), buffer.picture.get(), -whole.x, -whole.y};
        draw(scratch, whole);
        for (const auto& over : items_) {
            if (!over->hidden && over->image && !intersection(over->rect, whole).isEmpty()) {
                connection_.send<xcb_render_composite>(
                    std::uint8_t{XCB_RENDER_PICT_OP_OVER}, over->image.picture(),
                    xcb_render_picture_t{XCB_NONE}, xcb_render_picture_t{buffer.picture.get()},
                    std::int16_t{0}, std::int16_t{0}, std::int16_t{0}, std::int16_t{0},
                    static_cast<std::int16_t>(over->rect.x - whole.x),
                    static_cast<std::int16_t>(over->rect.y - whole.y),
                    static_cast<std::uint16_t>(over->rect.width),
                    static_cast<std::uint16_t>(over->rect.height));
            }
        }
        connection_.send<xcb_render_composite>(
            std::uint8_t{XCB_RENDER_PICT_OP_SRC}, xcb_render_picture_t{buffer.picture.get()},
            xcb_render_picture_t{XCB_NONE}, destination.picture, std::int16_t{0}, std::int16_t{0},
            std::int16_t{0}, std::int16_t{0}, static_cast<std::int16_t>(whole.x + destination.offsetX),
            static_cast<std::int16_t>(whole.y + destination.offsetY), static_cast<std::uint16_t>(whole.width),
            static_cast<std::uint16_t>(whole.height));
        plain = subtracted(plain, whole);
    }
    for (const PixelRect& part : plain) {
        draw(destination, part);
    }
}

void PanelCanvas::draw(const PaintDestination& destination, const PixelRect& rect) {
    if (rect.isEmpty()) {
        return;
    }
    if (painter_.hasSource()) {
        painter_.paint(destination, rect);
    } else {
        fill(connection_, destination.picture, rect.translated(destination.offsetX, destination.offsetY));
    }
}

void PanelCanvas::resize(int width, int height, const std::function<void()>& layout) {
    width_ = width;
    height_ = height;
    resizing_ = true;
    layout();
    resizing_ = false;
    if (frozen_) {
        // The frozen picture is stretched along, once more from its source.
        drawBackground();
        connection_.send<xcb_clear_area>(std::uint8_t{0}, window_, std::int16_t{0}, std::int16_t{0},
                                         std::uint16_t{0}, std::uint16_t{0});
        return;
    }
    if (surface_) {
        surface_->addWholeDamage();
    }
    drawChanges();
}

void PanelCanvas::freeze() {
    if (!frozen_) {
        drawBackground();
        frozen_ = true;
    }
}

void PanelCanvas::prepareFirstPicture() {
    if (!frozen_) {
        drawBackground();
    }
}

void PanelCanvas::setShown(bool shown) {
    shown_ = shown;
    if (shown_ && surface_) {
        surface_->addWholeDamage();
        drawChanges();
    }
}

void PanelCanvas::drawBackground() {
    if (surface_ && surface_->picture()) {
        painter_.setSource(surface_->picture(), width_, height_);
        painter_.refresh({0, 0, surface_->picture()->content.width, surface_->picture()->content.height});
    }
    Buffer buffer(connection_, formats_, width_, height_);
    drawWithItems({buffer.pixmap.get(), buffer.picture.get(), 0, 0}, bounds());
    const std::uint32_t pixmap = buffer.pixmap.get();
    connection_.send<xcb_change_window_attributes>(window_, std::uint32_t{XCB_CW_BACK_PIXMAP},
                                                   static_cast<const void*>(&pixmap));
    background_ = std::move(buffer.pixmap);
}

void PanelCanvas::dropBackground() {
    if (background_) {
        const std::uint32_t none = XCB_BACK_PIXMAP_NONE;
        connection_.send<xcb_change_window_attributes>(window_, std::uint32_t{XCB_CW_BACK_PIXMAP},
                                                       static_cast<const void*>(&none));
        background_.reset();
    }
}

} // namespace skylet::platform::x11
