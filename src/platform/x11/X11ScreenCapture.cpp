#include "platform/x11/X11ScreenCapture.h"

#include "platform/x11/MirrorSurface.h"
#include "platform/x11/X11CaptureStream.h"

#include <utility>

namespace skylet::platform::x11 {

namespace {

// Samples carry no pixels into this process, so a thread of their own would only add two switches to each.
class SampleQueue : public SerialQueue {
  public:
    explicit SampleQueue(MainQueue& mainQueue) : mainQueue_(mainQueue) {}
    void async(Work work) override { mainQueue_.async(std::move(work)); }

  private:
    MainQueue& mainQueue_;
};

class Preparation : public SubscriptionBase {
  public:
    explicit Preparation(std::shared_ptr<TargetWindow> target) : target_(std::move(target)) {}

  private:
    std::shared_ptr<TargetWindow> target_;
};

} // namespace

X11ScreenCapture::X11ScreenCapture(Connection& connection, const RenderFormats& formats,
                                   WindowServer& windowServer, MainQueue& mainQueue)
    : connection_(connection)
    , formats_(formats)
    , windowServer_(windowServer)
    , mainQueue_(mainQueue) {}

void X11ScreenCapture::getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                                           std::function<void(ShareableContent)> done) {
    mainQueue_.async([this, excludingDesktopWindows, onScreenWindowsOnly, done = std::move(done)] {
        const std::uint32_t options =
            (excludingDesktopWindows ? WindowListOption::excludeDesktopElements : 0U) |
            (onScreenWindowsOnly ? WindowListOption::onScreenOnly : 0U);
        ShareableContent content;
        if (const auto list = windowServer_.copyWindowList(options, nullWindowID)) {
            for (const WindowEntry& entry : *list) {
                if (entry.number) {
                    content.windows.push_back(
                        {static_cast<WindowID>(*entry.number), entry.name.value_or("")});
                }
            }
        } else {
            content.error = CaptureError{captureDomain, 3, "the window list cannot be read"};
        }
        done(std::move(content));
    });
}

std::shared_ptr<TargetWindow> X11ScreenCapture::target(xcb_window_t window) {
    std::erase_if(targets_, [](const auto& entry) { return entry.second.expired(); });
    std::weak_ptr<TargetWindow>& known = targets_[window];
    auto target = known.lock();
    if (!target || target->isGone()) {
        target = std::make_shared<TargetWindow>(connection_, formats_, window);
        known = target;
    }
    return target;
}

Subscription X11ScreenCapture::prepareCapture(WindowID window) {
    return std::make_unique<Preparation>(target(window));
}

ContentFilterRef X11ScreenCapture::makeFilter(WindowID desktopIndependentWindow) {
    return std::make_shared<X11ContentFilter>(target(desktopIndependentWindow));
}

std::shared_ptr<CaptureStream> X11ScreenCapture::makeStream(ContentFilterRef filter,
                                                            const StreamConfiguration& configuration,
                                                            DidStopWithError didStop) {
    const auto& ownFilter = static_cast<const X11ContentFilter&>(*filter);
    return std::make_shared<X11CaptureStream>(connection_, mainQueue_, ownFilter.target(), configuration,
                                              std::move(didStop));
}

void X11ScreenCapture::captureImage(ContentFilterRef filter, const StreamConfiguration& configuration,
                                    std::function<void(Still)> done) {
    static_cast<void>(configuration); // the panel that shows the picture scales it
    mainQueue_.async([filter = std::move(filter), done = std::move(done)] {
        const auto& target = static_cast<const X11ContentFilter&>(*filter).target();
        Still still;
        if (target->picture()) {
            still.image = std::make_shared<MirrorSurface>(target);
        } else {
            still.error = CaptureError{captureDomain, captureErrorWindowGone, "the window has no picture"};
        }
        done(std::move(still));
    });
}

std::unique_ptr<SerialQueue> X11ScreenCapture::makeSampleQueue(const std::string& label) {
    static_cast<void>(label); // no thread to name
    return std::make_unique<SampleQueue>(mainQueue_);
}

} // namespace skylet::platform::x11
