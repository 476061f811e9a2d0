#include "app/CommandLine.h"

#include "foundation/Product.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace skylet {

namespace {

constexpr int exitUsage = 2;

constexpr std::string_view help =
    R"(Usage: skylet [--help | --version]

Keeps a live picture of a window above all others. Control+Super+P pins the
window in front or releases the pinned one. Skylet needs an X11 session; it
has an icon in the panel and no main window. Starting it again shows an icon
that was hidden.

  --help     show this text and exit
  --version  show the version and exit

More in the manual page, skylet(1).
)";

// A line break in an argument must not make two lines of the complaint.
std::string onOneLine(std::string_view text) {
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char deleteCharacter = 0x7f;
    std::string line(text);
    std::ranges::replace_if(
        line,
        [](char c) {
            const auto byte = static_cast<unsigned char>(c);
            return byte < firstPrintable || byte == deleteCharacter;
        },
        '?');
    return line;
}

CommandLineAnswer complainAbout(std::string_view argument) {
    return {.output = {},
            .complaint = "unexpected argument \"" + onOneLine(argument) + "\"; \"skylet --help\" tells more",
            .exitStatus = exitUsage};
}

} // namespace

std::optional<CommandLineAnswer> answerCommandLine(std::span<const char* const> arguments,
                                                   const std::string& version) {
    if (arguments.size() < 2) {
        return std::nullopt;
    }
    const std::string_view first = arguments[1];
    const bool asksHelp = first == "--help";
    if (!asksHelp && first != "--version") {
        return complainAbout(first);
    }
    if (arguments.size() > 2) {
        return complainAbout(arguments[2]);
    }
    return CommandLineAnswer{.output = asksHelp ? std::string(help)
                                                : std::string(productName) + " " + version + "\n",
                             .complaint = {},
                             .exitStatus = EXIT_SUCCESS};
}

int CommandLineAnswer::print() const {
    if (!complaint.empty()) {
        std::fprintf(stderr, "skylet: %s\n", complaint.c_str());
    }
    // A full disk shows at the flush only.
    const bool isWritten = std::fputs(output.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    return isWritten ? exitStatus : EXIT_FAILURE;
}

} // namespace skylet
