// Reading and driving other applications through accessibility elements.
//
// Coordinates: "AXPosition" and "AXSize" are window-server coordinates (top-left origin), in points.
// Threads: any thread, one call at a time per element; the permission questions on the main thread.
// Failure: a numeric error code, never an exception. An element whose window or application is gone answers
// with an error. No call waits longer for another application than the element's messaging timeout.
#pragma once

#include "platform/Types.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace skylet::platform {

// Error codes with the accessibility API's own numbers (AXError), which appear in log lines.
namespace AXError {
constexpr int success = 0;
constexpr int failure = -25200;
constexpr int invalidUIElement = -25202;
constexpr int cannotComplete = -25204;
constexpr int attributeUnsupported = -25205;
constexpr int actionUnsupported = -25206;
constexpr int apiDisabled = -25211;
constexpr int noValue = -25212;
} // namespace AXError

// An opaque reference to a user-interface element of another application.
class AXElement {
  public:
    AXElement() = default;
    AXElement(const AXElement&) = delete;
    AXElement& operator=(const AXElement&) = delete;
    virtual ~AXElement() = default;
};

using AXElementRef = std::shared_ptr<AXElement>;

using AXValue =
    std::variant<std::monostate, std::string, double, Point, Size, AXElementRef, std::vector<AXElementRef>>;

// `value` holds std::monostate when `error` is not success, and may do so on success (no value).
struct AXResult {
    int error = AXError::success;
    AXValue value;

    // The value if the read succeeded and the value is a T, else null.
    template <class T>
    [[nodiscard]] const T* get() const {
        return error == AXError::success ? std::get_if<T>(&value) : nullptr;
    }
};

class Accessibility {
  public:
    virtual ~Accessibility() = default;

    // Whether this program may use accessibility now. Bounded to 0.25 s.
    [[nodiscard]] virtual bool isProcessTrusted() = 0;
    // The same, and when it may not, the system's own request for it is shown to the user.
    virtual bool isProcessTrustedWithPrompt() = 0;

    // Never null; an application that does not exist answers reads with an error.
    [[nodiscard]] virtual AXElementRef createApplication(ProcessID pid) = 0;
    [[nodiscard]] virtual AXResult copyAttributeValue(const AXElementRef& element,
                                                      std::string_view attribute) = 0;
    virtual int setAttributeValue(const AXElementRef& element, std::string_view attribute, double value) = 0;
    // The error code of the query, and the answer (false on error).
    [[nodiscard]] virtual std::pair<int, bool> isAttributeSettable(const AXElementRef& element,
                                                                   std::string_view attribute) = 0;
    virtual int performAction(const AXElementRef& element, std::string_view action) = 0;
    virtual void setMessagingTimeout(const AXElementRef& element, double seconds) = 0;
};

} // namespace skylet::platform
