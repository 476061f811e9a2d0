// The one settings window: made when it is first opened, hidden when it is closed, and used again.
//
// Threads: main thread. Failure: none.
#pragma once

#include "foundation/Lifetime.h"
#include "platform/LoginItem.h"
#include "platform/OwnWindows.h"
#include "platform/Queues.h"
#include "platform/Screens.h"
#include "settings/BundleInfo.h"
#include "settings/ZentroSettingsWindowSizer.h"
#include "settings/views/ZentroSettingsView.h"

#include <functional>
#include <memory>

namespace skylet {

class SettingsWindow {
  public:
    // All of it must outlive the window.
    struct Services {
        platform::MainQueue& mainQueue;
        platform::Screens& screens; // in the toolkit's points
        platform::OwnWindows& ownWindows;
        platform::LoginItem& loginItem;
    };
    // Makes the application's own sections. Called by the first opening only.
    using MakeContent = std::function<QWidget*()>;

    SettingsWindow(const Services& services, BundleInfo bundle);
    SettingsWindow(const SettingsWindow&) = delete;
    SettingsWindow& operator=(const SettingsWindow&) = delete;
    ~SettingsWindow();

    // Opens the window, or brings it forward.
    void showWindow(const ZentroSettingsView::Configuration& configuration, const MakeContent& makeContent);

    // Null before the first opening.
    [[nodiscard]] QWidget* widget() const;

  private:
    class Window;
    void create(const ZentroSettingsView::Configuration& configuration, QWidget* content);
    void scrollToTop();

    Services services_;
    BundleInfo bundle_;
    std::unique_ptr<Window> window_;
    std::unique_ptr<ZentroSettingsWindowSizer> sizer_;
    Lifetime lifetime_;
};

} // namespace skylet
