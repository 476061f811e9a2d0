#include "platform/qt/PinGlyph.h"

#include <QPainterPath>
#include <QPen>

#include <algorithm>
#include <cmath>

namespace skylet::platform::qt {

namespace {

// Measures as parts of the height, from the middle line and from the top.
constexpr double strokeWidth = 0.09;
constexpr double capHalfWidth = 0.29;
constexpr double bodyHalfWidth = 0.22;
constexpr double plateHalfWidth = pinAspect / 2;
constexpr double bodyEnd = 0.37;  // where the body begins to spread
constexpr double plateTop = 0.58; // where it has spread to the plate
constexpr double plateEnd = 0.69; // where the needle begins
constexpr double spreadStart = 0.08;

// The whole number nearest to `value` that is even as `like` is, so that both have the same middle line.
int likeParity(double value, int like) {
    const int odd = like % 2;
    return std::max(1, 2 * static_cast<int>(std::lround((value - odd) / 2)) + odd);
}

} // namespace

void drawPin(QPainter& painter, const QRect& box, bool filled, const QColor& color) {
    const double height = box.height();
    const int stroke = std::max(1, static_cast<int>(std::lround(height * strokeWidth)));
    const double half = stroke / 2.0;
    // Lines that are `stroke` wide run along the middle of whole pixels.
    const double middle = box.x() + box.width() / 2.0;
    const auto side = [&](double part) {
        return likeParity(2 * part * height, box.width()) / 2.0 - half;
    };
    const auto line = [&](double part) {
        return box.y() + std::round(part * height) - half;
    };
    const double cap = side(capHalfWidth);
    const double body = side(bodyHalfWidth);
    const double plate = side(plateHalfWidth);
    const double top = box.y() + half;
    const double spread = line(bodyEnd);
    const double lip = line(plateTop);
    const double bottom = line(plateEnd);

    QPainterPath shape;
    shape.moveTo(middle - body, top);
    shape.lineTo(middle - body, spread);
    shape.cubicTo(middle - body, spread + spreadStart * height, middle - plate, lip - spreadStart * height,
                  middle - plate, lip);
    shape.lineTo(middle - plate, bottom);
    shape.lineTo(middle + plate, bottom);
    shape.lineTo(middle + plate, lip);
    shape.cubicTo(middle + plate, lip - spreadStart * height, middle + body, spread + spreadStart * height,
                  middle + body, spread);
    shape.lineTo(middle + body, top);
    shape.closeSubpath();

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, stroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(filled ? QBrush(color) : QBrush(Qt::NoBrush));
    painter.drawPath(shape);
    painter.drawLine(QPointF(middle - cap, top), QPointF(middle + cap, top));
    const int needle = likeParity(stroke, box.width());
    painter.setPen(QPen(color, needle, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(middle, bottom), QPointF(middle, box.y() + height - needle / 2.0));
    painter.restore();
}

} // namespace skylet::platform::qt
