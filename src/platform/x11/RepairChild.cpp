#include "platform/x11/RepairChild.h"

#include "platform/x11/Connection.h"
#include "platform/x11/PostingRepair.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace skylet::platform::x11 {

namespace {

constexpr char farewell = 'q';

[[noreturn]] void waitAndRepair(int pipe) {
    // Out of the program's session, so that what ends it from a terminal does not end its repair.
    setsid();
    prctl(PR_SET_NAME, "skylet-repair");
    char byte = 0;
    ssize_t got = 0;
    do {
        got = read(pipe, &byte, 1);
    } while (got < 0 && errno == EINTR);
    if (got == 0) {
        if (const auto opened = Connection::open({}); opened.connection) {
            cleanUpAfterPosting(*opened.connection);
        }
    }
    _exit(0);
}

} // namespace

RepairChild::RepairChild() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return;
    }
    pid_ = fork();
    if (pid_ == 0) {
        close(ends[1]);
        waitAndRepair(ends[0]);
    }
    close(ends[0]);
    pipe_ = ends[1];
}

RepairChild::~RepairChild() {
    if (pipe_ >= 0) {
        [[maybe_unused]] const auto written = write(pipe_, &farewell, 1);
        close(pipe_);
    }
    if (pid_ > 0) {
        waitpid(pid_, nullptr, 0);
    }
}

} // namespace skylet::platform::x11
