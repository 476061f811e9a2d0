#include "platform/PrivateServer.h"
#include "platform/Waiting.h"
#include "platform/qt/DBusProperties.h"
#include "platform/qt/DBusSignal.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/StatusNotifierItem.h"
#include "platform/qt/StatusNotifierTypes.h"
#include "platform/qt/StatusNotifierWatcher.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace skylet::test {

namespace {

using platform::qt::StatusNotifierItem;
using platform::qt::StatusNotifierPicture;
using platform::qt::StatusNotifierWatcher;
using State = StatusNotifierWatcher::State;

const auto watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto watcherPath = QStringLiteral("/StatusNotifierWatcher");
const auto itemInterface = QStringLiteral("org.kde.StatusNotifierItem");

// The watcher of a panel.
class FakeWatcher : public QDBusVirtualObject {
  public:
    explicit FakeWatcher(const QDBusConnection& bus) : bus_(bus) {
        bus_.registerVirtualObject(watcherPath, this);
        bus_.registerService(watcherName);
    }
    FakeWatcher(const FakeWatcher&) = delete;
    FakeWatcher& operator=(const FakeWatcher&) = delete;
    ~FakeWatcher() override {
        bus_.unregisterService(watcherName);
        bus_.unregisterObject(watcherPath);
    }

    bool host = true;
    QStringList items; // as they registered

    void announce(const QString& signal) {
        bus_.send(QDBusMessage::createSignal(watcherPath, watcherName, signal));
    }
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        QVariantList reply;
        if (message.member() == QStringLiteral("RegisterStatusNotifierItem")) {
            items << message.arguments().value(0).toString();
        } else {
            reply = platform::qt::answerProperties(message, watcherName,
                                                   {{QStringLiteral("IsStatusNotifierHostRegistered"), host}})
                        .value_or(QVariantList());
        }
        connection.send(message.createReply(reply));
        return true;
    }

  private:
    QDBusConnection bus_;
};

class StatusNotifierTest : public testing::Test {
  protected:
    StatusNotifierTest() : ours_(connect(QStringLiteral("ours"))), panel_(connect(QStringLiteral("panel"))) {}
    ~StatusNotifierTest() override {
        QDBusConnection::disconnectFromBus(QStringLiteral("ours"));
        QDBusConnection::disconnectFromBus(QStringLiteral("panel"));
    }
    // The name is asked for without waiting.
    [[nodiscard]] bool isNamed(const StatusNotifierItem& item) const {
        return eventually([&] { return panel_.interface()->isServiceRegistered(item.service()).value(); });
    }
    [[nodiscard]] QDBusConnection connect(const QString& name) const {
        return QDBusConnection::connectToBus(QString::fromStdString(bus_.address()), name);
    }

    PrivateBus bus_;
    platform::qt::QtMainQueue mainQueue_;
    QDBusConnection ours_;
    QDBusConnection panel_;
};

TEST_F(StatusNotifierTest, FollowsHostsThatComeAndGo) {
    int changes = 0;
    StatusNotifierWatcher watcher(ours_, [&] { ++changes; });
    EXPECT_EQ(watcher.state(), State::unknown);
    const auto becomes = [&](State state) {
        return eventually([&] { return watcher.state() == state; });
    };
    EXPECT_TRUE(becomes(State::noHost)) << "no watcher";
    EXPECT_EQ(changes, 1);

    auto panel = std::make_unique<FakeWatcher>(panel_);
    EXPECT_TRUE(becomes(State::host));
    panel->host = false;
    panel->announce(QStringLiteral("StatusNotifierHostUnregistered"));
    EXPECT_TRUE(becomes(State::noHost));
    panel->host = true;
    panel->announce(QStringLiteral("StatusNotifierHostRegistered"));
    EXPECT_TRUE(becomes(State::host));
    // The watcher stays, its host is replaced: items have to be announced again.
    const int before = changes;
    panel->announce(QStringLiteral("StatusNotifierHostRegistered"));
    EXPECT_TRUE(eventually([&] { return changes > before; }));
    panel.reset();
    EXPECT_TRUE(becomes(State::noHost));
    panel = std::make_unique<FakeWatcher>(panel_);
    EXPECT_TRUE(becomes(State::host));
    watcher.registerItem(QStringLiteral("org.kde.StatusNotifierItem-1-1"));
    EXPECT_TRUE(eventually(
        [&] { return panel->items == QStringList{QStringLiteral("org.kde.StatusNotifierItem-1-1")}; }));
}

