// Owning types for what the X server answers.
//
// A request with a reply is sent when its Pending value is made and its reply is fetched at first use, so
// that many requests can be on their way before the first one is waited for. A Pending that is dropped unread
// discards its reply. An X error is an answer like any other: `get` is null and `error` tells which one.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

namespace skylet::platform::x11 {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); } // NOLINT: xcb hands out malloc'ed memory
};

// Anything that xcb allocated: events, errors and replies.
template <class T>
using XcbOwned = std::unique_ptr<T, FreeDeleter>;

// How often the program had to wait for an answer to something that it had not yet asked when it waited last:
// what a sequence of requests costs in latency, however many requests it is made of.
struct RoundTrips {
    std::uint64_t count = 0;
    bool askedSince = false;
};

struct XError {
    std::uint8_t code = 0; // core error code, or the extension's first error plus its own
    std::uint8_t majorOpcode = 0;
    std::uint16_t minorOpcode = 0;
    std::uint32_t resource = 0;
    std::uint32_t sequence = 0; // full 32-bit sequence number of the failed request
};

inline XError toXError(const xcb_generic_error_t& error) {
    return {error.error_code, error.major_code, error.minor_code, error.resource_id, error.full_sequence};
}

template <auto Fetch>
class Pending;

template <class R, class Cookie, R* (*Fetch)(xcb_connection_t*, Cookie, xcb_generic_error_t**)>
class Pending<Fetch> {
  public:
    Pending() = default;
    // `trips`, if given, must outlive the reply.
    Pending(xcb_connection_t* connection, Cookie cookie, RoundTrips* trips = nullptr)
        : connection_(connection)
        , cookie_(cookie)
        , trips_(trips) {
        if (trips_) {
            trips_->askedSince = true;
        }
    }
    Pending(Pending&& other) noexcept { swap(other); }
    Pending& operator=(Pending&& other) noexcept {
        Pending moved(std::move(other));
        swap(moved);
        return *this;
    }
    Pending(const Pending&) = delete;
    Pending& operator=(const Pending&) = delete;
    ~Pending() {
        if (connection_ && !fetched_) {
            xcb_discard_reply(connection_, cookie_.sequence);
        }
    }

    // The reply, waiting for it at the first call; null on an X error or a lost connection.
    const R* get() {
        fetch();
        return reply_.get();
    }
    const R* operator->() { return get(); }
    explicit operator bool() { return get() != nullptr; }

    [[nodiscard]] std::optional<XError> error() {
        fetch();
        return error_;
    }

  private:
    void fetch() {
        if (!connection_ || fetched_) {
            return;
        }
        fetched_ = true;
        if (trips_ && std::exchange(trips_->askedSince, false)) {
            ++trips_->count;
        }
        xcb_generic_error_t* error = nullptr;
        reply_.reset(Fetch(connection_, cookie_, &error));
        if (error) {
            const XcbOwned<xcb_generic_error_t> owned(error);
            error_ = toXError(*owned);
        }
    }
    void swap(Pending& other) noexcept {
        std::swap(connection_, other.connection_);
        std::swap(cookie_, other.cookie_);
        std::swap(trips_, other.trips_);
        std::swap(fetched_, other.fetched_);
        std::swap(reply_, other.reply_);
        std::swap(error_, other.error_);
    }

    xcb_connection_t* connection_ = nullptr;
    Cookie cookie_{};
    RoundTrips* trips_ = nullptr;
    bool fetched_ = false;
    XcbOwned<R> reply_;
    std::optional<XError> error_;
};

} // namespace skylet::platform::x11
