#include "WindowManager.h"

namespace skylet::desktop {

const WindowManager& describe(WindowManagerKind kind) {
    static const WindowManager all[] = {
        {.name = "none"},
        {.name = "openbox", .command = {"openbox", "--sm-disable"}},
        {.name = "openbox_picom", .command = {"openbox", "--sm-disable"}, .withPicom = true},
        {.name = "openbox_following",
         .command = {"openbox", "--sm-disable"},
         .configPath = "openbox/rc.xml",
         .config = "<openbox_config xmlns=\"http://openbox.org/3.4/rc\"><focus><focusNew>yes</focusNew>"
                   "<followMouse>yes</followMouse></focus></openbox_config>\n"},
        {.name = "xfwm4", .command = {"xfwm4", "--compositor=off"}},
        {.name = "xfwm4_compositing",
         .command = {"xfwm4", "--compositor=on", "--vblank=off"},
         .compositing = true},
        {.name = "xfwm4_following",
         .command = {"sh", "-c",
                     "xfconf-query -c xfwm4 -p /general/click_to_focus -n -t bool -s false && "
                     "exec xfwm4 --compositor=off"}},
        {.name = "metacity", .command = {"metacity", "--sm-disable", "--no-composite"}},
        {.name = "mutter", .command = {"mutter", "--x11", "--sm-disable"}, .compositing = true},
        {.name = "kwin",
         .command = {"kwin_x11"},
         .environment = {{"KWIN_COMPOSE", "N"}},
         .configPath = "kwinrc",
         .config = "[Compositing]\nEnabled=false\n"},
        {.name = "kwin_compositing",
         .command = {"kwin_x11"},
         .environment = {{"KWIN_COMPOSE", "O2"}},
         .compositing = true},
        // Tiled windows cannot cover each other, which is what the tests are about.
        {.name = "i3",
         .command = {"i3"},
         .configPath = "i3/config",
         .config = "# i3 config file (v4)\nfont pango:monospace 8\n"
                   "for_window [class=\".*\"] floating enable\nfocus_follows_mouse no\n"},
    };
    return all[static_cast<std::size_t>(kind)];
}

} // namespace skylet::desktop
