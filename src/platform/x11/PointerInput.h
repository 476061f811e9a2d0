// Core pointer events of a panel's window, as input events.
//
// Coordinates: see InputEvent. Threads: main thread.
#pragma once

#include "platform/InputEvent.h"
#include "platform/x11/ModifierMap.h"
#include "platform/x11/PixelRect.h"
#include "platform/x11/ScreenLayout.h"

#include <optional>

namespace skylet::platform::x11 {

class PointerInput {
  public:
    PointerInput(const ScreenLayout& layout, const ModifierMap& modifiers)
        : layout_(layout)
        , modifiers_(modifiers) {}

    // Nothing for events that mean none (the release of a wheel click). `panel` is the panel's size.
    [[nodiscard]] std::optional<InputEvent> translate(const xcb_generic_event_t& event,
                                                      const PixelRect& panel);
    // Presses and releases that will not be seen any more.
    void reset() { heldButton_ = 0; }

  private:
    [[nodiscard]] std::optional<InputEvent> press(const xcb_button_press_event_t& event, InputEvent input);
    [[nodiscard]] std::optional<InputEvent> release(const xcb_button_release_event_t& event,
                                                    InputEvent input);
    [[nodiscard]] int countClicks(const xcb_button_press_event_t& event);

    const ScreenLayout& layout_;
    const ModifierMap& modifiers_;
    int heldButton_ = 0; // X button whose drag is under way
    int clickButton_ = 0;
    int clickCount_ = 0;
    xcb_timestamp_t clickTime_ = 0;
    int clickX_ = 0;
    int clickY_ = 0;
};

} // namespace skylet::platform::x11
