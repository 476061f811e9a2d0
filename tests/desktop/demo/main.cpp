// Shows on a private virtual desktop that a pinned window's mirror is live: pins a terminal, covers it, lets
// it print, and compares the mirror with the terminal pixel by pixel. Saves pictures of each step in the
// folder it is given.
#include "harness/Application.h"
#include "harness/SkyletProgram.h"
#include "harness/VirtualDesktop.h"

#include <QImage>
#include <QString>

#include <csignal>
#include <filesystem>
#include <iostream>
#include <string>
#include <thread>
#include <unistd.h>

namespace skylet::desktop {
namespace {

constexpr int interrupted = 130;

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
    XSession& x = desktop_.x();
    Application terminal(desktop_, ApplicationKind::xterm, "terminal");
    Application cover(desktop_, ApplicationKind::xterm, "another application",
                      {"-bg", "#2d4a6b", "-fg", "white"});
    if (!step(terminal.window() != XCB_NONE && cover.window() != XCB_NONE, "Two terminals are open.")) {
        return false;
    }
    x.moveResize(cover.window(), {60, 50, 800, 520});

    SkyletProgram skylet(desktop_);
    if (!step(skylet.waitUntilLaunched(), "Skylet has launched.")) {
        std::cout << skylet.errorOutput();
        return false;
    }
    if (!step(skylet.pin(terminal.window()),
              "The shortcut Control+Super+P was pressed in the first terminal: it is pinned.")) {
        return false;
    }
    picture("1-pinned.png");

    x.activate(cover.window());
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
        return now && still && difference(*now, *still) > 0 && skylet.mirrors(terminal.window());
    });
    if (!step(followed, "The covered terminal printed, and the mirror shows every pixel of it.")) {
        return false;
    }
    picture("3-mirror-followed.png");

    skylet.pressShortcut();
    return step(eventually([&] { return skylet.overlays().empty(); }),
                "The shortcut was pressed again: the mirror is gone.");
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
    return skylet::desktop::Demonstration(argc > 1 ? argv[1] : ".").show();
}
