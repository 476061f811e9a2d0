#include "platform/qt/SingleInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace skylet::platform::qt {

namespace {

constexpr int activationMilliseconds = 2000;
const auto applicationInterface = QStringLiteral("org.freedesktop.Application");

} // namespace

SingleInstance::SingleInstance(QDBusConnection sessionBus, QString name, QString path,
                               std::function<void()> activated, Perform perform)
    : bus_(std::move(sessionBus))
    , name_(std::move(name))
    , path_(std::move(path))
    , activated_(std::move(activated))
    , perform_(std::move(perform)) {}

SingleInstance::~SingleInstance() {
    if (bus_.isConnected()) {
        if (owned_) {
            bus_.unregisterService(name_);
        }
        bus_.unregisterObject(path_);
    }
}

// The object comes before the name: whoever sees the name may call it at once.
SingleInstance::Result SingleInstance::claim() {
    if (!bus_.isConnected()) {
        return Result::noBus;
    }
    bus_.registerVirtualObject(path_, this);
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        bus_.interface()->registerService(name_, QDBusConnectionInterface::DontQueueService,
                                          QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid()) {
        return Result::noBus;
    }
    if (reply.value() == QDBusConnectionInterface::ServiceRegistered) {
        owned_ = true;
        return Result::first;
    }
    bus_.unregisterObject(path_);
    activateOther();
    return Result::activated;
}

void SingleInstance::activateOther() {
    auto message =
        QDBusMessage::createMethodCall(name_, path_, applicationInterface, QStringLiteral("Activate"));
    message.setAutoStartService(false);
    message << QVariantMap();
    bus_.call(message, QDBus::Block, activationMilliseconds);
}

QString SingleInstance::introspect(const QString& /*path*/) const {
    return QStringLiteral(R"(  <interface name="org.freedesktop.Application">
    <method name="Activate">
      <arg type="a{sv}" name="platform_data" direction="in"/>
    </method>
    <method name="Open">
      <arg type="as" name="uris" direction="in"/>
      <arg type="a{sv}" name="platform_data" direction="in"/>
    </method>
    <method name="ActivateAction">
      <arg type="s" name="action_name" direction="in"/>
      <arg type="av" name="parameter" direction="in"/>
      <arg type="a{sv}" name="platform_data" direction="in"/>
    </method>
  </interface>
)");
}

bool SingleInstance::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    struct Method {
        QString name;
        QString signature;
    };
    static const Method methods[] = {{QStringLiteral("Activate"), QStringLiteral("a{sv}")},
                                     {QStringLiteral("Open"), QStringLiteral("asa{sv}")},
                                     {QStringLiteral("ActivateAction"), QStringLiteral("sava{sv}")}};
    if (!message.interface().isEmpty() && message.interface() != applicationInterface) {
        return false;
    }
    const bool isKnown = std::ranges::any_of(methods, [&](const Method& method) {
        return message.member() == method.name && message.signature() == method.signature;
    });
    if (isKnown) {
        connection.send(message.createReply());
        // An action that is not known still is an activation.
        const bool isAction = message.member() == QStringLiteral("ActivateAction");
        if (!isAction || !perform_ || !perform_(message.arguments().constFirst().toString())) {
            activated_();
        }
    }
    return isKnown;
}

} // namespace skylet::platform::qt
