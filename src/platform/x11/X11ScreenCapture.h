// Live capture of single windows with Composite and Damage.
//
// Every window of the window list can be captured, also while it is minimised or on another desktop: then it
// has no picture yet or its last one. The X server asks for no permission.
//
// Threads: main thread; answers come by the main queue.
#pragma once

#include "platform/ScreenCapture.h"
#include "platform/WindowServer.h"
#include "platform/x11/RenderFormats.h"
#include "platform/x11/TargetWindow.h"

#include <memory>
#include <unordered_map>

namespace skylet::platform::x11 {

class X11ScreenCapture : public ScreenCapture {
  public:
    X11ScreenCapture(Connection& connection, const RenderFormats& formats, WindowServer& windowServer,
                     MainQueue& mainQueue);

    void getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                             std::function<void(ShareableContent)> done) override;
    [[nodiscard]] Subscription prepareCapture(WindowID window) override;
    [[nodiscard]] ContentFilterRef makeFilter(WindowID desktopIndependentWindow) override;
    [[nodiscard]] std::shared_ptr<CaptureStream> makeStream(ContentFilterRef filter,
                                                            const StreamConfiguration& configuration,
                                                            DidStopWithError didStop) override;
    void captureImage(ContentFilterRef filter, const StreamConfiguration& configuration,
                      std::function<void(Still)> done) override;
    [[nodiscard]] std::unique_ptr<SerialQueue> makeSampleQueue(const std::string& label) override;
    [[nodiscard]] bool preflightAccess() override { return true; }
    bool requestAccess() override { return true; }

  private:
    // The one TargetWindow of a window, shared by its filters, stills and streams.
    [[nodiscard]] std::shared_ptr<TargetWindow> target(xcb_window_t window);

    Connection& connection_;
    const RenderFormats& formats_;
    WindowServer& windowServer_;
    MainQueue& mainQueue_;
    std::unordered_map<xcb_window_t, std::weak_ptr<TargetWindow>> targets_;
};

} // namespace skylet::platform::x11
