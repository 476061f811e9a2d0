#include "platform/x11/Property.h"

#include "platform/ServerTest.h"
#include "platform/x11/ClientGeometry.h"

namespace skylet::test {

namespace {

using namespace platform;
using namespace platform::x11;

class PropertyTest : public ServerTest {
  protected:
    [[nodiscard]] std::optional<std::string> readText(xcb_atom_t type, const std::string& bytes) {
        other_.setText(window_, XCB_ATOM_WM_NAME, type, bytes);
        auto pending = askText(connection(), window_, XCB_ATOM_WM_NAME);
        return text(pending, connection().atoms());
    }
    [[nodiscard]] std::vector<std::uint32_t> readItems(xcb_window_t window, std::uint32_t maximum = 16) {
        auto pending = askProperty(connection(), window, other_.atom("P"), XCB_ATOM_WINDOW, maximum);
        return items(pending, XCB_ATOM_WINDOW);
    }

    const xcb_window_t window_ = other_.createWindow({0, 0, 100, 80});
};

TEST_F(PropertyTest, TakesOnlyItemsOfTheRightForm) {
    EXPECT_TRUE(readItems(window_).empty()) << "absent";
    other_.setItems(window_, "P", XCB_ATOM_WINDOW, {1, 2, 3});
    EXPECT_EQ(readItems(window_), (std::vector<std::uint32_t>{1, 2, 3}));
    EXPECT_EQ(readItems(window_, 2), (std::vector<std::uint32_t>{1, 2}));
    other_.setItems(window_, "P", XCB_ATOM_CARDINAL, {1});
    EXPECT_TRUE(readItems(window_).empty()) << "another type";
    other_.setText(window_, other_.atom("P"), XCB_ATOM_WINDOW, "abcdefgh");
    EXPECT_TRUE(readItems(window_).empty()) << "bytes that claim to be windows";
    other_.setItems(window_, "P", XCB_ATOM_WINDOW, {});
    EXPECT_TRUE(readItems(window_).empty()) << "no items";
    other_.destroy(window_);
    EXPECT_TRUE(readItems(window_).empty()) << "gone";
}

TEST_F(PropertyTest, TakesTextsAsTheyAre) {
    const xcb_atom_t utf8 = connection().atoms().UTF8_STRING;
    EXPECT_EQ(readText(utf8, "perch\xC3\xA9"), "perch\xC3\xA9");
    EXPECT_EQ(readText(XCB_ATOM_STRING, "perch\xE9"), "perch\xC3\xA9");
    EXPECT_EQ(readText(utf8, ""), "");
    EXPECT_EQ(readText(utf8, std::string("one\0two", 7)), "one");
    EXPECT_EQ(readText(utf8, "a\xFFz"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(readText(XCB_ATOM_CARDINAL, "text"), std::nullopt);
    std::string many = "a";
    for (int i = 0; i < 350000; ++i) {
        many += "\xE2\x82\xAC"; // three bytes each
    }
    const auto huge = readText(utf8, many);
    ASSERT_TRUE(huge);
    EXPECT_LE(huge->size(), maximumTextBytes);
    EXPECT_GT(huge->size(), maximumTextBytes - 4);
    EXPECT_EQ(huge->substr(huge->size() - 3), "\xE2\x82\xAC") << "cut inside a character";
    other_.setItems(window_, "WM_NAME", utf8, {65, 66});
    auto numbers = askText(connection(), window_, XCB_ATOM_WM_NAME);
    EXPECT_EQ(text(numbers, connection().atoms()), std::nullopt);
}

TEST_F(PropertyTest, SplitsTheWindowClass) {
    for (const auto& [bytes, instance, className] :
         std::vector<std::tuple<std::string, const char*, const char*>>{
             {std::string("a\0B\0", 4), "a", "B"},
             {std::string("a\0B", 3), "a", "B"},
             {"a", "a", ""},
             {std::string("\0B\0", 3), "", "B"},
             {"", "", ""},
             {std::string("a\0B\0C", 5), "a", "B"}}) {
        other_.setText(window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, bytes);
        auto pending = askText(connection(), window_, XCB_ATOM_WM_CLASS);
        const auto names = windowClass(pending);
        ASSERT_TRUE(names);
        EXPECT_EQ(names->instance, instance);
        EXPECT_EQ(names->className, className);
    }
}

TEST_F(PropertyTest, IgnoresShadowsThatCannotBe) {
    constexpr std::uint32_t minusOne = 0xFFFFFFFF;
    const Rect whole{200, 150, 100, 80};
    const std::uint32_t place[] = {200, 150};
    xcb_configure_window(other_.raw(), window_, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place);
    for (const auto& [extents, bounds] : std::vector<std::pair<std::vector<std::uint32_t>, Rect>>{
             {{26, 26, 23, 29}, {226, 173, 48, 28}},
             {{0, 0, 0, 0}, whole},
             {{99, 0, 0, 79}, {299, 150, 1, 1}},
             {{50, 50, 0, 0}, whole},
             {{0, 0, 80, 0}, whole},
             {{minusOne, 0, 0, 0}, whole},
             {{minusOne, 2, 0, 0}, whole},
             {{minusOne, minusOne, minusOne, minusOne}, whole},
             {{10, 10, 10}, whole},
             {{10, 10, 10, 10, 10}, whole}}) {
        other_.setItems(window_, "_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, extents);
        const auto geometry = PendingClientGeometry(connection(), window_).read();
        EXPECT_EQ(geometry->client, whole);
        EXPECT_EQ(geometry->bounds, bounds) << extents.size() << " " << extents[0];
    }
    other_.setText(window_, other_.atom("_GTK_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, std::string(16, '\1'));
    EXPECT_EQ(PendingClientGeometry(connection(), window_).read()->bounds, whole);
}

TEST_F(PropertyTest, FindsClientsInsideFrames) {
    const xcb_window_t frame = other_.createWindow({-30, 40, 300, 200});
    const xcb_window_t client = other_.createWindow({5, 20, 290, 175}, frame);
    EXPECT_EQ(PendingClientGeometry(connection(), client).read()->client, (Rect{-25, 60, 290, 175}));
    other_.destroy(frame);
    EXPECT_FALSE(PendingClientGeometry(connection(), client).read());
}

} // namespace

} // namespace skylet::test
