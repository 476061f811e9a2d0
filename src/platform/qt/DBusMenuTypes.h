// The structures of the menu protocol on the message bus (com.canonical.dbusmenu).
#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QStringList>
#include <QVariantMap>

namespace skylet::platform::qt {

struct DBusMenuItem { // (ia{sv})
    int id = 0;
    QVariantMap properties;
};

struct DBusMenuItemKeys { // (ias)
    int id = 0;
    QStringList properties;
};

struct DBusMenuLayout { // (ia{sv}av)
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayout> children;
};

struct DBusMenuEvent { // (isvu)
    int id = 0;
    QString name;
    QDBusVariant data;
    uint timestamp = 0;
};

using DBusShortcut = QList<QStringList>; // aas

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItem& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItemKeys& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItemKeys& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event);

// Makes the structures known to the message bus library. May be called again.
void registerDBusMenuTypes();

} // namespace skylet::platform::qt

Q_DECLARE_METATYPE(skylet::platform::qt::DBusMenuItem)
Q_DECLARE_METATYPE(skylet::platform::qt::DBusMenuItemKeys)
Q_DECLARE_METATYPE(skylet::platform::qt::DBusMenuLayout)
Q_DECLARE_METATYPE(skylet::platform::qt::DBusMenuEvent)
