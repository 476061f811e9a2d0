// WindowOverlay: the capture stream that feeds the picture.
#include "foundation/PreferenceKeys.h"
#include "foundation/Text.h"
#include "overlay/CaptureErrors.h"
#include "overlay/WindowOverlay.h"

#include <algorithm>
#include <string>
#include <utility>

namespace skylet {

namespace {

using platform::CaptureError;

constexpr double resolveRetrySeconds = 1.0;

} // namespace

// True while the user's refusal holds; asks the permission again, which may have been given since.
bool WindowOverlay::isParkedByPermission() {
    if (screenCapturePermissionDenied && environment_.screenCapture.preflightAccess()) {
        screenCapturePermissionDenied = false;
    }
    return screenCapturePermissionDenied;
}

void WindowOverlay::resolveSCWindow(bool thenStartStream) {
    if (isResolvingSCWindow || isParkedByPermission()) {
        return;
    }
    isResolvingSCWindow = true;
    using Content = platform::ScreenCapture::ShareableContent;
    auto done = lifetime_.guard(
        [this, thenStartStream](const Content& content) { finishResolving(content, thenStartStream); });
    // Windows on other desktops and minimised ones are wanted too.
    environment_.screenCapture.getShareableContent(
        false, false, [&mainQueue = environment_.mainQueue, done](Content content) {
            mainQueue.async([done, content = std::move(content)] { done(content); });
        });
}

void WindowOverlay::finishResolving(const platform::ScreenCapture::ShareableContent& content,
                                    bool thenStartStream) {
    isResolvingSCWindow = false;
    if (content.error) {
        wplog(environment_.log,
              [&] { return "overlay: SCShareableContent error: " + describe(*content.error); });
        if (isUserDeclined(*content.error)) {
            screenCapturePermissionDenied = true;
        } else {
            scheduleResolveRetry(thenStartStream);
        }
        return;
    }
    const auto found =
        std::ranges::find(content.windows, targetWindowID_, &platform::CaptureWindow::windowID);
    if (found == content.windows.end()) {
        wplog(environment_.log, [&] {
            return "overlay: SCWindow NOT FOUND for wid=" + std::to_string(targetWindowID_) + " (checked " +
                   std::to_string(content.windows.size()) + " windows)";
        });
        scheduleResolveRetry(thenStartStream);
        return;
    }
    scWindow = *found;
    // From now on, so that the picture is whole by the time it is shown.
    capturePreparation_ = environment_.screenCapture.prepareCapture(targetWindowID_);
    wplog(environment_.log, [&] {
        return "overlay: resolved SCWindow for wid=" + std::to_string(targetWindowID_) + " title='" +
               scWindow->title + "'";
    });
    if (thenStartStream && isPinVisible_) {
        startStream();
    }
}

void WindowOverlay::scheduleResolveRetry(bool thenStartStream) {
    // One retry at a time: every look-up that fails asks for one, and look-ups come from elsewhere too.
    if (!thenStartStream || isRetryScheduled_) {
        return;
    }
    isRetryScheduled_ = true;
    environment_.mainQueue.after(resolveRetrySeconds, lifetime_.guard([this] {
        isRetryScheduled_ = false;
        if (isPinVisible_ && stream == nullptr) {
            resolveSCWindow(true);
        }
    }));
}

void WindowOverlay::startStream() {
    if (stream != nullptr || isParkedByPermission()) {
        return;
    }
    if (!scWindow) {
        resolveSCWindow(true);
        return;
    }
    const auto filter = environment_.screenCapture.makeFilter(scWindow->windowID);
    const double scale = filter->pointPixelScale();
    streamPixelScale = scale >= 1.0 ? scale : displayScale();
    lastStreamSize = panel_->frame().size();
    didLogFirstFrame = false;
    framesReceived = 0;

    const std::uint64_t number = ++streamNumber_;
    auto didStop = lifetime_.guard([this, number] {
        forgetStream(number);
        if (isPinVisible_) {
            resolveSCWindow(true);
        }
    });
    auto created = environment_.screenCapture.makeStream(
        filter, makeStreamConfig(streamPixelScale),
        [&log = environment_.log, &mainQueue = environment_.mainQueue, wid = targetWindowID_,
         didStop](const CaptureError& error) {
            wplog(log, [&] {
                return "overlay: stream stopped wid=" + std::to_string(wid) + " " + describe(error);
            });
            mainQueue.async(didStop);
        });
    const auto refused =
        created->addStreamOutput(platform::OutputType::screen, *sampleQueue, makeSampleHandler());
    if (refused) {
        wplog(environment_.log, [&] {
            return "overlay: addStreamOutput failed wid=" + std::to_string(targetWindowID_) + " " +
                   describe(*refused);
        });
        return;
    }
    stream = std::move(created);
    stream->startCapture([&log = environment_.log, &mainQueue = environment_.mainQueue, wid = targetWindowID_,
                          forget = lifetime_.guard([this, number] { forgetStream(number); })](
                             const std::optional<CaptureError>& error) {
        if (!error) {
            return;
        }
        wplog(log, [&] {
            return "overlay: startCapture failed wid=" + std::to_string(wid) + " " + describe(*error);
        });
        mainQueue.async(forget);
    });
    wplog(environment_.log, [&] {
        const double rate = environment_.defaults.readDouble(PreferenceKeys::captureRate).valueOr(0);
        return "overlay: stream starting wid=" + std::to_string(targetWindowID_) +
               " maxFPS=" + formatNumber(rate);
    });
}

// Drops the stream if it is still the one with this number.
void WindowOverlay::forgetStream(std::uint64_t number) {
    if (number == streamNumber_) {
        stream.reset();
    }
}

void WindowOverlay::stopStream() {
    releaseStream([&log = environment_.log](const CaptureError& error) {
        wplog(log, [&] { return "overlay: stopCapture error: " + describe(error); });
    });
}

// Takes the stream out of `stream` and stops it. It lives until it has stopped, and is then destroyed on the
// main thread, its queue after it.
void WindowOverlay::releaseStream(std::function<void(const CaptureError&)> onError) {
    if (stream == nullptr) {
        return;
    }
    struct Stopping {
        std::shared_ptr<platform::SerialQueue> queue;
        std::shared_ptr<platform::CaptureStream> stream;
    };
    auto stopping = std::make_shared<Stopping>(Stopping{sampleQueue, std::exchange(stream, nullptr)});
    platform::CaptureStream& stopped = *stopping->stream;
    stopped.stopCapture([&mainQueue = environment_.mainQueue, onError = std::move(onError),
                         stopping = std::move(stopping)](const std::optional<CaptureError>& error) mutable {
        if (error) {
            onError(*error);
        }
        mainQueue.async([last = std::move(stopping)] {});
    });
}

void WindowOverlay::applyCaptureRate() {
    if (stream != nullptr) {
        updateStreamConfiguration();
    }
}

void WindowOverlay::updateStreamConfiguration() {
    stream->updateConfiguration(
        makeStreamConfig(streamPixelScale),
        [&log = environment_.log](const std::optional<CaptureError>& error) {
            if (error) {
                wplog(log, [&] { return "overlay: updateConfiguration (rate) error: " + describe(*error); });
            }
        });
}

// The handler runs on the sample queue, where nothing of the overlay may be touched.
platform::CaptureStream::SampleHandler WindowOverlay::makeSampleHandler() {
    auto show = lifetime_.guard([this](const platform::Frame& frame) { showFrame(frame); });
    return
        [&mainQueue = environment_.mainQueue, show](platform::OutputType type, const platform::Frame& frame) {
            if (type == platform::OutputType::screen && frame.status == platform::FrameStatus::complete &&
                frame.surface != nullptr) {
                mainQueue.async([show, frame] { show(frame); });
            }
        };
}

void WindowOverlay::showFrame(const platform::Frame& frame) {
    ++framesReceived;
    if (!didLogFirstFrame) {
        didLogFirstFrame = true;
        const platform::Size size = panel_->frame().size();
        wplog(environment_.log, [&] {
            return "overlay: first frame " + std::to_string(frame.pixelWidth) + "x" +
                   std::to_string(frame.pixelHeight) + "px for " + formatNumber(size.width) + "x" +
                   formatNumber(size.height) + "pt @" + formatNumber(streamPixelScale) +
                   " wid=" + std::to_string(targetWindowID_);
        });
        if (routes_.probe) {
            routes_.probe(targetPID_, targetWindowID_);
        }
    }
    displayedFrame = frame.surface;
    panel_->contentLayer().setContents(frame.surface);
}

} // namespace skylet
