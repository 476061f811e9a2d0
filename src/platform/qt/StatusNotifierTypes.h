// The structures of the status item protocol on the message bus (org.kde.StatusNotifierItem).
#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>

namespace skylet::platform::qt {

// A picture as hosts take it: ARGB, alpha not multiplied in, most significant byte first.
struct StatusNotifierPicture { // (iiay)
    int width = 0;
    int height = 0;
    QByteArray bytes;
};

struct StatusNotifierToolTip { // (sa(iiay)ss)
    QString iconName;
    QList<StatusNotifierPicture> pictures;
    QString title;
    QString text;
};

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPicture& picture);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPicture& picture);
QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip);

// Makes the structures known to the message bus library. May be called again.
void registerStatusNotifierTypes();

} // namespace skylet::platform::qt

Q_DECLARE_METATYPE(skylet::platform::qt::StatusNotifierPicture)
Q_DECLARE_METATYPE(skylet::platform::qt::StatusNotifierToolTip)
