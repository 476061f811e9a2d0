#include "app/CommandLine.h"

#include <gtest/gtest.h>
#include <sstream>
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
    EXPECT_TRUE(answer->output.ends_with("\n"));
    std::istringstream lines(answer->output);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 79U) << line;
    }
}

} // namespace
} // namespace skylet::test
