#include "platform/qt/DBusMenu.h"

#include "platform/qt/DBusProperties.h"

#include <algorithm>
#include <utility>

namespace skylet::platform::qt {

namespace {

const auto menuInterface = QStringLiteral("com.canonical.dbusmenu");
constexpr int rootId = 0;
constexpr uint protocolVersion = 3;

// An underscore marks a mnemonic, two of them are one underscore.
QString labelOf(const std::string& title) {
    return QString::fromStdString(title).replace(u'_', QStringLiteral("__"));
}

DBusShortcut shortcutOf(const std::string& keyEquivalent) {
    const QString key = QString::fromStdString(keyEquivalent);
    QStringList keys{QStringLiteral("Control")};
    if (key != key.toLower()) {
        keys << QStringLiteral("Shift");
    }
    return {keys << key.toUpper()};
}

QVariantMap propertiesOf(const MenuItem& item) {
    if (item.isSeparator) {
        return {{QStringLiteral("type"), QStringLiteral("separator")}};
    }
    QVariantMap properties{{QStringLiteral("label"), labelOf(item.title)}};
    if (!item.isEnabled) {
        properties[QStringLiteral("enabled")] = false;
    }
    if (item.isOn) {
        properties[QStringLiteral("toggle-type")] = QStringLiteral("checkmark");
        properties[QStringLiteral("toggle-state")] = 1;
    }
    if (!item.keyEquivalent.empty()) {
        properties[QStringLiteral("shortcut")] = QVariant::fromValue(shortcutOf(item.keyEquivalent));
    }
    return properties;
}

// An empty list of names asks for all of them.
QVariantMap selected(const QVariantMap& properties, const QStringList& names) {
    if (names.isEmpty()) {
        return properties;
    }
    QVariantMap result;
    for (const QString& name : names) {
        if (properties.contains(name)) {
            result[name] = properties[name];
        }
    }
    return result;
}

QVariantMap rootProperties() {
    return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
}

QVariantMap menuProperties() {
    return {{QStringLiteral("Version"), protocolVersion},
            {QStringLiteral("TextDirection"), QStringLiteral("ltr")},
            {QStringLiteral("Status"), QStringLiteral("normal")},
            {QStringLiteral("IconThemePath"), QStringList()}};
}

QList<int> idsIn(const QVariant& argument) {
    return qdbus_cast<QList<int>>(argument);
}

} // namespace

DBusMenu::DBusMenu(QDBusConnection bus, MainQueue& mainQueue, QString path, StatusBar::MenuSource source)
    : bus_(std::move(bus))
    , mainQueue_(mainQueue)
    , path_(std::move(path))
    , source_(std::move(source)) {
    registerDBusMenuTypes();
    if (bus_.isConnected()) {
        bus_.registerVirtualObject(path_, this);
    }
}

DBusMenu::~DBusMenu() {
    if (bus_.isConnected()) {
        bus_.unregisterObject(path_);
    }
}

bool DBusMenu::update() {
    std::map<std::string, Item> before;
    std::vector<std::pair<std::string, QVariantMap>> shown;
    for (auto& [identity, item] : items_) {
        shown.emplace_back(identity, item.properties);
        before.emplace(identity, std::move(item));
    }
    items_.clear();
    for (MenuItem& item : source_()) {
        const auto known = before.find(item.identity);
        const int id = known != before.end() ? known->second.id : ++lastId_;
        if (known != before.end()) {
            before.erase(known);
        }
        QVariantMap properties = propertiesOf(item);
        items_.emplace_back(std::move(item.identity),
                            Item{id, std::move(properties),
                                 item.isEnabled ? std::move(item.action) : std::function<void()>()});
    }
    const bool isSame = revision_ > 0 && std::ranges::equal(shown, items_, [](const auto& a, const auto& b) {
                            return a.first == b.first && a.second == b.second.properties;
                        });
    if (isSame) {
        return false;
    }
    retired_.clear();
    for (auto& [identity, item] : before) {
        retired_.emplace(item.id, std::move(item.action));
    }
    ++revision_;
    auto changed = QDBusMessage::createSignal(path_, menuInterface, QStringLiteral("LayoutUpdated"));
    changed << revision_ << rootId;
    bus_.send(changed);
    return true;
}

void DBusMenu::updateIfNeverBuilt() {
    if (revision_ == 0) {
        update();
    }
}

const DBusMenu::Item* DBusMenu::find(int id) const {
    const auto it = std::ranges::find_if(items_, [id](const auto& item) { return item.second.id == id; });
    return it == items_.end() ? nullptr : &it->second;
}

QVariantList DBusMenu::layout(const QVariantList& arguments) {
    updateIfNeverBuilt();
    const int parent = arguments[0].toInt();
    const int depth = arguments[1].toInt();
    const QStringList names = arguments[2].toStringList();
    DBusMenuLayout root{.id = parent, .properties = {}, .children = {}};
    if (parent == rootId) {
        root.properties = selected(rootProperties(), names);
        if (depth != 0) {
            for (const auto& [identity, item] : items_) {
                root.children << DBusMenuLayout{item.id, selected(item.properties, names), {}};
            }
        }
    } else if (const Item* item = find(parent)) {
        root.properties = selected(item->properties, names);
    }
    return {revision_, QVariant::fromValue(root)};
}

QVariantList DBusMenu::groupProperties(const QVariantList& arguments) {
    updateIfNeverBuilt();
    const QList<int> ids = idsIn(arguments[0]);
    QList<DBusMenuItem> result;
    const auto add = [&](int id, const QVariantMap& properties) {
        if (ids.isEmpty() || ids.contains(id)) {
            result << DBusMenuItem{id, selected(properties, arguments[1].toStringList())};
        }
    };
    add(rootId, rootProperties());
    for (const auto& [identity, item] : items_) {
        add(item.id, item.properties);
    }
    return {QVariant::fromValue(result)};
}

std::optional<QVariantList> DBusMenu::property(int id, const QString& name) {
    updateIfNeverBuilt();
    const Item* item = find(id);
    if (!item || !item->properties.contains(name)) {
        return std::nullopt;
    }
    return QVariantList{QVariant::fromValue(QDBusVariant(item->properties[name]))};
}

QVariantList DBusMenu::aboutToShowGroup(const QVariantList& arguments) {
    const QList<int> ids = idsIn(arguments[0]);
    QList<int> changed;
    QList<int> unknown;
    for (const int id : ids) {
        if (id == rootId && update()) {
            changed << id;
        } else if (id != rootId && !find(id)) {
            unknown << id;
        }
    }
    return {QVariant::fromValue(changed), QVariant::fromValue(unknown)};
}

QVariantList DBusMenu::eventGroup(const QVariantList& arguments) {
    const auto events = qdbus_cast<QList<DBusMenuEvent>>(arguments[0]);
    QList<int> unknown;
    for (const DBusMenuEvent& event : events) {
        if (!handleEvent(event.id, event.name)) {
            unknown << event.id;
        }
    }
    return {QVariant::fromValue(unknown)};
}

bool DBusMenu::handleEvent(int id, const QString& event) {
    const Item* item = find(id);
    const auto retired = retired_.find(id);
    if (id != rootId && !item && retired == retired_.end()) {
        return false;
    }
    std::function<void()> action;
    if (item) {
        action = item->action;
    } else if (retired != retired_.end()) {
        action = retired->second;
    }
    if (event == QStringLiteral("clicked") && action) {
        // The host waits for the answer, and the action may remove this menu.
        mainQueue_.async(std::move(action));
    }
    return true;
}

std::optional<QVariantList> DBusMenu::answer(const QDBusMessage& message) {
    const QString method = message.member() + u'(' + message.signature() + u')';
    const QVariantList arguments = message.arguments();
    if (method == QStringLiteral("GetLayout(iias)")) {
        return layout(arguments);
    }
    if (method == QStringLiteral("GetGroupProperties(aias)")) {
        return groupProperties(arguments);
    }
    if (method == QStringLiteral("GetProperty(is)")) {
        return property(arguments[0].toInt(), arguments[1].toString());
    }
    if (method == QStringLiteral("AboutToShow(i)")) {
        return QVariantList{arguments[0].toInt() == rootId && update()};
    }
    if (method == QStringLiteral("AboutToShowGroup(ai)")) {
        return aboutToShowGroup(arguments);
    }
    if (method == QStringLiteral("Event(isvu)") &&
        handleEvent(arguments[0].toInt(), arguments[1].toString())) {
        return QVariantList{};
    }
    if (method == QStringLiteral("EventGroup(a(isvu))")) {
        return eventGroup(arguments);
    }
    return std::nullopt;
}

bool DBusMenu::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    std::optional<QVariantList> reply;
    if (message.interface() == QStringLiteral("org.freedesktop.DBus.Properties")) {
        reply = answerProperties(message, menuInterface, menuProperties());
    } else if (message.interface().isEmpty() || message.interface() == menuInterface) {
        reply = answer(message);
    }
    if (reply) {
        connection.send(message.createReply(*reply));
    }
    return reply.has_value();
}

} // namespace skylet::platform::qt
