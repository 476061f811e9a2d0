#include "platform/x11/PanelStack.h"

#include "platform/x11/Property.h"

#include <algorithm>
#include <utility>

namespace skylet::platform::x11 {

namespace {

// Nobody fights for the place directly above the managed windows; should someone, it is not fought back for
// more than this many times a second.
constexpr std::size_t maximumRestacksPerSecond = 50;

// Windows that the server made for itself (the compositor's overlay window) carry no client's bits in their
// id.
bool isMadeByServer(Connection& connection, xcb_window_t window) {
    constexpr std::uint32_t resourceIdBits = 0x1FFFFFFF;
    return (window & resourceIdBits & ~xcb_get_setup(connection.raw())->resource_id_mask) == 0;
}

bool covers(const std::vector<PixelRect>& rects, const PixelRect& area) {
    std::vector<PixelRect> rest{area};
    for (const PixelRect& rect : rects) {
        rest = subtracted(rest, rect);
    }
    return rest.empty();
}

} // namespace

PanelStack::PanelStack(Connection& connection, const ScreenLayout& layout, MainQueue& mainQueue)
    : connection_(connection)
    , layout_(layout)
    , mainQueue_(mainQueue)
    , model_(connection) {
    batches_ = connection_.subscribeAfterBatch([this] {
        if (model_.isStale()) {
            place();
        }
    });
}

PanelStack::~PanelStack() = default;

void PanelStack::add(const std::shared_ptr<StackedPanel>& panel) {
    panels_.push_back(panel);
}

void PanelStack::remove(const StackedPanel& panel) {
    std::erase_if(panels_, [&](const auto& one) { return one.get() == &panel; });
    place();
}

void PanelStack::update() {
    place();
}

void PanelStack::raise(const StackedPanel& panel) {
    const auto it =
        std::find_if(panels_.begin(), panels_.end(), [&](const auto& one) { return one.get() == &panel; });
    if (it != panels_.end() && it + 1 != panels_.end()) {
        std::rotate(it, it + 1, panels_.end());
        place();
    }
}

void PanelStack::setSessionLocked(bool locked) {
    sessionLocked_ = locked;
    place();
}

std::optional<std::uint32_t> PanelStack::currentDesktop() {
    auto desktop = askProperty(connection_, connection_.root(), connection_.atoms().NET_CURRENT_DESKTOP,
                               XCB_ATOM_CARDINAL, 1);
    return firstItem(desktop, XCB_ATOM_CARDINAL);
}

bool PanelStack::isOwn(xcb_window_t window) const {
    return std::any_of(panels_.begin(), panels_.end(),
                       [&](const auto& panel) { return panel->window == window; });
}

void PanelStack::place() {
    if (placing_) {
        return;
    }
    placing_ = true;
    if (std::none_of(panels_.begin(), panels_.end(), [](const auto& panel) { return panel->orderedIn; })) {
        mapAndUnmap();
        model_.stop();
    } else {
        model_.start();
        model_.refresh();
        mapAndUnmap();
        shapeBehind();
        restack();
    }
    connection_.flush();
    placing_ = false;
}

bool PanelStack::isMonitorCovered() const {
    std::vector<PixelRect> lids;
    for (const auto& child : model_.children()) {
        if (child.mapped && child.overrideRedirect && !child.inputOnly && !child.managed &&
            !isOwn(child.window) && !isMadeByServer(connection_, child.window)) {
            lids.push_back(child.rect);
        }
    }
    return !lids.empty() && std::any_of(layout_.monitors().begin(), layout_.monitors().end(),
                                        [&](const Rect& monitor) { return covers(lids, toPixels(monitor)); });
}

void PanelStack::mapAndUnmap() {
    const bool locked = sessionLocked_ || isMonitorCovered();
    const auto desktop = model_.currentDesktop();
    const int base = baseIndex();
    for (const auto& panel : std::vector(panels_)) {
        const bool onDesktop =
            panel->onAllDesktops || !desktop || !panel->homeDesktop || *panel->homeDesktop == *desktop;
        const bool wanted = panel->orderedIn && !locked && onDesktop;
        const auto& children = model_.children();
        const auto self = std::find_if(children.begin(), children.end(),
                                       [&](const auto& child) { return child.window == panel->window; });
        panel->viewable = panel->mapped && self != children.end() && self->mapped;
        if (wanted == panel->mapped) {
            continue;
        }
        panel->mapped = wanted;
        if (!wanted) {
            connection_.send<xcb_unmap_window>(panel->window);
            panel->viewable = false;
        } else {
            panel->willMap();
            // Below the window that it will stand on, until the server confirms the mapping: a compositing
            // manager that paints by an order of its own learns the final place from the restack that
            // follows.
            const xcb_window_t sibling = windowAt(base);
            const std::uint32_t values[] = {sibling, XCB_STACK_MODE_BELOW};
            if (sibling != XCB_WINDOW_NONE) {
                connection_.sendTolerant<xcb_configure_window>(
                    panel->window, std::uint16_t{XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE},
                    static_cast<const void*>(values));
            } else {
                connection_.send<xcb_configure_window>(panel->window,
                                                       std::uint16_t{XCB_CONFIG_WINDOW_STACK_MODE},
                                                       static_cast<const void*>(&values[1]));
            }
            connection_.send<xcb_map_window>(panel->window);
        }
        panel->didChangeMapped(wanted);
    }
}

// Compositing managers keep hidden windows mapped under an input-only window over the whole root.
int PanelStack::guardIndex() const {
    const auto& children = model_.children();
    const PixelRect root = toPixels(layout_.rootRect());
    for (int i = static_cast<int>(children.size()) - 1; i >= 0; --i) {
        const auto& child = children[static_cast<std::size_t>(i)];
        if (child.inputOnly && child.overrideRedirect && child.mapped &&
            intersection(child.rect, root) == root) {
            return i;
        }
    }
    return -1;
}

int PanelStack::baseIndex() const {
    const auto& children = model_.children();
    const int guard = guardIndex();
    for (int i = static_cast<int>(children.size()) - 1; i > guard; --i) {
        const auto& child = children[static_cast<std::size_t>(i)];
        if (!isOwn(child.window) && child.mapped && child.managed && !child.hidden) {
            return i;
        }
    }
    return guard;
}

xcb_window_t PanelStack::windowAt(int index) const {
    return index < 0 ? xcb_window_t{XCB_WINDOW_NONE}
                     : model_.children()[static_cast<std::size_t>(index)].window;
}

bool PanelStack::isOrderRight(const std::vector<StackedPanel*>& group, int base) const {
    const auto& children = model_.children();
    std::size_t next = 0;
    for (std::size_t i = 0; i < children.size(); ++i) {
        const auto& child = children[i];
        const bool expected = next < group.size() && child.window == group[next]->window;
        if (expected) {
            if (static_cast<int>(i) < base) {
                return false;
            }
            ++next;
        } else if (static_cast<int>(i) > base && next < group.size() && child.mapped && !child.inputOnly) {
            return false; // something else lies among or below them
        }
    }
    return next == group.size();
}

void PanelStack::restack() {
    std::vector<StackedPanel*> group;
    for (const PanelBand band : {PanelBand::behind, PanelBand::front}) {
        for (const auto& panel : panels_) {
            if (panel->viewable && panel->band == band) {
                group.push_back(panel.get());
            }
        }
    }
    const int base = baseIndex();
    if (group.empty() || isOrderRight(group, base) || !mayRestack()) {
        return;
    }
    xcb_window_t below = windowAt(base);
    for (const StackedPanel* panel : group) {
        if (below == XCB_WINDOW_NONE) {
            const std::uint32_t bottom = XCB_STACK_MODE_BELOW;
            connection_.send<xcb_configure_window>(panel->window, std::uint16_t{XCB_CONFIG_WINDOW_STACK_MODE},
                                                   static_cast<const void*>(&bottom));
        } else {
            const std::uint32_t values[] = {below, XCB_STACK_MODE_ABOVE};
            connection_.sendTolerant<xcb_configure_window>(
                panel->window, std::uint16_t{XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE},
                static_cast<const void*>(values));
        }
        below = panel->window;
    }
}

bool PanelStack::mayRestack() {
    const double now = mainQueue_.now();
    std::erase_if(restackTimes_, [&](double time) { return now - time > 1.0; });
    if (restackTimes_.size() >= maximumRestacksPerSecond) {
        if (!std::exchange(retryScheduled_, true)) {
            mainQueue_.after(1.0, [this, alive = std::weak_ptr(alive_)] {
                if (!alive.expired()) {
                    retryScheduled_ = false;
                    place();
                }
            });
        }
        return false;
    }
    restackTimes_.push_back(now);
    return true;
}

} // namespace skylet::platform::x11
