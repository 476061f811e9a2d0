#include "platform/qt/DBusMenu.h"

#include "platform/PrivateServer.h"
#include "platform/qt/DBusSignal.h"
#include "platform/qt/QtMainQueue.h"

#include <QDBusPendingReply>

#include <gtest/gtest.h>
#include <memory>

namespace skylet::test {

namespace {

using namespace Qt::StringLiterals;
using namespace platform;
using namespace platform::qt;

const auto path = u"/MenuBar"_s;
const auto menuInterface = u"com.canonical.dbusmenu"_s;

template <class T>
T argument(const QDBusMessage& message, int index) {
    return qdbus_cast<T>(message.arguments().value(index).value<QDBusArgument>());
}

// A host that shows the menu of another program.
class DBusMenuTest : public testing::Test {
  protected:
    [[nodiscard]] QDBusMessage askMenu(const QString& method, const QVariantList& arguments,
                                       const QString& interface = menuInterface) {
        return ask(host_, busCall(ours_.baseService(), path, interface, method, arguments));
    }
    [[nodiscard]] bool isRefused(const QString& method, const QVariantList& arguments) {
        return askMenu(method, arguments).type() == QDBusMessage::ErrorMessage;
    }
    [[nodiscard]] DBusMenuLayout layout(const QStringList& names = {}, int depth = -1) {
        const QDBusMessage answer = askMenu(u"GetLayout"_s, {0, depth, names});
        revision_ = answer.arguments().value(0).toUInt();
        return argument<DBusMenuLayout>(answer, 1);
    }
    [[nodiscard]] int idOf(const std::string& label) {
        for (const DBusMenuLayout& item : layout().children) {
            if (item.properties.value(u"label"_s).toString().toStdString() == label) {
                return item.id;
            }
        }
        return -1;
    }
    [[nodiscard]] bool aboutToShow() { return askMenu(u"AboutToShow"_s, {0}).arguments().value(0).toBool(); }
    // Whether the menu knew the item.
    bool tell(int id, const QString& event = u"clicked"_s) {
        return !isRefused(u"Event"_s, {id, event, QVariant::fromValue(QDBusVariant(QString())), 0U});
    }
    [[nodiscard]] MenuItem item(const std::string& title, bool isEnabled = true) {
        return {.identity = title, .title = title, .isEnabled = isEnabled, .action = [this, title] {
                    done_.push_back(title);
                }};
    }
    [[nodiscard]] bool isDone(const std::vector<std::string>& expected) {
        return eventually([&] { return done_ == expected; });
    }

