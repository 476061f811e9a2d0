// The whole program but for its windows, on a simulated desktop where a document is open.
#pragma once

#include "app/AppDelegate.h"
#include "foundation/PreferenceKeys.h"
#include "support/SimulatedDesktop.h"

#include <gtest/gtest.h>

namespace skylet {

class AppTest : public testing::Test {
  protected:
    static constexpr platform::Rect place{100, 100, 800, 600};
    static constexpr auto hiddenKey = "ZentroStatusItemVisibility.Hidden.com.corvane.skylet";

    [[nodiscard]] std::unique_ptr<AppDelegate> make(sim::SimulatedDesktop& on) {
        const auto note = [this](const char* what) {
            return [this, what] {
                done.emplace_back(what);
            };
        };
        return std::make_unique<AppDelegate>(on.environment, on.scroller, on.eventTap, on.eventPoster,
                                             on.application, on.statusBar,
                                             AppCallbacks{.reportToUser = {},
                                                          .fatal = {},
                                                          .terminate = note("terminate"),
                                                          .openSettings = note("settings"),
                                                          .openAbout = note("about")});
    }

    sim::SimulatedDesktop desktop;
    platform::WindowID document = desktop.openWindow(editor, "doc", place);
    Lines done; // what the program asked for
    std::unique_ptr<AppDelegate> app = make(desktop);
};

} // namespace skylet
