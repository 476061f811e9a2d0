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

using skylet::platform::qt::DBusMenuLayout;

const auto watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const auto propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const auto menuInterface = QStringLiteral("com.canonical.dbusmenu");

class Host : public QDBusVirtualObject {
  public:
    Host() : bus_(QDBusConnection::sessionBus()) {
        skylet::platform::qt::registerDBusMenuTypes();
        owners_.setConnection(bus_);
        owners_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
        connect(&owners_, &QDBusServiceWatcher::serviceUnregistered, this,
                [this](const QString& service) { items_.removeAll(service); });
        bus_.registerVirtualObject(QStringLiteral("/StatusNotifierWatcher"), this);
        bus_.registerService(watcherName);
    }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        QVariantList reply;
        if (message.member() == QStringLiteral("RegisterStatusNotifierItem")) {
            const QString service = message.arguments().value(0).toString();
            items_.removeAll(service);
            items_ << service;
            owners_.addWatchedService(service);
        } else if (message.member() == QStringLiteral("Get")) {
            reply << QVariant::fromValue(QDBusVariant(true)); // a host is registered
        }
        connection.send(message.createReply(reply));
        return true;
    }

    [[nodiscard]] QString answer(const QString& command) {
        if (command == QStringLiteral("items")) {
            return QString::number(items_.size());
        }
        if (items_.isEmpty()) {
            return QStringLiteral("no item");
        }
        if (command == QStringLiteral("tooltip")) {
            const QVariant value = property(QStringLiteral("ToolTip"));
            return qdbus_cast<skylet::platform::qt::StatusNotifierToolTip>(value.value<QDBusArgument>())
                .title;
        }
        if (command == QStringLiteral("menu")) {
            return openMenu();
        }
        const auto click = QStringLiteral("click ");
        return command.startsWith(click) ? choose(command.mid(click.size())) : QStringLiteral("what?");
    }

  private:
    [[nodiscard]] QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                                    const QVariantList& arguments) {
        auto message = QDBusMessage::createMethodCall(items_.first(), path, interface, method);
        message.setArguments(arguments);
        return bus_.call(message);
    }
    [[nodiscard]] QVariant property(const QString& name) {
        const auto reply = call(QStringLiteral("/StatusNotifierItem"), propertiesInterface,
                                QStringLiteral("Get"), {itemInterface, name});
        return reply.arguments().value(0).value<QDBusVariant>().variant();
    }
    [[nodiscard]] QDBusMessage callMenu(const QString& method, const QVariantList& arguments) {
        const auto path = property(QStringLiteral("Menu")).value<QDBusObjectPath>().path();
        return call(path, menuInterface, method, arguments);
    }
    [[nodiscard]] QString openMenu() {
        static_cast<void>(callMenu(QStringLiteral("AboutToShow"), {0}));
        const auto reply = callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()});
        menu_ = qdbus_cast<DBusMenuLayout>(reply.arguments().value(1).value<QDBusArgument>());
        QStringList items;
        for (const DBusMenuLayout& item : menu_.children) {
            items << textOf(item);
        }
        return items.join(u'|');
    }
    [[nodiscard]] static QString labelOf(const DBusMenuLayout& item) {
        return item.properties.value(QStringLiteral("label"))
            .toString()
            .replace(QStringLiteral("__"), QStringLiteral("_"));
    }
    [[nodiscard]] static QString textOf(const DBusMenuLayout& item) {
        if (item.properties.value(QStringLiteral("type")).toString() == QStringLiteral("separator")) {
            return QStringLiteral("-");
        }
        const bool isOn = item.properties.value(QStringLiteral("toggle-state")).toInt() == 1;
        const QString text = (isOn ? QStringLiteral("*") : QString()) + labelOf(item);
        return item.properties.value(QStringLiteral("enabled"), true).toBool() ? text : u'(' + text + u')';
    }
    [[nodiscard]] QString choose(const QString& label) {
        for (const DBusMenuLayout& item : menu_.children) {
            if (labelOf(item) == label) {
                const auto reply =
                    callMenu(QStringLiteral("Event"), {item.id, QStringLiteral("clicked"),
                                                       QVariant::fromValue(QDBusVariant(QString())), 0U});
                return reply.type() == QDBusMessage::ReplyMessage ? QStringLiteral("ok")
                                                                  : reply.errorMessage();
            }
        }
        return QStringLiteral("no such item");
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
