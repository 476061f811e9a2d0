#include "settings/views/CheckMark.h"

#include "settings/views/FormStyle.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace skylet {

namespace {

constexpr double markLines = 0.85;   // the side
constexpr double strokeShare = 0.11; // of the circle

} // namespace

CheckMark::CheckMark() {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize CheckMark::sizeHint() const {
    return {FormStyle::lines(markLines), FormStyle::lines(markLines)};
}

void CheckMark::paintEvent(QPaintEvent* /*event*/) {
    const double side = std::min(width(), height());
    const QColor ground = FormStyle::boxColor(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate((width() - side) / 2, (height() - side) / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(FormStyle::textColor(palette(), FormStyle::Tone::positive, ground));
    painter.drawEllipse(QRectF(0, 0, side, side));
    QPainterPath tick(QPointF(0.27, 0.53) * side);
    tick.lineTo(QPointF(0.43, 0.69) * side);
    tick.lineTo(QPointF(0.73, 0.34) * side);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(ground, side * strokeShare, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(tick);
}

} // namespace skylet
