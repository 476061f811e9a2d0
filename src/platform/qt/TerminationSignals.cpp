#include "platform/qt/TerminationSignals.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace skylet::platform::qt {

namespace {

// A signal handler can reach nothing but this.
std::atomic<int> writeEnd{-1};
static_assert(std::atomic<int>::is_always_lock_free);

constexpr std::array<int, 3> handled{SIGTERM, SIGINT, SIGHUP};

void handleSignal(int /*number*/) {
    const int saved = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(writeEnd.load(), &byte, 1);
    errno = saved;
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> requested) {
    if (pipe(pipe_) != 0) {
        return;
    }
    for (const int descriptor : pipe_) {
        fcntl(descriptor, F_SETFD, FD_CLOEXEC);
        fcntl(descriptor, F_SETFL, O_NONBLOCK);
    }
    notifier_ = std::make_unique<QSocketNotifier>(pipe_[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this, requested = std::move(requested)] {
                         char byte = 0;
                         [[maybe_unused]] const auto taken = read(pipe_[0], &byte, 1);
                         requested();
                     });
    writeEnd = pipe_[1];
    struct sigaction action {};
    action.sa_handler = handleSignal;                              // NOLINT: the C interface is a union
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND); // the next one has its default effect
    for (const int signal : handled) {
        sigaction(signal, &action, nullptr);
    }
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN; // NOLINT
    sigaction(SIGPIPE, &ignore, nullptr);
}

TerminationSignals::~TerminationSignals() {
    if (!notifier_) {
        return;
    }
    struct sigaction action {};
    action.sa_handler = SIG_DFL; // NOLINT
    for (const int signal : handled) {
        sigaction(signal, &action, nullptr);
    }
    writeEnd = -1;
    notifier_.reset();
    close(pipe_[0]);
    close(pipe_[1]);
}

} // namespace skylet::platform::qt
