#include "platform/x11/X11Panel.h"

#include "platform/x11/EventWindow.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace skylet::platform::x11 {

namespace {

// Steps of a fade, in seconds; a usual screen shows no more.
constexpr double fadeStep = 1.0 / 60.0;
// WM_CLASS: instance and class, each with its NUL.
constexpr std::string_view windowClassValue("skylet\0Skylet\0", 14);
constexpr std::string_view windowName = "Skylet";

template <class T>
void setProperty(Connection& connection, xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                 std::uint8_t format, const T* data, std::size_t count) {
    connection.send<xcb_change_property>(std::uint8_t{XCB_PROP_MODE_REPLACE}, window, property, type, format,
                                         static_cast<std::uint32_t>(count), static_cast<const void*>(data));
}

} // namespace

class X11Panel::ContentLayer : public Layer {
  public:
    explicit ContentLayer(X11Panel& panel) : panel_(panel) {}
    void setContents(SurfaceRef surface) override {
        panel_.canvas_->setSurface(std::static_pointer_cast<MirrorSurface>(std::move(surface)));
    }
    // The layer always fills the panel here.
    void setFrame(Rect frame) override { static_cast<void>(frame); }

  private:
    X11Panel& panel_;
};

class X11Panel::PanelDecoration : public Decoration {
  public:
    PanelDecoration(X11Panel& panel, PanelCanvas::Item& item) : panel_(panel), item_(item) {}

    void setFrame(Rect frame) override {
        frame_ = frame;
        place();
    }
    void setHidden(bool hidden) override {
        if (hidden != item_.hidden) {
            item_.hidden = hidden;
            panel_.canvas_->redraw(item_.rect);
        }
    }
    void setDrawing(const Drawing& drawing) override {
        const PixelRect size = toPixels(frame_);
        item_.image = DecorationImage(panel_.context_.connection, panel_.context_.formats, drawing,
                                      size.width, size.height);
        if (!item_.hidden) {
            panel_.canvas_->redraw(item_.rect);
        }
    }
    // Where the panel's size puts it, counted from the bottom.
    void place() {
        PixelRect rect = toPixels(frame_);
        rect.y = panel_.stacked_->rect.height - rect.bottom();
        if (rect != item_.rect) {
            const PixelRect before = std::exchange(item_.rect, rect);
            if (!item_.hidden) {
                panel_.canvas_->redraw(before);
                panel_.canvas_->redraw(rect);
            }
        }
    }

  private:
    X11Panel& panel_;
    PanelCanvas::Item& item_;
    Rect frame_;
};

X11Panel::X11Panel(const PanelContext& context, Rect contentRect, const PanelConfiguration& configuration)
    : context_(context)
    , level_(configuration.level)
    , stacked_(std::make_shared<StackedPanel>())
    , pointer_(context.layout, context.modifiers) {
    stacked_->rect = toPixels(context_.layout.flipped(contentRect));
    stacked_->homeDesktop = context_.stack.currentDesktop();
    createWindow();
    canvas_ = std::make_unique<PanelCanvas>(context_.connection, context_.formats, window_.get(),
                                            stacked_->rect.width, stacked_->rect.height);
    layer_ = std::make_unique<ContentLayer>(*this);
    stacked_->willMap = [this] {
        canvas_->prepareFirstPicture();
    };
    stacked_->didChangeMapped = [this](bool mapped) {
        didChangeMapped(mapped);
    };
    setCollectionBehavior(configuration.collectionBehavior);
    context_.stack.add(stacked_);
}

X11Panel::~X11Panel() {
    context_.stack.remove(*stacked_);
}

void X11Panel::createWindow() {
    Connection& connection = context_.connection;
    const auto* setup = &connection.screen();
    window_ = WindowId(connection, connection.generateId());
    stacked_->window = window_.get();
    constexpr std::uint32_t events = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                     XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
                                     XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_EXPOSURE;
    const std::uint32_t values[] = {XCB_BACK_PIXMAP_NONE, XCB_GRAVITY_NORTH_WEST, 1};
    const PixelRect& rect = stacked_->rect;
    connection.send<xcb_create_window>(
        std::uint8_t{XCB_COPY_FROM_PARENT}, window_.get(), connection.root(),
        static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
        static_cast<std::uint16_t>(rect.width), static_cast<std::uint16_t>(rect.height), std::uint16_t{0},
        static_cast<std::uint16_t>(XCB_WINDOW_CLASS_INPUT_OUTPUT), setup->root_visual,
        std::uint32_t{XCB_CW_BACK_PIXMAP | XCB_CW_BIT_GRAVITY | XCB_CW_OVERRIDE_REDIRECT},
        static_cast<const void*>(values));
    setProperties();
    events_ = connection.subscribe(window_.get(), events,
                                   [this](const xcb_generic_event_t& event) { handle(event); });
    batches_ = connection.subscribeAfterBatch([this] { flushMotion(); });
}

