// A status item that a panel shows over the message bus (org.kde.StatusNotifierItem).
//
// Threads: main thread; calls come from the event loop. Failure: on a bus that is not connected nobody sees
// it.
#pragma once

#include "platform/StatusBar.h"
#include "platform/qt/DBusMenu.h"

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QString>
#include <QVariant>

#include <functional>

namespace skylet::platform::qt {

class StatusNotifierItem : public QDBusVirtualObject {
  public:
    // `number` tells the items of this process apart. `showMenu` is for hosts that only tell of a click.
    StatusNotifierItem(QDBusConnection bus, MainQueue& mainQueue, int number, StatusBar::MenuSource source,
                       std::function<void()> showMenu);
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;
    ~StatusNotifierItem() override;

    // Its name on the bus, for the watcher.
    [[nodiscard]] const QString& service() const { return service_; }
    void setImage(const StatusImage& image, bool isDark);
    void setToolTip(const QString& text);
    void noteMenuChange() { menu_.update(); }

    [[nodiscard]] QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  private:
    [[nodiscard]] QVariantMap properties() const;
    void tell(const QString& signal);

    QDBusConnection bus_;
    MainQueue& mainQueue_;
    std::function<void()> showMenu_;
    DBusMenu menu_;
    QString service_;
    QString name_;
    QVariant pictures_; // of the image, in every size
    QString toolTip_;
};

} // namespace skylet::platform::qt
