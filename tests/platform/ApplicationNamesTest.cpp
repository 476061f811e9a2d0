#include "platform/x11/ApplicationNames.h"

#include "platform/ServerTest.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/SerialQueues.h"
#include "platform/x11/ProcessWatcher.h"

#include <filesystem>
#include <unistd.h>

namespace skylet::test {

namespace {

using platform::ProcessID;
using platform::x11::ApplicationNames;
using platform::x11::DesktopEntries;
using platform::x11::ProcessWatcher;

class DesktopEntriesTest : public testing::Test {
  protected:
    DesktopEntriesTest() {
        std::filesystem::create_directories(directory_.path("home/kde"));
        std::filesystem::create_directories(directory_.path("system"));
    }
    void entry(const std::string& file, const std::string& keys) const {
        writeFile(directory_.path(file),
                  "# a comment\n[Desktop Entry]\n" + keys + "\n[Desktop Action x]\nName=No\n");
    }
    [[nodiscard]] DesktopEntries read(const std::string& locale) const {
        return DesktopEntries::read(directories_, locale);
    }

    TemporaryDirectory directory_;
    const std::vector<std::string> directories_{directory_.path("home"), directory_.path("missing"),
                                                directory_.path("system")};
};

TEST_F(DesktopEntriesTest, NamesInTheUsersLanguage) {
    entry("system/a.desktop",
          "Type=Application\nName=Files\nName[sr]=sr\nName[it]=File\nName[sr@latin]=latin\n"
          "Name[pt_BR]=Arquivos\nName[pt]=Ficheiros\nName[itx]=no");
    struct {
        const char* locale;
        const char* name;
    } const cases[] = {{"", "Files"},   {"C", "Files"},           {"it_IT", "File"},
                       {"it", "File"},  {"pt_BR", "Arquivos"},    {"pt_PT", "Ficheiros"},
                       {"sr_RS", "sr"}, {"sr_RS@latin", "latin"}, {"de_DE", "Files"}};
    for (const auto& one : cases) {
        EXPECT_EQ(read(one.locale).nameById("a"), one.name) << one.locale;
    }
}

TEST_F(DesktopEntriesTest, EarlierDirectoriesHideLaterOnes) {
    entry("system/org.App.desktop", "Type=Application\nName=System\nStartupWMClass=Wm");
    entry("system/hidden.desktop", "Type=Application\nName=Deleted\nStartupWMClass=Gone");
    entry("system/link.desktop", "Type=Link\nName=Link");
    entry("system/broken.desktop", "Type=Application");
    writeFile(directory_.path("system/empty.desktop"), "");
    writeFile(directory_.path("system/bytes.desktop"),
              "[Desktop Entry]\nType=\xFF" + std::string(1, '\0') + "\nName");
    entry("home/org.App.desktop", "Type = Application\r\nName = Mine\\sown \r\nStartupWMClass=Wm");
    entry("home/hidden.desktop", "Type=Application\nName=Deleted\nHidden=true\nStartupWMClass=Gone");
    entry("home/kde/sub.desktop", "Type=Application\nName=Sub");
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

// Entries that are there before anybody reads them.
class EntryDirectory : public TemporaryDirectory {
  public:
    EntryDirectory() {
        entry("by-class", "Name=By class\nStartupWMClass=Claimed");
        entry("org.gtk.App", "Name=By GTK id");
        entry("plain", "Name=By id");
    }

  private:
    void entry(const std::string& id, const std::string& keys) const {
        writeFile(path(id + ".desktop"), "[Desktop Entry]\nType=Application\n" + keys + "\n");
    }
};

class ApplicationNamesTest : public ServerTest {
  protected:
    [[nodiscard]] xcb_window_t window(const std::string& windowClass, const std::string& gtkId = {}) {
        const xcb_window_t result = other_.createWindow({0, 0, 10, 10});
        if (!windowClass.empty()) {
            other_.setText(result, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING,
                           "instance" + std::string(1, '\0') + windowClass + '\0');
        }
        if (!gtkId.empty()) {
            other_.setText(result, connection().atoms().GTK_APPLICATION_ID, connection().atoms().UTF8_STRING,
                           gtkId);
        }
        return result;
    }

    EntryDirectory directory_;
    platform::qt::QtMainQueue mainQueue_;
    platform::qt::ThreadSerialQueueFactory queues_;
    ApplicationNames names_{connection(), mainQueue_, queues_, {{directory_.path()}, "it_IT"}};
};

TEST_F(ApplicationNamesTest, AsksTheBestSourceFirst) {
    const auto claimed = window("Claimed", "org.gtk.App");
    EXPECT_EQ(names_.name(1, claimed), "Claimed") << "before the entries are read";
    ASSERT_TRUE(eventually([&] { return names_.isReady(); }));
    struct {
        xcb_window_t window;
        const char* name;
    } const cases[] = {
        {claimed, "By class"},
        {window("Plain", "org.gtk.App"), "By GTK id"},
        {window("Plain", "org.gtk.Unknown"), "By id"},
        {window("Unknown"), "Unknown"},
    };
    ProcessID pid = 1;
    for (const auto& one : cases) {
        EXPECT_EQ(names_.name(pid, one.window), one.name);
        EXPECT_TRUE(names_.isKnown(pid));
        ++pid;
    }
    writeFile("/proc/self/comm", "a process");
    EXPECT_EQ(names_.name(getpid(), window("")), "a process");
    EXPECT_EQ(names_.name(0x3FFFFFFF, window("")), std::nullopt);
    EXPECT_EQ(names_.name(0x3FFFFFFF, XCB_WINDOW_NONE), std::nullopt);
}

TEST(ProcessWatcherTest, TellsOfEveryEndOnce) {
    std::vector<ProcessID> ended;
    ProcessWatcher watcher([&](ProcessID pid) { ended.push_back(pid); });
    ChildProcess one({"sleep", "1000"});
    ChildProcess two({"sleep", "1000"});
    const ProcessID first = one.pid();
    watcher.watch(first);
    watcher.watch(first);
    watcher.watch(two.pid());
    watcher.watch(0x3FFFFFFF);
    watcher.watch(-1);
    watcher.checkAll();
    EXPECT_TRUE(ended.empty());
    one.end(SIGKILL);
    EXPECT_TRUE(eventually([&] { return !ended.empty(); }));
    watcher.checkAll();
    QCoreApplication::processEvents();
    EXPECT_EQ(ended, std::vector<ProcessID>{first});
}

TEST(ProcessWatcherTest, MayBeAskedWhereProcessesDoNotTell) {
    std::vector<ProcessID> ended;
    ChildProcess child({"sleep", "1000"});
    const ProcessID pid = child.pid();
    ProcessWatcher watcher([&](ProcessID gone) { ended.push_back(gone); });
    watcher.watch(pid);
    child.end(SIGKILL);
    watcher.checkAll(); // before the event loop could have told
    EXPECT_EQ(ended, std::vector<ProcessID>{pid});
    QCoreApplication::processEvents();
    EXPECT_EQ(ended.size(), 1U);
}

} // namespace

} // namespace skylet::test
