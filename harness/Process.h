// Processes that a test starts and that never outlive it.
//
// Threads: the main thread only, because the kernel ends a child together with the thread that started it.
// Failure: a program that cannot be started is a process that exited with 127.
#pragma once

#include "Wait.h"

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace skylet::desktop {

using Environment = std::map<std::string, std::string>;
using Command = std::vector<std::string>;

class Process {
  public:
    // An empty process, not running.
    Process() = default;
    // Starts `command` with exactly this environment. Standard error goes to the file `errorPath`, or stays
    // ours when it is empty. Standard input and output are pipes of ours.
    Process(const Command& command, const Environment& environment, std::string errorPath = {});
    Process(Process&& other) noexcept { *this = std::move(other); }
    // What this one was ends together with the other one.
    Process& operator=(Process&& other) noexcept;
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    [[nodiscard]] pid_t pid() const { return pid_; }
    [[nodiscard]] bool isRunning();
    // The exit code (128 + the signal that ended it), or nothing when the deadline passed first.
    [[nodiscard]] std::optional<int> waitForExit(std::chrono::milliseconds deadline = patience);
    void signal(int number) const;
    // Asks it to end, then makes it end. Answers the exit code.
    int stop();

    void write(const std::string& text) const;
    // The next line of its standard output without the line feed, or nothing.
    [[nodiscard]] std::optional<std::string> readLine(std::chrono::milliseconds deadline = patience);
    [[nodiscard]] std::string errorOutput() const;

  private:
    pid_t pid_ = -1;
    std::optional<int> exitCode_;
    int input_ = -1;
    int output_ = -1;
    std::string pending_;
    std::string errorPath_;
};

// Runs to the end. The exit code.
int run(const Command& command, const Environment& environment);

// Makes orphaned descendants ours, so that endDescendants finds them.
void adoptOrphans();
[[nodiscard]] std::vector<pid_t> descendantsNamed(const std::string& name);
// Ends every process below this one.
void endDescendants();

[[nodiscard]] std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& text);

} // namespace skylet::desktop
