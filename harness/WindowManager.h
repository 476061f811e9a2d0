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
    std::string name{}; // can stand in a test's name
    Command command{};  // empty for none
    Environment environment{};
    std::string configPath{}; // of a configuration file that it needs
    std::string config{};
    bool compositing = false;
    bool withPicom = false;
};

[[nodiscard]] const WindowManager& describe(WindowManagerKind kind);
[[nodiscard]] inline std::string nameOf(WindowManagerKind kind) {
    return describe(kind).name;
}

} // namespace skylet::desktop
