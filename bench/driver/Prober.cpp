#include "Prober.h"

#include "../Stamp.h"
#include "Measures.h"

#include <cstdlib>
#include <cstring>
#include <poll.h>

namespace skylet::bench {

namespace {

double milliseconds(std::int64_t time) {
    return static_cast<double>(time) / 1e6;
}

} // namespace

Prober::Prober(const std::string& display)
    : connection_(xcb_connect(display.c_str(), nullptr))
    , root_(xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root) {
    std::free(
        xcb_damage_query_version_reply(connection_, xcb_damage_query_version(connection_, 1, 1), nullptr));
}

Prober::~Prober() {
    xcb_disconnect(connection_);
}

void Prober::aim(Window window, int x, int y) {
    window_ = window;
    x_ = static_cast<std::int16_t>(x);
    y_ = static_cast<std::int16_t>(y);
}

std::optional<std::uint32_t> Prober::read() {
    const auto image = desktop::own(xcb_get_image_reply(
        connection_, xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, x_, y_, 1, 1, ~0U),
        nullptr));
    std::uint32_t pixel = 0;
    if (!image || xcb_get_image_data_length(image.get()) < int{sizeof pixel}) {
        return std::nullopt;
    }
    std::memcpy(&pixel, xcb_get_image_data(image.get()), sizeof pixel);
    return pixel & 0xFFFFFFU;
}

std::optional<Sighting> Prober::waitFor(unsigned number, double seconds,
                                        const std::function<void()>& started) {
    const std::int64_t end = now() + static_cast<std::int64_t>(seconds * 1e9);
    double before = 0;
    for (bool first = true; now() < end; first = false) {
        const std::int64_t sent = now();
        const auto pixel = read();
        const double middle = milliseconds((sent + now()) / 2);
        if (pixel && stampNumber(*pixel) == number % stampRange) {
            return first ? std::nullopt
                         : std::optional(Sighting{number, (before + middle) / 2, middle - before});
        }
        before = middle;
        if (first) {
            started();
        }
    }
    return std::nullopt;
}

std::vector<Sighting> Prober::watch(double seconds) {
    std::vector<Sighting> result;
    const std::int64_t end = now() + static_cast<std::int64_t>(seconds * 1e9);
    double before = 0;
    std::optional<unsigned> shown;
    while (now() < end) {
        const std::int64_t sent = now();
        const auto pixel = read();
        const double middle = milliseconds((sent + now()) / 2);
        if (pixel) {
            const unsigned number = stampNumber(*pixel);
            if (shown && *shown != number) {
                result.push_back({number, (before + middle) / 2, middle - before});
            }
            shown = number;
        }
        before = middle;
    }
    return result;
}

void Prober::countFrames(const std::vector<Window>& windows) {
    for (const Window window : windows) {
        damages_.push_back(xcb_generate_id(connection_));
        xcb_damage_create(connection_, damages_.back(), window, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    }
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
        std::free(event);
    }
}

int Prober::frames() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    const auto* extension = xcb_get_extension_data(connection_, &xcb_damage_id);
    int count = 0;
    while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
        count += (event->response_type & 0x7F) == extension->first_event + XCB_DAMAGE_NOTIFY ? 1 : 0;
        std::free(event);
    }
    for (const xcb_damage_damage_t damage : std::exchange(damages_, {})) {
        xcb_damage_destroy(connection_, damage);
    }
    xcb_flush(connection_);
    return count;
}

void Prober::expectMapping() {
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &mask);
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
        std::free(event);
    }
}

std::optional<std::pair<Window, double>> Prober::nextMapping(double seconds) {
    const std::int64_t end = now() + static_cast<std::int64_t>(seconds * 1e9);
    std::optional<std::pair<Window, double>> result;
    while (!result && now() < end) {
        const auto event = desktop::own(xcb_poll_for_event(connection_));
        if (!event) {
            pollfd ready{xcb_get_file_descriptor(connection_), POLLIN, 0};
            ::poll(&ready, 1, static_cast<int>((end - now()) / 1'000'000) + 1);
            continue;
        }
        xcb_map_notify_event_t map;
        std::memcpy(&map, event.get(), sizeof map);
        if ((map.response_type & 0x7F) == XCB_MAP_NOTIFY && map.override_redirect != 0) {
            result = {map.window, milliseconds(now())};
        }
    }
    const std::uint32_t none = 0;
    xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &none);
    xcb_flush(connection_);
    return result;
}

} // namespace skylet::bench
