// What a test sees of an X server, and the user's own hands on it: windows, properties, pixels, keys and
// pointer.
//
// Coordinates: X pixels, root coordinates. Threads: one.
// Failure: a window that is gone answers with nothing; a lost server answers every question with nothing.
#pragma once

#include "Pixels.h"

#include <xcb/shape.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace skylet::desktop {

using Window = xcb_window_t;

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeReply>;
template <class T>
Reply<T> own(T* reply) {
    return Reply<T>(reply);
}

// By the keysym of its left-hand key.
enum class Modifier : xcb_keysym_t { control = 0xFFE3, super = 0xFFEB, shift = 0xFFE1, alt = 0xFFE9 };

class XSession {
  public:
    // An empty display is that of the environment.
    explicit XSession(const std::string& display);

    [[nodiscard]] bool isConnected() const;
    [[nodiscard]] xcb_connection_t* connection() const { return connection_.get(); }
    [[nodiscard]] Window root() const { return root_; }
    [[nodiscard]] Rectangle screen() const;
    // Returns after the server carried out everything sent so far.
    void sync() const;

    // Properties.
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;
    [[nodiscard]] std::vector<std::uint32_t> numbers(Window window, const std::string& property) const;
    [[nodiscard]] std::string text(Window window, const std::string& property) const;

    // Windows.
    [[nodiscard]] std::vector<Window> children(Window window) const; // bottom to top
    [[nodiscard]] std::vector<Window> managedWindows() const;        // of the window manager, or top-levels
    [[nodiscard]] std::vector<Window> windowsOf(pid_t pid) const;    // the managed ones of one process
    [[nodiscard]] pid_t pidOf(Window window) const;
    [[nodiscard]] std::optional<Rectangle> geometry(Window window) const;
    // The part that is mirrored: without the shadow that the client draws itself.
    [[nodiscard]] std::optional<Rectangle> visibleGeometry(Window window) const;
    [[nodiscard]] bool isViewable(Window window) const;
    [[nodiscard]] bool isOverrideRedirect(Window window) const;
    [[nodiscard]] bool isInputOnly(Window window) const;
    [[nodiscard]] std::vector<Rectangle> shape(Window window, xcb_shape_sk_t kind) const;
    // The child of the root that holds the window.
    [[nodiscard]] Window topLevelOf(Window window) const;
    [[nodiscard]] Window activeWindow() const;
    [[nodiscard]] Window inputFocus() const;
    [[nodiscard]] Window selectionOwner(const std::string& selection) const;
    [[nodiscard]] bool hasWindowManager() const;
    [[nodiscard]] bool hasCompositor() const;
    // Announced or not, a window manager may lose the windows that come in its first moments: whether it
    // manages one.
    [[nodiscard]] bool windowManagerAnswers() const;

    // What the user does to windows.
    void activate(Window window);
    void moveResize(Window window, Rectangle geometry) const;
    void close(Window window);
    void switchDesktop(std::uint32_t desktop);
    void moveToDesktop(Window window, std::uint32_t desktop);

    // Pixels.
    [[nodiscard]] Picture screenshot(Rectangle part) const;
    // The window's picture in the server's memory, also where it is covered; needs its redirection by
    // someone.
    [[nodiscard]] std::optional<Picture> content(Window window) const;

    // Keyboard and pointer.
    void press(xcb_keysym_t key, const std::vector<Modifier>& modifiers = {}) const;
    void hold(Modifier modifier, bool down) const;
    // Takes the key for itself, as another program does. Whether it was free.
    [[nodiscard]] bool grabKey(xcb_keysym_t key, std::uint16_t modifiers) const;
    void ungrabKey(xcb_keysym_t key, std::uint16_t modifiers) const;
    // Every client is told that the keyboard's mapping changed, as at a change of layout or keyboard.
    void announceKeyboard() const;
    void movePointer(int x, int y) const;
    void button(int number, bool down) const;
    void click(int x, int y, int number = 1) const;
    // Presses at one point and releases at another, with steps between as a hand makes them.
    void drag(int fromX, int fromY, int toX, int toY) const;
    [[nodiscard]] std::pair<int, int> pointer() const;
    [[nodiscard]] xcb_keycode_t keycode(xcb_keysym_t key) const;
    // The names of the pointers that move a cursor.
    [[nodiscard]] std::vector<std::string> masterPointers() const;

    // Resources that a process holds in the server, all kinds together, and by kind.
    [[nodiscard]] std::map<std::string, int> resourcesOf(pid_t pid) const;

  private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    [[nodiscard]] Reply<xcb_get_property_reply_t> property(Window window, const std::string& name) const;
    [[nodiscard]] Reply<xcb_get_window_attributes_reply_t> attributes(Window window) const;
    // Asks the window manager, as a pager does.
    void tellRoot(Window window, const std::string& message, const std::vector<std::uint32_t>& values) const;
    [[nodiscard]] std::uint32_t serverTime() const;
    void fake(std::uint8_t type, int detail, int x, int y) const;

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    Window root_ = XCB_NONE;
    Window own_ = XCB_NONE;
    mutable std::map<std::string, xcb_atom_t> atoms_;
};

} // namespace skylet::desktop
