#include "WindowManager.h"

namespace skylet::desktop {

std::string nameOf(WindowManagerKind kind) {
    switch (kind) {
    case WindowManagerKind::none:
        return "none";
    case WindowManagerKind::openbox:
        return "openbox";
    case WindowManagerKind::openboxPicom:
        return "openbox_picom";
    case WindowManagerKind::xfwm4:
        return "xfwm4";
    case WindowManagerKind::xfwm4Compositing:
        return "xfwm4_compositing";
    case WindowManagerKind::metacity:
        return "metacity";
    case WindowManagerKind::mutter:
        return "mutter";
    case WindowManagerKind::kwin:
        return "kwin";
    case WindowManagerKind::kwinCompositing:
        return "kwin_compositing";
    case WindowManagerKind::i3:
        return "i3";
    }
    return {};
}

WindowManager describe(WindowManagerKind kind, const std::string& configFolder) {
    switch (kind) {
    case WindowManagerKind::none:
        return {};
    case WindowManagerKind::openbox:
        return {{"openbox", "--sm-disable"}, {}, false};
    case WindowManagerKind::openboxPicom:
        return {{"openbox", "--sm-disable"}, {}, true};
    case WindowManagerKind::xfwm4:
        return {{"xfwm4", "--compositor=off"}, {}, false};
    case WindowManagerKind::xfwm4Compositing:
        return {{"xfwm4", "--compositor=on", "--vblank=off"}, {}, false};
    case WindowManagerKind::metacity:
        return {{"metacity", "--sm-disable", "--no-composite"}, {}, false};
    case WindowManagerKind::mutter:
        return {{"mutter", "--x11", "--sm-disable"}, {}, false};
    case WindowManagerKind::kwin:
        writeFile(configFolder + "/kwinrc", "[Compositing]\nEnabled=false\n");
        return {{"kwin_x11"}, {{"KWIN_COMPOSE", "N"}}, false};
    case WindowManagerKind::kwinCompositing:
        return {{"kwin_x11"}, {{"KWIN_COMPOSE", "O2"}}, false};
    case WindowManagerKind::i3:
        // Tiled windows cannot cover each other, which is what the tests are about.
        writeFile(configFolder + "/i3/config", "# i3 config file (v4)\nfont pango:monospace 8\n"
                                               "for_window [class=\".*\"] floating enable\n"
                                               "focus_follows_mouse no\n");
        return {{"i3", "-c", configFolder + "/i3/config"}, {}, false};
    }
    return {};
}

} // namespace skylet::desktop
