// The status menu as a window of our own, where no panel shows it for us.
//
// Coordinates: Qt's, top-left origin. Threads: main thread.
#pragma once

#include "platform/StatusBar.h"

#include <QMenu>
#include <QRect>

#include <memory>

namespace skylet::platform::qt {

class MenuPopup {
  public:
    explicit MenuPopup(StatusBar::MenuSource source);

    // Opens the menu beside `anchor`, away from the edge of the screen. An open one closes.
    void toggle(const QRect& anchor);

  private:
    // The popup may be given up by what its own menu does.
    struct DeleteLater {
        void operator()(QMenu* menu) const;
    };

    void rebuild();

    StatusBar::MenuSource source_;
    std::unique_ptr<QMenu, DeleteLater> menu_;
};

} // namespace skylet::platform::qt
