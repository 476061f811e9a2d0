#include "platform/PrivateServer.h"
#include "platform/Waiting.h"
#include "platform/qt/AccessibilityTrust.h"
#include "platform/qt/DBusBuses.h"
#include "platform/qt/DBusSignal.h"
#include "platform/qt/QtNotifications.h"
#include "platform/qt/SessionLock.h"
#include "platform/qt/SingleInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QThread>
#include <QVariantMap>

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace skylet::test {

namespace {

using platform::qt::AccessibilityTrust;
using platform::qt::DBusSignal;
using platform::qt::QtNotifications;
using platform::qt::SessionLock;
using platform::qt::SingleInstance;

// An object on the bus that answers each call with what `answer` says, or not at all.
class FakeObject : public QDBusVirtualObject {
  public:
    explicit FakeObject(std::function<std::optional<QVariantList>(const QDBusMessage&)> answer)
        : answer_(std::move(answer)) {}
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (const auto arguments = answer_(message)) {
            connection.send(message.createReply(*arguments));
        }
        return true;
    }

  private:
    std::function<std::optional<QVariantList>(const QDBusMessage&)> answer_;
};

class BusTest : public testing::Test {
  protected:
    ~BusTest() override {
        for (const QString& name : names_) {
            QDBusConnection::disconnectFromBus(name);
        }
    }
    // A connection of its own, as another program has it.
    [[nodiscard]] QDBusConnection connect() {
        names_ << QStringLiteral("test-%1").arg(names_.size());
        return QDBusConnection::connectToBus(QString::fromStdString(bus_.address()), names_.back());
    }

    PrivateBus bus_;

  private:
    QStringList names_;
};

const auto name = QStringLiteral("com.corvane.skylet");
const auto path = QStringLiteral("/com/corvane/skylet");

QDBusMessage call(const QString& method, const QVariantList& arguments) {
    auto message =
        QDBusMessage::createMethodCall(name, path, QStringLiteral("org.freedesktop.Application"), method);
    message.setArguments(arguments);
    return message;
}

TEST_F(BusTest, OneInstanceHasTheName) {
    int activations = 0;
    bool onMainThread = true;
    const auto main = std::this_thread::get_id();
    auto first = std::make_unique<SingleInstance>(connect(), name, path, [&] {
        ++activations;
        onMainThread = onMainThread && std::this_thread::get_id() == main;
    });
    ASSERT_EQ(first->claim(), SingleInstance::Result::first);

    // The other one waits for an answer, so it has to be elsewhere.
    const QDBusConnection laterBus = connect();
    std::atomic<bool> done{false};
    SingleInstance::Result result = SingleInstance::Result::noBus;
    std::thread later([&] {
        SingleInstance second(laterBus, name, path, [] { ADD_FAILURE(); });
        result = second.claim();
        done = true;
    });
    EXPECT_TRUE(eventually([&] { return done.load(); }));
    later.join();
    EXPECT_EQ(result, SingleInstance::Result::activated);
    EXPECT_EQ(activations, 1);
    EXPECT_TRUE(onMainThread);

    first.reset();
    SingleInstance third(connect(), name, path, [] {});
    EXPECT_EQ(third.claim(), SingleInstance::Result::first);
}

TEST_F(BusTest, AnswersTheApplicationInterfaceOnly) {
    int activations = 0;
    SingleInstance instance(connect(), name, path, [&] { ++activations; });
    ASSERT_EQ(instance.claim(), SingleInstance::Result::first);
    const QDBusConnection client = connect();
    struct {
        QDBusMessage message;
        bool answered;
        int activations;
    } const cases[] = {
        {call(QStringLiteral("Activate"), {QVariantMap()}), true, 1},
        {call(QStringLiteral("Open"), {QStringList{QStringLiteral("file:///x")}, QVariantMap()}), true, 2},
        {call(QStringLiteral("ActivateAction"), {QStringLiteral("a"), QVariantList(), QVariantMap()}), true,
         3},
        {call(QStringLiteral("Activate"), {}), false, 3},
        {call(QStringLiteral("Activate"), {QStringLiteral("text")}), false, 3},
        {call(QStringLiteral("Quit"), {}), false, 3},
    };
    for (const auto& one : cases) {
        QDBusPendingCall pending = client.asyncCall(one.message);
        EXPECT_TRUE(eventually([&] { return pending.isFinished(); }));
        EXPECT_EQ(!pending.isError(), one.answered) << one.message.member().toStdString();
        EXPECT_EQ(activations, one.activations) << one.message.member().toStdString();
    }
}

TEST_F(BusTest, ChangesOfAccessibilityAreAnnounced) {
    const QDBusConnection others = connect();
    const auto change = [&](const QString& object, const QString& interface) {
        auto signal = QDBusMessage::createSignal(object, QStringLiteral("org.freedesktop.DBus.Properties"),
                                                 QStringLiteral("PropertiesChanged"));
        signal << interface << QVariantMap{{QStringLiteral("IsEnabled"), true}} << QStringList();
        others.send(signal);
    };
    const QDBusConnection ours = connect();
    // Signals keep their order: once the marker has come, so has everything before it.
    int markers = 0;
    const auto marker = QStringLiteral("org.example.Marker");
    const DBusSignal marking(ours, {QString(), QString(), marker, QStringLiteral("Here")},
                             [&](const QDBusMessage& /*signal*/) { ++markers; });
    const auto settle = [&] {
        const int before = markers;
        others.send(QDBusMessage::createSignal(QStringLiteral("/"), marker, QStringLiteral("Here")));
        return eventually([&] { return markers > before; });
    };

    QtNotifications notifications(ours);
    int announcements = 0;
    const auto count = [&] {
        ++announcements;
    };
    auto observing = notifications.observeDistributed("com.apple.accessibility.api", count);
    EXPECT_FALSE(notifications.observeDistributed("another.name", count));
    const auto status = QStringLiteral("/org/a11y/bus");
    const auto ofStatus = QStringLiteral("org.a11y.Status");
    ASSERT_TRUE(settle());
    change(status, QStringLiteral("org.example.Other"));
    change(QStringLiteral("/elsewhere"), ofStatus);
    ASSERT_TRUE(settle());
    EXPECT_EQ(announcements, 0);
    change(status, ofStatus);
    ASSERT_TRUE(settle());
    EXPECT_EQ(announcements, 1);
    observing.reset();
    change(status, ofStatus);
    ASSERT_TRUE(settle());
    EXPECT_EQ(announcements, 1);
}

TEST_F(BusTest, PerformsItsActionsAndIsActivatedByOthers) {
    int activations = 0;
    QStringList performed;
    SingleInstance instance(
        connect(), name, path, [&] { ++activations; },
        [&](const QString& action) {
            performed << action;
            return action == QStringLiteral("settings");
        });
    ASSERT_EQ(instance.claim(), SingleInstance::Result::first);
    const QDBusConnection client = connect();
    for (const auto& action : {QStringLiteral("settings"), QStringLiteral("unknown")}) {
        QDBusPendingCall pending =
            client.asyncCall(call(QStringLiteral("ActivateAction"), {action, QVariantList(), QVariantMap()}));
        EXPECT_TRUE(eventually([&] { return pending.isFinished(); }));
        EXPECT_FALSE(pending.isError());
    }
    EXPECT_EQ(performed, (QStringList{QStringLiteral("settings"), QStringLiteral("unknown")}));
    EXPECT_EQ(activations, 1);
}

TEST(Bus, IsNeverStarted) {
    const TemporaryDirectory empty;
    const Environment address("DBUS_SESSION_BUS_ADDRESS", std::nullopt);
    const Environment runtime("XDG_RUNTIME_DIR", empty.path());
    const auto bus = platform::qt::sessionBus();
    EXPECT_FALSE(bus.isConnected());
    SingleInstance instance(bus, name, path, [] {});
    EXPECT_EQ(instance.claim(), SingleInstance::Result::noBus);
    AccessibilityTrust trust(bus);
    EXPECT_FALSE(trust.isTrusted());
    trust.prompt();
    const SessionLock lock(bus, bus);
    EXPECT_FALSE(lock.isLocked());
}

// Where blocking calls find somebody to answer: a thread with an event loop.
class BusThread : public QThread {
  public:
    BusThread(QDBusConnection bus, const QString& service, const QString& objectPath, FakeObject& object)
        : bus_(std::move(bus))
        , object_(object) {
        object_.moveToThread(this);
        bus_.registerVirtualObject(objectPath, &object_);
        bus_.registerService(service);
        start();
    }
    BusThread(const BusThread&) = delete;
    BusThread& operator=(const BusThread&) = delete;
    ~BusThread() override {
        quit();
        wait();
    }

  private:
    QDBusConnection bus_;
    FakeObject& object_;
};

TEST_F(BusTest, TrustsABusThatIsSwitchedOn) {
    AccessibilityTrust trust(connect());
    EXPECT_FALSE(trust.isTrusted()) << "nobody there";
    std::atomic<int> mode{0};
    FakeObject status([&](const QDBusMessage& message) -> std::optional<QVariantList> {
        const QVariantList expected{QStringLiteral("org.a11y.Status"), QStringLiteral("IsEnabled")};
        if (message.arguments() != expected || mode == 3) {
            return std::nullopt;
        }
        if (mode == 2) {
            return QVariantList{QStringLiteral("true")};
        }
        return QVariantList{QVariant::fromValue(QDBusVariant(mode == 1))};
    });
    const BusThread thread(connect(), QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                           status);
    EXPECT_FALSE(trust.isTrusted()) << "switched off";
    mode = 1;
    EXPECT_TRUE(trust.isTrusted());
    mode = 2;
    EXPECT_FALSE(trust.isTrusted()) << "an answer of another form";
    mode = 3;
    EXPECT_FALSE(trust.isTrusted()) << "no answer";
}

TEST_F(BusTest, SwitchesOnOnlyAtTheUsersWord) {
    constexpr uint id = 42;
    int enabled = 0;
    QVariantList shown;
    QDBusConnection service = connect();
    FakeObject status([&](const QDBusMessage& message) -> std::optional<QVariantList> {
        if (message.member() == QStringLiteral("Set")) {
            enabled += message.arguments().value(2).value<QDBusVariant>().variant().toBool() ? 1 : 0;
        }
        return QVariantList{};
    });
    FakeObject notifications([&](const QDBusMessage& message) -> std::optional<QVariantList> {
        shown = message.arguments();
        return QVariantList{id};
    });
    const auto notificationsPath = QStringLiteral("/org/freedesktop/Notifications");
    const auto notificationsName = QStringLiteral("org.freedesktop.Notifications");
    service.registerVirtualObject(QStringLiteral("/org/a11y/bus"), &status);
    service.registerVirtualObject(notificationsPath, &notifications);
    service.registerService(QStringLiteral("org.a11y.Bus"));
    service.registerService(notificationsName);

    AccessibilityTrust trust(connect());
    trust.prompt();
    EXPECT_TRUE(eventually([&] { return shown.size() == 8; }));
    EXPECT_EQ(shown.value(3).toString(), QStringLiteral("Skylet"));
    EXPECT_EQ(shown.value(5).toStringList().value(1), QStringLiteral("Consenti accesso"));
    const QString allow = shown.value(5).toStringList().value(0);

    const auto invoke = [&](uint which, const QString& action) {
        auto signal =
            QDBusMessage::createSignal(notificationsPath, notificationsName, QStringLiteral("ActionInvoked"));
        signal << which << action;
        service.send(signal);
    };
    invoke(id + 1, allow);
    invoke(id, QStringLiteral("default"));
    // Its answer comes after whatever the signals before it did.
    const QDBusConnection client = connect();
    const auto settle = [&] {
        QDBusPendingCall pending = client.asyncCall(QDBusMessage::createMethodCall(
            QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
            QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll")));
        return eventually([&] { return pending.isFinished(); });
    };
    EXPECT_TRUE(settle());
    EXPECT_EQ(enabled, 0);
    // The notification's number may reach us after the user's click only in theory; ask until it is taken.
    EXPECT_TRUE(eventually([&] {
        invoke(id, allow);
        return enabled > 0;
    }));
}

TEST_F(BusTest, FollowsTheScreenSaver) {
    QDBusConnection saver = connect();
    bool active = true;
    FakeObject object(
        [&](const QDBusMessage&) -> std::optional<QVariantList> { return QVariantList{active}; });
    const auto saverPath = QStringLiteral("/org/gnome/ScreenSaver");
    const auto saverName = QStringLiteral("org.gnome.ScreenSaver");
    saver.registerVirtualObject(saverPath, &object);
    saver.registerService(saverName);
    SessionLock lock(connect(), QDBusConnection(QStringLiteral("none")));
    int changes = 0;
    const auto subscription = lock.observeDidChange([&] { ++changes; });
    EXPECT_FALSE(lock.isLocked());
    EXPECT_TRUE(eventually([&] { return lock.isLocked(); })) << "locked before we started";
    const auto tell = [&](const QVariant& value) {
        auto signal = QDBusMessage::createSignal(saverPath, saverName, QStringLiteral("ActiveChanged"));
        signal << value;
        saver.send(signal);
    };
    tell(QStringLiteral("false"));
    tell(true);
    tell(false);
    EXPECT_TRUE(eventually([&] { return !lock.isLocked(); }));
    EXPECT_EQ(changes, 2);
}

TEST_F(BusTest, FollowsTheLoginManager) {
    const Environment session("XDG_SESSION_ID", "c7");
    QDBusConnection login = connect();
    const auto sessionPath = QStringLiteral("/org/freedesktop/login1/session/c7");
    FakeObject manager([&](const QDBusMessage& message) -> std::optional<QVariantList> {
        return message.arguments().value(0).toString() == QStringLiteral("c7")
                   ? QVariantList{QVariant::fromValue(QDBusObjectPath(sessionPath))}
                   : QVariantList{};
    });
    int asked = 0;
    FakeObject object([&](const QDBusMessage&) -> std::optional<QVariantList> {
        ++asked;
        return QVariantList{QVariant::fromValue(QDBusVariant(false))};
    });
    login.registerVirtualObject(QStringLiteral("/org/freedesktop/login1"), &manager);
    login.registerVirtualObject(sessionPath, &object);
    login.registerService(QStringLiteral("org.freedesktop.login1"));
    const SessionLock lock(QDBusConnection(QStringLiteral("none")), connect());
    ASSERT_TRUE(eventually([&] { return asked > 0; }));
    const auto tell = [&](const QString& interface, const QString& member, const QVariantList& arguments) {
        auto signal = QDBusMessage::createSignal(sessionPath, interface, member);
        signal.setArguments(arguments);
        login.send(signal);
    };
    const auto sessionInterface = QStringLiteral("org.freedesktop.login1.Session");
    const auto properties = QStringLiteral("org.freedesktop.DBus.Properties");
    const auto changed = QStringLiteral("PropertiesChanged");
    const auto hint = [](bool locked) {
        return QVariantMap{{QStringLiteral("LockedHint"), locked}};
    };
    tell(sessionInterface, QStringLiteral("Lock"), {});
    EXPECT_TRUE(eventually([&] { return lock.isLocked(); }));
    tell(sessionInterface, QStringLiteral("Unlock"), {});
    EXPECT_TRUE(eventually([&] { return !lock.isLocked(); }));
    tell(properties, changed, {sessionInterface, hint(true), QStringList()});
    EXPECT_TRUE(eventually([&] { return lock.isLocked(); }));
    tell(properties, changed,
         {sessionInterface, QVariantMap{{QStringLiteral("IdleHint"), false}}, QStringList()});
    tell(properties, changed, {sessionInterface, hint(false), QStringList()});
    EXPECT_TRUE(eventually([&] { return !lock.isLocked(); }));
}

} // namespace

} // namespace skylet::test
