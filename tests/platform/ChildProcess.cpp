#include "platform/ChildProcess.h"

#include "platform/Waiting.h"

#include <sys/prctl.h>

namespace skylet::test {

namespace {
constexpr int wait = std::chrono::milliseconds(patience).count();
} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command) {
    QStringList arguments;
    for (const std::string& argument : command) {
        arguments << QString::fromStdString(argument);
    }
    const QString program = arguments.takeFirst();
    // It must not outlive a test that crashes.
    process_.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    process_.setStandardErrorFile(QProcess::nullDevice());
    process_.start(program, arguments, QIODevice::ReadOnly);
    process_.waitForStarted(wait);
}

std::string ChildProcess::readLine() {
    while (!process_.canReadLine() && process_.waitForReadyRead(wait)) {
    }
    return process_.readLine().trimmed().toStdString();
}

void ChildProcess::end(int signal) {
    if (pid() > 0) {
        kill(pid(), signal);
        process_.waitForFinished(wait);
    }
}

} // namespace skylet::test
