// A menu that another program shows for us (com.canonical.dbusmenu).
//
// The host fetches the menu, keeps a copy and asks before every opening whether that is out of date. An item
// keeps its number as long as it is in the menu, and a number that went with the last change still does what
// its item said: a click made on the older picture is neither lost nor taken for another item's.
// Threads: main thread; calls come from the event loop. Failure: on a bus that is not connected nobody asks.
#pragma once

#include "platform/Menu.h"
#include "platform/Queues.h"
#include "platform/StatusBar.h"
#include "platform/qt/DBusMenuTypes.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace skylet::platform::qt {

class DBusMenu : public QDBusVirtualObject {
  public:
    DBusMenu(QDBusConnection bus, MainQueue& mainQueue, QString path, StatusBar::MenuSource source);
    DBusMenu(const DBusMenu&) = delete;
    DBusMenu& operator=(const DBusMenu&) = delete;
    ~DBusMenu() override;

    // Builds the menu again and tells the host if it came out different; whether it did.
    bool update();

    [[nodiscard]] QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  private:
    struct Item {
        int id = 0;
        QVariantMap properties;
        std::function<void()> action;
    };

    void updateIfNeverBuilt();
    [[nodiscard]] const Item* find(int id) const;
    [[nodiscard]] std::optional<QVariantList> answer(const QDBusMessage& message);
    [[nodiscard]] QVariantList layout(const QVariantList& arguments);
    [[nodiscard]] QVariantList groupProperties(const QVariantList& arguments);
    [[nodiscard]] std::optional<QVariantList> property(int id, const QString& name);
    [[nodiscard]] QVariantList aboutToShowGroup(const QVariantList& arguments);
    [[nodiscard]] QVariantList eventGroup(const QVariantList& arguments);
    // Whether there is such an item.
    bool handleEvent(int id, const QString& event);

    QDBusConnection bus_;
    MainQueue& mainQueue_;
    QString path_;
    StatusBar::MenuSource source_;
    uint revision_ = 0; // 0: never built
    int lastId_ = 0;
    std::vector<std::pair<std::string, Item>> items_; // in order, with their identities
    std::map<int, std::function<void()>> retired_;    // went with the last change
};

} // namespace skylet::platform::qt
