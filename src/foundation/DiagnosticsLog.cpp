#include "foundation/DiagnosticsLog.h"

#include "foundation/PreferenceKeys.h"
#include "foundation/Text.h"

#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace skylet {

DiagnosticsLog::DiagnosticsLog(const platform::Defaults& defaults, platform::SerialQueueFactory& queues,
                               PathProvider path)
    : defaults_(defaults)
    , queues_(queues)
    , path_(std::move(path)) {}

bool DiagnosticsLog::isEnabled() const {
    return defaults_.readBool(PreferenceKeys::debugLogging).valueOr(false);
}

void DiagnosticsLog::append(const QDateTime& time, const std::string& message) {
    {
        const std::lock_guard lock(creation_);
        if (wpLogQueue == nullptr) {
            wpLogFmt = QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz");
            wpLogQueue = queues_.makeSerialQueue("com.corvane.skylet.floating.log");
        }
    }
    wpLogQueue->async([this, line = formatLine(time, message)] { write(line); });
}

std::string DiagnosticsLog::formatLine(const QDateTime& time, const std::string& message) {
    return time.toString(wpLogFmt).toStdString() + "  " + message + "\n";
}

void DiagnosticsLog::write(const std::string& line) {
    if (!isWellFormedUtf8(line)) {
        return;
    }
    if (!wpLogPath) {
        wpLogPath = path_();
    }
    constexpr mode_t ownerReadWrite = 0600;
    const int file =
        ::open(wpLogPath->c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, ownerReadWrite);
    if (file < 0) {
        return;
    }
    // A short or failed write is not repeated: the rest would land in the middle of somebody else's line.
    [[maybe_unused]] const ssize_t written = ::write(file, line.data(), line.size());
    ::close(file);
}

} // namespace skylet
