#include "foundation/DiagnosticsLog.h"

#include "foundation/PreferenceKeys.h"
#include "foundation/Text.h"

#include <QDateTime>

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace skylet {

namespace {

// Titles of other programs' windows stand in messages, and can hold anything; none of them may begin a line.
std::string onOneLine(std::string message) {
    std::ranges::replace_if(
        message, [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; }, ' ');
    return message;
}

} // namespace

DiagnosticsLog::DiagnosticsLog(const platform::Defaults& defaults, platform::SerialQueueFactory& queues,
                               PathProvider path)
    : defaults_(defaults)
    , queues_(queues)
    , path_(std::move(path)) {}

bool DiagnosticsLog::isEnabled() const {
    return defaults_.readBool(PreferenceKeys::debugLogging).valueOr(false);
}

void DiagnosticsLog::append(std::chrono::system_clock::time_point time, std::string message) {
    {
        const std::lock_guard lock(creation_);
        if (wpLogQueue == nullptr) {
            wpLogQueue = queues_.makeSerialQueue("com.corvane.skylet.floating.log");
        }
    }
    wpLogQueue->async([this, time, message = std::move(message)] { write(time, message); });
}

// Local time is worked out here, because callers should not pay for it.
void DiagnosticsLog::write(std::chrono::system_clock::time_point time, const std::string& message) {
    if (!isWellFormedUtf8(message)) {
        return;
    }
    if (wpLogFmt.isEmpty()) {
        wpLogFmt = QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz");
    }
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(sinceEpoch.count());
    const std::string line = local.toString(wpLogFmt).toStdString() + "  " + onOneLine(message) + "\n";
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
