// Preferences that a user, a disk or another program has spoiled.
#include "DesktopTest.h"

#include <algorithm>
#include <filesystem>

namespace skylet::desktop {
namespace {

namespace fs = std::filesystem;

class PreferencesTest : public DesktopTest {
  protected:
    void SetUp() override { PREPARE(openDesktop()); }
    [[nodiscard]] std::string file() { return desktop().configPath("Skylet/skylet.conf"); }
};

TEST_F(PreferencesTest, ImpossibleShortcutEndsTheProgram) {
    const Preferences cases[] = {
        {{"shortcutKeyCode", "70000"}, {"shortcutModifiers", "1048576"}},
        {{"shortcutKeyCode", "-3"}, {"shortcutModifiers", "1048576"}},
        {{"shortcutKeyCode", "35"}, {"shortcutModifiers", "-1"}},
    };
    for (const Preferences& preferences : cases) {
        SCOPED_TRACE(preferences.at("shortcutKeyCode") + "/" + preferences.at("shortcutModifiers"));
        fs::remove(desktop().path("skylet.err"));
        SkyletProgram program(desktop(), preferences);
        const std::optional<int> code = program.process().waitForExit();
        ASSERT_TRUE(code);
        EXPECT_GT(*code, 0);
        EXPECT_LT(*code, 126) << "it crashed";
        EXPECT_EQ(std::ranges::count(program.errorOutput(), '\n'), 1) << program.errorOutput();
    }
}

TEST_F(PreferencesTest, StoredShortcutReplacesTheBuiltInOne) {
    PREPARE(openPuppet());
    const Window window = puppet().open("100 90 480 320 title=target");
    // Option-Shift-J.
    PREPARE(launch({{"shortcutKeyCode", "38"}, {"shortcutModifiers", std::to_string(0x80000 + 0x20000)}}));
    PREPARE(bringToFront(window));
    skylet().pressShortcut();
    x().press('j', {Modifier::alt, Modifier::shift});
    EXPECT_TRUE(skylet().waitForLog("togglePin: Pinned 'target'"));
    EXPECT_EQ(skylet().count("togglePin: "), 1);
}

TEST_F(PreferencesTest, DamagedFilesAreSurvived) {
    struct Case {
        const char* description;
        std::string content;
    };
    const Case cases[] = {
        {"empty", ""},
        {"no INI at all", std::string("\x7f"
                                      "ELF\0\0\1\2\3",
                                      9)},
        {"half a line", "[General]\ndebugLogging=tr"},
        {"a megabyte of one line", "[General]\nx=" + std::string(1 << 20, 'y')},
        {"another group", "[Other]\ndebugLogging=true\n"},
        {"absurd values", "[General]\ncaptureRate=1e400\nforwardEvents=maybe\nshortcutKeyCode=x\n"
                          "axScrollSensitivity=nan\nZentroRegisteredHotkeys=\n"},
    };
    PREPARE(openPuppet());
    const Window window = puppet().open("100 90 480 320 title=target");
    const Window cover = puppet().open("500 90 480 320 title=cover");
    for (const Case& test : cases) {
        SCOPED_TRACE(test.description);
        writeFile(file(), test.content);
        SkyletProgram program = SkyletProgram::startBare(desktop());
        // Without a log the overlay tells that it works.
        x().activate(window);
        EXPECT_TRUE(eventually([&] {
            if (program.overlays().empty()) {
                x().activate(window);
                (void)eventually([&] { return x().activeWindow() == window; });
                program.pressShortcut();
                x().activate(cover);
                return eventually([&] { return program.overlayInFront().has_value(); },
                                  std::chrono::milliseconds(1500));
            }
            return true;
        }));
        EXPECT_TRUE(program.process().isRunning());
        EXPECT_EQ(program.errorOutput(), "");
    }
    EXPECT_FALSE(fs::exists(desktop().statePath("Skylet/skylet.log"))) << "logged without being asked to";
}

TEST_F(PreferencesTest, FoldersThatCannotBeUsedAreSurvived) {
    struct Case {
        const char* description;
        std::function<void(const std::string& folder)> spoil;
    };
    const Case cases[] = {
        {"a file in place of the folder",
         [](const std::string& folder) {
             writeFile(folder, "here first");
         }},
        {"a folder in place of the file",
         [](const std::string& folder) {
             fs::create_directories(folder + "/skylet.conf/deeper");
         }},
        {"a dangling link",
         [](const std::string& folder) {
             fs::create_directories(folder);
             fs::create_symlink("/nonexistent/skylet.conf", folder + "/skylet.conf");
         }},
        {"neither readable nor writable",
         [](const std::string& folder) {
             writeFile(folder + "/skylet.conf", "[General]\n");
             fs::permissions(folder + "/skylet.conf", fs::perms::none);
             fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
         }},
    };
    PREPARE(openPuppet());
    const Window window = puppet().open("100 90 480 320 title=target");
    const Window cover = puppet().open("500 90 480 320 title=cover");
    for (const Case& test : cases) {
        SCOPED_TRACE(test.description);
        const std::string folder = desktop().configPath("Skylet");
        fs::remove_all(folder);
        test.spoil(folder);
        SkyletProgram program = SkyletProgram::startBare(desktop());
        EXPECT_TRUE(eventually([&] {
            x().activate(window);
            (void)eventually([&] { return x().activeWindow() == window; });
            program.pressShortcut();
            x().activate(cover);
            return eventually([&] { return program.overlayInFront().has_value(); },
                              std::chrono::milliseconds(1500));
        }));
        EXPECT_TRUE(program.process().isRunning());
        EXPECT_EQ(program.errorOutput(), "");
        program.process().stop();
        fs::permissions(folder, fs::perms::owner_all);
    }
}

TEST_F(PreferencesTest, LoggingIsSwitchedWhileItRuns) {
    PREPARE(openPuppet());
    const Window window = puppet().open("100 90 480 320 title=target");
    PREPARE(launch());
    EXPECT_EQ(fs::status(desktop().statePath("Skylet")).permissions(), fs::perms::owner_all);
    EXPECT_EQ(fs::status(desktop().statePath("Skylet/skylet.log")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
    std::string text = readFile(file());
    const auto replace = [&](const std::string& from, const std::string& to) {
        text.replace(text.find(from), from.size(), to);
        writeFile(file() + ".new", text);
        fs::rename(file() + ".new", file());
    };
    replace("debugLogging=true", "debugLogging=false");
    const std::string before = skylet().logText();
    PREPARE(bringToFront(window));
    skylet().pressShortcut();
    EXPECT_TRUE(throughout(std::chrono::milliseconds(700), [&] { return skylet().logText() == before; }));
    replace("debugLogging=false", "debugLogging=true");
    skylet().pressShortcut();
    EXPECT_TRUE(skylet().waitForLog("togglePin: Unpinned 'target'"));
}

} // namespace
} // namespace skylet::desktop
