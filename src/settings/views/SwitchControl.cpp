#include "settings/views/SwitchControl.h"

#include "settings/views/FormStyle.h"

#include <QPainter>

namespace skylet {

namespace {

constexpr double trackLines = 1.2;
constexpr double trackAspect = 1.75;
constexpr double focusWidth = 2;
constexpr double focusGap = 1;
constexpr double controlContrast = 3.1; // of a control's outline against its ground

// The track in the middle of the control, with room for the focus ring.
QRectF trackIn(const QRectF& control) {
    const double margin = SwitchControl::overhang();
    return control.adjusted(margin, margin, -margin, -margin);
}

QColor trackColor(const QPalette& palette, bool isOn) {
    if (isOn) {
        return palette.color(QPalette::Highlight);
    }
    const QColor ground = FormStyle::boxColor(palette);
    const QColor text = palette.color(QPalette::WindowText);
    double share = 0.3;
    QColor color = FormStyle::blend(text, ground, share);
    while (share < 1 && FormStyle::contrast(color, ground) < controlContrast) {
        share += 0.03;
        color = FormStyle::blend(text, ground, share);
    }
    return color;
}

} // namespace

SwitchControl::SwitchControl() {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setCursor(Qt::ArrowCursor);
    setFocusPolicy(Qt::StrongFocus);
}

int SwitchControl::overhang() {
    return static_cast<int>(focusWidth + focusGap);
}

QSize SwitchControl::sizeHint() const {
    const int height = FormStyle::lines(trackLines);
    return {static_cast<int>(height * trackAspect) + 2 * overhang(), height + 2 * overhang()};
}

void SwitchControl::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : 0.4);
    const QRectF track = trackIn(rect());
    const double radius = track.height() / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(trackColor(palette(), isChecked()));
    painter.drawRoundedRect(track, radius, radius);

    const double inset = track.height() * 0.12;
    const double knob = track.height() - 2 * inset;
    const bool isRight = isChecked() == (layoutDirection() == Qt::LeftToRight);
    const double x = isRight ? track.right() - inset - knob : track.left() + inset;
    painter.setBrush(isDown() ? QColor(225, 225, 225) : QColor(Qt::white));
    painter.drawEllipse(QRectF(x, track.top() + inset, knob, knob));

    if (hasFocus()) {
        const double away = focusGap + focusWidth / 2;
        const QRectF ring = track.adjusted(-away, -away, away, away);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(
            QPen(FormStyle::textColor(palette(), FormStyle::Tone::secondary, FormStyle::boxColor(palette())),
                 focusWidth));
        painter.drawRoundedRect(ring, ring.height() / 2, ring.height() / 2);
    }
}

} // namespace skylet
