// A client of its own process: this same program, started again, shows one window until it is told to end.
#pragma once

#include "platform/ChildProcess.h"

#include <xcb/xcb.h>

#include <cstdlib>

namespace skylet::test {

class Puppet : public ChildProcess {
  public:
    explicit Puppet(const std::string& windowClass = "puppet")
        : ChildProcess({"/proc/self/exe", "--puppet", windowClass})
        , window_(static_cast<xcb_window_t>(std::strtoul(readLine().c_str(), nullptr, 10))) {}

    [[nodiscard]] xcb_window_t window() const { return window_; }

  private:
    xcb_window_t window_;
};

} // namespace skylet::test
