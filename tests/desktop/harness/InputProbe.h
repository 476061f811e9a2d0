// An application that tells what the user does to its window, each toolkit in its own words.
//
// Threads: the main thread. Failure: a window that did not appear is 0.
#pragma once

#include "VirtualDesktop.h"

#include <string>

namespace skylet::desktop {

enum class Toolkit { raw, xterm, tk, gtk3, gtk4, qt5, qt6, chromium, firefox, office };

[[nodiscard]] std::string nameOf(Toolkit toolkit);

// What the application says of a gesture; an empty text is something that it never says.
struct ProbeWords {
    std::string down;        // the left button
    std::string up;          // the left button
    std::string doubleClick; // the second press
    std::string controlDown; // the left button with Control
    std::string motion;      // with the left button down
    std::string selection;   // some text became selected
    std::string wheel;       // one click down
    std::string rightDown;
    std::string rightUp;
    std::string item; // the user chose something in a popup
    bool rightOpensMenu = false;
    bool leftOpensMenu = false; // near the window's lower right corner
};

class InputProbe {
  public:
    // Browsers show accessibility their pages only when told to.
    InputProbe(VirtualDesktop& desktop, Toolkit toolkit, bool accessible = false);

    [[nodiscard]] Window window() const { return window_; }
    [[nodiscard]] Process& process() { return process_; }
    [[nodiscard]] const ProbeWords& words() const { return words_; }
    // Everything said since the last `forget`.
    [[nodiscard]] std::string said();
    void forget();
    // Whether `word` was said `times` times or more.
    [[nodiscard]] bool says(const std::string& word, int times = 1);

  private:
    [[nodiscard]] std::string everything();

    VirtualDesktop& desktop_;
    Toolkit toolkit_;
    ProbeWords words_;
    Process process_;
    Window window_ = XCB_NONE;
    std::string heard_;
    std::string forgotten_;
};

} // namespace skylet::desktop
