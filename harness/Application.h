// The applications that a test can open on a virtual desktop: each tells in its own words what the user does
// to its window, and most can change what they show.
//
// Threads: the main thread. Failure: a window that did not appear is 0.
#pragma once

#include "VirtualDesktop.h"

#include <string>
#include <vector>

namespace skylet::desktop {

// `raw` is the puppet.
enum class Toolkit { raw, xterm, tk, gtk3, gtk4, qt5, qt6, chromium, firefox, office };

[[nodiscard]] std::string nameOf(Toolkit toolkit);

// What the application says of a gesture; an empty text is something that it never says.
struct ProbeWords {
    std::string down = "down1";                // the left button
    std::string up = "up1";                    // the left button
    std::string doubleClick = "double1";       // the second press
    std::string controlDown = "down1+control"; // the left button with Control
    std::string motion = "motion";             // with the left button down
    std::string selection = "selected ";       // some text became selected
    std::string wheel = "scrolled";            // one click down
    std::string rightDown = "down3";
    std::string rightUp{};
    std::string pressed{}; // a button near the window's lower left corner
    std::string item{};    // the user chose something in a popup
    bool rightOpensMenu = true;
    bool leftOpensMenu = false; // near the window's lower right corner
};

class Application {
  public:
    // Opens it and waits until its window can be seen and has been drawn on.
    Application(VirtualDesktop& desktop, Toolkit toolkit);

    [[nodiscard]] Window window() const { return window_; }
    [[nodiscard]] Process& process() { return process_; }
    // Makes the window show something else; browsers and the office do not.
    void changeContent();

    [[nodiscard]] const ProbeWords& words() const { return words_; }
    // Everything said since the last `forget`.
    [[nodiscard]] std::string said();
    void forget() { forgotten_ = everything(); }
    // Whether `word` was said `times` times or more.
    [[nodiscard]] bool says(const std::string& word, int times = 1);

  private:
    [[nodiscard]] std::string everything();
    [[nodiscard]] bool findWindow();

    VirtualDesktop& desktop_;
    Toolkit toolkit_;
    ProbeWords words_;
    Process process_;
    Window window_ = XCB_NONE;
    std::string heard_;
    std::string forgotten_;
    int changes_ = 0;
};

// The client of our own, spoken to in lines; see puppet/main.cpp for its commands.
class Puppet {
  public:
    explicit Puppet(VirtualDesktop& desktop);

    [[nodiscard]] Process& process() { return process_; }
    // Says one command and waits until the X server has carried it out. The answer.
    std::string tell(const std::string& command);
    // Opens a window ("x y width height" and options) and waits until it can be seen.
    Window open(const std::string& description);

  private:
    VirtualDesktop& desktop_;
    Process process_;
};

} // namespace skylet::desktop
