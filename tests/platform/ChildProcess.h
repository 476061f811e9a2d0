// A program that a test starts and ends.
#pragma once

#include <csignal>
#include <string>
#include <sys/types.h>
#include <vector>

namespace skylet::test {

class ChildProcess {
  public:
    // `arguments` begins with the program, looked up in the path. The descriptor 3 of the child is a pipe
    // whose other end `readLine` reads.
    explicit ChildProcess(const std::vector<std::string>& arguments);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    // Ends the program and waits for it.
    ~ChildProcess();

    [[nodiscard]] pid_t pid() const { return pid_; }
    // Empty when the child closed its end, or does not write for long.
    [[nodiscard]] std::string readLine();
    void end(int signal = SIGTERM);

  private:
    pid_t pid_ = -1;
    int output_ = -1;
};

} // namespace skylet::test
