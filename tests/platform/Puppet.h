// A client of its own process: this same program, started again, shows one window until it is told to end.
#pragma once

#include "platform/ChildProcess.h"

#include <xcb/xcb.h>

#include <string>

namespace skylet::test {

class Puppet {
  public:
    struct Look {
        std::string windowClass = "puppet";
        std::int16_t x = 0;
        std::int16_t y = 0;
        std::uint16_t width = 100;
        std::uint16_t height = 80;
    };
    explicit Puppet(const Look& look);

    [[nodiscard]] pid_t pid() const { return process_.pid(); }
    [[nodiscard]] xcb_window_t window() const { return window_; }
    void end() { process_.end(); }

  private:
    ChildProcess process_;
    xcb_window_t window_;
};

// What the started program does: the arguments behind "--puppet".
[[nodiscard]] int runPuppet(int argc, char** argv);

} // namespace skylet::test
