// The login item as an autostart entry (Desktop Application Autostart Specification): a desktop file below
// $XDG_CONFIG_HOME/autostart, which the desktop's own tools show and can switch off.
//
// The entry belongs to the user: whatever else stands in it stays. Threads: main thread. Failure: an entry
// that cannot be read counts as none; one that cannot be written stays as it is.
#pragma once

#include "platform/LoginItem.h"

#include <string>

namespace skylet::platform::qt {

class AutostartEntry : public LoginItem {
  public:
    // NAME.desktop in $XDG_CONFIG_HOME/autostart, or in ~/.config/autostart where the variable holds no
    // absolute path.
    [[nodiscard]] static std::string defaultPath(const std::string& name);

    // `program` is the absolute path of the executable.
    AutostartEntry(std::string path, std::string title, std::string program);

    // There is an entry with a command, and neither Hidden=true nor X-GNOME-Autostart-enabled=false in it.
    [[nodiscard]] bool isEnabled() const override;
    [[nodiscard]] bool registerItem() override;
    // Removes the entry.
    [[nodiscard]] bool unregisterItem() override;

  private:
    std::string path_;
    std::string title_;
    std::string program_;
};

} // namespace skylet::platform::qt
