// One window of the puppet: a known pattern of tiles, with or without a shadow that it draws itself.
//
// Units: X pixels. Threads: one.
#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <string>

namespace skylet::puppet {

struct WindowOptions {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    int depth = 24;
    bool overrideRedirect = false;
    std::array<std::uint32_t, 4> shadow{}; // left, right, top, bottom
    std::string title;
};

[[nodiscard]] xcb_atom_t atom(xcb_connection_t* connection, const std::string& name);

class PuppetWindow {
  public:
    PuppetWindow(xcb_connection_t* connection, const WindowOptions& options);

    [[nodiscard]] xcb_window_t id() const { return id_; }
    void setPattern(std::uint32_t seed);
    // After the server told the new size.
    void resized(int width, int height);
    void draw() const;

  private:
    xcb_connection_t* connection_;
    WindowOptions options_;
    xcb_window_t id_;
    xcb_gcontext_t context_;
    std::uint32_t seed_ = 0;
};

} // namespace skylet::puppet
