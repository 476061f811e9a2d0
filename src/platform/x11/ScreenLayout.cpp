#include "platform/x11/ScreenLayout.h"

#include "platform/x11/EventWindow.h"

#include <xcb/randr.h>

#include <algorithm>
#include <utility>

namespace skylet::platform::x11 {

class ScreenLayout::Observer : public SubscriptionBase {
  public:
    Observer(std::shared_ptr<std::vector<Observer*>> list, std::function<void()> notice)
        : list_(std::move(list))
        , notice_(std::move(notice)) {
        list_->push_back(this);
    }
    ~Observer() override { std::erase(*list_, this); }
    void notify() const { notice_(); }

  private:
    std::shared_ptr<std::vector<Observer*>> list_;
    std::function<void()> notice_;
};

ScreenLayout::ScreenLayout(Connection& connection)
    : connection_(connection)
    , observers_(std::make_shared<std::vector<Observer*>>()) {
    const Extensions& extensions = connection_.extensions();
    if (extensions.randr) {
        connection_.send<xcb_randr_select_input>(connection_.root(),
                                                 std::uint16_t{XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE});
    }
    rootEvents_ = connection_.subscribe(
        connection_.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY, [this](const xcb_generic_event_t& event) {
            const auto type = eventType(event);
            const bool ownConfigure = type == XCB_CONFIGURE_NOTIFY &&
                                      as<xcb_configure_notify_event_t>(event).window == connection_.root();
            const bool screenChange =
                connection_.extensions().randr &&
                type == connection_.extensions().randrEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY;
            if (!ownConfigure && !screenChange) {
                return;
            }
            const auto before = std::pair(monitors_, root_);
            read();
            if (before != std::pair(monitors_, root_)) {
                for (Observer* observer : std::vector(*observers_)) {
                    if (std::find(observers_->begin(), observers_->end(), observer) != observers_->end()) {
                        observer->notify();
                    }
                }
            }
        });
    read();
}

void ScreenLayout::read() {
    auto geometry = connection_.ask<xcb_get_geometry, xcb_get_geometry_reply>(connection_.root());
    Pending<xcb_randr_get_monitors_reply> monitors;
    if (connection_.extensions().randr) {
        monitors = connection_.ask<xcb_randr_get_monitors, xcb_randr_get_monitors_reply>(connection_.root(),
                                                                                         std::uint8_t{1});
    }
    if (geometry) {
        root_ = {0, 0, double(geometry->width), double(geometry->height)};
    }
    monitors_.clear();
    if (const auto* reply = monitors.get()) {
        for (auto it = xcb_randr_get_monitors_monitors_iterator(reply); it.rem != 0;
             xcb_randr_monitor_info_next(&it)) {
            const auto& info = *it.data;
            if (info.width == 0 || info.height == 0) {
                continue;
            }
            const Rect rect{double(info.x), double(info.y), double(info.width), double(info.height)};
            monitors_.insert(info.primary ? monitors_.begin() : monitors_.end(), rect);
        }
    }
    if (monitors_.empty()) {
        monitors_.push_back(root_);
    }
}

Subscription ScreenLayout::observeDidChange(std::function<void()> notice) {
    return std::make_unique<Observer>(observers_, std::move(notice));
}

} // namespace skylet::platform::x11
