#include "app/CommandLine.h"

#include <gtest/gtest.h>
#include <vector>

namespace skylet::test {
namespace {

using Arguments = std::vector<const char*>;

TEST(CommandLineTest, RunsAnswersOrComplainsInOneLine) {
    EXPECT_FALSE(answerCommandLine(Arguments{}, "7.8.9"));
    EXPECT_FALSE(answerCommandLine(Arguments{"skylet"}, "7.8.9"));
    EXPECT_EQ(answerCommandLine(Arguments{"skylet", "--version"}, "7.8.9")->output, "Skylet 7.8.9\n");
    const std::pair<Arguments, std::string> cases[] = {
        {{"skylet", "-h"}, "-h"},
        {{"skylet", ""}, ""},
        {{"skylet", "-platform", "offscreen"}, "-platform"},
        {{"skylet", "--version", "now"}, "now"},
        {{"skylet", "--help", "--version"}, "--version"},
        {{"skylet", "two\nlines\x7f"}, "two?lines?"},
        {{"skylet", "perché"}, "perché"},
    };
    for (const auto& [arguments, unexpected] : cases) {
        const auto answer = answerCommandLine(arguments, "7.8.9");
        ASSERT_TRUE(answer) << unexpected;
        EXPECT_EQ(answer->exitStatus, 2);
        EXPECT_EQ(answer->output, "");
        EXPECT_EQ(answer->complaint,
                  "unexpected argument \"" + unexpected + R"("; "skylet --help" tells more)");
    }
}

TEST(CommandLineTest, HelpFitsATerminal) {
    const auto answer = answerCommandLine(Arguments{"skylet", "--help"}, "");
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->exitStatus, 0);
    EXPECT_EQ(answer->complaint, "");
    EXPECT_TRUE(answer->output.starts_with("Usage: skylet [--help | --version]\n"));
    std::size_t start = 0;
    for (std::size_t end = 0; (end = answer->output.find('\n', start)) != std::string::npos;
         start = end + 1) {
        EXPECT_LE(end - start, 79U) << answer->output.substr(start, end - start);
    }
    EXPECT_EQ(start, answer->output.size());
}

} // namespace
} // namespace skylet::test
