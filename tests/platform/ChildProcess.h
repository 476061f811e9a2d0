// A program that a test starts and ends.
#pragma once

#include <csignal>
#include <string>
#include <sys/types.h>
#include <vector>

namespace skylet::test {

class ChildProcess {
  public:
    // `command` begins with the program, looked up in the path.
    explicit ChildProcess(const std::vector<std::string>& command);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    // Ends the program and waits for it.
    ~ChildProcess();

    [[nodiscard]] pid_t pid() const { return pid_; }
    // Of its output; empty when it ended, or does not write for long.
    [[nodiscard]] std::string readLine();
    void end(int signal = SIGTERM);

  private:
    pid_t pid_ = -1;
    int output_ = -1;
};

} // namespace skylet::test
