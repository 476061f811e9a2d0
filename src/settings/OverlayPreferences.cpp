#include "settings/OverlayPreferences.h"

#include "foundation/PreferenceKeys.h"

namespace skylet {

namespace {

constexpr double defaultCaptureRate = 30.0;

} // namespace

OverlayPreferences::OverlayPreferences(platform::Defaults& defaults, const PinnedWindowTracker& tracker)
    : captureRate(defaults, PreferenceKeys::captureRate, defaultCaptureRate)
    , forwardEvents(defaults, PreferenceKeys::forwardEvents, true)
    , pinToAllSpaces(defaults, PreferenceKeys::pinToAllSpaces, false)
    , rateChanges_(captureRate.observeDidChange([&tracker] {
        for (const auto& [windowID, overlay] : tracker.overlays()) {
            overlay->applyCaptureRate();
        }
    }))
    , spacesChanges_(pinToAllSpaces.observeDidChange([&tracker] {
        for (const auto& [windowID, overlay] : tracker.overlays()) {
            overlay->applyPinToAllSpaces();
        }
    })) {}

} // namespace skylet
