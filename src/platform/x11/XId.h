// Owners of server-side resources: made with an id, freed when dropped, moved but never copied.
#pragma once

#include "platform/x11/Connection.h"

#include <xcb/damage.h>
#include <xcb/render.h>
#include <xcb/xcb.h>

#include <utility>

namespace skylet::platform::x11 {

// `Free` is the request that frees the resource. Freeing is tolerant: the server frees a damage with its
// window.
template <auto Free>
class XId {
  public:
    XId() = default;
    // Takes the ownership of `id`, which the caller has created or is about to create.
    XId(Connection& connection, std::uint32_t id) : connection_(&connection), id_(id) {}
    XId(XId&& other) noexcept
        : connection_(std::exchange(other.connection_, nullptr))
        , id_(std::exchange(other.id_, 0)) {}
    XId& operator=(XId&& other) noexcept {
        if (this != &other) {
            reset();
            connection_ = std::exchange(other.connection_, nullptr);
            id_ = std::exchange(other.id_, 0);
        }
        return *this;
    }
    XId(const XId&) = delete;
    XId& operator=(const XId&) = delete;
    ~XId() { reset(); }

    void reset() {
        if (connection_) {
            connection_->sendTolerant<Free>(id_);
        }
        connection_ = nullptr;
        id_ = 0;
    }
    // Gives the ownership up: the server has freed the resource by itself.
    void forget() {
        connection_ = nullptr;
        id_ = 0;
    }
    [[nodiscard]] std::uint32_t get() const { return id_; }
    explicit operator bool() const { return id_ != 0; }

  private:
    Connection* connection_ = nullptr;
    std::uint32_t id_ = 0;
};

using WindowId = XId<xcb_destroy_window>;
using PixmapId = XId<xcb_free_pixmap>;
using GContextId = XId<xcb_free_gc>;
using PictureId = XId<xcb_render_free_picture>;
using DamageId = XId<xcb_damage_destroy>;

} // namespace skylet::platform::x11
