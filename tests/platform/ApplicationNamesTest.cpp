#include "platform/x11/ApplicationNames.h"

#include "platform/ServerTest.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/SerialQueues.h"
#include "platform/x11/ProcessWatcher.h"

#include <filesystem>
#include <unistd.h>

namespace skylet::test {

namespace {

using namespace platform;
using namespace platform::x11;

// Desktop entries in one directory or more.
class EntryDirectory : public TemporaryDirectory {
  public:
    void add(const std::string& file, const std::string& keys) const {
        std::filesystem::create_directories(std::filesystem::path(path(file)).parent_path());
        writeFile(path(file), "# a comment\n[Desktop Entry]\n" + keys + "\n[Desktop Action x]\nName=No\n");
    }
};

class DesktopEntriesTest : public testing::Test {
  protected:
    [[nodiscard]] DesktopEntries read(const std::string& locale) const {
        return DesktopEntries::read(
            {directory_.path("home"), directory_.path("missing"), directory_.path("system")}, locale);
    }

    EntryDirectory directory_;
};

TEST_F(DesktopEntriesTest, NamesInTheUsersLanguage) {
    directory_.add("system/a.desktop",
                   "Type=Application\nName=Files\nName[sr]=sr\nName[it]=File\nName[sr@latin]=latin\n"
                   "Name[pt_BR]=Arquivos\nName[pt]=Ficheiros\nName[itx]=no");
    for (const auto& [locale, name] :
         std::vector<std::pair<const char*, const char*>>{{"", "Files"},
                                                          {"C", "Files"},
                                                          {"it_IT", "File"},
                                                          {"it", "File"},
                                                          {"pt_BR", "Arquivos"},
                                                          {"pt_PT", "Ficheiros"},
                                                          {"sr_RS", "sr"},
                                                          {"sr_RS@latin", "latin"},
                                                          {"de_DE", "Files"}}) {
        EXPECT_EQ(read(locale).nameById("a"), name) << locale;
    }
}

TEST_F(DesktopEntriesTest, EarlierDirectoriesHideLaterOnes) {
    directory_.add("system/org.App.desktop", "Type=Application\nName=System\nStartupWMClass=Wm");
    directory_.add("system/hidden.desktop", "Type=Application\nName=Deleted\nStartupWMClass=Gone");
    directory_.add("system/link.desktop", "Type=Link\nName=Link");
    directory_.add("system/broken.desktop", "Type=Application");
    writeFile(directory_.path("system/empty.desktop"), "");
    writeFile(directory_.path("system/bytes.desktop"),
              "[Desktop Entry]\nType=\xFF" + std::string(1, '\0') + "\nName");
    directory_.add("home/org.App.desktop", "Type = Application\r\nName = Mine\\sown \r\nStartupWMClass=Wm");
    directory_.add("home/hidden.desktop", "Type=Application\nName=Deleted\nHidden=true\nStartupWMClass=Gone");
    directory_.add("home/kde/sub.desktop", "Type=Application\nName=Sub");
    const DesktopEntries entries = read("");
    EXPECT_EQ(entries.nameById("org.app"), "Mine own");
    EXPECT_EQ(entries.nameByWindowClass("Wm"), "Mine own");
    EXPECT_EQ(entries.nameByWindowClass("wm"), std::nullopt);
    EXPECT_EQ(entries.nameById("kde-sub"), "Sub");
    for (const char* none : {"hidden", "link", "broken", "empty", "bytes", "sub"}) {
        EXPECT_EQ(entries.nameById(none), std::nullopt) << none;
    }
    EXPECT_EQ(entries.nameByWindowClass("Gone"), std::nullopt);
}

TEST_F(DesktopEntriesTest, LooksWhereTheSessionSays) {
    const Environment home("XDG_DATA_HOME", "/one");
    const Environment shared("XDG_DATA_DIRS", "/two:relative::/three");
    EXPECT_EQ(DesktopEntries::defaultDirectories(),
              (std::vector<std::string>{"/one/applications", "/two/applications", "/three/applications"}));
    const Environment all("LC_ALL", "");
    const Environment messages("LC_MESSAGES", "sr_RS.UTF-8@latin");
    const Environment language("LANG", "it_IT.UTF-8");
    EXPECT_EQ(DesktopEntries::defaultLocale(), "sr_RS@latin");
    const Environment overriding("LC_ALL", "pt_BR.utf8");
    EXPECT_EQ(DesktopEntries::defaultLocale(), "pt_BR");
}

class ApplicationNamesTest : public ServerTest {
  protected:
    ApplicationNamesTest() {
        directory_.add("by-class.desktop", "Type=Application\nName=By class\nStartupWMClass=Claimed");
        directory_.add("org.gtk.App.desktop", "Type=Application\nName=By GTK id");
        directory_.add("plain.desktop", "Type=Application\nName=By id");
        names_.emplace(connection(), mainQueue_, queues_, NameSources{{directory_.path()}, "it_IT"});
    }
    [[nodiscard]] xcb_window_t window(const std::string& windowClass, const std::string& gtkId = {}) {
        const xcb_window_t result = other_.createWindow({0, 0, 10, 10});
        other_.setText(result, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, "instance" + ('\0' + windowClass) + '\0');
        other_.setText(result, connection().atoms().GTK_APPLICATION_ID, connection().atoms().UTF8_STRING,
                       gtkId);
        return result;
    }

