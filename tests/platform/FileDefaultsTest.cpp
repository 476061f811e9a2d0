#include "platform/qt/FileDefaults.h"

#include "platform/PrivateServer.h"

#include <QSettings>

#include <array>
#include <atomic>
#include <clocale>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace skylet::test {

namespace {

namespace fs = std::filesystem;
using platform::DefaultsStatus;
using platform::qt::FileDefaults;

class FileDefaultsTest : public testing::Test {
  protected:
    void write(const std::string& bytes) const { writeFile(path_, bytes); }
    // As editors save: a new file takes the name.
    void replace(const std::string& bytes) const {
        writeFile(path_ + ".new", bytes);
        fs::rename(path_ + ".new", path_);
    }
    [[nodiscard]] std::string content() const { return readFile(path_); }
    void protect(mode_t file, mode_t directory) const {
        ASSERT_EQ(chmod(path_.c_str(), file), 0);
        ASSERT_EQ(chmod(directory_.path().c_str(), directory), 0);
    }
    [[nodiscard]] static std::ptrdiff_t filesIn(const std::string& directory) {
        return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
    }

    TemporaryDirectory directory_;
    std::string path_ = directory_.path("skylet.conf");
};

// What root may do anyway cannot be tested as root.
void asPlainUser(const std::function<void()>& work) {
    constexpr uid_t nobody = 65534;
    const bool isRoot = getuid() == 0;
    ASSERT_TRUE(!isRoot || seteuid(nobody) == 0);
    work();
    ASSERT_TRUE(!isRoot || seteuid(0) == 0);
}

constexpr std::nullopt_t wrong = std::nullopt;

template <class Read, class Value>
void expectRead(const Read& read, const std::optional<Value>& expected, const char* raw) {
    EXPECT_EQ(read.status, expected ? DefaultsStatus::value : DefaultsStatus::wrongType) << raw;
    EXPECT_EQ(read.value, expected.value_or(Value{})) << raw;
}

TEST_F(FileDefaultsTest, ReadsTypesStrictly) {
    // What each read finds; nothing where the text is of a wrong type.
    struct Case {
        const char* raw;
        std::optional<bool> asBool;
        std::optional<std::int64_t> asInteger;
        std::optional<double> asDouble;
    };
    std::vector<Case> cases{
        {"true", true, wrong, wrong},
        {"TRUE", true, wrong, wrong},
        {"False", false, wrong, wrong},
        {"1", true, 1, 1},
        {"0", false, 0, 0},
        {"2", wrong, 2, 2},
        {"35.9", wrong, 35, 35.9},
        {"-35.9", wrong, -35, -35.9},
        {"1e3", wrong, 1000, 1000},
        {"9223372036854775807", wrong, 9223372036854775807, 9223372036854775807.0},
        {"9223372036854775808", wrong, wrong, 9223372036854775808.0},
        {"-1e300", wrong, wrong, -1e300},
        {"\"1\"", true, 1, 1},
        {" 7  ", wrong, 7, 7},
        {"7 ; seven", wrong, 7, 7},
    };
    for (const char* raw : {"yes", "on", "", "0,5", "0x10", "12 apples", "nan", "inf", "1e999"}) {
        cases.push_back({raw, wrong, wrong, wrong});
    }
    // Numbers are written the same in every language.
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8"); // NOLINT: one thread here
    for (const auto& one : cases) {
        write(std::string("[General]\nkey=") + one.raw + "\n");
        const FileDefaults defaults(path_);
        expectRead(defaults.readBool("key"), one.asBool, one.raw);
        expectRead(defaults.readInteger("key"), one.asInteger, one.raw);
        expectRead(defaults.readDouble("key"), one.asDouble, one.raw);
        EXPECT_EQ(defaults.readBool("other").status, DefaultsStatus::absent) << one.raw;
    }
}

TEST_F(FileDefaultsTest, FindsKeysOfTheUngroupedGroupOnly) {
    write(
        "\xEF\xBB\xBFtop=1\r\n[Other]\r\nkey=2\r\n[ general ]\r\n  key = 3 \r\nkey=4\r\n; key=5\r\n#key=6\r\n"
        "KEY=7\r\n[%General]\r\nkey=8");
    const FileDefaults defaults(path_);
    EXPECT_EQ(defaults.readInteger("top").value, 1);
    EXPECT_EQ(defaults.readInteger("key").value, 4);
    EXPECT_EQ(defaults.readInteger("KEY").value, 7);
}

TEST_F(FileDefaultsTest, ChangesOnlyTheLineOfTheKey) {
    // Before, and with "gone" removed and "key" set to true.
    for (const auto& [before, after] : std::vector<std::pair<const char*, const char*>>{
             {"", "[General]\nkey=true\n"},
             {"[General]\n", "[General]\nkey=true\n"},
             {"# mine\n[General]\nother = 1 ; why\n\n[Colors]\nkey=red\n",
              "# mine\n[General]\nother = 1 ; why\nkey=true\n\n[Colors]\nkey=red\n"},
             {"[General]\n  key =  false   ; because\nz=1\n", "[General]\n  key =  true   ; because\nz=1\n"},
             {"[Colors]\nkey=red", "[Colors]\nkey=red\n\n[General]\nkey=true\n"},
             {"[General]\nz=1", "[General]\nz=1\nkey=true\n"},
             {"[General]\r\nz=1\r\n", "[General]\r\nz=1\r\nkey=true\r\n"},
             {"[General]\nkey=1\nkey=2\n", "[General]\nkey=1\nkey=true\n"},
             {"[General]\ngone=5\nkey=\n[X]\ngone=1\n", "[General]\nkey=true\n[X]\ngone=1\n"},
             {"nonsense\n[General\nkey=1\n[General]\n",
              "nonsense\n[General\nkey=1\n[General]\nkey=true\n"}}) {
        write(before);
        FileDefaults defaults(path_);
        defaults.remove("gone");
        defaults.setBool("key", true);
        EXPECT_EQ(content(), after) << before;
        EXPECT_TRUE(defaults.readBool("key").value) << before;
        EXPECT_EQ(defaults.readBool("gone").status, DefaultsStatus::absent) << before;
    }
}

TEST_F(FileDefaultsTest, KeepsTextsWholeAndReadableByQt) {
    const std::string texts[] = {
        R"([{"actionTitle":"Fissa o sblocca finestra","keyCode":35}])",
        "",
        " blank ends ",
        "@Invalid() and @@",
        "a\\b\"c;d,e=f%20",
        "line\nbreak\ttab\x01\x31\x66",
        "perch\xC3\xA9 \xF0\x9F\x93\x8C",
        "[General]",
    };
    for (const std::string& text : texts) {
        // Qt takes a file for unchanged that has the same size and the same millisecond.
        const std::string path = path_ + std::to_string(&text - texts);
        FileDefaults defaults(path);
        defaults.setData("text", text);
        EXPECT_EQ(defaults.readText("text").value, text);
        EXPECT_EQ(FileDefaults(path).readText("text").value, text);
        QSettings settings(QString::fromStdString(path), QSettings::IniFormat);
        EXPECT_EQ(settings.value(QStringLiteral("text")).toString().toStdString(), text);
        settings.setValue(QStringLiteral("fromQt"), QString::fromStdString(text));
        settings.setValue(QStringLiteral("bytes"), QByteArray::fromStdString(text));
        settings.sync();
        EXPECT_EQ(defaults.readText("fromQt").value, text);
        EXPECT_EQ(defaults.readText("bytes").value, text);
    }
}

TEST_F(FileDefaultsTest, StoresNumbersExactly) {
    FileDefaults defaults(path_);
    for (const double number : {0.0015, 1.0 / 3.0, -1e-300, 30.0, 1.7976931348623157e308}) {
        defaults.setDouble("double", number);
        EXPECT_EQ(FileDefaults(path_).readDouble("double").value, number);
    }
    defaults.setInteger("integer", 0x140000);
    EXPECT_NE(content().find("integer=1310720\n"), std::string::npos);
}

TEST_F(FileDefaultsTest, SeesEveryEditAtTheNextRead) {
    write("[General]\nkey=10\n");
    const FileDefaults defaults(path_);
    ASSERT_EQ(defaults.readInteger("key").value, 10);
    // Same size, one right after the other: only the file's times could tell, and those are coarse.
    for (int i = 11; i < 60; ++i) {
        const std::string bytes = "[General]\nkey=" + std::to_string(i) + "\n";
        i % 2 == 0 ? write(bytes) : replace(bytes);
        EXPECT_EQ(defaults.readInteger("key").value, i);
    }
    fs::remove(path_);
    EXPECT_EQ(defaults.readInteger("key").status, DefaultsStatus::absent);
}

TEST_F(FileDefaultsTest, MakesFileAndDirectoryForTheUserOnly) {
    const std::string path = directory_.path("new/Skylet/skylet.conf");
    FileDefaults defaults(path);
    EXPECT_FALSE(fs::exists(directory_.path("new")));
    defaults.setBool("key", true);
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0600));
    EXPECT_EQ(fs::status(directory_.path("new/Skylet")).permissions(), fs::perms(0700));
    EXPECT_EQ(filesIn(directory_.path("new/Skylet")), 1) << "something is left beside it";
}

