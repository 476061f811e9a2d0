// The pushpin, as an outline and filled.
//
// Units: device pixels, y downwards. Straight edges lie on whole pixels at every size, so that the glyph is
// as sharp in a panel of 16 pixels as in one of 64.
#pragma once

#include <QColor>
#include <QPainter>
#include <QRect>

namespace skylet::platform::qt {

// Width to height of the glyph.
constexpr double pinAspect = 0.75;

// Draws over the whole height of `box`, centred in its width.
void drawPin(QPainter& painter, const QRect& box, bool filled, const QColor& color);

} // namespace skylet::platform::qt
