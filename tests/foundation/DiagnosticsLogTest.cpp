#include "foundation/DiagnosticsLog.h"

#include "foundation/LogLocation.h"
#include "foundation/PreferenceKeys.h"
#include "support/SimDefaults.h"

#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <regex>
#include <thread>

namespace skylet {
namespace {

namespace fs = std::filesystem;

// Work comes from several threads, one piece at a time and in its order, as in production.
class LockedQueues final : public platform::SerialQueueFactory {
  public:
    std::unique_ptr<platform::SerialQueue> makeSerialQueue(const std::string& name) override {
        struct Queue final : platform::SerialQueue {
            void async(platform::Work work) override {
                const std::lock_guard lock(mutex);
                work();
            }
            std::mutex mutex;
        };
        label = name;
        return std::make_unique<Queue>();
    }
    std::string label;
};

class DiagnosticsLogTest : public testing::Test {
  protected:
    DiagnosticsLogTest() {
        ::setenv("XDG_STATE_HOME", state().c_str(), 1); // NOLINT(concurrency-mt-unsafe): no thread runs yet
        defaults.setBool(PreferenceKeys::debugLogging, true);
    }
    [[nodiscard]] std::string state() const {
        return directory.filePath(QStringLiteral("a/state")).toStdString();
    }
    [[nodiscard]] std::string file() const { return state() + "/Skylet/skylet.log"; }

    // Logs through a log that is gone, and so has written everything, on return.
    template <class Body>
    void withLog(Body body) {
        DiagnosticsLog log(defaults, queues, prepareLogFilePath);
        body(log);
    }
    [[nodiscard]] std::vector<std::string> lines() const {
        std::vector<std::string> all;
        std::ifstream stream(file());
        for (std::string line; std::getline(stream, line);) {
            all.push_back(line);
        }
        return all;
    }

    QTemporaryDir directory;
    sim::SimDefaults defaults;
    LockedQueues queues;
};

TEST_F(DiagnosticsLogTest, OffMeansNoFileNoDirectoryAndNoMessage) {
    const auto expectSilence = [this] {
        withLog([](DiagnosticsLog& log) {
            wplog(log, [] {
                ADD_FAILURE() << "the message was built";
                return std::string();
            });
        });
        EXPECT_FALSE(fs::exists(state()));
    };
    defaults.setBool(PreferenceKeys::debugLogging, false);
    expectSilence();
    defaults.remove(PreferenceKeys::debugLogging);
    expectSilence();
}

TEST_F(DiagnosticsLogTest, WritesPrivateFilesAndTheExactLineFormat) {
    withLog([&](DiagnosticsLog& log) {
        EXPECT_FALSE(fs::exists(state())) << "nothing is made before the first line";
        wplog(log, [] { return std::string("perché — ok"); });
        defaults.setBool(PreferenceKeys::debugLogging, false);
        wplog(log, [] { return std::string("switched off"); });
        defaults.setBool(PreferenceKeys::debugLogging, true);
        wplog(log, [] { return std::string("\xff not UTF-8"); });
    });
    ASSERT_EQ(lines().size(), 1U);
    const std::regex format(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}  perché — ok)");
    EXPECT_TRUE(std::regex_match(lines()[0], format)) << lines()[0];
    EXPECT_EQ(fs::status(file()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(state() + "/Skylet").permissions(), fs::perms::owner_all);
    EXPECT_EQ(fs::status(state()).permissions(), fs::perms::owner_all);
    EXPECT_EQ(queues.label, "com.corvane.skylet.floating.log");
}

TEST_F(DiagnosticsLogTest, RefusesASymbolicLinkAndSurvivesAReplacedFile) {
    fs::create_directories(state() + "/Skylet");
    const std::string elsewhere = state() + "/elsewhere";
    std::ofstream(elsewhere).flush();
    fs::create_symlink(elsewhere, file());
    withLog([](DiagnosticsLog& log) { wplog(log, [] { return std::string("dropped"); }); });
    EXPECT_EQ(fs::file_size(elsewhere), 0U);
    fs::remove(file());
    withLog([](DiagnosticsLog& log) { wplog(log, [] { return std::string("kept"); }); });
    withLog([](DiagnosticsLog& log) { wplog(log, [] { return std::string("appended"); }); });
    EXPECT_EQ(lines().size(), 2U);
}

TEST_F(DiagnosticsLogTest, LinesOfTwoThreadsStayWholeAndInOrder) {
    constexpr int count = 300;
    withLog([](DiagnosticsLog& log) {
        const auto write = [&log](char name) {
            for (int i = 0; i < count; ++i) {
                wplog(log, [&] { return std::string(1, name) + " " + std::to_string(i); });
            }
        };
        std::thread other(write, 'b');
        write('a');
        other.join();
    });
    std::map<char, int> expected;
    for (const std::string& line : lines()) {
        const std::string message = line.substr(25);
        EXPECT_EQ(message.substr(1), " " + std::to_string(expected[message[0]]++));
    }
    EXPECT_EQ(expected, (std::map<char, int>{{'a', count}, {'b', count}}));
}

} // namespace
} // namespace skylet
