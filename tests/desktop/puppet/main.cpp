// A client of an X server that does what it is told, one line of standard input at a time, and answers each
// with one line once the server has carried it out:
//
//   window X Y WIDTH HEIGHT [depth=32] [shadow=L,R,T,B] [override] [title=REST OF LINE]
//                                        answers the window's number
//   pattern SEED [WINDOW]                draws the test pattern, in all windows or one
//   property WINDOW NAME TYPE FORMAT REPEAT HEX
//                                        sets a property to the bytes, repeated
//   destroy WINDOW
//   grab KEYCODE MODIFIERS               answers "ok" or "refused"
//   ungrab KEYCODE MODIFIERS
//   grabbing                             from now on is slow, answers pings, and grabs the pointer from every
//                                        other press to its release
//   events                               answers what came since the last question, or "none"
//
// It ends at the end of its input.
#include "PuppetWindow.h"

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

namespace skylet::puppet {
namespace {

// What a busy application takes for an event.
constexpr std::chrono::milliseconds slowness(2);

std::string modifiers(unsigned state) {
    return std::string((state & XCB_MOD_MASK_SHIFT) != 0 ? "+shift" : "") +
           ((state & XCB_MOD_MASK_CONTROL) != 0 ? "+control" : "");
}

class Puppet {
  public:
    Puppet() : connection_(xcb_connect(nullptr, nullptr)) {}
    Puppet(const Puppet&) = delete;
    Puppet& operator=(const Puppet&) = delete;
    ~Puppet() { xcb_disconnect(connection_); }

    int run();

  private:
    std::string obey(const std::string& line);
    std::string openWindow(std::istream& words);
    std::string setProperty(std::istream& words);
    std::string grabKey(std::istream& words, bool grab);
    std::string beginGrabbing();
    void answerPing(const xcb_client_message_event_t& message);
    void grabWhileDown(bool down, const xcb_button_press_event_t& button);
    void take(const xcb_generic_event_t& event);
    void takeEvents();
    void sync();

    xcb_connection_t* connection_;
    std::map<xcb_window_t, PuppetWindow> windows_;
    bool isGrabbing_ = false;
    int presses_ = 0;
    std::string events_;
};

void Puppet::sync() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    takeEvents();
    xcb_flush(connection_);
}

std::string Puppet::openWindow(std::istream& words) {
    WindowOptions options;
    words >> options.x >> options.y >> options.width >> options.height;
    for (std::string word; words >> word;) {
        if (word.starts_with("depth=")) {
            options.depth = std::stoi(word.substr(6));
        } else if (word.starts_with("shadow=")) {
            std::istringstream numbers(word.substr(7));
            char comma = 0;
            for (std::uint32_t& side : options.shadow) {
                numbers >> side >> comma;
            }
        } else if (word == "override") {
            options.overrideRedirect = true;
        } else if (word.starts_with("title=")) {
            std::string rest;
            std::getline(words, rest);
            options.title = word.substr(6) + rest;
        }
    }
    PuppetWindow window(connection_, options);
    const xcb_window_t id = window.id();
    windows_.emplace(id, std::move(window));
    return std::to_string(id);
}

std::string Puppet::setProperty(std::istream& words) {
    xcb_window_t window = XCB_NONE;
    std::array<std::string, 2> names;
    int format = 8;
    std::size_t repeat = 1;
    std::string hex;
    words >> window >> names[0] >> names[1] >> format >> repeat >> hex;
    const xcb_atom_t name = atom(connection_, names[0]);
    const xcb_atom_t type = atom(connection_, names[1]);
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    }
    std::string all;
    for (std::size_t i = 0; i < repeat; ++i) {
        all += bytes;
    }
    xcb_change_property(
        connection_, XCB_PROP_MODE_REPLACE, window, name, type, static_cast<std::uint8_t>(format),
        static_cast<std::uint32_t>(all.size() / static_cast<std::size_t>(format / 8)), all.data());
    return "ok";
}

std::string Puppet::grabKey(std::istream& words, bool grab) {
    int key = 0;
    int modifiers = 0;
    words >> key >> modifiers;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    xcb_generic_error_t* error = xcb_request_check(
        connection_,
        grab ? xcb_grab_key_checked(connection_, 0, root, static_cast<std::uint16_t>(modifiers),
                                    static_cast<xcb_keycode_t>(key), XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)
             : xcb_ungrab_key_checked(connection_, static_cast<xcb_keycode_t>(key), root,
                                      static_cast<std::uint16_t>(modifiers)));
    const bool refused = error != nullptr;
    std::free(error);
    return refused ? "refused" : "ok";
}

