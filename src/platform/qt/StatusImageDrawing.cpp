#include "platform/qt/StatusImageDrawing.h"

#include "platform/qt/PinGlyph.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

#include <algorithm>
#include <cmath>

namespace skylet::platform::qt {

namespace {

// What a plain symbol keeps free above and below, as panels' own icons do.
constexpr double symbolMargin = 1.0 / 12;

QColor toQColor(const AppearanceColor& color, bool isDark) {
    const Color& shown = isDark ? color.dark : color.light;
    return QColor::fromRgbF(static_cast<float>(shown.red), static_cast<float>(shown.green),
                            static_cast<float>(shown.blue), static_cast<float>(shown.alpha));
}

// A whole number of pixels that leaves the same on both sides of a cell of `cell` pixels.
int centredLength(double length, int cell) {
    const int odd = cell % 2;
    return std::clamp(2 * static_cast<int>(std::lround((length - odd) / 2)) + odd, 1, std::max(1, cell));
}

QRect centredRect(QSize size, QSize cell) {
    return {{(cell.width() - size.width()) / 2, (cell.height() - size.height()) / 2}, size};
}

class StatusIconEngine : public QIconEngine {
  public:
    explicit StatusIconEngine(const StatusImage& image) : image_(image) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        const qreal ratio = painter->device()->devicePixelRatio();
        QImage image = drawStatusImage(image_, (QSizeF(rect.size()) * ratio).toSize(), isDarkAppearance());
        image.setDevicePixelRatio(ratio);
        painter->drawImage(rect.topLeft(), image);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        return QPixmap::fromImage(drawStatusImage(image_, size, isDarkAppearance()));
    }
    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        QList<QSize> sizes;
        for (const int size : statusIconSizes()) {
            sizes << QSize(size, size);
        }
        return sizes;
    }
    [[nodiscard]] QIconEngine* clone() const override { return new StatusIconEngine(image_); }

  private:
    StatusImage image_;
};

} // namespace

Size symbolSizeOf(const Symbol& symbol) {
    return {symbol.pointSize * pinAspect, symbol.pointSize};
}

QImage drawStatusImage(const StatusImage& image, QSize pixels, bool isDark) {
    QImage drawn(pixels, QImage::Format_ARGB32_Premultiplied);
    if (drawn.isNull() || image.size.width <= 0 || image.size.height <= 0) {
        return {};
    }
    drawn.fill(Qt::transparent);
    const double free = image.background ? 0 : 2 * symbolMargin;
    const double scale =
        std::min(pixels.width() / image.size.width, pixels.height() * (1 - free) / image.size.height);
    QPainter painter(&drawn);
    painter.setRenderHint(QPainter::Antialiasing);
    if (image.background) {
        const QSize size(centredLength(image.size.width * scale, pixels.width()),
                         centredLength(image.size.height * scale, pixels.height()));
        painter.setPen(Qt::NoPen);
        painter.setBrush(toQColor(image.background->color, isDark));
        const double radius = image.background->cornerRadius * size.height() / image.size.height;
        painter.drawRoundedRect(centredRect(size, pixels), radius, radius);
    }
    const Size symbol = symbolSizeOf(image.symbol);
    const QSize size(centredLength(symbol.width * scale, pixels.width()),
                     centredLength(symbol.height * scale, pixels.height()));
    const QPointF offset((image.symbolOrigin.x + symbol.width / 2 - image.size.width / 2) * scale,
                         -(image.symbolOrigin.y + symbol.height / 2 - image.size.height / 2) * scale);
    drawPin(painter, centredRect(size, pixels).translated(offset.toPoint()), image.symbol.name == "pin.fill",
            toQColor(image.tint, isDark));
    return drawn;
}

const QList<int>& statusIconSizes() {
    static const QList<int> sizes{16, 22, 24, 32, 48, 64};
    return sizes;
}

bool isDarkAppearance() {
    constexpr int halfLight = 128;
    return QGuiApplication::palette().color(QPalette::Window).lightness() < halfLight;
}

QIcon makeStatusIcon(const StatusImage& image) {
    return QIcon(new StatusIconEngine(image));
}

} // namespace skylet::platform::qt
