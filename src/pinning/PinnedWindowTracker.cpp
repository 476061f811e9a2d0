#include "pinning/PinnedWindowTracker.h"

#include "windows/WindowDetector.h"

#include <algorithm>
#include <string>

namespace skylet {

namespace {

using platform::RunningApplication;
using platform::WindowID;

constexpr double pollSeconds = 2.0;
constexpr double reconciliationSeconds = 0.35;
// The new overlay's first look-up of its window is usually answered by then.
constexpr double delayAfterPin = 0.15;
// An application that becomes active needs a moment to bring its window forward.
constexpr double delayAfterActivation = 0.12;

} // namespace

PinnedWindowTracker::PinnedWindowTracker(const OverlayEnvironment& environment,
                                         const OverlayInputRoutes& routes)
    : environment_(environment)
    , routes_(routes) {
    startPolling();
    startVisibilityReconciliation();
    observeAppActivation();
    observeAppTermination();
}

bool PinnedWindowTracker::isPinned(WindowID windowID) const {
    return std::ranges::find(pinnedWindows_, windowID, &PinnedWindow::windowID) != pinnedWindows_.end();
}

void PinnedWindowTracker::pin(const ForeignWindow& window) {
    if (!pinnedWindows_.insert(PinnedWindow(window)).second) {
        return;
    }
    overlays_.emplace(window.windowID, std::make_unique<WindowOverlay>(environment_, routes_, window.windowID,
                                                                       window.ownerPID));
    wplog(environment_.log,
          [&] { return "pin: overlay created for wid=" + std::to_string(window.windowID); });
    reconcileAfter(delayAfterPin);
    notifyChange();
}

void PinnedWindowTracker::unpin(WindowID windowID) {
    drop([windowID](const PinnedWindow& window) { return window.windowID == windowID; });
}

void PinnedWindowTracker::unpinAll() {
    for (const auto& [windowID, overlay] : overlays_) {
        overlay->hideOverlay();
    }
    overlays_.clear();
    pinnedWindows_.clear();
    notifyChange();
}

void PinnedWindowTracker::startPolling() {
    pollTimer = environment_.mainQueue.every(pollSeconds, lifetime_.guard([this] { pruneClosedWindows(); }));
}

void PinnedWindowTracker::startVisibilityReconciliation() {
    visibilityTimer = environment_.mainQueue.every(reconciliationSeconds,
                                                   lifetime_.guard([this] { reconcilePinnedWindowOrder(); }));
}

void PinnedWindowTracker::observeAppActivation() {
    activationObserver = environment_.workspace.observeDidActivateApplication(
        lifetime_.guard([this](const std::optional<RunningApplication>& application) {
            if (pinnedWindows_.empty() || !application) {
                return;
            }
            // Becoming active ourselves, for instance by a click on an overlay, must not reshuffle the
            // overlays.
            if (application->processIdentifier != environment_.workspace.ownProcessIdentifier()) {
                reconcileAfter(delayAfterActivation);
            }
        }));
}

void PinnedWindowTracker::observeAppTermination() {
    terminationObserver = environment_.workspace.observeDidTerminateApplication(
        lifetime_.guard([this](const std::optional<RunningApplication>& application) {
            if (application) {
                drop([pid = application->processIdentifier](const PinnedWindow& window) {
                    return window.ownerPID == pid;
                });
            }
        }));
}

void PinnedWindowTracker::pruneClosedWindows() {
    if (pinnedWindows_.empty()) {
        return;
    }
    const auto existing = WindowDetector::allOnScreenWindowIDs(environment_.windowServer);
    drop([&existing](const PinnedWindow& window) { return !existing.contains(window.windowID); });
}

void PinnedWindowTracker::reconcilePinnedWindowOrder() {
    if (pinnedWindows_.empty()) {
        return;
    }
    const auto frontmost = WindowDetector::getFrontmostForeignWindow(
        environment_.workspace, environment_.accessibility, environment_.windowServer);
    for (const auto& [windowID, overlay] : overlays_) {
        if (frontmost && frontmost->windowID == windowID) {
            overlay->sendBehind();
        } else {
            overlay->bringToFront();
        }
    }
}

void PinnedWindowTracker::reconcileAfter(double seconds) {
    environment_.mainQueue.after(seconds, lifetime_.guard([this] { reconcilePinnedWindowOrder(); }));
}

void PinnedWindowTracker::drop(const std::function<bool(const PinnedWindow&)>& isGone) {
    bool changed = false;
    for (auto window = pinnedWindows_.begin(); window != pinnedWindows_.end();) {
        if (!isGone(*window)) {
            ++window;
            continue;
        }
        const auto overlay = overlays_.find(window->windowID);
        if (overlay != overlays_.end()) {
            overlay->second->hideOverlay();
            overlays_.erase(overlay);
        }
        window = pinnedWindows_.erase(window);
        changed = true;
    }
    if (changed) {
        notifyChange();
    }
}

void PinnedWindowTracker::notifyChange() const {
    if (onChange) {
        onChange();
    }
}

} // namespace skylet
