// Status items in the panel of a desktop: over the message bus where a StatusNotifier host is, else in a
// tray that takes in windows.
//
// Items move from the one to the other as hosts come and go. Threads: main thread, with a QApplication.
#pragma once

#include "platform/StatusBar.h"
#include "platform/qt/Observers.h"
#include "platform/qt/StatusNotifierWatcher.h"

#include <QDBusConnection>
#include <QObject>

#include <memory>
#include <string>

namespace skylet::platform::qt {

class QtStatusBar : public QObject, public StatusBar {
    Q_OBJECT

  public:
    explicit QtStatusBar(const QDBusConnection& sessionBus);
    ~QtStatusBar() override;

    [[nodiscard]] double thickness() const override;
    [[nodiscard]] Size symbolSize(const Symbol& symbol) const override;
    [[nodiscard]] bool isShown() const override;
    // The item must not outlive the bar.
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem(const std::string& autosaveName,
                                                             MenuSource menu) override;

    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    QDBusConnection bus_;
    Observers<> hostsChanged_;
    Observers<> appearanceChanged_;
    StatusNotifierWatcher watcher_;
    int items_ = 0;
};

} // namespace skylet::platform::qt
