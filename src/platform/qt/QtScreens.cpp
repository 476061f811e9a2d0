#include "platform/qt/QtScreens.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <algorithm>

namespace skylet::platform::qt {

namespace {

// Both are flipped at the height of the first screen.
Rect flipped(const QRectF& rect, double primaryHeight) {
    return {rect.x(), primaryHeight - rect.y() - rect.height(), rect.width(), rect.height()};
}

QRectF flipped(const Rect& rect, double primaryHeight) {
    return {rect.x, primaryHeight - rect.y - rect.height, rect.width, rect.height};
}

// Qt keeps the origin of a screen in pixels and scales what lies in it.
QRectF inPoints(const QRectF& pixels, const QScreen& screen) {
    const QPointF origin = screen.geometry().topLeft();
    const double scale = screen.devicePixelRatio();
    return {origin + (pixels.topLeft() - origin) / scale, pixels.size() / scale};
}

// What is visible of the screen, in Qt's points.
QRectF visiblePart(const QScreen& screen, const std::vector<Screen>& pixels) {
    const double primaryHeight = pixels.empty() ? 0 : pixels.front().frame.height;
    const auto known = std::ranges::find_if(pixels, [&](const Screen& one) {
        return flipped(one.frame, primaryHeight).topLeft() == QPointF(screen.geometry().topLeft());
    });
    return known == pixels.end() ? QRectF(screen.geometry())
                                 : inPoints(flipped(known->visibleFrame, primaryHeight), screen);
}

Screen describe(const QScreen& screen, const std::vector<Screen>& pixels) {
    const double primaryHeight = QGuiApplication::primaryScreen()->geometry().height();
    return {flipped(QRectF(screen.geometry()), primaryHeight),
            flipped(visiblePart(screen, pixels), primaryHeight), screen.devicePixelRatio()};
}

} // namespace

std::vector<Screen> QtScreens::screens() {
    std::vector<Screen> result;
    const auto pixels = pixels_.screens();
    for (const QScreen* screen : QGuiApplication::screens()) {
        result.push_back(describe(*screen, pixels));
    }
    return result;
}

std::optional<Screen> QtScreens::mainScreen() {
    const QWindow* active = QGuiApplication::focusWindow();
    const QScreen* screen = active != nullptr ? active->screen() : QGuiApplication::primaryScreen();
    return screen != nullptr ? std::optional(describe(*screen, pixels_.screens())) : std::nullopt;
}

} // namespace skylet::platform::qt