    PrivateBus bus_;
    QtMainQueue mainQueue_;
    QDBusConnection ours_ = bus_.connect();
    QDBusConnection host_ = bus_.connect();
    Menu content_;
    std::unique_ptr<DBusMenu> menu_ =
        std::make_unique<DBusMenu>(ours_, mainQueue_, path, [this] { return content_; });
    uint announced_ = 0;
    DBusSignal changes_{host_,
                        {ours_.baseService(), path, menuInterface, u"LayoutUpdated"_s},
                        [this](const QDBusMessage& message) {
                            announced_ = message.arguments().value(0).toUInt();
                        }};
    uint revision_ = 0;
    std::vector<std::string> done_;
};

TEST_F(DBusMenuTest, SaysWhatEachItemLooksLike) {
    MenuItem checked = item("pinned");
    checked.isOn = true;
    MenuItem quit = item("quit");
    quit.keyEquivalent = "q";
    MenuItem redo = item("redo");
    redo.keyEquivalent = "Z";
    content_ = {item("a_b & c", false), MenuItem::separator("line"), checked, quit, redo};

    const DBusMenuLayout root = layout();
    EXPECT_EQ(root.id, 0);
    EXPECT_EQ(root.properties.value(u"children-display"_s).toString(), u"submenu"_s);
    ASSERT_EQ(root.children.size(), 5);
    const auto properties = [&](int index) {
        return root.children[index].properties;
    };
    const auto label = u"label"_s;
    EXPECT_EQ(properties(0), (QVariantMap{{label, u"a__b & c"_s}, {u"enabled"_s, false}}));
    EXPECT_EQ(properties(1), (QVariantMap{{u"type"_s, u"separator"_s}}));
    EXPECT_EQ(
        properties(2),
        (QVariantMap{{label, u"pinned"_s}, {u"toggle-type"_s, u"checkmark"_s}, {u"toggle-state"_s, 1}}));
    const auto shortcut = [&](int index) {
        return qdbus_cast<DBusShortcut>(properties(index).value(u"shortcut"_s).value<QDBusArgument>());
    };
    EXPECT_EQ(shortcut(3), (DBusShortcut{{u"Control"_s, u"Q"_s}}));
    EXPECT_EQ(shortcut(4), (DBusShortcut{{u"Control"_s, u"Shift"_s, u"Z"_s}}));

    EXPECT_EQ(layout({label}).children[2].properties, (QVariantMap{{label, u"pinned"_s}}));
    EXPECT_TRUE(layout({}, 0).children.isEmpty());
    const int id = root.children[2].id;
    const QDBusPendingReply<QDBusVariant> one = askMenu(u"GetProperty"_s, {id, label});
    EXPECT_EQ(one.value().variant().toString(), u"pinned"_s);
    const QVariant ids = QVariant::fromValue(QList<int>{0, id});
    const auto group =
        argument<QList<DBusMenuItem>>(askMenu(u"GetGroupProperties"_s, {ids, QStringList()}), 0);
    ASSERT_EQ(group.size(), 2) << "hosts ask for the root's properties too";
    EXPECT_EQ(group[1].properties, properties(2));
    const QDBusPendingReply<QDBusVariant> version =
        askMenu(u"Get"_s, {menuInterface, u"Version"_s}, u"org.freedesktop.DBus.Properties"_s);
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
}

TEST_F(DBusMenuTest, OnlyClicksOnEnabledItemsAct) {
    content_ = {item("disabled", false), MenuItem::separator("line"), item("enabled")};
    for (const QString& event : {u"hovered"_s, u"opened"_s, u"clicked"_s}) {
        EXPECT_TRUE(tell(0, event));
        for (const DBusMenuLayout& one : layout().children) {
            EXPECT_TRUE(tell(one.id, event));
        }
    }
    EXPECT_TRUE(isDone({"enabled"}));
}

TEST_F(DBusMenuTest, AnswersForManyItemsAtOnce) {
    content_ = {item("a"), item("b")};
    const auto shown = askMenu(u"AboutToShowGroup"_s, {QVariant::fromValue(QList<int>{0, 99})});
    EXPECT_EQ(argument<QList<int>>(shown, 0), QList<int>{0});
    EXPECT_EQ(argument<QList<int>>(shown, 1), QList<int>{99});
    QList<DBusMenuEvent> events;
    for (const int id : {idOf("b"), 99, idOf("a")}) {
        events.push_back({id, u"clicked"_s, QDBusVariant(0), 0});
    }
    const auto told = askMenu(u"EventGroup"_s, {QVariant::fromValue(events)});
    EXPECT_EQ(argument<QList<int>>(told, 0), QList<int>{99});
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
    EXPECT_TRUE(isRefused(u"AboutToShow"_s, {0}));
}

TEST_F(DBusMenuTest, RefusesCallsOfAnotherForm) {
    content_ = {item("a")};
    for (const auto& [method, arguments] : std::vector<std::pair<QString, QVariantList>>{
             {u"GetLayout"_s, {}},
             {u"GetLayout"_s, {u"0"_s, -1, QStringList()}},
             {u"GetProperty"_s, {idOf("a"), u"none"_s}},
             {u"Event"_s, {1, u"clicked"_s}},
             {u"Event"_s, {4711, u"clicked"_s, QVariant::fromValue(QDBusVariant(QString())), 0U}},
             {u"AboutToShow"_s, {u"x"_s}},
             {u"Unknown"_s, {0}}}) {
        EXPECT_TRUE(isRefused(method, arguments)) << method.toStdString();
    }
}

} // namespace

} // namespace skylet::test
