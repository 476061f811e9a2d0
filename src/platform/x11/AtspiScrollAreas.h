// Finds what can be scrolled in a window among the window's AT-SPI elements.
//
// Toolkits differ in where a scroll bar is and what it belongs to: GTK has it in a scroll pane, Qt in a
// helper within the scrolled widget, and web documents have none at all. What is found here looks the same
// for all.
//
// Threads: the bus's. Failure: what does not answer is left out.
#pragma once

#include "platform/Types.h"
#include "platform/x11/AtspiBus.h"

#include <optional>
#include <string>
#include <vector>

namespace skylet::platform::x11 {

// An X window, to be found among the elements of its process.
struct AtspiTarget {
    ProcessID pid = 0;
    std::string title;
    Rect client; // root coordinates
    Rect frame;  // client and what the window manager drew around it
    Rect bounds; // client without its own shadow
};

enum class AtspiDrive {
    value,    // the bar's Value
    actions,  // the bar's steps; writing its Value does harm
    document, // no bar: the document's content is moved to a point
};

struct AtspiScrollArea {
    AtspiRef area;
    AtspiRef bar; // what is driven; the document itself where there is no bar
    AtspiDrive drive = AtspiDrive::value;
    Rect frame; // root coordinates
    // Whether the bar's maximum counts the visible page, which cannot be reached.
    bool includesPage = false;
};

// Outer areas before those in them.
[[nodiscard]] std::vector<AtspiScrollArea> findScrollAreas(AtspiBus& bus, const AtspiTarget& target);

} // namespace skylet::platform::x11
