#include "DesktopTest.h"

#include <algorithm>

namespace skylet::desktop {

void DesktopTest::openDesktop(const DesktopOptions& options) {
    // A desktop takes everything with it that was started after it.
    application_.reset();
    puppet_.reset();
    desktop_.reset();
    desktop_ = std::make_unique<VirtualDesktop>(options);
    ASSERT_EQ(desktop_->problem(), "");
}

void DesktopTest::launch(const Preferences& preferences) {
    skylet_ = std::make_unique<SkyletProgram>(desktop(), preferences);
    ASSERT_TRUE(skylet_->waitUntilLaunched()) << skylet_->logText() << skylet_->errorOutput();
}

void DesktopTest::openPuppet() {
    puppet_ = std::make_unique<Puppet>(desktop());
    ASSERT_TRUE(puppet_->process().isRunning());
}

void DesktopTest::openTarget(Toolkit toolkit, const std::string& cover) {
    application_ = std::make_unique<Application>(desktop(), toolkit);
    target_ = application_->window();
    ASSERT_NE(target_, Window{XCB_NONE}) << application_->process().errorOutput();
    PREPARE(openPuppet());
    cover_ = puppet().open(cover + " title=cover");
    ASSERT_NE(cover_, Window{XCB_NONE});
    x().movePointer(1270, 790);
}

void DesktopTest::launchAndPin(const Preferences& preferences) {
    PREPARE(launch(preferences));
    PREPARE(pinAndCover(target_, cover_));
    ASSERT_TRUE(eventually([&] { return floatsOver(target_); }))
        << "overlay at " << overlayPlace() << " of a window at "
        << x().visibleGeometry(target_).value_or(Rectangle{}) << ", differing pixels: "
        << difference(x().screenshot(overlayPlace()), x().content(target_).value_or(Picture{}))
        << ", in the overlay itself: "
        << difference(x().content(skylet().overlayInFront().value_or(target_)).value_or(Picture{}),
                      x().content(target_).value_or(Picture{}));
}

void DesktopTest::bringToFront(Window window) {
    x().activate(window);
    ASSERT_TRUE(eventually([&] {
        return x().hasWindowManager() ? x().activeWindow() == window : x().inputFocus() == window;
    })) << "window "
        << window << " does not become active";
}

void DesktopTest::pinAndCover(Window target, Window cover) {
    ASSERT_TRUE(skylet().pin(target)) << skylet().logText();
    PREPARE(bringToFront(cover));
    // An application that is still busy with its own start may take the front back; a user clicks again.
    ASSERT_TRUE(eventually([&] {
        if (x().activeWindow() == target) {
            x().activate(cover);
        }
        return skylet().overlayInFront().has_value();
    })) << "no overlay in front; the window "
        << target << ", its cover " << cover << ", active " << x().activeWindow() << ", focused "
        << x().inputFocus() << '\n'
        << skylet().logText();
}

Rectangle DesktopTest::overlayPlace() {
    const std::optional<Window> overlay = skylet().overlayInFront();
    return overlay ? x().geometry(*overlay).value_or(Rectangle{}) : Rectangle{};
}

bool DesktopTest::floatsOver(Window target) {
    return overlayPlace() == x().visibleGeometry(target) && skylet().mirrors(target);
}

bool DesktopTest::isOutOfTheWayOf(Window target) {
    const std::optional<Rectangle> place = x().visibleGeometry(target);
    const std::vector<Window> overlays = skylet().overlays();
    return place && std::ranges::all_of(overlays, [&](Window overlay) {
               const Rectangle whole = x().geometry(overlay).value_or(Rectangle{});
               const std::vector<Rectangle> shape = x().shape(overlay, XCB_SHAPE_SK_BOUNDING);
               return std::ranges::none_of(shape, [&](const Rectangle& part) {
                   return part.x + whole.x < place->right() && part.right() + whole.x > place->x &&
                          part.y + whole.y < place->bottom() && part.bottom() + whole.y > place->y;
               });
           });
}

int DesktopTest::endSkylet() {
    const int code = skylet_->process().stop();
    EXPECT_EQ(skylet_->errorOutput(), expectedErrors_);
    skylet_.reset();
    return code;
}

void DesktopTest::expectFailure(Process& process, const std::string& named) {
    const std::optional<int> code = process.waitForExit();
    ASSERT_TRUE(code) << "it runs on";
    EXPECT_GT(*code, 0);
    EXPECT_LT(*code, 126) << "it crashed";
    const std::string told = process.errorOutput();
    EXPECT_EQ(std::ranges::count(told, '\n'), 1) << told;
    EXPECT_NE(told.find(named), std::string::npos) << told;
}

void DesktopTest::TearDown() {
    if (skylet_) {
        EXPECT_TRUE(skylet_->process().isRunning()) << "exit code " << skylet_->process().stop();
        skylet_->process().stop();
        EXPECT_EQ(skylet_->errorOutput(), expectedErrors_);
        if (HasFailure()) {
            std::cout << skylet_->logText();
        }
    }
}

} // namespace skylet::desktop
