#include "support/SimCapture.h"

#include <utility>

namespace skylet::sim {

namespace {

class SimFilter final : public platform::ContentFilter {
  public:
    explicit SimFilter(double scale) : scale_(scale) {}
    [[nodiscard]] double pointPixelScale() const override { return scale_; }

  private:
    double scale_;
};

} // namespace

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

void SimStream::deliver(const platform::Frame& frame, platform::OutputType type) {
    queue_->async([handler = handler_, frame, type] { handler(type, frame); });
}

void SimStream::end(const platform::CaptureError& error) {
    running = false;
    capture_.answer(std::exchange(didStop_, nullptr), error);
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
            content.windows.push_back(
                {.windowID = static_cast<platform::WindowID>(window.entry.number.value_or(0)),
                 .title = window.entry.name.value_or("")});
        }
    }
    answer(std::move(done), std::move(content));
}

platform::Subscription SimScreenCapture::prepareCapture(platform::WindowID /*window*/) {
    class Preparation final : public platform::SubscriptionBase {
      public:
        explicit Preparation(int& count) : count_(count) { ++count_; }
        ~Preparation() override { --count_; }

      private:
        int& count_;
    };
    return std::make_unique<Preparation>(prepared);
}

platform::ContentFilterRef SimScreenCapture::makeFilter(platform::WindowID /*desktopIndependentWindow*/) {
    return std::make_shared<SimFilter>(pixelScale);
}

std::shared_ptr<platform::CaptureStream>
SimScreenCapture::makeStream(platform::ContentFilterRef /*filter*/,
                             const platform::StreamConfiguration& configuration, DidStopWithError didStop) {
    return std::make_shared<SimStream>(*this, configuration, std::move(didStop));
}

void SimScreenCapture::captureImage(platform::ContentFilterRef /*filter*/,
                                    const platform::StreamConfiguration& /*configuration*/,
                                    std::function<void(Still)> done) {
    ++stills;
    answer(std::move(done), Still{.error = stillError, .image = stillError ? nullptr : stillImage});
}

std::unique_ptr<platform::SerialQueue> SimScreenCapture::makeSampleQueue(const std::string& /*label*/) {
    return std::make_unique<SimSerialQueue>(&mainQueue_);
}

} // namespace skylet::sim
