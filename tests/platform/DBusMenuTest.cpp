#include "platform/qt/DBusMenu.h"

#include "platform/PrivateServer.h"
#include "platform/Waiting.h"
#include "platform/qt/DBusSignal.h"
#include "platform/qt/QtMainQueue.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingReply>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace skylet::test {

namespace {

using platform::Menu;
using platform::MenuItem;
using platform::qt::DBusMenu;
using platform::qt::DBusMenuItem;
using platform::qt::DBusMenuLayout;
using platform::qt::DBusShortcut;
using platform::qt::DBusSignal;

const auto path = QStringLiteral("/MenuBar");
const auto menuInterface = QStringLiteral("com.canonical.dbusmenu");

// A host that shows the menu of another program.
class DBusMenuTest : public testing::Test {
  protected:
    DBusMenuTest()
        : ours_(QDBusConnection::connectToBus(QString::fromStdString(bus_.address()), QStringLiteral("ours")))
        , host_(QDBusConnection::connectToBus(QString::fromStdString(bus_.address()), QStringLiteral("host")))
        , menu_(std::make_unique<DBusMenu>(ours_, mainQueue_, path, [this] { return content_; }))
        , changes_(
              host_, {ours_.baseService(), path, menuInterface, QStringLiteral("LayoutUpdated")},
              [this](const QDBusMessage& message) { announced_ = message.arguments().value(0).toUInt(); }) {}
    ~DBusMenuTest() override {
        menu_.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("ours"));
        QDBusConnection::disconnectFromBus(QStringLiteral("host"));
    }

    [[nodiscard]] QDBusMessage ask(const QString& method, const QVariantList& arguments,
                                   const QString& interface = menuInterface) {
        auto message = QDBusMessage::createMethodCall(ours_.baseService(), path, interface, method);
        message.setArguments(arguments);
        const QDBusPendingCall pending = host_.asyncCall(message);
        EXPECT_TRUE(eventually([&] { return pending.isFinished(); }));
        return pending.reply();
    }
    [[nodiscard]] DBusMenuLayout layout(const QStringList& names = {}) {
        const QVariantList arguments = ask(QStringLiteral("GetLayout"), {0, -1, names}).arguments();
        revision_ = arguments.value(0).toUInt();
        return qdbus_cast<DBusMenuLayout>(arguments.value(1).value<QDBusArgument>());
    }
    [[nodiscard]] int idOf(const std::string& label) {
        for (const DBusMenuLayout& item : layout().children) {
            if (item.properties.value(QStringLiteral("label")).toString().toStdString() == label) {
                return item.id;
            }
        }
        return -1;
    }
    [[nodiscard]] bool aboutToShow() {
        return ask(QStringLiteral("AboutToShow"), {0}).arguments().value(0).toBool();
    }
    // Whether the menu knew the item.
    bool tell(int id, const QString& event = QStringLiteral("clicked")) {
        const QVariant data = QVariant::fromValue(QDBusVariant(QString()));
        return ask(QStringLiteral("Event"), {id, event, data, 0U}).type() == QDBusMessage::ReplyMessage;
    }
    [[nodiscard]] MenuItem item(const std::string& title) {
        return {.identity = title, .title = title, .action = [this, title] {
                    done_.push_back(title);
                }};
    }
    [[nodiscard]] bool isDone(const std::vector<std::string>& expected) {
        return eventually([&] { return done_ == expected; });
    }

    PrivateBus bus_;
    platform::qt::QtMainQueue mainQueue_;
    QDBusConnection ours_;
    QDBusConnection host_;
    Menu content_;
    std::unique_ptr<DBusMenu> menu_;
    uint announced_ = 0;
    DBusSignal changes_;
    uint revision_ = 0;
    std::vector<std::string> done_;
};

