// Preferences that a user, a disk or another program has spoiled.
#include "DesktopTest.h"

#include <filesystem>
#include <functional>

namespace skylet::desktop {
namespace {

namespace fs = std::filesystem;

class PreferencesTest : public DesktopTest {
  protected:
    void SetUp() override { PREPARE(openDesktop()); }
    [[nodiscard]] std::string file() { return desktop().configPath("Skylet/skylet.conf"); }
};

TEST_F(PreferencesTest, ImpossibleShortcutEndsTheProgram) {
    for (const auto& [key, modifiers] : {std::pair{"70000", "1048576"}, {"-3", "1048576"}, {"35", "-1"}}) {
        SCOPED_TRACE(std::string(key) + "/" + modifiers);
        fs::remove(desktop().path("skylet.err"));
        SkyletProgram program(desktop(), {{"shortcutKeyCode", key}, {"shortcutModifiers", modifiers}});
        expectFailure(program.process());
    }
}

TEST_F(PreferencesTest, DamagedFilesAreSurvived) {
    const std::string folder = desktop().configPath("Skylet");
    struct Case {
        const char* description;
        std::function<void()> spoil;
    };
    const auto holds = [&](const std::string& text) {
        return [this, text] {
            writeFile(file(), text);
        };
    };
    const Case cases[] = {
        {"empty", holds("")},
        {"no INI at all", holds(std::string("\x7f"
                                            "ELF\0\0\1\2\3",
                                            9))},
        {"half a line", holds("[General]\ndebugLogging=tr")},
        {"a megabyte of one line", holds("[General]\nx=" + std::string(1 << 20, 'y'))},
        {"another group", holds("[Other]\ndebugLogging=true\n")},
        {"absurd values", holds("[General]\ncaptureRate=1e400\nforwardEvents=maybe\nshortcutKeyCode=x\n"
                                "axScrollSensitivity=nan\nZentroRegisteredHotkeys=\n")},
        {"a file in place of the folder",
         [&] {
             writeFile(folder, "here first");
         }},
        {"a folder in place of the file",
         [&] {
             fs::create_directories(file() + "/deeper");
         }},
        {"a dangling link",
         [&] {
             fs::create_directories(folder);
             fs::create_symlink("/nonexistent/skylet.conf", file());
         }},
        {"neither readable nor writable",
         [&] {
             writeFile(file(), "[General]\n");
             fs::permissions(file(), fs::perms::none);
             fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
         }},
    };
    PREPARE(openTarget());
    for (const Case& test : cases) {
        SCOPED_TRACE(test.description);
        fs::remove_all(folder);
        test.spoil();
        SkyletProgram program(desktop(), SkyletProgram::Bare());
        // Without a log the overlay tells that it works.
        EXPECT_TRUE(eventually([&] {
            x().activate(target_);
            (void)eventually([&] { return x().activeWindow() == target_; });
            program.pressShortcut();
            x().activate(cover_);
            return eventually([&] { return program.overlayInFront().has_value(); },
                              std::chrono::milliseconds(1500));
        }));
        EXPECT_TRUE(program.process().isRunning());
        EXPECT_EQ(program.errorOutput(), "");
        program.process().stop();
        fs::permissions(folder, fs::perms::owner_all);
    }
    EXPECT_FALSE(fs::exists(desktop().statePath("Skylet/skylet.log"))) << "logged without being asked to";
}

TEST_F(PreferencesTest, LoggingIsSwitchedWhileItRuns) {
    PREPARE(openTarget());
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
    PREPARE(bringToFront(target_));
    skylet().pressShortcut();
    EXPECT_TRUE(throughout(std::chrono::milliseconds(700), [&] { return skylet().logText() == before; }));
    replace("debugLogging=false", "debugLogging=true");
    skylet().pressShortcut();
    EXPECT_TRUE(skylet().waitForLog("togglePin: Unpinned 'target'"));
}

} // namespace
} // namespace skylet::desktop
