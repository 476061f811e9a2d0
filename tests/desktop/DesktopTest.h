// What the end-to-end tests share: a desktop, the program on it, and that it stays silent and alive.
#pragma once

#include "harness/Application.h"
#include "harness/SkyletProgram.h"
#include "harness/VirtualDesktop.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace skylet::desktop {

class DesktopTest : public testing::Test {
  protected:
    // Each of these fails the test when it does not come about; check with ASSERT_FALSE(HasFatalFailure()).
    void openDesktop(const DesktopOptions& options = {});
    void launch(const Preferences& preferences = {});
    void openPuppet();

    [[nodiscard]] VirtualDesktop& desktop() { return *desktop_; }
    [[nodiscard]] XSession& x() { return desktop_->x(); }
    [[nodiscard]] SkyletProgram& skylet() { return *skylet_; }
    [[nodiscard]] Puppet& puppet() { return *puppet_; }

    // An application to pin, a window that covers it, and the pointer far from both.
    void openTarget(Toolkit toolkit = Toolkit::raw, const std::string& cover = "40 30 1000 700");
    [[nodiscard]] Application& application() { return *application_; }
    // Launches, pins the target and covers it; its overlay floats.
    void launchAndPin(const Preferences& preferences = {});

    // A window of another application, brought to the front.
    void bringToFront(Window window);
    // Pins `target`, then brings `cover` to the front, so that the overlay floats.
    void pinAndCover(Window target, Window cover);
    // Of the overlay in front; empty where there is none.
    [[nodiscard]] Rectangle overlayPlace();
    // The overlay in front shows the target's picture, in its place.
    [[nodiscard]] bool floatsOver(Window target);
    // The overlay is mapped nowhere over the target, or not at all.
    [[nodiscard]] bool isOutOfTheWayOf(Window target);
    // Ends the program before the test's end, which needs no life check then.
    int endSkylet();

    // It ends by itself and says why in one line that names `named`.
    static void expectFailure(Process& process, const std::string& named = {});

    void TearDown() override;

    // What standard error may hold at the end.
    std::string expectedErrors_;
    Window target_ = XCB_NONE;
    Window cover_ = XCB_NONE;

  private:
    std::unique_ptr<VirtualDesktop> desktop_;
    std::unique_ptr<Application> application_;
    std::unique_ptr<Puppet> puppet_;
    std::unique_ptr<SkyletProgram> skylet_;
};

// A step of preparation without which the rest has no meaning.
#define PREPARE(step)                                                                                        \
    step;                                                                                                    \
    ASSERT_FALSE(HasFatalFailure())

} // namespace skylet::desktop
