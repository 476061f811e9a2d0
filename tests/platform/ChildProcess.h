// A program that a test starts and ends.
#pragma once

#include <QProcess>

#include <csignal>
#include <string>
#include <vector>

namespace skylet::test {

class ChildProcess {
  public:
    // `command` begins with the program, looked up in the path.
    explicit ChildProcess(const std::vector<std::string>& command);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    // Ends the program and waits for it.
    ~ChildProcess() { end(); }

    [[nodiscard]] pid_t pid() const { return static_cast<pid_t>(process_.processId()); }
    // Of its output; empty when it ended, or does not write for long.
    [[nodiscard]] std::string readLine();
    void end(int signal = SIGTERM);

  private:
    QProcess process_;
};

} // namespace skylet::test
