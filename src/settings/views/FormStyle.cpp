#include "settings/views/FormStyle.h"

#include "settings/L10n.h"

#include <QApplication>
#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace skylet::FormStyle {

namespace {

constexpr double captionScale = 0.87;
constexpr double titleScale = 1.5;
constexpr double readableContrast = 4.6; // a little above what is asked for, against rounding
constexpr double shadeStep = 0.04;

QFont scaled(double factor) {
    QFont font = QApplication::font();
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * factor);
    } else {
        font.setPixelSize(std::max(1, static_cast<int>(std::lround(font.pixelSize() * factor))));
    }
    return font;
}

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

} // namespace

int lines(double count) {
    return std::max(1, static_cast<int>(std::lround(QFontMetricsF(QApplication::font()).height() * count)));
}

QFont captionFont() {
    return scaled(captionScale);
}

QFont headerFont() {
    QFont font = QApplication::font();
    font.setWeight(QFont::Bold);
    return font;
}

QFont titleFont() {
    QFont font = scaled(titleScale);
    font.setWeight(QFont::DemiBold);
    return font;
}

bool isDark(const QPalette& palette) {
    return luminance(palette.color(QPalette::Window)) < luminance(palette.color(QPalette::WindowText));
}

QColor blend(const QColor& over, const QColor& under, double share) {
    const auto mix = [share](float a, float b) {
        return static_cast<float>(a * share + b * (1 - share));
    };
    return QColor::fromRgbF(mix(over.redF(), under.redF()), mix(over.greenF(), under.greenF()),
                            mix(over.blueF(), under.blueF()));
}

double contrast(const QColor& a, const QColor& b) {
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

QColor boxColor(const QPalette& palette) {
    const QColor window = palette.color(QPalette::Window);
    return blend(isDark(palette) ? palette.color(QPalette::WindowText) : QColor(Qt::white), window,
                 isDark(palette) ? 0.06 : 0.75);
}

QColor hairlineColor(const QPalette& palette) {
    return blend(palette.color(QPalette::WindowText), palette.color(QPalette::Window), 0.16);
}

QColor textColor(const QPalette& palette, Tone tone, const QColor& ground) {
    const QColor text = palette.color(QPalette::WindowText);
    QColor wanted = text;
    switch (tone) {
    case Tone::primary:
        return text;
    case Tone::secondary:
        wanted = blend(text, ground, 0.62);
        break;
    case Tone::positive:
        wanted = QColor(52, 168, 83);
        break;
    case Tone::notice:
        wanted = QColor(240, 130, 20);
        break;
    }
    const QColor extreme = isDark(palette) ? QColor(Qt::white) : QColor(Qt::black);
    QColor shade = wanted;
    for (double share = shadeStep; share <= 1 && contrast(shade, ground) < readableContrast;
         share += shadeStep) {
        shade = blend(extreme, wanted, share);
    }
    return shade;
}

QString text(const char* italian) {
    return QString::fromStdString(L10n::string(italian, italian));
}

} // namespace skylet::FormStyle
