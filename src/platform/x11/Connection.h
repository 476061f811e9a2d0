// The adapter's own connection to the X server, beside Qt's.
//
// Being our own it sees every event uncompressed, and its errors are ours to judge: a request that touches
// foreign resources is sent with `sendTolerant`, because the window behind it can vanish at any moment and an
// error about that is an answer; an error of any other request is a defect and is reported to the error sink.
//
// Threads: main thread only; one that no event loop watches, the one thread that uses it. Failure: `open`
// answers nothing, with the reason; a connection that breaks later calls the closed handler once and does
// nothing from then on.
#pragma once

#include "platform/Subscription.h"
#include "platform/x11/Atoms.h"
#include "platform/x11/Reply.h"

#include <QMetaObject>
#include <QSocketNotifier>

#include <xcb/xcb.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace skylet::platform::x11 {

// First event and error numbers of the extensions in use, and which optional ones the server has.
struct Extensions {
    std::uint8_t damageEvent = 0;
    std::uint8_t damageError = 0;
    std::uint8_t renderError = 0;
    std::uint8_t xfixesEvent = 0;
    std::uint8_t xfixesError = 0;
    std::uint8_t randrEvent = 0;
    std::uint8_t shapeEvent = 0;
    std::uint8_t xinputEvent = 0;
    std::uint8_t xinputOpcode = 0;
    bool resource = false; // X-Resource 1.2: client pids
    bool randr = false;    // RandR 1.5: monitors
    bool xtest = false;
    bool xinput = false; // XInput 2.0
};

class Connection {
  public:
    using EventHandler = std::function<void(const xcb_generic_event_t&)>;
    using ErrorSink = std::function<void(const XError&)>;

    struct Opened {
        std::unique_ptr<Connection> connection; // null on failure
        std::string failure;                    // one English line
    };
    // Whether the event loop calls `dispatch`, or whoever uses the connection.
    enum class Events { byLoop, byHand };
    // Connects to `display` (empty: the environment's) and checks for the extensions that capture needs.
    [[nodiscard]] static Opened open(const std::string& display, Events events = Events::byLoop);

    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    [[nodiscard]] xcb_connection_t* raw() const { return raw_.get(); }
    [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }
    [[nodiscard]] xcb_window_t root() const { return screen_->root; }
    [[nodiscard]] int screenNumber() const { return screenNumber_; }
    // The selection that a compositing manager owns, _NET_WM_CM_S followed by the screen number.
    [[nodiscard]] xcb_atom_t compositorSelection() const { return compositorSelection_; }
    [[nodiscard]] const Atoms& atoms() const { return atoms_; }
    [[nodiscard]] const Extensions& extensions() const { return extensions_; }
    [[nodiscard]] bool isOpen() const { return open_; }
    [[nodiscard]] bool isWatched() const { return events_ == Events::byLoop; }
    // Waits so far, for those who must not add to them.
    [[nodiscard]] std::uint64_t roundTrips() const { return roundTrips_.count; }
    [[nodiscard]] std::uint32_t generateId() const { return xcb_generate_id(raw()); }
    [[nodiscard]] bool isOwnResource(std::uint32_t id) const {
        const auto* setup = xcb_get_setup(raw());
        return (id & ~setup->resource_id_mask) == setup->resource_id_base;
    }

    // Sends a request that has a reply: ask<xcb_get_geometry, xcb_get_geometry_reply>(window).
    template <auto Request, auto Fetch, class... Args>
    [[nodiscard]] Pending<Fetch> ask(Args... args) {
        return Pending<Fetch>(raw(), Request(raw(), args...), &roundTrips_);
    }

    // Sends a request without a reply on resources of our own: an error is reported.
    template <auto Request, class... Args>
    void send(Args... args) {
        Request(raw(), args...);
    }

