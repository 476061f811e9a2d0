// The program's command line: two questions, answered without a display.
//
// Units: none; UTF-8. Threads: any. Failure: an answer that cannot be written is an exit status of 1.
#pragma once

#include <optional>
#include <span>
#include <string>

namespace skylet {

// What the program says instead of running.
struct CommandLineAnswer {
    std::string output;    // for the standard output, whole lines
    std::string complaint; // for the standard error, one line
    int exitStatus = 0;

    bool operator==(const CommandLineAnswer&) const = default;

    // Prints it; the process's exit status.
    [[nodiscard]] int print() const;
};

// `arguments` as main() has them, the program's own name first. Nothing when the program is to run.
[[nodiscard]] std::optional<CommandLineAnswer> answerCommandLine(std::span<const char* const> arguments,
                                                                 const std::string& version);

} // namespace skylet
