// The entry: finds the desktop, makes the adapters and the controller, and runs the event loop.

#include "app/AppDelegate.h"
#include "app/CommandLine.h"
#include "app/views/ProgramWindows.h"
#include "foundation/DiagnosticsLog.h"
#include "foundation/LogLocation.h"
#include "foundation/Product.h"
#include "platform/qt/AccessibilityTrust.h"
#include "platform/qt/AutostartEntry.h"
#include "platform/qt/DBusBuses.h"
#include "platform/qt/FileDefaults.h"
#include "platform/qt/QtApplication.h"
#include "platform/qt/QtKeyDownMonitor.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtMessages.h"
#include "platform/qt/QtNotifications.h"
#include "platform/qt/QtScreens.h"
#include "platform/qt/QtStatusBar.h"
#include "platform/qt/SerialQueues.h"
#include "platform/qt/SessionLock.h"
#include "platform/qt/SingleInstance.h"
#include "platform/qt/TerminationSignals.h"
#include "platform/x11/InstanceSelection.h"
#include "platform/x11/RepairChild.h"
#include "platform/x11/ServerCheck.h"
#include "platform/x11/X11Desktop.h"
#include "platform/x11/X11WorkerDesktop.h"

#include <QApplication>
#include <QSessionManager>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace qt = skylet::platform::qt;
namespace x11 = skylet::platform::x11;

void tellUser(const std::string& message) {
    std::fprintf(stderr, "skylet: %s\n", message.c_str());
}

// Qt's own connection ends the process on the spot when the server goes, mostly before ours notices.
std::atomic<bool> isServerNeeded{false};
std::atomic<bool> isServerGone{false};

void tellServerIsGone() {
    if (isServerNeeded.exchange(false)) {
        isServerGone = true;
        tellUser("the X server closed the connection");
    }
}

// Qt calls exit() amid whatever is under way; nothing can be taken down in order from there.
void endWithoutServer() {
    tellServerIsGone();
    if (isServerGone) {
        std::_Exit(EXIT_FAILURE);
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

// The program's windows, which the controller opens and which refer to it.
using Windows = std::unique_ptr<skylet::ProgramWindows>;

skylet::AppCallbacks makeCallbacks(const Windows& windows) {
    return {.reportToUser = tellUser,
            .fatal =
                [](const std::string& message) {
                    tellUser(message);
                    isServerNeeded = false;
                    std::_Exit(EXIT_FAILURE);
                },
            .terminate = [] { QCoreApplication::quit(); },
            .openSettings = [&windows] { windows->openSettings(); },
            .openAbout =
                [&windows] {
                    windows->openAbout();
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
    std::function<bool(const QString&)> perform = [](const QString&) {
        return false;
    };
    const auto sessionBus = qt::sessionBus();
    qt::SingleInstance instance(sessionBus, QString::fromLatin1(skylet::bundleIdentifier),
                                QStringLiteral("/com/corvane/skylet"), reopen,
                                [&perform](const QString& action) { return perform(action); });
    x11::InstanceSelection selection(connection, reopen);
    if (instance.claim() == qt::SingleInstance::Result::activated || !selection.claim()) {
        isServerNeeded = false;
        return EXIT_SUCCESS;
    }

    qt::AccessibilityTrust trust(sessionBus);
    qt::SessionLock sessionLock(sessionBus, qt::systemBus());
    qt::QtApplication ownWindows;
    qt::QtStatusBar statusBar(sessionBus, mainQueue);
    x11::X11Desktop desktop(connection, {mainQueue, queues, trust, sessionLock});
    const auto scrolling = x11::X11WorkerDesktop::open({}, mainQueue, sessionBus);
    if (!scrolling.desktop) {
        tellUser(scrolling.failure);
        isServerNeeded = false;
        return EXIT_FAILURE;
    }
    skylet::AXScroller scroller({.accessibility = scrolling.desktop->accessibility(),
                                 .windowServer = scrolling.desktop->windowServer(),
                                 .workspace = desktop.workspace(),
                                 .defaults = defaults,
                                 .mainQueue = mainQueue,
                                 .queues = queues,
                                 .log = log});
    Windows windows;
    skylet::AppDelegate delegate({.windowServer = desktop.windowServer(),
                                  .accessibility = desktop.accessibility(),
                                  .screenCapture = desktop.screenCapture(),
                                  .panelFactory = desktop.panelFactory(),
                                  .workspace = desktop.workspace(),
                                  .screens = desktop.screens(),
                                  .defaults = defaults,
                                  .mainQueue = mainQueue,
                                  .log = log},
                                 scroller, desktop.eventTap(), desktop.eventPoster(), ownWindows, statusBar,
                                 makeCallbacks(windows));
    reopened = [&delegate] {
        delegate.applicationShouldHandleReopen();
    };
    qt::QtScreens screens(desktop.screens());
    qt::QtNotifications notifications(sessionBus);
    qt::QtKeyDownMonitor keyDownMonitor(
        [&desktop](quint32 keyCode, quint32 state) { return desktop.keyDown(keyCode, state); });
    qt::AutostartEntry loginItem(qt::AutostartEntry::defaultPath(skylet::bundleIdentifier),
                                 skylet::productName, QCoreApplication::applicationFilePath().toStdString());
    windows = std::make_unique<skylet::ProgramWindows>(skylet::ProgramWindows::Services{
        .delegate = delegate,
        .eventTap = desktop.eventTap(),
        .eventPoster = desktop.eventPoster(),
        .defaults = defaults,
        .mainQueue = mainQueue,
        .accessibility = desktop.accessibility(),
        .screenCapture = desktop.screenCapture(),
        .workspace = desktop.workspace(),
        .screens = screens,
        .notifications = notifications,
        .keyDownMonitor = keyDownMonitor,
        .loginItem = loginItem,
        .ownWindows = desktop.ownWindows(),
        .allowAccessibility = [&trust] { trust.enable(); },
        .updateIcon = [&delegate] { delegate.updateIcon(); },
        .bundle = {.name = skylet::productName, .shortVersion = SKYLET_VERSION},
    });
    perform = [&delegate](const QString& action) {
        if (action == QStringLiteral("settings")) {
            delegate.openSettings();
        } else if (action == QStringLiteral("about")) {
            delegate.openAbout();
        } else {
            return false;
        }
        return true;
    };
    const qt::TerminationSignals signals([] { QCoreApplication::quit(); });

    delegate.applicationDidFinishLaunching();
    const int status = application.exec();
    windows.reset();
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
    if (const auto answer =
            skylet::answerCommandLine({argv, static_cast<std::size_t>(argc)}, SKYLET_VERSION)) {
        return answer->print();
    }
    if (const auto problem = x11::findServerProblem()) {
        tellUser(*problem);
        return EXIT_FAILURE;
    }
    const x11::RepairChild repair;
    std::atexit(endWithoutServer);
    qt::QtMessages messages;
    auto arguments = qtArguments(argc, argv);
    int count = static_cast<int>(arguments.size()) - 1;
    QApplication application(count, arguments.data());
    QApplication::setApplicationName(QString::fromLatin1(skylet::productName));
    QApplication::setOrganizationDomain(QStringLiteral("corvane.com"));
    QApplication::setDesktopFileName(QString::fromLatin1(skylet::bundleIdentifier));
    QApplication::setApplicationVersion(QStringLiteral(SKYLET_VERSION));
    // Else a restored session would start the program with an argument of Qt's.
    QObject::connect(&application, &QGuiApplication::saveStateRequest, [](QSessionManager& session) {
        session.setRestartCommand({QCoreApplication::applicationFilePath()});
    });
    return run(application, messages);
}
