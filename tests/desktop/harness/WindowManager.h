// The window managers that a test can ask for.
#pragma once

#include "Process.h"

#include <string>

namespace skylet::desktop {

enum class WindowManagerKind {
    none,
    openbox,
    openboxPicom,     // with a compositor beside it
    openboxFollowing, // the focus follows the mouse
    xfwm4,
    xfwm4Compositing,
    xfwm4Following,
    metacity,
    mutter,
    kwin,
    kwinCompositing,
    i3,
};

struct WindowManager {
    Command command{}; // empty for none
    Environment environment{};
    bool compositing = false;
    bool withPicom = false;
};

// A name that can stand in a test's name.
[[nodiscard]] std::string nameOf(WindowManagerKind kind);
// `configFolder` is where a configuration file may be written that the program needs.
[[nodiscard]] WindowManager describe(WindowManagerKind kind, const std::string& configFolder);

} // namespace skylet::desktop
