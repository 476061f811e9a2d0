// The capture service of the simulated desktop. Every answer comes on the main queue, after `answerDelay`.
#pragma once

#include "platform/ScreenCapture.h"
#include "support/SimQueues.h"
#include "support/SimWorld.h"

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace skylet::sim {

struct SimSurface final : platform::Surface {};

struct SimFilter final : platform::ContentFilter {
    explicit SimFilter(double pixelScale) : scale(pixelScale) {}
    [[nodiscard]] double pointPixelScale() const override { return scale; }
    double scale;
};

class SimScreenCapture;

class SimStream final : public platform::CaptureStream {
  public:
    SimStream(SimScreenCapture& capture, const platform::StreamConfiguration& configuration,
              platform::ScreenCapture::DidStopWithError didStop);
    ~SimStream() override;

    std::vector<platform::StreamConfiguration> configurations; // the first one and every update
    bool running = false;

    // Sends a sample as the service would.
    void deliver(const platform::Frame& frame, platform::OutputType type = platform::OutputType::screen) {
        queue_->async([handler = handler_, frame, type] { handler(type, frame); });
    }
    // The system ends the stream.
    void end(const platform::CaptureError& error);

    [[nodiscard]] std::optional<platform::CaptureError>
    addStreamOutput(platform::OutputType type, platform::SerialQueue& queue, SampleHandler handler) override;
    void startCapture(Completion done) override;
    void stopCapture(Completion done) override;
    void updateConfiguration(const platform::StreamConfiguration& configuration, Completion done) override;

  private:
    SimScreenCapture& capture_;
    platform::ScreenCapture::DidStopWithError didStop_;
    platform::SerialQueue* queue_ = nullptr;
    SampleHandler handler_;
};

class SimScreenCapture final : public platform::ScreenCapture {
  public:
    SimScreenCapture(SimWorld& world, SimMainQueue& mainQueue) : world_(world), mainQueue_(mainQueue) {}

    bool permitted = true;
    double pixelScale = 2.0;
    double answerDelay = 0;
    bool listsWindows = true;
    // Absent: the call succeeds.
    std::optional<platform::CaptureError> contentError, stillError, outputError, startError, stopError,
        updateError;
    int queries = 0;
    int stills = 0;
    int streamsMade = 0;
    int stops = 0;                   // asked for by this program
    std::vector<SimStream*> streams; // those that live, oldest first
    platform::SurfaceRef stillImage = std::make_shared<SimSurface>();

    // Calls `done` with `argument` later, as the service answers.
    template <class Done, class Argument>
    void answer(Done done, Argument argument) {
        mainQueue_.after(answerDelay, [done = std::move(done), argument = std::move(argument)]() mutable {
            done(argument);
        });
    }

    void getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                             std::function<void(ShareableContent)> done) override;
    // Counts what is prepared; the picture of a simulated window is always whole.
    int prepared = 0;
    [[nodiscard]] platform::Subscription prepareCapture(platform::WindowID /*window*/) override {
        struct Preparation final : platform::SubscriptionBase {
            explicit Preparation(int& preparations) : count(preparations) { ++count; }
            ~Preparation() override { --count; }
            int& count;
        };
        return std::make_unique<Preparation>(prepared);
    }
    [[nodiscard]] platform::ContentFilterRef makeFilter(platform::WindowID /*window*/) override {
        return std::make_shared<SimFilter>(pixelScale);
    }
    [[nodiscard]] std::shared_ptr<platform::CaptureStream>
    makeStream(platform::ContentFilterRef /*filter*/, const platform::StreamConfiguration& configuration,
               DidStopWithError didStop) override {
        return std::make_shared<SimStream>(*this, configuration, std::move(didStop));
    }
    void captureImage(platform::ContentFilterRef /*filter*/, const platform::StreamConfiguration&,
                      std::function<void(Still)> done) override {
        ++stills;
        answer(std::move(done), Still{.error = stillError, .image = stillError ? nullptr : stillImage});
    }
    [[nodiscard]] std::unique_ptr<platform::SerialQueue> makeSampleQueue(const std::string&) override {
        return std::make_unique<SimSerialQueue>(&mainQueue_);
    }
    [[nodiscard]] bool preflightAccess() override { return permitted; }
    bool requestAccess() override { return permitted; }

  private:
    SimWorld& world_;
    SimMainQueue& mainQueue_;
};

} // namespace skylet::sim
