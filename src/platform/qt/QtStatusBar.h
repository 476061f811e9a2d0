// Status items in the panel of a desktop: over the message bus where a StatusNotifier host is, else in a
// tray that takes in windows.
//
// Items move from the one to the other as hosts come and go. Threads: main thread, with a QApplication.
#pragma once

#include "platform/Queues.h"
#include "platform/StatusBar.h"
#include "platform/qt/Observers.h"
#include "platform/qt/StatusNotifierWatcher.h"

#include <QDBusConnection>
#include <QObject>

#include <memory>
#include <string>

namespace skylet::platform::qt {

// Where status items can be shown now, and what follows from a change of that.
class StatusHosts {
  public:
    StatusHosts(const QDBusConnection& sessionBus, MainQueue& queue);

    [[nodiscard]] StatusNotifierWatcher& watcher() { return watcher_; }
    // Whether a tray icon of Qt's can be made. Qt looks at the bus once, for its first one, for what it then
    // takes all of them to be: there must be no host then, and a bus that went away meanwhile would end the
    // program.
    bool canUseTray();

    QDBusConnection bus;
    MainQueue& mainQueue;
    Observers<> changed;
    Observers<> appearanceChanged;

  private:
    bool hadBus_;
    bool isTrayDecided_ = false;
    StatusNotifierWatcher watcher_;
};

class QtStatusBar : public QObject, public StatusBar {
    Q_OBJECT

  public:
    QtStatusBar(const QDBusConnection& sessionBus, MainQueue& mainQueue);
    ~QtStatusBar() override;

    [[nodiscard]] double thickness() const override;
    [[nodiscard]] Size symbolSize(const Symbol& symbol) const override;
    [[nodiscard]] bool isShown() const override;
    // The item must not outlive the bar.
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem(const std::string& autosaveName,
                                                             MenuSource menu) override;

    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    mutable StatusHosts hosts_;
    int items_ = 0;
};

} // namespace skylet::platform::qt
