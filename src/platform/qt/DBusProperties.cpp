#include "platform/qt/DBusProperties.h"

#include <QDBusVariant>

namespace skylet::platform::qt {

std::optional<QVariantList> answerProperties(const QDBusMessage& message, const QString& interface,
                                             const QVariantMap& properties) {
    const QVariantList arguments = message.arguments();
    const bool isOurs = !arguments.isEmpty() && arguments.first().toString() == interface;
    if (isOurs && message.member() == QStringLiteral("Get") && message.signature() == QStringLiteral("ss")) {
        const auto property = properties.constFind(arguments[1].toString());
        if (property != properties.constEnd()) {
            return QVariantList{QVariant::fromValue(QDBusVariant(*property))};
        }
    }
    if (isOurs && message.member() == QStringLiteral("GetAll") &&
        message.signature() == QStringLiteral("s")) {
        return QVariantList{properties};
    }
    return std::nullopt;
}

} // namespace skylet::platform::qt
