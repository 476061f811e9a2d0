// Finding the capture window, the stream's configuration, frames and recovery.
#include "overlay/OverlayScene.h"

namespace skylet {
namespace {

using platform::CaptureError;
using platform::FrameStatus;

const CaptureError someError{.domain = "d", .code = 7, .message = ""};
const CaptureError declined{.domain = "SCStreamErrorDomain", .code = -3801, .message = "declined"};

TEST(OverlayCapture, TheRatePreferenceIsAHighestRate) {
    const std::pair<std::optional<double>, std::int64_t> cases[] = {
        {std::nullopt, 20}, {0.0, 20}, {-5.0, 20}, {0.05, 6000}, {60.0, 10}, {15.0, 40}};
    for (const auto& [rate, sixHundredths] : cases) {
        OverlayScene s;
        if (rate) {
            s.desktop.defaults.setDouble(PreferenceKeys::captureRate, *rate);
        }
        s.show();
        EXPECT_EQ(s.stream().configurations[0].minimumFrameInterval,
                  (platform::MediaTime{sixHundredths, 600}));
    }
}

TEST(OverlayCapture, SizesAreWholePixelsAndAtLeastOne) {
    struct {
        platform::Size points;
        double scale;
        int width, height;
    } const cases[] = {{{800, 500}, 2, 1600, 1000},
                       {{0.4, 0.2}, 2, 1, 1},
                       {{100.9, 33.4}, 1, 100, 33},
                       {{333, 333}, 1.5, 499, 499}};
    for (const auto& test : cases) {
        OverlayScene s;
        s.desktop.moveWindow(s.target, {0, 0, test.points.width, test.points.height});
        s.desktop.capture.pixelScale = test.scale;
        s.show();
        const platform::StreamConfiguration expected{.width = test.width,
                                                     .height = test.height,
                                                     .captureResolution = 1,
                                                     .scalesToFit = true,
                                                     .showsCursor = false,
                                                     .pixelFormat = 0x42475241,
                                                     .queueDepth = 5,
                                                     .minimumFrameInterval = {20, 600}};
        EXPECT_EQ(s.stream().configurations[0], expected);
    }
}

TEST(OverlayCapture, AnUnknownScaleFallsBackToTheDisplay) {
    const auto widthAt = [](std::optional<double> panelScale, const std::vector<platform::Screen>& screens) {
        OverlayScene s;
        s.desktop.capture.pixelScale = 0.5;
        s.desktop.screens.all = screens;
        s.resolve();
        s.panel().scale = panelScale;
        s.bringToFront();
        return s.stream().configurations[0].width;
    };
    const platform::Screen away{.frame = {5000, 0, 100, 1080}, .visibleFrame = {}, .backingScaleFactor = 1.5};
    const platform::Screen here{.frame = {0, 0, 1920, 1080}, .visibleFrame = {}, .backingScaleFactor = 3};
    EXPECT_EQ(widthAt(4.0, {away, here}), 3200);
    EXPECT_EQ(widthAt(std::nullopt, {away, here}), 2400);
    EXPECT_EQ(widthAt(std::nullopt, {away}), 1200) << "the main screen";
    EXPECT_EQ(widthAt(std::nullopt, {}), 1600);
}

TEST(OverlayCapture, OnlyCompleteScreenFramesWithAPictureAreShown) {
    OverlayScene s;
    s.show();
    const platform::SurfaceRef still = s.panel().layer.contents;
    platform::Frame frame = completeFrame();
    for (const auto status : {std::optional<FrameStatus>(),
                              {FrameStatus::idle},
                              {FrameStatus::blank},
                              {FrameStatus::suspended},
                              {FrameStatus::started},
                              {FrameStatus::stopped}}) {
        frame.status = status;
        s.stream().deliver(frame);
    }
    s.stream().deliver({.status = FrameStatus::complete, .surface = nullptr});
    s.stream().deliver(completeFrame(), platform::OutputType::audio);
    s.desktop.advance(0);
    EXPECT_EQ(s.panel().layer.contents, still);
    EXPECT_EQ(s.logged("frame"), Lines{});
    frame.status = FrameStatus::complete;
    s.stream().deliver(frame);
    s.desktop.advance(0);
    EXPECT_EQ(s.panel().layer.contents, frame.surface);
}

TEST(OverlayCapture, TheFirstFrameOfEachStreamIsLoggedAndProbed) {
    OverlayScene s;
    s.show();
    for (int streams = 1; streams <= 2; ++streams) {
        s.stream().deliver(completeFrame());
        s.stream().deliver(completeFrame());
        s.desktop.advance(0);
        EXPECT_EQ(s.logged("first"), Lines{s.wid("first frame 1600x1000px for 800.0x500.0pt @2.0 ")});
        EXPECT_EQ(s.probes, streams);
        s.sendBehind();
        s.overlay->bringToFront();
    }
}

TEST(OverlayCapture, TheLookUpAtCreationIsNotRetried) {
    OverlayScene s;
    s.desktop.capture.listsWindows = false;
    s.create();
    s.desktop.advance(10);
    EXPECT_EQ(s.desktop.capture.queries, 1);
    EXPECT_EQ(s.logged("NOT"), Lines{s.wid("SCWindow NOT FOUND for ") + " (checked 0 windows)"});
}

TEST(OverlayCapture, AShownOverlayRetriesOnceASecondUntilItFindsItsWindow) {
    for (const bool failing : {false, true}) {
        OverlayScene s;
        auto& capture = s.desktop.capture;
        capture.listsWindows = failing;
        capture.contentError = failing ? std::optional(someError) : std::nullopt;
        s.show();
        EXPECT_EQ(capture.queries, 2);
        s.desktop.advance(5);
        EXPECT_EQ(capture.queries, 7);
        // Every reassertion looks too, but makes no further retries.
        s.desktop.advance(0.35);
        s.overlay->bringToFront();
        s.desktop.advance(0.35);
        s.overlay->bringToFront();
        s.desktop.advance(3);
        EXPECT_EQ(capture.queries, 12);
        EXPECT_EQ(s.logged("error").size(), failing ? 10U : 0U);
        // Stepping behind ends it, showing starts it again.
        s.overlay->sendBehind();
        s.desktop.advance(5);
        EXPECT_EQ(capture.queries, 12);
        capture.contentError.reset();
        capture.listsWindows = true;
        s.bringToFront();
        EXPECT_TRUE(s.stream().running);
    }
}

TEST(OverlayCapture, ADeclinedPermissionParksTheOverlay) {
    OverlayScene s;
    auto& capture = s.desktop.capture;
    capture.permitted = false;
    capture.contentError = declined;
    s.resolve();
    EXPECT_EQ(s.desktop.takeLog(), Lines{"overlay: SCShareableContent error: declined"});
    for (int i = 0; i < 20; ++i) {
        s.overlay->bringToFront();
        s.desktop.advance(0.35);
    }
    EXPECT_EQ(capture.queries, 1);
    EXPECT_EQ(s.logged("error"), Lines{});
    capture.permitted = true;
    capture.contentError.reset();
    s.bringToFront();
    EXPECT_TRUE(s.stream().running);
}

TEST(OverlayCapture, AStreamThatCannotStartIsForgottenAndTriedAgain) {
    for (const bool atOutput : {false, true}) {
        OverlayScene s;
        auto& capture = s.desktop.capture;
        (atOutput ? capture.outputError : capture.startError) = someError;
        s.show();
        s.desktop.advance(0);
        EXPECT_TRUE(capture.streams.empty());
        s.bringToFront();
        EXPECT_EQ(s.logged("failed"),
                  Lines{s.wid(atOutput ? "addStreamOutput failed " : "startCapture failed ") + " d 7"});
        capture.outputError.reset();
        capture.startError.reset();
        s.bringToFront();
        EXPECT_TRUE(s.stream().running);
    }
}

TEST(OverlayCapture, LateAnswersAboutAnOldStreamLeaveTheNewOneAlone) {
    OverlayScene s;
    s.show();
    auto& capture = s.desktop.capture;
    capture.answerDelay = 1.0;
    // The running stream ends and, as its notice is under way, is replaced; so is one that fails to start.
    s.stream().end(someError);
    for (const auto& startError : {std::optional(someError), std::optional<CaptureError>()}) {
        s.overlay->sendBehind();
        capture.startError = startError;
        s.overlay->bringToFront();
    }
    const int made = capture.streamsMade;
    s.desktop.advance(5);
    s.overlay->bringToFront();
    EXPECT_EQ(capture.streams.size(), 1U);
    EXPECT_TRUE(s.stream().running);
    EXPECT_EQ(capture.streamsMade, made) << "the new stream was kept";
}

TEST(OverlayCapture, AStreamThatTheSystemEndsIsPickedUpAgain) {
    OverlayScene s;
    s.show();
    auto& capture = s.desktop.capture;
    capture.listsWindows = false;
    s.stream().end(someError);
    s.desktop.advance(0);
    EXPECT_EQ(s.logged("stopped"), Lines{s.wid("stream stopped ") + " d 7"});
    EXPECT_TRUE(capture.streams.empty());
    capture.listsWindows = true;
    s.desktop.advance(1);
    EXPECT_TRUE(s.stream().running);
}

TEST(OverlayCapture, AFailingStopIsLogged) {
    OverlayScene s;
    s.show();
    s.desktop.capture.stopError = {.domain = "d", .code = 7, .message = "stuck"};
    s.sendBehind();
    EXPECT_EQ(s.logged("error"), Lines{"overlay: stopCapture error: stuck"});
    EXPECT_TRUE(s.desktop.capture.streams.empty());
}

} // namespace
} // namespace skylet
