#include "platform/qt/StatusNotifierTypes.h"

#include <QDBusMetaType>

namespace skylet::platform::qt {

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPicture& picture) {
    argument.beginStructure();
    argument << picture.width << picture.height << picture.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPicture& picture) {
    argument.beginStructure();
    argument >> picture.width >> picture.height >> picture.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.pictures << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.pictures >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

void registerStatusNotifierTypes() {
    qDBusRegisterMetaType<StatusNotifierPicture>();
    qDBusRegisterMetaType<QList<StatusNotifierPicture>>();
    qDBusRegisterMetaType<StatusNotifierToolTip>();
}

} // namespace skylet::platform::qt
