#include "SkyletProgram.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace skylet::desktop {
namespace {

constexpr xcb_keysym_t keyP = 'p';
// "yyyy-MM-dd HH:mm:ss.SSS" and two spaces.
constexpr std::size_t stampLength = 25;

} // namespace

SkyletProgram::SkyletProgram(VirtualDesktop& desktop, Preferences preferences) : desktop_(desktop) {
    preferences.try_emplace("debugLogging", "true");
    std::string text = "[General]\n";
    for (const auto& [key, value] : preferences) {
        text += key;
        text += "=" + value + "\n";
    }
    writeFile(desktop.configPath("Skylet/skylet.conf"), text);
    forgetLog();
    process_ = desktop.start({SKYLET_BUILD_FOLDER "/skylet"}, "skylet.err");
}

SkyletProgram::SkyletProgram(VirtualDesktop& desktop, Bare)
    : desktop_(desktop)
    , process_(desktop.start({SKYLET_BUILD_FOLDER "/skylet"}, "skylet.err")) {
    forgetLog();
}

std::string SkyletProgram::logText() const {
    return readFile(desktop_.statePath("Skylet/skylet.log"));
}

std::vector<std::string> SkyletProgram::log() const {
    std::istringstream text(logText());
    std::vector<std::string> result;
    std::size_t number = 0;
    for (std::string line; std::getline(text, line);) {
        if (number++ >= skipped_) {
            result.push_back(line.size() >= stampLength ? line.substr(stampLength) : line);
        }
    }
    return result;
}

int SkyletProgram::count(const std::string& beginning) const {
    const std::vector<std::string> lines = log();
    return static_cast<int>(
        std::ranges::count_if(lines, [&](const std::string& line) { return line.starts_with(beginning); }));
}

bool SkyletProgram::waitForLog(const std::string& beginning, int times,
                               std::chrono::milliseconds deadline) const {
    return eventually([&] { return count(beginning) >= times; }, deadline);
}

void SkyletProgram::pressShortcut() {
    desktop_.x().press(keyP, {Modifier::control, Modifier::super});
}

bool SkyletProgram::pin(Window window) {
    const std::string line = "pin: overlay created for wid=" + std::to_string(window);
    const int before = count(line);
    // A window manager may pass over a window that is still busy with its own start; a user asks again.
    constexpr int attempts = 4;
    bool isActive = false;
    for (int attempt = 0; attempt < attempts && !isActive; ++attempt) {
        desktop_.x().activate(window);
        isActive = !desktop_.x().hasWindowManager() ||
                   eventually([&] { return desktop_.x().activeWindow() == window; }, patience / attempts);
    }
    if (!isActive) {
        return false;
    }
    pressShortcut();
    return waitForLog(line, before + 1);
}

std::vector<Window> SkyletProgram::overlays() const {
    const XSession& x = desktop_.x();
    std::vector<Window> result = x.children(x.root());
    std::erase_if(result, [&](Window window) {
        return !x.isViewable(window) || x.isInputOnly(window) || !x.isOverrideRedirect(window) ||
               x.pidOf(window) != process_.pid() || x.geometry(window).value_or(Rectangle{}).width <= 1;
    });
    return result;
}

std::optional<Window> SkyletProgram::overlayInFront() const {
    const std::vector<Window> all = overlays();
    if (all.size() != 1) {
        return std::nullopt;
    }
    const XSession& x = desktop_.x();
    const std::optional<Rectangle> place = x.geometry(all.front());
    const std::vector<Rectangle> shape = x.shape(all.front(), XCB_SHAPE_SK_BOUNDING);
    const bool whole = place && shape.size() == 1 && shape.front().width >= place->width &&
                       shape.front().height >= place->height;
    const std::vector<Window> stack = x.children(x.root());
    const auto position = [&](Window window) {
        return std::ranges::find(stack, x.topLevelOf(window));
    };
    const auto managed = x.managedWindows();
    const bool above = std::ranges::all_of(managed, [&](Window window) {
        return !x.isViewable(window) || position(window) < std::ranges::find(stack, all.front());
    });
    return whole && above ? std::optional(all.front()) : std::nullopt;
}

bool SkyletProgram::mirrors(Window target) const {
    const std::optional<Window> overlay = overlayInFront();
    const std::optional<Picture> wanted = desktop_.x().content(target);
    if (!overlay || !wanted) {
        return false;
    }
    const auto place = desktop_.x().geometry(*overlay);
    return place && desktop_.x().screenshot(*place) == wanted->cut({0, 0, place->width, place->height});
}

SkyletProgram::Icon SkyletProgram::icon() const {
    constexpr int panelHeight = 60; // at most
    const Rectangle screen = desktop_.x().screen();
    const Picture panel =
        desktop_.x().screenshot({0, screen.height - panelHeight, screen.width, panelHeight});
    Icon icon;
    int left = panel.width;
    int top = panel.height;
    int right = 0;
    int bottom = 0;
    for (int y = 0; y < panel.height; ++y) {
        for (int x = 0; x < panel.width; ++x) {
            const std::uint32_t colour = panel.at(x, y);
            if ((colour >> 16) > 200 && ((colour >> 8) & 0xFF) < 100 && (colour & 0xFF) < 100) {
                ++icon.pixels;
                left = std::min(left, x);
                top = std::min(top, y);
                right = std::max(right, x);
                bottom = std::max(bottom, y);
            }
        }
    }
    icon.place = {left, screen.height - panelHeight + top, right - left, bottom - top};
    return icon;
}

long SkyletProgram::proportionalMemory() const {
    std::istringstream text(readFile("/proc/" + std::to_string(process_.pid()) + "/smaps_rollup"));
    for (std::string line; std::getline(text, line);) {
        if (line.starts_with("Pss:")) {
            return std::stol(line.substr(4));
        }
    }
    return -1;
}

int SkyletProgram::openDescriptors() const {
    int result = 0;
    std::error_code ignored;
    const std::string folder = "/proc/" + std::to_string(process_.pid()) + "/fd";
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
        ++result;
    }
    return result;
}

} // namespace skylet::desktop
