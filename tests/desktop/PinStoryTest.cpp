// One pinned window from its pin to its end, under every window manager and with every toolkit.
#include "DesktopTest.h"

#include <algorithm>

namespace skylet::desktop {
namespace {

constexpr Rectangle minimumOverlay{0, 0, 320, 220};

struct Combination {
    WindowManagerKind windowManager;
    Toolkit application;

    bool operator==(const Combination&) const = default;
};

std::string nameOf(const testing::TestParamInfo<Combination>& test) {
    return nameOf(test.param.windowManager) + "_" + nameOf(test.param.application);
}

class PinStoryTest : public DesktopTest, public testing::WithParamInterface<Combination> {
  protected:
    void expectUndisturbed(Window active) {
        if (x().hasWindowManager()) {
            EXPECT_EQ(x().activeWindow(), active);
        }
        EXPECT_EQ(x().pidOf(x().inputFocus()), x().pidOf(active)) << "the keyboard went elsewhere";
    }
};

TEST_P(PinStoryTest, MirrorFollowsAndNeverDisturbs) {
    PREPARE(openDesktop({.windowManager = GetParam().windowManager}));
    PREPARE(openTarget(GetParam().application));
    PREPARE(launch());

    // Pinned while in front: nothing to float yet.
    ASSERT_TRUE(skylet().pin(target_)) << skylet().logText();
    EXPECT_TRUE(skylet().waitForLog("togglePin: Pinned '"));
    EXPECT_TRUE(isOutOfTheWayOf(target_));

    // Another application comes to the front.
    PREPARE(bringToFront(cover_));
    ASSERT_TRUE(eventually([&] { return floatsOver(target_); }));
    expectUndisturbed(cover_);

    // The covered window changes, then moves and is resized.
    const std::optional<Picture> before = x().content(target_);
    application().changeContent();
    EXPECT_TRUE(eventually([&] { return x().content(target_) != before && skylet().mirrors(target_); }));
    const Rectangle old = x().geometry(target_).value_or(Rectangle{});
    x().moveResize(target_, {old.x + 60, old.y + 40, old.width + 30, old.height + 50});
    EXPECT_TRUE(eventually([&] { return x().geometry(target_) != old && floatsOver(target_); }));
    expectUndisturbed(cover_);

    // The user's hands: first the left grip, then the right one.
    const Rectangle placed = overlayPlace();
    const Rectangle moved{330, 70, placed.width, placed.height};
    x().drag(placed.x + 6, placed.bottom() - 6, moved.x + 6, moved.bottom() - 6);
    EXPECT_TRUE(eventually([&] { return overlayPlace() == moved; })) << overlayPlace() << " for " << moved;
    expectUndisturbed(cover_);
    x().drag(moved.right() - 6, moved.bottom() - 6, moved.right() - 56, moved.bottom() + 24);
    const Rectangle resized{moved.x, moved.y, std::max(moved.width - 50, minimumOverlay.width),
                            std::max(moved.height + 30, minimumOverlay.height)};
    EXPECT_TRUE(eventually([&] { return overlayPlace() == resized; }))
        << overlayPlace() << " for " << resized;
    x().drag(resized.right() - 6, resized.bottom() - 6, resized.x + 20, resized.y + 20);
    const Rectangle smallest{moved.x, moved.y, minimumOverlay.width, minimumOverlay.height};
    EXPECT_TRUE(eventually([&] { return overlayPlace() == smallest; }))
        << overlayPlace() << " for " << smallest;
    expectUndisturbed(cover_);

    // From now on the overlay's place is the user's.
    const Rectangle present = x().geometry(target_).value_or(Rectangle{});
    x().moveResize(target_, {present.x - 30, present.y - 20, present.width, present.height});
    EXPECT_TRUE(throughout(std::chrono::milliseconds(700), [&] { return overlayPlace() == smallest; }));

    // Behind with its own window in front, floating again without.
    x().movePointer(1270, 790);
    PREPARE(bringToFront(target_));
    EXPECT_TRUE(skylet().waitForLog("overlay: sendBehind wid="));
    EXPECT_TRUE(eventually([&] { return isOutOfTheWayOf(target_); }));
    PREPARE(bringToFront(cover_));
    EXPECT_TRUE(eventually([&] { return overlayPlace() == smallest; }));
    expectUndisturbed(cover_);
    EXPECT_EQ(x().pointer(), std::pair(1270, 790));

    // The shortcut releases the only pinned window, whatever is in front.
    skylet().pressShortcut();
    EXPECT_TRUE(skylet().waitForLog("togglePin: Unpinned '"));
    EXPECT_TRUE(eventually([&] { return skylet().overlays().empty(); }));
    const std::string number = std::to_string(target_);
    std::vector<std::string> expected{"pin: overlay created for wid=" + number};
    for (const char* what : {"bringToFront", "sendBehind", "bringToFront", "hideOverlay"}) {
        expected.push_back("overlay: " + std::string(what) + " wid=" + number);
    }
    std::vector<std::string> lines;
    for (const std::string& line : skylet().log()) {
        const auto known =
            std::ranges::find_if(expected, [&](const auto& one) { return line.starts_with(one); });
        if (known != expected.end()) {
            lines.push_back(*known);
        }
    }
    EXPECT_EQ(lines, expected);
}

const Combination small[] = {
    {WindowManagerKind::openbox, Toolkit::raw},
    {WindowManagerKind::openbox, Toolkit::xterm},
    {WindowManagerKind::none, Toolkit::raw},
};

INSTANTIATE_TEST_SUITE_P(Small, PinStoryTest, testing::ValuesIn(small), nameOf);

std::vector<Combination> theRest() {
    std::vector<Combination> result;
    for (const auto windowManager :
         {WindowManagerKind::none, WindowManagerKind::openbox, WindowManagerKind::openboxPicom,
          WindowManagerKind::xfwm4, WindowManagerKind::xfwm4Compositing, WindowManagerKind::metacity,
          WindowManagerKind::mutter, WindowManagerKind::kwin, WindowManagerKind::kwinCompositing,
          WindowManagerKind::i3}) {
        for (const auto application : {Toolkit::raw, Toolkit::xterm, Toolkit::gtk3, Toolkit::gtk4,
                                       Toolkit::qt5, Toolkit::qt6, Toolkit::tk}) {
            result.push_back({windowManager, application});
        }
    }
    std::erase_if(result, [](const Combination& one) { return std::ranges::count(small, one) > 0; });
    return result;
}

INSTANTIATE_TEST_SUITE_P(Full, PinStoryTest, testing::ValuesIn(theRest()), nameOf);

} // namespace
} // namespace skylet::desktop
