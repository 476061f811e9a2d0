#include "platform/qt/DBusMenuTypes.h"

#include <QDBusMetaType>

namespace skylet::platform::qt {

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItem& item) {
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItem& item) {
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItemKeys& item) {
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItemKeys& item) {
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayout& layout) {
    argument.beginStructure();
    argument << layout.id << layout.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const DBusMenuLayout& child : layout.children) {
        argument << QDBusVariant(QVariant::fromValue(child));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayout& layout) {
    layout.children.clear();
    argument.beginStructure();
    argument >> layout.id >> layout.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        layout.children << qdbus_cast<DBusMenuLayout>(child.variant().value<QDBusArgument>());
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event) {
    argument.beginStructure();
    argument << event.id << event.name << event.data << event.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event) {
    argument.beginStructure();
    argument >> event.id >> event.name >> event.data >> event.timestamp;
    argument.endStructure();
    return argument;
}

void registerDBusMenuTypes() {
    qDBusRegisterMetaType<DBusMenuItem>();
    qDBusRegisterMetaType<QList<DBusMenuItem>>();
    qDBusRegisterMetaType<DBusMenuItemKeys>();
    qDBusRegisterMetaType<QList<DBusMenuItemKeys>>();
    qDBusRegisterMetaType<DBusMenuLayout>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<QList<DBusMenuEvent>>();
    qDBusRegisterMetaType<DBusShortcut>();
}

} // namespace skylet::platform::qt
