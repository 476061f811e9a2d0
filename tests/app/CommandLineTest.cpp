#include "app/CommandLine.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace skylet::test {
namespace {

TEST(CommandLineTest, AnswersOrComplainsInOneLine) {
    struct Case {
        std::vector<const char*> arguments;
        std::optional<int> exitStatus; // nothing: the program runs
        const char* output;            // what it begins with
        const char* complaint;         // the whole of it
    };
    const Case cases[] = {
        {{}, {}, "", ""},
        {{"skylet"}, {}, "", ""},
        {{"skylet", "--version"}, 0, "Skylet 7.8.9\n", ""},
        {{"skylet", "--help"}, 0, "Usage: skylet [--help | --version]\n", ""},
        {{"skylet", "-h"}, 2, "", R"(unexpected argument "-h"; "skylet --help" tells more)"},
        {{"skylet", "--versio"}, 2, "", R"(unexpected argument "--versio"; "skylet --help" tells more)"},
        {{"skylet", ""}, 2, "", R"(unexpected argument ""; "skylet --help" tells more)"},
        {{"skylet", "-platform", "offscreen"},
         2,
         "",
         R"(unexpected argument "-platform"; "skylet --help" tells more)"},
        {{"skylet", "--version", "now"}, 2, "", R"(unexpected argument "now"; "skylet --help" tells more)"},
        {{"skylet", "--help", "--version"},
         2,
         "",
         R"(unexpected argument "--version"; "skylet --help" tells more)"},
        {{"skylet", "two\nlines\x7f"},
         2,
         "",
         R"(unexpected argument "two?lines?"; "skylet --help" tells more)"},
        {{"skylet", "perché"}, 2, "", R"(unexpected argument "perché"; "skylet --help" tells more)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.arguments));
        const auto answer = answerCommandLine(c.arguments, "7.8.9");
        ASSERT_EQ(answer.has_value(), c.exitStatus.has_value());
        if (answer) {
            EXPECT_EQ(answer->exitStatus, *c.exitStatus);
            EXPECT_TRUE(answer->output.starts_with(c.output)) << answer->output;
            EXPECT_EQ(answer->output.empty(), *c.output == '\0');
            EXPECT_EQ(answer->complaint, c.complaint);
        }
    }
}

TEST(CommandLineTest, HelpFitsATerminal) {
    const char* const arguments[] = {"skylet", "--help"};
    const auto answer = answerCommandLine(arguments, "");
    ASSERT_TRUE(answer);
    std::size_t start = 0;
    for (std::size_t end = 0; (end = answer->output.find('\n', start)) != std::string::npos;
         start = end + 1) {
        EXPECT_LE(end - start, 79U) << answer->output.substr(start, end - start);
    }
    EXPECT_EQ(start, answer->output.size());
}

} // namespace
} // namespace skylet::test
