#include "AccessibleTree.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QRect>
#include <QVariantMap>

namespace skylet::desktop {

using namespace Qt::StringLiterals;

namespace {

constexpr int milliseconds = 5000;
constexpr int deepest = 24;
constexpr unsigned coordinatesOfScreen = 0;
const auto accessible = u"org.a11y.atspi.Accessible"_s;

} // namespace

struct AccessibleTree::Reference {
    QString service;
    QString path;

    // The answer's only value; nothing where there is no answer.
    [[nodiscard]] std::optional<QVariant> ask(const QDBusConnection& bus, const QString& interface,
                                              const QString& method,
                                              const QVariantList& arguments = {}) const {
        auto message = QDBusMessage::createMethodCall(service, path, interface, method);
        message.setArguments(arguments);
        const QDBusMessage answer = bus.call(message, QDBus::Block, milliseconds);
        return answer.type() == QDBusMessage::ReplyMessage ? std::optional(answer.arguments().value(0))
                                                           : std::nullopt;
    }
    [[nodiscard]] std::string name(const QDBusConnection& bus) const {
        const auto answer = ask(bus, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {accessible, u"Name"_s});
        return answer ? answer->value<QDBusVariant>().variant().toString().toStdString() : std::string();
    }
};

AccessibleTree::AccessibleTree(VirtualDesktop& desktop)
    : session_(QDBusConnection::connectToBus(
          QString::fromStdString(desktop.environment().at("DBUS_SESSION_BUS_ADDRESS")), u"test-session"_s))
    , bus_(u"test-none"_s) {
    const Reference bus{u"org.a11y.Bus"_s, u"/org/a11y/bus"_s};
    const auto address = bus.ask(session_, u"org.a11y.Bus"_s, u"GetAddress"_s);
    if (address) {
        bus_ = QDBusConnection::connectToBus(address->toString(), u"test-accessibility"_s);
    }
}

AccessibleTree::~AccessibleTree() {
    QDBusConnection::disconnectFromBus(u"test-accessibility"_s);
    QDBusConnection::disconnectFromBus(u"test-session"_s);
}

std::vector<AccessibleTree::Reference> AccessibleTree::children(const Reference& parent) const {
    std::vector<Reference> result;
    const auto answer = parent.ask(bus_, accessible, u"GetChildren"_s);
    if (!answer || answer->userType() != qMetaTypeId<QDBusArgument>()) {
        return result;
    }
    const auto list = answer->value<QDBusArgument>();
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
    const auto ask = [&](const QString& interface, const QString& method,
                         const QVariantList& arguments = {}) {
        return reference.ask(bus_, interface, method, arguments).value_or(QVariant());
    };
    const QRect place =
        qdbus_cast<QRect>(ask(u"org.a11y.atspi.Component"_s, u"GetExtents"_s, {coordinatesOfScreen}));
    return {.name = reference.name(bus_),
            .states = qdbus_cast<QList<uint>>(ask(accessible, u"GetState"_s)),
            .place = {place.x(), place.y(), place.width(), place.height()}};
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
    const Reference registry{u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi/accessible/root"_s};
    for (const Reference& application : children(registry)) {
        if (application.name(bus_) == program) {
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
    const Reference skylet{u"com.corvane.skylet"_s, u"/com/corvane/skylet"_s};
    const auto interface = u"org.freedesktop.Application"_s;
    const QString name = QString::fromStdString(action);
    return action.empty()
               ? skylet.ask(session_, interface, u"Activate"_s, {QVariantMap()}).has_value()
               : skylet.ask(session_, interface, u"ActivateAction"_s, {name, QVariantList(), QVariantMap()})
                     .has_value();
}

} // namespace skylet::desktop
