#include "platform/PrivateServer.h"
#include "platform/qt/AutostartEntry.h"
#include "platform/qt/SettingsProgram.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace skylet::test {

namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using platform::qt::AutostartEntry;
using platform::qt::settingsProgram;

class LoginItemTest : public testing::Test {
  protected:
    void write(const std::string& text) const {
        fs::create_directories(fs::path(path_).parent_path());
        writeFile(path_, text);
    }

    TemporaryDirectory folder_;
    std::string path_ = folder_.path("config/autostart/com.corvane.skylet.desktop");
    AutostartEntry item_{path_, "Skylet", "/usr/bin/skylet"};
};

TEST_F(LoginItemTest, WritesACompleteEntryAndRemovesIt) {
    EXPECT_FALSE(item_.isEnabled());
    EXPECT_TRUE(item_.registerItem());
    EXPECT_TRUE(item_.isEnabled());
    EXPECT_EQ(readFile(path_),
              "[Desktop Entry]\nType=Application\nName=Skylet\nExec=\"/usr/bin/skylet\"\n"
              "TryExec=/usr/bin/skylet\nIcon=com.corvane.skylet\nTerminal=false\nHidden=false\n"
              "X-GNOME-Autostart-enabled=true\n");
    EXPECT_TRUE(item_.registerItem());
    EXPECT_TRUE(item_.unregisterItem());
    EXPECT_FALSE(item_.isEnabled());
    EXPECT_TRUE(fs::is_empty(folder_.path("config/autostart")));
    EXPECT_TRUE(item_.unregisterItem()) << "there is none, which is what was asked for";
}

TEST_F(LoginItemTest, SeesWhatOtherToolsDid) {
    struct {
        const char* description;
        const char* text;
        bool enabled;
    } const cases[] = {
        {"plain", "[Desktop Entry]\nType=Application\nExec=skylet\n", true},
        {"hidden", "[Desktop Entry]\nExec=skylet\nHidden=true\n", false},
        {"hidden, with blanks", "[Desktop Entry]\r\nExec=skylet\r\nHidden = true \r\n", false},
        {"not hidden", "[Desktop Entry]\nExec=skylet\nHidden=false\n", true},
        {"switched off", "[Desktop Entry]\nExec=skylet\nX-GNOME-Autostart-enabled=false\n", false},
        {"a key of another group", "[Desktop Entry]\nExec=skylet\n[Desktop Action x]\nHidden=true\n", true},
        {"the group comes second", "# comment\n[Other]\nHidden=true\n[Desktop Entry]\nExec=skylet", true},
        {"a comment", "[Desktop Entry]\nExec=skylet\n#Hidden=true\n", true},
        {"a localised look-alike", "[Desktop Entry]\nExec=skylet\nHidden[it]=true\n", true},
        {"no command", "[Desktop Entry]\nType=Application\nExec=\n", false},
        {"empty", "", false},
        {"no desktop file", "\x01\x02\xff", false},
    };
    for (const auto& test : cases) {
        write(test.text);
        EXPECT_EQ(item_.isEnabled(), test.enabled) << test.description;
        EXPECT_TRUE(item_.registerItem()) << test.description;
        EXPECT_TRUE(item_.isEnabled()) << test.description;
    }
}

TEST_F(LoginItemTest, KeepsWhatTheUserAdded) {
    write("# mine\n[Desktop Entry]\nName=Old\nX-GNOME-Autostart-Delay=5\nHidden=true\nExec=/old\n\n"
          "[Desktop Action a]\nExec=/other\n");
    EXPECT_TRUE(item_.registerItem());
    EXPECT_EQ(readFile(path_),
              "# mine\n[Desktop Entry]\nName=Skylet\nX-GNOME-Autostart-Delay=5\nHidden=false\n"
              "Exec=\"/usr/bin/skylet\"\nType=Application\nTryExec=/usr/bin/skylet\n"
              "Icon=com.corvane.skylet\nTerminal=false\nX-GNOME-Autostart-enabled=true\n\n"
              "[Desktop Action a]\nExec=/other\n");
}

TEST_F(LoginItemTest, FailsWithoutLosingAnything) {
    // A file where the folder should be: nobody can write below it, whatever the rights.
    const std::string folder = folder_.path("config/autostart");
    fs::create_directories(folder_.path("config"));
    writeFile(folder, "here first");
    EXPECT_FALSE(item_.registerItem());
    EXPECT_FALSE(item_.isEnabled());
    EXPECT_EQ(readFile(folder), "here first");
    fs::remove(folder);
    fs::create_directories(path_ + "/a folder in place of the file");
    EXPECT_FALSE(item_.registerItem());
    EXPECT_FALSE(item_.unregisterItem());
}

TEST_F(LoginItemTest, QuotesEveryPath) {
    for (const auto& [program, line] : std::vector<std::pair<const char*, const char*>>{
             {"/opt/My Apps/skylet", R"(Exec="/opt/My Apps/skylet")"},
             {"/opt/100%/skylet", R"(Exec="/opt/100%%/skylet")"},
             {R"(/opt/a"b)", R"(Exec="/opt/a\\"b")"},
             {R"(/opt/$a`b)", R"(Exec="/opt/\\$a\\`b")"},
             {R"(/opt/a\b)", R"(Exec="/opt/a\\\\b")"},
             {"/opt/è", R"(Exec="/opt/è")"}}) {
        EXPECT_TRUE(AutostartEntry(path_, "Skylet", program).registerItem());
        EXPECT_NE(readFile(path_).find(std::string(line) + "\n"), std::string::npos) << readFile(path_);
    }
}

TEST(SettingsProgram, IsTheOneOfTheDesktop) {
    const auto apple = u"x-apple.systempreferences:com.apple.preference.security?Privacy_"_s;
    const QString screen = apple + u"ScreenCapture"_s;
    const QString accessibility = apple + u"Accessibility"_s;
    struct {
        QString url;
        const char* desktop;
        const char* installed;
        const char* command; // empty: none
    } const cases[] = {
        {screen, "GNOME", "gnome-control-center", "gnome-control-center privacy"},
        {accessibility, "ubuntu:GNOME", "gnome-control-center", "gnome-control-center universal-access"},
        {accessibility, "KDE", "systemsettings", "systemsettings kcm_access"},
        {screen, "KDE", "systemsettings5", "systemsettings5"},
        {screen, "XFCE", "xfce4-settings-manager", "xfce4-settings-manager"},
        {screen, "XFCE", "gnome-control-center", ""},
        {screen, "", "gnome-control-center", ""},
        {u"https://example.org/?Privacy_Accessibility"_s, "GNOME", "gnome-control-center", ""},
    };
    for (const auto& test : cases) {
        const auto command =
            settingsProgram(test.url, QString::fromLatin1(test.desktop), [&](const QString& program) {
                return program == QLatin1StringView(test.installed);
            });
        EXPECT_EQ(command.value_or(QStringList()).join(u' ').toStdString(), test.command) << test.desktop;
    }
}

} // namespace
} // namespace skylet::test
