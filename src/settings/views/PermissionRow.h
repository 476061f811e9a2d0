// A row that shows one permission live and lets the user give it.
#pragma once

#include "platform/Subscription.h"
#include "settings/ZentroPermissionWatcher.h"
#include "settings/views/ToneLabel.h"

#include <QWidget>

#include <functional>

namespace skylet {

class FormButton;

class PermissionRow : public QWidget {
  public:
    struct Texts {
        QString title;
        QString granted;
        QString explanation;
    };

    // The watcher must outlive the row. `allow` is what the button does.
    PermissionRow(ZentroPermissionWatcher& watcher, const Texts& texts, std::function<void()> allow);

  private:
    void show(bool isGranted);

    FormButton* button_;
    QWidget* granted_;
    platform::Subscription changes_;
};

} // namespace skylet
