// Shows on a private virtual desktop that a pinned window's mirror is live and can be used: pins a terminal,
// covers it, lets it print, and compares the mirror with the terminal pixel by pixel; clicks and scrolls in
// the mirror of a page; opens the menu, the settings and the About window. Saves pictures of each step
// in the folder it is given.
#include "harness/AccessibleTree.h"
#include "harness/Application.h"
#include "harness/SkyletProgram.h"
#include "harness/VirtualDesktop.h"

#include <QCoreApplication>
#include <QImage>
#include <QString>

#include <csignal>
#include <filesystem>
#include <iostream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace skylet::desktop {
namespace {

constexpr int interrupted = 130;
constexpr xcb_keysym_t escapeKey = 0xff1b; // XK_Escape

// Ends what was started when the user ends the demonstration.
void watchSignals(const std::string& folder) {
    sigset_t ending;
    ::sigemptyset(&ending);
    ::sigaddset(&ending, SIGINT);
    ::sigaddset(&ending, SIGTERM);
    ::sigaddset(&ending, SIGHUP);
    ::pthread_sigmask(SIG_BLOCK, &ending, nullptr);
    std::thread([ending, folder] {
        int number = 0;
        ::sigwait(&ending, &number);
        endDescendants();
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
        ::_exit(interrupted);
    }).detach();
}

class Demonstration {
  public:
    explicit Demonstration(std::string folder) : folder_(std::move(folder)) {}
    int show();

  private:
    bool step(bool done, const std::string& told);
    void picture(const std::string& name);
    bool play();
    bool playMirror(SkyletProgram& skylet, Application& terminal, Window cover);
    bool playInput(SkyletProgram& skylet, Window cover);
    bool playMenu(SkyletProgram& skylet);
    bool playWindows();

