#include "settings/ZentroPermissionWatcher.h"

#include <limits>
#include <utility>

namespace skylet {

namespace {

constexpr double distantPast = -std::numeric_limits<double>::infinity();

} // namespace

const char* ZentroPermissionWatcher::rawValue(Pane pane) {
    switch (pane) {
    case Pane::accessibility:
        return "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
    case Pane::screenRecording:
        return "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture";
    case Pane::inputMonitoring:
        return "x-apple.systempreferences:com.apple.preference.security?Privacy_ListenEvent";
    case Pane::camera:
        return "x-apple.systempreferences:com.apple.preference.security?Privacy_Camera";
    case Pane::microphone:
        return "x-apple.systempreferences:com.apple.preference.security?Privacy_Microphone";
    }
    return "";
}

void ZentroPermissionWatcher::openSettings(platform::Workspace& workspace, Pane pane) {
    workspace.openURL(rawValue(pane));
}

ZentroPermissionWatcher::ZentroPermissionWatcher(const Services& services,
                                                 const std::optional<std::string>& announcement, Check check)
    : mainQueue_(services.mainQueue)
    , check_(std::move(check))
    , isGranted_(check_())
    , quietUntil_(distantPast) {
    if (announcement) {
        announcements_ = services.notifications.observeDistributed(*announcement,
                                                                   lifetime_.guard([this] { announced(); }));
    }
    activations_ = services.notifications.observeDidBecomeActive(lifetime_.guard([this] { reread(); }));
    poll_ = mainQueue_.every(pollSeconds, lifetime_.guard([this] { reread(); }));
}

ZentroPermissionWatcher ZentroPermissionWatcher::accessibility(const Services& services,
                                                               platform::Accessibility& accessibility) {
    return {services, accessibilityAnnouncement, [&accessibility] {
                return accessibility.isProcessTrusted();
            }};
}

ZentroPermissionWatcher ZentroPermissionWatcher::screenRecording(const Services& services,
                                                                 platform::ScreenCapture& screenCapture) {
    return {services, std::nullopt, [&screenCapture] {
                return screenCapture.preflightAccess();
            }};
}

ZentroPermissionWatcher ZentroPermissionWatcher::postEvent(const Services& services,
                                                           platform::EventPoster& eventPoster) {
    return {services, std::nullopt, [&eventPoster] {
                return eventPoster.preflightPostAccess();
            }};
}

bool ZentroPermissionWatcher::promptForAccessibility(platform::Accessibility& accessibility) {
    return accessibility.isProcessTrustedWithPrompt();
}

bool ZentroPermissionWatcher::promptForPostEvent(platform::EventPoster& eventPoster) {
    return eventPoster.requestPostAccess();
}

void ZentroPermissionWatcher::reread() {
    if (mainQueue_.now() < quietUntil_) {
        return;
    }
    const bool next = check_();
    if (next != isGranted_) {
        willChange_.post(next);
        isGranted_ = next;
    }
}

void ZentroPermissionWatcher::announced() {
    quietUntil_ = mainQueue_.now() + commitSeconds;
    // An earlier announcement's reading is not called off by a later one, and ends its quiet as well.
    mainQueue_.after(commitSeconds, lifetime_.guard([this] {
        quietUntil_ = distantPast;
        reread();
    }));
}

} // namespace skylet
