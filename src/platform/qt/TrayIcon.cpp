#include "platform/qt/TrayIcon.h"

#include "platform/qt/StatusImageDrawing.h"

#include <QCursor>

namespace skylet::platform::qt {

TrayIcon::TrayIcon(MenuPopup& popup) {
    QObject::connect(&icon_, &QSystemTrayIcon::activated, &icon_,
                     [this, &popup](QSystemTrayIcon::ActivationReason) {
                         const QRect place = icon_.geometry();
                         popup.toggle(place.isValid() ? place : QRect(QCursor::pos(), QSize(1, 1)));
                     });
}

void TrayIcon::setImage(const StatusImage& image) {
    icon_.setIcon(makeStatusIcon(image));
    icon_.show();
}

} // namespace skylet::platform::qt
