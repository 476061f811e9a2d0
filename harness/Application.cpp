#include "Application.h"

#include <fstream>
#include <string_view>

namespace skylet::desktop {
namespace {

// An office and a browser have a lot to read on a busy machine.
constexpr std::chrono::seconds longestStart{60};

ProbeWords wordsOf(Toolkit toolkit) {
    switch (toolkit) {
    case Toolkit::raw:
        return {"press1@",   "release1", "press1@", "press1+control@",
                "motion",    "",         "press5@", "press3@",
                "release3@", "",         "",        false};
    case Toolkit::xterm:
        return {"<0;", "m", "<0;", "", "<32;", "", "<65;", "<2;", "m", "", "", false};
    case Toolkit::chromium:
    case Toolkit::firefox:
        return {.selection = "selected'",
                .rightUp = "menu",
                .pressed = "pressed",
                .item = "item",
                .leftOpensMenu = true};
    case Toolkit::office:
        return {.motion = ""};
    default:
        return {.pressed = "pressed", .item = "item"};
    }
}

Command commandOf(Toolkit toolkit, const VirtualDesktop& desktop) {
    const std::string apps = SKYLET_APPS_FOLDER "/";
    const std::string page = "file://" + apps + "input.html";
    const std::string python = "/usr/bin/python3";
    switch (toolkit) {
    case Toolkit::raw:
        return {SKYLET_BUILD_FOLDER "/puppet"};
    case Toolkit::xterm:
        return {"xterm",
                "-title",
                "target",
                "-geometry",
                "72x24+100+90",
                "-e",
                apps + "input_xterm.sh",
                desktop.path("xterm.mouse"),
                desktop.path("xterm.text")};
    case Toolkit::tk:
        return {"wish", apps + "input.tcl"};
    case Toolkit::gtk3:
        return {python, apps + "input_gtk.py", "3.0"};
    case Toolkit::gtk4:
        return {python, apps + "input_gtk.py", "4.0"};
    case Toolkit::qt5:
        return {python, apps + "input_qt.py", "5"};
    case Toolkit::qt6:
        return {python, apps + "input_qt.py", "6"};
    case Toolkit::chromium: {
        Command command{"chromium",
                        "--no-sandbox",
                        "--no-first-run",
                        "--password-store=basic",
                        "--disable-gpu",
                        "--user-data-dir=" + desktop.path("chromium"),
                        "--window-position=100,90",
                        "--window-size=640,480",
                        "--app=" + page};
        // What that variable is to the other browser.
        if (desktop.environment().contains("GNOME_ACCESSIBILITY")) {
            command.emplace_back("--force-renderer-accessibility");
        }
        return command;
    }
    case Toolkit::office:
        return {python, apps + "input_office.py", desktop.path("office")};
    case Toolkit::firefox:
        return {"firefox-esr", "--new-instance",
                "--profile",   desktop.path("firefox"),
                "--width",     "640",
                "--height",    "480",
                page};
    }
    return {};
}

// What stands between the name and the closing full stop; browsers add their own name.
std::string wordsInTitle(const std::string& title) {
    constexpr std::string_view name = "target ";
    const auto end = title.rfind(" .");
    return title.starts_with(name) && end != std::string::npos && end > name.size()
               ? title.substr(name.size(), end - name.size())
               : "";
}

int occurrences(const std::string& text, const std::string& word) {
    int count = 0;
    for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at + word.size())) {
        ++count;
    }
    return count;
}

} // namespace

std::string nameOf(Toolkit toolkit) {
    constexpr const char* names[] = {"raw", "xterm", "tk",       "gtk3",    "gtk4",
                                     "qt5", "qt6",   "chromium", "firefox", "office"};
    return names[static_cast<std::size_t>(toolkit)];
}

