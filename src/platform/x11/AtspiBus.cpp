#include "platform/x11/AtspiBus.h"

#include "platform/Accessibility.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QUuid>

#include <algorithm>
#include <set>
#include <utility>

namespace skylet::platform::x11 {

namespace {

constexpr int answerMilliseconds = 250;
// How long nobody asks an application that did not answer.
constexpr std::chrono::seconds giveUpTime(2);
// As many as even a slow application answers within the time for one: it gets them all at once.
constexpr std::size_t callsAtOnce = 128;
constexpr std::size_t maximumGivenUp = 64;

QString atspi(const char* interface) {
    return QStringLiteral("org.a11y.atspi.") + QLatin1String(interface);
}

QDBusMessage methodCall(const QString& service, const QString& path, const QString& interface,
                        const QString& member, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, member);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

bool isReply(const QDBusMessage& message, const char* signature) {
    return message.type() == QDBusMessage::ReplyMessage && message.signature() == QLatin1String(signature);
}

QDBusArgument firstArgument(const QDBusMessage& message) {
    return message.arguments().constFirst().value<QDBusArgument>();
}

QVariant propertyValue(const QDBusMessage& reply) {
    return isReply(reply, "v") ? reply.arguments().constFirst().value<QDBusVariant>().variant() : QVariant();
}

} // namespace

namespace AtspiReply {

std::optional<std::vector<AtspiRef>> children(const QDBusMessage& reply) {
    if (!isReply(reply, "a(so)")) {
        return std::nullopt;
    }
    std::vector<AtspiRef> result;
    const QDBusArgument list = firstArgument(reply);
    list.beginArray();
    while (!list.atEnd()) {
        QString bus;
        QDBusObjectPath path;
        list.beginStructure();
        list >> bus >> path;
        list.endStructure();
        // Toolkits list children that are gone as a null object.
        if (!bus.isEmpty() && path.path() != QStringLiteral("/org/a11y/atspi/null")) {
            result.push_back({bus, path.path()});
        }
    }
    list.endArray();
    return result;
}

std::optional<std::uint32_t> number(const QDBusMessage& reply) {
    if (!isReply(reply, "u")) {
        return std::nullopt;
    }
    return reply.arguments().constFirst().toUInt();
}

std::optional<std::uint64_t> states(const QDBusMessage& reply) {
    if (!isReply(reply, "au")) {
        return std::nullopt;
    }
    std::uint64_t result = 0;
    int shift = 0;
    const QDBusArgument words = firstArgument(reply);
    words.beginArray();
    while (!words.atEnd()) {
        std::uint32_t word = 0;
        words >> word;
        if (shift < 64) {
            result |= std::uint64_t{word} << shift;
        }
        shift += 32;
    }
    words.endArray();
    return result;
}

std::optional<AtspiExtents> extents(const QDBusMessage& reply) {
    if (!isReply(reply, "(iiii)")) {
        return std::nullopt;
    }
    AtspiExtents result;
    const QDBusArgument values = firstArgument(reply);
    values.beginStructure();
    values >> result.x >> result.y >> result.width >> result.height;
    values.endStructure();
    return result;
}

std::optional<double> real(const QDBusMessage& reply) {
    const QVariant value = propertyValue(reply);
    bool isNumber = false;
    const double result = value.toDouble(&isNumber);
    return isNumber && qIsFinite(result) ? std::optional(result) : std::nullopt;
}

std::optional<QString> text(const QDBusMessage& reply) {
    const QVariant value = propertyValue(reply);
    return value.userType() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt;
}

int error(const QDBusMessage& reply) {
    if (reply.type() == QDBusMessage::ReplyMessage) {
        return AXError::success;
    }
    switch (QDBusError(reply).type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return AXError::cannotComplete;
    case QDBusError::UnknownObject:
    case QDBusError::ServiceUnknown:
    case QDBusError::Disconnected:
        return AXError::invalidUIElement;
    default:
        return AXError::failure;
    }
}

} // namespace AtspiReply

AtspiBus::AtspiBus(QDBusConnection sessionBus)
    : sessionBus_(std::move(sessionBus))
    , name_(QStringLiteral("skylet-accessibility-") + QUuid::createUuid().toString(QUuid::Id128)) {}

AtspiBus::~AtspiBus() {
    disconnect();
}

void AtspiBus::disconnect() {
    if (connection_) {
        connection_.reset();
        QDBusConnection::disconnectFromBus(name_);
    }
}

bool AtspiBus::isReachable() {
    if (connection_ && connection_->isConnected()) {
        return true;
    }
    disconnect();
    givenUp_.clear();
    if (!sessionBus_.isConnected()) {
        return false;
    }
    const QDBusMessage reply =
        sessionBus_.call(methodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                    QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress"), {}),
                         QDBus::Block, answerMilliseconds);
    if (!isReply(reply, "s")) {
        return false;
    }
    connection_ = QDBusConnection::connectToBus(reply.arguments().constFirst().toString(), name_);
    return connection_->isConnected();
}

bool AtspiBus::isGivenUp(const QString& bus) {
    const auto found = givenUp_.find(bus);
    if (found == givenUp_.end()) {
        return false;
    }
    if (std::chrono::steady_clock::now() < found->second) {
        return true;
    }
    givenUp_.erase(found);
    return false;
}

QDBusMessage AtspiBus::call(const QDBusMessage& message) {
    return callAll({message}).front();
}

std::vector<QDBusMessage> AtspiBus::callAll(const std::vector<QDBusMessage>& messages) {
    std::vector<QDBusMessage> replies;
    replies.reserve(messages.size());
    const auto noAnswer = [](const QDBusMessage& message) {
        return message.createErrorReply(QDBusError::NoReply, QStringLiteral("given up"));
    };
    for (std::size_t start = 0; start < messages.size(); start += callsAtOnce) {
        const std::size_t end = std::min(start + callsAtOnce, messages.size());
        std::vector<std::optional<QDBusPendingCall>> pending;
        for (std::size_t i = start; i < end; ++i) {
            const bool skipped = !connection_ || isGivenUp(messages[i].service());
            pending.push_back(skipped
                                  ? std::nullopt
                                  : std::optional(connection_->asyncCall(messages[i], answerMilliseconds)));
        }
        for (std::size_t i = start; i < end; ++i) {
            auto& one = pending[i - start];
            if (!one) {
                replies.push_back(noAnswer(messages[i]));
                continue;
            }
            one->waitForFinished();
            replies.push_back(one->reply());
            if (AtspiReply::error(replies.back()) == AXError::cannotComplete) {
                if (givenUp_.size() >= maximumGivenUp) {
                    givenUp_.clear();
                }
                givenUp_[messages[i].service()] = std::chrono::steady_clock::now() + giveUpTime;
            }
        }
    }
    return replies;
}

QDBusMessage AtspiBus::method(const AtspiRef& element, const char* interface, const char* member,
                              const QVariantList& arguments) {
    return methodCall(element.bus, element.path, atspi(interface), QLatin1String(member), arguments);
}

QDBusMessage AtspiBus::property(const AtspiRef& element, const char* interface, const char* name) {
    return methodCall(element.bus, element.path, QStringLiteral("org.freedesktop.DBus.Properties"),
                      QStringLiteral("Get"), {atspi(interface), QString(QLatin1String(name))});
}

QDBusMessage AtspiBus::setProperty(const AtspiRef& element, const char* interface, const char* name,
                                   double value) {
    return methodCall(
        element.bus, element.path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"),
        {atspi(interface), QString(QLatin1String(name)), QVariant::fromValue(QDBusVariant(value))});
}

QDBusMessage AtspiBus::extents(const AtspiRef& element) {
    constexpr std::uint32_t screenCoordinates = 0;
    return method(element, "Component", "GetExtents", {screenCoordinates});
}

std::vector<AtspiRef> AtspiBus::applications(std::int32_t pid) {
    const AtspiRef root{QStringLiteral("org.a11y.atspi.Registry"),
                        QStringLiteral("/org/a11y/atspi/accessible/root")};
    const auto all = AtspiReply::children(call(method(root, "Accessible", "GetChildren")));
    if (!all) {
        return {};
    }
    // The bus itself knows whose connection it is; nothing is asked of the applications.
    const QString daemon = QStringLiteral("org.freedesktop.DBus");
    std::vector<QDBusMessage> questions;
    for (const AtspiRef& application : *all) {
        questions.push_back(methodCall(daemon, QStringLiteral("/org/freedesktop/DBus"), daemon,
                                       QStringLiteral("GetConnectionUnixProcessID"), {application.bus}));
    }
    const auto answers = callAll(questions);
    std::vector<AtspiRef> result;
    for (std::size_t i = 0; i < answers.size(); ++i) {
        if (AtspiReply::number(answers[i]) == static_cast<std::uint32_t>(pid)) {
            result.push_back((*all)[i]);
        }
    }
    return result;
}

} // namespace skylet::platform::x11
