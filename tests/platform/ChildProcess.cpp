#include "platform/ChildProcess.h"

#include "platform/Waiting.h"

#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace skylet::test {

// Not by QProcess: a fork of a program that has threads is none that the thread sanitizer allows.
ChildProcess::ChildProcess(const std::vector<std::string>& command) {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) {
        std::abort();
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::vector<char*> raw;
    raw.reserve(command.size() + 1);
    for (const std::string& argument : command) {
        raw.push_back(const_cast<char*>(argument.c_str())); // NOLINT: not written to
    }
    raw.push_back(nullptr);
    if (posix_spawnp(&pid_, raw[0], &actions, nullptr, raw.data(), environ) != 0) {
        pid_ = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    output_ = ends[0];
}

ChildProcess::~ChildProcess() {
    end();
    close(output_);
}

std::string ChildProcess::readLine() {
    std::string line;
    while (true) {
        pollfd ready{output_, POLLIN, 0};
        char byte = 0;
        if (poll(&ready, 1, std::chrono::milliseconds(patience).count()) <= 0 ||
            read(output_, &byte, 1) != 1) {
            return {};
        }
        if (byte == '\n') {
            return line;
        }
        line += byte;
    }
}

void ChildProcess::end(int signal) {
    if (pid_ > 0) {
        kill(pid_, signal);
        waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }
}

} // namespace skylet::test
