// The entry: finds the desktop, makes the adapters and the controller, and runs the event loop.

#include "app/AppDelegate.h"
#include "foundation/DiagnosticsLog.h"
#include "foundation/LogLocation.h"
#include "foundation/Product.h"
#include "platform/qt/AccessibilityTrust.h"
#include "platform/qt/DBusBuses.h"
#include "platform/qt/FileDefaults.h"
#include "platform/qt/QtApplication.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtMessages.h"
#include "platform/qt/QtStatusBar.h"
#include "platform/qt/SerialQueues.h"
#include "platform/qt/SessionLock.h"
#include "platform/qt/SingleInstance.h"
#include "platform/qt/TerminationSignals.h"
#include "platform/x11/InstanceSelection.h"
#include "platform/x11/ServerCheck.h"
#include "platform/x11/X11Desktop.h"

#include <QApplication>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

namespace qt = skylet::platform::qt;
namespace x11 = skylet::platform::x11;

void tellUser(const std::string& message) {
    std::fprintf(stderr, "skylet: %s\n", message.c_str());
}

// Qt's own connection ends the process on the spot when the server goes, mostly before ours notices.
std::atomic<bool> isServerNeeded{false};

void tellServerIsGone() {
    if (isServerNeeded.exchange(false)) {
        tellUser("the X server closed the connection");
    }
}

// The arguments for Qt, which would try a Wayland connection first where there is one.
std::vector<char*> qtArguments(int argc, char** argv) {
    static char option[] = "-platform";
    static char platform[] = "xcb";
    std::vector<char*> arguments(argv, argv + argc);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        arguments.insert(arguments.end(), {option, platform});
    }
    arguments.push_back(nullptr);
    return arguments;
}

std::string describe(const x11::XError& error) {
    char resource[16];
    std::snprintf(resource, sizeof resource, "0x%x", error.resource);
    return "x11: unexpected error " + std::to_string(error.code) + " of request " +
           std::to_string(error.majorOpcode) + "." + std::to_string(error.minorOpcode) + ", resource " +
           resource;
}

skylet::AppCallbacks makeCallbacks() {
    return {.reportToUser = tellUser,
            .fatal =
                [](const std::string& message) {
                    tellUser(message);
                    isServerNeeded = false;
                    std::_Exit(EXIT_FAILURE);
                },
            .terminate =
                [] {
                    QCoreApplication::quit();
                }};
}

int run(QApplication& application, qt::QtMessages& messages) {
    qt::QtMainQueue mainQueue;
    qt::ThreadSerialQueueFactory queues;
    qt::FileDefaults defaults(qt::FileDefaults::defaultPath());
    skylet::DiagnosticsLog log(defaults, queues, skylet::prepareLogFilePath);
    messages.setSink([&log](const std::string& message) { wplog(log, [&] { return "qt: " + message; }); });

    auto opened = x11::Connection::open({});
    if (!opened.connection) {
        tellUser(opened.failure);
        return EXIT_FAILURE;
    }
    x11::Connection& connection = *opened.connection;
    connection.setErrorSink(
        [&log](const x11::XError& error) { wplog(log, [&] { return describe(error); }); });
    connection.setClosedHandler([] {
        tellServerIsGone();
        QCoreApplication::exit(EXIT_FAILURE);
    });
    isServerNeeded = true;

    std::function<void()> reopened = [] {
    };
    const auto reopen = [&reopened] {
        reopened();
    };
    const auto sessionBus = qt::sessionBus();
    qt::SingleInstance instance(sessionBus, QString::fromLatin1(skylet::bundleIdentifier),
                                QStringLiteral("/com/corvane/skylet"), reopen);
    x11::InstanceSelection selection(connection, reopen);
    if (instance.claim() == qt::SingleInstance::Result::activated || !selection.claim()) {
        isServerNeeded = false;
        return EXIT_SUCCESS;
    }

    qt::AccessibilityTrust trust(sessionBus);
    qt::SessionLock sessionLock(sessionBus, qt::systemBus());
    qt::QtApplication windows;
    qt::QtStatusBar statusBar(sessionBus, mainQueue);
    x11::X11Desktop desktop(connection, {mainQueue, queues, trust, sessionLock});
    skylet::AppDelegate delegate({.windowServer = desktop.windowServer(),
                                  .accessibility = desktop.accessibility(),
                                  .screenCapture = desktop.screenCapture(),
                                  .panelFactory = desktop.panelFactory(),
                                  .workspace = desktop.workspace(),
                                  .screens = desktop.screens(),
                                  .defaults = defaults,
                                  .mainQueue = mainQueue,
                                  .log = log},
                                 {}, desktop.eventTap(), desktop.eventPoster(), windows, statusBar,
                                 makeCallbacks());
    reopened = [&delegate] {
        delegate.applicationShouldHandleReopen();
    };
    const qt::TerminationSignals signals([] { QCoreApplication::quit(); });

    delegate.applicationDidFinishLaunching();
    const int status = application.exec();
    delegate.applicationWillTerminate();
    // Streams that are still stopping refer to the adapters below.
    mainQueue.discard();
    connection.flush();
    isServerNeeded = false;
    messages.setSink({});
    return status;
}

} // namespace

int main(int argc, char** argv) {
    if (const auto problem = x11::findServerProblem()) {
        tellUser(*problem);
        return EXIT_FAILURE;
    }
    std::atexit(tellServerIsGone);
    qt::QtMessages messages;
    auto arguments = qtArguments(argc, argv);
    int count = static_cast<int>(arguments.size()) - 1;
    QApplication application(count, arguments.data());
    QApplication::setApplicationName(QString::fromLatin1(skylet::productName));
    QApplication::setOrganizationDomain(QStringLiteral("corvane.com"));
    QApplication::setDesktopFileName(QString::fromLatin1(skylet::bundleIdentifier));
    QApplication::setApplicationVersion(QStringLiteral(SKYLET_VERSION));
    return run(application, messages);
}
