// Panels of the simulated desktop: they remember what was done to them and take a test's input.
#pragma once

#include "platform/Panel.h"

#include <memory>
#include <utility>
#include <vector>

namespace skylet::sim {

using platform::EventType;
using platform::InputEvent;

struct SimDecoration final : platform::Decoration {
    void setFrame(platform::Rect rect) override { frame = rect; }
    void setHidden(bool value) override { hidden = value; }
    void setDrawing(const platform::Drawing& value) override { drawing = value; }

    platform::Rect frame;
    bool hidden = true;
    platform::Drawing drawing;
};

struct SimLayer final : platform::Layer {
    void setContents(platform::SurfaceRef surface) override { contents = std::move(surface); }
    void setFrame(platform::Rect rect) override { frame = rect; }

    platform::SurfaceRef contents;
    platform::Rect frame;
};

struct SimPanel final : platform::Panel {
    enum class Order { out, front, back };

    // Stands in the list of `all` panels while it lives.
    SimPanel(std::vector<SimPanel*>& all, platform::Rect frame,
             const platform::PanelConfiguration& panelConfiguration)
        : configuration(panelConfiguration)
        , level(panelConfiguration.level)
        , all_(all)
        , frame_(frame) {
        all_.push_back(this);
    }
    ~SimPanel() override { std::erase(all_, this); }

    platform::PanelConfiguration configuration;
    Order order = Order::out;
    int level;
    double alpha = 1;
    std::vector<std::pair<double, double>> animations; // end value, seconds
    SimLayer layer;
    std::vector<std::unique_ptr<SimDecoration>> decorations;
    std::optional<double> scale;

    // The user does something at a place of the panel; true to the rules of tracking and of window drags.
    void inject(EventType type, platform::Point location, std::uint64_t modifiers = 0) {
        inject({.type = type,
                .locationInWindow = location,
                .locationOnScreen = {frame_.x + location.x, frame_.y + location.y},
                .modifierFlags = modifiers});
    }
    void inject(InputEvent event) {
        const bool isPointerWay = event.type == EventType::mouseEntered ||
                                  event.type == EventType::mouseExited || event.type == EventType::mouseMoved;
        if (trackingHandler_ && !isPointerWay) {
            if ((eventMask(event.type) & trackingMask_) != 0 && !TrackingHandler(trackingHandler_)(event)) {
                trackingHandler_ = nullptr;
            }
            return;
        }
        if (dragDone_ && event.type == EventType::leftMouseDragged) {
            setFrame({dragOrigin_.x + event.locationOnScreen.x - dragStart_.x,
                      dragOrigin_.y + event.locationOnScreen.y - dragStart_.y, frame_.width, frame_.height},
                     false);
            return;
        }
        if (dragDone_ && event.type == EventType::leftMouseUp) {
            std::exchange(dragDone_, nullptr)();
        }
        eventHandler_(event);
    }
    // No event will come any more.
    void endTracking() {
        if (trackingHandler_) {
            std::exchange(trackingHandler_, nullptr)(std::nullopt);
        }
    }

    platform::Rect frame() const override { return frame_; }
    void setFrame(platform::Rect rect, bool /*display*/) override {
        const bool resized = rect.size() != frame_.size();
        frame_ = rect;
        if (resized && resizeHandler_) {
            resizeHandler_();
        }
    }
    void setResizeHandler(std::function<void()> handler) override { resizeHandler_ = std::move(handler); }
    bool isVisible() const override { return order != Order::out; }
    void setLevel(int value) override { level = value; }
    void orderFrontRegardless() override { order = Order::front; }
    void orderBack() override { order = Order::back; }
    void orderOut() override { order = Order::out; }
    void setAlpha(double value) override { alpha = value; }
    void animateAlpha(double value, double seconds) override {
        alpha = value;
        animations.emplace_back(value, seconds);
    }
    void setCollectionBehavior(std::uint32_t behavior) override {
        configuration.collectionBehavior = behavior;
    }
    platform::Layer& contentLayer() override { return layer; }
    platform::Decoration& addDecoration() override {
        return *decorations.emplace_back(std::make_unique<SimDecoration>());
    }
    std::optional<double> backingScaleFactor() const override { return scale; }
    void setEventHandler(EventHandler handler) override { eventHandler_ = std::move(handler); }
    void trackEvents(std::uint64_t mask, TrackingHandler handler) override {
        trackingMask_ = mask;
        trackingHandler_ = std::move(handler);
    }
    void performWindowDrag(const InputEvent& mouseDown, std::function<void()> done) override {
        dragStart_ = mouseDown.locationOnScreen;
        dragOrigin_ = frame_.origin();
        dragDone_ = std::move(done);
    }

    std::vector<SimPanel*>& all_;
    platform::Rect frame_;
    std::function<void()> resizeHandler_;
    EventHandler eventHandler_;
    std::uint64_t trackingMask_ = 0;
    TrackingHandler trackingHandler_;
    std::function<void()> dragDone_;
    platform::Point dragStart_;
    platform::Point dragOrigin_;
};

struct SimPanelFactory final : platform::PanelFactory {
    std::vector<SimPanel*> panels; // those that live, oldest first

    std::unique_ptr<platform::Panel> makePanel(platform::Rect contentRect,
                                               const platform::PanelConfiguration& configuration) override {
        return std::make_unique<SimPanel>(panels, contentRect, configuration);
    }
};

} // namespace skylet::sim
