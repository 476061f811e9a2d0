#include "AccessibleTree.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QVariantMap>

namespace skylet::desktop {
namespace {

constexpr int milliseconds = 5000;
constexpr int deepest = 24;
constexpr unsigned coordinatesOfScreen = 0;
const auto accessible = QStringLiteral("org.a11y.atspi.Accessible");
const auto properties = QStringLiteral("org.freedesktop.DBus.Properties");

} // namespace

struct AccessibleTree::Reference {
    QString service;
    QString path;

    [[nodiscard]] QVariantList ask(const QDBusConnection& bus, const QString& interface,
                                   const QString& method, const QVariantList& arguments = {}) const {
        auto message = QDBusMessage::createMethodCall(service, path, interface, method);
        message.setArguments(arguments);
        const QDBusMessage answer = bus.call(message, QDBus::Block, milliseconds);
        return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments() : QVariantList();
    }
    [[nodiscard]] std::string text(const QDBusConnection& bus, const QString& property) const {
        const auto answer = ask(bus, properties, QStringLiteral("Get"), {accessible, property});
        return answer.isEmpty()
                   ? std::string()
                   : answer.constFirst().value<QDBusVariant>().variant().toString().toStdString();
    }
};

AccessibleTree::AccessibleTree(VirtualDesktop& desktop)
    : session_(QDBusConnection::connectToBus(
          QString::fromStdString(desktop.environment().at("DBUS_SESSION_BUS_ADDRESS")),
          QStringLiteral("test-session")))
    , bus_(QStringLiteral("test-none")) {
    const Reference bus{QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus")};
    const auto address = bus.ask(session_, QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress"));
    if (!address.isEmpty()) {
        bus_ = QDBusConnection::connectToBus(address.constFirst().toString(),
                                             QStringLiteral("test-accessibility"));
    }
}

AccessibleTree::~AccessibleTree() {
    QDBusConnection::disconnectFromBus(QStringLiteral("test-accessibility"));
    QDBusConnection::disconnectFromBus(QStringLiteral("test-session"));
}

std::vector<AccessibleTree::Reference> AccessibleTree::children(const Reference& parent) const {
    std::vector<Reference> result;
    const auto answer = parent.ask(bus_, accessible, QStringLiteral("GetChildren"));
    if (answer.isEmpty() || answer.constFirst().userType() != qMetaTypeId<QDBusArgument>()) {
        return result;
    }
    const auto list = answer.constFirst().value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        QString service;
        QDBusObjectPath path;
        list.beginStructure();
        list >> service >> path;
        list.endStructure();
        result.push_back({service, path.path()});
    }
    list.endArray();
    return result;
}

AccessibleNode AccessibleTree::read(const Reference& reference) const {
    AccessibleNode node;
    node.name = reference.text(bus_, QStringLiteral("Name"));
    node.description = reference.text(bus_, QStringLiteral("Description"));
    const auto role = reference.ask(bus_, accessible, QStringLiteral("GetRole"));
    node.role = role.isEmpty() ? 0 : role.constFirst().toUInt();
    const auto states = reference.ask(bus_, accessible, QStringLiteral("GetState"));
    if (!states.isEmpty()) {
        for (const uint word : qdbus_cast<QList<uint>>(states.constFirst())) {
            node.states.push_back(word);
        }
    }
    const auto extents = reference.ask(bus_, QStringLiteral("org.a11y.atspi.Component"),
                                       QStringLiteral("GetExtents"), {coordinatesOfScreen});
    if (!extents.isEmpty() && extents.constFirst().userType() == qMetaTypeId<QDBusArgument>()) {
        const auto place = extents.constFirst().value<QDBusArgument>();
        place.beginStructure();
        place >> node.place.x >> node.place.y >> node.place.width >> node.place.height;
        place.endStructure();
    }
    return node;
}

void AccessibleTree::collect(const Reference& parent, std::vector<AccessibleNode>& nodes, int depth) const {
    for (const Reference& child : children(parent)) {
        AccessibleNode node = read(child);
        if (!node.is(stateShowing)) {
            continue;
        }
        nodes.push_back(std::move(node));
        if (depth < deepest) {
            collect(child, nodes, depth + 1);
        }
    }
}

std::vector<AccessibleNode> AccessibleTree::shown(const std::string& program) const {
    std::vector<AccessibleNode> nodes;
    const Reference registry{QStringLiteral("org.a11y.atspi.Registry"),
                             QStringLiteral("/org/a11y/atspi/accessible/root")};
    for (const Reference& application : children(registry)) {
        if (application.text(bus_, QStringLiteral("Name")) == program) {
            collect(application, nodes, 0);
        }
    }
    return nodes;
}

std::optional<AccessibleNode> AccessibleTree::find(const std::string& program,
                                                   const std::string& name) const {
    std::optional<AccessibleNode> found;
    for (const AccessibleNode& node : shown(program)) {
        if (node.name == name && (!found || node.is(stateFocusable))) {
            found = node;
        }
    }
    return found;
}

bool AccessibleTree::perform(const std::string& action) const {
    const bool isActivation = action.empty();
    auto message = QDBusMessage::createMethodCall(
        QStringLiteral("com.corvane.skylet"), QStringLiteral("/com/corvane/skylet"),
        QStringLiteral("org.freedesktop.Application"),
        isActivation ? QStringLiteral("Activate") : QStringLiteral("ActivateAction"));
    if (isActivation) {
        message << QVariantMap();
    } else {
        message << QString::fromStdString(action) << QVariantList() << QVariantMap();
    }
    return session_.call(message, QDBus::Block, milliseconds).type() == QDBusMessage::ReplyMessage;
}

} // namespace skylet::desktop
