#include "platform/PrivateServer.h"
#include "platform/qt/DBusProperties.h"
#include "platform/qt/DBusSignal.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/StatusNotifierItem.h"
#include "platform/qt/StatusNotifierTypes.h"
#include "platform/qt/StatusNotifierWatcher.h"

#include <QDBusConnectionInterface>
#include <QDBusObjectPath>

#include <gtest/gtest.h>
#include <memory>

namespace skylet::test {

namespace {

using namespace Qt::StringLiterals;
using namespace platform::qt;
using State = StatusNotifierWatcher::State;

const auto watcherName = u"org.kde.StatusNotifierWatcher"_s;
const auto watcherPath = u"/StatusNotifierWatcher"_s;
const auto itemPath = u"/StatusNotifierItem"_s;
const auto itemInterface = u"org.kde.StatusNotifierItem"_s;

class StatusNotifierTest : public testing::Test {
  protected:
    [[nodiscard]] bool isNamed(const QString& service) const {
        return panel_.interface()->isServiceRegistered(service).value();
    }

    PrivateBus bus_;
    QtMainQueue mainQueue_;
    QDBusConnection ours_ = bus_.connect();
    QDBusConnection panel_ = bus_.connect();
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

    // A panel with a watcher.
    bool host = true;
    QStringList items;
    FakeObject object([&](const QDBusMessage& message) {
        if (message.member() == u"RegisterStatusNotifierItem"_s) {
            items << message.arguments().value(0).toString();
        }
        return answerProperties(message, watcherName, {{u"IsStatusNotifierHostRegistered"_s, host}})
            .value_or(QVariantList());
    });
    panel_.registerVirtualObject(watcherPath, &object);
    panel_.registerService(watcherName);
    EXPECT_TRUE(becomes(State::host));
    const auto announce = [&](bool hostIsThere) {
        host = hostIsThere;
        sendSignal(panel_, watcherPath, watcherName,
                   host ? u"StatusNotifierHostRegistered"_s : u"StatusNotifierHostUnregistered"_s);
    };
    announce(false);
    EXPECT_TRUE(becomes(State::noHost));
    announce(true);
    EXPECT_TRUE(becomes(State::host));
    // The watcher stays, its host is replaced: items have to be announced again.
    const int before = changes;
    announce(true);
    EXPECT_TRUE(eventually([&] { return changes > before; }));
    panel_.unregisterService(watcherName);
    EXPECT_TRUE(becomes(State::noHost));
    panel_.registerService(watcherName);
    EXPECT_TRUE(becomes(State::host));
    watcher.registerItem(u"org.kde.StatusNotifierItem-1-1"_s);
    EXPECT_TRUE(eventually([&] { return items == QStringList{u"org.kde.StatusNotifierItem-1-1"_s}; }));
}

TEST_F(StatusNotifierTest, WithoutABusThereIsNoHost) {
    const StatusNotifierWatcher watcher(QDBusConnection(u"none"_s), [] {});
    EXPECT_EQ(watcher.state(), State::noHost);
}

TEST_F(StatusNotifierTest, ItemShowsPicturesOfEverySizeAndItsToolTip) {
    auto item = std::make_unique<StatusNotifierItem>(
        ours_, mainQueue_, 3, [] { return platform::Menu(); }, [] {});
    const QString service = item->service();
    EXPECT_TRUE(service.endsWith(u"-3"_s));
    // The name is asked for without waiting.
    ASSERT_TRUE(eventually([&] { return isNamed(service); }));
    int redrawn = 0;
    const DBusSignal signal(panel_, {service, itemPath, itemInterface, u"NewIcon"_s},
                            [&](const QDBusMessage&) { ++redrawn; });
    item->setImage({.symbol = {.name = "pin.fill",
                               .accessibilityDescription = "Skylet",
                               .pointSize = 16,
                               .weight = platform::SymbolWeight::semibold},
                    .tint = {{1, 0, 0}, {1, 0, 0}},
                    .size = {12, 16},
                    .symbolOrigin = {}},
                   false);
    item->setToolTip(u"Skylet — 2 finestre fissate"_s);
    EXPECT_TRUE(eventually([&] { return redrawn == 1; }));

    const auto answer = ask(panel_, busCall(service, itemPath, u"org.freedesktop.DBus.Properties"_s,
                                            u"GetAll"_s, {itemInterface}));
    const auto properties = qdbus_cast<QVariantMap>(answer.arguments().value(0).value<QDBusArgument>());
    EXPECT_EQ(properties.value(u"Title"_s).toString(), u"Skylet"_s);
    EXPECT_EQ(properties.value(u"Menu"_s).value<QDBusObjectPath>().path(), u"/MenuBar"_s);
    EXPECT_TRUE(properties.value(u"ItemIsMenu"_s).toBool());
    const auto toolTip =
        qdbus_cast<StatusNotifierToolTip>(properties.value(u"ToolTip"_s).value<QDBusArgument>());
    EXPECT_EQ(toolTip.title, u"Skylet — 2 finestre fissate"_s);
    const auto pictures =
        qdbus_cast<QList<StatusNotifierPicture>>(properties.value(u"IconPixmap"_s).value<QDBusArgument>());
    ASSERT_EQ(pictures.size(), 6);
    for (const StatusNotifierPicture& picture : pictures) {
        ASSERT_EQ(picture.bytes.size(), 4 * picture.width * picture.height);
        const auto offset = 4 * (picture.height / 3 * picture.width + picture.width / 2);
        EXPECT_EQ(picture.bytes.mid(offset, 4), QByteArray("\xFF\xFF\0\0", 4))
            << picture.width << ": opaque red";
    }
    item.reset();
    EXPECT_TRUE(eventually([&] { return !isNamed(service); }));
}

TEST_F(StatusNotifierTest, HostsThatOnlyTellOfClicksGetTheMenuFromUs) {
    int shown = 0;
    const StatusNotifierItem item(
        ours_, mainQueue_, 1, [] { return platform::Menu(); }, [&] { ++shown; });
    ASSERT_TRUE(eventually([&] { return isNamed(item.service()); }));
    int expected = 0;
    for (const auto& method : {u"Activate"_s, u"SecondaryActivate"_s, u"ContextMenu"_s, u"Unknown"_s}) {
        const auto answer = ask(panel_, busCall(item.service(), itemPath, itemInterface, method, {10, 10}));
        expected += answer.type() == QDBusMessage::ReplyMessage ? 1 : 0;
        EXPECT_TRUE(eventually([&] { return shown == expected; }));
    }
    EXPECT_EQ(shown, 3);
}

} // namespace

} // namespace skylet::test
