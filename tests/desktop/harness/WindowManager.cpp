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
    case WindowManagerKind::openboxFollowing:
        return "openbox_following";
    case WindowManagerKind::xfwm4:
        return "xfwm4";
    case WindowManagerKind::xfwm4Compositing:
        return "xfwm4_compositing";
    case WindowManagerKind::xfwm4Following:
        return "xfwm4_following";
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
        return {.command = {"openbox", "--sm-disable"}};
    case WindowManagerKind::openboxPicom:
        return {.command = {"openbox", "--sm-disable"}, .withPicom = true};
    case WindowManagerKind::openboxFollowing:
        writeFile(configFolder + "/following.xml",
                  "<openbox_config xmlns=\"http://openbox.org/3.4/rc\"><focus><focusNew>yes</focusNew>"
                  "<followMouse>yes</followMouse></focus></openbox_config>\n");
        return {.command = {"openbox", "--sm-disable", "--config-file", configFolder + "/following.xml"}};
    case WindowManagerKind::xfwm4:
        return {.command = {"xfwm4", "--compositor=off"}};
    case WindowManagerKind::xfwm4Compositing:
        return {.command = {"xfwm4", "--compositor=on", "--vblank=off"}, .compositing = true};
    case WindowManagerKind::xfwm4Following:
        return {.command = {"sh", "-c",
                            "xfconf-query -c xfwm4 -p /general/click_to_focus -n -t bool -s false && "
                            "exec xfwm4 --compositor=off"}};
    case WindowManagerKind::metacity:
        return {.command = {"metacity", "--sm-disable", "--no-composite"}};
    case WindowManagerKind::mutter:
        return {.command = {"mutter", "--x11", "--sm-disable"}, .compositing = true};
    case WindowManagerKind::kwin:
        writeFile(configFolder + "/kwinrc", "[Compositing]\nEnabled=false\n");
        return {.command = {"kwin_x11"}, .environment = {{"KWIN_COMPOSE", "N"}}};
    case WindowManagerKind::kwinCompositing:
        return {.command = {"kwin_x11"}, .environment = {{"KWIN_COMPOSE", "O2"}}, .compositing = true};
    case WindowManagerKind::i3:
        // Tiled windows cannot cover each other, which is what the tests are about.
        writeFile(configFolder + "/i3/config", "# i3 config file (v4)\nfont pango:monospace 8\n"
                                               "for_window [class=\".*\"] floating enable\n"
                                               "focus_follows_mouse no\n");
        return {.command = {"i3", "-c", configFolder + "/i3/config"}};
    }
    return {};
}

} // namespace skylet::desktop
