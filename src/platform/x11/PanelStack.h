// Where our panels stand among the desktop's windows, and when they may be seen at all.
//
// Front: directly above the top-most managed window, below every menu, tooltip, notification and locker
// (foreign override-redirect windows). Behind: the same place, but cut to where no managed window is:
// lowering a window that no manager knows starts an endless fight with those that keep such windows on top.
//
// Nothing is mapped while something covers a whole monitor without being managed (a screen locker), while the
// session says that it is locked, or on another desktop than the panel's.
//
// Coordinates: root coordinates. Threads: main thread. Failure: a restack that loses a race is repeated at
// the next event.
#pragma once

#include "platform/Queues.h"
#include "platform/x11/ScreenLayout.h"
#include "platform/x11/StackModel.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace skylet::platform::x11 {

enum class PanelBand { front, behind };

// What the stack has to know of one panel. The panel writes it and calls PanelStack::update.
struct StackedPanel {
    xcb_window_t window = XCB_WINDOW_NONE;
    PixelRect rect;
    PanelBand band = PanelBand::front;
    bool orderedIn = false;
    bool onAllDesktops = false;
    std::optional<std::uint32_t> homeDesktop; // where it was made; nothing where there are no desktops
    std::function<void()> willMap;
    std::function<void(bool mapped)> didChangeMapped;

    // Kept by the stack.
    bool mapped = false;
    bool viewable = false; // the server has confirmed the mapping
    bool shaped = false;
    std::vector<PixelRect> shape; // relative to the window
};

class PanelStack {
  public:
    PanelStack(Connection& connection, const ScreenLayout& layout, MainQueue& mainQueue);
    ~PanelStack();

    void add(const std::shared_ptr<StackedPanel>& panel);
    void remove(const StackedPanel& panel);
    // Applies what the panel says now.
    void update();
    // Above our other panels.
    void raise(const StackedPanel& panel);
    // The session's own word, beside what the window tree shows.
    void setSessionLocked(bool locked);
    [[nodiscard]] std::optional<std::uint32_t> currentDesktop();

  private:
    void place();
    [[nodiscard]] bool isOwn(xcb_window_t window) const;
    [[nodiscard]] bool isMonitorCovered() const;
    // Index of the top-most window that the panels stand on, or -1.
    [[nodiscard]] int baseIndex() const;
    [[nodiscard]] int guardIndex() const;
    [[nodiscard]] xcb_window_t windowAt(int index) const;
    void mapAndUnmap();
    void restack();
    void shapeBehind();
    [[nodiscard]] bool isOrderRight(const std::vector<StackedPanel*>& group, int base) const;
    [[nodiscard]] std::vector<PixelRect> managedRects();
    void setShape(StackedPanel& panel, std::optional<std::vector<PixelRect>> shape);
    [[nodiscard]] bool mayRestack();

    Connection& connection_;
    const ScreenLayout& layout_;
    MainQueue& mainQueue_;
    StackModel model_;
    std::vector<std::shared_ptr<StackedPanel>> panels_; // back to front among themselves
    bool sessionLocked_ = false;
    bool placing_ = false;
    std::vector<double> restackTimes_;
    bool retryScheduled_ = false;
    Subscription batches_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

} // namespace skylet::platform::x11
