#include "platform/x11/MirrorPainter.h"

#include <cmath>
#include <string_view>

namespace skylet::platform::x11 {

namespace {

// A bilinear pixel reads its neighbours: a change spreads this far, in destination pixels.
constexpr int bilinearReach = 2;

xcb_render_fixed_t toFixed(double value) {
    return static_cast<xcb_render_fixed_t>(std::llround(value * 65536.0));
}

// `rect` scaled by the factors and grown by `reach`, within width x height.
PixelRect scaled(const PixelRect& rect, double factorX, double factorY, int reach, int width, int height) {
    const int left = static_cast<int>(std::floor(rect.x * factorX)) - reach;
    const int top = static_cast<int>(std::floor(rect.y * factorY)) - reach;
    const int right = static_cast<int>(std::ceil(rect.right() * factorX)) + reach;
    const int bottom = static_cast<int>(std::ceil(rect.bottom() * factorY)) + reach;
    return intersection({left, top, right - left, bottom - top}, {0, 0, width, height});
}

} // namespace

MirrorPainter::MirrorPainter(Connection& connection, const RenderFormats& formats)
    : connection_(connection)
    , formats_(formats) {
    // Copies between drawables need not tell us what they could not copy.
    const std::uint32_t noExposures = 0;
    gc_ = GContextId(connection_, connection_.generateId());
    connection_.send<xcb_create_gc>(gc_.get(), xcb_drawable_t{connection_.root()},
                                    std::uint32_t{XCB_GC_GRAPHICS_EXPOSURES},
                                    static_cast<const void*>(&noExposures));
}

void MirrorPainter::setSource(const std::shared_ptr<const NamedPixmap>& source, int panelWidth,
                              int panelHeight) {
    if (source == source_ && panelWidth == panelWidth_ && panelHeight == panelHeight_) {
        return;
    }
    source_ = source;
    panelWidth_ = panelWidth;
    panelHeight_ = panelHeight;
    sourcePicture_.reset();
    levels_.clear();
    if (source_) {
        rebuild();
    }
}

void MirrorPainter::rebuild() {
    const PixelRect& content = source_->content;
    copies_ = content.width == panelWidth_ && content.height == panelHeight_ &&
              source_->depth == connection_.screen().root_depth;
    if (copies_) {
        return;
    }
    const auto makePicture = [this](xcb_drawable_t drawable, xcb_render_pictformat_t format) {
        PictureId picture(connection_, connection_.generateId());
        const std::uint32_t pad = XCB_RENDER_REPEAT_PAD;
        connection_.sendTolerant<xcb_render_create_picture>(picture.get(), drawable, format,
                                                            std::uint32_t{XCB_RENDER_CP_REPEAT},
                                                            static_cast<const void*>(&pad));
        return picture;
    };
    sourcePicture_ = makePicture(source_->pixmap.get(), source_->format);
    const xcb_render_pictformat_t rootFormat = formats_.ofVisual(connection_.screen().root_visual);

    xcb_render_picture_t reader = sourcePicture_.get();
    double offsetX = content.x;
    double offsetY = content.y;
    int width = content.width;
    int height = content.height;
    while (width > 2 * panelWidth_ || height > 2 * panelHeight_) {
        Level level;
        level.factorX = width > 2 * panelWidth_ ? 2 : 1;
        level.factorY = height > 2 * panelHeight_ ? 2 : 1;
        level.width = (width + level.factorX - 1) / level.factorX;
        level.height = (height + level.factorY - 1) / level.factorY;
        level.pixmap = PixmapId(connection_, connection_.generateId());
        connection_.send<xcb_create_pixmap>(
            connection_.screen().root_depth, level.pixmap.get(), xcb_drawable_t{connection_.root()},
            static_cast<std::uint16_t>(level.width), static_cast<std::uint16_t>(level.height));
        level.picture = makePicture(level.pixmap.get(), rootFormat);
        setTransform(reader, level.factorX, level.factorY, offsetX, offsetY);
        reader = level.picture.get();
        offsetX = offsetY = 0;
        width = level.width;
        height = level.height;
        levels_.push_back(std::move(level));
    }
    // Odd sizes round up when halved: the last step still maps the whole content onto the whole panel.
    double restX = double(content.width) / panelWidth_;
    double restY = double(content.height) / panelHeight_;
    for (const Level& level : levels_) {
        restX /= level.factorX;
        restY /= level.factorY;
    }
    setTransform(reader, restX, restY, offsetX, offsetY);
}

void MirrorPainter::setTransform(xcb_render_picture_t picture, double scaleX, double scaleY, double offsetX,
                                 double offsetY) {
    const xcb_render_transform_t transform{
        toFixed(scaleX), 0, toFixed(offsetX), 0, toFixed(scaleY), toFixed(offsetY), 0, 0, toFixed(1)};
    connection_.sendTolerant<xcb_render_set_picture_transform>(picture, transform);
    // Without scaling the nearest pixel is the pixel itself, and cheaper to fetch.
    const std::string_view filter = scaleX == 1 && scaleY == 1 ? "nearest" : "bilinear";
    connection_.sendTolerant<xcb_render_set_picture_filter>(
        picture, static_cast<std::uint16_t>(filter.size()), filter.data(), 0U,
        static_cast<const xcb_render_fixed_t*>(nullptr));
}

PixelRect MirrorPainter::toPanel(const PixelRect& contentRect) const {
    if (!source_ || contentRect.isEmpty()) {
        return {};
    }
    const PixelRect& content = source_->content;
    const bool sameSize = content.width == panelWidth_ && content.height == panelHeight_;
    return scaled(contentRect, double(panelWidth_) / content.width, double(panelHeight_) / content.height,
                  sameSize ? 0 : bilinearReach, panelWidth_, panelHeight_);
}

void MirrorPainter::refresh(const PixelRect& contentRect) {
    if (!source_) {
        return;
    }
    xcb_render_picture_t reader = sourcePicture_.get();
    PixelRect changed = contentRect;
    for (const Level& level : levels_) {
        changed = scaled(changed, 1.0 / level.factorX, 1.0 / level.factorY, 1, level.width, level.height);
        const auto x = static_cast<std::int16_t>(changed.x);
        const auto y = static_cast<std::int16_t>(changed.y);
        connection_.sendTolerant<xcb_render_composite>(
            std::uint8_t{XCB_RENDER_PICT_OP_SRC}, reader, xcb_render_picture_t{XCB_NONE},
            xcb_render_picture_t{level.picture.get()}, x, y, std::int16_t{0}, std::int16_t{0}, x, y,
            static_cast<std::uint16_t>(changed.width), static_cast<std::uint16_t>(changed.height));
        reader = level.picture.get();
    }
}

void MirrorPainter::paint(const PaintDestination& destination, const PixelRect& panelRect) {
    if (!source_ || panelRect.isEmpty()) {
        return;
    }
    const auto width = static_cast<std::uint16_t>(panelRect.width);
    const auto height = static_cast<std::uint16_t>(panelRect.height);
    const auto x = static_cast<std::int16_t>(panelRect.x + destination.offsetX);
    const auto y = static_cast<std::int16_t>(panelRect.y + destination.offsetY);
    if (copies_) {
        connection_.sendTolerant<xcb_copy_area>(
            xcb_drawable_t{source_->pixmap.get()}, destination.drawable, xcb_gcontext_t{gc_.get()},
            static_cast<std::int16_t>(source_->content.x + panelRect.x),
            static_cast<std::int16_t>(source_->content.y + panelRect.y), x, y, width, height);
        return;
    }
    const xcb_render_picture_t reader = levels_.empty() ? sourcePicture_.get() : levels_.back().picture.get();
    connection_.sendTolerant<xcb_render_composite>(
        std::uint8_t{XCB_RENDER_PICT_OP_SRC}, reader, xcb_render_picture_t{XCB_NONE}, destination.picture,
        static_cast<std::int16_t>(panelRect.x), static_cast<std::int16_t>(panelRect.y), std::int16_t{0},
        std::int16_t{0}, x, y, width, height);
}

} // namespace skylet::platform::x11