TEST_F(FileDefaultsTest, FollowsSymbolicLinks) {
    const std::string target = directory_.path("dotfiles.conf");
    fs::create_symlink("dotfiles.conf", path_);
    FileDefaults defaults(path_);
    defaults.setInteger("key", 1);
    EXPECT_TRUE(fs::is_symlink(path_));
    EXPECT_EQ(readFile(target), "[General]\nkey=1\n");
    writeFile(target, "[General]\nkey=2\n");
    EXPECT_EQ(defaults.readInteger("key").value, 2);
}

TEST_F(FileDefaultsTest, KeepsDamagedFilesAside) {
    const std::string damages[] = {std::string("[General]\nkey=1\n\0", 17), "[General]\nkey=\xFF\n",
                                   "[General]\nkey=1\n" + std::string(std::size_t{1024} * 1024, '#')};
    std::string suffix = ".damaged";
    for (const std::string& bytes : damages) {
        write(bytes);
        FileDefaults defaults(path_);
        EXPECT_EQ(defaults.readInteger("key").status, DefaultsStatus::absent);
        EXPECT_EQ(content(), bytes) << "reading changed it";
        defaults.setInteger("key", 7);
        EXPECT_EQ(content(), "[General]\nkey=7\n");
        EXPECT_EQ(readFile(path_ + suffix), bytes);
        suffix = ".damaged-" + std::to_string(&bytes - damages + 1);
    }
    fs::remove(path_);
    fs::create_directory(path_);
    FileDefaults(path_).setInteger("key", 8);
    EXPECT_EQ(content(), "[General]\nkey=8\n");
    EXPECT_TRUE(fs::is_directory(path_ + ".damaged-3"));
}

