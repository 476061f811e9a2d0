// The least that mirroring can cost: one request for each frame, from the target's pixmap into a window that
// covers it, at most 60 times a second.
//   bench_reference copy|render SCALE WINDOW...
// "copy" copies a part of the scaled size, "render" scales the whole with one Render pass. Prints
// the numbers of its windows on one line and ends at the end of its input.
#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/render.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iostream>
#include <poll.h>
#include <string>
#include <sys/timerfd.h>
#include <unistd.h>
#include <vector>

namespace skylet::bench {
namespace {

constexpr std::int64_t period = 1'000'000'000 / 60;
// Paced as Skylet is: a frame may come this much earlier, the next is counted from when it was due, and one
// that is held back catches up.
constexpr std::int64_t allowedEarliness = 8'000'000;
constexpr std::int64_t duePeriod = period / 1000 * 985;

struct Mirror {
    xcb_window_t window = XCB_NONE;
    xcb_pixmap_t pixmap = XCB_NONE;
    xcb_render_picture_t source = XCB_NONE;
    xcb_render_picture_t destination = XCB_NONE;
    xcb_damage_damage_t damage = XCB_NONE;
    int width = 0;
    int height = 0;
    int left = 0, top = 0, right = 0, bottom = 0; // changed part of the target, empty when right is 0
    std::int64_t next = 0;
};

std::int64_t now() {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * 1'000'000'000 + time.tv_nsec;
}

template <class T>
T as(const xcb_generic_event_t& event) {
    T result;
    std::memcpy(&result, &event, sizeof result);
    return result;
}

class Reference {
  public:
    Reference(bool renders, double scale);
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;
    ~Reference() {
        ::close(timer_);
        xcb_disconnect(connection_);
    }
    void add(xcb_window_t target);
    int run();

  private:
    [[nodiscard]] xcb_render_pictformat_t rootFormat();
    void createPictures(Mirror& mirror);
    void changed(const xcb_damage_notify_event_t& notify);
    void paint(Mirror& mirror);
    void paintDue();

    xcb_connection_t* connection_;
    const xcb_screen_t* screen_;
    bool renders_;
    double scale_;
    xcb_render_pictformat_t format_;
    xcb_gcontext_t gc_;
    std::vector<Mirror> mirrors_;
    int timer_;
};

Reference::Reference(bool renders, double scale)
    : connection_(xcb_connect(nullptr, nullptr))
    , screen_(xcb_setup_roots_iterator(xcb_get_setup(connection_)).data)
    , renders_(renders)
    , scale_(scale)
    , format_(rootFormat())
    , gc_(xcb_generate_id(connection_))
    , timer_(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK)) {
    std::free(xcb_composite_query_version_reply(connection_, xcb_composite_query_version(connection_, 0, 4),
                                                nullptr));
    std::free(
        xcb_damage_query_version_reply(connection_, xcb_damage_query_version(connection_, 1, 1), nullptr));
    const std::uint32_t noExposures = 0;
    xcb_create_gc(connection_, gc_, screen_->root, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
}

xcb_render_pictformat_t Reference::rootFormat() {
    std::free(
        xcb_render_query_version_reply(connection_, xcb_render_query_version(connection_, 0, 11), nullptr));
    auto* reply =
        xcb_render_query_pict_formats_reply(connection_, xcb_render_query_pict_formats(connection_), nullptr);
    xcb_render_pictformat_t format = XCB_NONE;
    for (auto screen = xcb_render_query_pict_formats_screens_iterator(reply); screen.rem > 0;
         xcb_render_pictscreen_next(&screen)) {
        for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem > 0;
             xcb_render_pictdepth_next(&depth)) {
            for (auto visual = xcb_render_pictdepth_visuals_iterator(depth.data); visual.rem > 0;
                 xcb_render_pictvisual_next(&visual)) {
                format = visual.data->visual == screen_->root_visual ? visual.data->format : format;
            }
        }
    }
    std::free(reply);
    return format;
}

void Reference::add(xcb_window_t target) {
    auto* size = xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, target), nullptr);
    auto* place = xcb_translate_coordinates_reply(
        connection_, xcb_translate_coordinates(connection_, target, screen_->root, 0, 0), nullptr);
    if (!size || !place) {
        std::free(size);
        std::free(place);
        return;
    }
    Mirror mirror;
    mirror.width = std::max(1, static_cast<int>(std::lround(size->width * scale_)));
    mirror.height = std::max(1, static_cast<int>(std::lround(size->height * scale_)));
    xcb_composite_redirect_window(connection_, target, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    mirror.pixmap = xcb_generate_id(connection_);
    xcb_composite_name_window_pixmap(connection_, target, mirror.pixmap);
    mirror.window = xcb_generate_id(connection_);
    const std::array<std::uint32_t, 2> values{XCB_BACK_PIXMAP_NONE, 1};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, mirror.window, screen_->root, place->dst_x,
                      place->dst_y, static_cast<std::uint16_t>(mirror.width),
                      static_cast<std::uint16_t>(mirror.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      screen_->root_visual, XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT, values.data());
    createPictures(mirror);
    xcb_map_window(connection_, mirror.window);
    mirror.damage = xcb_generate_id(connection_);
    xcb_damage_create(connection_, mirror.damage, target, XCB_DAMAGE_REPORT_LEVEL_BOUNDING_BOX);
    mirror.right = size->width;
    mirror.bottom = size->height;
    mirrors_.push_back(mirror);
    std::free(size);
    std::free(place);
}

