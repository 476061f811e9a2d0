// Looks every 2 ms whether the user is left alone: the active window, the keyboard's focus, the order of the
// windows and the pointer's place must not change.
//
// Threads: a thread and a connection of its own; its functions are for the thread that made it.
#pragma once

#include "XSession.h"

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace skylet::desktop {

class QuietWatch {
  public:
    explicit QuietWatch(const std::string& display);
    QuietWatch(const QuietWatch&) = delete;
    QuietWatch& operator=(const QuietWatch&) = delete;
    ~QuietWatch();

    // From now on the pointer may be only here.
    void expectPointer(std::pair<int, int> place);
    // The pointer is on its way.
    void ignorePointer() { expectPointer({-1, -1}); }
    // What was seen that differs from the beginning, each once; empty is good.
    [[nodiscard]] std::vector<std::string> disturbances() const;

  private:
    struct State {
        Window active = XCB_NONE;
        Window focus = XCB_NONE;
        std::vector<Window> order;
        bool operator==(const State&) const = default;
    };
    [[nodiscard]] static State look(const XSession& x);
    void watch();
    void note(const std::string& text);

    XSession x_;
    State start_;
    mutable std::mutex mutex_;
    std::condition_variable end_;
    bool ends_ = false;
    std::pair<int, int> pointer_{-1, -1}; // a negative place is any
    std::vector<std::string> notes_;
    std::thread thread_;
};

} // namespace skylet::desktop
