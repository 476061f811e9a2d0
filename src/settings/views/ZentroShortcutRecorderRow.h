// The row with which the user records the global shortcut.
#pragma once

#include "settings/ZentroShortcutRecorder.h"
#include "settings/views/FormSection.h"

namespace skylet {

class ZentroShortcutRecorderRow : public FormRow {
  public:
    // The monitor and the tap must outlive the row.
    ZentroShortcutRecorderRow(platform::KeyDownMonitor& monitor,
                              ZentroShortcutRecorder::Connections connections);

  protected:
    void showEvent(QShowEvent* event) override;
    // A row that disappears stops recording.
    void hideEvent(QHideEvent* event) override;

  private:
    class Controls;
    ZentroShortcutRecorderRow(platform::KeyDownMonitor& monitor,
                              ZentroShortcutRecorder::Connections connections, Controls* controls);

    void refresh();

    ZentroShortcutRecorder recorder_;
    Controls* controls_;
    bool wasRecording_ = false;
    platform::Subscription changes_;
};

} // namespace skylet
