// The look of the program's windows: lengths from the font, colours from the palette.
//
// Nothing here is a fixed number of pixels or a fixed colour, so that every font size and a dark palette come
// out right.
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QString>
#include <QWidget>

namespace skylet::FormStyle {

// As many lines of the application's font, in pixels; at least 1.
[[nodiscard]] int lines(double count);

[[nodiscard]] QFont captionFont();
[[nodiscard]] QFont headerFont();
[[nodiscard]] QFont titleFont();

[[nodiscard]] bool isDark(const QPalette& palette);
// `share` of `over`, the rest of `under`.
[[nodiscard]] QColor blend(const QColor& over, const QColor& under, double share);
// The ratio of the luminances, 1 to 21 (Web Content Accessibility Guidelines 2).
[[nodiscard]] double contrast(const QColor& a, const QColor& b);

// The ground of a group of rows, and the lines around and in it.
[[nodiscard]] QColor boxColor(const QPalette& palette);
[[nodiscard]] QColor hairlineColor(const QPalette& palette);

enum class Tone { primary, secondary, positive, notice };
// Text of that tone on `ground`, with a contrast of 4.5 or more wherever black or white has it.
[[nodiscard]] QColor textColor(const QPalette& palette, Tone tone, const QColor& ground);

// The text in the user's language; the Italian one is its own key.
[[nodiscard]] QString text(const char* italian);

} // namespace skylet::FormStyle
