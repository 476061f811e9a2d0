// Windows that repaint themselves as told by lines of standard input:
//   bench_target COUNT COLUMNS WIDTH HEIGHT    opens them in a grid and prints their numbers on one line
//   full RATE       repaints every window wholly, RATE times a second; answers "ok"
//   blink RATE      repaints 8x16 pixels of every window
//   still           stops that
//   stamp NUMBER    marks the first window now; answers the monotonic time in nanoseconds
//   count           answers how often every window was repainted so far
//   frames          answers number and time of the repaints since the last question, as N:TIME, in one line
// Every full repaint of the first window is marked with its number. It ends at the end of its input.
#include "../Stamp.h"
#include "harness/LineInput.h"

#include <xcb/xcb.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <poll.h>
#include <sstream>
#include <string>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace skylet::bench {
namespace {

struct Size {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
};

class Target {
  public:
    Target(int count, int columns, Size size);
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;
    ~Target() {
        ::close(timer_);
        xcb_disconnect(connection_);
    }
    int run();

  private:
    enum class Mode { still, full, blink };

    [[nodiscard]] xcb_window_t openWindow(int x, int y);
    void setProperty(xcb_window_t window, const char* name, xcb_atom_t type,
                     const std::vector<std::uint32_t>& values);
    void preparePictures();
    void setMode(Mode mode, double rate);
    void repaint();
    void mark(unsigned number);
    [[nodiscard]] std::string obey(const std::string& line);
    void takeEvents();

    xcb_connection_t* connection_;
    const xcb_screen_t* screen_;
    Size size_;
    std::vector<xcb_window_t> windows_;
    std::array<xcb_pixmap_t, 2> pictures_{};
    xcb_gcontext_t gc_ = XCB_NONE;
    int timer_;
    Mode mode_ = Mode::still;
    unsigned frame_ = 0;
    std::vector<std::pair<unsigned, std::int64_t>> frames_;
};

std::int64_t nanoseconds() {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Target::Target(int count, int columns, Size size)
    : connection_(xcb_connect(nullptr, nullptr))
    , screen_(xcb_setup_roots_iterator(xcb_get_setup(connection_)).data)
    , size_(size)
    , timer_(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK)) {
    gc_ = xcb_generate_id(connection_);
    const std::uint32_t noExposures = 0;
    xcb_create_gc(connection_, gc_, screen_->root, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    preparePictures();
    for (int i = 0; i < count; ++i) {
        windows_.push_back(openWindow(i % columns * size.width, i / columns * size.height));
    }
}

void Target::preparePictures() {
    for (std::uint32_t i = 0; i < pictures_.size(); ++i) {
        pictures_[i] = xcb_generate_id(connection_);
        xcb_create_pixmap(connection_, screen_->root_depth, pictures_[i], screen_->root, size_.width,
                          size_.height);
        constexpr std::uint16_t tile = 16;
        for (std::uint16_t y = 0; y < size_.height; y += tile) {
            for (std::uint16_t x = 0; x < size_.width; x += tile) {
                const std::uint32_t colour = (x * 2654435761U + y * 40503U + i * 7919U) & 0xFFFFFFU;
                xcb_change_gc(connection_, gc_, XCB_GC_FOREGROUND, &colour);
                const xcb_rectangle_t area{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), tile,
                                           tile};
                xcb_poly_fill_rectangle(connection_, pictures_[i], gc_, 1, &area);
            }
        }
    }
}

void Target::setProperty(xcb_window_t window, const char* name, xcb_atom_t type,
                         const std::vector<std::uint32_t>& values) {
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(
        connection_, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr);
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_NONE};
    std::free(reply);
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom, type == XCB_NONE ? atom : type, 32,
                        static_cast<std::uint32_t>(values.size()), values.data());
}

xcb_window_t Target::openWindow(int x, int y) {
    const xcb_window_t window = xcb_generate_id(connection_);
    const std::uint32_t mask = XCB_EVENT_MASK_EXPOSURE;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, screen_->root, static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), size_.width, size_.height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual, XCB_CW_EVENT_MASK, &mask);
    // The place and size are the user's own wish, and no frame around it.
    constexpr std::uint32_t userPosition = 1;
    constexpr std::uint32_t userSize = 2;
    std::vector<std::uint32_t> hints(18);
    hints[0] = userPosition | userSize;
    setProperty(window, "WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS, hints);
    constexpr std::uint32_t decorationsTold = 2;
    setProperty(window, "_MOTIF_WM_HINTS", XCB_NONE, {decorationsTold, 0, 0, 0, 0});
    xcb_map_window(connection_, window);
    return window;
}

