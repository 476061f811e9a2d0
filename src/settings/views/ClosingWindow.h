// A window of the program that is only hidden when it is closed, and that the cancel keys close.
#pragma once

#include "platform/OwnWindows.h"

#include <QWidget>

namespace skylet {

class ClosingWindow : public QWidget {
  public:
    explicit ClosingWindow(const QString& title);

    // Shows the window on the user's desktop, in front and with the focus.
    void bringForward(platform::OwnWindows& ownWindows);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace skylet
