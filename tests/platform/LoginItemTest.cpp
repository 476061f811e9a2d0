#include "platform/PrivateServer.h"
#include "platform/qt/AutostartEntry.h"
#include "platform/qt/SettingsProgram.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace skylet::test {

namespace {

namespace fs = std::filesystem;
using platform::qt::AutostartEntry;
using platform::qt::settingsProgram;

class LoginItemTest : public testing::Test {
  protected:
    void write(const std::string& text) const {
        fs::create_directories(fs::path(path_).parent_path());
        std::ofstream(path_, std::ios::binary) << text;
    }
    [[nodiscard]] std::string read() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    [[nodiscard]] std::size_t files() const {
        const fs::path folder = fs::path(path_).parent_path();
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }

    TemporaryDirectory folder_;
    std::string path_ = folder_.path() + "/config/autostart/com.corvane.skylet.desktop";
    AutostartEntry item_{path_, "Skylet", "/usr/bin/skylet"};
};

TEST_F(LoginItemTest, WritesACompleteEntryAndRemovesIt) {
    EXPECT_FALSE(item_.isEnabled());
    EXPECT_TRUE(item_.registerItem());
    EXPECT_TRUE(item_.isEnabled());
    EXPECT_EQ(read(), "[Desktop Entry]\nType=Application\nName=Skylet\nExec=\"/usr/bin/skylet\"\n"
                      "TryExec=/usr/bin/skylet\nIcon=com.corvane.skylet\nTerminal=false\nHidden=false\n"
                      "X-GNOME-Autostart-enabled=true\n");
    EXPECT_TRUE(item_.registerItem());
    EXPECT_EQ(files(), 1U);
    EXPECT_TRUE(item_.unregisterItem());
    EXPECT_FALSE(item_.isEnabled());
    EXPECT_EQ(files(), 0U);
    EXPECT_TRUE(item_.unregisterItem()) << "there is none, which is what was asked for";
}

TEST_F(LoginItemTest, SeesWhatOtherToolsDid) {
    struct Case {
        const char* description;
        const char* text;
        bool enabled;
    };
    const Case cases[] = {
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
    for (const Case& test : cases) {
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
    EXPECT_EQ(read(), "# mine\n[Desktop Entry]\nName=Skylet\nX-GNOME-Autostart-Delay=5\nHidden=false\n"
                      "Exec=\"/usr/bin/skylet\"\nType=Application\nTryExec=/usr/bin/skylet\n"
                      "Icon=com.corvane.skylet\nTerminal=false\nX-GNOME-Autostart-enabled=true\n\n"
                      "[Desktop Action a]\nExec=/other\n");
}

TEST_F(LoginItemTest, FailsWithoutLosingAnything) {
    // A file where the folder should be: nobody can write below it, whatever the rights.
    fs::create_directories(folder_.path() + "/config");
    std::ofstream(folder_.path() + "/config/autostart") << "here first";
    EXPECT_FALSE(item_.registerItem());
    EXPECT_FALSE(item_.isEnabled());
    EXPECT_EQ(fs::file_size(folder_.path() + "/config/autostart"), 10U);
    fs::remove(folder_.path() + "/config/autostart");
    fs::create_directories(path_ + "/a folder in place of the file");
    EXPECT_FALSE(item_.registerItem());
    EXPECT_FALSE(item_.unregisterItem());
}

TEST_F(LoginItemTest, QuotesEveryPath) {
    struct Case {
        const char* program;
        const char* quoted;
        const char* line;
    };
    const Case cases[] = {
        {"/opt/My Apps/skylet", R"("/opt/My Apps/skylet")", R"(Exec="/opt/My Apps/skylet")"},
        {"/opt/100%/skylet", R"("/opt/100%%/skylet")", R"(Exec="/opt/100%%/skylet")"},
        {R"(/opt/a"b)", R"("/opt/a\"b")", R"(Exec="/opt/a\\"b")"},
        {R"(/opt/$a`b)", R"("/opt/\$a\`b")", R"(Exec="/opt/\\$a\\`b")"},
        {R"(/opt/a\b)", R"("/opt/a\\b")", R"(Exec="/opt/a\\\\b")"},
        {"/opt/è", R"("/opt/è")", R"(Exec="/opt/è")"},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(AutostartEntry::quotedForExec(test.program), test.quoted);
        EXPECT_TRUE(AutostartEntry(path_, "Skylet", test.program).registerItem());
        EXPECT_NE(read().find(std::string(test.line) + "\n"), std::string::npos) << read();
    }
}

TEST_F(LoginItemTest, LiesInTheUsersConfiguration) {
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", "/somewhere");
    EXPECT_EQ(AutostartEntry::defaultPath("x"), "/somewhere/autostart/x.desktop");
    qputenv("XDG_CONFIG_HOME", "relative");
    EXPECT_TRUE(AutostartEntry::defaultPath("x").ends_with("/.config/autostart/x.desktop"));
    qputenv("XDG_CONFIG_HOME", before);
}

TEST(SettingsProgram, IsTheOneOfTheDesktop) {
    const auto screen =
        QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture");
    const auto accessibility =
        QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility");
    struct Case {
        QString url;
        const char* desktop;
        const char* installed;
        const char* command; // null: none
    };
    const Case cases[] = {
        {screen, "GNOME", "gnome-control-center", "gnome-control-center privacy"},
        {accessibility, "ubuntu:GNOME", "gnome-control-center", "gnome-control-center universal-access"},
        {accessibility, "KDE", "systemsettings", "systemsettings kcm_access"},
        {screen, "KDE", "systemsettings5", "systemsettings5"},
        {screen, "XFCE", "xfce4-settings-manager", "xfce4-settings-manager"},
        {screen, "XFCE", "gnome-control-center", nullptr},
        {screen, "", "gnome-control-center", nullptr},
        {QStringLiteral("https://example.org/?Privacy_Accessibility"), "GNOME", "gnome-control-center",
         nullptr},
    };
    for (const Case& test : cases) {
        const auto command =
            settingsProgram(test.url, QString::fromLatin1(test.desktop), [&](const QString& program) {
                return program == QLatin1StringView(test.installed);
            });
        ASSERT_EQ(command.has_value(), test.command != nullptr) << test.desktop;
        if (command) {
            EXPECT_EQ(command->join(u' ').toStdString(), test.command);
        }
    }
}

} // namespace
} // namespace skylet::test
