#include "foundation/LogLocation.h"

#include "foundation/Product.h"

#include <QDir>
#include <QString>

#include <sys/stat.h>

namespace skylet {

namespace {

// Every missing directory on the way gets the mode of the last one, so that nothing of the way is more open.
void createPrivateDirectories(const std::string& path) {
    constexpr mode_t ownerOnly = 0700;
    for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        ::mkdir(path.substr(0, end).c_str(), ownerOnly);
    }
    ::mkdir(path.c_str(), ownerOnly);
}

} // namespace

std::string prepareLogFilePath() {
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (!QDir::isAbsolutePath(state)) {
        state = QDir::homePath() + QStringLiteral("/.local/state");
    }
    const std::string directory = QDir::cleanPath(state).toStdString() + "/" + productName;
    createPrivateDirectories(directory);
    return directory + "/skylet.log";
}

} // namespace skylet
