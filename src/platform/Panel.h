// A borderless floating panel that never takes the focus.
//
// Coordinates: frames are screen coordinates (bottom-left origin), in points; decorations and events use the
// panel's own coordinates with the origin at its bottom left.
// Threads: main thread only. Failure: none reported; a panel that the window server lost stays a dead object.
#pragma once

#include "platform/Color.h"
#include "platform/InputEvent.h"
#include "platform/ScreenCapture.h"
#include "platform/Types.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace skylet::platform {

// Style mask and backing store raw values of the window system's panels.
constexpr std::uint32_t styleMaskNonactivatingPanel = 128;

namespace CollectionBehavior {
constexpr std::uint32_t canJoinAllSpaces = 1;
constexpr std::uint32_t fullScreenAuxiliary = 256;
} // namespace CollectionBehavior

// contentsGravity of the layer: the picture is stretched over the whole layer.
enum class ContentsGravity { resize };

struct PanelConfiguration {
    std::uint32_t styleMask = styleMaskNonactivatingPanel;
    int level = 0;
    bool isOpaque = true;
    bool hasShadow = false;
    bool isFloatingPanel = false;
    bool hidesOnDeactivate = true;
    std::uint32_t collectionBehavior = 0;
    ContentsGravity contentsGravity = ContentsGravity::resize;
};

// Vector drawing of a decoration, in the decoration's own coordinates (bottom-left origin), in points.
struct FilledRoundedRect {
    Rect rect;
    double cornerRadius = 0;
    Color color;
};

// Separate line segments stroked as one shape, with round caps and joins.
struct StrokedLines {
    struct Segment {
        Point from;
        Point to;
    };
    std::vector<Segment> segments;
    double lineWidth = 1;
    Color color;
};

using Drawing = std::vector<std::variant<FilledRoundedRect, StrokedLines>>;

// A small picture drawn over the panel's content. Hidden until shown.
class Decoration {
  public:
    virtual ~Decoration() = default;
    virtual void setFrame(Rect frame) = 0;
    virtual void setHidden(bool hidden) = 0;
    // Draws again with `drawing`; kept until the next call.
    virtual void setDrawing(const Drawing& drawing) = 0;
};

// The layer that shows a picture stretched over its frame.
class Layer {
  public:
    virtual ~Layer() = default;
    // Null clears the layer. Setting the surface that is shown already shows its present picture.
    virtual void setContents(SurfaceRef surface) = 0;
    virtual void setFrame(Rect frame) = 0;
};

class Panel {
  public:
    // Every mouse and scroll event on the panel, but those that tracking or a window drag took.
    using EventHandler = std::function<void(const InputEvent&)>;
    // Takes one tracked event, or nothing when no event will come any more; false ends the tracking.
    using TrackingHandler = std::function<bool(const std::optional<InputEvent>&)>;

    Panel() = default;
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;
    virtual ~Panel() = default;

    [[nodiscard]] virtual Rect frame() const = 0;
    virtual void setFrame(Rect frame, bool display) = 0;
    // Called after every change of the panel's size, whoever made it.
    virtual void setResizeHandler(std::function<void()> handler) = 0;

    // Ordered in, whether or not it can be seen now (another desktop, a locked screen).
    [[nodiscard]] virtual bool isVisible() const = 0;
    virtual void setLevel(int level) = 0;
    virtual void orderFrontRegardless() = 0;
    virtual void orderBack() = 0;
    virtual void orderOut() = 0;
    virtual void setAlpha(double alpha) = 0;
    // Where nothing can blend windows the end value holds at once.
    virtual void animateAlpha(double alpha, double seconds) = 0;
    virtual void setCollectionBehavior(std::uint32_t behavior) = 0;

    [[nodiscard]] virtual Layer& contentLayer() = 0;
    // Later decorations lie over earlier ones. They go with the panel.
    [[nodiscard]] virtual Decoration& addDecoration() = 0;

    // Pixels per point of the screen that shows the panel, if one does.
    [[nodiscard]] virtual std::optional<double> backingScaleFactor() const = 0;

    virtual void setEventHandler(EventHandler handler) = 0;
    // Gives the panel's next events that match `mask` to `handler` instead of the event handler, until it
    // answers false. Entering, leaving and moving are always delivered as usual; other events are dropped
    // meanwhile.
    virtual void trackEvents(std::uint64_t mask, TrackingHandler handler) = 0;
    // Moves the panel with the pointer until the left button is released, then calls `done`, then delivers
    // the release to the event handler.
    virtual void performWindowDrag(const InputEvent& mouseDown, std::function<void()> done) = 0;
};

class PanelFactory {
  public:
    virtual ~PanelFactory() = default;
    // Made off screen.
    [[nodiscard]] virtual std::unique_ptr<Panel> makePanel(Rect contentRect,
                                                           const PanelConfiguration& configuration) = 0;
};

} // namespace skylet::platform
