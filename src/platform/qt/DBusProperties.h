// Answers to org.freedesktop.DBus.Properties for objects that handle their messages themselves.
#pragma once

#include <QDBusMessage>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace skylet::platform::qt {

// The reply's arguments, or nothing when the message asks for something else.
[[nodiscard]] std::optional<QVariantList>
answerProperties(const QDBusMessage& message, const QString& interface, const QVariantMap& properties);

} // namespace skylet::platform::qt
