#include "platform/PrivateServer.h"
#include "platform/qt/AccessibilityTrust.h"
#include "platform/qt/DBusBuses.h"
#include "platform/qt/QtNotifications.h"
#include "platform/qt/SessionLock.h"
#include "platform/qt/SingleInstance.h"

#include <QDBusVariant>
#include <QThread>

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace skylet::test {

namespace {

using namespace Qt::StringLiterals;
using platform::qt::AccessibilityTrust;
using platform::qt::SessionLock;
using platform::qt::SingleInstance;

const auto name = u"com.corvane.skylet"_s;
const auto path = u"/com/corvane/skylet"_s;
const auto properties = u"org.freedesktop.DBus.Properties"_s;
const auto statusService = u"org.a11y.Bus"_s;
const auto statusPath = u"/org/a11y/bus"_s;

class BusTest : public testing::Test {
  protected:
    // What `from` has sent has come to `to`: the bus keeps the order.
    static void settle(const QDBusConnection& from, const QDBusConnection& to) {
        const auto service = u"org.freedesktop.DBus"_s;
        for (const auto& bus : {from, to}) {
            (void)ask(bus, busCall(service, u"/"_s, service, u"GetId"_s));
        }
        QCoreApplication::processEvents();
    }

    PrivateBus bus_;
};

TEST_F(BusTest, OneInstanceHasTheName) {
    int activations = 0;
    const auto main = std::this_thread::get_id();
    auto first = std::make_unique<SingleInstance>(bus_.connect(), name, path, [&] {
        ++activations;
        EXPECT_EQ(std::this_thread::get_id(), main);
    });
    ASSERT_EQ(first->claim(), SingleInstance::Result::first);

    // The other one waits for an answer, so it has to be elsewhere.
    const QDBusConnection laterBus = bus_.connect();
    std::atomic<bool> done{false};
    std::thread later([&] {
        SingleInstance second(laterBus, name, path, [] { ADD_FAILURE(); });
        EXPECT_EQ(second.claim(), SingleInstance::Result::activated);
        done = true;
    });
    EXPECT_TRUE(eventually([&] { return done.load(); }));
    later.join();
    EXPECT_EQ(activations, 1);

    first.reset();
    SingleInstance third(bus_.connect(), name, path, [] {});
    EXPECT_EQ(third.claim(), SingleInstance::Result::first);
}

TEST_F(BusTest, AnswersTheApplicationInterfaceOnly) {
    int activations = 0;
    QStringList performed;
    SingleInstance instance(
        bus_.connect(), name, path, [&] { ++activations; },
        [&](const QString& action) {
            performed << action;
            return action == u"settings"_s;
        });
    ASSERT_EQ(instance.claim(), SingleInstance::Result::first);
    const QDBusConnection client = bus_.connect();
    struct {
        QString method;
        QVariantList arguments;
        bool answered;
        int activations;
    } const cases[] = {
        {u"Activate"_s, {QVariantMap()}, true, 1},
        {u"Open"_s, {QStringList{u"file:///x"_s}, QVariantMap()}, true, 2},
        {u"ActivateAction"_s, {u"settings"_s, QVariantList(), QVariantMap()}, true, 2},
        {u"ActivateAction"_s, {u"unknown"_s, QVariantList(), QVariantMap()}, true, 3},
        {u"Activate"_s, {}, false, 3},
        {u"Activate"_s, {u"text"_s}, false, 3},
        {u"Quit"_s, {}, false, 3},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.method.toStdString());
        const auto answer =
            ask(client, busCall(name, path, u"org.freedesktop.Application"_s, one.method, one.arguments));
        EXPECT_EQ(answer.type() == QDBusMessage::ReplyMessage, one.answered);
        EXPECT_EQ(activations, one.activations);
    }
    EXPECT_EQ(performed, (QStringList{u"settings"_s, u"unknown"_s}));
}

TEST_F(BusTest, ChangesOfAccessibilityAreAnnounced) {
    const QDBusConnection others = bus_.connect();
    const QDBusConnection ours = bus_.connect();
    const auto change = [&](const QString& object, const QString& interface) {
        sendSignal(others, object, properties, u"PropertiesChanged"_s,
                   {interface, QVariantMap{{u"IsEnabled"_s, true}}, QStringList()});
        settle(others, ours);
    };
    platform::qt::QtNotifications notifications(ours);
    int announcements = 0;
    const auto count = [&] {
        ++announcements;
    };
    auto observing = notifications.observeDistributed("com.apple.accessibility.api", count);
    EXPECT_FALSE(notifications.observeDistributed("another.name", count));
    settle(ours, ours);
    const auto status = u"org.a11y.Status"_s;
    change(statusPath, u"org.example.Other"_s);
    change(u"/elsewhere"_s, status);
    EXPECT_EQ(announcements, 0);
    change(statusPath, status);
    EXPECT_EQ(announcements, 1);
    observing.reset();
    change(statusPath, status);
    EXPECT_EQ(announcements, 1);
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
    EXPECT_FALSE(SessionLock(bus, bus).isLocked());
}

TEST_F(BusTest, TrustsABusThatIsSwitchedOn) {
    AccessibilityTrust trust(bus_.connect());
    EXPECT_FALSE(trust.isTrusted()) << "nobody there";
    // The question blocks, so who answers it has to be elsewhere.
    QThread thread;
    std::optional<QVariantList> answer;
    FakeObject status([&](const QDBusMessage& message) {
        const QVariantList expected{u"org.a11y.Status"_s, u"IsEnabled"_s};
        return message.arguments() == expected ? answer : std::nullopt;
    });
    status.moveToThread(&thread);
    QDBusConnection service = bus_.connect();
    service.registerVirtualObject(statusPath, &status);
    service.registerService(statusService);
    thread.start();
    struct {
        const char* description;
        std::optional<QVariantList> answer;
        bool trusted;
    } const cases[] = {
        {"switched off", QVariantList{QVariant::fromValue(QDBusVariant(false))}, false},
        {"switched on", QVariantList{QVariant::fromValue(QDBusVariant(true))}, true},
        {"an answer of another form", QVariantList{u"true"_s}, false},
        {"no answer", std::nullopt, false},
    };
    for (const auto& one : cases) {
        answer = one.answer;
        EXPECT_EQ(trust.isTrusted(), one.trusted) << one.description;
    }
    thread.quit();
    thread.wait();
}

TEST_F(BusTest, SwitchesOnOnlyAtTheUsersWord) {
    constexpr uint id = 42;
    int enabled = 0;
    QVariantList shown;
    QDBusConnection service = bus_.connect();
    FakeObject status([&](const QDBusMessage& message) {
        enabled += message.arguments().value(2).value<QDBusVariant>().variant().toBool() ? 1 : 0;
        return QVariantList{};
    });
    FakeObject notifications([&](const QDBusMessage& message) {
        shown = message.arguments();
        return QVariantList{id};
    });
    const auto notificationsPath = u"/org/freedesktop/Notifications"_s;
    const auto notificationsName = u"org.freedesktop.Notifications"_s;
    service.registerVirtualObject(statusPath, &status);
    service.registerVirtualObject(notificationsPath, &notifications);
    service.registerService(statusService);
    service.registerService(notificationsName);

    const QDBusConnection ours = bus_.connect();
    AccessibilityTrust trust(ours);
    trust.prompt();
    EXPECT_TRUE(eventually([&] { return shown.size() == 8; }));
    EXPECT_EQ(shown.value(3).toString(), u"Skylet"_s);
    const QStringList buttons = shown.value(5).toStringList();
    EXPECT_EQ(buttons.value(1), u"Consenti accesso"_s);

    const auto invoke = [&](uint which, const QString& action) {
        sendSignal(service, notificationsPath, notificationsName, u"ActionInvoked"_s, {which, action});
        settle(service, ours);
        // Answered after whatever the click made us ask for.
        (void)ask(ours, busCall(statusService, statusPath, properties, u"GetAll"_s));
    };
    invoke(id + 1, buttons.value(0));
    invoke(id, u"default"_s);
    EXPECT_EQ(enabled, 0);
    // The notification's number may reach us after the user's click only in theory; ask until it is taken.
    EXPECT_TRUE(eventually([&] {
        invoke(id, buttons.value(0));
        return enabled > 0;
    }));
}

TEST_F(BusTest, FollowsTheScreenSaver) {
    QDBusConnection saver = bus_.connect();
    FakeObject object([](const QDBusMessage&) { return QVariantList{true}; });
    const auto saverPath = u"/org/gnome/ScreenSaver"_s;
    const auto saverName = u"org.gnome.ScreenSaver"_s;
    saver.registerVirtualObject(saverPath, &object);
    saver.registerService(saverName);
    SessionLock lock(bus_.connect(), QDBusConnection(u"none"_s));
    int changes = 0;
    const auto subscription = lock.observeDidChange([&] { ++changes; });
    EXPECT_FALSE(lock.isLocked());
    EXPECT_TRUE(eventually([&] { return lock.isLocked(); })) << "locked before we started";
    for (const QVariant& active : {QVariant(u"false"_s), QVariant(true), QVariant(false)}) {
        sendSignal(saver, saverPath, saverName, u"ActiveChanged"_s, {active});
    }
    EXPECT_TRUE(eventually([&] { return !lock.isLocked(); }));
    EXPECT_EQ(changes, 2);
}

TEST_F(BusTest, FollowsTheLoginManager) {
    const Environment session("XDG_SESSION_ID", "c7");
    QDBusConnection login = bus_.connect();
    const auto managerPath = u"/org/freedesktop/login1"_s;
    const auto sessionPath = u"/org/freedesktop/login1/session/c7"_s;
    bool asked = false;
    FakeObject manager([&](const QDBusMessage& message) {
        if (message.path() == sessionPath) {
            asked = true;
            return QVariantList{QVariant::fromValue(QDBusVariant(false))};
        }
        return message.arguments().value(0).toString() == u"c7"_s
                   ? QVariantList{QVariant::fromValue(QDBusObjectPath(sessionPath))}
                   : QVariantList{};
    });
    login.registerVirtualObject(managerPath, &manager, QDBusConnection::SubPath);
    login.registerService(u"org.freedesktop.login1"_s);
    const SessionLock lock(QDBusConnection(u"none"_s), bus_.connect());
    ASSERT_TRUE(eventually([&] { return asked; }));
    const auto sessionInterface = u"org.freedesktop.login1.Session"_s;
    const auto hint = [&](const QString& which, bool value) {
        return QVariantList{sessionInterface, QVariantMap{{which, value}}, QStringList()};
    };
    struct {
        QString interface;
        QString signal;
        QVariantList arguments;
        bool locked;
    } const cases[] = {
        {sessionInterface, u"Lock"_s, {}, true},
        {sessionInterface, u"Unlock"_s, {}, false},
        {properties, u"PropertiesChanged"_s, hint(u"LockedHint"_s, true), true},
        {properties, u"PropertiesChanged"_s, hint(u"IdleHint"_s, false), true},
        {properties, u"PropertiesChanged"_s, hint(u"LockedHint"_s, false), false},
    };
    for (const auto& one : cases) {
        sendSignal(login, sessionPath, one.interface, one.signal, one.arguments);
        EXPECT_TRUE(eventually([&] { return lock.isLocked() == one.locked; })) << one.signal.toStdString();
    }
}

} // namespace

} // namespace skylet::test
