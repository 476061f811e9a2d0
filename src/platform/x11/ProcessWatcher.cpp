#include "platform/x11/ProcessWatcher.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace skylet::platform::x11 {

// A process descriptor that becomes readable when the process ends; none where the kernel gives none.
class ProcessWatcher::Watch {
  public:
    Watch(QObject& parent, int descriptor, std::function<void()> ended) : descriptor_(descriptor) {
        if (descriptor_ < 0) {
            return;
        }
        notifier_ = new QSocketNotifier(descriptor_, QSocketNotifier::Read, &parent);
        QObject::connect(notifier_, &QSocketNotifier::activated, notifier_, std::move(ended));
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch() {
        if (notifier_) {
            // It may be in the middle of its own notice.
            notifier_->setEnabled(false);
            notifier_->deleteLater();
            close(descriptor_);
        }
    }
    [[nodiscard]] bool tellsByItself() const { return descriptor_ >= 0; }

  private:
    int descriptor_;
    QSocketNotifier* notifier_ = nullptr; // owned by its parent
};

ProcessWatcher::ProcessWatcher(std::function<void(ProcessID)> ended) : ended_(std::move(ended)) {}

ProcessWatcher::~ProcessWatcher() = default;

void ProcessWatcher::watch(ProcessID pid) {
    if (pid <= 0 || watches_.contains(pid)) {
        return;
    }
    const auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, pid, 0U)); // close-on-exec by itself
    if (descriptor < 0) {
        if (errno == ESRCH) {
            return;
        }
        ++unwatchable_;
    }
    watches_.emplace(pid, std::make_unique<Watch>(notifiers_, descriptor, [this, pid] { end(pid); }));
}

void ProcessWatcher::checkAll() {
    std::vector<ProcessID> gone;
    for (const auto& [pid, watch] : watches_) {
        if (!isProcessAlive(pid)) {
            gone.push_back(pid);
        }
    }
    for (const ProcessID pid : gone) {
        end(pid);
    }
}

void ProcessWatcher::end(ProcessID pid) {
    const auto node = watches_.extract(pid);
    if (!node) {
        return;
    }
    if (!node.mapped()->tellsByItself()) {
        --unwatchable_;
    }
    ended_(pid);
}

bool isProcessAlive(ProcessID pid) {
    return pid > 0 && (kill(pid, 0) == 0 || errno == EPERM);
}

} // namespace skylet::platform::x11
