// A client of an X server that does what it is told, one line of standard input at a time, and answers each
// with one line once the server has carried it out:
//
//   window X Y WIDTH HEIGHT [depth=32] [shadow=L,R,T,B] [title=REST OF LINE]
//                                        answers the window's number
//   pattern SEED [WINDOW]                draws the test pattern, in all windows or one
//   property WINDOW NAME TYPE FORMAT REPEAT HEX
//                                        sets a property to the bytes, repeated
//   destroy WINDOW
//   grabbing                             from now on is slow, answers pings, and grabs the pointer from every
//                                        other press to its release
//   events                               answers what came since the last question, or "none"
//   focused                              answers "yes" or "no": what it was last told of its focus
//
// It ends at the end of its input.
#include "harness/LineInput.h"
#include "harness/XSession.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <map>
#include <poll.h>
#include <sstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace skylet::desktop {
namespace {

constexpr std::uint32_t opaque = 0xFF000000U;
// What a busy application takes for an event.
constexpr std::chrono::milliseconds slowness(2);

std::string modifiers(unsigned state) {
    return std::string((state & XCB_MOD_MASK_SHIFT) != 0 ? "+shift" : "") +
           ((state & XCB_MOD_MASK_CONTROL) != 0 ? "+control" : "");
}

struct PuppetWindow {
    int width = 0;
    int height = 0;
    std::array<std::uint32_t, 4> shadow{}; // left, right, top, bottom
    xcb_gcontext_t context = XCB_NONE;
    std::uint32_t seed = 0;
};

class Puppet {
  public:
    int run();

  private:
    std::string obey(const std::string& line);
    std::string openWindow(std::istream& words);
    void setProperty(Window window, const char* name, const char* type, int format, const void* data,
                     std::size_t count);
    void setProperty(std::istream& words);
    void draw(Window id);
    void beginGrabbing();
    void answerPing(const xcb_client_message_event_t& message);
    void grabWhileDown(bool down, const xcb_button_press_event_t& button);
    void take(const xcb_generic_event_t& event);
    void takeEvents();
    void sync();

    XSession x_{""};
    xcb_connection_t* connection_ = x_.connection();
    std::map<Window, PuppetWindow> windows_;
    bool isGrabbing_ = false;
    bool isFocused_ = false;
    int presses_ = 0;
    std::string events_;
};

void Puppet::sync() {
    own(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    takeEvents();
    xcb_flush(connection_);
}

xcb_visualid_t visualOfDepth(const xcb_screen_t* screen, int wanted) {
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem > 0; xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual)) {
            if (depth.data->depth == wanted && visual.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR) {
                return visual.data->visual_id;
            }
        }
    }
    return screen->root_visual;
}

void Puppet::setProperty(Window window, const char* name, const char* type, int format, const void* data,
                         std::size_t count) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, x_.atom(name), x_.atom(type),
                        static_cast<std::uint8_t>(format), static_cast<std::uint32_t>(count), data);
}

