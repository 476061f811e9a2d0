// One window's capture stream: Damage events in, frames out, at most one per frame interval. The interval
// holds on average, within 2 %; a single frame may come up to 8 ms early.
//
// A frame carries no pixels: its surface stays in the X server, and the panel that shows it reads it there.
// The last change is always delivered: a change inside the interval is delivered when the interval has
// passed, and a damage is emptied before its frame goes out, so that whatever comes later is reported again.
//
// Threads: main thread; frames go out on the queue given with the output.
#pragma once

#include "platform/ScreenCapture.h"
#include "platform/x11/MirrorSurface.h"

#include <memory>
#include <optional>

namespace skylet::platform::x11 {

// The error domain of this adapter.
constexpr const char* captureDomain = "X11";
constexpr int captureErrorWindowGone = 1;

class X11ContentFilter : public ContentFilter {
  public:
    explicit X11ContentFilter(std::shared_ptr<TargetWindow> target) : target_(std::move(target)) {}
    // One point is one X pixel.
    [[nodiscard]] double pointPixelScale() const override { return 1.0; }
    [[nodiscard]] const std::shared_ptr<TargetWindow>& target() const { return target_; }

  private:
    std::shared_ptr<TargetWindow> target_;
};

class X11CaptureStream : public CaptureStream, public std::enable_shared_from_this<X11CaptureStream> {
  public:
    X11CaptureStream(Connection& connection, MainQueue& mainQueue, std::shared_ptr<TargetWindow> target,
                     const StreamConfiguration& configuration, ScreenCapture::DidStopWithError didStop);

    [[nodiscard]] std::optional<CaptureError> addStreamOutput(OutputType type, SerialQueue& queue,
                                                              SampleHandler handler) override;
    void startCapture(Completion done) override;
    void stopCapture(Completion done) override;
    void updateConfiguration(const StreamConfiguration& configuration, Completion done) override;

  private:
    void handle(const xcb_generic_event_t& event);
    void targetDestroyed();
    // A change is known: delivers it now or when the frame interval allows.
    void contentChanged();
    void deliverFrame();
    void watchDamage();
    void answer(Completion done, std::optional<CaptureError> error);
    // Below this rate the damage is taken away after its first event and made anew for the next frame, see
    // .cpp.
    [[nodiscard]] bool watchesSingleChanges() const;

    Connection& connection_;
    MainQueue& mainQueue_;
    std::shared_ptr<TargetWindow> target_;
    std::shared_ptr<MirrorSurface> surface_;
    StreamConfiguration configuration_;
    ScreenCapture::DidStopWithError didStop_;
    SerialQueue* queue_ = nullptr;
    SampleHandler handler_;
    bool running_ = false;
    bool changePending_ = false;
    bool timerPending_ = false;
    double nextFrameTime_ = 0; // main queue time
    DamageId damage_;
    bool damageIsSingle_ = false; // made to report one change only
    Subscription events_;
    Subscription follow_;
};

} // namespace skylet::platform::x11
