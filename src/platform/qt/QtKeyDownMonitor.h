// Takes key-downs from Qt before any window or shortcut sees them.
//
// Meanwhile the keyboard is grabbed for the window with the focus, so that keys that other programs have
// reserved for themselves arrive as well.
// Threads: main thread, with a GUI application. Failure: none.
#pragma once

#include "platform/KeyDownMonitor.h"

#include <QtGlobal>

#include <functional>
#include <optional>

namespace skylet::platform::qt {

class QtKeyDownMonitor : public KeyDownMonitor {
  public:
    // Turns the window system's own key code and modifier state into a key-down; nothing for keys that are
    // none.
    using Translation = std::function<std::optional<KeyEvent>(quint32 scanCode, quint32 modifiers)>;

    explicit QtKeyDownMonitor(Translation translation) : translation_(std::move(translation)) {}

    // Repeated key-downs of a key that is held are taken without a call.
    [[nodiscard]] Subscription addLocalMonitorForKeyDown(Handler handler) override;

  private:
    Translation translation_;
};

} // namespace skylet::platform::qt
