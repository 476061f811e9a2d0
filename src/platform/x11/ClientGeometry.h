// Where a client window is, and which part of it is the window that the user sees.
//
// Toolkits that draw their own shadow tell its width in _GTK_FRAME_EXTENTS; the shadow is no part of the
// window. The same rectangle serves as window bounds, as accessibility frame, as the part that is mirrored
// and as the place that clicks map into, so all of them take it from here.
//
// Coordinates: root coordinates (top-left origin, X pixels). Threads: main thread.
// Failure: nothing when the window is gone.
#pragma once

#include "platform/Types.h"
#include "platform/x11/Property.h"

#include <cstdint>
#include <optional>

namespace skylet::platform::x11 {

// Widths of the client-drawn shadow on each side, in X pixels.
struct ShadowExtents {
    std::uint32_t left = 0;
    std::uint32_t right = 0;
    std::uint32_t top = 0;
    std::uint32_t bottom = 0;
    bool operator==(const ShadowExtents&) const = default;
};

struct ClientGeometry {
    Rect client; // the whole client window, inside its X border
    Rect bounds; // less the shadow
    ShadowExtents shadow;
    std::uint16_t borderWidth = 0; // X border around `client`, 0 under most window managers
};

// The extents in a _GTK_FRAME_EXTENTS property, or none where they would leave nothing of a window of this
// size: any client can write anything there.
[[nodiscard]] ShadowExtents readShadow(PendingProperty& extents, std::uint32_t width, std::uint32_t height);

// Asked at construction; `read` waits for the answer, once.
class PendingClientGeometry {
  public:
    PendingClientGeometry(Connection& connection, xcb_window_t window);

    [[nodiscard]] std::optional<ClientGeometry> read();

  private:
    Pending<xcb_get_geometry_reply> geometry_;
    Pending<xcb_translate_coordinates_reply> position_;
    PendingProperty extents_;
};

} // namespace skylet::platform::x11
