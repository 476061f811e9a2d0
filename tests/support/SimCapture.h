// The capture service of the simulated desktop. Every answer comes on the main queue, after `answerDelay`.
#pragma once

#include "platform/ScreenCapture.h"
#include "support/SimQueues.h"
#include "support/SimWorld.h"

#include <utility>

namespace skylet::sim {

struct SimSurface final : platform::Surface {};

struct SimFilter final : platform::ContentFilter {
    explicit SimFilter(double pixelScale) : scale(pixelScale) {}
    double pointPixelScale() const override { return scale; }
    double scale;
};

struct SimStream;

// What a test scripts, and what it may look at.
struct SimCaptureScript {
    explicit SimCaptureScript(SimMainQueue& queue) : mainQueue(queue) {}

    bool permitted = true;
    double pixelScale = 2.0;
    double answerDelay = 0;
    bool listsWindows = true;
    // Absent: the call succeeds.
    using Error = std::optional<platform::CaptureError>;
    Error contentError, stillError, outputError, startError, stopError, updateError;
    int queries = 0;
    int stills = 0;
    int streamsMade = 0;
    int stops = 0;                   // asked for by this program
    int prepared = 0;                // and not let go of
    std::vector<SimStream*> streams; // those that live, oldest first
    platform::SurfaceRef stillImage = std::make_shared<SimSurface>();
    SimMainQueue& mainQueue;

    // Calls `done` with `argument` later, as the service answers.
    template <class Done, class Argument>
    void answer(Done done, Argument argument) {
        mainQueue.after(answerDelay, [done = std::move(done), argument = std::move(argument)]() mutable {
            done(argument);
        });
    }
};

struct SimStream final : platform::CaptureStream {
    using DidStop = platform::ScreenCapture::DidStopWithError;

    SimStream(SimCaptureScript& script, const platform::StreamConfiguration& configuration, DidStop didStop)
        : configurations{configuration}
        , script_(script)
        , didStop_(std::move(didStop)) {
        ++script_.streamsMade;
        script_.streams.push_back(this);
    }
    ~SimStream() override { std::erase(script_.streams, this); }

    std::vector<platform::StreamConfiguration> configurations; // the first one and every update
    bool running = false;

    // Sends a sample as the service would.
    void deliver(const platform::Frame& frame, platform::OutputType type = platform::OutputType::screen) {
        queue_->async([handler = handler_, frame, type] { handler(type, frame); });
    }
    // The system ends the stream.
    void end(const platform::CaptureError& error) {
        running = false;
        if (didStop_) {
            script_.answer(std::exchange(didStop_, nullptr), error);
        }
    }

    SimCaptureScript::Error addStreamOutput(platform::OutputType /*type*/, platform::SerialQueue& queue,
                                            SampleHandler handler) override {
        queue_ = &queue;
        handler_ = std::move(handler);
        return script_.outputError;
    }
    void startCapture(Completion done) override {
        running = !script_.startError;
        script_.answer(std::move(done), script_.startError);
    }
    void stopCapture(Completion done) override {
        ++script_.stops;
        running = false;
        script_.answer(std::move(done), script_.stopError);
    }
    void updateConfiguration(const platform::StreamConfiguration& configuration, Completion done) override {
        configurations.push_back(configuration);
        script_.answer(std::move(done), script_.updateError);
    }

    SimCaptureScript& script_;
    DidStop didStop_;
    platform::SerialQueue* queue_ = nullptr;
    SampleHandler handler_;
};

struct SimScreenCapture final : platform::ScreenCapture, SimCaptureScript {
    SimScreenCapture(SimWorld& world, SimMainQueue& queue) : SimCaptureScript(queue), world_(world) {}

    void getShareableContent(bool /*excludingDesktopWindows*/, bool onScreenWindowsOnly,
                             std::function<void(ShareableContent)> done) override {
        ++queries;
        ShareableContent content{.error = contentError, .windows = {}};
        for (const SimWindow& window : world_.windows) {
            if (!contentError && listsWindows && (window.onScreen || !onScreenWindowsOnly)) {
                content.windows.push_back({.windowID = window.id(), .title = window.entry.name.value_or("")});
            }
        }
        answer(std::move(done), std::move(content));
    }
    // Only counted; the picture of a simulated window is always whole.
    platform::Subscription prepareCapture(platform::WindowID /*window*/) override {
        struct Preparation final : platform::SubscriptionBase {
            explicit Preparation(int& preparations) : count(preparations) { ++count; }
            ~Preparation() override { --count; }
            int& count;
        };
        return std::make_unique<Preparation>(prepared);
    }
    platform::ContentFilterRef makeFilter(platform::WindowID /*window*/) override {
        return std::make_shared<SimFilter>(pixelScale);
    }
    std::shared_ptr<platform::CaptureStream> makeStream(platform::ContentFilterRef /*filter*/,
                                                        const platform::StreamConfiguration& configuration,
                                                        DidStopWithError didStop) override {
        return std::make_shared<SimStream>(*this, configuration, std::move(didStop));
    }
    void captureImage(platform::ContentFilterRef /*filter*/, const platform::StreamConfiguration&,
                      std::function<void(Still)> done) override {
        ++stills;
        answer(std::move(done), Still{.error = stillError, .image = stillError ? nullptr : stillImage});
    }
    std::unique_ptr<platform::SerialQueue> makeSampleQueue(const std::string&) override {
        return std::make_unique<SimSerialQueue>(&mainQueue);
    }
    bool preflightAccess() override { return permitted; }
    bool requestAccess() override { return permitted; }

    SimWorld& world_;
};

} // namespace skylet::sim
