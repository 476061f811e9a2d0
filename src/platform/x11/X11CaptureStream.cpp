#include "platform/x11/X11CaptureStream.h"

#include "platform/x11/EventWindow.h"

#include <xcb/damage.h>

#include <algorithm>
#include <utility>

namespace skylet::platform::x11 {

namespace {
// While a damage is not emptied the server adds every change to its region, which for a busy window and a
// long frame interval costs it more than the frames do (measured: 17 % of a core against 1.6 % at 0.5 frames
// per second).
constexpr double singleChangeInterval = 1.0 / 15.0; // seconds
// A window that repaints at the frame rate does so unevenly. Counted from the last frame, the interval would
// hold back every frame by as much as the latest one was late. So it is counted from when the last frame was
// due, a frame may come this much early,
constexpr double allowedEarliness = 0.008; // seconds
// and what is held back all the same catches up little by little, on this part of the interval.
constexpr double dueInterval = 0.985;
} // namespace

X11CaptureStream::X11CaptureStream(Connection& connection, MainQueue& mainQueue,
                                   std::shared_ptr<TargetWindow> target,
                                   const StreamConfiguration& configuration,
                                   ScreenCapture::DidStopWithError didStop)
    : connection_(connection)
    , mainQueue_(mainQueue)
    , target_(std::move(target))
    , surface_(std::make_shared<MirrorSurface>(target_))
    , configuration_(configuration)
    , didStop_(std::move(didStop)) {}

std::optional<CaptureError> X11CaptureStream::addStreamOutput(OutputType type, SerialQueue& queue,
                                                              SampleHandler handler) {
    if (type != OutputType::screen) {
        return CaptureError{captureDomain, 2, "only screen output is available"};
    }
    queue_ = &queue;
    handler_ = std::move(handler);
    return std::nullopt;
}

void X11CaptureStream::startCapture(Completion done) {
    if (target_->isGone()) {
        answer(std::move(done), CaptureError{captureDomain, captureErrorWindowGone, "the window is gone"});
        return;
    }
    running_ = true;
    events_ = connection_.subscribe(target_->window(), 0,
                                    [this](const xcb_generic_event_t& event) { handle(event); });
    follow_ = target_->follow({[this] { contentChanged(); },
                               [this] {
                                   targetDestroyed();
                               }});
    watchDamage();
    contentChanged();
    answer(std::move(done), std::nullopt);
}

void X11CaptureStream::stopCapture(Completion done) {
    running_ = false;
    changePending_ = false;
    events_.reset();
    follow_.reset();
    damage_.reset();
    answer(std::move(done), std::nullopt);
}

void X11CaptureStream::updateConfiguration(const StreamConfiguration& configuration, Completion done) {
    configuration_ = configuration;
    if (running_) {
        nextFrameTime_ = 0;
        if (damageIsSingle_ != watchesSingleChanges() || !damage_) {
            watchDamage();
            changePending_ = true; // of what the old damage has not told yet
            surface_->addWholeDamage();
        }
        if (changePending_) {
            contentChanged();
        }
    }
    answer(std::move(done), std::nullopt);
}

bool X11CaptureStream::watchesSingleChanges() const {
    return configuration_.minimumFrameInterval.seconds() >= singleChangeInterval;
}

void X11CaptureStream::watchDamage() {
    damage_ = DamageId(connection_, connection_.generateId());
    damageIsSingle_ = watchesSingleChanges();
    connection_.sendTolerant<xcb_damage_create>(
        damage_.get(), target_->window(),
        static_cast<std::uint8_t>(damageIsSingle_ ? XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY
                                                  : XCB_DAMAGE_REPORT_LEVEL_BOUNDING_BOX));
}

void X11CaptureStream::handle(const xcb_generic_event_t& event) {
    if (eventType(event) != connection_.extensions().damageEvent + XCB_DAMAGE_NOTIFY) {
        return;
    }
    const auto& notify = as<xcb_damage_notify_event_t>(event);
    if (!damage_ || notify.damage != damage_.get()) {
        return;
    }
    if (damageIsSingle_) {
        damage_.reset();
        surface_->addWholeDamage();
    } else {
        surface_->addDamage({notify.area.x, notify.area.y, notify.area.width, notify.area.height});
    }
    target_->contentArrived();
    contentChanged();
}

void X11CaptureStream::targetDestroyed() {
    // The server has freed the damage with its window.
    damage_.forget();
    running_ = false;
    changePending_ = false;
    mainQueue_.async([weak = weak_from_this()] {
        if (const auto self = weak.lock(); self && self->didStop_) {
            std::exchange(self->didStop_,
                          nullptr)({captureDomain, captureErrorWindowGone, "the window is gone"});
        }
    });
}

void X11CaptureStream::contentChanged() {
    if (!running_) {
        return;
    }
    changePending_ = true;
    const double now = mainQueue_.now();
    if (now >= nextFrameTime_) {
        deliverFrame();
    } else if (!timerPending_) {
        timerPending_ = true;
        mainQueue_.after(nextFrameTime_ - now, [weak = weak_from_this()] {
            if (const auto self = weak.lock()) {
                self->timerPending_ = false;
                if (self->running_ && self->changePending_) {
                    self->deliverFrame();
                }
            }
        });
    }
}

void X11CaptureStream::deliverFrame() {
    if (!handler_ || !surface_->picture()) {
        return;
    }
    changePending_ = false;
    const double interval = configuration_.minimumFrameInterval.seconds();
    nextFrameTime_ = std::max(nextFrameTime_ + interval * dueInterval,
                              mainQueue_.now() + interval - std::min(allowedEarliness, interval / 2));
    if (!damage_) {
        watchDamage();
    } else if (!damageIsSingle_) {
        connection_.sendTolerant<xcb_damage_subtract>(damage_.get(), xcb_xfixes_region_t{XCB_NONE},
                                                      xcb_xfixes_region_t{XCB_NONE});
    }
    Frame frame{FrameStatus::complete, surface_, configuration_.width, configuration_.height};
    queue_->async([handler = handler_, frame = std::move(frame)] { handler(OutputType::screen, frame); });
}

void X11CaptureStream::answer(Completion done, std::optional<CaptureError> error) {
    if (done) {
        mainQueue_.async([done = std::move(done), error = std::move(error)] { done(error); });
    }
}

} // namespace skylet::platform::x11
