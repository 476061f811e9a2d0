// The one About window: made when it is first opened, hidden when it is closed, and used again.
//
// Threads: main thread. Failure: none.
#pragma once

#include "platform/OwnWindows.h"
#include "settings/BundleInfo.h"

#include <QString>

#include <memory>

namespace skylet {

class ClosingWindow;

class AboutWindow {
  public:
    // Must outlive the window.
    AboutWindow(platform::OwnWindows& ownWindows, BundleInfo bundle);
    AboutWindow(const AboutWindow&) = delete;
    AboutWindow& operator=(const AboutWindow&) = delete;
    ~AboutWindow();

    // Opens the window, or brings it forward.
    void showWindow(const QString& appName);

    // Null before the first opening.
    [[nodiscard]] ClosingWindow* widget() const { return window_.get(); }

  private:
    platform::OwnWindows& ownWindows_;
    BundleInfo bundle_;
    std::unique_ptr<ClosingWindow> window_;
};

} // namespace skylet
