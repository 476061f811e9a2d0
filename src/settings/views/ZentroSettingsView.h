// The settings window's content: the application's sections in a grouped form, launch at login, the version,
// and a bar with the button that closes the window.
#pragma once

#include "platform/LoginItem.h"
#include "platform/Types.h"
#include "settings/BundleInfo.h"

#include <QWidget>

#include <functional>

class QScrollArea;

namespace skylet {

class ToggleRow;

class ZentroSettingsView : public QWidget {
  public:
    struct Configuration {
        QString appName;
        bool showsLaunchAtLogin = true;
    };

    // Takes the content. The login item must outlive the view. `close` closes the window.
    ZentroSettingsView(const Configuration& configuration, QWidget* appSettings,
                       platform::LoginItem& loginItem, const BundleInfo& bundle, std::function<void()> close);

    // The size in which everything is seen at once.
    [[nodiscard]] platform::Size fittingSize() const;
    void scrollToTop();
    // Called after the content may want another size.
    std::function<void()> onFittingSizeChange;
    // Shows what may have changed outside the program.
    void refresh();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void changeLaunchAtLogin(bool isOn);

    platform::LoginItem& loginItem_;
    QScrollArea* form_;
    QWidget* bottomBar_;
    ToggleRow* launchAtLogin_ = nullptr;
};

} // namespace skylet
