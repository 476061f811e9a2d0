// A panel of our own: shows status items over the message bus (org.kde.StatusNotifierItem) in words.
//
// Reads one command per line and answers each with one line:
//   items         how many items there are
//   tooltip       the first item's tooltip
//   menu          opens the first item's menu; its items, separated by "|": "-" is a separator, "(x)" is
//                 disabled, "*x" has a check mark
//   click LABEL   chooses an item of the menu as it was last opened
#include "platform/qt/DBusMenuTypes.h"
#include "platform/qt/StatusNotifierTypes.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVirtualObject>
#include <QSocketNotifier>

#include <iostream>
#include <string>

namespace {

using namespace Qt::StringLiterals;
using skylet::platform::qt::DBusMenuLayout;

const auto watcherName = u"org.kde.StatusNotifierWatcher"_s;
const auto itemInterface = u"org.kde.StatusNotifierItem"_s;
const auto propertiesInterface = u"org.freedesktop.DBus.Properties"_s;
const auto menuInterface = u"com.canonical.dbusmenu"_s;

class Host : public QDBusVirtualObject {
  public:
    Host() : bus_(QDBusConnection::sessionBus()) {
        skylet::platform::qt::registerDBusMenuTypes();
        owners_.setConnection(bus_);
        owners_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
        connect(&owners_, &QDBusServiceWatcher::serviceUnregistered, this,
                [this](const QString& service) { items_.removeAll(service); });
        bus_.registerVirtualObject(u"/StatusNotifierWatcher"_s, this);
        bus_.registerService(watcherName);
    }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        QVariantList reply;
        if (message.member() == u"RegisterStatusNotifierItem"_s) {
            const QString service = message.arguments().value(0).toString();
            items_.removeAll(service);
            items_ << service;
            owners_.addWatchedService(service);
        } else if (message.member() == u"Get"_s) {
            reply << QVariant::fromValue(QDBusVariant(true)); // a host is registered
        }
        connection.send(message.createReply(reply));
        return true;
    }

    [[nodiscard]] QString answer(const QString& command) {
        if (command == u"items"_s) {
            return QString::number(items_.size());
        }
        if (items_.isEmpty()) {
            return u"no item"_s;
        }
        if (command == u"tooltip"_s) {
            const QVariant value = property(u"ToolTip"_s);
            return qdbus_cast<skylet::platform::qt::StatusNotifierToolTip>(value.value<QDBusArgument>())
                .title;
        }
        if (command == u"menu"_s) {
            return openMenu();
        }
        const auto click = u"click "_s;
        return command.startsWith(click) ? choose(command.mid(click.size())) : u"what?"_s;
    }

  private:
    [[nodiscard]] QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                                    const QVariantList& arguments) {
        auto message = QDBusMessage::createMethodCall(items_.first(), path, interface, method);
        message.setArguments(arguments);
        return bus_.call(message);
    }
    [[nodiscard]] QVariant property(const QString& name) {
        const auto reply =
            call(u"/StatusNotifierItem"_s, propertiesInterface, u"Get"_s, {itemInterface, name});
        return reply.arguments().value(0).value<QDBusVariant>().variant();
    }
    [[nodiscard]] QDBusMessage callMenu(const QString& method, const QVariantList& arguments) {
        const auto path = property(u"Menu"_s).value<QDBusObjectPath>().path();
        return call(path, menuInterface, method, arguments);
    }
    [[nodiscard]] QString openMenu() {
        static_cast<void>(callMenu(u"AboutToShow"_s, {0}));
        const auto reply = callMenu(u"GetLayout"_s, {0, -1, QStringList()});
        menu_ = qdbus_cast<DBusMenuLayout>(reply.arguments().value(1).value<QDBusArgument>());
        QStringList items;
        for (const DBusMenuLayout& item : menu_.children) {
            items << textOf(item);
        }
        return items.join(u'|');
    }
    [[nodiscard]] static QString labelOf(const DBusMenuLayout& item) {
        return item.properties.value(u"label"_s).toString().replace(u"__"_s, u"_"_s);
    }
    [[nodiscard]] static QString textOf(const DBusMenuLayout& item) {
        if (item.properties.value(u"type"_s).toString() == u"separator"_s) {
            return u"-"_s;
        }
        const bool isOn = item.properties.value(u"toggle-state"_s).toInt() == 1;
        const QString text = (isOn ? u"*"_s : QString()) + labelOf(item);
        return item.properties.value(u"enabled"_s, true).toBool() ? text : u'(' + text + u')';
    }
    [[nodiscard]] QString choose(const QString& label) {
        for (const DBusMenuLayout& item : menu_.children) {
            if (labelOf(item) == label) {
                const auto reply = callMenu(
                    u"Event"_s, {item.id, u"clicked"_s, QVariant::fromValue(QDBusVariant(QString())), 0U});
                return reply.type() == QDBusMessage::ReplyMessage ? u"ok"_s : reply.errorMessage();
            }
        }
        return u"no such item"_s;
    }

    QDBusConnection bus_;
    QDBusServiceWatcher owners_;
    QStringList items_;
    DBusMenuLayout menu_;
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    Host host;
    const QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&host] {
        std::string line;
        if (!std::getline(std::cin, line)) {
            QCoreApplication::quit();
            return;
        }
        std::cout << host.answer(QString::fromStdString(line)).toStdString() << std::endl;
    });
    return QCoreApplication::exec();
}
