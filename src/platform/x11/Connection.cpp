#include "platform/x11/Connection.h"

#include "platform/x11/EventWindow.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/render.h>
#include <xcb/res.h>
#include <xcb/shape.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

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

Connection::Opened Connection::open(const std::string& display, Events events) {
    int screenNumber = 0;
    RawConnection raw(xcb_connect(display.empty() ? nullptr : display.c_str(), &screenNumber));
    if (xcb_connection_has_error(raw.get())) {
        return {nullptr, "cannot connect to the X server"};
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(raw.get()));
    for (int i = 0; i < screenNumber && screens.rem > 1; ++i) {
        xcb_screen_next(&screens);
    }
    std::unique_ptr<Connection> connection(new Connection(std::move(raw), screens.data, screenNumber));
    if (std::string missing = connection->queryExtensions(); !missing.empty()) {
        return {nullptr, std::move(missing)};
    }
    const std::string selection = "_NET_WM_CM_S" + std::to_string(screenNumber);
    auto compositor = connection->ask<xcb_intern_atom, xcb_intern_atom_reply>(
        std::uint8_t{0}, static_cast<std::uint16_t>(selection.size()), selection.c_str());
    connection->atoms_ = internAtoms(connection->raw());
    connection->compositorSelection_ = compositor ? compositor->atom : xcb_atom_t{XCB_ATOM_NONE};
    connection->events_ = events;
    if (events == Events::byLoop) {
        connection->watchSocket();
    }
    return {std::move(connection), {}};
}

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

std::string Connection::queryExtensions() {
    const auto need = [this](xcb_extension_t& id) {
        return xcb_get_extension_data(raw(), &id);
    };
    for (xcb_extension_t* id : {&xcb_composite_id, &xcb_damage_id, &xcb_xfixes_id, &xcb_render_id,
                                &xcb_shape_id, &xcb_randr_id, &xcb_res_id, &xcb_test_id, &xcb_input_id}) {
        xcb_prefetch_extension_data(raw(), id);
    }
    const auto* damageData = need(xcb_damage_id);
    const auto* renderData = need(xcb_render_id);
    const auto* xfixesData = need(xcb_xfixes_id);
    const auto* shapeData = need(xcb_shape_id);
    const auto present = [](const xcb_query_extension_reply_t* data) {
        return data && data->present;
    };
    for (const auto& [data, name] : {std::pair{need(xcb_composite_id), "Composite"},
                                     {damageData, "Damage"},
                                     {xfixesData, "XFixes"},
                                     {renderData, "Render"},
                                     {shapeData, "Shape"}}) {
        if (!present(data)) {
            return std::string("the X server lacks the ") + name + " extension, which live mirroring needs";
        }
    }
    extensions_.damageEvent = damageData->first_event;
    extensions_.damageError = damageData->first_error;
    extensions_.renderError = renderData->first_error;
    extensions_.xfixesEvent = xfixesData->first_event;
    extensions_.xfixesError = xfixesData->first_error;
    extensions_.shapeEvent = shapeData->first_event;

    auto composite = ask<xcb_composite_query_version, xcb_composite_query_version_reply>(0U, 4U);
    auto damage = ask<xcb_damage_query_version, xcb_damage_query_version_reply>(1U, 1U);
    auto xfixes = ask<xcb_xfixes_query_version, xcb_xfixes_query_version_reply>(5U, 0U);
    auto render = ask<xcb_render_query_version, xcb_render_query_version_reply>(0U, 11U);
    Pending<xcb_randr_query_version_reply> randr;
    Pending<xcb_res_query_version_reply> resource;
    Pending<xcb_input_xi_query_version_reply> xinput;
    if (const auto* data = need(xcb_randr_id); present(data)) {
        extensions_.randrEvent = data->first_event;
        randr = ask<xcb_randr_query_version, xcb_randr_query_version_reply>(1U, 5U);
    }
    if (present(need(xcb_res_id))) {
        resource = ask<xcb_res_query_version, xcb_res_query_version_reply>(std::uint8_t{1}, std::uint8_t{2});
    }
    extensions_.xtest = present(need(xcb_test_id));
    if (const auto* data = need(xcb_input_id); present(data)) {
        extensions_.xinputOpcode = data->major_opcode;
        xinput = ask<xcb_input_xi_query_version, xcb_input_xi_query_version_reply>(std::uint16_t{2},
                                                                                   std::uint16_t{2});
    }
    const auto atLeast = [](auto& reply, std::uint32_t major, std::uint32_t minor) {
        return reply && (reply->major_version > major ||
                         (reply->major_version == major && reply->minor_version >= minor));
    };
    for (const auto& [ok, name] : {std::pair{atLeast(composite, 0, 4), "Composite 0.4"},
                                   {atLeast(damage, 1, 1), "Damage 1.1"},
                                   {atLeast(xfixes, 5, 0), "XFixes 5"},
                                   {atLeast(render, 0, 11), "Render 0.11"}}) {
        if (!ok) {
            return std::string("the X server is too old: live mirroring needs the extension ") + name;
        }
    }
    extensions_.randr = atLeast(randr, 1, 5);
    extensions_.resource = resource && (resource->server_major > 1 ||
                                        (resource->server_major == 1 && resource->server_minor >= 2));
    extensions_.xinput = atLeast(xinput, 2, 0);
    return {};
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
