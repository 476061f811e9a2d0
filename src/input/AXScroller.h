// Scrolls windows without posting events: finds the scroll areas of a window through accessibility and writes
// the vertical bar of the innermost one under the pointer.
//
// Other applications may answer slowly, so everything that asks them runs on a serial queue of the scroller's
// own. The window server and the accessibility interface are used on that queue only; where they belong to
// one thread, the scroller gets instances of its own. What it needs of the main thread (the frontmost
// application, time) it asks for there.
//
// Coordinates: window-server coordinates. Threads: main thread; no call waits. Failure: silent but for log
// lines; the scroll is dropped.
#pragma once

#include "foundation/DiagnosticsLog.h"
#include "foundation/Lifetime.h"
#include "input/ScrollRouteProbe.h"
#include "platform/Accessibility.h"
#include "platform/Defaults.h"
#include "platform/Queues.h"
#include "platform/Types.h"
#include "platform/WindowServer.h"
#include "platform/Workspace.h"

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace skylet {

class AXScroller {
  public:
    // All of it must outlive the scroller.
    struct Environment {
        platform::Accessibility& accessibility; // on the scroller's queue
        platform::WindowServer& windowServer;   // on the scroller's queue
        platform::Workspace& workspace;
        platform::Defaults& defaults;
        platform::MainQueue& mainQueue;
        platform::SerialQueueFactory& queues;
        DiagnosticsLog& log;
    };
    // The wall clock, in seconds; called on the scroller's queue.
    using Clock = std::function<double()>;

    explicit AXScroller(const Environment& environment, Clock clock = systemTime);
    AXScroller(const AXScroller&) = delete;
    AXScroller& operator=(const AXScroller&) = delete;
    // Drops what is queued and waits for what is running.
    ~AXScroller();

    // Scrolls what lies at `point` of the window. A positive delta moves towards the top; 0 does nothing.
    void scroll(platform::ProcessID pid, platform::WindowID windowID, double deltaY, platform::Point point);
    // Drops what is known about the window's scroll areas.
    void forget(platform::WindowID windowID);
    // Tests, if the user wants it, whether the window can be scrolled this way; the outcome goes to the log.
    void probe(platform::ProcessID pid, platform::WindowID windowID);

  private:
    struct Area {
        platform::Rect frame;
        platform::AXElementRef bar;
    };
    struct Resolved {
        std::vector<Area> areas; // in the order of their discovery
        double time = 0;
    };

    static double systemTime();

    // Main thread.
    void submit(platform::Work step);
    void release();
    void runOnQueue(platform::Work work);
    void waitForTurn(platform::ProcessID pid, platform::WindowID windowID);
    void runProbe(platform::ProcessID pid, platform::WindowID windowID);
    void finishProbe(const std::optional<ScrollRouteProbe::Attempt>& attempt);
    [[nodiscard]] std::string frontmostName();

    // The queue.
    void moveBar(platform::ProcessID pid, platform::WindowID windowID, double deltaY, platform::Point point);
    [[nodiscard]] platform::AXElementRef barUnder(platform::ProcessID pid, platform::WindowID windowID,
                                                  platform::Point point);
    // Null when there are none. Valid until the cache changes.
    [[nodiscard]] const std::vector<Area>* resolveAreas(platform::ProcessID pid, platform::WindowID windowID);
    [[nodiscard]] std::vector<Area> findAreas(const platform::AXElementRef& window);
    void logShape(platform::WindowID windowID, const std::vector<Area>& areas);
    [[nodiscard]] double sensitivity() const;

    Environment environment_;
    Clock clock_;
    // Both belong to the queue.
    std::unordered_map<platform::WindowID, Resolved> cache;
    std::unordered_map<platform::WindowID, std::string> lastLoggedShape;
    ScrollRouteProbe probe_;
    // What was asked for while a probe was under way: it waits for the probe's end.
    std::deque<platform::Work> heldBack_;
    bool isProbing_ = false;
    std::atomic<bool> isStopping_{false};
    std::unique_ptr<platform::SerialQueue> queue;
    Lifetime lifetime_;
};

} // namespace skylet