void Reference::createPictures(Mirror& mirror) {
    mirror.source = xcb_generate_id(connection_);
    mirror.destination = xcb_generate_id(connection_);
    const std::uint32_t pad = XCB_RENDER_REPEAT_PAD;
    xcb_render_create_picture(connection_, mirror.source, mirror.pixmap, format_, XCB_RENDER_CP_REPEAT, &pad);
    xcb_render_create_picture(connection_, mirror.destination, mirror.window, format_, 0, nullptr);
    const auto factor = static_cast<xcb_render_fixed_t>(std::lround(65536 / scale_));
    xcb_render_set_picture_transform(connection_, mirror.source, {factor, 0, 0, 0, factor, 0, 0, 0, 65536});
    const std::string filter = "bilinear";
    xcb_render_set_picture_filter(connection_, mirror.source, static_cast<std::uint16_t>(filter.size()),
                                  filter.data(), 0, nullptr);
}

void Reference::changed(const xcb_damage_notify_event_t& notify) {
    const auto mirror = std::find_if(mirrors_.begin(), mirrors_.end(), [&](const Mirror& candidate) {
        return candidate.damage == notify.damage;
    });
    if (mirror == mirrors_.end()) {
        return;
    }
    const int right = notify.area.x + notify.area.width;
    const int bottom = notify.area.y + notify.area.height;
    const bool first = mirror->right == 0;
    mirror->left = first ? notify.area.x : std::min<int>(mirror->left, notify.area.x);
    mirror->top = first ? notify.area.y : std::min<int>(mirror->top, notify.area.y);
    mirror->right = std::max(mirror->right, right);
    mirror->bottom = std::max(mirror->bottom, bottom);
}

void Reference::paint(Mirror& mirror) {
    xcb_damage_subtract(connection_, mirror.damage, XCB_NONE, XCB_NONE);
    const int reach = renders_ ? 2 : 0;
    const int left = std::max(0, static_cast<int>(std::floor(mirror.left * scale_)) - reach);
    const int top = std::max(0, static_cast<int>(std::floor(mirror.top * scale_)) - reach);
    const int right = std::min(mirror.width, static_cast<int>(std::ceil(mirror.right * scale_)) + reach);
    const int bottom = std::min(mirror.height, static_cast<int>(std::ceil(mirror.bottom * scale_)) + reach);
    mirror.right = mirror.bottom = 0;
    if (right <= left || bottom <= top) {
        return;
    }
    const auto x = static_cast<std::int16_t>(left);
    const auto y = static_cast<std::int16_t>(top);
    const auto width = static_cast<std::uint16_t>(right - left);
    const auto height = static_cast<std::uint16_t>(bottom - top);
    if (renders_) {
        xcb_render_composite(connection_, XCB_RENDER_PICT_OP_SRC, mirror.source, XCB_NONE, mirror.destination,
                             x, y, 0, 0, x, y, width, height);
    } else {
        xcb_copy_area(connection_, mirror.pixmap, mirror.window, gc_, x, y, x, y, width, height);
    }
    mirror.next = std::max(mirror.next + duePeriod, now() + period - allowedEarliness);
}

void Reference::paintDue() {
    const std::int64_t time = now();
    std::int64_t next = 0;
    for (Mirror& mirror : mirrors_) {
        if (mirror.right == 0) {
            continue;
        }
        if (time >= mirror.next) {
            paint(mirror);
        } else {
            next = next == 0 ? mirror.next : std::min(next, mirror.next);
        }
    }
    xcb_flush(connection_);
    if (next != 0) {
        const itimerspec times{{0, 0}, {next / 1'000'000'000, next % 1'000'000'000}};
        ::timerfd_settime(timer_, TFD_TIMER_ABSTIME, &times, nullptr);
    }
}

int Reference::run() {
    for (const Mirror& mirror : mirrors_) {
        std::cout << mirror.window << ' ';
    }
    std::cout << std::endl;
    const std::uint8_t damageEvent = xcb_get_extension_data(connection_, &xcb_damage_id)->first_event;
    while (xcb_connection_has_error(connection_) == 0) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
            if ((event->response_type & 0x7F) == damageEvent + XCB_DAMAGE_NOTIFY) {
                changed(as<xcb_damage_notify_event_t>(*event));
            }
            std::free(event);
        }
        paintDue();
        std::array<pollfd, 3> ready{pollfd{timer_, POLLIN, 0}, pollfd{STDIN_FILENO, POLLIN, 0},
                                    pollfd{xcb_get_file_descriptor(connection_), POLLIN, 0}};
        ::poll(ready.data(), ready.size(), -1);
        std::uint64_t expirations = 0;
        if (ready[0].revents != 0 && ::read(timer_, &expirations, sizeof expirations) < 0) {
            continue;
        }
        if (ready[1].revents != 0) {
            return 0;
        }
    }
    return 1;
}

} // namespace
} // namespace skylet::bench

int main(int argc, char** argv) {
    if (argc < 4) {
        std::cerr << "usage: bench_reference copy|render SCALE WINDOW..." << std::endl;
        return 2;
    }
    skylet::bench::Reference reference(std::string(argv[1]) == "render", std::strtod(argv[2], nullptr));
    for (int i = 3; i < argc; ++i) {
        reference.add(static_cast<xcb_window_t>(std::strtoul(argv[i], nullptr, 0)));
    }
    return reference.run();
}