TEST_F(FileDefaultsTest, LeavesProtectedFilesAlone) {
    const struct {
        const char* name;
        mode_t file;
        mode_t directory;
        DefaultsStatus found;
    } cases[] = {{"read-only file", 0444, 0777, DefaultsStatus::value},
                 {"read-only directory", 0666, 0555, DefaultsStatus::value},
                 {"unreadable file", 0000, 0777, DefaultsStatus::absent}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        const std::string bytes = "[General]\nkey=1\n";
        write(bytes);
        protect(one.file, one.directory);
        asPlainUser([&] {
            FileDefaults defaults(path_);
            EXPECT_EQ(defaults.readInteger("key").status, one.found);
            defaults.setInteger("key", 2);
            defaults.setInteger("more", 3);
            EXPECT_EQ(defaults.readInteger("key").value, 2);
            EXPECT_EQ(defaults.readInteger("more").value, 3);
            EXPECT_NE(FileDefaults(path_).readInteger("key").value, 2);
        });
        protect(0666, 0777);
        EXPECT_EQ(content(), bytes);
        EXPECT_EQ(filesIn(directory_.path()), 1);
    }
}

TEST_F(FileDefaultsTest, StoresLaterWhatCouldNotBeStored) {
    write("[General]\n");
    protect(0666, 0555);
    std::unique_ptr<FileDefaults> defaults;
    asPlainUser([&] {
        defaults = std::make_unique<FileDefaults>(path_);
        defaults->setInteger("kept", 1);
        defaults->setInteger("edited", 1);
    });
    protect(0666, 0777);
    write("[General]\nedited=2\n");
    EXPECT_EQ(defaults->readInteger("edited").value, 2) << "the user's edit is the newer word";
    defaults->setInteger("new", 3);
    EXPECT_EQ(content(), "[General]\nedited=2\nkept=1\nnew=3\n");
}