void Target::setMode(Mode mode, double rate) {
    mode_ = mode;
    const auto period = mode == Mode::still ? 0 : static_cast<long>(1e9 / rate);
    const itimerspec times{{0, period}, {0, period}};
    ::timerfd_settime(timer_, 0, &times, nullptr);
}

void Target::mark(unsigned number) {
    const std::uint32_t colour = stampColour(number);
    xcb_change_gc(connection_, gc_, XCB_GC_FOREGROUND, &colour);
    const xcb_rectangle_t area{stampPlace, stampPlace, stampSize, stampSize};
    xcb_poly_fill_rectangle(connection_, windows_.front(), gc_, 1, &area);
}

void Target::repaint() {
    ++frame_;
    frames_.emplace_back(frame_, nanoseconds());
    for (const xcb_window_t window : windows_) {
        if (mode_ == Mode::full) {
            xcb_copy_area(connection_, pictures_[frame_ % 2], window, gc_, 0, 0, 0, 0, size_.width,
                          size_.height);
            if (window == windows_.front()) {
                mark(frame_);
            }
        } else {
            const std::uint32_t colour = frame_ % 2 == 0 ? screen_->black_pixel : screen_->white_pixel;
            xcb_change_gc(connection_, gc_, XCB_GC_FOREGROUND, &colour);
            const xcb_rectangle_t cursor{400, 300, 8, 16};
            xcb_poly_fill_rectangle(connection_, window, gc_, 1, &cursor);
        }
    }
    xcb_flush(connection_);
}

std::string Target::obey(const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    double number = 0;
    words >> verb >> number;
    if (verb == "full" || verb == "blink") {
        setMode(verb == "full" ? Mode::full : Mode::blink, number);
        return "ok";
    }
    if (verb == "still") {
        setMode(Mode::still, 0);
        return "ok";
    }
    if (verb == "stamp") {
        const std::int64_t time = nanoseconds();
        mark(static_cast<unsigned>(number));
        xcb_flush(connection_);
        return std::to_string(time);
    }
    if (verb == "count") {
        return std::to_string(frame_);
    }
    if (verb == "frames") {
        std::ostringstream answer;
        for (const auto& [frame, time] : std::exchange(frames_, {})) {
            answer << frame << ':' << time << ' ';
        }
        return answer.str();
    }
    return "unknown command";
}

void Target::takeEvents() {
    while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
        if ((event->response_type & 0x7F) == XCB_EXPOSE) {
            xcb_expose_event_t expose;
            std::memcpy(&expose, event, sizeof expose);
            xcb_copy_area(connection_, pictures_[0], expose.window, gc_, static_cast<std::int16_t>(expose.x),
                          static_cast<std::int16_t>(expose.y), static_cast<std::int16_t>(expose.x),
                          static_cast<std::int16_t>(expose.y), expose.width, expose.height);
        }
        std::free(event);
    }
    xcb_flush(connection_);
}

int Target::run() {
    for (const xcb_window_t window : windows_) {
        std::cout << window << ' ';
    }
    std::cout << std::endl;
    desktop::LineInput input;
    while (xcb_connection_has_error(connection_) == 0) {
        takeEvents();
        std::array<pollfd, 3> ready{pollfd{timer_, POLLIN, 0}, pollfd{STDIN_FILENO, POLLIN, 0},
                                    pollfd{xcb_get_file_descriptor(connection_), POLLIN, 0}};
        if (::poll(ready.data(), ready.size(), -1) < 0) {
            continue;
        }
        std::uint64_t expirations = 0;
        if (ready[0].revents != 0 && ::read(timer_, &expirations, sizeof expirations) > 0) {
            repaint();
        }
        const auto answer = [this](const std::string& line) {
            std::cout << obey(line) << std::endl;
        };
        if (ready[1].revents != 0 && !input.read(answer)) {
            return 0;
        }
    }
    return 1;
}

} // namespace
} // namespace skylet::bench

int main(int argc, char** argv) {
    if (argc != 5) {
        std::cerr << "usage: bench_target COUNT COLUMNS WIDTH HEIGHT" << std::endl;
        return 2;
    }
    const auto number = [argv](int i) {
        return static_cast<int>(std::strtol(argv[i], nullptr, 10));
    };
    const skylet::bench::Size size{static_cast<std::uint16_t>(number(3)),
                                   static_cast<std::uint16_t>(number(4))};
    return skylet::bench::Target(number(1), number(2), size).run();
}
