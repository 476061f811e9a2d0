// Live capture of single windows.
//
// Threads: called on the main thread. Completions and the stop notice come on an unspecified thread and
// callers hop to the main queue; frames come on the serial queue given with the output. Failure: a
// CaptureError value.
#pragma once

#include "platform/Queues.h"
#include "platform/Subscription.h"
#include "platform/Types.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace skylet::platform {

struct CaptureError {
    std::string domain;
    int code = 0;
    std::string message;
};

// The capture service's error domain and its code for "the user declined screen recording".
constexpr const char* captureErrorDomain = "SCStreamErrorDomain";
constexpr int captureErrorUserDeclined = -3801;

// A picture that a panel's layer can show. It may live outside this process and may still be changing;
// whoever holds it keeps its picture readable.
class Surface {
  public:
    Surface() = default;
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;
    virtual ~Surface() = default;
};

using SurfaceRef = std::shared_ptr<Surface>;

enum class FrameStatus { complete = 0, idle = 1, blank = 2, suspended = 3, started = 4, stopped = 5 };
enum class OutputType { screen = 0, audio = 1 };

struct Frame {
    std::optional<FrameStatus> status;
    SurfaceRef surface; // null when the sample carries no picture
    // The size of the picture in pixels as the stream's configuration asked for it.
    int pixelWidth = 0;
    int pixelHeight = 0;
};

// A duration as value / timescale seconds, the form in which the capture service takes frame intervals.
struct MediaTime {
    std::int64_t value = 0;
    std::int32_t timescale = 600;
    [[nodiscard]] double seconds() const { return static_cast<double>(value) / timescale; }
    bool operator==(const MediaTime&) const = default;
};

// captureResolution raw values.
constexpr int captureResolutionBest = 1;
// The four-character code "BGRA" (kCVPixelFormatType_32BGRA).
constexpr std::uint32_t pixelFormat32BGRA = 0x42475241;

struct StreamConfiguration {
    int width = 1;  // pixels
    int height = 1; // pixels
    int captureResolution = 0;
    bool scalesToFit = false;
    bool showsCursor = true;
    std::uint32_t pixelFormat = 0;
    int queueDepth = 0;
    MediaTime minimumFrameInterval;
    bool operator==(const StreamConfiguration&) const = default;
};

struct CaptureWindow {
    WindowID windowID = 0;
    std::string title;
};

// One window, independent of the desktop: what covers it does not show.
class ContentFilter {
  public:
    ContentFilter() = default;
    ContentFilter(const ContentFilter&) = delete;
    ContentFilter& operator=(const ContentFilter&) = delete;
    virtual ~ContentFilter() = default;
    // Pixels per point of the filter's window; below 1.0 when not known.
    [[nodiscard]] virtual double pointPixelScale() const = 0;
};

using ContentFilterRef = std::shared_ptr<ContentFilter>;

class CaptureStream {
  public:
    using Completion = std::function<void(const std::optional<CaptureError>&)>;
    using SampleHandler = std::function<void(OutputType, const Frame&)>;

    CaptureStream() = default;
    CaptureStream(const CaptureStream&) = delete;
    CaptureStream& operator=(const CaptureStream&) = delete;
    // Stops the capture without a notice.
    virtual ~CaptureStream() = default;

    // `queue` must outlive the stream.
    [[nodiscard]] virtual std::optional<CaptureError> addStreamOutput(OutputType type, SerialQueue& queue,
                                                                      SampleHandler handler) = 0;
    virtual void startCapture(Completion done) = 0;
    virtual void stopCapture(Completion done) = 0;
    virtual void updateConfiguration(const StreamConfiguration& configuration, Completion done) = 0;
};

class ScreenCapture {
  public:
    struct ShareableContent {
        std::optional<CaptureError> error;
        std::vector<CaptureWindow> windows; // empty on error
    };
    struct Still {
        std::optional<CaptureError> error;
        SurfaceRef image; // null on error
    };
    using DidStopWithError = std::function<void(const CaptureError&)>;

    virtual ~ScreenCapture() = default;

    // The windows that can be captured. The answer never comes inside the call.
    virtual void getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                                     std::function<void(ShareableContent)> done) = 0;
    // Asks that the window's picture be kept whole, covered or not, until the answer is released. A platform
    // where every window's picture always is answers null.
    [[nodiscard]] virtual Subscription prepareCapture(WindowID window) = 0;
    [[nodiscard]] virtual ContentFilterRef makeFilter(WindowID desktopIndependentWindow) = 0;
    // `didStop` is called at most once, when the system ends a started stream; never inside a call.
    [[nodiscard]] virtual std::shared_ptr<CaptureStream> makeStream(ContentFilterRef filter,
                                                                    const StreamConfiguration& configuration,
                                                                    DidStopWithError didStop) = 0;
    // The answer never comes inside the call.
    virtual void captureImage(ContentFilterRef filter, const StreamConfiguration& configuration,
                              std::function<void(Still)> done) = 0;
    // The queue on which one overlay's samples arrive. An adapter whose samples carry no pixels into this
    // process may give a queue that runs on the main thread.
    [[nodiscard]] virtual std::unique_ptr<SerialQueue> makeSampleQueue(const std::string& label) = 0;

    [[nodiscard]] virtual bool preflightAccess() = 0;
    virtual bool requestAccess() = 0;
};

} // namespace skylet::platform
