// What concerns the running program as a whole.
//
// Threads: main thread.
#pragma once

#include "platform/Menu.h"

namespace skylet::platform {

class Application {
  public:
    virtual ~Application() = default;

    // Replaces the menu of the program's own windows. A platform without a menu bar shows none and gives
    // those windows its key equivalents.
    virtual void setMainMenu(const MainMenu& menu) = 0;
    // The program runs without a window and has no place of its own in a dock or task switcher.
    virtual void setAccessoryActivationPolicy() = 0;
};

} // namespace skylet::platform