TEST_F(FileDefaultsTest, TellsOfChangesOnce) {
    write("[General]\nkey=1\n");
    FileDefaults defaults(path_);
    int notices = 0;
    auto subscription = defaults.observeDidChange([&] { ++notices; });
    defaults.setInteger("key", 2);
    defaults.setInteger("key", 3);
    EXPECT_EQ(notices, 0) << "inside the call";
    EXPECT_TRUE(eventually([&] { return notices > 0; }));
    EXPECT_EQ(notices, 1);

    replace("[General]\nkey=4\n");
    EXPECT_TRUE(eventually([&] { return notices == 2; }));
    write("[General]\nkey=5\n");
    // In place the file may be seen empty in between.
    EXPECT_TRUE(eventually([&] { return notices >= 3 && defaults.readInteger("key").value == 5; }));

    // A change that changes no value, then one that does: only the second is told.
    QCoreApplication::processEvents();
    notices = 0;
    replace("# a comment\n[General]\nkey=5\n");
    QCoreApplication::processEvents();
    EXPECT_EQ(notices, 0);
    replace("[General]\nkey=6\n");
    EXPECT_TRUE(eventually([&] { return notices == 1; }));
    subscription.reset();
    defaults.setInteger("key", 7);
    QCoreApplication::processEvents();
    EXPECT_EQ(notices, 1);
}

TEST_F(FileDefaultsTest, TellsOfAFileThatComesLater) {
    FileDefaults defaults(directory_.path("later/Skylet/skylet.conf"));
    int notices = 0;
    const auto subscription = defaults.observeDidChange([&] { ++notices; });
    fs::create_directories(directory_.path("later/Skylet"));
    QCoreApplication::processEvents();
    writeFile(directory_.path("later/Skylet/skylet.conf"), "[General]\nkey=1\n");
    EXPECT_TRUE(eventually([&] { return notices > 0; }));
}

TEST_F(FileDefaultsTest, ReadsFromManyThreadsWhileItIsWritten) {
    FileDefaults defaults(path_);
    defaults.setInteger("key", 0);
    std::atomic<bool> done{false};
    std::atomic<int> wrongReads{0};
    const auto read = [&] {
        while (!done) {
            wrongReads += defaults.readInteger("key").status != DefaultsStatus::value ? 1 : 0;
        }
    };
    std::array<std::thread, 3> readers{std::thread(read), std::thread(read), std::thread(read)};
    for (int i = 0; i < 30; ++i) {
        defaults.setInteger("key", i);
    }
    done = true;
    for (std::thread& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(wrongReads, 0);
}

} // namespace

} // namespace skylet::test
