#include "settings/views/ToggleRow.h"

#include "settings/views/SwitchControl.h"

#include <QSignalBlocker>

#include <utility>

namespace skylet {

ToggleRow::ToggleRow(const QString& title, SwitchControl* control, const QString& caption)
    : FormRow(title, control, caption, nullptr, SwitchControl::overhang())
    , control_(control) {}

ToggleRow::ToggleRow(const QString& title, bool isOn, std::function<void(bool)> onToggled,
                     const QString& caption)
    : ToggleRow(title, new SwitchControl, caption) {
    control_->setChecked(isOn);
    // Not `clicked`: screen readers toggle without a click.
    QObject::connect(control_, &QAbstractButton::toggled, control_,
                     [onToggled = std::move(onToggled)](bool checked) { onToggled(checked); });
}

void ToggleRow::setOn(bool isOn) {
    const QSignalBlocker blocker(control_);
    control_->setChecked(isOn);
}

} // namespace skylet