std::string Puppet::openWindow(std::istream& words) {
    PuppetWindow window;
    int x = 0;
    int y = 0;
    int depth = 24;
    std::string title;
    words >> x >> y >> window.width >> window.height;
    for (std::string word; words >> word;) {
        if (word.starts_with("depth=")) {
            depth = std::stoi(word.substr(6));
        } else if (word.starts_with("shadow=")) {
            std::istringstream numbers(word.substr(7));
            char comma = 0;
            for (std::uint32_t& side : window.shadow) {
                numbers >> side >> comma;
            }
        } else if (word.starts_with("title=")) {
            std::getline(words, title);
            title.insert(0, word.substr(6));
        }
    }
    const Window id = xcb_generate_id(connection_);
    window.context = xcb_generate_id(connection_);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    const xcb_visualid_t visual = visualOfDepth(screen, depth);
    const xcb_colormap_t colours = xcb_generate_id(connection_);
    xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, colours, screen->root, visual);
    const std::uint32_t values[] = {0, 0,
                                    XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                        XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                        XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_BUTTON_MOTION,
                                    colours};
    xcb_create_window(connection_, static_cast<std::uint8_t>(depth), id, screen->root,
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                      static_cast<std::uint16_t>(window.width), static_cast<std::uint16_t>(window.height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, values);
    xcb_create_gc(connection_, window.context, id, 0, nullptr);

    const std::string name("puppet\0Puppet\0", 14);
    const auto pid = static_cast<std::uint32_t>(::getpid());
    setProperty(id, "WM_NAME", "STRING", 8, title.data(), title.size());
    setProperty(id, "_NET_WM_NAME", "UTF8_STRING", 8, title.data(), title.size());
    setProperty(id, "WM_CLASS", "STRING", 8, name.data(), name.size());
    setProperty(id, "_NET_WM_PID", "CARDINAL", 32, &pid, 1);
    if (window.shadow != std::array<std::uint32_t, 4>{}) {
        setProperty(id, "_GTK_FRAME_EXTENTS", "CARDINAL", 32, window.shadow.data(), 4);
        const std::uint32_t undecorated[] = {2, 0, 0, 0, 0};
        setProperty(id, "_MOTIF_WM_HINTS", "_MOTIF_WM_HINTS", 32, undecorated, 5);
    }
    // A place that the user chose, so that window managers keep it.
    const std::uint32_t sizeHints[18] = {1U, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)};
    setProperty(id, "WM_NORMAL_HINTS", "WM_SIZE_HINTS", 32, sizeHints, 18);
    xcb_map_window(connection_, id);
    windows_[id] = window;
    return std::to_string(id);
}

void Puppet::draw(Window id) {
    const auto found = windows_.find(id);
    if (found == windows_.end()) {
        return;
    }
    const PuppetWindow& window = found->second;
    const int left = static_cast<int>(window.shadow[0]);
    const int top = static_cast<int>(window.shadow[2]);
    const int right = window.width - static_cast<int>(window.shadow[1]);
    const int bottom = window.height - static_cast<int>(window.shadow[3]);
    for (int y = top; y < bottom; y += patternTile) {
        for (int x = left; x < right; x += patternTile) {
            const std::uint32_t colour =
                opaque | patternColour(window.seed, (x - left) / patternTile, (y - top) / patternTile);
            xcb_change_gc(connection_, window.context, XCB_GC_FOREGROUND, &colour);
            const xcb_rectangle_t tile{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                                       static_cast<std::uint16_t>(std::min(right - x, patternTile)),
                                       static_cast<std::uint16_t>(std::min(bottom - y, patternTile))};
            xcb_poly_fill_rectangle(connection_, id, window.context, 1, &tile);
        }
    }
}

void Puppet::setProperty(std::istream& words) {
    Window window = XCB_NONE;
    std::string name;
    std::string type;
    int format = 8;
    std::size_t repeat = 1;
    std::string hex;
    words >> window >> name >> type >> format >> repeat >> hex;
    std::string bytes;
    for (std::size_t i = 0; i < repeat * hex.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(hex.substr(i % hex.size(), 2), nullptr, 16));
    }
    setProperty(window, name.c_str(), type.c_str(), format, bytes.data(),
                bytes.size() / static_cast<std::size_t>(format / 8));
}

void Puppet::beginGrabbing() {
    isGrabbing_ = true;
    const xcb_atom_t ping = x_.atom("_NET_WM_PING");
    for (const auto& [id, window] : windows_) {
        setProperty(id, "WM_PROTOCOLS", "ATOM", 32, &ping, 1);
    }
}

void Puppet::answerPing(const xcb_client_message_event_t& message) {
    xcb_client_message_event_t answer = message;
    answer.window = x_.root();
    xcb_send_event(connection_, 0, answer.window,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&answer));
}

