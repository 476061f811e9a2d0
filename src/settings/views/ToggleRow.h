// A row with a switch bound to a value.
#pragma once

#include "settings/views/FormSection.h"

#include <functional>

namespace skylet {

class SwitchControl;

class ToggleRow : public FormRow {
  public:
    // `onToggled` hears of the user's changes only.
    ToggleRow(const QString& title, bool isOn, std::function<void(bool)> onToggled,
              const QString& caption = {});

    // Shows the value as it is now.
    void setOn(bool isOn);

  private:
    ToggleRow(const QString& title, SwitchControl* control, const QString& caption);

    SwitchControl* control_;
};

} // namespace skylet
