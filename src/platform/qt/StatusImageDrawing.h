// Drawing status images at any size of the bar.
//
// Units: device pixels. Threads: main thread for the icon; the drawing itself needs no application object.
#pragma once

#include "platform/StatusBar.h"

#include <QIcon>
#include <QImage>
#include <QSize>

namespace skylet::platform::qt {

// The height of the bar for which status images are composed. Desktop panels differ; images are scaled to
// them.
constexpr double statusBarThickness = 22;

[[nodiscard]] Size symbolSizeOf(const Symbol& symbol);

// The image as large as it fits into `pixels`, centred, drawn for that size.
[[nodiscard]] QImage drawStatusImage(const StatusImage& image, QSize pixels, bool isDark);

// The sizes in which panels commonly ask for icons.
[[nodiscard]] const QList<int>& statusIconSizes();

// Whether the desktop's own colours are light on dark.
[[nodiscard]] bool isDarkAppearance();

// Draws itself in the appearance of the moment at which it is painted.
[[nodiscard]] QIcon makeStatusIcon(const StatusImage& image);

} // namespace skylet::platform::qt
