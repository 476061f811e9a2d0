// The preferences of the floating windows as the settings show and write them, and what a change does to the
// overlays that are open.
//
// Threads: main thread. Failure: an overlay logs what it cannot apply; the stored value stays.
#pragma once

#include "pinning/PinnedWindowTracker.h"
#include "platform/Defaults.h"
#include "platform/Subscription.h"
#include "settings/StoredValue.h"

#include <array>

namespace skylet {

struct CaptureRateOption {
    const char* label;
    double framesPerSecond;
};

constexpr std::array<CaptureRateOption, 8> captureRateOptions{{
    {"0.5 fps", 0.5},
    {"1 fps", 1.0},
    {"2 fps", 2.0},
    {"5 fps", 5.0},
    {"10 fps", 10.0},
    {"15 fps", 15.0},
    {"30 fps", 30.0},
    {"60 fps", 60.0},
}};

class OverlayPreferences {
  public:
    // Both must outlive the preferences.
    OverlayPreferences(platform::Defaults& defaults, const PinnedWindowTracker& tracker);
    OverlayPreferences(const OverlayPreferences&) = delete;
    OverlayPreferences& operator=(const OverlayPreferences&) = delete;

    StoredValue<double> captureRate;
    StoredValue<bool> forwardEvents;
    StoredValue<bool> pinToAllSpaces;

  private:
    platform::Subscription rateChanges_;
    platform::Subscription spacesChanges_;
};

} // namespace skylet