TEST_F(StatusNotifierTest, WithoutABusThereIsNoHost) {
    const StatusNotifierWatcher watcher(QDBusConnection(QStringLiteral("none")), [] {});
    EXPECT_EQ(watcher.state(), State::noHost);
}

TEST_F(StatusNotifierTest, ItemShowsPicturesOfEverySizeAndItsToolTip) {
    auto item = std::make_unique<StatusNotifierItem>(
        ours_, mainQueue_, 3, [] { return platform::Menu(); }, [] {});
    ASSERT_TRUE(isNamed(*item));
    int redrawn = 0;
    const platform::qt::DBusSignal signal(
        panel_,
        {item->service(), QStringLiteral("/StatusNotifierItem"), itemInterface, QStringLiteral("NewIcon")},
        [&](const QDBusMessage&) { ++redrawn; });
    EXPECT_TRUE(item->service().endsWith(QStringLiteral("-3")));
    item->setImage({.symbol = {.name = "pin.fill",
                               .accessibilityDescription = "Skylet",
                               .pointSize = 16,
                               .weight = platform::SymbolWeight::semibold},
                    .tint = {{1, 0, 0}, {1, 0, 0}},
                    .size = {12, 16},
                    .symbolOrigin = {}},
                   false);
    item->setToolTip(QStringLiteral("Skylet — 2 finestre fissate"));
    EXPECT_TRUE(eventually([&] { return redrawn == 1; }));

    auto message = QDBusMessage::createMethodCall(item->service(), QStringLiteral("/StatusNotifierItem"),
                                                  QStringLiteral("org.freedesktop.DBus.Properties"),
                                                  QStringLiteral("GetAll"));
    message << itemInterface;
    const QDBusPendingCall pending = panel_.asyncCall(message);
    ASSERT_TRUE(eventually([&] { return pending.isFinished(); }));
    const auto properties =
        qdbus_cast<QVariantMap>(pending.reply().arguments().value(0).value<QDBusArgument>());
    EXPECT_EQ(properties.value(QStringLiteral("Title")).toString(), QStringLiteral("Skylet"));
    EXPECT_EQ(properties.value(QStringLiteral("Menu")).value<QDBusObjectPath>().path(),
              QStringLiteral("/MenuBar"));
    EXPECT_TRUE(properties.value(QStringLiteral("ItemIsMenu")).toBool());
    const auto toolTip = qdbus_cast<platform::qt::StatusNotifierToolTip>(
        properties.value(QStringLiteral("ToolTip")).value<QDBusArgument>());
    EXPECT_EQ(toolTip.title, QStringLiteral("Skylet — 2 finestre fissate"));
    const auto pictures = qdbus_cast<QList<StatusNotifierPicture>>(
        properties.value(QStringLiteral("IconPixmap")).value<QDBusArgument>());
    ASSERT_EQ(pictures.size(), 6);
    for (const StatusNotifierPicture& picture : pictures) {
        ASSERT_EQ(picture.bytes.size(), 4 * picture.width * picture.height);
        const auto offset = 4 * (picture.height / 3 * picture.width + picture.width / 2);
        EXPECT_EQ(picture.bytes.mid(offset, 4), QByteArray("\xFF\xFF\0\0", 4))
            << picture.width << ": opaque red";
    }
    const QString service = item->service();
    item.reset();
    EXPECT_TRUE(eventually([&] { return !panel_.interface()->isServiceRegistered(service).value(); }));
}

TEST_F(StatusNotifierTest, HostsThatOnlyTellOfClicksGetTheMenuFromUs) {
    int shown = 0;
    const StatusNotifierItem item(
        ours_, mainQueue_, 1, [] { return platform::Menu(); }, [&] { ++shown; });
    ASSERT_TRUE(isNamed(item));
    int expected = 0;
    for (const char* method : {"Activate", "SecondaryActivate", "ContextMenu", "Unknown"}) {
        auto message = QDBusMessage::createMethodCall(item.service(), QStringLiteral("/StatusNotifierItem"),
                                                      itemInterface, QString::fromLatin1(method));
        message << 10 << 10;
        const QDBusPendingCall pending = panel_.asyncCall(message);
        ASSERT_TRUE(eventually([&] { return pending.isFinished(); }));
        expected += pending.isError() ? 0 : 1;
        EXPECT_TRUE(eventually([&] { return shown == expected; }));
    }
    EXPECT_EQ(shown, 3);
}

} // namespace

} // namespace skylet::test
