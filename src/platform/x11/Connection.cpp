#include "platform/x11/Connection.h"

#include "platform/x11/EventWindow.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

#include <xcb/damage.h>
#include <xcb/render.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <string_view>

namespace skylet::platform::x11 {

struct Connection::Handler {
    xcb_window_t window = XCB_WINDOW_NONE;
    std::uint32_t mask = 0;
    EventHandler onEvent;
    std::function<void()> onBatch;
    bool active = true;
};

// Takes its handler out of the connection's lists when the subscriber lets go of it.
class Connection::Registration : public SubscriptionBase {
  public:
    Registration(std::weak_ptr<Connection*> connection, std::shared_ptr<Handler> handler)
        : connection_(std::move(connection))
        , handler_(std::move(handler)) {}
    ~Registration() override {
        handler_->active = false;
        const auto connection = connection_.lock();
        if (!connection) {
            return;
        }
        Connection& owner = **connection;
        const auto drop = [this](auto& list) {
            std::erase(list, handler_);
        };
        drop(owner.broadcast_);
        drop(owner.afterBatch_);
        if (const auto it = owner.byWindow_.find(handler_->window); it != owner.byWindow_.end()) {
            drop(it->second);
            if (handler_->mask != 0) {
                owner.updateMask(handler_->window);
            }
            if (it->second.empty()) {
                owner.byWindow_.erase(it);
            }
        }
    }

  private:
    std::weak_ptr<Connection*> connection_;
    std::shared_ptr<Handler> handler_;
};

Connection::Connection(RawConnection raw, const xcb_screen_t* screen, int screenNumber)
    : raw_(std::move(raw))
    , screen_(screen)
    , screenNumber_(screenNumber)
    , self_(std::make_shared<Connection*>(this)) {
    helper_ = generateId();
    const std::uint32_t values[] = {1, XCB_EVENT_MASK_PROPERTY_CHANGE};
    send<xcb_create_window>(std::uint8_t{0}, helper_, root(), std::int16_t{-1}, std::int16_t{-1},
                            std::uint16_t{1}, std::uint16_t{1}, std::uint16_t{0},
                            static_cast<std::uint16_t>(XCB_WINDOW_CLASS_INPUT_ONLY), xcb_visualid_t{0},
                            std::uint32_t{XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK},
                            static_cast<const void*>(values));
}

Connection::~Connection() {
    QObject::disconnect(aboutToBlock_);
    self_.reset();
}

void Connection::watchSocket() {
    if (!QCoreApplication::instance()) {
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(raw()), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { dispatch(); });
    // Waiting for a reply moves events from the socket into xcb's queue, where the notifier does not see
    // them. The socket itself is the notifier's business.
    if (auto* dispatcher = QAbstractEventDispatcher::instance()) {
        aboutToBlock_ = QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock,
                                         [this] { handleEvents(xcb_poll_for_queued_event); });
    }
}

XcbOwned<xcb_generic_event_t> Connection::nextEvent(PollForEvent poll) {
    if (!pendingEvents_.empty()) {
        auto event = std::move(pendingEvents_.front());
        pendingEvents_.pop_front();
        return event;
    }
    return XcbOwned<xcb_generic_event_t>(poll(raw()));
}

void Connection::dispatch() {
    handleEvents(xcb_poll_for_event);
}

void Connection::handleEvents(PollForEvent poll) {
    if (!open_ || dispatching_) {
        return;
    }
    dispatching_ = true;
    const std::weak_ptr<Connection*> alive = self_;
    do {
        bool any = false;
        while (auto event = nextEvent(poll)) {
            any = true;
            handle(*event);
            if (alive.expired()) {
                return;
            }
        }
        if (any) {
            const auto handlers = afterBatch_;
            for (const auto& handler : handlers) {
                if (handler->active) {
                    handler->onBatch();
                }
            }
        }
        flush();
        // Writing, too, takes events off the socket.
        if (XcbOwned<xcb_generic_event_t> event{xcb_poll_for_queued_event(raw())}) {
            pendingEvents_.push_back(std::move(event));
        }
    } while (!pendingEvents_.empty());
    dispatching_ = false;
    closeIfBroken();
}

void Connection::closeIfBroken() {
    if (open_ && xcb_connection_has_error(raw())) {
        open_ = false;
        notifier_.reset();
        QObject::disconnect(aboutToBlock_);
        if (closedHandler_) {
            closedHandler_();
        }
    }
}