TEST_F(DBusMenuTest, SaysWhatEachItemLooksLike) {
    MenuItem disabled = item("a_b & c");
    disabled.isEnabled = false;
    MenuItem checked = item("pinned");
    checked.isOn = true;
    MenuItem quit = item("quit");
    quit.keyEquivalent = "q";
    MenuItem redo = item("redo");
    redo.keyEquivalent = "Z";
    content_ = {disabled, MenuItem::separator("line"), checked, quit, redo};

    const DBusMenuLayout root = layout();
    EXPECT_EQ(root.id, 0);
    EXPECT_EQ(root.properties.value(QStringLiteral("children-display")).toString(),
              QStringLiteral("submenu"));
    ASSERT_EQ(root.children.size(), 5);
    const auto properties = [&](int index) {
        return root.children[index].properties;
    };
    const auto label = QStringLiteral("label");
    EXPECT_EQ(properties(0),
              (QVariantMap{{label, QStringLiteral("a__b & c")}, {QStringLiteral("enabled"), false}}));
    EXPECT_EQ(properties(1), (QVariantMap{{QStringLiteral("type"), QStringLiteral("separator")}}));
    EXPECT_EQ(properties(2), (QVariantMap{{label, QStringLiteral("pinned")},
                                          {QStringLiteral("toggle-type"), QStringLiteral("checkmark")},
                                          {QStringLiteral("toggle-state"), 1}}));
    const auto shortcut = [&](int index) {
        return qdbus_cast<DBusShortcut>(
            properties(index).value(QStringLiteral("shortcut")).value<QDBusArgument>());
    };
    EXPECT_EQ(shortcut(3), (DBusShortcut{{QStringLiteral("Control"), QStringLiteral("Q")}}));
    EXPECT_EQ(shortcut(4),
              (DBusShortcut{{QStringLiteral("Control"), QStringLiteral("Shift"), QStringLiteral("Z")}}));

    EXPECT_EQ(layout({label}).children[2].properties, (QVariantMap{{label, QStringLiteral("pinned")}}));
    EXPECT_TRUE(qdbus_cast<DBusMenuLayout>(ask(QStringLiteral("GetLayout"), {0, 0, QStringList()})
                                               .arguments()
                                               .value(1)
                                               .value<QDBusArgument>())
                    .children.isEmpty());
    const int id = root.children[2].id;
    const QDBusPendingReply<QDBusVariant> one = ask(QStringLiteral("GetProperty"), {id, label});
    EXPECT_EQ(one.value().variant().toString(), QStringLiteral("pinned"));
    EXPECT_EQ(ask(QStringLiteral("GetProperty"), {id, QStringLiteral("none")}).type(),
              QDBusMessage::ErrorMessage);
    const auto group = qdbus_cast<QList<DBusMenuItem>>(
        ask(QStringLiteral("GetGroupProperties"), {QVariant::fromValue(QList<int>{0, id}), QStringList()})
            .arguments()
            .value(0)
            .value<QDBusArgument>());
    ASSERT_EQ(group.size(), 2) << "hosts ask for the root's properties too";
    EXPECT_EQ(group[1].properties, properties(2));
    const QDBusPendingReply<QDBusVariant> version =
        ask(QStringLiteral("Get"), {menuInterface, QStringLiteral("Version")},
            QStringLiteral("org.freedesktop.DBus.Properties"));
    EXPECT_EQ(version.value().variant().toUInt(), 3U);
}

TEST_F(DBusMenuTest, TellsOfChangesOnce) {
    content_ = {item("a"), item("b")};
    EXPECT_TRUE(aboutToShow());
    const int a = idOf("a");
    EXPECT_FALSE(aboutToShow()) << "nothing changed";
    content_ = {item("new"), item("a")};
    EXPECT_TRUE(aboutToShow());
    EXPECT_EQ(idOf("a"), a) << "an item keeps its number";
    EXPECT_TRUE(eventually([&] { return announced_ == revision_; }));
    content_[1].isEnabled = false;
    EXPECT_TRUE(menu_->update());
    EXPECT_EQ(idOf("a"), a);
    EXPECT_TRUE(eventually([&] { return announced_ == revision_; }));
}

