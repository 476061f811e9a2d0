#include "InputProbe.h"

#include <string_view>

namespace skylet::desktop {
namespace {

// An office and a browser have a lot to read on a busy machine.
constexpr std::chrono::seconds longestStart{60};
const std::string apps = SKYLET_APPS_FOLDER "/";
const std::string page = apps + "input.html";

ProbeWords wordsOf(Toolkit toolkit) {
    switch (toolkit) {
    case Toolkit::raw:
        return {.down = "press1@",
                .up = "release1",
                .doubleClick = "press1@",
                .controlDown = "press1+control@",
                .motion = "motion",
                .selection = "",
                .wheel = "press5@",
                .rightDown = "press3@",
                .rightUp = "release3@",
                .item = ""};
    case Toolkit::xterm:
        return {.down = "<0;",
                .up = "m",
                .doubleClick = "<0;",
                .controlDown = "",
                .motion = "<32;",
                .selection = "",
                .wheel = "<65;",
                .rightDown = "<2;",
                .rightUp = "m",
                .item = ""};
    case Toolkit::chromium:
    case Toolkit::firefox:
        return {.down = "down1",
                .up = "up1",
                .doubleClick = "double1",
                .controlDown = "down1+control",
                .motion = "motion",
                .selection = "selected'",
                .wheel = "scrolled",
                .rightDown = "down3",
                .rightUp = "menu",
                .item = "item",
                .rightOpensMenu = true,
                .leftOpensMenu = true};
    case Toolkit::office:
        return {.down = "down1",
                .up = "up1",
                .doubleClick = "double1",
                .controlDown = "down1+control",
                .motion = "",
                .selection = "selected ",
                .wheel = "scrolled",
                .rightDown = "down3",
                .rightUp = "",
                .item = "",
                .rightOpensMenu = true};
    default:
        return {.down = "down1",
                .up = "up1",
                .doubleClick = "double1",
                .controlDown = "down1+control",
                .motion = "motion",
                .selection = "selected ",
                .wheel = "scrolled",
                .rightDown = "down3",
                .rightUp = "",
                .item = "item",
                .rightOpensMenu = true};
    }
}

Command commandOf(Toolkit toolkit, const VirtualDesktop& desktop) {
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
                desktop.path("xterm.mouse")};
    case Toolkit::tk:
        return {"wish", apps + "input.tcl"};
    case Toolkit::gtk3:
        return {"/usr/bin/python3", apps + "input_gtk.py", "3.0"};
    case Toolkit::gtk4:
        return {"/usr/bin/python3", apps + "input_gtk.py", "4.0"};
    case Toolkit::qt5:
        return {"/usr/bin/python3", apps + "input_qt.py", "5"};
    case Toolkit::qt6:
        return {"/usr/bin/python3", apps + "input_qt.py", "6"};
    case Toolkit::chromium:
        return {"chromium",
                "--no-sandbox",
                "--no-first-run",
                "--password-store=basic",
                "--disable-gpu",
                "--user-data-dir=" + desktop.path("chromium"),
                "--window-position=100,90",
                "--window-size=640,480",
                "--app=file://" + page};
    case Toolkit::office:
        return {"/usr/bin/python3", apps + "input_office.py", desktop.path("office")};
    case Toolkit::firefox:
        return {"firefox-esr", "--new-instance", "--profile", desktop.path("firefox"), "--width",
                "640",         "--height",       "480",       "file://" + page};
    }
    return {};
}

// A browser asks many questions at its first start.
void prepareFirefox(const std::string& folder) {
    run({"mkdir", "-p", folder}, {});
    writeFile(folder + "/user.js", "user_pref('browser.aboutwelcome.enabled', false);\n"
                                   "user_pref('browser.shell.checkDefaultBrowser', false);\n"
                                   "user_pref('datareporting.policy.dataSubmissionEnabled', false);\n"
                                   "user_pref('toolkit.telemetry.enabled', false);\n"
                                   "user_pref('general.smoothScroll', false);\n");
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

InputProbe::InputProbe(VirtualDesktop& desktop, Toolkit toolkit, bool accessible)
    : desktop_(desktop)
    , toolkit_(toolkit)
    , words_(wordsOf(toolkit)) {
    if (toolkit == Toolkit::firefox) {
        prepareFirefox(desktop.path("firefox"));
    }
    Command command = commandOf(toolkit, desktop);
    if (accessible && toolkit == Toolkit::chromium) {
        command.emplace_back("--force-renderer-accessibility");
    } else if (accessible && toolkit == Toolkit::firefox) {
        command.insert(command.begin(), {"env", "GNOME_ACCESSIBILITY=1"});
    }
    process_ = desktop.start(command, nameOf(toolkit) + ".err");
    if (toolkit == Toolkit::raw) {
        process_.write("window 100 90 480 320 title=target\n");
        (void)process_.readLine();
    }
    // Browsers show a window of their own before the page.
    (void)eventually(
        [&] {
            for (const Window window : desktop_.x().managedWindows()) {
                const auto place = desktop_.x().geometry(window).value_or(Rectangle{});
                if (desktop_.x().isViewable(window) &&
                    (desktop_.x().text(window, "_NET_WM_NAME") + desktop_.x().text(window, "WM_NAME"))
                        .starts_with("target") &&
                    place.width > 300) {
                    window_ = window;
                    return true;
                }
            }
            return !process_.isRunning();
        },
        longestStart);
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

std::string InputProbe::everything() {
    switch (toolkit_) {
    case Toolkit::raw:
        process_.write("events\n");
        if (const auto line = process_.readLine()) {
            heard_ += *line + " ";
        }
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

std::string InputProbe::said() {
    std::string all = everything();
    // A page's title holds only the last words, so that the beginning may be gone.
    for (std::size_t gone = 0; gone < forgotten_.size(); ++gone) {
        if (all.starts_with(forgotten_.substr(gone))) {
            return all.substr(forgotten_.size() - gone);
        }
    }
    return all;
}

void InputProbe::forget() {
    forgotten_ = everything();
}

bool InputProbe::says(const std::string& word, int times) {
    return eventually([&] { return occurrences(said(), word) >= times; }, std::chrono::seconds(8));
}

} // namespace skylet::desktop
