// Pins any number of windows at once, told by lines of standard input, with the adapters and the core of the
// real program: the shortcut alone can never get beyond one pin.
//   pin WINDOW     pins it; answers "ok"
//   unpin WINDOW   answers "ok"
//   show WINDOW    decides at once that its overlay shows; answers the monotonic time of that in nanoseconds
//   turns          answers how often the event loop has run since the start
// It ends at the end of its input.
#include "foundation/DiagnosticsLog.h"
#include "foundation/LogLocation.h"
#include "harness/LineInput.h"
#include "overlay/OverlayEnvironment.h"
#include "pinning/PinnedWindowTracker.h"
#include "platform/qt/AccessibilityTrust.h"
#include "platform/qt/DBusBuses.h"
#include "platform/qt/FileDefaults.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/SerialQueues.h"
#include "platform/x11/RaisedWindows.h"
#include "platform/x11/X11Accessibility.h"
#include "platform/x11/X11Panel.h"
#include "platform/x11/X11ScreenCapture.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11WindowServer.h"
#include "platform/x11/X11Workspace.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QSocketNotifier>

#include <chrono>
#include <cstdint>
#include <iostream>
#include <sstream>
#include <string>
#include <unistd.h>

namespace skylet::bench {
namespace {

namespace qt = platform::qt;
namespace x11 = platform::x11;

// Everything that the tracker needs, in the order of dependence.
class Desktop {
  public:
    explicit Desktop(x11::Connection& connection) : connection_(connection) {}
    [[nodiscard]] PinnedWindowTracker& tracker() { return tracker_; }

  private:
    x11::Connection& connection_;
    qt::QtMainQueue mainQueue_;
    qt::ThreadSerialQueueFactory queues_;
    qt::FileDefaults defaults_{qt::FileDefaults::defaultPath()};
    DiagnosticsLog log_{defaults_, queues_, prepareLogFilePath};
    qt::AccessibilityTrust trust_{qt::sessionBus()};
    x11::RenderFormats formats_{connection_};
    x11::ScreenLayout layout_{connection_};
    x11::ModifierMap modifiers_{connection_};
    x11::PanelStack stack_{connection_, layout_, mainQueue_};
    x11::RaisedWindows raised_;
    x11::X11WindowServer windowServer_{connection_};
    x11::X11Accessibility accessibility_{connection_, mainQueue_, trust_, raised_};
    x11::X11ScreenCapture capture_{connection_, formats_, windowServer_, mainQueue_};
    x11::X11PanelFactory panels_{{connection_, formats_, layout_, modifiers_, stack_, mainQueue_}};
    x11::X11Workspace workspace_{connection_, mainQueue_, queues_, raised_};
    x11::X11Screens screens_{connection_, layout_};
    OverlayEnvironment environment_{windowServer_, accessibility_, capture_,   panels_, workspace_,
                                    screens_,      defaults_,      mainQueue_, log_};
    OverlayInputRoutes routes_;
    PinnedWindowTracker tracker_{environment_, routes_};
};

class Host {
  public:
    explicit Host(PinnedWindowTracker& tracker) : tracker_(tracker) {}
    void countTurn() { ++turns_; }
    // Takes what has arrived; false at the end of the input.
    bool readInput();

  private:
    [[nodiscard]] std::string obey(const std::string& line);

    PinnedWindowTracker& tracker_;
    desktop::LineInput input_;
    long turns_ = 0;
};

bool Host::readInput() {
    return input_.read([this](const std::string& line) { std::cout << obey(line) << std::endl; });
}

std::string Host::obey(const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    platform::WindowID window = 0;
    words >> verb >> window;
    if (verb == "pin") {
        ForeignWindow target;
        target.windowID = window;
        target.ownerName = "target";
        tracker_.pin(target);
        return "ok";
    }
    if (verb == "unpin") {
        tracker_.unpin(window);
        return "ok";
    }
    if (verb == "show") {
        const auto overlay = tracker_.overlays().find(window);
        if (overlay == tracker_.overlays().end()) {
            return "unknown window";
        }
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        overlay->second->bringToFront();
        return std::to_string(std::chrono::nanoseconds(now).count());
    }
    if (verb == "turns") {
        return std::to_string(turns_);
    }
    return "unknown command";
}

int run(int argc, char** argv) {
    QApplication application(argc, argv);
    const auto opened = x11::Connection::open("");
    if (!opened.connection) {
        std::cerr << opened.failure << std::endl;
        return 1;
    }
    opened.connection->setErrorSink([](const x11::XError& error) {
        std::cerr << "X error " << int(error.code) << " of request " << int(error.majorOpcode) << '.'
                  << int(error.minorOpcode) << std::endl;
    });
    Desktop desktop(*opened.connection);
    Host host(desktop.tracker());
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &input, [&host] {
        if (!host.readInput()) {
            QApplication::quit();
        }
    });
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &input,
                     [&host] { host.countTurn(); });
    std::cout << "ready" << std::endl;
    return QApplication::exec();
}

} // namespace
} // namespace skylet::bench

int main(int argc, char** argv) {
    return skylet::bench::run(argc, argv);
}