void Puppet::grabWhileDown(bool down, const xcb_button_press_event_t& button) {
    if (down && (presses_++ % 2 != 0)) {
        return;
    }
    if (down) {
        xcb_grab_pointer_unchecked(
            connection_, 1, button.event, XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE,
            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    } else {
        xcb_ungrab_pointer(connection_, XCB_CURRENT_TIME);
    }
}

std::string Puppet::obey(const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    words >> verb;
    if (verb == "window") {
        return openWindow(words);
    }
    if (verb == "events") {
        sync();
        return events_.empty() ? "none" : std::exchange(events_, {});
    }
    if (verb == "focused") {
        sync();
        return isFocused_ ? "yes" : "no";
    }
    Window only = XCB_NONE;
    if (verb == "pattern") {
        std::uint32_t seed = 0;
        words >> seed >> only;
        for (auto& [id, window] : windows_) {
            if (only == XCB_NONE || only == id) {
                window.seed = seed;
                draw(id);
            }
        }
    } else if (verb == "property") {
        setProperty(words);
    } else if (verb == "destroy") {
        words >> only;
        xcb_destroy_window(connection_, only);
        windows_.erase(only);
    } else if (verb == "grabbing") {
        beginGrabbing();
    } else {
        return "unknown";
    }
    return "ok";
}

template <class Event>
const Event& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Event&>(event);
}

void Puppet::take(const xcb_generic_event_t& event) {
    const auto note = [this](const std::string& text) {
        events_ += (events_.empty() ? "" : " ") + text;
    };
    const bool isPress = (event.response_type & 0x7F) == XCB_BUTTON_PRESS;
    switch (event.response_type & 0x7F) {
    case XCB_EXPOSE:
        draw(as<xcb_expose_event_t>(event).window);
        break;
    case XCB_CONFIGURE_NOTIFY: {
        const auto& configure = as<xcb_configure_notify_event_t>(event);
        if (const auto window = windows_.find(configure.window); window != windows_.end()) {
            window->second.width = configure.width;
            window->second.height = configure.height;
        }
        break;
    }
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE: {
        const auto& button = as<xcb_button_press_event_t>(event);
        note((isPress ? "press" : "release") + std::to_string(button.detail) + modifiers(button.state) + "@" +
             std::to_string(button.event_x) + "," + std::to_string(button.event_y));
        if (isGrabbing_ && button.detail == XCB_BUTTON_INDEX_1) {
            grabWhileDown(isPress, button);
        }
        break;
    }
    case XCB_CLIENT_MESSAGE:
        if (isGrabbing_) {
            answerPing(as<xcb_client_message_event_t>(event));
        }
        break;
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT:
        isFocused_ = (event.response_type & 0x7F) == XCB_FOCUS_IN;
        break;
    case XCB_MOTION_NOTIFY:
        note("motion");
        break;
    case XCB_KEY_PRESS:
        note("key" + std::to_string(as<xcb_key_press_event_t>(event).detail));
        break;
    default:
        break;
    }
}

void Puppet::takeEvents() {
    while (const auto event = own(xcb_poll_for_event(connection_))) {
        if (isGrabbing_) {
            std::this_thread::sleep_for(slowness);
        }
        take(*event);
        xcb_flush(connection_);
    }
}

int Puppet::run() {
    LineInput input;
    while (x_.isConnected()) {
        takeEvents();
        xcb_flush(connection_);
        std::array<pollfd, 2> ready{
            pollfd{STDIN_FILENO, POLLIN, 0},
            pollfd{xcb_get_file_descriptor(connection_), POLLIN, 0},
        };
        if (::poll(ready.data(), ready.size(), -1) < 0 || ready[0].revents == 0) {
            continue;
        }
        const auto answer = [this](const std::string& line) {
            const std::string text = obey(line);
            sync();
            std::cout << text << std::endl;
        };
        if (!input.read(answer)) {
            return 0;
        }
    }
    return 1;
}

} // namespace
} // namespace skylet::desktop

int main() {
    return skylet::desktop::Puppet().run();
}
