// WindowOverlay: what the capture stream is asked for.
#include "foundation/Geometry.h"
#include "foundation/PreferenceKeys.h"
#include "overlay/WindowOverlay.h"

#include <algorithm>
#include <cmath>

namespace skylet {

namespace {

using platform::MediaTime;

constexpr double defaultFrameSeconds = 1.0 / 30;
constexpr double lowestCaptureRate = 0.1;
constexpr double scaleWithoutScreen = 2.0;
constexpr int streamQueueDepth = 5;

MediaTime frameInterval(double captureRate) {
    const double seconds =
        captureRate > 0 ? 1 / std::max(captureRate, lowestCaptureRate) : defaultFrameSeconds;
    MediaTime time;
    time.value = std::llround(seconds * time.timescale);
    return time;
}

int pixels(double points, double pixelScale) {
    return std::max(1, static_cast<int>(points * pixelScale));
}

} // namespace

platform::StreamConfiguration WindowOverlay::makeStreamConfig(double pixelScale) const {
    const platform::Size size = panel_->frame().size();
    const double rate = environment_.defaults.readDouble(PreferenceKeys::captureRate).valueOr(0);
    return {
        .width = pixels(size.width, pixelScale),
        .height = pixels(size.height, pixelScale),
        .captureResolution = platform::captureResolutionBest,
        .scalesToFit = true,
        .showsCursor = false,
        .pixelFormat = platform::pixelFormat32BGRA,
        .queueDepth = streamQueueDepth,
        .minimumFrameInterval = frameInterval(rate),
    };
}

double WindowOverlay::displayScale() const {
    if (const auto scale = panel_->backingScaleFactor()) {
        return *scale;
    }
    const platform::Rect frame = panel_->frame();
    const auto screens = environment_.screens.screens();
    const auto shown = std::ranges::find_if(
        screens, [&](const platform::Screen& screen) { return intersects(screen.frame, frame); });
    if (shown != screens.end()) {
        return shown->backingScaleFactor;
    }
    const auto main = environment_.screens.mainScreen();
    return main ? main->backingScaleFactor : scaleWithoutScreen;
}

} // namespace skylet
