// A status item in a tray that takes in windows (XEmbed).
//
// Waits for a tray as long as there is none. Threads: main thread.
#pragma once

#include "platform/StatusBar.h"
#include "platform/qt/MenuPopup.h"

#include <QSystemTrayIcon>

namespace skylet::platform::qt {

class TrayIcon {
  public:
    explicit TrayIcon(MenuPopup& popup);
    TrayIcon(const TrayIcon&) = delete;
    TrayIcon& operator=(const TrayIcon&) = delete;

    void setImage(const StatusImage& image);
    void setToolTip(const QString& text) { icon_.setToolTip(text); }

  private:
    QSystemTrayIcon icon_;
};

} // namespace skylet::platform::qt