void X11Panel::setProperties() {
    Connection& connection = context_.connection;
    const Atoms& atoms = connection.atoms();
    const xcb_window_t window = window_.get();
    setProperty(connection, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, windowClassValue.data(),
                windowClassValue.size());
    setProperty(connection, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, windowName.data(),
                windowName.size());
    setProperty(connection, window, atoms.NET_WM_NAME, atoms.UTF8_STRING, 8, windowName.data(),
                windowName.size());
    const auto pid = static_cast<std::uint32_t>(getpid());
    setProperty(connection, window, atoms.NET_WM_PID, XCB_ATOM_CARDINAL, 32, &pid, 1);
    setProperty(connection, window, atoms.NET_WM_WINDOW_TYPE, XCB_ATOM_ATOM, 32,
                &atoms.NET_WM_WINDOW_TYPE_UTILITY, 1);
    const xcb_atom_t states[] = {atoms.NET_WM_STATE_SKIP_TASKBAR, atoms.NET_WM_STATE_SKIP_PAGER};
    setProperty(connection, window, atoms.NET_WM_STATE, XCB_ATOM_ATOM, 32, states, 2);
}

Rect X11Panel::frame() const {
    return context_.layout.flipped(toPoints(stacked_->rect));
}

void X11Panel::setFrame(Rect frame, bool display) {
    static_cast<void>(display); // what changes is drawn at once in either case
    moveResize(toPixels(context_.layout.flipped(frame)));
}

void X11Panel::moveResize(const PixelRect& rect) {
    const PixelRect before = std::exchange(stacked_->rect, rect);
    if (before == rect) {
        return;
    }
    const std::uint32_t values[] = {static_cast<std::uint32_t>(rect.x), static_cast<std::uint32_t>(rect.y),
                                    static_cast<std::uint32_t>(rect.width),
                                    static_cast<std::uint32_t>(rect.height)};
    context_.connection.send<xcb_configure_window>(window_.get(),
                                                   std::uint16_t{XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y |
                                                                 XCB_CONFIG_WINDOW_WIDTH |
                                                                 XCB_CONFIG_WINDOW_HEIGHT},
                                                   static_cast<const void*>(values));
    if (before.width != rect.width || before.height != rect.height) {
        canvas_->resize(rect.width, rect.height, [this] {
            for (const auto& decoration : decorations_) {
                decoration->place();
            }
            if (resized_) {
                resized_();
            }
        });
    }
    if (stacked_->band == PanelBand::behind) {
        context_.stack.update();
    }
    context_.connection.flush();
}

void X11Panel::orderFrontRegardless() {
    if (stacked_->orderedIn && stacked_->band == PanelBand::front) {
        return; // kept there by the stack
    }
    stacked_->band = PanelBand::front;
    stacked_->orderedIn = true;
    context_.stack.update();
}

void X11Panel::orderBack() {
    canvas_->freeze();
    stacked_->band = PanelBand::behind;
    stacked_->orderedIn = true;
    context_.stack.update();
}

void X11Panel::orderOut() {
    stacked_->orderedIn = false;
    fade_.reset();
    context_.stack.update();
    endInteraction();
}

void X11Panel::didChangeMapped(bool mapped) {
    canvas_->setShown(mapped);
    if (!mapped) {
        endInteraction();
    }
}

void X11Panel::setCollectionBehavior(std::uint32_t behavior) {
    stacked_->onAllDesktops = (behavior & CollectionBehavior::canJoinAllSpaces) != 0;
    context_.stack.update();
}

void X11Panel::setAlpha(double alpha) {
    fade_.reset();
    showAlpha(alpha);
}

void X11Panel::showAlpha(double alpha) {
    alpha_ = std::clamp(alpha, 0.0, 1.0);
    Connection& connection = context_.connection;
    const xcb_atom_t property = connection.atoms().NET_WM_WINDOW_OPACITY;
    if (alpha_ == 1) {
        connection.send<xcb_delete_property>(window_.get(), property);
    } else {
        const auto opacity = static_cast<std::uint32_t>(alpha_ * 0xFFFFFFFF);
        setProperty(connection, window_.get(), property, XCB_ATOM_CARDINAL, 32, &opacity, 1);
    }
    connection.flush();
}

void X11Panel::animateAlpha(double alpha, double seconds) {
    // Without a compositing manager nothing blends windows, and the steps would only be wake-ups.
    auto compositor = context_.connection.ask<xcb_get_selection_owner, xcb_get_selection_owner_reply>(
        context_.connection.compositorSelection());
    if (!compositor || compositor->owner == XCB_WINDOW_NONE) {
        setAlpha(alpha);
        return;
    }
    const double from = alpha_;
    const double start = context_.mainQueue.now();
    fade_ = context_.mainQueue.every(fadeStep, [this, from, alpha, start, seconds] {
        const double progress = std::min(1.0, (context_.mainQueue.now() - start) / seconds);
        showAlpha(from + (alpha - from) * progress);
        if (progress == 1) {
            // Some compositing managers miss what is drawn in the moment of mapping (seen with mutter 43).
            canvas_->redrawAll();
            fade_.reset();
        }
    });
}

Layer& X11Panel::contentLayer() {
    return *layer_;
}

Decoration& X11Panel::addDecoration() {
    return *decorations_.emplace_back(std::make_unique<PanelDecoration>(*this, canvas_->addItem()));
}

std::optional<double> X11Panel::backingScaleFactor() const {
    return 1.0;
}

std::unique_ptr<Panel> X11PanelFactory::makePanel(Rect contentRect, const PanelConfiguration& configuration) {
    return std::make_unique<X11Panel>(context_, contentRect, configuration);
}

} // namespace skylet::platform::x11
