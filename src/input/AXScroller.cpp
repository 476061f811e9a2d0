#include "input/AXScroller.h"

#include "foundation/Geometry.h"
#include "foundation/PreferenceKeys.h"
#include "input/AXAttributes.h"
#include "windows/WindowLevelManager.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <utility>

namespace skylet {

namespace {

using platform::AXElementRef;
using platform::Point;
using platform::ProcessID;
using platform::Rect;
using platform::WindowID;

// Spares a walk through the window for every step of the wheel, and is short enough for new areas to be
// found.
constexpr double cacheLifetime = 5.0;
constexpr double defaultSensitivity = 0.0015;
// Less than this is no movement: the bar stands at an end already.
constexpr double smallestStep = 1e-5;
// How long a window gets to show that it scrolled.
constexpr double probeDelay = 0.2;

std::string describe(Rect frame) {
    // Adding 0 turns -0 into 0.
    char text[64];
    std::snprintf(text, sizeof text, "%.0fx%.0f", std::trunc(frame.width) + 0.0,
                  std::trunc(frame.height) + 0.0);
    return text;
}

} // namespace

AXScroller::AXScroller(const Environment& environment, Clock clock)
    : environment_(environment)
    , clock_(std::move(clock))
    , probe_(environment.accessibility, environment.windowServer, environment.log)
    , queue(environment.queues.makeSerialQueue("com.corvane.skylet.floating.axprobe")) {}

AXScroller::~AXScroller() {
    isStopping_ = true;
    queue.reset();
}

double AXScroller::systemTime() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

void AXScroller::submit(platform::Work step) {
    heldBack_.push_back(std::move(step));
    release();
}

void AXScroller::release() {
    while (!isProbing_ && !heldBack_.empty()) {
        const platform::Work step = std::move(heldBack_.front());
        heldBack_.pop_front();
        step();
    }
}

void AXScroller::runOnQueue(platform::Work work) {
    queue->async([this, work = std::move(work)] {
        if (!isStopping_) {
            work();
        }
    });
}

void AXScroller::scroll(ProcessID pid, WindowID windowID, double deltaY, Point point) {
    if (deltaY == 0) {
        return;
    }
    submit([this, pid, windowID, deltaY, point] {
        runOnQueue([this, pid, windowID, deltaY, point] { moveBar(pid, windowID, deltaY, point); });
    });
}

void AXScroller::forget(WindowID windowID) {
    submit([this, windowID] { runOnQueue([this, windowID] { cache.erase(windowID); }); });
}

void AXScroller::moveBar(ProcessID pid, WindowID windowID, double deltaY, Point point) {
    const AXElementRef bar = barUnder(pid, windowID, point);
    if (bar == nullptr) {
        return;
    }
    const auto value = AXAttributes::copyNumber(environment_.accessibility, bar, "AXValue");
    if (!value) {
        cache.erase(windowID);
        return;
    }
    const double moved = std::clamp(*value - deltaY * sensitivity(), 0.0, 1.0);
    if (std::abs(moved - *value) <= smallestStep) {
        return;
    }
    const int error = environment_.accessibility.setAttributeValue(bar, "AXValue", moved);
    if (error != platform::AXError::success) {
        wplog(environment_.log, [&] {
            return "axscroll: set failed err=" + std::to_string(error) + ", dropping the cached bar";
        });
        cache.erase(windowID);
    }
}

double AXScroller::sensitivity() const {
    const double preferred =
        environment_.defaults.readDouble(PreferenceKeys::axScrollSensitivity).valueOr(defaultSensitivity);
    return preferred > 0 ? preferred : defaultSensitivity;
}

AXElementRef AXScroller::barUnder(ProcessID pid, WindowID windowID, Point point) {
    const auto* areas = resolveAreas(pid, windowID);
    if (areas == nullptr) {
        return nullptr;
    }
    const Area* innermost = nullptr;
    const auto extent = [](const Area& area) {
        return area.frame.width * area.frame.height;
    };
    for (const Area& area : *areas) {
        if (contains(area.frame, point) && (innermost == nullptr || extent(area) < extent(*innermost))) {
            innermost = &area;
        }
    }
    return innermost == nullptr ? nullptr : innermost->bar;
}

const std::vector<AXScroller::Area>* AXScroller::resolveAreas(ProcessID pid, WindowID windowID) {
    const auto known = cache.find(windowID);
    if (known != cache.end()) {
        if (clock_() - known->second.time < cacheLifetime) {
            return &known->second.areas;
        }
        cache.erase(known);
    }
    const AXElementRef window =
        WindowLevelManager::axWindow(environment_.accessibility, environment_.windowServer, pid, windowID);
    if (window == nullptr) {
        wplog(environment_.log, [&] { return "axscroll: no AX window for wid=" + std::to_string(windowID); });
        return nullptr;
    }
    environment_.accessibility.setMessagingTimeout(window, AXAttributes::messagingTimeout);
    std::vector<Area> areas = findAreas(window);
    if (areas.empty()) {
        wplog(environment_.log,
              [&] { return "axscroll: no settable scroll bar in wid=" + std::to_string(windowID); });
        return nullptr;
    }
    logShape(windowID, areas);
    const auto stored =
        cache.insert_or_assign(windowID, Resolved{.areas = std::move(areas), .time = clock_()}).first;
    return &stored->second.areas;
}

std::vector<AXScroller::Area> AXScroller::findAreas(const AXElementRef& window) {
    platform::Accessibility& accessibility = environment_.accessibility;
    std::vector<Area> areas;
    for (const AXElementRef& element : AXAttributes::collectScrollAreas(accessibility, window)) {
        const AXElementRef bar = AXAttributes::copyElement(accessibility, element, "AXVerticalScrollBar");
        if (bar == nullptr) {
            continue;
        }
        const auto [error, isSettable] = accessibility.isAttributeSettable(bar, "AXValue");
        if (error != platform::AXError::success || !isSettable) {
            continue;
        }
        if (const auto frame = AXAttributes::frameOf(accessibility, element)) {
            areas.push_back({.frame = *frame, .bar = bar});
        }
    }
    return areas;
}

void AXScroller::logShape(WindowID windowID, const std::vector<Area>& areas) {
    const auto joined = [&](const char* separator) {
        std::string text;
        for (const Area& area : areas) {
            text += (text.empty() ? "" : separator) + describe(area.frame);
        }
        return text;
    };
    std::string shape = joined(",");
    std::string& last = lastLoggedShape[windowID];
    if (shape == last) {
        return;
    }
    last = std::move(shape);
    wplog(environment_.log, [&] {
        return "axscroll: resolved " + std::to_string(areas.size()) +
               " scrollable area(s) for wid=" + std::to_string(windowID) + ": " + joined(" ");
    });
}

// A probe takes place in steps, because it waits and asks for the frontmost application in between. Whatever
// is asked for meanwhile is held back, as if the probe filled the queue from its first step to its last.
void AXScroller::probe(ProcessID pid, WindowID windowID) {
    if (environment_.defaults.readBool(PreferenceKeys::axScrollProbe).valueOr(false)) {
        submit([this, pid, windowID] { waitForTurn(pid, windowID); });
    }
}

void AXScroller::waitForTurn(ProcessID pid, WindowID windowID) {
    isProbing_ = true;
    auto next = lifetime_.guard([this, pid, windowID] { runProbe(pid, windowID); });
    runOnQueue([this, next = std::move(next)] { environment_.mainQueue.async(next); });
}

void AXScroller::runProbe(ProcessID pid, WindowID windowID) {
    using Attempt = std::optional<ScrollRouteProbe::Attempt>;
    auto next = lifetime_.guard([this](const Attempt& attempt) { finishProbe(attempt); });
    runOnQueue([this, pid, windowID, frontmost = frontmostName(), next = std::move(next)] {
        Attempt attempt = probe_.run(pid, windowID, frontmost);
        environment_.mainQueue.async([next, attempt = std::move(attempt)] { next(attempt); });
    });
}

void AXScroller::finishProbe(const std::optional<ScrollRouteProbe::Attempt>& attempt) {
    if (!attempt) {
        isProbing_ = false;
        release();
        return;
    }
    environment_.mainQueue.after(probeDelay, lifetime_.guard([this, attempt = *attempt] {
        runOnQueue([this, attempt, frontmost = frontmostName()] { probe_.conclude(attempt, frontmost); });
        isProbing_ = false;
        release();
    }));
}

std::string AXScroller::frontmostName() {
    const auto application = environment_.workspace.frontmostApplication();
    return application ? application->localizedName.value_or("?") : "?";
}

} // namespace skylet
