// The program's own windows: their key equivalents, and that the program does without any.
//
// Threads: main thread, with a QApplication.
#pragma once

#include "platform/Application.h"

#include <QAction>
#include <QObject>

#include <memory>
#include <vector>

namespace skylet::platform::qt {

class QtApplication : public QObject, public Application {
    Q_OBJECT

  public:
    QtApplication();

    // Gives every window that is shown from now on the key equivalents. Editing is left out: text fields
    // bring those keys themselves.
    void setMainMenu(const MainMenu& menu) override;
    void setAccessoryActivationPolicy() override;

    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    std::vector<std::unique_ptr<QAction>> actions_;
};

} // namespace skylet::platform::qt
