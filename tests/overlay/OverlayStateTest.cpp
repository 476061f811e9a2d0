// Making, showing, stepping back, hiding and destroying an overlay.
#include "overlay/OverlayScene.h"

namespace skylet {
namespace {

TEST(OverlayState, IsMadeOffScreenAtTheTargetsFrame) {
    OverlayScene s;
    s.create();
    EXPECT_EQ(s.panel().frame(), OverlayScene::frame);
    EXPECT_EQ(s.panel().order, Order::out);
    EXPECT_EQ(s.panel().level, 4);
    s.desktop.advance(0);
    EXPECT_EQ(s.desktop.takeLog(), Lines{s.wid("resolved SCWindow for ") + " title='doc'"});
    EXPECT_TRUE(s.desktop.capture.streams.empty());
}

TEST(OverlayState, FallsBackToAFixedFrameWithoutBounds) {
    OverlayScene s;
    s.desktop.world.find(s.target)->entry.bounds.reset();
    s.create();
    EXPECT_EQ(s.panel().frame(), (platform::Rect{100, 100, 800, 600}));
    s.overlay.reset();
    s.desktop.closeWindow(s.target);
    s.create();
    EXPECT_EQ(s.panel().frame(), (platform::Rect{100, 100, 800, 600}));
}

TEST(OverlayState, ShowsAStillImageBeforeItFadesIn) {
    OverlayScene s;
    s.resolve();
    (void)s.desktop.takeLog();
    s.desktop.defaults.setDouble(PreferenceKeys::captureRate, 60);
    s.overlay->bringToFront();
    EXPECT_TRUE(s.overlay->isPinVisible());
    EXPECT_EQ(s.panel().order, Order::out) << "nothing is shown before the image is there";
    s.desktop.advance(0);
    EXPECT_EQ(s.panel().order, Order::front);
    EXPECT_EQ(s.panel().layer.contents, s.desktop.capture.stillImage);
    EXPECT_EQ(s.panel().animations, (std::vector<std::pair<double, double>>{{1.0, 0.15}}));
    EXPECT_TRUE(s.stream().running);
    s.overlay->bringToFront();
    EXPECT_EQ(s.desktop.takeLog(), (Lines{s.wid("bringToFront "), s.wid("stream starting ") + " maxFPS=60.0",
                                          s.wid("reasserting front order ")}));
}

TEST(OverlayState, FadesInWithoutAnImageWhenNoneCanBeHad) {
    OverlayScene unresolved;
    unresolved.create();
    unresolved.overlay->bringToFront();
    EXPECT_EQ(unresolved.panel().order, Order::front);
    EXPECT_EQ(unresolved.desktop.capture.stills, 0);

    OverlayScene failing;
    failing.resolve();
    failing.desktop.capture.stillError = {.domain = "d", .code = 3, .message = "no picture"};
    failing.bringToFront();
    EXPECT_EQ(failing.panel().order, Order::front);
    EXPECT_EQ(failing.panel().layer.contents, nullptr);
    EXPECT_EQ(failing.logged("pre-show"), Lines{failing.wid("pre-show capture failed ") + " no picture"});
}

TEST(OverlayState, WhatHappensWhileTheImageIsTakenCounts) {
    for (const bool staysShown : {true, false}) {
        OverlayScene s;
        s.resolve();
        s.desktop.capture.answerDelay = 1.0;
        s.overlay->bringToFront();
        s.desktop.advance(0.5);
        staysShown ? s.overlay->bringToFront() : s.overlay->sendBehind();
        s.desktop.advance(2);
        EXPECT_EQ(s.desktop.capture.stills, 1);
        EXPECT_EQ(s.panel().animations.size(), staysShown ? 1U : 0U);
        EXPECT_EQ(s.panel().order, staysShown ? Order::front : Order::back);
        EXPECT_EQ(s.panel().level, staysShown ? 4 : -1);
        EXPECT_EQ(s.desktop.capture.streams.size(), staysShown ? 1U : 0U);
    }
}

TEST(OverlayState, SendBehindStopsCaptureAndFollowingAndKeepsThePicture) {
    OverlayScene s;
    s.show();
    s.overlay->sendBehind();
    EXPECT_EQ(s.panel().level, -1);
    EXPECT_EQ(s.panel().order, Order::back);
    EXPECT_FALSE(s.stream().running);
    EXPECT_NE(s.panel().layer.contents, nullptr);
    s.desktop.moveWindow(s.target, {0, 0, 640, 480});
    s.desktop.advance(5);
    EXPECT_EQ(s.panel().frame(), OverlayScene::frame);
    EXPECT_TRUE(s.desktop.capture.streams.empty()) << "a stopped stream is released";
    s.overlay->sendBehind();
    EXPECT_EQ(s.desktop.takeLog(), Lines{s.wid("sendBehind ")});
    s.overlay->bringToFront();
    EXPECT_EQ(s.panel().frame().size(), (platform::Size{640, 480})) << "follows again at once";
    EXPECT_EQ(s.panel().order, Order::front);
    EXPECT_EQ(s.panel().level, 4);
    EXPECT_EQ(s.panel().alpha, 1);
}

TEST(OverlayState, HideDropsThePictureAndTheScrollersMemory) {
    OverlayScene s;
    s.show();
    s.overlay->hideOverlay();
    EXPECT_EQ(s.panel().order, Order::out);
    EXPECT_EQ(s.panel().layer.contents, nullptr);
    EXPECT_EQ(s.forgotten, std::vector{s.target});
    EXPECT_FALSE(s.overlay->isPinVisible());
    s.desktop.advance(3);
    EXPECT_TRUE(s.desktop.capture.streams.empty());
    EXPECT_EQ(s.desktop.takeLog(), Lines{s.wid("hideOverlay ")});
}

TEST(OverlayState, ReleasingAShownOverlayStopsItsStreamSilently) {
    OverlayScene s;
    s.show();
    s.desktop.capture.stopError = {.domain = "d", .code = 1, .message = "stuck"};
    s.overlay.reset();
    s.desktop.advance(1);
    EXPECT_EQ(s.desktop.capture.stops, 1);
    EXPECT_EQ(s.desktop.takeLog(), Lines{});
}

// The overlay goes at every stage while answers about it are still under way.
TEST(OverlayState, PendingWorkOutlivesTheOverlayHarmlessly) {
    for (int stage = 0; stage < 6; ++stage) {
        SCOPED_TRACE(stage);
        OverlayScene s;
        s.desktop.capture.answerDelay = stage == 5 ? 0.0 : 0.4;
        s.desktop.capture.listsWindows = stage != 4;
        s.create(); // 0: the look-up is asked
        if (stage >= 1) {
            s.desktop.advance(0.5);
            s.overlay->bringToFront(); // 1: the still image, 4: another look-up
        }
        if (stage >= 2) {
            s.desktop.advance(0.5); // 2: the stream starts, 4: the retry waits
        }
        if (stage == 3) {
            s.stream().end({.domain = "d", .code = 1, .message = "over"});
        }
        if (stage == 5) {
            s.stream().deliver(completeFrame());
            s.panel().inject(platform::EventType::mouseMoved, {795, 5});
            s.panel().inject(platform::EventType::leftMouseDown, {795, 5});
        }
        s.overlay.reset();
        EXPECT_TRUE(s.desktop.panels.panels.empty());
        s.desktop.advance(10);
        EXPECT_TRUE(s.desktop.capture.streams.empty());
        EXPECT_EQ(s.desktop.capture.prepared, 0);
        EXPECT_EQ(s.probes, 0);
    }
}

} // namespace
} // namespace skylet