TEST_F(DBusMenuTest, ClicksMeanWhatWasDisplayed) {
    content_ = {item("about"), item("unpin B"), item("unpin C"), item("quit")};
    const int b = idOf("unpin B");
    const int c = idOf("unpin C");
    const int quit = idOf("quit");
    // While the host still shows the old menu, B goes and everything moves up.
    content_ = {item("about"), item("unpin C"), item("quit")};
    EXPECT_TRUE(aboutToShow());
    EXPECT_TRUE(tell(c));
    EXPECT_TRUE(tell(quit));
    EXPECT_TRUE(tell(b)) << "it was displayed a moment ago";
    EXPECT_TRUE(isDone({"unpin C", "quit", "unpin B"}));
    content_ = {item("about")};
    EXPECT_TRUE(aboutToShow());
    EXPECT_FALSE(tell(b)) << "two menus ago";
    EXPECT_FALSE(tell(4711));
}

TEST_F(DBusMenuTest, OnlyClicksOnEnabledItemsAct) {
    MenuItem disabled = item("disabled");
    disabled.isEnabled = false;
    content_ = {disabled, MenuItem::separator("line"), item("enabled")};
    const DBusMenuLayout root = layout();
    for (const DBusMenuLayout& one : root.children) {
        EXPECT_TRUE(tell(one.id, QStringLiteral("hovered")));
    }
    EXPECT_TRUE(tell(0, QStringLiteral("opened")));
    EXPECT_TRUE(tell(0));
    for (const DBusMenuLayout& one : root.children) {
        EXPECT_TRUE(tell(one.id));
    }
    EXPECT_TRUE(isDone({"enabled"}));
}

TEST_F(DBusMenuTest, AnswersForManyItemsAtOnce) {
    content_ = {item("a"), item("b")};
    const auto groupOf = [](const QDBusMessage& message, int index) {
        return qdbus_cast<QList<int>>(message.arguments().value(index).value<QDBusArgument>());
    };
    const auto shown = ask(QStringLiteral("AboutToShowGroup"), {QVariant::fromValue(QList<int>{0, 99})});
    EXPECT_EQ(groupOf(shown, 0), QList<int>{0});
    EXPECT_EQ(groupOf(shown, 1), QList<int>{99});
    const QList<platform::qt::DBusMenuEvent> events{
        {idOf("b"), QStringLiteral("clicked"), QDBusVariant(0), 0},
        {99, QStringLiteral("clicked"), QDBusVariant(0), 0},
        {idOf("a"), QStringLiteral("clicked"), QDBusVariant(0), 0}};
    const auto told = ask(QStringLiteral("EventGroup"), {QVariant::fromValue(events)});
    EXPECT_EQ(groupOf(told, 0), QList<int>{99});
    EXPECT_TRUE(isDone({"b", "a"}));
}

TEST_F(DBusMenuTest, AnActionMayEndTheMenu) {
    bool ended = false;
    content_ = {{.identity = "hide", .title = "hide", .action = [&] {
                     menu_.reset();
                     ended = true;
                 }}};
    EXPECT_TRUE(tell(idOf("hide")));
    EXPECT_TRUE(eventually([&] { return ended; }));
    EXPECT_EQ(ask(QStringLiteral("AboutToShow"), {0}).type(), QDBusMessage::ErrorMessage);
}

TEST_F(DBusMenuTest, RefusesCallsOfAnotherForm) {
    content_ = {item("a")};
    struct {
        QString method;
        QVariantList arguments;
    } const cases[] = {
        {QStringLiteral("GetLayout"), {}},
        {QStringLiteral("GetLayout"), {QStringLiteral("0"), -1, QStringList()}},
        {QStringLiteral("Event"), {1, QStringLiteral("clicked")}},
        {QStringLiteral("AboutToShow"), {QStringLiteral("x")}},
        {QStringLiteral("Unknown"), {0}},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(ask(one.method, one.arguments).type(), QDBusMessage::ErrorMessage)
            << one.method.toStdString();
    }
}

} // namespace

} // namespace skylet::test
