#include "settings/views/ApplicationIcon.h"

#include "foundation/Product.h"

#include <QApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace skylet {

namespace {

constexpr int drawnSizes[] = {16, 24, 32, 48, 64, 128, 256};

// A white pin, its needle pointing down, on a red tile; drawn in a square of side 1.
void draw(QPainter& painter) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QLinearGradient tile(0, 0, 0, 1);
    tile.setColorAt(0, QColor(255, 92, 80));
    tile.setColorAt(1, QColor(214, 36, 42));
    painter.setBrush(tile);
    painter.drawRoundedRect(QRectF(0.06, 0.06, 0.88, 0.88), 0.2, 0.2);

    painter.translate(0.5, 0.5);
    painter.rotate(30);
    painter.translate(-0.5, -0.5);
    QPainterPath pin;
    pin.addRoundedRect(QRectF(0.34, 0.2, 0.32, 0.075), 0.035, 0.035);
    QPainterPath neck(QPointF(0.4, 0.25));
    neck.lineTo(0.6, 0.25);
    neck.lineTo(0.615, 0.42);
    neck.cubicTo(0.69, 0.46, 0.725, 0.51, 0.73, 0.57);
    neck.lineTo(0.27, 0.57);
    neck.cubicTo(0.275, 0.51, 0.31, 0.46, 0.385, 0.42);
    neck.closeSubpath();
    QPainterPath needle(QPointF(0.468, 0.55));
    needle.lineTo(0.532, 0.55);
    needle.lineTo(0.5, 0.83);
    needle.closeSubpath();
    painter.setBrush(Qt::white);
    painter.drawPath(pin.united(neck).united(needle));
}

QIcon drawnIcon() {
    QIcon icon;
    for (const int size : drawnSizes) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.scale(size, size);
        draw(painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace

QIcon applicationIcon() {
    const auto name = QString::fromLatin1(bundleIdentifier);
    if (!QApplication::windowIcon().isNull()) {
        return QApplication::windowIcon();
    }
    return QIcon::hasThemeIcon(name) ? QIcon::fromTheme(name) : drawnIcon();
}

} // namespace skylet
