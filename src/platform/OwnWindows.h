// What the window system can do with the ordinary windows of this program.
//
// Threads: main thread. Failure: none reported; a window that is gone is ignored.
#pragma once

#include <cstdint>

namespace skylet::platform {

// The window system's name for a window.
using NativeWindow = std::uint64_t;

class OwnWindows {
  public:
    virtual ~OwnWindows() = default;
    // Brings the window to the desktop that the user is on, in front of the others and with the focus, as on
    // the user's own wish. A window that is still being put on screen follows as soon as it is there.
    virtual void bringToActiveSpace(NativeWindow window) = 0;
};

} // namespace skylet::platform