    std::string folder_;
    VirtualDesktop desktop_;
    int number_ = 0;
};

bool Demonstration::step(bool done, const std::string& told) {
    std::cout << ++number_ << ". " << told << (done ? "" : "  FAILED") << std::endl;
    return done;
}

void Demonstration::picture(const std::string& name) {
    const Picture all = desktop_.x().screenshot(desktop_.x().screen());
    const QImage image(reinterpret_cast<const uchar*>(all.pixels.data()), all.width, all.height,
                       QImage::Format_RGB32);
    const std::string path = folder_ + "/" + name;
    std::cout << "   picture: " << path << (image.save(QString::fromStdString(path)) ? "" : " NOT SAVED")
              << std::endl;
}

bool Demonstration::play() {
    const Process tray = desktop_.start({"trayer", "--edge", "bottom", "--align", "right"}, "trayer.err");
    SkyletProgram skylet(desktop_);
    if (!step(skylet.waitUntilLaunched(), "Skylet has launched.")) {
        std::cout << skylet.errorOutput();
        return false;
    }
    XSession& x = desktop_.x();
    Application terminal(desktop_, Toolkit::xterm);
    const Process other =
        desktop_.start({"xterm", "-title", "another application", "-bg", "#2d4a6b", "-fg", "white"});
    const bool opened = eventually([&] { return !x.windowsOf(other.pid()).empty(); });
    if (!step(opened && terminal.window() != XCB_NONE, "Two terminals are open.")) {
        return false;
    }
    const Window cover = x.windowsOf(other.pid()).front();
    x.moveResize(cover, {60, 50, 800, 520});
    return playMirror(skylet, terminal, cover) && playInput(skylet, cover) && playWindows();
}

bool Demonstration::playMirror(SkyletProgram& skylet, Application& terminal, Window cover) {
    XSession& x = desktop_.x();
    if (!step(skylet.pin(terminal.window()),
              "The shortcut Control+Super+P was pressed in the first terminal: it is pinned.")) {
        return false;
    }
    picture("1-pinned.png");

    x.activate(cover);
    const bool floats = eventually([&] { return skylet.mirrors(terminal.window()); });
    if (!step(floats,
              "The other terminal came to the front and covers the first one; the mirror floats over it.")) {
        return false;
    }
    picture("2-mirror-over-the-other-window.png");

    const Rectangle before = x.geometry(skylet.overlays().front()).value_or(Rectangle{});
    x.drag(before.x + 8, before.bottom() - 8, before.x + 508, before.bottom() + 242);
    const bool moved = eventually([&] {
        const auto all = skylet.overlays();
        const Rectangle now = all.empty() ? before : x.geometry(all.front()).value_or(before);
        return now == Rectangle{before.x + 500, before.y + 250, before.width, before.height};
    });
    if (!step(moved, "The mirror was dragged away by its bottom-left grip.")) {
        return false;
    }
    x.movePointer(5, 5);
    if (!eventually([&] { return skylet.mirrors(terminal.window()); })) {
        return step(false, "The mirror shows the terminal in its new place.");
    }
    const std::optional<Picture> still = x.content(terminal.window());
    for (int line = 0; line < 5; ++line) {
        terminal.changeContent();
    }
    const bool followed = eventually([&] {
        const std::optional<Picture> now = x.content(terminal.window());
        return now && still && *now != *still && skylet.mirrors(terminal.window());
    });
    picture("3-mirror-followed.png");
    return step(followed, "The covered terminal printed, and the mirror shows every pixel of it.");
}

bool Demonstration::playInput(SkyletProgram& skylet, Window cover) {
    XSession& x = desktop_.x();
    skylet.pressShortcut();
    if (!step(eventually([&] { return skylet.overlays().empty(); }),
              "The shortcut was pressed again: the mirror is gone.")) {
        return false;
    }
    Process page = desktop_.start({"wish", SKYLET_DEMO_FOLDER "/page.tcl"}, "page.err");
    const bool opened = eventually([&] { return !x.windowsOf(page.pid()).empty(); });
    const Window window = opened ? x.windowsOf(page.pid()).front() : Window{XCB_NONE};
    const bool pinned = opened && skylet.pin(window);
    x.activate(cover);
    if (!step(pinned && eventually([&] { return skylet.mirrors(window); }),
              "A window with a button and a long page is pinned and covered.")) {
        return false;
    }
    const Rectangle mirror = x.geometry(skylet.overlays().front()).value_or(Rectangle{});
    x.click(mirror.x + mirror.width / 2, mirror.y + 30);
    const bool pressed = page.readLine() == "pressed";
    for (int turn = 0; turn < 5; ++turn) {
        x.click(mirror.x + mirror.width / 2, mirror.y + mirror.height / 2, 5);
    }
    const bool used =
        pressed && page.readLine() == "scrolled" && eventually([&] { return skylet.mirrors(window); });
    picture("4-clicked-and-scrolled.png");
    return step(used,
                "A click in the mirror pressed the covered button, the wheel scrolled the covered page.") &&
           step(x.activeWindow() == cover && x.pidOf(x.inputFocus()) == x.pidOf(cover),
                "The window in use kept the focus.") &&
           playMenu(skylet);
}

bool Demonstration::playMenu(SkyletProgram& skylet) {
    XSession& x = desktop_.x();
    if (!step(eventually([&] { return skylet.icon().pixels > 0; }), "Skylet's icon is in the tray.")) {
        return false;
    }
    const Rectangle icon = skylet.icon().place;
    const std::size_t before = skylet.overlays().size(); // a menu is as unmanaged as an overlay
    const Picture without = x.screenshot(x.screen());
    x.click(icon.x + icon.width / 2, icon.y + icon.height / 2);
    const bool opened = eventually([&] {
        const std::vector<Window> windows = skylet.overlays();
        if (windows.size() != before + 1) {
            return false;
        }
        // A window is there before its program has painted it.
        const Rectangle place = x.geometry(windows.back()).value_or(Rectangle{});
        return difference(x.screenshot(place), without.cut(place)) > place.width * place.height / 2;
    });
    picture("5-menu.png");
    x.press(escapeKey);
    return step(opened && eventually([&] { return skylet.overlays().size() == before; }),
                "A click on it opened the menu.");
}

bool Demonstration::playWindows() {
    const AccessibleTree tree(desktop_);
    const auto shows = [&](const char* action, const char* text, const char* name) {
        const bool shown =
            tree.perform(action) && eventually([&] { return tree.find("Skylet", text).has_value(); });
        picture(name);
        return shown;
    };
    return step(shows("settings", "Apri all’accesso", "6-settings.png"), "The settings are open.") &&
           step(shows("about", "Chiudi", "7-about.png"), "The About window is open.");
}

int Demonstration::show() {
    if (!desktop_.problem().empty()) {
        std::cerr << desktop_.problem() << std::endl;
        return 1;
    }
    watchSignals(desktop_.path(""));
    std::cout << "No display was given, so Skylet is shown on a private virtual desktop." << std::endl;
    std::error_code ignored;
    std::filesystem::create_directories(folder_, ignored);
    const bool good = play();
    if (!good) {
        picture("failed.png");
        std::cout << readFile(desktop_.statePath("Skylet/skylet.log"));
    }
    return good ? 0 : 1;
}

} // namespace
} // namespace skylet::desktop

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    const QCoreApplication application(argc, argv); // for the session bus
    return skylet::desktop::Demonstration(argc > 1 ? argv[1] : ".").show();
}
