// Menus as values: what they show, and what choosing an item does.
//
// Threads: main thread. Actions may run after the menu that they came from is gone, so they must not refer to
// anything that can be gone by then. Texts are UTF-8, taken literally: no character marks a mnemonic.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace skylet::platform {

// What the first responder, the control that has the keyboard focus, does by itself.
enum class ResponderAction { none, undo, redo, cut, copy, paste, selectAll };

struct MenuItem {
    // Tells the same item apart from others when the menu is built again; unique within its menu.
    std::string identity;
    std::string title;
    bool isSeparator = false;
    bool isEnabled = true;
    bool isOn = false; // a check mark
    // One character, pressed with the system's command modifier; an upper-case letter adds Shift. Empty:
    // none.
    std::string keyEquivalent{};
    std::function<void()> action{};
    ResponderAction responderAction = ResponderAction::none;

    [[nodiscard]] static MenuItem separator(std::string identity) {
        return {.identity = std::move(identity), .title = {}, .isSeparator = true};
    }
};

using Menu = std::vector<MenuItem>;

struct TopLevelMenu {
    std::string title; // empty: the application's own menu
    Menu items;
};

using MainMenu = std::vector<TopLevelMenu>;

} // namespace skylet::platform
