#include "platform/x11/DecorationImage.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

namespace skylet::platform::x11 {

namespace {

QColor toQColor(const Color& color) {
    return QColor::fromRgbF(float(color.red), float(color.green), float(color.blue), float(color.alpha));
}

// Draws in the decoration's coordinates: the painter is flipped to a bottom-left origin.
class Draw {
  public:
    explicit Draw(QPainter& painter) : painter_(painter) {}

    void operator()(const FilledRoundedRect& shape) const {
        painter_.setPen(Qt::NoPen);
        painter_.setBrush(toQColor(shape.color));
        painter_.drawRoundedRect(QRectF(shape.rect.x, shape.rect.y, shape.rect.width, shape.rect.height),
                                 shape.cornerRadius, shape.cornerRadius);
    }
    void operator()(const StrokedLines& shape) const {
        // One path, so that translucent strokes do not add up where they meet.
        QPainterPath path;
        for (const auto& segment : shape.segments) {
            path.moveTo(segment.from.x, segment.from.y);
            path.lineTo(segment.to.x, segment.to.y);
        }
        painter_.strokePath(
            path, QPen(toQColor(shape.color), shape.lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }

  private:
    QPainter& painter_;
};

} // namespace

DecorationImage::DecorationImage(Connection& connection, const RenderFormats& formats, const Drawing& drawing,
                                 int width, int height) {
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(0, height);
        painter.scale(1, -1);
        for (const auto& shape : drawing) {
            std::visit(Draw(painter), shape);
        }
    }
    const auto pixelWidth = static_cast<std::uint16_t>(width);
    const auto pixelHeight = static_cast<std::uint16_t>(height);
    pixmap_ = PixmapId(connection, connection.generateId());
    connection.send<xcb_create_pixmap>(std::uint8_t{32}, pixmap_.get(), xcb_drawable_t{connection.root()},
                                       pixelWidth, pixelHeight);
    const GContextId gc(connection, connection.generateId());
    connection.send<xcb_create_gc>(gc.get(), xcb_drawable_t{pixmap_.get()}, 0U,
                                   static_cast<const void*>(nullptr));
    connection.send<xcb_put_image>(static_cast<std::uint8_t>(XCB_IMAGE_FORMAT_Z_PIXMAP),
                                   xcb_drawable_t{pixmap_.get()}, xcb_gcontext_t{gc.get()}, pixelWidth,
                                   pixelHeight, std::int16_t{0}, std::int16_t{0}, std::uint8_t{0},
                                   std::uint8_t{32}, static_cast<std::uint32_t>(image.sizeInBytes()),
                                   static_cast<const std::uint8_t*>(image.constBits()));
    picture_ = PictureId(connection, connection.generateId());
    connection.send<xcb_render_create_picture>(picture_.get(), xcb_drawable_t{pixmap_.get()},
                                               formats.argb32(), 0U, static_cast<const void*>(nullptr));
}

} // namespace skylet::platform::x11
