#include "platform/qt/StatusNotifierItem.h"

#include "platform/qt/DBusProperties.h"
#include "platform/qt/StatusImageDrawing.h"
#include "platform/qt/StatusNotifierTypes.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QtEndian>

#include <utility>

namespace skylet::platform::qt {

namespace {

const auto itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const auto itemPath = QStringLiteral("/StatusNotifierItem");
const auto menuPath = QStringLiteral("/MenuBar");

QList<StatusNotifierPicture> picturesOf(const StatusImage& image, bool isDark) {
    QList<StatusNotifierPicture> pictures;
    for (const int size : statusIconSizes()) {
        const QImage drawn =
            drawStatusImage(image, {size, size}, isDark).convertToFormat(QImage::Format_ARGB32);
        if (drawn.isNull()) {
            continue;
        }
        QByteArray bytes(drawn.sizeInBytes(), Qt::Uninitialized);
        qToBigEndian<quint32>(drawn.constBits(), drawn.sizeInBytes() / qsizetype{sizeof(quint32)},
                              bytes.data());
        pictures << StatusNotifierPicture{size, size, bytes};
    }
    return pictures;
}

// The library's own calls for this wait for the answer, and end the program when the bus goes meanwhile.
void callBus(const QDBusConnection& bus, const QString& method, const QVariantList& arguments) {
    const auto service = QStringLiteral("org.freedesktop.DBus");
    auto message =
        QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/DBus"), service, method);
    message.setArguments(arguments);
    bus.asyncCall(message);
}

constexpr uint doNotQueue = 4;

} // namespace

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, MainQueue& mainQueue, int number,
                                       StatusBar::MenuSource source, std::function<void()> showMenu)
    : bus_(std::move(bus))
    , mainQueue_(mainQueue)
    , showMenu_(std::move(showMenu))
    , menu_(bus_, mainQueue, menuPath, std::move(source))
    , service_(QStringLiteral("org.kde.StatusNotifierItem-%1-%2")
                   .arg(QCoreApplication::applicationPid())
                   .arg(number)) {
    registerStatusNotifierTypes();
    if (bus_.isConnected()) {
        bus_.registerVirtualObject(itemPath, this);
        callBus(bus_, QStringLiteral("RequestName"), {service_, doNotQueue});
    }
}

StatusNotifierItem::~StatusNotifierItem() {
    if (bus_.isConnected()) {
        callBus(bus_, QStringLiteral("ReleaseName"), {service_});
        bus_.unregisterObject(itemPath);
    }
}

void StatusNotifierItem::setImage(const StatusImage& image, bool isDark) {
    name_ = QString::fromStdString(image.symbol.accessibilityDescription);
    pictures_ = QVariant::fromValue(picturesOf(image, isDark));
    tell(QStringLiteral("NewIcon"));
}

void StatusNotifierItem::setToolTip(const QString& text) {
    toolTip_ = text;
    tell(QStringLiteral("NewToolTip"));
}

void StatusNotifierItem::tell(const QString& signal) {
    bus_.send(QDBusMessage::createSignal(itemPath, itemInterface, signal));
}

QVariantMap StatusNotifierItem::properties() const {
    const auto none = QVariant::fromValue(QList<StatusNotifierPicture>());
    return {{QStringLiteral("Category"), QStringLiteral("ApplicationStatus")},
            {QStringLiteral("Id"), QCoreApplication::applicationName()},
            {QStringLiteral("Title"), name_},
            {QStringLiteral("Status"), QStringLiteral("Active")},
            {QStringLiteral("WindowId"), 0},
            {QStringLiteral("IconThemePath"), QString()},
            {QStringLiteral("IconName"), QString()},
            {QStringLiteral("IconPixmap"), pictures_},
            {QStringLiteral("OverlayIconName"), QString()},
            {QStringLiteral("OverlayIconPixmap"), none},
            {QStringLiteral("AttentionIconName"), QString()},
            {QStringLiteral("AttentionIconPixmap"), none},
            {QStringLiteral("AttentionMovieName"), QString()},
            {QStringLiteral("ToolTip"), QVariant::fromValue(StatusNotifierToolTip{{}, {}, toolTip_, {}})},
            {QStringLiteral("ItemIsMenu"), true},
            {QStringLiteral("Menu"), QVariant::fromValue(QDBusObjectPath(menuPath))}};
}

bool StatusNotifierItem::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.interface() == QStringLiteral("org.freedesktop.DBus.Properties")) {
        const auto reply = answerProperties(message, itemInterface, properties());
        if (reply) {
            connection.send(message.createReply(*reply));
        }
        return reply.has_value();
    }
    if (!message.interface().isEmpty() && message.interface() != itemInterface) {
        return false;
    }
    const QString method = message.member() + u'(' + message.signature() + u')';
    const bool asksForMenu = method == QStringLiteral("Activate(ii)") ||
                             method == QStringLiteral("SecondaryActivate(ii)") ||
                             method == QStringLiteral("ContextMenu(ii)");
    if (!asksForMenu && method != QStringLiteral("Scroll(is)")) {
        return false;
    }
    connection.send(message.createReply());
    if (asksForMenu) {
        // Opening a menu takes its time, and may end this item.
        mainQueue_.async(showMenu_);
    }
    return true;
}

QString StatusNotifierItem::introspect(const QString& /*path*/) const {
    return QStringLiteral(R"xml(  <interface name="org.kde.StatusNotifierItem">
    <property name="Category" type="s" access="read"/>
    <property name="Id" type="s" access="read"/>
    <property name="Title" type="s" access="read"/>
    <property name="Status" type="s" access="read"/>
    <property name="WindowId" type="i" access="read"/>
    <property name="IconThemePath" type="s" access="read"/>
    <property name="IconName" type="s" access="read"/>
    <property name="IconPixmap" type="a(iiay)" access="read"/>
    <property name="OverlayIconName" type="s" access="read"/>
    <property name="OverlayIconPixmap" type="a(iiay)" access="read"/>
    <property name="AttentionIconName" type="s" access="read"/>
    <property name="AttentionIconPixmap" type="a(iiay)" access="read"/>
    <property name="AttentionMovieName" type="s" access="read"/>
    <property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
    <property name="ItemIsMenu" type="b" access="read"/>
    <property name="Menu" type="o" access="read"/>
    <method name="ContextMenu">
      <arg name="x" type="i" direction="in"/>
      <arg name="y" type="i" direction="in"/>
    </method>
    <method name="Activate">
      <arg name="x" type="i" direction="in"/>
      <arg name="y" type="i" direction="in"/>
    </method>
    <method name="SecondaryActivate">
      <arg name="x" type="i" direction="in"/>
      <arg name="y" type="i" direction="in"/>
    </method>
    <method name="Scroll">
      <arg name="delta" type="i" direction="in"/>
      <arg name="orientation" type="s" direction="in"/>
    </method>
    <signal name="NewTitle"/>
    <signal name="NewIcon"/>
    <signal name="NewAttentionIcon"/>
    <signal name="NewOverlayIcon"/>
    <signal name="NewToolTip"/>
    <signal name="NewStatus">
      <arg name="status" type="s"/>
    </signal>
  </interface>
)xml");
}

} // namespace skylet::platform::qt
