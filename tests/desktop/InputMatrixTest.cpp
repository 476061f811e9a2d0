// Clicks, drags and scrolls on the overlay of a covered or unfocused window, with every toolkit under every
// window manager: the application tells what reached it, and the user is left alone meanwhile.
#include "DesktopTest.h"
#include "harness/QuietWatch.h"

#include <algorithm>
#include <functional>

namespace skylet::desktop {
namespace {

using Point = std::pair<int, int>;

struct Cell {
    WindowManagerKind windowManager;
    Toolkit toolkit;
    bool isCovered = true;

    bool operator==(const Cell&) const = default;
};

std::string nameOf(const testing::TestParamInfo<Cell>& test) {
    return nameOf(test.param.windowManager) + "_" + nameOf(test.param.toolkit) +
           (test.param.isCovered ? "_covered" : "_unfocused");
}

class InputMatrixTest : public DesktopTest, public testing::WithParamInterface<Cell> {
  protected:
    void prepare();
    // Does it, and expects that the application says each of the words.
    void expectReaches(const std::string& name, const std::function<void()>& act,
                       const std::vector<std::string>& words);
    void moveTo(Point place);
    void click(Point place, int button = 1);
    [[nodiscard]] Point inOverlay(double x, double y) const;
    [[nodiscard]] Window popup();
    void expectPopup();
    void usePopup(double y);
    void expectMenuCloses();

