#include "platform/x11/TargetWindow.h"

#include "platform/x11/ClientGeometry.h"
#include "platform/x11/EventWindow.h"

#include <xcb/composite.h>

#include <algorithm>
#include <utility>

namespace skylet::platform::x11 {

class TargetWindow::Follower : public SubscriptionBase {
  public:
    Follower(std::shared_ptr<std::vector<Follower*>> list, Events told)
        : events(std::move(told))
        , list_(std::move(list)) {
        list_->push_back(this);
    }
    ~Follower() override { std::erase(*list_, this); }

    const Events events;

  private:
    std::shared_ptr<std::vector<Follower*>> list_;
};

TargetWindow::TargetWindow(Connection& connection, const RenderFormats& formats, xcb_window_t window)
    : connection_(connection)
    , formats_(formats)
    , window_(window)
    , followers_(std::make_shared<std::vector<Follower*>>()) {
    events_ = connection_.subscribe(window_,
                                    XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_VISIBILITY_CHANGE |
                                        XCB_EVENT_MASK_PROPERTY_CHANGE,
                                    [this](const xcb_generic_event_t& event) { handle(event); });
    auto attributes = connection_.ask<xcb_get_window_attributes, xcb_get_window_attributes_reply>(window_);
    auto geometry = connection_.ask<xcb_get_geometry, xcb_get_geometry_reply>(window_);
    if (!attributes || !geometry || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT) {
        gone_ = true;
        return;
    }
    depth_ = geometry->depth;
    format_ = formats_.ofVisual(attributes->visual);
    connection_.sendTolerant<xcb_composite_redirect_window>(window_,
                                                            std::uint8_t{XCB_COMPOSITE_REDIRECT_AUTOMATIC});
    redirected_ = true;
    namePixmap();
}

TargetWindow::~TargetWindow() {
    events_.reset();
    if (redirected_ && !gone_) {
        connection_.sendTolerant<xcb_composite_unredirect_window>(
            window_, std::uint8_t{XCB_COMPOSITE_REDIRECT_AUTOMATIC});
    }
}

Subscription TargetWindow::follow(Events events) {
    return std::make_unique<Follower>(followers_, std::move(events));
}

void TargetWindow::handle(const xcb_generic_event_t& event) {
    switch (eventType(event)) {
    case XCB_DESTROY_NOTIFY:
        if (as<xcb_destroy_notify_event_t>(event).window == window_ && !gone_) {
            gone_ = true;
            for (Follower* follower : std::vector(*followers_)) {
                follower->events.destroyed();
            }
        }
        break;
    case XCB_CONFIGURE_NOTIFY: {
        const auto& configure = as<xcb_configure_notify_event_t>(event);
        const auto& newest = next_ ? next_ : picture_;
        const bool sent = (event.response_type & 0x80) != 0; // by the window manager, about the position
        if (!sent && configure.window == window_ && newest &&
            (newest->width != configure.width + 2 * configure.border_width ||
             newest->height != configure.height + 2 * configure.border_width)) {
            namePixmap();
        }
        break;
    }
    // A frame that is unmapped takes the pixmap with it and no map event reaches the client when it returns;
    // the change of its visibility does.
    case XCB_VISIBILITY_NOTIFY:
    case XCB_MAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
        namePixmap();
        break;
    case XCB_PROPERTY_NOTIFY:
        if (as<xcb_property_notify_event_t>(event).atom == connection_.atoms().GTK_FRAME_EXTENTS) {
            namePixmap();
        }
        break;
    default:
        break;
    }
}

void TargetWindow::namePixmap() {
    if (gone_) {
        return;
    }
    auto named = std::make_shared<NamedPixmap>();
    const std::uint32_t id = connection_.generateId();
    auto extents =
        askProperty(connection_, window_, connection_.atoms().GTK_FRAME_EXTENTS, XCB_ATOM_CARDINAL, 4);
    auto windowGeometry = connection_.ask<xcb_get_geometry, xcb_get_geometry_reply>(window_);
    // Fails while the window is not viewable: the old picture stays until the next chance.
    if (connection_.sendChecked<xcb_composite_name_window_pixmap_checked>(window_, xcb_pixmap_t{id})) {
        return;
    }
    named->pixmap = PixmapId(connection_, id);
    named->depth = depth_;
    named->format = format_;
    auto pixmapGeometry = connection_.ask<xcb_get_geometry, xcb_get_geometry_reply>(id);
    if (!windowGeometry || !pixmapGeometry) {
        return;
    }
    named->width = pixmapGeometry->width;
    named->height = pixmapGeometry->height;
    named->border = windowGeometry->border_width;
    const int border = named->border;
    const PixelRect client{border, border, named->width - 2 * border, named->height - 2 * border};
    if (client.isEmpty()) {
        return;
    }
    const ShadowExtents shadow =
        readShadow(extents, std::uint32_t(client.width), std::uint32_t(client.height));
    named->content = {client.x + int(shadow.left), client.y + int(shadow.top),
                      client.width - int(shadow.left + shadow.right),
                      client.height - int(shadow.top + shadow.bottom)};
    if (named->content.isEmpty() || format_ == 0) {
        return;
    }
    next_ = std::move(named);
    if (!picture_) {
        contentArrived();
    }
}

void TargetWindow::contentArrived() {
    if (next_) {
        replacePicture(std::exchange(next_, nullptr));
    }
}

void TargetWindow::replacePicture(std::shared_ptr<const NamedPixmap> picture) {
    picture_ = std::move(picture);
    for (Follower* follower : std::vector(*followers_)) {
        follower->events.pictureReplaced();
    }
}

} // namespace skylet::platform::x11
