#include "settings/ZentroSettingsMetrics.h"
#include "settings/ZentroSettingsWindowSizer.h"
#include "settings/ZentroWindowHelper.h"
#include "support/SimulatedDesktop.h"

#include <gtest/gtest.h>

namespace skylet {
namespace {

using platform::Rect;
using platform::Screen;
using platform::Size;

TEST(ZentroSettingsMetrics, FitsTheContentIntoTheScreen) {
    struct {
        const char* description;
        Size fitting;
        std::optional<Rect> visible;
        Size expected;
    } const cases[] = {
        {"taller than the screen allows", {500, 1000}, Rect{0, 0, 1440, 900}, {500, 692}},
        {"small content", {10, 20}, Rect{0, 0, 1440, 900}, {420, 400}},
        {"wider than the screen allows", {5000, 500}, Rect{0, 0, 1000, 900}, {800, 500}},
        {"tiny screen", {500, 500}, Rect{0, 0, 320, 240}, {420, 400}},
        {"no screen", {2000, 2000}, std::nullopt, {960, 720}},
        {"no screen, small content", {500, 600}, std::nullopt, {500, 600}},
        {"exactly", {1152, 692}, Rect{0, 0, 1440, 900}, {1152, 692}},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(ZentroSettingsMetrics::contentSize(test.fitting, test.visible, 28), test.expected)
            << test.description;
    }
}

const Screen left{.frame = {0, 0, 1440, 900}, .visibleFrame = {0, 40, 1440, 860}};
const Screen right{.frame = {1440, 100, 1280, 800}, .visibleFrame = {1440, 100, 1280, 776}};
const std::vector<Screen> both{left, right};

TEST(ZentroWindowHelper, PlacesOnTheScreenWithThePointer) {
    const auto frameAt = [](platform::Point pointer) {
        return ZentroWindowHelper::activeScreen(both, left, pointer)->frame;
    };
    EXPECT_EQ(frameAt({1500, 300}), right.frame);
    EXPECT_EQ(frameAt({1439, 0}), left.frame);
    EXPECT_EQ(frameAt({1440, 899}), right.frame);
    EXPECT_EQ(frameAt({1440, 50}), left.frame) << "beside every screen: the main one";
    EXPECT_FALSE(ZentroWindowHelper::activeScreen({}, std::nullopt, {0, 0}));
    EXPECT_EQ(ZentroWindowHelper::centreOnActiveDisplay({500, 600}, right.visibleFrame),
              (platform::Point{1830, 188}));
}

TEST(ZentroWindowHelper, FindsTheScreenThatShowsMost) {
    const auto frameOf = [](Rect frame) {
        return ZentroWindowHelper::screenOf(frame, both, left)->frame;
    };
    EXPECT_EQ(frameOf({1300, 200, 500, 400}), right.frame);
    EXPECT_EQ(frameOf({1000, 200, 500, 400}), left.frame);
    EXPECT_EQ(frameOf({5000, 5000, 500, 400}), left.frame) << "nowhere: the main one";
}

// The settings window on a desk whose monitors come and go.
class FakeWindow final : public ZentroSettingsWindowSizer::Window {
  public:
    static constexpr double title = 24;
    Rect content{1600, 300, 500, 550};
    Size fitting{500, 550};
    int moves = 0;
    Notice<> screenChanges;

    [[nodiscard]] Rect frame() const override {
        return {content.x, content.y, content.width, content.height + title};
    }
    [[nodiscard]] Size contentSize() const override { return content.size(); }
    [[nodiscard]] Size fittingSize() const override { return fitting; }
    [[nodiscard]] double titleBarHeight() const override { return title; }
    void setContentSize(Size size) override {
        const double top = content.maxY();
        content = {content.x, top - size.height, size.width, size.height};
    }
    void setFrame(Rect frame) override {
        ++moves;
        content = {frame.x, frame.y, frame.width, frame.height - title};
    }
    [[nodiscard]] platform::Subscription observeDidChangeScreen(std::function<void()> notice) override {
        return screenChanges.observe(std::move(notice));
    }
};

class ZentroSettingsWindowSizerTest : public testing::Test {
  protected:
    ZentroSettingsWindowSizerTest() { desktop.screens.all = both; }

    sim::SimulatedDesktop desktop;
    FakeWindow window;
    ZentroSettingsWindowSizer sizer{window, desktop.screens, desktop.mainQueue};
};

TEST_F(ZentroSettingsWindowSizerTest, LeavesAWindowAloneThatFitsOrHasNoScreen) {
    sizer.clamp();
    desktop.screens.all.clear();
    sizer.clamp();
    EXPECT_EQ(window.moves, 0);
    EXPECT_EQ(window.content, (Rect{1600, 300, 500, 550}));
}

TEST_F(ZentroSettingsWindowSizerTest, BringsItOntoTheScreenThatIsLeft) {
    desktop.screens.all = {left};
    desktop.screens.postDidChangeParameters();
    EXPECT_EQ(window.moves, 0) << "not inside the notice";
    desktop.advance(0);
    EXPECT_EQ(window.frame(), (Rect{1440 - 500, 300, 500, 574}));
    EXPECT_EQ(window.moves, 1);
}

TEST_F(ZentroSettingsWindowSizerTest, ClampsEachEdge) {
    using platform::Point;
    const std::pair<Point, Point> cases[] = {
        {{-50, 100}, {0, 100}}, {{1100, 100}, {940, 100}}, {{300, -10}, {300, 40}}, {{300, 700}, {300, 326}}};
    for (const auto& [origin, expected] : cases) {
        window.content = {origin.x, origin.y, 500, 550};
        sizer.clamp();
        EXPECT_EQ(window.frame().origin(), expected);
    }
}

TEST_F(ZentroSettingsWindowSizerTest, ShrinksWithTheScreenAndGrowsAgain) {
    window.fitting = {500, 2000};
    window.screenChanges.post();
    desktop.advance(0);
    EXPECT_EQ(window.contentSize(), (Size{500, 0.8 * 776 - FakeWindow::title}));
    window.content.x = 100;
    window.screenChanges.post();
    desktop.advance(0);
    EXPECT_EQ(window.contentSize(), (Size{500, 0.8 * 860 - FakeWindow::title}));
}

} // namespace
} // namespace skylet