    Rectangle overlay_;
    std::unique_ptr<QuietWatch> quiet_;
};

void InputMatrixTest::prepare() {
    PREPARE(openDesktop({.windowManager = GetParam().windowManager}));
    PREPARE(openTarget(GetParam().toolkit, GetParam().isCovered ? "40 30 1000 700" : "900 620 300 120"));
    PREPARE(launchAndPin());
    overlay_ = overlayPlace();
    quiet_ = std::make_unique<QuietWatch>(desktop().environment().at("DISPLAY"));
}

Point InputMatrixTest::inOverlay(double x, double y) const {
    return {overlay_.x + static_cast<int>(overlay_.width * x),
            overlay_.y + static_cast<int>(overlay_.height * y)};
}

void InputMatrixTest::moveTo(Point place) {
    quiet_->ignorePointer();
    x().movePointer(place.first, place.second);
    quiet_->expectPointer(place);
}

void InputMatrixTest::click(Point place, int button) {
    moveTo(place);
    x().button(button, true);
    x().button(button, false);
}

void InputMatrixTest::expectReaches(const std::string& name, const std::function<void()>& act,
                                    const std::vector<std::string>& words) {
    if (HasFailure()) {
        return;
    }
    const testing::ScopedTrace trace(__FILE__, __LINE__, name);
    application().forget();
    act();
    for (const std::string& word : words) {
        if (!word.empty() && !HasFailure()) {
            EXPECT_TRUE(application().says(word, static_cast<int>(std::ranges::count(words, word))))
                << "no \"" << word << "\" in: " << application().said();
        }
    }
    EXPECT_TRUE(eventually([&] { return skylet().mirrors(target_); })) << "the mirror does not follow";
    // Long enough, too, that no toolkit takes the next click for one of a series.
    EXPECT_TRUE(throughout(std::chrono::milliseconds(450), [&] { return quiet_->disturbances().empty(); }))
        << testing::PrintToString(quiet_->disturbances());
}

Window InputMatrixTest::popup() {
    const pid_t owner = x().pidOf(target_);
    for (const Window window : x().children(x().root())) {
        const Rectangle place = x().geometry(window).value_or(Rectangle{});
        if (place.width > 20 && place.height > 10 && x().isOverrideRedirect(window) &&
            x().isViewable(window) && !x().isInputOnly(window) && x().pidOf(window) == owner) {
            return window;
        }
    }
    return XCB_NONE;
}

void InputMatrixTest::expectPopup() {
    ASSERT_TRUE(eventually([&] { return popup() != XCB_NONE; }));
    ASSERT_TRUE(throughout(std::chrono::milliseconds(300), [&] { return popup() != XCB_NONE; }))
        << "the popup did not stay open";
}

// The user's own pointer chooses in the popup, `y` of its height down.
void InputMatrixTest::usePopup(double y) {
    PREPARE(expectPopup());
    const Rectangle place = x().geometry(popup()).value_or(Rectangle{});
    moveTo({place.x + place.width / 2 - 5, place.y + static_cast<int>(place.height * y)});
    click({place.x + place.width / 2, place.y + static_cast<int>(place.height * y)});
}

void InputMatrixTest::expectMenuCloses() {
    PREPARE(expectPopup());
    click({1000, 690}); // in the cover
    EXPECT_TRUE(eventually([&] { return popup() == XCB_NONE; })) << "the popup does not close";
}

TEST_P(InputMatrixTest, ReachesTheRealWindow) {
    PREPARE(prepare());
    const ProbeWords& words = application().words();

    expectReaches("click", [&] { click(inOverlay(0.3, 0.55)); }, {words.down, words.up});
    expectReaches("double click",
                  [&] {
                      click(inOverlay(0.15, 0.7));
                      click(inOverlay(0.15, 0.7));
                  },
                  {words.down, words.doubleClick, words.up, words.up, words.selection});
    expectReaches("drag",
                  [&] {
                      const Point from = inOverlay(0.1, 0.5);
                      const Point to = inOverlay(0.6, 0.8);
                      moveTo(from);
                      x().button(1, true);
                      EXPECT_TRUE(application().says(words.down)) << application().said();
                      for (int step = 1; step <= 8; ++step) {
                          moveTo({from.first + (to.first - from.first) * step / 8,
                                  from.second + (to.second - from.second) * step / 8});
                      }
                      // The application sees the drag while it happens.
                      EXPECT_TRUE(words.motion.empty() || application().says(words.motion));
                      x().button(1, false);
                  },
                  {words.down, words.motion, words.up, words.selection});
    expectReaches("wheel", [&] { click(inOverlay(0.5, 0.6), 5); }, {words.wheel});
    expectReaches("button", [&] { click({overlay_.x + 90, overlay_.bottom() - 45}); }, {words.pressed});
    if (GetParam().windowManager != WindowManagerKind::openbox) {
        return; // modifiers and menus are the toolkit's own affair
    }
    if (GetParam().toolkit == Toolkit::xterm) {
        // Control opens the terminal's own menu; with Shift it selects instead of reporting the mouse.
        const auto selects = [&] {
            x().hold(Modifier::shift, true);
            click(inOverlay(0.4, 0.65));
            click(inOverlay(0.4, 0.65));
            x().hold(Modifier::shift, false);
            EXPECT_TRUE(
                eventually([&] { return x().pidOf(x().selectionOwner("PRIMARY")) == x().pidOf(target_); }));
        };
        expectReaches("modifiers", selects, {});
    } else {
        const auto act = [&] {
            x().hold(Modifier::control, true);
            click(inOverlay(0.4, 0.92));
            x().hold(Modifier::control, false);
        };
        expectReaches("modifiers", act, {words.controlDown, words.up});
    }
    expectReaches("plain again", [&] { click(inOverlay(0.7, 0.6)); }, {words.down, words.up});
    expectReaches("right click",
                  [&] {
                      click(inOverlay(0.25, 0.6), 3);
                      if (!words.item.empty() && !words.leftOpensMenu) {
                          usePopup(0.5);
                      } else if (words.rightOpensMenu) {
                          expectMenuCloses();
                      }
                  },
                  {words.rightDown, words.rightUp, words.leftOpensMenu ? "" : words.item});
    if (words.leftOpensMenu) {
        expectReaches("list",
                      [&] {
                          click({overlay_.right() - 90, overlay_.bottom() - 45});
                          usePopup(0.75);
                      },
                      {words.item});
    } else if (words.rightOpensMenu) {
        expectReaches("menu closed by a click elsewhere",
                      [&] {
                          click(inOverlay(0.35, 0.5), 3);
                          expectMenuCloses();
                      },
                      {words.rightDown});
    }
    expectReaches("click after the menu", [&] { click(inOverlay(0.5, 0.7)); }, {words.down, words.up});
}

const Cell small[] = {
    {WindowManagerKind::openbox, Toolkit::raw},
    {WindowManagerKind::openbox, Toolkit::xterm},
};

INSTANTIATE_TEST_SUITE_P(Small, InputMatrixTest, testing::ValuesIn(small), nameOf);

std::vector<Cell> theRest() {
    std::vector<Cell> result;
    for (const auto windowManager :
         {WindowManagerKind::openbox, WindowManagerKind::none, WindowManagerKind::xfwm4,
          WindowManagerKind::metacity, WindowManagerKind::mutter, WindowManagerKind::kwin,
          WindowManagerKind::i3, WindowManagerKind::openboxFollowing, WindowManagerKind::xfwm4Following}) {
        for (const auto toolkit :
             {Toolkit::raw, Toolkit::xterm, Toolkit::tk, Toolkit::gtk3, Toolkit::gtk4, Toolkit::qt5,
              Toolkit::qt6, Toolkit::chromium, Toolkit::firefox, Toolkit::office}) {
            result.push_back({windowManager, toolkit});
            if (windowManager == WindowManagerKind::openbox) {
                result.push_back({windowManager, toolkit, false});
            }
        }
    }
    std::erase_if(result, [&](const Cell& one) { return std::ranges::count(small, one) > 0; });
    return result;
}

INSTANTIATE_TEST_SUITE_P(Full, InputMatrixTest, testing::ValuesIn(theRest()), nameOf);

} // namespace
} // namespace skylet::desktop
