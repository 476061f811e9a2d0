// Reading the accessibility elements of a window's contents.
//
// Coordinates: window-server coordinates. Threads: wherever the interface may be used. Failure: every read
// answers nothing on an error and on a value of another type.
#pragma once

#include "platform/Accessibility.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace skylet::AXAttributes {

// How long a call to another application may take, in seconds.
constexpr double messagingTimeout = 0.25;

[[nodiscard]] std::optional<std::string> copyString(platform::Accessibility& accessibility,
                                                    const platform::AXElementRef& element,
                                                    std::string_view attribute);
[[nodiscard]] std::optional<double> copyNumber(platform::Accessibility& accessibility,
                                               const platform::AXElementRef& element,
                                               std::string_view attribute);
// Null when there is none.
[[nodiscard]] platform::AXElementRef copyElement(platform::Accessibility& accessibility,
                                                 const platform::AXElementRef& element,
                                                 std::string_view attribute);

// Position and size of the element.
[[nodiscard]] std::optional<platform::Rect> frameOf(platform::Accessibility& accessibility,
                                                    const platform::AXElementRef& element);

// The scroll areas of a window, outer ones before those in them, from twelve levels of elements; eight at
// most, because trees can be endless.
[[nodiscard]] std::vector<platform::AXElementRef> collectScrollAreas(platform::Accessibility& accessibility,
                                                                     const platform::AXElementRef& window);

} // namespace skylet::AXAttributes