    EntryDirectory directory_;
    qt::QtMainQueue mainQueue_;
    qt::ThreadSerialQueueFactory queues_;
    std::optional<ApplicationNames> names_;
};

TEST_F(ApplicationNamesTest, AsksTheBestSourceFirst) {
    const auto claimed = window("Claimed", "org.gtk.App");
    EXPECT_EQ(names_->name(1, claimed), "Claimed") << "before the entries are read";
    ASSERT_TRUE(eventually([&] { return names_->isReady(); }));
    ProcessID pid = 1;
    for (const auto& [window, name] : std::vector<std::pair<xcb_window_t, const char*>>{
             {claimed, "By class"},
             {this->window("Plain", "org.gtk.App"), "By GTK id"},
             {this->window("Plain", "org.gtk.Unknown"), "By id"},
             {this->window("Unknown"), "Unknown"}}) {
        EXPECT_EQ(names_->name(pid, window), name);
        EXPECT_TRUE(names_->isKnown(pid));
        ++pid;
    }
    writeFile("/proc/self/comm", "a process");
    EXPECT_EQ(names_->name(getpid(), window("")), "a process");
    EXPECT_EQ(names_->name(0x3FFFFFFF, window("")), std::nullopt);
    EXPECT_EQ(names_->name(0x3FFFFFFF, XCB_WINDOW_NONE), std::nullopt);
}

TEST(ProcessWatcherTest, TellsOfEveryEndOnce) {
    std::vector<ProcessID> ended;
    ProcessWatcher watcher([&](ProcessID pid) { ended.push_back(pid); });
    ChildProcess one({"sleep", "1000"});
    ChildProcess two({"sleep", "1000"});
    const std::vector<ProcessID> pids{one.pid(), two.pid()};
    for (const ProcessID pid : {pids[0], pids[0], pids[1], 0x3FFFFFFF, -1}) {
        watcher.watch(pid);
    }
    watcher.checkAll();
    EXPECT_TRUE(ended.empty());
    one.end(SIGKILL);
    EXPECT_TRUE(eventually([&] { return !ended.empty(); }));
    two.end(SIGKILL);
    watcher.checkAll(); // before the event loop could have told
    EXPECT_EQ(ended, pids);
    QCoreApplication::processEvents();
    EXPECT_EQ(ended, pids);
}

} // namespace

} // namespace skylet::test
