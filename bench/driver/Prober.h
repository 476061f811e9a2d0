// Watches one pixel of a window for the stamps of the target, and counts the frames that a window shows.
//
// A connection of its own. Threads: main thread.
#pragma once

#include "Stage.h"

#include <xcb/damage.h>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace skylet::bench {

// When a stamp was first seen: the middle between the read that showed it and the one before.
struct Sighting {
    unsigned number = 0;
    double time = 0;     // monotonic ms
    double interval = 0; // ms between those two reads
};

class Prober {
  public:
    explicit Prober(const std::string& display);
    Prober(const Prober&) = delete;
    Prober& operator=(const Prober&) = delete;
    ~Prober();

    // The pixel at this place of the window.
    void aim(Window window, int x, int y);
    [[nodiscard]] std::optional<std::uint32_t> read();
    // Reads without a pause from now on until the stamp is seen; calls `started` after the first read.
    [[nodiscard]] std::optional<Sighting> waitFor(unsigned number, double seconds,
                                                  const std::function<void()>& started);
    // Every change of the stamp during this time.
    [[nodiscard]] std::vector<Sighting> watch(double seconds);

    // From now on the drawings into the windows are counted.
    void countFrames(const std::vector<Window>& windows);
    // How many there were since then. Ends the counting.
    [[nodiscard]] int frames();

    // The next override-redirect window that is mapped, with the time of it in monotonic ms.
    void expectMapping();
    [[nodiscard]] std::optional<std::pair<Window, double>> nextMapping(double seconds);

  private:
    xcb_connection_t* connection_;
    Window root_;
    Window window_ = XCB_NONE;
    std::int16_t x_ = 0;
    std::int16_t y_ = 0;
    std::vector<xcb_damage_damage_t> damages_;
};

} // namespace skylet::bench