void Connection::handle(const xcb_generic_event_t& event) {
    if (event.response_type == 0) {
        handleError(as<xcb_generic_error_t>(event));
        return;
    }
    forgetTolerated(event.full_sequence - 1);
    const xcb_window_t window = eventWindow(event, extensions_);
    if (window == XCB_WINDOW_NONE) {
        deliver(std::vector(broadcast_), event);
    } else if (const auto it = byWindow_.find(window); it != byWindow_.end()) {
        deliver(std::vector(it->second), event);
    }
}

void Connection::deliver(const std::vector<std::shared_ptr<Handler>>& handlers,
                         const xcb_generic_event_t& event) {
    for (const auto& handler : handlers) {
        if (handler->active) {
            handler->onEvent(event);
        }
    }
}

// Sequences are compared by distance, so that their 32-bit wrap does no harm.
void Connection::forgetTolerated(std::uint32_t upTo) {
    while (!tolerated_.empty() && static_cast<std::int32_t>(tolerated_.front() - upTo) <= 0) {
        tolerated_.pop_front();
    }
}

void Connection::handleError(const xcb_generic_error_t& error) {
    const XError answer = toXError(error);
    forgetTolerated(answer.sequence - 1);
    const bool tolerant = !tolerated_.empty() && tolerated_.front() == answer.sequence;
    if (!(tolerant && meansGone(answer)) && errorSink_) {
        errorSink_(answer);
    }
}

bool Connection::meansGone(const XError& error) const {
    switch (error.code) {
    case XCB_WINDOW:
    case XCB_PIXMAP:
    case XCB_MATCH:
    case XCB_DRAWABLE:
        return true;
    default:
        return error.code == extensions_.damageError + XCB_DAMAGE_BAD_DAMAGE ||
               error.code == extensions_.renderError + XCB_RENDER_PICTURE ||
               error.code == extensions_.xfixesError + XCB_XFIXES_BAD_REGION;
    }
}

Subscription Connection::subscribe(xcb_window_t window, std::uint32_t mask, EventHandler handler) {
    auto entry = std::make_shared<Handler>();
    entry->window = window;
    entry->mask = mask;
    entry->onEvent = std::move(handler);
    byWindow_[window].push_back(entry);
    if (mask != 0) {
        updateMask(window);
    }
    return std::make_unique<Registration>(self_, std::move(entry));
}

Subscription Connection::subscribeBroadcast(EventHandler handler) {
    auto entry = std::make_shared<Handler>();
    entry->onEvent = std::move(handler);
    broadcast_.push_back(entry);
    return std::make_unique<Registration>(self_, std::move(entry));
}

Subscription Connection::subscribeAfterBatch(std::function<void()> handler) {
    auto entry = std::make_shared<Handler>();
    entry->onBatch = std::move(handler);
    afterBatch_.push_back(entry);
    return std::make_unique<Registration>(self_, std::move(entry));
}

void Connection::updateMask(xcb_window_t window) {
    std::uint32_t mask = 0;
    for (const auto& handler : byWindow_[window]) {
        mask |= handler->active ? handler->mask : 0;
    }
    sendTolerant<xcb_change_window_attributes>(window, std::uint32_t{XCB_CW_EVENT_MASK},
                                               static_cast<const void*>(&mask));
}

xcb_timestamp_t Connection::serverTime() {
    send<xcb_change_property>(std::uint8_t{XCB_PROP_MODE_APPEND}, helper_, atoms_.SKYLET_TIME,
                              xcb_atom_t{XCB_ATOM_CARDINAL}, std::uint8_t{32}, std::uint32_t{0},
                              static_cast<const void*>(nullptr));
    // The property's event precedes this reply.
    ask<xcb_get_input_focus, xcb_get_input_focus_reply>().get();
    xcb_timestamp_t time = XCB_CURRENT_TIME;
    while (XcbOwned<xcb_generic_event_t> event{xcb_poll_for_queued_event(raw())}) {
        if (eventType(*event) == XCB_PROPERTY_NOTIFY &&
            as<xcb_property_notify_event_t>(*event).window == helper_) {
            time = as<xcb_property_notify_event_t>(*event).time;
        }
        pendingEvents_.push_back(std::move(event));
    }
    return time;
}

} // namespace skylet::platform::x11
