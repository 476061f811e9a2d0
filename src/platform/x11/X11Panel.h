// A floating panel: an override-redirect window of our own that never takes the focus.
//
// No window manager decides about it: its geometry, its place in the stack and its mapping are ours alone, so
// that it behaves the same under all of them and no click on it is taken for one of their gestures.
//
// Coordinates: one point is one X pixel. Threads: main thread.
#pragma once

#include "platform/Panel.h"
#include "platform/Queues.h"
#include "platform/x11/PanelCanvas.h"
#include "platform/x11/PanelStack.h"
#include "platform/x11/PointerInput.h"

#include <memory>
#include <optional>
#include <vector>

namespace skylet::platform::x11 {

// What every panel uses.
struct PanelContext {
    Connection& connection;
    const RenderFormats& formats;
    const ScreenLayout& layout;
    const ModifierMap& modifiers;
    PanelStack& stack;
    MainQueue& mainQueue;
};

class X11Panel : public Panel {
  public:
    X11Panel(const PanelContext& context, Rect contentRect, const PanelConfiguration& configuration);
    ~X11Panel() override;

    [[nodiscard]] Rect frame() const override;
    void setFrame(Rect frame, bool display) override;
    void setResizeHandler(std::function<void()> handler) override { resized_ = std::move(handler); }
    [[nodiscard]] bool isVisible() const override { return stacked_->orderedIn; }
    void setLevel(int level) override { level_ = level; }
    void orderFrontRegardless() override;
    void orderBack() override;
    void orderOut() override;
    void setAlpha(double alpha) override;
    void animateAlpha(double alpha, double seconds) override;
    void setCollectionBehavior(std::uint32_t behavior) override;
    [[nodiscard]] Layer& contentLayer() override;
    [[nodiscard]] Decoration& addDecoration() override;
    [[nodiscard]] std::optional<double> backingScaleFactor() const override;
    void setEventHandler(EventHandler handler) override { eventHandler_ = std::move(handler); }
    void trackEvents(std::uint64_t mask, TrackingHandler handler) override;
    void performWindowDrag(const InputEvent& mouseDown, std::function<void()> done) override;

  private:
    class ContentLayer;
    class PanelDecoration;
    struct WindowDrag {
        Rect startFrame;
        Point startPointer;
        std::function<void()> done;
    };

    void createWindow();
    void setProperties();
    void handle(const xcb_generic_event_t& event);
    void expose(const xcb_expose_event_t& event);
    void crossing(const xcb_enter_notify_event_t& event, EventType type);
    void deliver(const InputEvent& event);
    // Motion events of one batch are answered once, with the last.
    void flushMotion();
    void endInteraction();
    void moveResize(const PixelRect& rect);
    void didChangeMapped(bool mapped);
    void showAlpha(double alpha);

    PanelContext context_;
    int level_;
    std::shared_ptr<StackedPanel> stacked_;
    WindowId window_;
    std::unique_ptr<PanelCanvas> canvas_;
    std::unique_ptr<ContentLayer> layer_;
    std::vector<std::unique_ptr<PanelDecoration>> decorations_;
    PointerInput pointer_;
    std::optional<InputEvent> motion_;
    double alpha_ = 1;
    TimerRef fade_;
    std::function<void()> resized_;
    EventHandler eventHandler_;
    std::uint64_t trackingMask_ = 0;
    TrackingHandler tracking_;
    std::optional<WindowDrag> drag_;
    Subscription events_;
    Subscription batches_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

class X11PanelFactory : public PanelFactory {
  public:
    explicit X11PanelFactory(const PanelContext& context) : context_(context) {}
    [[nodiscard]] std::unique_ptr<Panel> makePanel(Rect contentRect,
                                                   const PanelConfiguration& configuration) override;

  private:
    PanelContext context_;
};

} // namespace skylet::platform::x11