    // Sends a request without a reply on foreign resources: errors that mean "gone" are expected.
    template <auto Request, class... Args>
    void sendTolerant(Args... args) {
        const xcb_void_cookie_t cookie = Request(raw(), args...);
        tolerated_.push_back(cookie.sequence);
    }

    // Sends a request without a reply and waits for its outcome (one round trip).
    template <auto CheckedRequest, class... Args>
    [[nodiscard]] std::optional<XError> sendChecked(Args... args) {
        const XcbOwned<xcb_generic_error_t> error(xcb_request_check(raw(), CheckedRequest(raw(), args...)));
        return error ? std::optional(toXError(*error)) : std::nullopt;
    }

    // Whether the error means that the resource is gone or in a state where the request makes no sense.
    [[nodiscard]] bool meansGone(const XError& error) const;

    // Core and XFixes/Damage/Shape events whose event window is `window`. `mask` is added to the window's
    // event mask for as long as the subscription lives (0 adds none). Handlers run in the order subscribed.
    [[nodiscard]] Subscription subscribe(xcb_window_t window, std::uint32_t mask, EventHandler handler);
    // Events without an event window: mapping changes, XKB, generic events.
    [[nodiscard]] Subscription subscribeBroadcast(EventHandler handler);
    // Runs after each batch of events, before the connection is flushed.
    [[nodiscard]] Subscription subscribeAfterBatch(std::function<void()> handler);

    void setErrorSink(ErrorSink sink) { errorSink_ = std::move(sink); }
    void setClosedHandler(std::function<void()> handler) { closedHandler_ = std::move(handler); }

    void flush() { xcb_flush(raw()); }
    // Handles every event that has arrived. Called by the event loop; tests without one call it themselves.
    void dispatch();
    // The server's present time, never 0 while connected (one round trip). Events that arrive meanwhile are
    // kept.
    [[nodiscard]] xcb_timestamp_t serverTime();

  private:
    struct Handler;
    struct HandlerList;
    class Registration;
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    using RawConnection = std::unique_ptr<xcb_connection_t, Disconnect>;

    Connection(RawConnection raw, const xcb_screen_t* screen, int screenNumber);
    [[nodiscard]] std::string queryExtensions();
    void watchSocket();
    void handle(const xcb_generic_event_t& event);
    void handleError(const xcb_generic_error_t& error);
    void forgetTolerated(std::uint32_t upTo);
    void deliver(const std::vector<std::shared_ptr<Handler>>& handlers, const xcb_generic_event_t& event);
    void updateMask(xcb_window_t window);
    void closeIfBroken();
    using PollForEvent = xcb_generic_event_t* (*)(xcb_connection_t*);
    void handleEvents(PollForEvent poll);
    [[nodiscard]] XcbOwned<xcb_generic_event_t> nextEvent(PollForEvent poll);

    RawConnection raw_;
    const xcb_screen_t* screen_;
    int screenNumber_;
    xcb_atom_t compositorSelection_ = XCB_ATOM_NONE;
    Atoms atoms_;
    Extensions extensions_;
    Events events_ = Events::byLoop;
    bool open_ = true;
    RoundTrips roundTrips_;
    xcb_window_t helper_ = XCB_WINDOW_NONE; // never mapped; carries the time property
    std::deque<std::uint32_t> tolerated_;   // sequences of tolerant requests not yet known to have succeeded
    std::deque<XcbOwned<xcb_generic_event_t>> pendingEvents_;
    std::unordered_map<xcb_window_t, std::vector<std::shared_ptr<Handler>>> byWindow_;
    std::vector<std::shared_ptr<Handler>> broadcast_;
    std::vector<std::shared_ptr<Handler>> afterBatch_;
    ErrorSink errorSink_;
    std::function<void()> closedHandler_;
    std::unique_ptr<QSocketNotifier> notifier_;
    QMetaObject::Connection aboutToBlock_;
    std::shared_ptr<Connection*> self_; // registrations that outlive the connection find null here
    bool dispatching_ = false;
};

} // namespace skylet::platform::x11
