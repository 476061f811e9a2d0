#include "support/SimCapture.h"

#include <utility>

namespace skylet::sim {

using platform::CaptureError;

SimStream::SimStream(SimScreenCapture& capture, const platform::StreamConfiguration& configuration,
                     platform::ScreenCapture::DidStopWithError didStop)
    : configurations{configuration}
    , capture_(capture)
    , didStop_(std::move(didStop)) {
    ++capture_.streamsMade;
    capture_.streams.push_back(this);
}

SimStream::~SimStream() {
    std::erase(capture_.streams, this);
}

void SimStream::end(const platform::CaptureError& error) {
    running = false;
    if (didStop_) {
        capture_.answer(std::exchange(didStop_, nullptr), error);
    }
}

std::optional<platform::CaptureError> SimStream::addStreamOutput(platform::OutputType /*type*/,
                                                                 platform::SerialQueue& queue,
                                                                 SampleHandler handler) {
    queue_ = &queue;
    handler_ = std::move(handler);
    return capture_.outputError;
}

void SimStream::startCapture(Completion done) {
    running = !capture_.startError;
    capture_.answer(std::move(done), capture_.startError);
}

void SimStream::stopCapture(Completion done) {
    ++capture_.stops;
    running = false;
    capture_.answer(std::move(done), capture_.stopError);
}

void SimStream::updateConfiguration(const platform::StreamConfiguration& configuration, Completion done) {
    configurations.push_back(configuration);
    capture_.answer(std::move(done), capture_.updateError);
}

void SimScreenCapture::getShareableContent(bool /*excludingDesktopWindows*/, bool onScreenWindowsOnly,
                                           std::function<void(ShareableContent)> done) {
    ++queries;
    ShareableContent content{.error = contentError, .windows = {}};
    for (const SimWindow& window : world_.windows) {
        if (!contentError && listsWindows && (window.onScreen || !onScreenWindowsOnly)) {
            content.windows.push_back({.windowID = window.id(), .title = window.entry.name.value_or("")});
        }
    }
    answer(std::move(done), std::move(content));
}

} // namespace skylet::sim