Application::Application(VirtualDesktop& desktop, Toolkit toolkit)
    : desktop_(desktop)
    , toolkit_(toolkit)
    , words_(wordsOf(toolkit)) {
    if (toolkit == Toolkit::firefox) {
        // A browser asks many questions at its first start.
        writeFile(desktop.path("firefox/user.js"),
                  "user_pref('browser.aboutwelcome.enabled', false);\n"
                  "user_pref('browser.shell.checkDefaultBrowser', false);\n"
                  "user_pref('datareporting.policy.dataSubmissionEnabled', false);\n"
                  "user_pref('toolkit.telemetry.enabled', false);\n"
                  "user_pref('general.smoothScroll', false);\n");
    }
    process_ = desktop.start(commandOf(toolkit, desktop), nameOf(toolkit) + ".err");
    if (toolkit == Toolkit::raw) {
        process_.write("window 100 90 480 320 title=target\n");
        (void)process_.readLine();
    }
    (void)eventually([this] { return findWindow() || !process_.isRunning(); }, longestStart);
    if (window_ == XCB_NONE) {
        return;
    }
    if (toolkit == Toolkit::office) {
        (void)says("ready");
        // Where nobody decorates or floats windows the office keeps a size of its own.
        const Rectangle place{100, 90, 640, 480};
        (void)eventually([&] {
            desktop_.x().moveResize(window_, place);
            const auto now = desktop_.x().geometry(window_).value_or(Rectangle{});
            return now.width == place.width && now.height == place.height;
        });
    }
    // Toolkits paint some time after they map; text is what they paint last.
    (void)eventually([&] {
        const auto place = desktop_.x().visibleGeometry(window_).value_or(Rectangle{});
        const Picture seen = desktop_.x().screenshot(place);
        return !seen.pixels.empty() && count(seen, seen.pixels[seen.pixels.size() / 2]) <
                                           static_cast<int>(seen.pixels.size() * 97 / 100);
    });
}

// Browsers show a window of their own before the page.
bool Application::findWindow() {
    const XSession& x = desktop_.x();
    for (const Window window : x.managedWindows()) {
        const std::string title = x.text(window, "_NET_WM_NAME") + x.text(window, "WM_NAME");
        if (x.isViewable(window) && title.starts_with("target") &&
            x.geometry(window).value_or(Rectangle{}).width > 300) {
            window_ = window;
        }
    }
    return window_ != XCB_NONE;
}

void Application::changeContent() {
    const std::string number = std::to_string(++changes_);
    if (toolkit_ == Toolkit::raw) {
        process_.write("pattern " + number + "\n");
        (void)process_.readLine();
    } else if (toolkit_ == Toolkit::xterm) {
        std::ofstream(desktop_.path("xterm.text"), std::ios::app) << "change number " << number << "\r\n";
    } else {
        process_.write("change number " + number + "\n");
    }
}

std::string Application::everything() {
    switch (toolkit_) {
    case Toolkit::raw:
        process_.write("events\n");
        heard_ += process_.readLine().value_or("") + " ";
        return heard_;
    case Toolkit::xterm:
        return readFile(desktop_.path("xterm.mouse"));
    case Toolkit::chromium:
    case Toolkit::firefox:
        return wordsInTitle(desktop_.x().text(window_, "_NET_WM_NAME"));
    default:
        while (const auto line = process_.readLine(std::chrono::milliseconds(0))) {
            heard_ += *line + " ";
        }
        return heard_;
    }
}

std::string Application::said() {
    std::string all = everything();
    // A page's title holds only the last words, so that the beginning may be gone.
    for (std::size_t gone = 0; gone < forgotten_.size(); ++gone) {
        if (all.starts_with(forgotten_.substr(gone))) {
            return all.substr(forgotten_.size() - gone);
        }
    }
    return all;
}

bool Application::says(const std::string& word, int times) {
    return eventually([&] { return occurrences(said(), word) >= times; }, std::chrono::seconds(8));
}

Puppet::Puppet(VirtualDesktop& desktop)
    : desktop_(desktop)
    , process_(desktop.start({SKYLET_BUILD_FOLDER "/puppet"}, "puppet.err")) {}

std::string Puppet::tell(const std::string& command) {
    process_.write(command + "\n");
    return process_.readLine().value_or("no answer");
}

Window Puppet::open(const std::string& description) {
    const auto window = static_cast<Window>(std::stoul("0" + tell("window " + description)));
    const bool seen = eventually([&] { return desktop_.x().isViewable(window); });
    return seen ? window : XCB_NONE;
}

} // namespace skylet::desktop
