// The set of pinned windows and the overlay of each.
//
// A window stays pinned until it is unpinned, the window server no longer lists it or its application ends.
// Several times a second each overlay is put in front, or behind while its own window is the frontmost one.
// After every operation the ids in `overlays` are exactly those in `pinnedWindows`.
// Threads: main thread. Failure: an id that is not pinned is ignored.
#pragma once

#include "foundation/Lifetime.h"
#include "overlay/OverlayEnvironment.h"
#include "overlay/WindowOverlay.h"
#include "pinning/PinnedWindow.h"
#include "platform/Subscription.h"

#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace skylet {

class PinnedWindowTracker {
  public:
    using Overlays = std::unordered_map<platform::WindowID, std::unique_ptr<WindowOverlay>>;

    // Both must outlive the tracker. Polling and observing begin at once.
    PinnedWindowTracker(const OverlayEnvironment& environment, const OverlayInputRoutes& routes);

    [[nodiscard]] const std::unordered_set<PinnedWindow>& pinnedWindows() const { return pinnedWindows_; }
    [[nodiscard]] const Overlays& overlays() const { return overlays_; }
    [[nodiscard]] bool isPinned(platform::WindowID windowID) const;

    void pin(const ForeignWindow& window);
    void unpin(platform::WindowID windowID);
    void unpinAll();

    // Called after every change of the set, and by every `unpinAll`.
    std::function<void()> onChange;

  private:
    void startPolling();
    void startVisibilityReconciliation();
    void observeAppActivation();
    void observeAppTermination();
    void pruneClosedWindows();
    void reconcilePinnedWindowOrder();
    void reconcileAfter(double seconds);
    // Hides and drops the overlays of all pinned windows that `isGone` names; tells about it once, if there
    // are any.
    void drop(const std::function<bool(const PinnedWindow&)>& isGone);
    void notifyChange() const;

    const OverlayEnvironment& environment_;
    const OverlayInputRoutes& routes_;
    std::unordered_set<PinnedWindow> pinnedWindows_;
    Overlays overlays_;
    platform::TimerRef pollTimer;
    platform::TimerRef visibilityTimer;
    platform::Subscription activationObserver;
    platform::Subscription terminationObserver;
    Lifetime lifetime_;
};

} // namespace skylet
