#include "overlay/WindowOverlay.h"

#include "foundation/Geometry.h"
#include "foundation/PreferenceKeys.h"
#include "overlay/CaptureErrors.h"
#include "windows/WindowEntries.h"

#include <string>

namespace skylet {

namespace {

using platform::Rect;

// Above every normal window (NSFloatingWindowLevel is 3).
constexpr int pinLevel = 4;
constexpr double fadeInSeconds = 0.15;
constexpr Rect fallbackFrame{100, 100, 800, 600};

std::uint32_t collectionBehavior(const platform::Defaults& defaults) {
    namespace Behavior = platform::CollectionBehavior;
    const bool onAllSpaces = defaults.readBool(PreferenceKeys::pinToAllSpaces).valueOr(false);
    return onAllSpaces ? Behavior::canJoinAllSpaces | Behavior::fullScreenAuxiliary
                       : Behavior::fullScreenAuxiliary;
}

platform::PanelConfiguration panelConfiguration(const platform::Defaults& defaults) {
    return {
        .styleMask = platform::styleMaskNonactivatingPanel,
        .level = pinLevel,
        .isOpaque = false,
        .hasShadow = true,
        .isFloatingPanel = true,
        .hidesOnDeactivate = false,
        .collectionBehavior = collectionBehavior(defaults),
        .contentsGravity = platform::ContentsGravity::resize,
    };
}

} // namespace

WindowOverlay::WindowOverlay(const OverlayEnvironment& environment, const OverlayInputRoutes& routes,
                             platform::WindowID windowID, platform::ProcessID pid)
    : environment_(environment)
    , routes_(routes)
    , targetWindowID_(windowID)
    , targetPID_(pid)
    , sampleQueue(environment.screenCapture.makeSampleQueue("com.corvane.skylet.floating.frames")) {
    const Rect frame =
        getWindowFrame(environment_.windowServer, environment_.screens, windowID).value_or(fallbackFrame);
    panel_ = environment_.panelFactory.makePanel(frame, panelConfiguration(environment_.defaults));
    canvas_ = std::make_unique<OverlayCanvasView>(frame, panel_->contentLayer(), *panel_);
    panel_->setResizeHandler(lifetime_.guard([this] { canvas_->setSize(panel_->frame().size()); }));
    panel_->setEventHandler(lifetime_.guard([this](const platform::InputEvent& event) { sendEvent(event); }));
    installGripHandlers();
    resolveSCWindow(false);
}

WindowOverlay::~WindowOverlay() {
    frameSyncTimer.reset();
    releaseStream([](const platform::CaptureError&) {});
}

void WindowOverlay::installGripHandlers() {
    canvas_->setMoveHandler(lifetime_.guard([this] { hasCustomOverlayPosition = true; }));
    canvas_->setResizeHandlers(
        lifetime_.guard([this](const platform::InputEvent& event) { return beginResize(event); }),
        lifetime_.guard([this](const platform::InputEvent& event) { dragResize(event); }),
        lifetime_.guard([this] { endResize(); }));
}

void WindowOverlay::bringToFront() {
    if (!isPinVisible_) {
        wplog(environment_.log,
              [&] { return "overlay: bringToFront wid=" + std::to_string(targetWindowID_); });
        isPinVisible_ = true;
        canvas_->pinIsVisible = true;
        canvas_->updateGripVisibility();
        syncFrameWithTarget();
    } else {
        wplog(environment_.log,
              [&] { return "overlay: reasserting front order wid=" + std::to_string(targetWindowID_); });
    }
    if (panel_->isVisible()) {
        panel_->setLevel(pinLevel);
        panel_->orderFrontRegardless();
        startStream();
        // A running timer is left alone: the order is reasserted more often than the timer's interval, so
        // that starting it anew each time would keep it from ever firing.
        if (frameSyncTimer == nullptr) {
            startFrameSync();
        }
    } else if (!scWindow) {
        fadeIn();
    } else {
        doInitialShow();
    }
}

void WindowOverlay::doInitialShow() {
    if (isCapturingInitialImage_) {
        return;
    }
    isCapturingInitialImage_ = true;
    const auto filter = environment_.screenCapture.makeFilter(scWindow->windowID);
    auto done = lifetime_.guard([this](const platform::ScreenCapture::Still& still) {
        isCapturingInitialImage_ = false;
        if (still.error) {
            wplog(environment_.log, [&] {
                return "overlay: pre-show capture failed wid=" + std::to_string(targetWindowID_) + " " +
                       describe(*still.error);
            });
        }
        // Whoever sent the overlay behind or put it on screen in the meantime has decided otherwise.
        if (!isPinVisible_ || panel_->isVisible()) {
            return;
        }
        if (!still.error) {
            panel_->contentLayer().setContents(still.image);
        }
        fadeIn();
    });
    environment_.screenCapture.captureImage(
        filter, makeStreamConfig(filter->pointPixelScale()),
        [&mainQueue = environment_.mainQueue, done](platform::ScreenCapture::Still still) {
            mainQueue.async([done, still = std::move(still)] { done(still); });
        });
}

void WindowOverlay::fadeIn() {
    panel_->setLevel(pinLevel);
    panel_->setAlpha(0);
    panel_->orderFrontRegardless();
    panel_->animateAlpha(1.0, fadeInSeconds);
    startStream();
    startFrameSync();
}

void WindowOverlay::sendBehind() {
    if (!isPinVisible_) {
        return;
    }
    wplog(environment_.log, [&] { return "overlay: sendBehind wid=" + std::to_string(targetWindowID_); });
    stepDown();
    panel_->setLevel(environment_.windowServer.normalWindowLevel() - 1);
    panel_->orderBack();
}

void WindowOverlay::hideOverlay() {
    wplog(environment_.log, [&] { return "overlay: hideOverlay wid=" + std::to_string(targetWindowID_); });
    if (routes_.axForget) {
        routes_.axForget(targetWindowID_);
    }
    stepDown();
    panel_->contentLayer().setContents(nullptr);
    displayedFrame.reset();
    panel_->orderOut();
}

// What ends when the overlay is no longer the shown pin.
void WindowOverlay::stepDown() {
    isPinVisible_ = false;
    endResize();
    moveDragInProgress = false;
    canvas_->pinIsVisible = false;
    canvas_->updateGripVisibility();
    stopStream();
    frameSyncTimer.reset();
}

void WindowOverlay::applyPinToAllSpaces() {
    panel_->setCollectionBehavior(collectionBehavior(environment_.defaults));
}

bool WindowOverlay::forwardEvents(const platform::Defaults& defaults, const platform::Workspace& workspace) {
    return defaults.readBool(PreferenceKeys::forwardEvents).valueOr(!workspace.isSystemVersion27OrLater());
}

} // namespace skylet
