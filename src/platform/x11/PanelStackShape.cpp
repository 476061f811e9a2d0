// PanelStack: the cut of panels that are behind.
#include "platform/x11/ClientGeometry.h"
#include "platform/x11/PanelStack.h"
#include "platform/x11/Property.h"

#include <xcb/shape.h>

#include <algorithm>
#include <utility>

namespace skylet::platform::x11 {

namespace {
constexpr std::uint32_t allDesktops = 0xFFFFFFFF; // _NET_WM_DESKTOP of a sticky window
} // namespace

void PanelStack::shapeBehind() {
    std::optional<std::vector<PixelRect>> managed;
    for (const auto& panel : panels_) {
        if (!panel->mapped) {
            continue;
        }
        if (panel->band == PanelBand::front) {
            setShape(*panel, std::nullopt);
            continue;
        }
        if (!managed) {
            managed = managedRects();
        }
        std::vector<PixelRect> bare{panel->rect};
        for (const PixelRect& rect : *managed) {
            bare = subtracted(bare, rect);
        }
        for (PixelRect& rect : bare) {
            rect = rect.translated(-panel->rect.x, -panel->rect.y);
        }
        setShape(*panel, std::move(bare));
    }
}

// The visible part of every managed window. Frames can be larger than what they show (invisible resize
// borders), so the rectangle is built from the client and the extents that the manager and the toolkit tell.
std::vector<PixelRect> PanelStack::managedRects() {
    struct Asked {
        PendingClientGeometry geometry;
        PendingProperty frame;
        PendingProperty desktop;
    };
    const Atoms& atoms = connection_.atoms();
    std::vector<PixelRect> rects;
    std::vector<Asked> asked;
    const auto& children = model_.children();
    for (auto i = static_cast<std::size_t>(guardIndex() + 1); i < children.size(); ++i) {
        const auto& child = children[i];
        if (!child.managed || !child.mapped || child.hidden || child.desktop || isOwn(child.window)) {
            continue;
        }
        if (child.client == XCB_WINDOW_NONE) {
            rects.push_back(child.rect);
            continue;
        }
        asked.push_back(
            {PendingClientGeometry(connection_, child.client),
             askProperty(connection_, child.client, atoms.NET_FRAME_EXTENTS, XCB_ATOM_CARDINAL, 4),
             askProperty(connection_, child.client, atoms.NET_WM_DESKTOP, XCB_ATOM_CARDINAL, 1)});
    }
    for (Asked& one : asked) {
        const auto geometry = one.geometry.read();
        const auto frame = items(one.frame, XCB_ATOM_CARDINAL);
        const auto desktop = firstItem(one.desktop, XCB_ATOM_CARDINAL);
        if (!geometry || (desktop && *desktop != allDesktops && model_.currentDesktop() &&
                          *desktop != *model_.currentDesktop())) {
            continue;
        }
        PixelRect rect = toPixels(geometry->bounds);
        // A manager's frame cannot be larger than the frame window.
        if (frame.size() == 4 &&
            std::all_of(frame.begin(), frame.end(), [](auto side) { return side < 4096; })) {
            rect.x -= static_cast<int>(frame[0]);
            rect.y -= static_cast<int>(frame[2]);
            rect.width += static_cast<int>(frame[0] + frame[1]);
            rect.height += static_cast<int>(frame[2] + frame[3]);
        }
        rects.push_back(rect);
    }
    return rects;
}

void PanelStack::setShape(StackedPanel& panel, std::optional<std::vector<PixelRect>> shape) {
    if (!shape) {
        if (std::exchange(panel.shaped, false)) {
            connection_.send<xcb_shape_mask>(static_cast<xcb_shape_op_t>(XCB_SHAPE_SO_SET),
                                             static_cast<xcb_shape_kind_t>(XCB_SHAPE_SK_BOUNDING),
                                             panel.window, std::int16_t{0}, std::int16_t{0},
                                             xcb_pixmap_t{XCB_NONE});
        }
        return;
    }
    if (panel.shaped && panel.shape == *shape) {
        return;
    }
    panel.shaped = true;
    panel.shape = std::move(*shape);
    std::vector<xcb_rectangle_t> rectangles;
    for (const PixelRect& rect : panel.shape) {
        rectangles.push_back(toXRectangle(rect));
    }
    connection_.send<xcb_shape_rectangles>(
        static_cast<xcb_shape_op_t>(XCB_SHAPE_SO_SET), static_cast<xcb_shape_kind_t>(XCB_SHAPE_SK_BOUNDING),
        static_cast<std::uint8_t>(XCB_CLIP_ORDERING_UNSORTED), panel.window, std::int16_t{0}, std::int16_t{0},
        static_cast<std::uint32_t>(rectangles.size()),
        static_cast<const xcb_rectangle_t*>(rectangles.data()));
}

} // namespace skylet::platform::x11