std::string Puppet::beginGrabbing() {
    isGrabbing_ = true;
    const xcb_atom_t protocols = atom(connection_, "WM_PROTOCOLS");
    const xcb_atom_t ping = atom(connection_, "_NET_WM_PING");
    for (const auto& [id, window] : windows_) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, id, protocols, XCB_ATOM_ATOM, 32, 1, &ping);
    }
    return "ok";
}

void Puppet::answerPing(const xcb_client_message_event_t& message) {
    xcb_client_message_event_t answer = message;
    answer.window = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
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
    if (verb == "pattern") {
        std::uint32_t seed = 0;
        xcb_window_t only = XCB_NONE;
        words >> seed >> only;
        for (auto& [id, window] : windows_) {
            if (only == XCB_NONE || only == id) {
                window.setPattern(seed);
            }
        }
        return "ok";
    }
    if (verb == "property") {
        return setProperty(words);
    }
    if (verb == "destroy") {
        xcb_window_t id = XCB_NONE;
        words >> id;
        xcb_destroy_window(connection_, id);
        windows_.erase(id);
        return "ok";
    }
    if (verb == "grab" || verb == "ungrab") {
        return grabKey(words, verb == "grab");
    }
    if (verb == "grabbing") {
        return beginGrabbing();
    }
    if (verb == "events") {
        sync();
        return events_.empty() ? "none" : std::exchange(events_, {});
    }
    return "unknown";
}

void Puppet::take(const xcb_generic_event_t& event) {
    const auto note = [this](const std::string& text) {
        events_ += (events_.empty() ? "" : " ") + text;
    };
    const auto* bytes = reinterpret_cast<const char*>(&event);
    switch (event.response_type & 0x7F) {
    case XCB_EXPOSE: {
        const auto* expose = reinterpret_cast<const xcb_expose_event_t*>(bytes);
        if (const auto window = windows_.find(expose->window); window != windows_.end()) {
            window->second.draw();
        }
        break;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto* configure = reinterpret_cast<const xcb_configure_notify_event_t*>(bytes);
        if (const auto window = windows_.find(configure->window); window != windows_.end()) {
            window->second.resized(configure->width, configure->height);
        }
        break;
    }
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE: {
        const auto* button = reinterpret_cast<const xcb_button_press_event_t*>(bytes);
        note(((event.response_type & 0x7F) == XCB_BUTTON_PRESS ? "press" : "release") +
             std::to_string(button->detail) + modifiers(button->state) + "@" +
             std::to_string(button->event_x) + "," + std::to_string(button->event_y));
        if (isGrabbing_ && button->detail == XCB_BUTTON_INDEX_1) {
            grabWhileDown((event.response_type & 0x7F) == XCB_BUTTON_PRESS, *button);
        }
        break;
    }
    case XCB_CLIENT_MESSAGE:
        if (isGrabbing_) {
            answerPing(*reinterpret_cast<const xcb_client_message_event_t*>(bytes));
        }
        break;
    case XCB_MOTION_NOTIFY:
        note("motion");
        break;
    case XCB_KEY_PRESS:
        note("key" + std::to_string(reinterpret_cast<const xcb_key_press_event_t*>(bytes)->detail));
        break;
    case XCB_FOCUS_IN:
        note("focusin");
        break;
    case XCB_FOCUS_OUT:
        note("focusout");
        break;
    default:
        break;
    }
}

void Puppet::takeEvents() {
    while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
        if (isGrabbing_) {
            std::this_thread::sleep_for(slowness);
        }
        take(*event);
        std::free(event);
        xcb_flush(connection_);
    }
}

int Puppet::run() {
    std::string pending;
    while (xcb_connection_has_error(connection_) == 0) {
        takeEvents();
        xcb_flush(connection_);
        std::array<pollfd, 2> ready{
            pollfd{STDIN_FILENO, POLLIN, 0},
            pollfd{xcb_get_file_descriptor(connection_), POLLIN, 0},
        };
        if (::poll(ready.data(), ready.size(), -1) < 0 || ready[0].revents == 0) {
            continue;
        }
        std::array<char, 4096> buffer{};
        const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count <= 0) {
            return 0;
        }
        pending.append(buffer.data(), static_cast<std::size_t>(count));
        for (auto feed = pending.find('\n'); feed != std::string::npos; feed = pending.find('\n')) {
            const std::string answer = obey(pending.substr(0, feed));
            pending.erase(0, feed + 1);
            sync();
            std::cout << answer << std::endl;
        }
    }
    return 1;
}

} // namespace
} // namespace skylet::puppet

int main() {
    return skylet::puppet::Puppet().run();
}
