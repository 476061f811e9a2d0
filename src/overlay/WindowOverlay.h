// The floating window that stands in for one pinned window of another application.
//
// It mirrors the target live, follows its geometry, lets the user move and resize it by two grips and routes
// the user's input. States: created (off screen) -> shown (in front, capturing) <-> behind (below normal
// windows, with its last picture) -> hidden (off screen, no picture). Coordinates: screen coordinates
// (bottom-left origin) and points, unless a name says otherwise. Threads: main thread. Captured frames arrive
// on the overlay's own queue and are handed to the main queue. Failure: logged; a window that cannot be
// captured yet is tried again while the overlay is shown.
#pragma once

#include "foundation/Lifetime.h"
#include "overlay/OverlayCanvasView.h"
#include "overlay/OverlayEnvironment.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace skylet {

class WindowOverlay {
  public:
    // Made off screen at the target's frame; the capture window is looked up right away, without a stream.
    // Environment and routes must outlive the overlay.
    WindowOverlay(const OverlayEnvironment& environment, const OverlayInputRoutes& routes,
                  platform::WindowID windowID, platform::ProcessID pid);
    WindowOverlay(const WindowOverlay&) = delete;
    WindowOverlay& operator=(const WindowOverlay&) = delete;
    ~WindowOverlay();

    // Shows the overlay as the pin of its target; when it is shown already, puts it in front again.
    void bringToFront();
    // Steps back behind the normal windows and stops the capture. Does nothing unless shown.
    void sendBehind();
    // Takes the overlay off screen and drops picture and capture.
    void hideOverlay();
    // Applies a changed capture rate to the running stream.
    void applyCaptureRate();
    // Shows the overlay on every desktop or on its own one only, as the preference says now.
    void applyPinToAllSpaces();

    [[nodiscard]] bool isPinVisible() const { return isPinVisible_; }
    [[nodiscard]] platform::WindowID targetWindowID() const { return targetWindowID_; }
    [[nodiscard]] platform::ProcessID targetPID() const { return targetPID_; }
    [[nodiscard]] platform::Rect frame() const { return panel_->frame(); }

    // The target's frame, or none when the window server does not report it.
    [[nodiscard]] static std::optional<platform::Rect> getWindowFrame(platform::WindowServer& windowServer,
                                                                      platform::Screens& screens,
                                                                      platform::WindowID windowID);
    // The same in window-server coordinates.
    [[nodiscard]] static std::optional<platform::Rect> windowBounds(platform::WindowServer& windowServer,
                                                                    platform::WindowID windowID);
    // Whether input is forwarded to the target, as the preference says now.
    [[nodiscard]] static bool forwardEvents(const platform::Defaults& defaults,
                                            const platform::Workspace& workspace);

  private:
    // Showing and hiding
    void installGripHandlers();
    void fadeIn();
    void doInitialShow();
    void stepDown();

    // Following the target
    void startFrameSync();
    void syncFrameWithTarget();
    [[nodiscard]] bool beginResize(const platform::InputEvent& mouseDown);
    void dragResize(const platform::InputEvent& drag);
    void endResize();

    // Capture
    void resolveSCWindow(bool thenStartStream);
    void finishResolving(const platform::ScreenCapture::ShareableContent& content, bool thenStartStream);
    void scheduleResolveRetry(bool thenStartStream);
    [[nodiscard]] bool isParkedByPermission();
    void startStream();
    void stopStream();
    void releaseStream(std::function<void(const platform::CaptureError&)> onError);
    void updateStreamConfiguration();
    [[nodiscard]] platform::StreamConfiguration makeStreamConfig(double pixelScale) const;
    [[nodiscard]] double displayScale() const;
    [[nodiscard]] platform::CaptureStream::SampleHandler makeSampleHandler();
    void showFrame(const platform::Frame& frame);
    void forgetStream(std::uint64_t number);

    // Input
    void sendEvent(const platform::InputEvent& event);
    [[nodiscard]] bool routeToGrips(const platform::InputEvent& event);
    void scrollThroughAccessibility(const platform::InputEvent& event) const;
    void forwardOrSwitch(const platform::InputEvent& event);
    void handleByPanel(const platform::InputEvent& event);
    void mouseDown();
    void activateReal();

    const OverlayEnvironment& environment_;
    const OverlayInputRoutes& routes_;
    const platform::WindowID targetWindowID_;
    const platform::ProcessID targetPID_;

    // The queue must outlive every stream that delivers to it, also one that is still stopping.
    std::shared_ptr<platform::SerialQueue> sampleQueue;
    std::unique_ptr<platform::Panel> panel_;
    std::unique_ptr<OverlayCanvasView> canvas_;

    std::optional<platform::CaptureWindow> scWindow;
    platform::Subscription capturePreparation_;
    bool isResolvingSCWindow = false;
    bool isRetryScheduled_ = false;
    bool screenCapturePermissionDenied = false;
    std::shared_ptr<platform::CaptureStream> stream;
    // Counts the streams, so that a late answer about an old one is told from one about `stream`.
    std::uint64_t streamNumber_ = 0;
    platform::SurfaceRef displayedFrame;
    platform::TimerRef frameSyncTimer;
    platform::Size lastStreamSize;
    bool hasCustomOverlaySize = false;
    bool hasCustomOverlayPosition = false;
    std::optional<platform::Rect> resizeStartFrame;
    std::optional<platform::Point> resizeStartPointer;
    bool moveDragInProgress = false;
    double streamPixelScale = 2.0;
    bool didLogFirstFrame = false;
    std::int64_t framesReceived = 0;
    bool isPinVisible_ = false;
    bool isCapturingInitialImage_ = false;

    Lifetime lifetime_;
};

} // namespace skylet
